#include <algorithm>
#include <memory>

#include "companion/KRT9Companion.h"

namespace krt9 {

namespace {

struct Release {
    void operator()(CFTypeRef object) const { CFRelease(object); }
};
using OwnedString = std::unique_ptr<std::remove_pointer_t<CFStringRef>, Release>;

OwnedString MakeString(std::span<const std::uint8_t> bytes, CFStringEncoding encoding) {
    static constexpr std::uint8_t kNothing = 0;
    return OwnedString(
        CFStringCreateWithBytes(kCFAllocatorDefault, bytes.empty() ? &kNothing : bytes.data(),
                                static_cast<CFIndex>(bytes.size()), encoding, false));
}

OwnedString MakeString(std::string_view utf8) {
    return MakeString({reinterpret_cast<const std::uint8_t*>(utf8.data()), utf8.size()},
                      kCFStringEncodingUTF8);
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

}  // namespace

std::optional<std::string> ToSystemEncoding(std::string_view utf8) {
    const OwnedString string = MakeString(utf8);
    auto text = string ? Encoded(string.get(), CFStringGetSystemEncoding()) : std::nullopt;
    if (text) {
        text->resize(std::min(text->find('\0'), text->size()));
    }
    return text;
}

std::optional<std::string> FromSystemEncoding(std::span<const std::uint8_t> bytes) {
    const OwnedString string = MakeString(bytes, CFStringGetSystemEncoding());
    return string ? Encoded(string.get(), kCFStringEncodingUTF8) : std::nullopt;
}

std::vector<std::uint16_t> ToUtf16(std::string_view utf8) {
    const OwnedString string = MakeString(utf8);
    std::vector<std::uint16_t> units;
    if (string) {
        units.resize(static_cast<std::size_t>(CFStringGetLength(string.get())));
        CFStringGetCharacters(string.get(), CFRangeMake(0, CFStringGetLength(string.get())),
                              units.data());
    }
    return units;
}

}  // namespace krt9
