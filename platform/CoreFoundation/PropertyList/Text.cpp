#include "platform/CoreFoundation/PropertyList/Text.h"

#include <iconv.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <string_view>

namespace property_list {

namespace {

using Bytes = std::span<const std::uint8_t>;

struct Encoding {
    const char* iconvName;
    std::size_t markLength;  // bytes of the byte order mark to leave out
};

bool StartsWith(Bytes bytes, std::string_view prefix) {
    return bytes.size() >= prefix.size() &&
           std::equal(prefix.begin(), prefix.end(), bytes.begin(),
                      [](char a, std::uint8_t b) { return static_cast<std::uint8_t>(a) == b; });
}

std::optional<Encoding> MarkedEncoding(Bytes bytes) {
    struct Mark {
        std::string_view bytes;
        const char* iconvName;
    };
    using namespace std::string_view_literals;
    // The longer marks first: the UTF-32 one begins like the UTF-16 one.
    static constexpr std::array<Mark, 5> kMarks{{{"\xFF\xFE\0\0"sv, "UTF-32LE"},
                                                 {"\0\0\xFE\xFF"sv, "UTF-32BE"},
                                                 {"\xEF\xBB\xBF"sv, "UTF-8"},
                                                 {"\xFF\xFE"sv, "UTF-16LE"},
                                                 {"\xFE\xFF"sv, "UTF-16BE"}}};
    for (const Mark& mark : kMarks) {
        if (StartsWith(bytes, mark.bytes)) {
            return Encoding{mark.iconvName, mark.bytes.size()};
        }
    }
    return std::nullopt;
}

// The value of "encoding" in an XML declaration, in lower case; empty when there is none.
std::string DeclaredName(Bytes bytes) {
    if (!StartsWith(bytes, "<?xml")) {
        return {};
    }
    constexpr std::size_t kLongestDeclaration = 1024;
    const std::string_view text(reinterpret_cast<const char*>(bytes.data()),
                                std::min(bytes.size(), kLongestDeclaration));
    const std::string_view declaration = text.substr(0, text.find("?>"));
    constexpr std::string_view kAttribute = "encoding=";
    const std::size_t attribute = declaration.find(kAttribute);
    const std::size_t quote = attribute + kAttribute.size();
    if (attribute == std::string_view::npos || quote >= declaration.size() ||
        (declaration[quote] != '"' && declaration[quote] != '\'')) {
        return {};
    }
    const std::size_t end = declaration.find(declaration[quote], quote + 1);
    if (end == std::string_view::npos) {
        return {};
    }
    std::string name(declaration.substr(quote + 1, end - quote - 1));
    std::ranges::transform(name, name.begin(), [](unsigned char c) { return std::tolower(c); });
    return name;
}

std::optional<Encoding> DeclaredEncoding(Bytes bytes) {
    const std::string name = DeclaredName(bytes);
    if (name.empty() || name == "utf-8") {
        return Encoding{"UTF-8", 0};
    }
    // ASCII is read leniently: a byte above 0x7F is the Latin-1 character.
    if (name == "us-ascii" || name == "iso-8859-1") {
        return Encoding{"ISO-8859-1", 0};
    }
    if (name == "windows-1252") {
        return Encoding{"WINDOWS-1252", 0};
    }
    return std::nullopt;
}

class Converter {
  public:
    explicit Converter(const char* from) : handle_(iconv_open("UTF-16LE", from)) {}
    ~Converter() {
        if (IsOpen()) {
            iconv_close(handle_);
        }
    }
    Converter(const Converter&) = delete;
    Converter& operator=(const Converter&) = delete;

    std::optional<std::u16string> Convert(Bytes bytes) {
        // No supported encoding makes more than one code unit of a byte.
        std::u16string text(bytes.size(), u'\0');
        char* input = const_cast<char*>(reinterpret_cast<const char*>(bytes.data()));
        std::size_t inputLeft = bytes.size();
        char* output = reinterpret_cast<char*>(text.data());
        std::size_t outputLeft = text.size() * sizeof(char16_t);
        if (!IsOpen() || iconv(handle_, &input, &inputLeft, &output, &outputLeft) != 0) {
            return std::nullopt;
        }
        text.resize(text.size() - outputLeft / sizeof(char16_t));
        return text;
    }

  private:
    // NOLINTNEXTLINE(performance-no-int-to-ptr): how iconv_open reports failure.
    bool IsOpen() const { return handle_ != reinterpret_cast<iconv_t>(-1); }

    iconv_t handle_;
};

}  // namespace

std::optional<std::u16string> DecodeText(Bytes bytes) {
    std::optional<Encoding> encoding = MarkedEncoding(bytes);
    if (!encoding) {
        encoding = DeclaredEncoding(bytes);
    }
    if (!encoding) {
        return std::nullopt;
    }
    bytes = bytes.subspan(encoding->markLength);
    if (std::string_view(encoding->iconvName).starts_with("UTF-16")) {
        bytes = bytes.first(bytes.size() - bytes.size() % 2);  // half a unit is left out
    }
    return Converter(encoding->iconvName).Convert(bytes);
}

}  // namespace property_list
