#import "platform/CoreFoundation/Bundle/Bundle.h"

// To replace the class's own methods is what this category is for.
#pragma clang diagnostic ignored "-Wobjc-protocol-method-implementation"

// Foundation's bundles don't know the shape of a macOS bundle and remember what they once read.
// What the driver asks of a bundle goes to our own; Foundation's others, made by -initWithPath: for
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
