#include "tools/Text.h"

#include <CoreFoundation/CoreFoundation.h>
#include <fmt/format.h>

#include <algorithm>

namespace krt9ctl {

namespace {

OwnedReference<CFStringRef> MakeString(std::span<const std::uint8_t> bytes,
                                       CFStringEncoding encoding) {
    static constexpr std::uint8_t kNothing = 0;
    return OwnedReference<CFStringRef>(
        CFStringCreateWithBytes(kCFAllocatorDefault, bytes.empty() ? &kNothing : bytes.data(),
                                static_cast<CFIndex>(bytes.size()), encoding, false));
}

std::span<const std::uint8_t> AsBytes(std::string_view text) {
    return {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()};
}

// Nothing when the encoding lacks a character of the string.
std::optional<std::string> Encoded(CFStringRef string, CFStringEncoding encoding) {
    const CFRange all = CFRangeMake(0, CFStringGetLength(string));
    CFIndex size = 0;
    if (CFStringGetBytes(string, all, encoding, 0, false, nullptr, 0, &size) != all.length) {
        return std::nullopt;
    }
    std::string text(static_cast<std::size_t>(size), '\0');
    CFStringGetBytes(string, all, encoding, 0, false, reinterpret_cast<UInt8*>(text.data()), size,
                     nullptr);
    return text;
}

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
    return MakeString(AsBytes(utf8), kCFStringEncodingUTF8);
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
    return Encoded(static_cast<CFStringRef>(object), kCFStringEncodingUTF8);
}

std::optional<std::string> ToSystemEncoding(std::string_view utf8) {
    const auto string = MakeString(AsBytes(utf8), kCFStringEncodingUTF8);
    auto text = string ? Encoded(string.get(), CFStringGetSystemEncoding()) : std::nullopt;
    if (text) {
        text->resize(std::min(text->find('\0'), text->size()));
    }
    return text;
}

std::optional<std::string> FromSystemEncoding(std::span<const std::uint8_t> bytes) {
    const auto string = MakeString(bytes, CFStringGetSystemEncoding());
    return string ? Utf8Of(string.get()) : std::nullopt;
}

std::vector<unsigned short> ToUtf16(std::string_view utf8) {
    const auto string = MakeString(AsBytes(utf8), kCFStringEncodingUTF8);
    std::vector<unsigned short> units;
    if (string) {
        units.resize(static_cast<std::size_t>(CFStringGetLength(string.get())));
        CFStringGetCharacters(string.get(), CFRangeMake(0, CFStringGetLength(string.get())),
                              units.data());
    }
    return units;
}

}  // namespace krt9ctl
