#include "tools/DesktopCommands.h"

#include <fmt/format.h>

#include "scenes/notation/Names.h"

namespace krt9ctl::desktop_commands {

namespace {

// Discarded for text that is not JSON.
Json ParseShallowJson(const Arguments& arguments, std::string_view name) {
    const auto refuseDepth = [name](int depth, Json::parse_event_t, const Json&) {
        if (depth > static_cast<int>(scene_notation::kDeepestJson)) {
            throw UsageError(fmt::format("{}: the JSON is nested too deep", name));
        }
        return true;
    };
    return Json::parse(arguments.Text(name), refuseDepth, false);
}

Json ParseJsonArgument(const Arguments& arguments, std::string_view name) {
    Json json = ParseShallowJson(arguments, name);
    if (json.is_discarded()) {
        throw UsageError(fmt::format("{}: the text is not JSON", name));
    }
    return json;
}

// Text that is not JSON stands for itself, so that texts need no second pair of quotes.
Json ParseValueArgument(const Arguments& arguments, std::string_view name) {
    Json json = ParseShallowJson(arguments, name);
    return json.is_discarded() ? Json(arguments.Text(name)) : json;
}

Json OnApplication(const char* command, const Arguments& arguments) {
    return {{"command", command}, {"application", arguments.Text("APPLICATION")}};
}

// A bare number is that of an identifier, as everywhere; paths begin with a slash.
std::string ElementAddress(const Arguments& arguments) {
    const std::string& text = arguments.Text("ELEMENT");
    const auto number = ParseElement(text);
    return number ? fmt::format("_NS:{}", *number) : text;
}

// Without --application the one in front is meant.
Json InApplication(const char* command, const Arguments& arguments) {
    Json json{{"command", command}};
    if (arguments.Has("--application")) {
        json["application"] = arguments.Text("--application");
    }
    return json;
}

void AddSeconds(Json& command, const char* key, const Arguments& arguments, std::string_view name) {
    if (arguments.Has(name)) {
        command[key] = arguments.SecondsOr(name, 0);
    }
}

}  // namespace

Json Activate(const Arguments& arguments) {
    Json command{{"command", "activate"}, {"application", nullptr}};
    if (arguments.Has("APPLICATION")) {
        command["application"] = arguments.Text("APPLICATION");
    }
    AddSeconds(command, "gap", arguments, "--gap");
    return command;
}

Json Launch(const Arguments& arguments) {
    return {{"command", "launch"},
            {"application", ParseJsonArgument(arguments, "JSON")},
            {"front", !arguments.Has("--behind")}};
}

Json Quit(const Arguments& arguments) {
    return OnApplication("quit", arguments);
}

Json Kill(const Arguments& arguments) {
    return OnApplication("kill", arguments);
}

Json Hang(const Arguments& arguments) {
    Json command = OnApplication("hang", arguments);
    AddSeconds(command, "for", arguments, "--for");
    return command;
}

Json Unhang(const Arguments& arguments) {
    return OnApplication("unhang", arguments);
}

Json Trust(const Arguments& arguments) {
    return {{"command", "trust"}, {"trusted", !arguments.Has("--revoke")}};
}

Json Set(const Arguments& arguments) {
    Json command = InApplication("set", arguments);
    command["element"] = ElementAddress(arguments);
    command["attribute"] = arguments.Text("ATTRIBUTE");
    command["value"] = ParseValueArgument(arguments, "VALUE");
    return command;
}

Json Press(const Arguments& arguments) {
    Json command = InApplication("press", arguments);
    command["element"] = ElementAddress(arguments);
    if (arguments.Has("--action")) {
        command["action"] = arguments.Text("--action");
    }
    return command;
}

Json Element(const Arguments& arguments) {
    Json command = InApplication("element", arguments);
    command["element"] = ElementAddress(arguments);
    return command;
}

Json SelectClip(const Arguments& arguments) {
    const int given =
        int{arguments.Has("CLIP")} + int{arguments.Has("--row")} + int{arguments.Has("--none")};
    if (given != 1) {
        throw UsageError("name one of CLIP, --row and --none");
    }
    Json command = InApplication("selectClip", arguments);
    if (arguments.Has("CLIP")) {
        command["clip"] = arguments.Text("CLIP");
    } else {
        command["row"] = arguments.Has("--row") ? Json(arguments.Number("--row")) : Json(nullptr);
    }
    return command;
}

Json Playhead(const Arguments& arguments) {
    if (arguments.Has("TIMECODE") == arguments.Has("--frames")) {
        throw UsageError("give either TIMECODE or --frames");
    }
    Json command = InApplication("playhead", arguments);
    if (arguments.Has("TIMECODE")) {
        command["timecode"] = arguments.Text("TIMECODE");
    } else {
        command["frames"] = arguments.Number("--frames");
    }
    return command;
}

Json Plug(const Arguments& arguments) {
    return {{"command", "plug"}, {"device", ParseJsonArgument(arguments, "JSON")}};
}

Json Unplug(const Arguments& arguments) {
    return {{"command", "unplug"}, {"device", arguments.Text("DEVICE")}};
}

Json Pointer(const Arguments& arguments) {
    const Coordinates where = arguments.Point("POINT");
    return {{"command", "pointer"}, {"position", Json::array({where.x, where.y})}};
}

Json Log(const Arguments& arguments) {
    Json command{{"command", "log"}, {"since", arguments.NumberOr("--since", 0)}};
    if (arguments.Has("--clear")) {
        command["clear"] = true;
    }
    return command;
}

Json Advance(const Arguments& arguments) {
    return {{"command", "advance"}, {"seconds", arguments.SecondsOr("SECONDS", 0)}};
}

Json State(const Arguments&) {
    return {{"command", "state"}};
}

Json Step(const Arguments&) {
    return {{"command", "step"}};
}

Json Play(const Arguments&) {
    return {{"command", "play"}};
}

Json Stop(const Arguments&) {
    return {{"command", "stop"}};
}

Json Raw(const Arguments& arguments) {
    return ParseJsonArgument(arguments, "JSON");
}

}  // namespace krt9ctl::desktop_commands
