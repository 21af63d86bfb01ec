#import "platform/CoreFoundation/Bundle/Bundle.h"

// The purpose of this category is to replace the class's own methods.
#pragma clang diagnostic ignored "-Wobjc-protocol-method-implementation"

// Foundation's bundles do not support the layout of macOS bundles and keep what they once read.
// The driver's calls go to our own bundles; Foundation's others, made by -initWithPath: for
// its own libraries, stay as they are.
@implementation NSBundle (MacLayout)

+ (NSBundle*)mainBundle {
    return [MacBundle mainMacBundle];
}

+ (instancetype)bundleWithPath:(NSString*)path {
    return [MacBundle macBundleWithPath:path];
}

+ (instancetype)bundleWithURL:(NSURL*)url {
    return [url isFileURL] ? [MacBundle macBundleWithPath:[url path]] : nil;
}

@end
