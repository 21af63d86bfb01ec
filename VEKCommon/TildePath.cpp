// Paths that begin with "~", expanded by the system's own rules.

#include <glob.h>

#include <cassert>
#include <cstdlib>
#include <cstring>

#include "VEKCommon/CLanguageSupport.h"

namespace {

constexpr CFIndex kLongestPath = 1024;  // bytes, the terminator included

}  // namespace

CFStringRef CLanguageSupport::CreateCFStringByExpandingTildePath(CFStringRef path) {
    char representation[kLongestPath];
    if (!CFStringGetFileSystemRepresentation(path, representation, kLongestPath)) {
        return nullptr;
    }
    char* expanded = CreatePathByExpandingTildePath(representation);
    if (expanded == nullptr) {
        return nullptr;
    }
    CFStringRef string =
        CFStringCreateWithCString(kCFAllocatorDefault, expanded, kCFStringEncodingUTF8);
    free(expanded);
    return string;
}

// glob finds only what exists, so a missing folder expands to nothing.
char* CLanguageSupport::CreatePathByExpandingTildePath(const char* path) {
// The assertion's text, file and line appear in crash reports and are kept as they are.
#line 150 "VEKCommon/CLanguageSupport"
    assert(path != NULL);  // NOLINT(modernize-use-nullptr)
#line 40 "VEKCommon/TildePath.cpp"
    glob_t matches;
    if (glob(path, GLOB_TILDE, nullptr, &matches) != 0) {
        return nullptr;
    }
    const size_t length = strlen(matches.gl_pathv[0]);
    char* expanded = static_cast<char*>(calloc(length + 1, 1));
    // Unreachable: null. calloc does not fail for the few bytes of a path.
    if (expanded != nullptr) {
        memcpy(expanded, matches.gl_pathv[0], length);
    }
    globfree(&matches);
    return expanded;
}
