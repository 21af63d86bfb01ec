// A Core Foundation object that a test owns: it passes for its reference, and takes one from calls
// that return it by a pointer.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include "VEKCommon/OwnedReference.h"

namespace test_support {

template <typename Reference>
class OwnedObject {
  public:
    OwnedObject() = default;
    OwnedObject(Reference object) : object_(object) {}

    operator Reference() const { return object_.get(); }
    Reference get() const { return object_.get(); }

    // Where the call writes its object, which this one owns at the end of the expression.
    class Place {
      public:
        explicit Place(OwnedReference<Reference>& owner) : owner_(owner) {}
        Place(const Place&) = delete;
        Place& operator=(const Place&) = delete;
        ~Place() { owner_.reset(written_); }

        operator Reference*() { return &written_; }

      private:
        OwnedReference<Reference>& owner_;
        Reference written_ = nullptr;
    };
    Place Out() { return Place(object_); }

  private:
    OwnedReference<Reference> object_;
};

}  // namespace test_support
