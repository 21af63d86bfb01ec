#include "fuzz/BundleStrings.h"

#import <Foundation/Foundation.h>

#include "fuzz/Check.h"

namespace fuzz {

void ReadBundle(const std::string& folder) {
    NSBundle* bundle = [NSBundle bundleWithPath:[NSString stringWithUTF8String:folder.c_str()]];
    Check(bundle != nil, "a folder is a bundle");
    for (NSString* key in @[ @"CFBundleVersion", @"CFBundleShortVersionString", @"key" ]) {
        [bundle objectForInfoDictionaryKey:key];
        NSString* text = [bundle localizedStringForKey:key value:key table:nil];
        Check([text isKindOfClass:[NSString class]], "a localized string is a string");
    }
    id identifier = [bundle bundleIdentifier];
    Check(identifier == nil || [identifier isKindOfClass:[NSString class]],
          "a bundle identifier is a string");
}

}  // namespace fuzz
