#include "fuzz/ObjectLedger.h"

#import <Foundation/Foundation.h>
#import <Foundation/NSDebug.h>
#include <objc/runtime.h>

#include <ApplicationServices/ApplicationServices.h>

#include <cstdio>
#include <cstdlib>
#include <map>
#include <unordered_map>
#include <vector>

namespace fuzz {

namespace {

// The objects that exist, each by its address and with its number in the order of creation. The
// bits of the addresses are inverted, so that the leak sanitizer does not take them for references.
struct Ledger {
    std::unordered_map<std::uintptr_t, std::uint64_t> numbers;
    std::uint64_t made = 0;
};

Ledger& TheLedger() {
    static Ledger& ledger = *new Ledger;
    return ledger;
}

std::uintptr_t Inverted(id object) {
    return ~reinterpret_cast<std::uintptr_t>(object);
}

void ObjectWasMade(Class type, id object) {
    // Foundation keeps pools for reuse, which is not a leak.
    if (type != [NSAutoreleasePool class]) {
        TheLedger().numbers[Inverted(object)] = ++TheLedger().made;
    }
}

void ObjectDied(Class, id object) {
    TheLedger().numbers.erase(Inverted(object));
}

void Start() {
    static const bool started = [] {
        GSSetDebugAllocationFunctions(ObjectWasMade, ObjectDied);
        GSDebugAllocationActive(YES);
        return true;
    }();
    (void)started;
}

std::vector<id> MadeSince(std::uint64_t number) {
    std::vector<id> objects;
    for (const auto& [inverted, made] : TheLedger().numbers) {
        if (made > number) {
            objects.push_back(reinterpret_cast<id>(~inverted));
        }
    }
    return objects;
}

[[noreturn]] void FailWithLeftOver(std::uint64_t number) {
    std::map<std::string, int> classes;
    for (id object : MadeSince(number)) {
        ++classes[class_getName(object_getClass(object))];
    }
    for (const auto& [name, count] : classes) {
        std::fprintf(stderr, "left over: %d of %s\n", count, name.c_str());
    }
    std::abort();
}

void RunInPool(const std::function<void()>& work) {
    NSAutoreleasePool* pool = [[NSAutoreleasePool alloc] init];
    work();
    [pool drain];
}

// How often each object is referred to by the containers among them.
std::map<id, NSUInteger> InnerReferences(const std::vector<id>& objects) {
    std::map<id, NSUInteger> references;
    for (id object : objects) {
        if ([object isKindOfClass:[NSArray class]]) {
            const CFIndex count = CFArrayGetCount((CFArrayRef)object);
            for (CFIndex index = 0; index < count; ++index) {
                ++references[(id)CFArrayGetValueAtIndex((CFArrayRef)object, index)];
            }
        } else if ([object isKindOfClass:[NSDictionary class]]) {
            const auto count =
                static_cast<std::size_t>(CFDictionaryGetCount((CFDictionaryRef)object));
            std::vector<const void*> keys(count);
            std::vector<const void*> values(count);
            CFDictionaryGetKeysAndValues((CFDictionaryRef)object, keys.data(), values.data());
            for (std::size_t index = 0; index < count; ++index) {
                ++references[(id)keys[index]];
                ++references[(id)values[index]];
            }
        }
    }
    return references;
}

bool IsElement(id object) {
    return CFGetTypeID((CFTypeRef)object) == AXUIElementGetTypeID();
}

bool IsArray(id object) {
    return [object isKindOfClass:[NSArray class]];
}

}  // namespace

void RunWithoutGrowth(const std::function<void()>& input) {
    Start();
    const std::size_t before = TheLedger().numbers.size();
    RunInPool(input);
    if (TheLedger().numbers.size() <= before) {
        return;
    }
    const std::size_t cached = TheLedger().numbers.size();
    const std::uint64_t number = TheLedger().made;
    RunInPool(input);
    if (TheLedger().numbers.size() > cached) {
        FailWithLeftOver(number);
    }
}

void ReleaseKeptRadioGroup(const std::function<void()>& request) {
    const std::uint64_t number = TheLedger().made;
    RunInPool(request);
    const std::vector<id> objects = MadeSince(number);
    const std::map<id, NSUInteger> inner = InnerReferences(objects);
    id group = nil;
    id children = nil;
    for (id object : objects) {
        const auto found = inner.find(object);
        const NSUInteger references = found == inner.end() ? 0 : found->second;
        if ([object retainCount] != references + 1) {
            continue;
        }
        if (group == nil && IsElement(object)) {
            group = object;
        } else if (children == nil && IsArray(object)) {
            children = object;
        }
    }
    [children release];
    [group release];
}

}  // namespace fuzz
