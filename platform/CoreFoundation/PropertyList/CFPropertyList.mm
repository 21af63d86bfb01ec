#import <Foundation/Foundation.h>

#include <CoreFoundation/CFPropertyList.h>

#include <algorithm>
#include <array>
#include <span>
#include <vector>

#include "platform/CoreFoundation/PropertyList/PropertyListReader.h"

namespace {

using property_list::kLongestDocument;

constexpr std::size_t kShortestStream = 6;

CFPropertyListRef Fail(CFIndex code, CFErrorRef* error) {
    if (error != nullptr) {
        *error =
            (CFErrorRef)[[NSError alloc] initWithDomain:NSCocoaErrorDomain code:code userInfo:nil];
    }
    return nullptr;
}

CFPropertyListRef Create(std::span<const UInt8> bytes, CFOptionFlags options,
                         CFPropertyListFormat* format, CFErrorRef* error) {
    @autoreleasepool {
        property_list::Document document = property_list::ReadPropertyList(bytes, options);
        if (document.root == nullptr) {
            return Fail(kCFPropertyListReadCorruptError, error);
        }
        if (format != nullptr) {
            *format = document.format;
        }
        return document.root.release();
    }
}

// False after a read error; the end of the stream before `longest` bytes is not an error.
bool ReadUpTo(std::size_t longest, CFReadStreamRef stream, std::vector<UInt8>& bytes) {
    std::array<UInt8, 16384> piece;
    while (bytes.size() < longest) {
        const std::size_t wanted = std::min(piece.size(), longest - bytes.size());
        const CFIndex count = CFReadStreamRead(stream, piece.data(), static_cast<CFIndex>(wanted));
        if (count <= 0) {
            return count == 0;
        }
        bytes.insert(bytes.end(), piece.begin(), piece.begin() + count);
    }
    return true;
}

}  // namespace

CFPropertyListRef CFPropertyListCreateWithData(CFAllocatorRef, CFDataRef data,
                                               CFOptionFlags options, CFPropertyListFormat* format,
                                               CFErrorRef* error) {
    NSData* document = (NSData*)data;
    return Create({static_cast<const UInt8*>([document bytes]), [document length]}, options, format,
                  error);
}

CFPropertyListRef CFPropertyListCreateWithStream(CFAllocatorRef, CFReadStreamRef stream,
                                                 CFIndex streamLength, CFOptionFlags options,
                                                 CFPropertyListFormat* format, CFErrorRef* error) {
    const std::size_t longest =
        streamLength > 0 ? static_cast<std::size_t>(streamLength) : kLongestDocument + 1;
    std::vector<UInt8> bytes;
    if (!ReadUpTo(longest, stream, bytes) || bytes.size() > kLongestDocument) {
        return Fail(kCFPropertyListReadStreamError, error);
    }
    if (bytes.size() < kShortestStream) {
        return Fail(kCFPropertyListReadCorruptError, error);
    }
    return Create(bytes, options, format, error);
}
