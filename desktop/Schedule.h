// What is due later, in simulated time.
#pragma once

#include <functional>
#include <map>
#include <optional>

namespace desktop {

class Schedule {
  public:
    double Now() const { return now_; }  // seconds since the desktop was created

    // Runs `effect` after this many seconds; effects that are due together run in the order in
    // which they were added.
    void After(double seconds, std::function<void()> effect);

    // Effects that run meanwhile must not call it.
    void Advance(double seconds);
    bool Advancing() const { return advancing_; }

    std::optional<double> NextDue() const;

  private:
    double now_ = 0;
    bool advancing_ = false;
    std::multimap<double, std::function<void()>> effects_;
};

}  // namespace desktop
