// The session's input stream: logs every posted event, keeps the modifier keys that are held down,
// moves the pointer.
#pragma once

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

    // Flags of the modifier keys held down, as in CGEventFlags.
    std::uint64_t HeldFlags() const;
    // "command", "shift", "option", "control"
    std::vector<std::string> HeldModifiers() const;

  private:
    void FollowModifierKey(const desktop_link::Event& event);

    Model& model_;
    EventLog& log_;
    bool held_[4] = {};
};

}  // namespace desktop
