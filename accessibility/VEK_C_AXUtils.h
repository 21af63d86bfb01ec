// Finds controls of the front application by identifier and role, and reads and writes their
// values.
//
// Operations named Copy... return an object that the caller releases, or null;
// CopySibling(children, role) is the one exception. Main thread only.
#pragma once

#include <ApplicationServices/ApplicationServices.h>
#include <CoreFoundation/CoreFoundation.h>

#include "accessibility/ElementQuery.h"

// The cache's entry for the bundle identifier of the application that the cache belongs to.
#define kVEK_CF_Key_Application_ID CFSTR("VEKAPPID")

class VEK_C_AXUtils {
  public:
    VEK_C_AXUtils();
    virtual ~VEK_C_AXUtils();
    VEK_C_AXUtils(const VEK_C_AXUtils&) = delete;
    VEK_C_AXUtils& operator=(const VEK_C_AXUtils&) = delete;

    // --- Cache: maps identifiers, compared by address, to elements; retains neither. No search
    // --- consults it, and it never holds an element: see CacheElement.

    // Returns the cache, keyed for that application; empties it first if it was keyed for another.
    CFMutableDictionaryRef CachedElementsForApplication(CFStringRef bundleIdentifier);

    // Stores only into a cache that holds an element already.
    void CacheElement(AXUIElementRef element, CFStringRef identifier);
    void UncacheElement(CFStringRef identifier);
    void ResetFrontApplicationCache();
    void ResetCacheForApplication(CFStringRef bundleIdentifier);

    // Logs the addresses and keys. The keys must be alive.
    void DebugCache(CFDictionaryRef cache, const char* tag);

    // --- Search. Tags are 0-terminated and appear in the lines logged with `debug`.

    CFArrayRef copyFrontApplicationWindowList(bool debug, const char* tag);

    // Walks from the front application's windows down, first match in window and array order:
    // one exchange for the window list, one for each window, one for each child looked at.
    AXUIElementRef CopyElement(CFStringRef identifier, CFStringRef role, bool debug,
                               const char* tag);
    AXUIElementRef CopyElement(CFStringRef identifier, CFStringRef role, CFStringRef unused,
                               bool debug, const char* tag);  // always null

    // The same within an array of elements: true, and the element in `out`, which the caller
    // releases, when found. passThrough has no effect.
    bool CopyChild(AXUIElementRef& out, CFStringRef identifier, CFStringRef role,
                   CFArrayRef children, bool passThrough, bool debug);

    // The child at that index of the element with that identifier; null when there is none.
    AXUIElementRef CopyChild(signed long index, CFStringRef unused, CFStringRef identifier,
                             CFStringRef role);

    // The first of `children` with that role and, where given, that AXDescription.
    AXUIElementRef CopySibling(CFArrayRef children, CFStringRef role, CFStringRef description);
    AXUIElementRef CopySibling(CFArrayRef children, CFStringRef role);  // borrowed from children

    // The depth from which the log lines of CopyChild count.
    void SetDebugLevel(unsigned int level);

    // --- Values of one element. A value of another type counts as missing.

    SInt32 IntegerValueForElement(AXUIElementRef element, CFStringRef tag);  // 0 when there is none
    CFStringRef CopyStringValueForElement(AXUIElementRef element);
    CFStringRef CopyValueDescriptionForElement(AXUIElementRef element);
    CFStringRef CopyDescriptionForElement(AXUIElementRef element);

    // Sets the value and confirms it; true when both succeeded.
    bool SetStringValueForElement(AXUIElementRef element, CFStringRef text);

    // False when a query of the element fails, as it does once the element is destroyed.
    bool ElementIsValid(AXUIElementRef element);

  private:
    friend struct AXUtilsInspector;  // the tests' view of the fields

    void KeepApplicationIdentifier(CFStringRef identifier);

    // Retains neither keys nor values, and compares keys by address.
    CFMutableDictionaryRef cache_;

    // Depth of the search under way, as its log lines print it.
    unsigned int searchLevel_ = 0;

    // Role, children, identifier, subrole: read of every child in one call. Shared by all
    // instances; the first to be destroyed releases it.
    static CFArrayRef sMultipleAttributes;

    // The identifier for which the cache is keyed. The cache compares with it but does not retain
    // it, so it is kept alive here.
    CFStringRef applicationIdentifier_ = nullptr;
};
