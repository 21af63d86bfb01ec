#include "tests/adversary/CrowdedApplication.h"

#include <string>

namespace adversary {

namespace {

constexpr std::int32_t kAttributeUnsupported = -25205;

desktop_link::Value Windows(std::uint64_t count) {
    desktop_link::Array windows(count);
    for (std::uint64_t i = 0; i < count; ++i) {
        windows[i].content = desktop_link::ElementReference{CrowdedApplication::kProcess, i + 1};
    }
    return {std::move(windows)};
}

}  // namespace

std::optional<desktop_link::Reply> CrowdedApplication::operator()(
    const desktop_link::Request& request) const {
    desktop_link::Reply reply;
    const bool reads = request.operation == desktop_link::Operation::copyAttribute;
    if (reads && request.names.front() == "AXWindows") {
        reply.values.push_back(Windows(windows_));
    } else if (reads && request.names.front() == "AXTitle") {
        reply.values.push_back({"Window " + std::to_string(request.element.id)});
    } else if (reads && request.names.front() == "AXChildren") {
        reply.values.push_back({desktop_link::Array{}});
    } else {
        reply.error = kAttributeUnsupported;
    }
    return reply;
}

}  // namespace adversary
