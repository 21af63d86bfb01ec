#import <Foundation/Foundation.h>

#include <CoreFoundation/CFStream.h>

#include <cerrno>

#include <fcntl.h>
#include <unistd.h>

@interface CFFileReadStream : NSObject {
    NSString* _path;
    int _descriptor;  // -1 while not open
    CFStreamStatus _status;
    int _errorNumber;
}
- (instancetype)initWithPath:(NSString*)path;
- (BOOL)open;
- (void)close;
- (CFIndex)readInto:(UInt8*)buffer length:(CFIndex)length;
- (CFStreamStatus)status;
- (NSError*)copyError;
@end

@implementation CFFileReadStream

- (instancetype)initWithPath:(NSString*)path {
    self = [super init];
    _path = [path copy];
    _descriptor = -1;
    return self;
}

- (void)dealloc {
    [self close];
    [_path release];
    [super dealloc];
}

- (void)failWithErrorNumber:(int)number {
    _errorNumber = number;
    _status = kCFStreamStatusError;
}

// O_NONBLOCK: opening a pipe without a writer must not block the caller.
- (BOOL)open {
    if (_status != kCFStreamStatusNotOpen) {
        return NO;
    }
    _descriptor = ::open([_path fileSystemRepresentation], O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (_descriptor < 0) {
        [self failWithErrorNumber:errno];
        return NO;
    }
    _status = kCFStreamStatusOpen;
    return YES;
}

// A stream that was never open stays so, and one that failed keeps its error.
- (void)close {
    if (_descriptor >= 0) {
        ::close(_descriptor);
        _descriptor = -1;
    }
    if (_status == kCFStreamStatusOpen || _status == kCFStreamStatusAtEnd) {
        _status = kCFStreamStatusClosed;
    }
}

- (CFIndex)readInto:(UInt8*)buffer length:(CFIndex)length {
    if (_status == kCFStreamStatusAtEnd) {
        return 0;
    }
    if (_status != kCFStreamStatusOpen) {
        return -1;
    }
    // Never waits, so that no signal interrupts it.
    const ssize_t count = ::read(_descriptor, buffer, static_cast<std::size_t>(length));
    if (count < 0) {
        [self failWithErrorNumber:errno];
    } else if (count == 0) {
        _status = kCFStreamStatusAtEnd;
    }
    return count;
}

- (CFStreamStatus)status {
    return _status;
}

- (NSError*)copyError {
    if (_status != kCFStreamStatusError) {
        return nil;
    }
    return [[NSError alloc] initWithDomain:NSPOSIXErrorDomain code:_errorNumber userInfo:nil];
}

@end

namespace {

CFFileReadStream* Stream(CFReadStreamRef stream) {
    return (CFFileReadStream*)stream;
}

}  // namespace

CFReadStreamRef CFReadStreamCreateWithFile(CFAllocatorRef, CFURLRef fileURL) {
    @autoreleasepool {
        NSString* path = [(NSURL*)fileURL path];
        return path == nil ? nullptr
                           : (CFReadStreamRef)[[CFFileReadStream alloc] initWithPath:path];
    }
}

Boolean CFReadStreamOpen(CFReadStreamRef stream) {
    @autoreleasepool {
        return [Stream(stream) open] ? 1 : 0;
    }
}

void CFReadStreamClose(CFReadStreamRef stream) {
    [Stream(stream) close];
}

CFIndex CFReadStreamRead(CFReadStreamRef stream, UInt8* buffer, CFIndex bufferLength) {
    return [Stream(stream) readInto:buffer length:bufferLength];
}

CFStreamStatus CFReadStreamGetStatus(CFReadStreamRef stream) {
    return [Stream(stream) status];
}

CFErrorRef CFReadStreamCopyError(CFReadStreamRef stream) {
    return (CFErrorRef)[Stream(stream) copyError];
}
