// Bundles: the information dictionary and localized strings.
#pragma once

#include <CoreFoundation/CFBase.h>

extern "C" {

extern const CFStringRef kCFBundleIdentifierKey;
extern const CFStringRef kCFBundleVersionKey;

// The bundle that holds the running program, or for a program in no bundle its folder. Never null;
// not the caller's to release.
CFBundleRef CFBundleGetMainBundle();

// Null when the URL names no folder.
CFBundleRef CFBundleCreate(CFAllocatorRef allocator, CFURLRef bundleURL);

// The string for `key` in the table, by default (null or empty) "Localizable", in the user's
// language; without one `value`, or when that is null or empty the key. The caller releases it.
CFStringRef CFBundleCopyLocalizedString(CFBundleRef bundle, CFStringRef key, CFStringRef value,
                                        CFStringRef tableName);

// Both are borrowed from the bundle; null when absent. The second prefers the translated value.
CFStringRef CFBundleGetIdentifier(CFBundleRef bundle);
CFTypeRef CFBundleGetValueForInfoDictionaryKey(CFBundleRef bundle, CFStringRef key);

}  // extern "C"
