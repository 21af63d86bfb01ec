// The base of the sources of a run loop, and the two kinds.
#pragma once

#include <CoreFoundation/CFRunLoop.h>

#include <cstdint>
#include <functional>
#include <vector>

#include "platform/CoreFoundation/Runtime/CFObject.h"

namespace run_loop {

using core_foundation::Retained;

class RunLoop;
struct Mode;

// All members that are not constant are guarded by StructureMutex(), unless they say otherwise.
class Source : public core_foundation::Object {
  public:
    static CFTypeID TypeID() { return CFRunLoopSourceGetTypeID(); }
    CFTypeID Type() const override { return TypeID(); }
    CFRunLoopSourceRef Ref() const {
        return static_cast<CFRunLoopSourceRef>(const_cast<void*>(Reference()));
    }

    CFIndex Order() const { return order_; }
    bool IsValid() const { return valid_; }

    // Removes the source from every loop permanently. The mutex is not held.
    void Invalidate();

    // Whether a mode with this source has something to wait for.
    virtual bool OccupiesMode() const { return true; }

    // The source enters a mode or leaves it; what it waits for is added to the mode's poller.
    virtual void Enter(Mode&) {}
    virtual void Leave(Mode&) {}

    // A loop has added the source to a mode, or removed it. The mutex is not held.
    virtual void Scheduled(RunLoop&, CFRunLoopMode) {}
    virtual void Cancelled(RunLoop&, CFRunLoopMode) {}

    struct Placement {
        RunLoop* loop;
        Mode* mode;
    };
    std::vector<Placement> placements;

    // Has work to do that no descriptor announces.
    bool signalled = false;

  protected:
    explicit Source(CFIndex order) : order_(order) {}
    void Finalize() override { Invalidate(); }

    // The source will never be performed again. The mutex is not held.
    virtual void Invalidated() {}

  private:
    const CFIndex order_;
    bool valid_ = true;
};

// Performed because it was signalled.
class SignalledSource final : public Source {
  public:
    SignalledSource(CFIndex order, const CFRunLoopSourceContext& context);

    void Perform();  // the mutex is not held
    void Scheduled(RunLoop& loop, CFRunLoopMode mode) override;
    void Cancelled(RunLoop& loop, CFRunLoopMode mode) override;

  private:
    void Invalidated() override;

    const CFRunLoopSourceContext context_;
};

// Performed because a descriptor it watches is ready; see RunLoopDescriptorSource.h.
class DescriptorSource final : public Source {
  public:
    // Returns whether this counts as a handled source.
    using Handler = std::function<bool(int descriptor, std::uint32_t events)>;

    DescriptorSource(CFIndex order, bool occupiesMode, Handler handler)
        : Source(order), occupiesMode_(occupiesMode), handler_(std::move(handler)) {}

    struct Watch {
        int descriptor;
        std::uint32_t events;
        std::uint64_t token;
    };
    std::vector<Watch> watches;

    bool OccupiesMode() const override { return occupiesMode_; }
    void Enter(Mode& mode) override;
    void Leave(Mode& mode) override;
    // The mutex is not held.
    bool Perform(int descriptor, std::uint32_t events) { return handler_(descriptor, events); }

  private:
    const bool occupiesMode_;
    const Handler handler_;
};

}  // namespace run_loop
