#include "scenes/notation/Addresses.h"

#include <algorithm>
#include <charconv>

#include "scenes/notation/Names.h"

namespace scene_notation {

namespace {

bool IsNumber(std::string_view text, std::size_t& number) {
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    return error == std::errc() && end == text.data() + text.size();
}

std::optional<AddressStep> ParseStep(std::string_view text) {
    AddressStep step;
    if (IsNumber(text, step.number)) {
        return step;
    }
    const std::size_t bracket = text.find('[');
    step.role = text.substr(0, bracket);
    if (bracket == std::string_view::npos) {
        step.number = 0;
        return step;
    }
    const bool isComplete =
        text.back() == ']' &&
        IsNumber(text.substr(bracket + 1, text.size() - bracket - 2), step.number);
    return isComplete ? std::optional(step) : std::nullopt;
}

}  // namespace

std::optional<std::vector<AddressStep>> ParsePath(std::string_view address) {
    std::vector<AddressStep> steps;
    if (address == "/") {
        return steps;
    }
    if (!address.starts_with('/') || address.ends_with('/')) {
        return std::nullopt;
    }
    for (std::size_t start = 1; start <= address.size();) {
        const std::size_t end = std::min(address.find('/', start), address.size());
        const auto step = ParseStep(address.substr(start, end - start));
        if (!step) {
            return std::nullopt;
        }
        steps.push_back(*step);
        start = end + 1;
    }
    return steps;
}

std::string PathAddress(std::span<const std::size_t> upwards) {
    std::string address = upwards.empty() ? "/" : "";
    for (auto step = upwards.rbegin(); step != upwards.rend(); ++step) {
        address += '/';
        address += std::to_string(*step);
    }
    return address;
}

Json WriteElement(const std::string& address, const std::string& application) {
    Json json{{tag::kElement, address}};
    if (!application.empty()) {
        json[tag::kApplication] = application;
    }
    return json;
}

Json WriteNoElement() {
    return {{tag::kElement, nullptr}};
}

}  // namespace scene_notation
