// Hears the driver's messages while the main thread does other things: the driver waits a hundredth
// of a second only for a message to be taken.
#pragma once

#include <atomic>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

#include "companion/KRT9Companion.h"

namespace krt9ctl {

// Owns the companion's port, on a thread of its own, and answers status queries with the usual
// counts. The thread takes no signals.
class Listener {
  public:
    // Null when another process owns the name.
    static std::unique_ptr<Listener> Open();
    ~Listener();
    Listener(const Listener&) = delete;
    Listener& operator=(const Listener&) = delete;

    // The messages that arrived since the last call, in their order. On any thread.
    std::vector<krt9::Message> Take();

  private:
    Listener() = default;
    bool Start();
    void Listen();

    enum class State { starts, listens, failed };

    std::mutex mutex_;  // guards the next three
    std::condition_variable changed_;
    State state_ = State::starts;
    std::vector<krt9::Message> heard_;
    std::atomic<bool> isOver_{false};
    std::thread thread_;
};

}  // namespace krt9ctl
