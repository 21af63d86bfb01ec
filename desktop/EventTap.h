// The session's input stream: logs every posted event, keeps the keys and mouse buttons that are
// held down, moves the pointer.
#pragma once

#include <bitset>
#include <cstdint>
#include <string>
#include <vector>

#include "desktop/EventLog.h"
#include "desktop/Model.h"

namespace desktop {

class EventTap {
  public:
    EventTap(Model& model, EventLog& log) : model_(model), log_(log) {}

    // An event whose flags were not set gets those of the modifier keys held down. Dropped when the
    // processes of the session are not trusted.
    void Post(desktop_link::Event event);

    // Whether the key or mouse button of that number is held down; false for a number that none
    // has.
    bool IsKeyDown(std::int64_t keyCode) const;
    bool IsButtonDown(std::int64_t button) const;

    // Flags of the modifier keys held down, as in CGEventFlags.
    std::uint64_t HeldFlags() const;
    // "command", "shift", "option", "control"
    std::vector<std::string> HeldModifiers() const;

  private:
    void FollowKey(const desktop_link::Event& event);
    void FollowButton(const desktop_link::Event& event);

    Model& model_;
    EventLog& log_;
    std::bitset<128> keys_;  // virtual key codes have 7 bits
    std::bitset<32> buttons_;
};

}  // namespace desktop
