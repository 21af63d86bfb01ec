// Which Foundation and Core Foundation objects exist: what one input leaves over is found at once,
// by the class of the object, even when something still points to it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>

namespace fuzz {

// Runs `input` in an autorelease pool. When objects are left over it runs again, and ends the
// process if more are left over this time: a cache fills once, a leak grows.
void RunWithoutGrowth(const std::function<void()>& input);

// Releases what the selection of a radio button keeps on purpose: of the objects made by `request`
// that are referred to by no other one, at most one element and one array, each once. `request`
// runs in an autorelease pool of its own.
void ReleaseKeptRadioGroup(const std::function<void()>& request);

}  // namespace fuzz
