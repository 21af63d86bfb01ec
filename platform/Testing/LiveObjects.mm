#include "platform/Testing/LiveObjects.h"

#import <Foundation/Foundation.h>
#import <Foundation/NSDebug.h>
#include <objc/runtime.h>

#include <mutex>
#include <unordered_map>

namespace platform_testing {
namespace {

struct Tally {
    std::mutex mutex;
    std::unordered_map<Class, long> counts;
};

// Never destroyed: objects are destroyed until the process ends.
Tally& TheTally() {
    static Tally& tally = *new Tally;
    return tally;
}

void Count(Class type, long change) {
    Tally& tally = TheTally();
    const std::lock_guard lock(tally.mutex);
    tally.counts[type] += change;
}

// The pools themselves are left out: GNUstep keeps some for later.
bool IsMachinery(Class type) {
    return type == [NSAutoreleasePool class];
}

void ObjectWasMade(Class type, id) {
    Count(type, 1);
}
void ObjectDied(Class type, id) {
    Count(type, -1);
}

void StartCounting() {
    static const bool started = [] {
        GSSetDebugAllocationFunctions(ObjectWasMade, ObjectDied);
        GSDebugAllocationActive(YES);
        return true;
    }();
    (void)started;
}

}  // namespace

ObjectCounts LiveObjects() {
    StartCounting();
    Tally& tally = TheTally();
    const std::lock_guard lock(tally.mutex);
    ObjectCounts counts;
    for (const auto& [type, count] : tally.counts) {
        if (count != 0 && !IsMachinery(type)) {
            counts[class_getName(type)] = count;
        }
    }
    return counts;
}

long LiveObjectTotal() {
    long total = 0;
    for (const auto& [name, count] : LiveObjects()) {
        total += count;
    }
    return total;
}

ObjectCounts Growth(const ObjectCounts& earlier, const ObjectCounts& later) {
    ObjectCounts growth = later;
    for (const auto& [name, count] : earlier) {
        growth[name] -= count;
    }
    std::erase_if(growth, [](const auto& entry) { return entry.second == 0; });
    return growth;
}

std::string LeftOverBy(const std::function<void()>& operation, int repetitions) {
    const auto runOnce = [&operation] {
        const AutoreleasePool pool;
        operation();
    };
    runOnce();
    const ObjectCounts earlier = LiveObjects();
    for (int repetition = 0; repetition < repetitions; ++repetition) {
        runOnce();
    }
    std::string description;
    for (const auto& [name, count] : Growth(earlier, LiveObjects())) {
        description += (description.empty() ? "" : ", ") + name + (count > 0 ? " +" : " ") +
                       std::to_string(count);
    }
    return description;
}

AutoreleasePool::AutoreleasePool() : pool_([[NSAutoreleasePool alloc] init]) {}

AutoreleasePool::~AutoreleasePool() {
    [(NSAutoreleasePool*)pool_ drain];
}

}  // namespace platform_testing
