// What is known of the front application, all of it owned by the process's one front-application
// observer. Main thread only.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include <sys/types.h>

#ifdef __OBJC__
@class NSString;
#else
class NSString;
#endif

// Records what is in front now and, from then on, what each activation brings to the front.
void CFWorkspace_StartObservingFrontApplication();

// '????' for an application whose bundle gives none; 0 before any was in front.
UInt32 CFWorkspace_FrontApplicationSignature();

// True, with *out borrowed, when there is one; otherwise false, with *out untouched.
bool CFWorkspace_FrontApplicationBundleID(CFStringRef* out);
bool CFWorkspace_FrontApplicationShortVersion(CFStringRef* out);

// True once after each change of the front application; otherwise false, with nothing written.
bool CFWorkspace_ChangedFrontApplicationSignatureAndID(UInt32* signature, NSString** bundleID);

// *bundleID is autoreleased, and nil when the front application has none.
void CFWorkspace_CurrentFrontApplicationSignatureAndID(UInt32* signature, NSString** bundleID);

// -1 for an application whose process the system does not know; 0 before any was in front.
pid_t CFWorkspace_CurrentFrontApplicationPID();
