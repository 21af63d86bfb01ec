// A process that talks to a desktop, for tests.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "desktop/Desktop.h"
#include "scenes/notation/SceneError.h"

namespace desktop {

using desktop_link::ElementReference;
using desktop_link::ErrorValue;
using desktop_link::Event;
using desktop_link::Operation;
using desktop_link::Reply;
using desktop_link::Request;
using nlohmann::json;
using scene_notation::SceneError;

struct Client {
    Desktop& desktop;

    std::optional<Reply> Ask(Operation operation, ElementReference element = {},
                             std::vector<std::string> names = {}, Value value = {},
                             bool flag = false) const {
        Request request;
        request.operation = operation;
        request.element = element;
        request.names = std::move(names);
        request.value = std::move(value);
        request.flag = flag;
        return desktop.Handle(1, request);
    }

    ElementReference At(const std::string& address, const std::string& application = "") const {
        return desktop.Find(application, address);
    }

    // The value, or the error in its place; the null value when there was no reply.
    Value Read(ElementReference element, const std::string& attribute) const {
        const auto reply = Ask(Operation::copyAttribute, element, {attribute});
        if (!reply) {
            return {};
        }
        if (reply->error != 0) {
            return {ErrorValue{reply->error}};
        }
        return reply->values.empty() ? Value{} : reply->values[0];
    }
    Value Read(const std::string& address, const std::string& attribute) const {
        return Read(At(address), attribute);
    }

    std::int32_t Set(const std::string& address, const std::string& attribute, Value value) const {
        return Ask(Operation::setAttribute, At(address), {attribute}, std::move(value))->error;
    }
    std::int32_t Perform(const std::string& address, const std::string& action) const {
        return Ask(Operation::performAction, At(address), {action})->error;
    }

    json Run(const json& command) const { return json::parse(desktop.Run(command.dump())); }

    // Runs a command that must succeed.
    json Do(const json& command) const {
        json answer = Run(command);
        EXPECT_TRUE(answer.contains("ok")) << command << " answered " << answer;
        return answer;
    }
    std::string ProblemOf(const json& command) const { return Run(command).value("error", ""); }

    void Post(const Event& event) const {
        Request request;
        request.operation = Operation::postEvent;
        request.event = event;
        desktop.Handle(1, request);
    }

    // The entries of the log, without their numbers.
    std::vector<json> Log() const {
        std::vector<json> entries;
        for (const std::string& line : desktop.Log().LinesSince(0)) {
            entries.push_back(json::parse(line));
            entries.back().erase("n");
        }
        return entries;
    }
};

inline Value Text(const char* text) {
    return {std::string(text)};
}
inline Value Number(std::int64_t number) {
    return {number};
}
inline Value Failing(std::int32_t code) {
    return {ErrorValue{code}};
}

// A scene with one application, in front, with these windows.
inline json SceneWith(json windows) {
    return {{"front", "com.example.editor"},
            {"applications",
             {{{"bundleID", "com.example.editor"},
               {"name", "Editor"},
               {"pid", 501},
               {"windows", std::move(windows)}}}}};
}

// The same with one window that has these children.
inline json WindowWith(json children) {
    json window = {{"AXRole", "AXWindow"}, {"AXTitle", "Main"}};
    window["AXChildren"] = std::move(children);
    return SceneWith(json::array({std::move(window)}));
}

// The error of loading this scene; empty when it loads.
inline std::string ProblemOfScene(const json& scene) {
    try {
        const Desktop desktop(scene);
    } catch (const SceneError& error) {
        return error.what();
    }
    return "";
}
inline std::string ProblemOfScene(const std::string& text) {
    try {
        const Desktop desktop(text);
    } catch (const SceneError& error) {
        return error.what();
    }
    return "";
}

}  // namespace desktop

// Readable failures.
namespace desktop_link {
inline void PrintTo(const Value& value, std::ostream* out) {
    Request request;
    request.value = value;
    *out << "value of alternative " << value.content.index();
    if (const auto* text = std::get_if<std::string>(&value.content)) {
        *out << " \"" << *text << "\"";
    } else if (const auto* number = std::get_if<std::int64_t>(&value.content)) {
        *out << " " << *number;
    } else if (const auto* error = std::get_if<ErrorValue>(&value.content)) {
        *out << " error " << error->code;
    }
}
}  // namespace desktop_link
