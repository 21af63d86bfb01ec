// What timers and observers of a run loop have in common: they are in modes of one loop.
#pragma once

#include <utility>
#include <vector>

#include "platform/CoreFoundation/Runtime/CFObject.h"

namespace run_loop {

class RunLoop;
struct Mode;

// All of it is guarded by StructureMutex().
class LoopMember : public core_foundation::Object {
  public:
    bool IsOf(const RunLoop& loop) const { return loop_ == &loop; }
    bool MayJoin(const RunLoop& loop) const { return loop_ == nullptr || loop_ == &loop; }
    bool IsIn(const Mode& mode) const;

    void Join(RunLoop& loop, Mode& mode);
    // Returns whether that was the last of its modes: then it belongs to no loop any more.
    bool Leave(Mode& mode);

    struct Membership {
        RunLoop* loop = nullptr;  // its one loop
        std::vector<Mode*> modes;
    };
    // Ends all of it; returns what it was.
    Membership LeaveAll() { return {std::exchange(loop_, nullptr), std::exchange(modes_, {})}; }

  private:
    RunLoop* loop_ = nullptr;
    std::vector<Mode*> modes_;
};

}  // namespace run_loop
