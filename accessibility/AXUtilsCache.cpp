#include <vector>

#include "VEKCommon/ConsoleLog.h"
#include "VEKCommon/OwnedReference.h"
#include "accessibility/VEK_C_AXUtils.h"
#include "frontapplication/FrontApplication.h"

CFArrayRef VEK_C_AXUtils::sMultipleAttributes = nullptr;

namespace {

constexpr CFIndex kCacheCapacity = 20;

// A dictionary with one entry holds no more than the application's identifier. Only one with more
// entries counts as keyed, and takes elements.
constexpr CFIndex kKeyedThreshold = 1;

// Borrowed; null when the front application has none.
CFStringRef FrontBundleIdentifier() {
    CFStringRef identifier = nullptr;
    return CFWorkspace_FrontApplicationBundleID(&identifier) ? identifier : nullptr;
}

}  // namespace

// Without callbacks: keys are compared by address, and nothing is retained.
VEK_C_AXUtils::VEK_C_AXUtils()
    : cache_(CFDictionaryCreateMutable(kCFAllocatorDefault, kCacheCapacity, nullptr, nullptr)) {
    if (sMultipleAttributes == nullptr) {
        sMultipleAttributes = CreateAttributesFromWindows();
    }
}

VEK_C_AXUtils::~VEK_C_AXUtils() {
    CFRelease(cache_);
    if (sMultipleAttributes != nullptr) {
        CFRelease(sMultipleAttributes);
        sMultipleAttributes = nullptr;
    }
    KeepApplicationIdentifier(nullptr);
}

CFMutableDictionaryRef VEK_C_AXUtils::CachedElementsForApplication(CFStringRef bundleIdentifier) {
    if (CFDictionaryGetCount(cache_) > kKeyedThreshold) {
        auto keyedFor =
            static_cast<CFStringRef>(CFDictionaryGetValue(cache_, kVEK_CF_Key_Application_ID));
        if (keyedFor != nullptr && bundleIdentifier != nullptr &&
            CFEqual(keyedFor, bundleIdentifier)) {
            return cache_;
        }
        CFDictionaryRemoveAllValues(cache_);
    }
    KeepApplicationIdentifier(bundleIdentifier);
    CFDictionarySetValue(cache_, kVEK_CF_Key_Application_ID, bundleIdentifier);
    return cache_;
}

void VEK_C_AXUtils::KeepApplicationIdentifier(CFStringRef identifier) {
    if (identifier != nullptr) {
        CFRetain(identifier);
    }
    if (applicationIdentifier_ != nullptr) {
        CFRelease(applicationIdentifier_);
    }
    applicationIdentifier_ = identifier;
}

// A cache that has just been keyed holds one entry and so takes no element. That is deliberate.
void VEK_C_AXUtils::CacheElement(AXUIElementRef element, CFStringRef identifier) {
    CFStringRef application = FrontBundleIdentifier();
    if (application == nullptr) {
        return;
    }
    CFMutableDictionaryRef cache = CachedElementsForApplication(application);
    if (CFDictionaryGetCount(cache) > kKeyedThreshold) {
        CFDictionarySetValue(cache, identifier, element);
    }
}

void VEK_C_AXUtils::UncacheElement(CFStringRef identifier) {
    CFStringRef application = FrontBundleIdentifier();
    if (application != nullptr) {
        CFDictionaryRemoveValue(CachedElementsForApplication(application), identifier);
    }
}

void VEK_C_AXUtils::ResetFrontApplicationCache() {
    CFStringRef application = FrontBundleIdentifier();
    if (application != nullptr) {
        ResetCacheForApplication(application);
    }
}

void VEK_C_AXUtils::ResetCacheForApplication(CFStringRef bundleIdentifier) {
    CFDictionaryRemoveAllValues(CachedElementsForApplication(bundleIdentifier));
    KeepApplicationIdentifier(nullptr);
}

// The dictionary does not own its keys: the caller makes sure that they are alive.
void VEK_C_AXUtils::DebugCache(CFDictionaryRef cache, const char* tag) {
    std::vector<const void*> keys(static_cast<std::size_t>(CFDictionaryGetCount(cache)));
    CFDictionaryGetKeysAndValues(cache, keys.data(), nullptr);
    OwnedReference<CFArrayRef> keyArray(CFArrayCreate(kCFAllocatorDefault, keys.data(),
                                                      static_cast<CFIndex>(keys.size()),
                                                      &kCFTypeArrayCallBacks));
    ConsoleLog(CFSTR("cache:debug (%p) %s %@"), cache, tag, keyArray.get());
}

void VEK_C_AXUtils::SetDebugLevel(unsigned int level) {
    searchLevel_ = level;
}
