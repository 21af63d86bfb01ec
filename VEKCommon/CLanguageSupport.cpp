#include "VEKCommon/CLanguageSupport.h"

#include <cstring>

#include "VEKCommon/Names.h"

CLanguageSupport* CLanguageSupport::sSelf = nullptr;

namespace {

// Null when the user has no such folder, and for a tag that would name a file outside of it.
CFStringRef CreateTranslationPath(const char* language) {
    if (strchr(language, '/') != nullptr) {
        return nullptr;
    }
    CFStringRef folder =
        CLanguageSupport::CreateCFStringByExpandingTildePath(CFSTR("~/" kTranslationsFolder "/"));
    if (folder == nullptr) {
        return nullptr;
    }
    CFStringRef path = CFStringCreateWithFormat(kCFAllocatorDefault, nullptr, CFSTR("%@%s.plist"),
                                                folder, language);
    CFRelease(folder);
    return path;
}

// Null when the file is missing or is not a property list.
CFPropertyListRef CreatePropertyListFromFile(CFStringRef path) {
    CFURLRef url =
        CFURLCreateWithFileSystemPath(kCFAllocatorDefault, path, kCFURLPOSIXPathStyle, false);
    if (url == nullptr) {
        return nullptr;
    }
    CFReadStreamRef stream = CFReadStreamCreateWithFile(kCFAllocatorDefault, url);
    CFRelease(url);
    if (stream == nullptr) {
        return nullptr;
    }
    CFReadStreamOpen(stream);  // if this fails, so does reading
    CFPropertyListRef propertyList = CFPropertyListCreateWithStream(
        kCFAllocatorDefault, stream, 0, kCFPropertyListImmutable, nullptr, nullptr);
    CFReadStreamClose(stream);
    CFRelease(stream);
    return propertyList;
}

CFDictionaryRef CreateTranslations(const char* language) {
    CFStringRef path = CreateTranslationPath(language);
    if (path == nullptr) {
        return nullptr;
    }
    CFPropertyListRef root = CreatePropertyListFromFile(path);
    CFRelease(path);
    if (root != nullptr && CFGetTypeID(root) != CFDictionaryGetTypeID()) {
        CFRelease(root);
        return nullptr;
    }
    return static_cast<CFDictionaryRef>(root);
}

}  // namespace

CLanguageSupport::CLanguageSupport(const char* language) {
    sSelf = this;
    dictionary_ = CreateTranslations(language);
}

CLanguageSupport::~CLanguageSupport() {
    if (dictionary_ != nullptr) {
        CFRelease(dictionary_);
    }
    sSelf = nullptr;
}

CFStringRef CLanguageSupport::CopyStringForKey(CFStringRef key) {
    if (dictionary_ != nullptr) {
        return static_cast<CFStringRef>(CFDictionaryGetValue(dictionary_, key));
    }
    return CFStringCreateCopy(kCFAllocatorDefault, key);
}
