#include "platform/ApplicationServices/InternedText.h"

#include <algorithm>
#include <unordered_map>

namespace application_services {

namespace {

constexpr std::size_t kLongestName = 48;
constexpr std::size_t kMostNames = 512;

bool LooksLikeName(const std::string& text) {
    const auto isLetterOrDigit = [](char character) {
        return (character >= 'A' && character <= 'Z') || (character >= 'a' && character <= 'z') ||
               (character >= '0' && character <= '9');
    };
    return text.size() <= kLongestName && text.starts_with("AX") &&
           std::all_of(text.begin(), text.end(), isLetterOrDigit);
}

}  // namespace

CFStringRef InternedText(const std::string& text) {
    static auto* names = new std::unordered_map<std::string, CFStringRef>;
    if (!LooksLikeName(text)) {
        return nullptr;
    }
    if (const auto known = names->find(text); known != names->end()) {
        return known->second;
    }
    if (names->size() == kMostNames) {
        return nullptr;
    }
    return names->emplace(text, __CFStringMakeConstantString(text.c_str())).first->second;
}

}  // namespace application_services
