// A Core Foundation object that a test owns.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include <utility>

namespace test_support {

template <typename Reference>
class OwnedObject {
  public:
    OwnedObject() = default;
    OwnedObject(Reference object) : object_(object) {}
    OwnedObject(OwnedObject&& other) noexcept : object_(std::exchange(other.object_, nullptr)) {}
    OwnedObject& operator=(OwnedObject&&) = delete;
    ~OwnedObject() { Reset(); }

    operator Reference() const { return object_; }
    Reference get() const { return object_; }

    // For calls that return an object by a pointer.
    Reference* Out() {
        Reset();
        return &object_;
    }

  private:
    void Reset() {
        if (object_ != nullptr) {
            CFRelease(object_);
        }
        object_ = nullptr;
    }

    Reference object_ = nullptr;
};

}  // namespace test_support
