// One operation of the driver, run in a session that turns against it.
//
// Each run returns what was wrong with it, empty when nothing was: the driver must have asked
// exactly what its rules require after the answers that it got, have derived from them what they
// require, and have left no object behind; and it must still work afterwards.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "tests/adversary/Faults.h"
#include "tests/adversary/Operations.h"

namespace adversary {

class AttackedOperation {
  public:
    AttackedOperation(DriverUnderAttack& driver, DriverOperation operation)
        : driver_(driver), operation_(std::move(operation)) {}

    // Undisturbed. Exchanges() and Moments() are then those of a run without faults.
    std::string RunClean();
    const std::vector<Exchange>& Exchanges() const { return exchanges_; }
    unsigned Moments() const { return moments_; }

    // The event happens at that moment, counted from 1.
    std::string RunWith(const Event& event, const std::string& control, unsigned moment);

    using Falsify = std::function<void(std::optional<desktop_link::Reply>& reply)>;
    std::string RunWithReply(std::size_t exchange, const Falsify& falsify);

    // After a run that went wrong nothing is known of the driver any more.
    void LoseTrack();

  private:
    void Begin();
    void Remember();
    std::string RunAndCompare();
    std::string RunAgain(const char* when);
    std::string ProblemOfState();

    DriverUnderAttack& driver_;
    DriverOperation operation_;
    std::vector<Exchange> exchanges_;
    unsigned moments_ = 0;
    bool sceneIsLost_ = true;
};

}  // namespace adversary
