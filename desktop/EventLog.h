// What happened, in order: posted events, actions, settings, activations, MIDI. Nothing in it
// depends on the time of day or on addresses: the same scene and the same script give the same log.
//
// Entries are JSON objects, one a line; "n" counts them from 1.
#pragma once

#include <cstdint>
#include <functional>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "platform/DesktopLink/Messages.h"

namespace desktop {

class EventLog {
  public:
    // Beyond this many entries the older half is dropped.
    static constexpr std::size_t kMostEntries = 1000000;

    explicit EventLog(std::size_t mostEntries = kMostEntries) : mostEntries_(mostEntries) {}

    void Add(nlohmann::ordered_json entry);
    void AddEvent(const desktop_link::Event& event);

    // Called with each line, without line end, as it is written.
    void SetSink(std::function<void(const std::string& line)> sink) { sink_ = std::move(sink); }

    // The lines of the entries after number `since`.
    std::vector<std::string> LinesSince(std::uint64_t since) const;
    std::uint64_t LastNumber() const { return lastNumber_; }

    // The posted events alone, as the event tap saw them.
    const std::vector<desktop_link::Event>& Events() const { return events_; }

    // Discards the entries; the numbering continues.
    void Clear();

  private:
    std::size_t mostEntries_;
    std::vector<std::string> lines_;
    std::vector<desktop_link::Event> events_;
    std::uint64_t lastNumber_ = 0;
    std::function<void(const std::string& line)> sink_;
};

}  // namespace desktop
