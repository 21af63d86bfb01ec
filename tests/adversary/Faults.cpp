#include "tests/adversary/Faults.h"

#include <cmath>
#include <limits>

#include "tests/adversary/Operations.h"

namespace adversary {

using desktop_link::Array;
using desktop_link::ElementReference;
using desktop_link::ErrorValue;
using desktop_link::Operation;
using desktop_link::Reply;
using desktop_link::Request;
using desktop_link::Value;

namespace {

constexpr int kFirstErrorCode = -25200;
constexpr int kLastErrorCode = -25214;
constexpr int kUnknownErrorCode = -7;

std::string Quoted(const std::string& text) {
    return '"' + text + '"';
}

std::string ParentOf(const std::string& address) {
    return address.substr(0, address.find_last_of('/'));
}

Event Command(const std::string& name, const std::string& command, const std::string& end = "") {
    return {.name = name,
            .happen = [command](ScriptedDesktop& desktop,
                                const auto&) { desktop.RunUnnoticed(command); },
            .end = end};
}

void Remove(ScriptedDesktop& desktop, const std::string& address) {
    desktop.RunUnnoticed(R"({"command": "remove", "element": )" + Quoted(address) + "}");
}

bool Has(ScriptedDesktop& desktop, const std::string& address) {
    return desktop->Run(R"({"command": "element", "element": )" + Quoted(address) + "}")
        .starts_with(R"({"ok")");
}

// Before everything else in the same parent: a group with a control that has identifiers
// in use, but is not one that any request looks for.
void InsertBefore(ScriptedDesktop& desktop, const std::string& control) {
    const std::string parent = ParentOf(control);
    desktop.RunUnnoticed(R"({"command": "insert", "parent": )" +
                         Quoted(parent.empty() ? "/" : parent) +
                         R"(, "position": 0, "element": {"AXRole": "AXGroup", "AXChildren": [
                    {"AXRole": "AXImage", "AXIdentifier": "_NS:59"}]}})");
}

void ReorderHolder(ScriptedDesktop& desktop, const std::string&) {
    std::string reversed;
    for (int index = 0;; ++index) {
        const std::string child = kHolder + "/" + std::to_string(index);
        if (!Has(desktop, child)) {
            break;
        }
        reversed =
            R"({"element": )" + Quoted(child) + "}" + (reversed.empty() ? "" : ", " + reversed);
    }
    desktop.RunUnnoticed(R"({"command": "set", "element": )" + Quoted(kHolder) +
                         R"(, "attribute": "AXChildren", "value": {"array": [)" + reversed + "]}}");
}

}  // namespace

std::vector<Event> AllEvents() {
    const std::string editor = R"("application": "com.apple.FinalCut"})";
    std::vector<Event> events = {
        {"the control is destroyed", Remove, true},
        {"what holds the control is destroyed",
         [](ScriptedDesktop& desktop, const std::string& control) {
             Remove(desktop, ParentOf(control).empty() ? control : ParentOf(control));
         },
         true},
        {"an element is inserted before the control", InsertBefore, true},
        {"the control before is destroyed",
         [](ScriptedDesktop& desktop, const auto&) { Remove(desktop, kHolder + "/0"); }},
        {"the children are reordered", ReorderHolder},
        {"the first window is closed",
         [](ScriptedDesktop& desktop, const auto&) { Remove(desktop, "/0"); }},
        {"the main window is closed",
         [](ScriptedDesktop& desktop, const auto&) { Remove(desktop, "/1"); }},
        Command("the application dies", R"({"command": "kill", )" + editor),
        Command("the application quits", R"({"command": "quit", )" + editor),
        Command("the application hangs", R"({"command": "hang", )" + editor,
                R"({"command": "unhang", )" + editor),
        Command("the permission is revoked", R"({"command": "trust", "trusted": false})",
                R"({"command": "trust", "trusted": true})"),
        Command("nothing is in front any more", R"({"command": "activate", "application": null})"),
        Command("another application comes to the front",
                R"({"command": "activate", "application": ")" + kOtherApplication + R"("})"),
        {"another application gets the process id of the dead one",
         [editor](ScriptedDesktop& desktop, const auto&) {
             desktop.RunUnnoticed(R"({"command": "kill", )" + editor);
             desktop.RunUnnoticed(R"({"command": "activate", "application": null})");
             desktop.RunUnnoticed(R"({"command": "launch", "application": {"pid": 501,
                 "bundleID": "com.example.player2", "windows": [{"AXRole": "AXWindow",
                 "AXTitle": "Main", "AXChildren": [{"AXRole": "AXCheckBox",
                 "AXIdentifier": "_NS:59", "AXValue": 99}]}]}})");
         }},
    };
    for (Event& event : events) {
        if (event.name == "another application comes to the front") {
            event.frontAfterwards = {502, true, false};
        } else if (event.name == "another application gets the process id of the dead one") {
            event.frontAfterwards = {501, true, false};
        }
    }
    return events;
}

