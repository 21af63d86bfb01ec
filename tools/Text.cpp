#include "tools/Text.h"

#include <CoreFoundation/CoreFoundation.h>
#include <fmt/format.h>

#include <cstdint>

namespace krt9ctl {

namespace {

bool IsControl(unsigned char byte) {
    return byte < 0x20 || byte == 0x7F;
}

// U+0080 to U+009F, which terminals obey like the control characters below a blank.
bool IsUpperControl(std::string_view rest) {
    return rest.size() >= 2 && rest[0] == '\xC2' && static_cast<unsigned char>(rest[1]) < 0xA0;
}

}  // namespace

bool IsUtf8(std::string_view text) {
    return StringOf(text) != nullptr;
}

OwnedReference<CFStringRef> StringOf(std::string_view utf8) {
    static constexpr std::uint8_t kNothing = 0;
    const auto* bytes = reinterpret_cast<const std::uint8_t*>(utf8.data());
    return OwnedReference<CFStringRef>(
        CFStringCreateWithBytes(kCFAllocatorDefault, utf8.empty() ? &kNothing : bytes,
                                static_cast<CFIndex>(utf8.size()), kCFStringEncodingUTF8, false));
}

std::string Printable(std::string_view text) {
    const bool isUtf8 = IsUtf8(text);
    std::string printable;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const auto byte = static_cast<unsigned char>(text[i]);
        if (IsControl(byte) || (!isUtf8 && byte >= 0x80)) {
            printable += fmt::format("\\x{:02x}", byte);
        } else if (IsUpperControl(text.substr(i))) {
            printable += fmt::format("\\x{:02x}", static_cast<unsigned char>(text[++i]));
        } else {
            printable += text[i];
        }
    }
    return printable;
}

std::optional<std::string> Utf8Of(CFTypeRef object) {
    if (CFGetTypeID(object) != CFStringGetTypeID()) {
        return std::nullopt;
    }
    const auto string = static_cast<CFStringRef>(object);
    const CFRange all = CFRangeMake(0, CFStringGetLength(string));
    CFIndex size = 0;
    if (CFStringGetBytes(string, all, kCFStringEncodingUTF8, 0, false, nullptr, 0, &size) !=
        all.length) {
        return std::nullopt;
    }
    std::string text(static_cast<std::size_t>(size), '\0');
    CFStringGetBytes(string, all, kCFStringEncodingUTF8, 0, false,
                     reinterpret_cast<UInt8*>(text.data()), size, nullptr);
    return text;
}

}  // namespace krt9ctl
