// Prints what the main bundle of this program returns, one line each; "(null)" for nothing.
#import <Foundation/Foundation.h>

#include <cstdio>

static void Print(id object) {
    std::printf("%s\n", object != nil ? [[object description] UTF8String] : "(null)");
}

int main() {
    @autoreleasepool {
        NSBundle* bundle = [NSBundle mainBundle];
        Print([bundle bundlePath]);
        Print([bundle bundleIdentifier]);
        Print([bundle objectForInfoDictionaryKey:@"CFBundleVersion"]);
        Print([bundle localizedStringForKey:@"VEKLanguage" value:@"VEKLanguage" table:nil]);
    }
    return 0;
}
