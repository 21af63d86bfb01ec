// How many Foundation and Core Foundation objects exist: evidence that an operation leaks nothing.
//
// Counting begins with the first call of any of these functions; objects made before it are not
// counted. Objects of every class are, whoever defines it. Immortal objects are not.
#pragma once

#include <functional>
#include <map>
#include <string>

namespace platform_testing {

// Class name -> objects alive now. A class whose objects from before counting were destroyed since
// has a negative number; a class with none is omitted.
using ObjectCounts = std::map<std::string, long>;

ObjectCounts LiveObjects();
long LiveObjectTotal();

// What exists at `later` and did not before, by class; empty when nothing was left over.
ObjectCounts Growth(const ObjectCounts& earlier, const ObjectCounts& later);

// Runs the operation once, so that Foundation's caches fill, then `repetitions` times, each in an
// autorelease pool of its own, and returns what those left over: nothing, or one line such as
// "GSCInlineString +10, TypedNumber +10".
std::string LeftOverBy(const std::function<void()>& operation, int repetitions = 10);

// An autorelease pool for the lifetime of this object; for tests that are not Objective-C++.
class AutoreleasePool {
  public:
    AutoreleasePool();
    ~AutoreleasePool();
    AutoreleasePool(const AutoreleasePool&) = delete;
    AutoreleasePool& operator=(const AutoreleasePool&) = delete;

  private:
    void* pool_;
};

}  // namespace platform_testing
