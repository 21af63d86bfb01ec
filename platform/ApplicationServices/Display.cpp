#include "platform/ApplicationServices/Display.h"

#include "platform/DesktopLink/Session.h"
#include "platform/DesktopLink/Transport.h"

namespace application_services {

namespace {

using desktop_link::Operation;
using desktop_link::Rect;
using desktop_link::Value;

std::vector<Value> Ask(Operation operation) {
    desktop_link::Request request;
    request.operation = operation;
    auto reply = desktop_link::CurrentTransport().Exchange(request, desktop_link::kSystemTimeout);
    return reply && reply->error == 0 ? std::move(reply->values) : std::vector<Value>{};
}

}  // namespace

Arrangement Screens() {
    Arrangement arrangement;
    for (const Value& value : Ask(Operation::screens)) {
        if (const auto* frame = std::get_if<Rect>(&value.content)) {
            arrangement.screens.push_back(*frame);
        } else if (const auto* index = std::get_if<std::int64_t>(&value.content)) {
            arrangement.keyScreen = static_cast<std::size_t>(*index);
        }
    }
    if (arrangement.keyScreen >= arrangement.screens.size()) {
        arrangement.keyScreen = 0;
    }
    return arrangement;
}

Pointer CurrentPointer() {
    Pointer pointer;
    for (const Value& value : Ask(Operation::pointerLocation)) {
        if (const auto* location = std::get_if<desktop_link::Point>(&value.content)) {
            pointer.location = *location;
        } else if (const auto* frame = std::get_if<Rect>(&value.content)) {
            pointer.firstScreen = *frame;
        }
    }
    return pointer;
}

}  // namespace application_services