std::vector<FalseReply> AllFalseReplies() {
    std::vector<FalseReply> replies = {
        {"no answer", [](auto& reply) { reply.reset(); }},
        {"success with nothing", [](auto& reply) { reply = Reply(); }},
        {"one value too many",
         [](auto& reply) {
             if (reply) {
                 reply->values.push_back({std::string("AXButton")});
             }
         }},
        {"the first value only",
         [](auto& reply) {
             if (reply && reply->values.size() > 1) {
                 reply->values.resize(1);
             }
         }},
        {"the last value missing",
         [](auto& reply) {
             if (reply && !reply->values.empty()) {
                 reply->values.pop_back();
             }
         }},
        {"values in reverse",
         [](auto& reply) {
             if (reply) {
                 reply->values = Array(reply->values.rbegin(), reply->values.rend());
             }
         }},
    };
    const auto add = [&replies](int code) {
        replies.push_back({"error " + std::to_string(code), [code](auto& reply) {
                               reply = Reply();
                               reply->error = code;
                           }});
    };
    for (int code = kFirstErrorCode; code >= kLastErrorCode; --code) {
        add(code);
    }
    add(kUnknownErrorCode);
    return replies;
}

std::vector<FalseValue> AllFalseValues() {
    constexpr double kInfinity = std::numeric_limits<double>::infinity();
    constexpr std::int64_t kBeyond32Bits = (std::int64_t{1} << 40) + 3;
    const ElementReference dead{501, 999999999};
    const ElementReference ofNoProcess{7777, 3};
    std::vector<FalseValue> values;
    const auto add = [&values](const std::string& name, const Value& value) {
        values.push_back({name, [value](const Request&) { return value; }});
    };
    add("null", {});
    add("true", {true});
    add("false", {false});
    add("0", {std::int64_t{0}});
    add("7", {std::int64_t{7}});
    add("-1", {std::int64_t{-1}});
    add("a number beyond 32 bits", {kBeyond32Bits});
    add("5.9", {5.9});
    add("no number", {std::nan("")});
    add("infinity", {kInfinity});
    add("-1e300", {-1e300});
    add("an empty text", {std::string()});
    add("the text AXGroup", {std::string("AXGroup")});
    add("the text 9 clips", {std::string("9 clips")});
    add("a text of 63 bytes", {std::string(63, 'x')});
    add("a text of 64 bytes", {std::string(64, 'x')});
    add("a text of 1024 bytes", {std::string(1024, 'x')});
    add("a text of 100000 bytes", {std::string(100000, 'x')});
    add("a text that no message can carry", {std::string("\xF0\x9F\x98\x80")});
    add("a text with a null character", {std::string("a\0b", 3)});
    add("a point", {desktop_link::Point{7, -8}});
    add("a point nowhere", {desktop_link::Point{std::nan(""), kInfinity}});
    add("a size", {desktop_link::Size{7, 8}});
    add("a size without end", {desktop_link::Size{-kInfinity, 1e300}});
    add("a rectangle", {desktop_link::Rect{{1, 2}, {3, 4}}});
    add("a range", {desktop_link::Range{1, 2}});
    add("data", {desktop_link::Bytes{{0, 1, 2, 255}}});
    add("a dictionary", {desktop_link::Dictionary{{"AXRole", {std::string("AXButton")}}}});
    add("an empty dictionary", {desktop_link::Dictionary{}});
    add("a destroyed element", {dead});
    add("an element of no process", {ofNoProcess});
    add("an empty array", {Array{}});
    add("an array of wrong types",
        {Array{{}, {std::string("AXButton")}, {std::int64_t{1}}, {true}, {Array{}}}});
    add("an array of nulls", {Array{{}, {}, {}}});
    add("an array of destroyed elements", {Array{{dead}, {dead}, {ofNoProcess}}});
    add("an array of arrays", {Array{{Array{{Array{}}, {Array{{dead}}}}}}});
    add("an array of errors", {Array{{ErrorValue{-25204}}, {ErrorValue{-25212}}}});
    values.push_back(
        {"the element itself", [](const Request& request) { return Value{request.element}; }});
    values.push_back({"an array of the element itself", [](const Request& request) {
                          return Value{Array{{request.element}, {request.element}}};
                      }});
    values.push_back({"an array of the application and its windows", [](const Request& request) {
                          Array array{{ElementReference{request.element.pid, 0}}};
                          for (std::uint64_t id = 1; id <= 8; ++id) {
                              array.push_back({ElementReference{request.element.pid, id}});
                          }
                          return Value{array};
                      }});
    for (int code = kFirstErrorCode; code >= kLastErrorCode; --code) {
        add("error " + std::to_string(code), {ErrorValue{code}});
    }
    return values;
}

}  // namespace adversary
