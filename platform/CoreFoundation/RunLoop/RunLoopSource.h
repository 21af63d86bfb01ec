// The base of the sources of a run loop, and the two kinds.
#pragma once

#include <CoreFoundation/CFRunLoop.h>

#include <cstdint>
#include <functional>
#include <utility>
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

    // It has entered the mode, or left it.
    void Placed(RunLoop& loop, Mode& mode);
    void Displaced(const Mode& mode);

    // Whether it has work to do that no descriptor announces.
    bool IsSignalled() const { return signalled_; }
    void SetSignalled(bool signalled) { signalled_ = signalled; }
    bool TakeSignal() { return std::exchange(signalled_, false); }  // whether there was one

  protected:
    struct Placement {
        RunLoop* loop;
        Mode* mode;
    };
    const std::vector<Placement>& Placements() const { return placements_; }

    explicit Source(CFIndex order) : order_(order) {}
    void Finalize() override { Invalidate(); }

    // The source will never be performed again. The mutex is not held.
    virtual void Invalidated() {}

  private:
    const CFIndex order_;
    bool valid_ = true;
    bool signalled_ = false;
    std::vector<Placement> placements_;
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

    // Watches the descriptor for those events of epoll(7), in the place of others; or no more.
    void Watch(int descriptor, std::uint32_t events);
    void Unwatch(int descriptor);

    // The descriptor that is watched under the token; -1 for none.
    int DescriptorOf(std::uint64_t token) const;

    bool OccupiesMode() const override { return occupiesMode_; }
    void Enter(Mode& mode) override;
    void Leave(Mode& mode) override;
    // The mutex is not held.
    bool Perform(int descriptor, std::uint32_t events) { return handler_(descriptor, events); }

  private:
    struct Watched {
        int descriptor;
        std::uint32_t events;
        std::uint64_t token;
    };
    std::vector<Watched>::iterator Find(int descriptor);

    std::vector<Watched> watches_;
    const bool occupiesMode_;
    const Handler handler_;
};

}  // namespace run_loop
