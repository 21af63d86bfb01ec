// Writes down what krt9ctl and the driver say to each other, as a recorded session.
#pragma once

#include <chrono>
#include <string>
#include <vector>

#include "tools/Conversation.h"
#include "tools/report/Listener.h"

namespace krt9ctl {

class Recorder {
  public:
    // `listener` may be null: the driver's messages are not heard then, which the recording says.
    explicit Recorder(Listener* listener);

    // Sends the request and records it with its reply, or with the reason why there is none.
    Answer Carry(const Request& request, const Send& send);

    // Records what was heard until now, with the time that has passed. Time without messages is not
    // recorded: nothing is awaited in it, and a slow computer's report would be slow to replay.
    void CatchUp();

    // The recording. `steps` are put before all others.
    std::string Text(const std::vector<std::string>& steps) const;

    std::size_t Requests() const { return requests_; }
    std::size_t Messages() const { return messages_; }

  private:
    using Clock = std::chrono::steady_clock;

    void AddOutcome(std::string_view what, std::string_view text);

    Listener* listener_;
    Clock::time_point last_ = Clock::now();  // of the last step
    std::string text_;
    std::string language_ = "en";
    std::size_t requests_ = 0;
    std::size_t messages_ = 0;
};

}  // namespace krt9ctl
