// Gestures and keys that requests have begun and not ended.
#pragma once

#include <map>
#include <optional>
#include <vector>

#include "tools/Request.h"

namespace krt9ctl {

class Unreleased {
  public:
    // A request that may have reached the driver.
    void Note(const Request& request);

    // The requests that release what is still pressed: the end of the gesture at the place of its
    // last step, and then the keys.
    std::vector<Request> Releases() const;

  private:
    std::optional<Bytes> gesture_;         // the body of its last step
    std::map<std::uint32_t, Bytes> keys_;  // by key code, the bodies that pressed them
};

}  // namespace krt9ctl
