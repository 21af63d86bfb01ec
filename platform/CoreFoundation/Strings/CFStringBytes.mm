// Strings from bytes, and bytes of strings.
#include <CoreFoundation/CFString.h>

#include <algorithm>
#include <cstring>

#include "platform/CoreFoundation/Runtime/CFRuntime.h"
#include "platform/CoreFoundation/Strings/FileSystemName.h"
#include "platform/CoreFoundation/Strings/StringUnits.h"
#include "platform/CoreFoundation/Strings/TextEncoding.h"

using core_foundation::EncodedCharacter;
using core_foundation::Require;
using core_foundation::StringUnits;

namespace {

using Bytes = std::span<const std::uint8_t>;

bool StartsWith(Bytes bytes, std::initializer_list<std::uint8_t> prefix) {
    return bytes.size() >= prefix.size() && std::equal(prefix.begin(), prefix.end(), bytes.begin());
}

// The byte-order mark of UTF-8 is left out, whether or not the bytes come from elsewhere.
CFStringRef StringOf(Bytes bytes, CFStringEncoding encoding) {
    if (encoding == kCFStringEncodingUTF8 && StartsWith(bytes, {0xEF, 0xBB, 0xBF})) {
        bytes = bytes.subspan(3);
    }
    const auto units = core_foundation::Decode(bytes, encoding);
    return units ? (CFStringRef)core_foundation::NewString(*units) : nullptr;
}

// UTF-16 from elsewhere has its byte order in a mark, and is big-endian without one.
CFStringRef StringOfExternal(Bytes bytes, CFStringEncoding encoding) {
    if (encoding == kCFStringEncodingUTF16) {
        if (StartsWith(bytes, {0xFF, 0xFE})) {
            return StringOf(bytes.subspan(2), kCFStringEncodingUTF16LE);
        }
        const bool marked = StartsWith(bytes, {0xFE, 0xFF});
        return StringOf(bytes.subspan(marked ? 2 : 0), kCFStringEncodingUTF16BE);
    }
    return StringOf(bytes, encoding);
}

// Copies the text and its terminating NUL, if they fit.
Boolean CopyTerminated(const std::optional<std::string>& bytes, char* buffer, CFIndex bufferSize) {
    if (bufferSize < 1) {
        return false;
    }
    if (!bytes || bytes->size() >= static_cast<std::size_t>(bufferSize)) {
        buffer[0] = '\0';
        return false;
    }
    std::memcpy(buffer, bytes->data(), bytes->size());
    buffer[bytes->size()] = '\0';
    return true;
}

// Where CFStringGetBytes writes; without a buffer it only counts.
struct Output {
    UInt8* buffer;
    CFIndex capacity;
    CFIndex used = 0;

    bool Put(const UInt8* bytes, CFIndex count) {
        if (buffer != nullptr) {
            if (count > capacity - used) {
                return false;
            }
            std::memcpy(buffer + used, bytes, static_cast<std::size_t>(count));
        }
        used += count;
        return true;
    }
};

}  // namespace

CFStringRef CFStringCreateWithCString(CFAllocatorRef, const char* cStr, CFStringEncoding encoding) {
    if (cStr == nullptr) {
        core_foundation::Stop(__func__, "null argument");
    }
    return StringOf({reinterpret_cast<const std::uint8_t*>(cStr), std::strlen(cStr)}, encoding);
}

CFStringRef CFStringCreateWithBytes(CFAllocatorRef, const UInt8* bytes, CFIndex numBytes,
                                    CFStringEncoding encoding, Boolean isExternalRepresentation) {
    if (numBytes < 0 || (bytes == nullptr && numBytes > 0)) {
        core_foundation::Stop(__func__, "no bytes");
    }
    const Bytes all(bytes, static_cast<std::size_t>(numBytes));
    return isExternalRepresentation ? StringOfExternal(all, encoding) : StringOf(all, encoding);
}

Boolean CFStringGetCString(CFStringRef theString, char* buffer, CFIndex bufferSize,
                           CFStringEncoding encoding) {
    const StringUnits units(Require<NSString>(theString, __func__));
    return CopyTerminated(core_foundation::Encode(units.view(), encoding), buffer, bufferSize);
}

Boolean CFStringGetFileSystemRepresentation(CFStringRef string, char* buffer, CFIndex maxBufLen) {
    const StringUnits units(Require<NSString>(string, __func__));
    return CopyTerminated(core_foundation::FileSystemName(units.view()), buffer, maxBufLen);
}

CFIndex CFStringGetBytes(CFStringRef theString, CFRange range, CFStringEncoding encoding,
                         UInt8 lossByte, Boolean isExternalRepresentation, UInt8* buffer,
                         CFIndex maxBufLen, CFIndex* usedBufLen) {
    NSString* string = Require<NSString>(theString, __func__);
    const auto length = static_cast<CFIndex>([string length]);
    if (range.location < 0 || range.length < 0 || range.location > length ||
        range.length > length - range.location) {
        core_foundation::Stop(__func__, "range outside the string");
    }
    const StringUnits units(string, NSMakeRange(static_cast<NSUInteger>(range.location),
                                                static_cast<NSUInteger>(range.length)));
    std::u16string_view rest = units.view();
    Output output{buffer, maxBufLen};
    bool more = core_foundation::IsSupported(encoding);
    if (more && isExternalRepresentation && encoding == kCFStringEncodingUTF16 && !rest.empty()) {
        constexpr UInt8 kMark[] = {0xFF, 0xFE};
        more = output.Put(kMark, sizeof kMark);
    }
    while (more && !rest.empty()) {
        const EncodedCharacter encoded = core_foundation::EncodeFront(rest, encoding);
        // UTF-8 has no form for an unpaired surrogate, not even a lossy one.
        const bool lost = encoded.size == 0 && lossByte != 0 && encoding != kCFStringEncodingUTF8;
        more = lost ? output.Put(&lossByte, 1)
                    : encoded.size > 0 && output.Put(encoded.bytes, encoded.size);
        if (more) {
            rest.remove_prefix(encoded.units);
        }
    }
    if (usedBufLen != nullptr) {
        *usedBufLen = output.used;
    }
    return range.length - static_cast<CFIndex>(rest.size());
}

CFIndex CFStringGetMaximumSizeForEncoding(CFIndex length, CFStringEncoding encoding) {
    if (encoding == kCFStringEncodingUTF8) {
        return length * 3;  // a surrogate pair takes four bytes, which is less for each
    }
    const bool wide = encoding == kCFStringEncodingUTF16 || encoding == kCFStringEncodingUTF16BE ||
                      encoding == kCFStringEncodingUTF16LE;
    return wide ? length * 2 : length;
}

CFStringEncoding CFStringGetSystemEncoding(void) {
    return kCFStringEncodingMacRoman;
}
