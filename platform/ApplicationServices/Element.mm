#include "platform/ApplicationServices/Element.h"

#import <Foundation/Foundation.h>

#include <limits>

#include "platform/CoreFoundation/Runtime/CFRuntime.h"
#include "platform/DesktopLink/Session.h"

// Immutable except for its time-out, which belongs to the object and not to the control.
@interface AXUIElementObject : NSObject <NSCopying> {
  @public
    uint64_t _identifier;
    int32_t _pid;
    float _timeout;  // seconds; 0: the process's
}
@end

namespace {

constexpr uint64_t kSystemWideIdentifier = std::numeric_limits<uint64_t>::max();

float processTimeout = 0;  // seconds; 0: the session's

Class ElementClass() {
    static const Class elementClass = [AXUIElementObject class];
    return elementClass;
}

AXUIElementObject* Object(AXUIElementRef element) {
    return (AXUIElementObject*)element;
}

AXUIElementRef Create(pid_t pid, uint64_t identifier) {
    auto* object = static_cast<AXUIElementObject*>(NSAllocateObject(ElementClass(), 0, nullptr));
    object->_pid = pid;
    object->_identifier = identifier;
    return (AXUIElementRef)object;
}

}  // namespace

@implementation AXUIElementObject

- (CFTypeID)cfTypeID {
    return AXUIElementGetTypeID();
}

- (BOOL)isEqual:(id)other {
    if (!application_services::IsElement((CFTypeRef)other)) {
        return NO;
    }
    AXUIElementObject* element = other;
    return _identifier == element->_identifier && _pid == element->_pid;
}

- (NSUInteger)hash {
    return (NSUInteger)((_identifier << 20) ^ (uint64_t)(uint32_t)_pid);
}

- (id)copyWithZone:(NSZone*)zone {
    (void)zone;
    return [self retain];
}

- (NSString*)description {
    return
        [NSString stringWithFormat:@"<AXUIElement %d/%llu>", _pid, (unsigned long long)_identifier];
}

@end

namespace application_services {

bool IsElement(CFTypeRef object) {
    return object != nullptr && object_getClass((id)object) == ElementClass();
}

AXUIElementRef CreateElement(const desktop_link::ElementReference& reference) {
    return Create(reference.pid, reference.id);
}

desktop_link::ElementReference ReferenceOf(AXUIElementRef element) {
    const AXUIElementObject* object = Object(element);
    return {object->_pid, object->_identifier};
}

bool IsSystemWide(AXUIElementRef element) {
    return Object(element)->_identifier == kSystemWideIdentifier;
}

double TimeoutOf(AXUIElementRef element) {
    if (const float own = Object(element)->_timeout; own > 0) {
        return own;
    }
    return processTimeout > 0 ? processTimeout : desktop_link::MessagingTimeout();
}

}  // namespace application_services

using application_services::IsElement;

CFTypeID AXUIElementGetTypeID() {
    static const CFTypeID type = core_foundation::RegisterType("AXUIElement");
    return type;
}

AXUIElementRef AXUIElementCreateApplication(pid_t pid) {
    return Create(pid, 0);
}

AXUIElementRef AXUIElementCreateSystemWide() {
    return Create(0, kSystemWideIdentifier);
}

AXError AXUIElementGetPid(AXUIElementRef element, pid_t* pid) {
    if (!IsElement(element) || pid == nullptr) {
        return kAXErrorIllegalArgument;
    }
    *pid = Object(element)->_pid;
    return kAXErrorSuccess;
}

AXError AXUIElementSetMessagingTimeout(AXUIElementRef element, float timeoutInSeconds) {
    if (!IsElement(element) || !(timeoutInSeconds >= 0)) {
        return kAXErrorIllegalArgument;
    }
    if (application_services::IsSystemWide(element)) {
        processTimeout = timeoutInSeconds;
    } else {
        Object(element)->_timeout = timeoutInSeconds;
    }
    return kAXErrorSuccess;
}
