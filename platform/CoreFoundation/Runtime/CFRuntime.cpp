#include "platform/CoreFoundation/Runtime/CFRuntime.h"

#include <cstdio>
#include <mutex>
#include <vector>

namespace core_foundation {
namespace {

struct TypeRegistry {
    std::mutex mutex;
    std::vector<const char*> names{nullptr};  // 0 is not a type
};

// Never destroyed: objects may be asked for their type while the process ends.
TypeRegistry& Registry() {
    static TypeRegistry& registry = *new TypeRegistry;
    return registry;
}

}  // namespace

CFTypeID RegisterType(const char* name) {
    TypeRegistry& registry = Registry();
    const std::lock_guard lock(registry.mutex);
    registry.names.push_back(name);
    return registry.names.size() - 1;
}

const char* TypeName(CFTypeID type) {
    TypeRegistry& registry = Registry();
    const std::lock_guard lock(registry.mutex);
    return type < registry.names.size() ? registry.names[type] : nullptr;
}

void Stop(const char* function, const char* problem) {
    std::fprintf(stderr, "%s: %s\n", function, problem);
    __builtin_trap();
}

}  // namespace core_foundation
