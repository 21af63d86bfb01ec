#include "tests/unit/VEKCommon/Failures.h"

#include <CoreFoundation/CoreFoundation.h>
#include <dlfcn.h>

namespace {

template <typename Function>
Function* Next(const char* name) {
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

}  // namespace

Failures& Failures::Current() {
    static Failures current;
    return current;
}

extern "C" {

CFStringRef CFBundleCopyLocalizedString(CFBundleRef bundle, CFStringRef key, CFStringRef value,
                                        CFStringRef table) {
    if (Failures::Current().localizedString) {
        return nullptr;
    }
    return Next<decltype(CFBundleCopyLocalizedString)>("CFBundleCopyLocalizedString")(bundle, key,
                                                                                      value, table);
}

Boolean CFStringGetFileSystemRepresentation(CFStringRef string, char* buffer, CFIndex size) {
    if (Failures::Current().representation) {
        buffer[0] = '~';
        buffer[1] = 0;
        return false;
    }
    return Next<decltype(CFStringGetFileSystemRepresentation)>(
        "CFStringGetFileSystemRepresentation")(string, buffer, size);
}

CFURLRef CFURLCreateWithFileSystemPath(CFAllocatorRef allocator, CFStringRef path,
                                       CFURLPathStyle style, Boolean isDirectory) {
    if (Failures::Current().url) {
        return nullptr;
    }
    return Next<decltype(CFURLCreateWithFileSystemPath)>("CFURLCreateWithFileSystemPath")(
        allocator, path, style, isDirectory);
}

CFReadStreamRef CFReadStreamCreateWithFile(CFAllocatorRef allocator, CFURLRef url) {
    if (Failures::Current().readStream) {
        return nullptr;
    }
    return Next<decltype(CFReadStreamCreateWithFile)>("CFReadStreamCreateWithFile")(allocator, url);
}

}  // extern "C"
