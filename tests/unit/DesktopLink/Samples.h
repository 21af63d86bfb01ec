// Messages that use every field and every type of value.
#pragma once

#include <limits>

#include "platform/DesktopLink/Messages.h"

namespace desktop_link {

inline Value EveryTypeOfValue() {
    return {Array{
        {std::monostate{}},
        {true},
        {false},
        {std::int64_t{0}},
        {std::numeric_limits<std::int64_t>::min()},
        {std::numeric_limits<std::int64_t>::max()},
        {1.5},
        {5.0},
        {-0.0},
        {std::numeric_limits<double>::infinity()},
        {std::string()},
        {std::string("01:00:00:05 \xC3\xA9 \xF0\x9F\x8E\xAC")},
        {std::string("nul\0inside", 10)},
        {Point{1, -2.5}},
        {Size{3, 4}},
        {Rect{{1, 2}, {3, 4}}},
        {Range{-1, std::numeric_limits<std::int64_t>::max()}},
        {ErrorValue{-25205}},
        {ElementReference{501, std::numeric_limits<std::uint64_t>::max()}},
        {Bytes{}},
        {Bytes{{0, 0xFF, 0x80}}},
        {Array{}},
        {Array{{Array{{std::string("inner")}}}}},
        {Dictionary{}},
        {Dictionary{{"key", {std::int64_t{7}}}, {"", {Array{}}}}},
    }};
}

inline Request FullRequest() {
    Request request;
    request.operation = Operation::setAttribute;
    request.element = {501, 12345678901};
    request.names = {"AXRole", "AXChildren", "", "AXSubrole"};
    request.flag = true;
    request.number = -7;
    request.value = EveryTypeOfValue();
    request.event = {6, {-1.5, 900}, 0xFFFFFFFFFFFFFFFF, 59, 2, -1, true, true, 0, 1, {0, -10, 3}};
    request.text = R"({"command":"log"})";
    return request;
}

inline Reply FullReply() {
    Reply reply;
    reply.error = -25204;
    reply.flag = true;
    reply.values = {EveryTypeOfValue(), {std::string("second")}};
    reply.text = "text";
    reply.session =
        Session{Application{501, "com.example.editor", "/x/Editor.app", "Editor"}, 0.25};
    return reply;
}

inline Notification FullNotification() {
    return {Application{-1, std::nullopt, std::nullopt, "a program without bundle"}};
}

}  // namespace desktop_link
