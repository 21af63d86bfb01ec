#include "tools/trace/Timeline.h"

#include <utility>

namespace krt9ctl::trace {

std::optional<double> Event::Milliseconds() const {
    if (!begin || end.time < begin->time) {  // the clock was set back
        return std::nullopt;
    }
    return std::chrono::duration<double, std::milli>(end.time - begin->time).count();
}

bool Event::IsIdle() const {
    if (end.name != "tick" || end.Number("exchanges") != 0) {
        return false;
    }
    for (const Event& step : steps) {
        if (step.end.Text("step") != "profile") {
            return false;
        }
    }
    return true;
}

std::optional<Event> Timeline::Add(Signpost signpost) {
    Process& process = processes_[signpost.pid];
    if (signpost.type == Signpost::Type::begin) {
        if (signpost.name == "tick") {
            process.steps.clear();
        }
        const std::string name = signpost.name;
        process.open.insert_or_assign(name, std::move(signpost));
        return std::nullopt;
    }
    Event event{std::move(signpost), std::nullopt, {}};
    if (const auto begun = process.open.extract(event.end.name)) {
        event.begin = begun.mapped();
    }
    if (event.end.name == "step") {
        process.steps.push_back(std::move(event));
        return std::nullopt;
    }
    if (event.end.name == "tick") {
        event.steps = std::exchange(process.steps, {});
    }
    return event;
}

}  // namespace krt9ctl::trace
