#include "platform/CoreFoundation/Runtime/CFObject.h"

#import <Foundation/Foundation.h>

@interface KRTObjectShell : NSObject {
  @public
    core_foundation::Object* object;
}
@end

@implementation KRTObjectShell

- (id)retain {
    object->Retain();
    return self;
}

- (oneway void)release {
    object->Release();
}

- (NSUInteger)retainCount {
    return (NSUInteger)object->References();
}

- (CFTypeID)cfTypeID {
    return object->Type();
}

- (void)dealloc {
    delete object;
    [super dealloc];
}

@end

namespace core_foundation {
namespace {

// Added to the count of an object whose last reference was released: retains and releases by
// callbacks never bring it to zero again.
constexpr long kFinalizing = 1L << 40;

}  // namespace

Object::Object() {
    KRTObjectShell* shell = [[KRTObjectShell alloc] init];
    shell->object = this;
    shell_ = (CFTypeRef)shell;
}

void Object::Release() {
    if (references_.fetch_sub(1, std::memory_order_acq_rel) != 1) {
        return;
    }
    references_.fetch_add(kFinalizing, std::memory_order_relaxed);
    Finalize();
    [(KRTObjectShell*)shell_ dealloc];
}

bool Object::TryRetain() {
    long count = references_.load(std::memory_order_relaxed);
    while (count > 0 && count < kFinalizing) {
        if (references_.compare_exchange_weak(count, count + 1, std::memory_order_acquire)) {
            return true;
        }
    }
    return false;
}

Object* ObjectBehind(CFTypeRef reference) {
    id object = (id)reference;
    return [object isKindOfClass:[KRTObjectShell class]] ? ((KRTObjectShell*)object)->object
                                                         : nullptr;
}

}  // namespace core_foundation
