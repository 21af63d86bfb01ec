// Core Foundation types that are implemented in C++. The Foundation object that a reference points
// to is a thin wrapper around the C++ object; both have the same lifetime.
#pragma once

#include <CoreFoundation/CFBase.h>

#include <atomic>
#include <utility>

#include "platform/CoreFoundation/Runtime/CFRuntime.h"

namespace core_foundation {

// A derived class names its type by a static member `TypeID()` as well. It is made with `new`, with
// one reference that belongs to its creator, and deleted by the last Release(). Any thread.
class Object {
  public:
    Object(const Object&) = delete;
    Object& operator=(const Object&) = delete;
    virtual ~Object() = default;

    virtual CFTypeID Type() const = 0;

    CFTypeRef Reference() const { return shell_; }
    void Retain() { references_.fetch_add(1, std::memory_order_relaxed); }
    void Release();
    long References() const { return references_.load(std::memory_order_relaxed); }

    // Retains unless the last reference has been released. For finding an object through a pointer
    // that does not keep it alive; such a pointer is cleared in Finalize().
    bool TryRetain();

  protected:
    Object();

    // The last reference has been released. The object may still be passed to callbacks, which may
    // retain and release it.
    virtual void Finalize() {}

  private:
    CFTypeRef shell_;
    std::atomic<long> references_ = 1;
};

// The C++ object behind a reference, which must be of that type.
Object* ObjectBehind(CFTypeRef reference);

template <typename T>
T& Implementation(CFTypeRef reference, const char* function) {
    if (reference == nullptr) {
        Stop(function, "null argument");
    }
    Object* object = ObjectBehind(reference);
    if (object == nullptr || object->Type() != T::TypeID()) {
        Stop(function, "argument of another type");
    }
    return static_cast<T&>(*object);
}

// A pointer that retains.
template <typename T>
class Retained {
  public:
    Retained() = default;
    explicit Retained(T* object) : object_(object) {
        if (object_ != nullptr) {
            object_->Retain();
        }
    }
    Retained(const Retained& other) : Retained(other.object_) {}
    Retained(Retained&& other) noexcept : object_(std::exchange(other.object_, nullptr)) {}
    Retained& operator=(Retained other) noexcept {
        std::swap(object_, other.object_);
        return *this;
    }
    ~Retained() {
        if (object_ != nullptr) {
            object_->Release();
        }
    }

    // Takes over a reference that the caller owns.
    static Retained Adopt(T* object) {
        Retained retained;
        retained.object_ = object;
        return retained;
    }

    // The object with one more reference, which belongs to the caller.
    T* HandOver() const {
        object_->Retain();
        return object_;
    }

    T* get() const { return object_; }
    T* operator->() const { return object_; }
    T& operator*() const { return *object_; }
    explicit operator bool() const { return object_ != nullptr; }
    friend bool operator==(const Retained& retained, const T* object) {
        return retained.object_ == object;
    }

  private:
    T* object_ = nullptr;
};

}  // namespace core_foundation
