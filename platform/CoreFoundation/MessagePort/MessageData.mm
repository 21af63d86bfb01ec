#include "platform/CoreFoundation/MessagePort/MessageData.h"

#import <Foundation/Foundation.h>

namespace message_port {
namespace {

constexpr CFIndex kLongestName = 128;

// Truncation must not leave a partial UTF-8 character.
CFIndex WholeCharacters(const std::string& text, CFIndex length) {
    while ((static_cast<unsigned char>(text[static_cast<std::size_t>(length)]) & 0xC0) == 0x80) {
        --length;
    }
    return length;
}

}  // namespace

CFDataRef CreateView(std::span<const std::uint8_t> bytes) {
    return (CFDataRef)[[NSData alloc] initWithBytesNoCopy:const_cast<std::uint8_t*>(bytes.data())
                                                   length:bytes.size()
                                             freeWhenDone:NO];
}

CFDataRef CreateCopy(std::span<const std::uint8_t> bytes) {
    return CFDataCreate(kCFAllocatorDefault, bytes.data(), static_cast<CFIndex>(bytes.size()));
}

std::span<const std::uint8_t> BytesOf(CFDataRef data) {
    if (data == nullptr) {
        return {};
    }
    return {CFDataGetBytePtr(data), static_cast<std::size_t>(CFDataGetLength(data))};
}

std::optional<std::string> RegisteredName(CFStringRef name) {
    if (name == nullptr || CFStringGetLength(name) == 0) {
        return std::nullopt;
    }
    std::string text(static_cast<std::size_t>(CFStringGetLength(name)) * 3 + 1, '\0');
    if (!CFStringGetCString(name, text.data(), static_cast<CFIndex>(text.size()),
                            kCFStringEncodingUTF8)) {
        return std::nullopt;
    }
    text.resize(text.find_last_not_of('\0') + 1);
    if (text.find('\0') != std::string::npos) {
        return std::nullopt;
    }
    if (text.size() > kLongestName) {
        text.resize(static_cast<std::size_t>(WholeCharacters(text, kLongestName)));
    }
    return text;
}

void LogProblem(const std::string& name, const std::string& problem) {
    @autoreleasepool {
        NSLog(@"CFMessagePort \"%@\": %@", [NSString stringWithUTF8String:name.c_str()],
              [NSString stringWithUTF8String:problem.c_str()]);
    }
}

}  // namespace message_port
