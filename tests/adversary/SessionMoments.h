// The moments at which a session can change under a request in progress: inside each attribute
// read, of which one exchange may hold several, and before and after each setting and action.
#pragma once

#include <functional>

#include "tests/support/ScriptedDesktop.h"

namespace adversary {

class SessionMoments {
  public:
    // Calls back at every moment, counted from 1, for the lifetime of the object. It takes the
    // desktop's hooks, which must not be restarted meanwhile.
    SessionMoments(test_support::ScriptedDesktop& desktop,
                   std::function<void(unsigned moment)> happen);
    ~SessionMoments();
    SessionMoments(const SessionMoments&) = delete;
    SessionMoments& operator=(const SessionMoments&) = delete;

    unsigned Count() const { return count_; }

  private:
    void Pass();

    test_support::ScriptedDesktop& desktop_;
    std::function<void(unsigned moment)> happen_;
    unsigned count_ = 0;
};

}  // namespace adversary
