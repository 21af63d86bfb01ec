#include "platform/UnifiedLogging/MessageText.h"

#include <algorithm>
#include <cstdio>
#include <string_view>

namespace unified_logging {

namespace {

constexpr std::size_t kLongest = 1024;  // bytes
constexpr std::string_view kConversions = "diouxXcsfFeEgGaAp";

bool IsPublic(std::string_view annotations) {
    while (!annotations.empty()) {
        const std::size_t comma = std::min(annotations.find(','), annotations.size());
        std::string_view one = annotations.substr(0, comma);
        while (one.starts_with(' ')) {
            one.remove_prefix(1);
        }
        if (one == "public") {
            return true;
        }
        annotations.remove_prefix(std::min(comma + 1, annotations.size()));
    }
    return false;
}

// One conversion of printf, from the text after its '%', which is taken off.
std::string Conversion(std::string_view& rest) {
    bool isPublic = false;
    if (rest.starts_with('{')) {
        const std::size_t end = std::min(rest.find('}'), rest.size() - 1);
        isPublic = IsPublic(rest.substr(1, end - 1));
        rest.remove_prefix(end + 1);
    }
    const std::size_t end = std::min(rest.find_first_of(kConversions), rest.size() - 1);
    std::string conversion = "%" + std::string(rest.substr(0, end + 1));
    rest.remove_prefix(end + 1);
    if (conversion.back() == 's' && !isPublic) {
        return "%.0s<private>";
    }
    return conversion;
}

std::string PrintfFormat(std::string_view rest) {
    std::string format;
    while (!rest.empty()) {
        const std::size_t percent = std::min(rest.find('%'), rest.size());
        format += rest.substr(0, percent);
        rest.remove_prefix(percent);
        if (rest.starts_with("%%")) {
            format += "%%";
            rest.remove_prefix(2);
        } else if (rest.size() > 1) {
            rest.remove_prefix(1);
            format += Conversion(rest);
        } else {
            break;
        }
    }
    return format;
}

}  // namespace

std::string MessageText(const char* format, va_list arguments) {
    char text[kLongest + 1];
    // The arguments were checked against the annotated format where it was written.
    // NOLINTNEXTLINE(clang-diagnostic-format-nonliteral)
    const int length = std::vsnprintf(text, sizeof text, PrintfFormat(format).c_str(), arguments);
    return {text, std::min(length < 0 ? 0 : static_cast<std::size_t>(length), kLongest)};
}

}  // namespace unified_logging
