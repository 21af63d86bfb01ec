// What this process allocates on the heap while a meter exists, by whichever function: operator
// new, malloc, and the Objective-C runtime.
#pragma once

#include <cstddef>

namespace adversary {

struct Allocations {
    std::size_t count = 0;
    std::size_t largest = 0;  // bytes, the largest single one
    std::size_t total = 0;    // bytes, freed or not
    std::size_t peak = 0;     // bytes, the most that lived at one time beyond what lived before
    long live = 0;            // bytes, what lives now beyond what lived before
};

// One at a time; counts what every thread allocates.
class AllocationMeter {
  public:
    AllocationMeter();
    ~AllocationMeter();
    AllocationMeter(const AllocationMeter&) = delete;
    AllocationMeter& operator=(const AllocationMeter&) = delete;

    Allocations SoFar() const;
};

}  // namespace adversary
