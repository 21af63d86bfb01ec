#include "frontapplication/FrontApplication.h"

#import "frontapplication/VEK_Driver_FrontAppObserver.h"

namespace {

VEK_Driver_FrontAppObserver* Observer() {
    return [VEK_Driver_FrontAppObserver frontAppObserver];
}

bool WriteIfPresent(NSString* string, CFStringRef* out) {
    if (string == nil) {
        return false;
    }
    *out = (CFStringRef)string;
    return true;
}

}  // namespace

void CFWorkspace_StartObservingFrontApplication() {
    [Observer() observe];
}

UInt32 CFWorkspace_FrontApplicationSignature() {
    return Observer().signature;
}

bool CFWorkspace_FrontApplicationBundleID(CFStringRef* out) {
    return WriteIfPresent(Observer().bundleID, out);
}

bool CFWorkspace_FrontApplicationShortVersion(CFStringRef* out) {
    return WriteIfPresent(Observer().shortVersion, out);
}

// A change between reading the flag and clearing it is reported as part of the one being read.
bool CFWorkspace_ChangedFrontApplicationSignatureAndID(UInt32* signature, NSString** bundleID) {
    VEK_Driver_FrontAppObserver* observer = Observer();
    if (!observer.frontAppChanged) {
        return false;
    }
    observer.frontAppChanged = NO;
    CFWorkspace_CurrentFrontApplicationSignatureAndID(signature, bundleID);
    return true;
}

void CFWorkspace_CurrentFrontApplicationSignatureAndID(UInt32* signature, NSString** bundleID) {
    VEK_Driver_FrontAppObserver* observer = Observer();
    *signature = observer.signature;
    *bundleID = [[observer.bundleID retain] autorelease];
}

pid_t CFWorkspace_CurrentFrontApplicationPID() {
    return Observer().processID;
}
