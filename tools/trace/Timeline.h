// What the driver did: its signposts put together to requests, messages and ticks.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "tools/Output.h"
#include "tools/trace/Signpost.h"

namespace krt9ctl::trace {

// One thing that has ended.
struct Event {
    Signpost end;
    std::optional<Signpost> begin;  // nothing when it began before anybody looked
    std::vector<Event> steps;       // of a tick

    std::optional<double> Milliseconds() const;

    // A tick in which the driver only looked at which application is in front.
    bool IsIdle() const;
};

class Timeline {
  public:
    // What ends with this signpost, except for steps: they belong to their tick.
    std::optional<Event> Add(Signpost signpost);

  private:
    struct Process {
        std::map<std::string, Signpost> open;  // by name
        std::vector<Event> steps;
    };

    std::map<std::int64_t, Process> processes_;
};

Json EventObject(const Event& event);

// One line with the local time.
std::string DescribeEvent(const Event& event);

}  // namespace krt9ctl::trace
