// Bundles: localized strings.
#pragma once

#include <CoreFoundation/CFBase.h>

extern "C" {

// The bundle that holds the running program, or for a program in no bundle its folder. Never null;
// the caller does not release it.
CFBundleRef CFBundleGetMainBundle();

// The string for `key` in the table, by default (null or empty) "Localizable", in the user's
// language; without one `value`, or when that is null or empty the key. The caller releases it.
CFStringRef CFBundleCopyLocalizedString(CFBundleRef bundle, CFStringRef key, CFStringRef value,
                                        CFStringRef tableName);

}  // extern "C"
