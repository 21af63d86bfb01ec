// Reading files as streams.
#pragma once

#include <CoreFoundation/CFBase.h>

enum CFStreamStatus : CFIndex {
    kCFStreamStatusNotOpen = 0,
    kCFStreamStatusOpening,
    kCFStreamStatusOpen,
    kCFStreamStatusReading,
    kCFStreamStatusWriting,
    kCFStreamStatusAtEnd,
    kCFStreamStatusClosed,
    kCFStreamStatusError,
};

extern "C" {

// Does not touch the file. Null only for a URL that names no file.
CFReadStreamRef CFReadStreamCreateWithFile(CFAllocatorRef allocator, CFURLRef fileURL);

// False when the file can't be opened, and for a stream that was opened before.
Boolean CFReadStreamOpen(CFReadStreamRef stream);
// Changes neither the status of a stream that was never opened nor that of one that failed.
void CFReadStreamClose(CFReadStreamRef stream);

// Bytes read; 0 at the end of the file; -1 after an error, and for a stream that is not open.
CFIndex CFReadStreamRead(CFReadStreamRef stream, UInt8* buffer, CFIndex bufferLength);

CFStreamStatus CFReadStreamGetStatus(CFReadStreamRef stream);

// The error behind the status; the caller releases it. Null without one.
CFErrorRef CFReadStreamCopyError(CFReadStreamRef stream);

}  // extern "C"
