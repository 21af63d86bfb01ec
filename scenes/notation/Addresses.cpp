#include "scenes/notation/Addresses.h"

#include "scenes/notation/Names.h"

namespace scene_notation {

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
