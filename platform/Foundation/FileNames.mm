// File names are UTF-8, whatever the default encoding of C strings is. GNUstep takes that encoding
// for them, and it is MacRoman here as on macOS.
#import <Foundation/Foundation.h>

// The purpose of this category is to replace the class's own methods.
#pragma clang diagnostic ignored "-Wobjc-protocol-method-implementation"

@implementation NSFileManager (FileNames)

- (const char*)fileSystemRepresentationWithPath:(NSString*)path {
    return [path UTF8String];
}

- (NSString*)stringWithFileSystemRepresentation:(const char*)name length:(NSUInteger)length {
    return [[[NSString alloc] initWithBytes:name length:length
                                   encoding:NSUTF8StringEncoding] autorelease];
}

@end
