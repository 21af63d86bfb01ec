// The entries of a dictionary under its callbacks.
#pragma once

#include <CoreFoundation/CFDictionary.h>

#include <unordered_map>

namespace core_foundation {

struct KeyHash {
    CFDictionaryHashCallBack hash;
    std::size_t operator()(const void* key) const {
        return hash == nullptr ? std::hash<const void*>{}(key) : hash(key);
    }
};

struct KeyEqual {
    CFDictionaryEqualCallBack equal;
    bool operator()(const void* first, const void* second) const {
        return first == second || (equal != nullptr && equal(first, second));
    }
};

using Map = std::unordered_map<const void*, const void*, KeyHash, KeyEqual>;

template <typename CallBacks>
const void* Retained(const CallBacks& callBacks, const void* value) {
    return callBacks.retain == nullptr ? value : callBacks.retain(kCFAllocatorDefault, value);
}

template <typename CallBacks>
void Release(const CallBacks& callBacks, const void* value) {
    if (callBacks.release != nullptr) {
        callBacks.release(kCFAllocatorDefault, value);
    }
}

}  // namespace core_foundation
