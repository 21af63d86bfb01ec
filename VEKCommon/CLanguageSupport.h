// The translations of one language: a property list in the vendor's folder of the user's
// Application Support, read anew by each instance.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

class CLanguageSupport {
  public:
    // Loads "<language>.plist". A missing folder or file, a file that is not a property list, and
    // one whose root is not a dictionary all leave the instance without a dictionary.
    explicit CLanguageSupport(const char* language);
    virtual ~CLanguageSupport();
    CLanguageSupport(const CLanguageSupport&) = delete;
    CLanguageSupport& operator=(const CLanguageSupport&) = delete;

    bool HasDictionary() const { return dictionary_ != nullptr; }

    // With a dictionary: its value for the key, borrowed, null when it has none. Without one: a new
    // copy of the key, which the caller releases.
    CFStringRef CopyStringForKey(CFStringRef key);

    // "~" expanded; null when the path does not exist. The caller releases.
    static CFStringRef CreateCFStringByExpandingTildePath(CFStringRef path);
    // The same; the caller frees. A null path is a programming error and ends the process.
    static char* CreatePathByExpandingTildePath(const char* path);

    static CLanguageSupport* sSelf;  // the latest instance; null after any is destroyed

  private:
    CFDictionaryRef dictionary_ = nullptr;  // owned
};
