// A thread that acts when a run loop has not returned in time.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <thread>

namespace run_loop_test {

// Runs the action after that much real time, unless it is ended or destroyed before.
class Watchdog {
  public:
    Watchdog(std::chrono::milliseconds delay, std::function<void()> action)
        : thread_([this, delay, action = std::move(action)] {
              std::unique_lock lock(mutex_);
              if (!ended_.wait_for(lock, delay, [this] { return over_; })) {
                  stepped_ = true;
                  action();
              }
          }) {}
    Watchdog(const Watchdog&) = delete;
    Watchdog& operator=(const Watchdog&) = delete;
    ~Watchdog() { End(); }

    // Returns whether the action has been run.
    bool End() {
        {
            const std::lock_guard lock(mutex_);
            over_ = true;
        }
        ended_.notify_all();
        if (thread_.joinable()) {
            thread_.join();
        }
        return stepped_;
    }

  private:
    std::mutex mutex_;
    std::condition_variable ended_;
    bool over_ = false;
    bool stepped_ = false;
    std::thread thread_;
};

// Runs the current thread's loop; whether it returned without being stopped from outside.
inline bool RunsToItsEnd(CFRunLoopRef loop) {
    Watchdog watchdog(std::chrono::milliseconds(200), [loop] { CFRunLoopStop(loop); });
    CFRunLoopRun();
    return !watchdog.End();
}

}  // namespace run_loop_test
