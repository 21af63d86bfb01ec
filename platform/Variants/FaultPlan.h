// Which of the next calls of some kinds are to fail.
#pragma once

#include <map>
#include <set>

namespace platform_testing {

template <typename Kind>
class FaultPlan {
  public:
    // The n-th call from now on; 1 is the next one.
    void Fail(Kind kind, unsigned long nth) {
        Calls& calls = calls_[kind];
        calls.failing.insert(calls.count + nth);
    }

    void Forget() { calls_.clear(); }

    // Counts this call.
    bool Fails(Kind kind) {
        if (calls_.empty()) {
            return false;
        }
        Calls& calls = calls_[kind];
        ++calls.count;
        return calls.failing.erase(calls.count) > 0;
    }

  private:
    struct Calls {
        unsigned long count = 0;
        std::set<unsigned long> failing;  // ordinals, counted like `count`
    };
    std::map<Kind, Calls> calls_;
};

}  // namespace platform_testing
