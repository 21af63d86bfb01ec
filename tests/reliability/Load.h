// Requests without pause, from a separate thread, to whichever driver serves the port.
#pragma once

#include <atomic>
#include <thread>

namespace test_support {

class Load {
  public:
    Load() : thread_([this] { Run(); }) {}
    Load(const Load&) = delete;
    Load& operator=(const Load&) = delete;
    ~Load() {
        stop_ = true;
        thread_.join();
    }

    unsigned long Answered() const { return answered_; }

  private:
    void Run();

    std::atomic<bool> stop_ = false;
    std::atomic<unsigned long> answered_ = 0;
    std::thread thread_;
};

}  // namespace test_support
