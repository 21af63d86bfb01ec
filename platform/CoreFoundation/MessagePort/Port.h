// The base of local and remote ports: a name, validity, and what happens when it ends.
#pragma once

#include <CoreFoundation/CFMessagePort.h>

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "platform/CoreFoundation/RunLoop/RunLoopDescriptorSource.h"
#include "platform/CoreFoundation/Runtime/CFObject.h"

namespace message_port {

using core_foundation::Retained;

class Port : public core_foundation::Object {
  public:
    static CFTypeID TypeID() { return CFMessagePortGetTypeID(); }
    CFTypeID Type() const override { return TypeID(); }
    CFMessagePortRef Ref() const {
        return static_cast<CFMessagePortRef>(const_cast<void*>(Reference()));
    }
    ~Port() override;

    virtual bool IsRemote() const = 0;

    // Whether the port can still be used; a remote one checks whether its peer is there.
    virtual bool IsValid() { return valid_; }

    // The first call invalidates the port permanently and calls the invalidation callback.
    void Invalidate();

    // A port that has ended already calls back at once.
    void SetInvalidationCallBack(CFMessagePortInvalidationCallBack callback);

    const std::string& RegisteredName() const { return registeredName_; }
    CFStringRef Name() const { return name_; }  // null: none

  protected:
    // A nameless port has an empty registered name.
    explicit Port(std::string registeredName);

    void Finalize() override;

    // Closes the socket and ends all waiting for it.
    virtual void End() = 0;
    // The argument of the invalidation callback.
    virtual void* Info() const { return nullptr; }
    // After the invalidation callback.
    virtual void ReleaseInfo() {}

    // A descriptor of the port is ready, as run_loop::ReadinessHandler has it. The port is valid.
    virtual bool Ready(int descriptor, std::uint32_t events) = 0;
    // A source that calls Ready(). It does not keep the port alive, but a call that has begun does.
    CFRunLoopSourceRef CreateDescriptorSource(CFIndex order, run_loop::Presence presence);

    bool StillValid() const { return valid_; }

  private:
    struct Link;

    const std::string registeredName_;
    CFStringRef name_ = nullptr;
    std::atomic<bool> valid_ = true;
    std::atomic<CFMessagePortInvalidationCallBack> invalidated_ = nullptr;
    std::shared_ptr<Link> link_;
};

}  // namespace message_port
