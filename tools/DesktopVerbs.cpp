// Verbs that script the simulated desktop: what happens around the driver.
#include <fmt/format.h>

#include "tools/DesktopCommands.h"
#include "tools/DesktopScript.h"
#include "tools/Grammar.h"
#include "tools/Run.h"
#include "tools/Session.h"
#include "tools/Text.h"

namespace krt9ctl {

namespace {

using MakeCommand = Json (*)(const Arguments&);

ExitCode Fail(Context& context, ExitCode code, const std::string& sentence) {
    context.output.Problem(code, sentence);
    return code;
}

// The content of a reply besides "ok", for people.
std::string Describe(const Json& answer) {
    Json rest = answer;
    rest.erase("ok");
    if (rest.contains("entries")) {
        std::string lines;
        for (const Json& entry : rest["entries"]) {
            lines += (lines.empty() ? "" : "\n") + OneLine(entry);
        }
        return lines;
    }
    return rest.empty() ? "" : rest.dump(2, ' ', false, Json::error_handler_t::replace);
}

ExitCode Ask(const Json& command, Context& context) {
    context.output.Progress("waiting for the simulated desktop");
    const auto answer = AskDesktop(command, context.timeout);
    if (!answer) {
        return Fail(context, ExitCode::noDesktop,
                    fmt::format("no simulated desktop replies in {}: none runs there, or it hangs; "
                                "start one with krt9-desktop SCENE.json",
                                SessionName()));
    }
    if (answer->contains("error")) {
        return Fail(context, ExitCode::refused,
                    "the desktop refused: " + Printable(answer->value("error", "")));
    }
    context.output.Result(*answer, Describe(*answer));
    return ExitCode::ok;
}

template <MakeCommand make>
ExitCode ActScript(const Arguments& arguments, Context& context) {
    return Ask(make(arguments), context);
}

Parameter Application() {
    return {.name = "APPLICATION", .kind = ValueKind::text, .help = "bundle identifier, or pid:N"};
}

Parameter OtherApplication() {
    return {.name = "--application",
            .kind = ValueKind::text,
            .help = "application to use if not the front one: bundle identifier, or pid:N",
            .placeholder = "APPLICATION"};
}

Parameter Address() {
    return {.name = "ELEMENT",
            .kind = ValueKind::text,
            .help = "159 or _NS:159, or a path such as /0/3/1 or /AXWindow/AXButton[1]"};
}

Parameter Optional(std::string_view name, std::string_view help) {
    return {.name = name, .kind = ValueKind::text, .help = help, .presence = Presence::optional};
}

Parameter Text(std::string_view name, std::string_view help) {
    return {.name = name, .kind = ValueKind::text, .help = help};
}

Parameter Flag(std::string_view name, std::string_view help) {
    return {.name = name, .kind = ValueKind::flag, .help = help};
}

Parameter Seconds(std::string_view name, std::string_view help) {
    return {.name = name, .kind = ValueKind::seconds, .help = help, .placeholder = "SECONDS"};
}

}  // namespace

std::vector<Verb> DesktopVerbs() {
    namespace make = desktop_commands;
    return {
        {.name = "desktop activate",
         .summary = "bring an application to the front",
         .detail = "Without APPLICATION no application is in front afterwards.",
         .example = "krt9ctl desktop activate com.apple.FinalCut",
         .parameters = {Optional("APPLICATION", "bundle identifier, or pid:N"),
                        Seconds("--gap", "how long nothing is in front before that")},
         .work = ActScript<make::Activate>},
        {.name = "desktop launch",
         .summary = "start an application, to the front",
         .detail = "",
         .example = "krt9ctl desktop launch '{\"bundleID\": \"org.example.Notes\"}'",
         .parameters = {Text("JSON", "the application in the notation of scenes"),
                        Flag("--behind", "keep the present front application in front")},
         .work = ActScript<make::Launch>},
        {.name = "desktop quit",
         .summary = "quit an application",
         .detail = "",
         .example = "krt9ctl desktop quit com.apple.FinalCut",
         .parameters = {Application()},
         .work = ActScript<make::Quit>},
        {.name = "desktop kill",
         .summary = "make an application die: its elements become invalid",
         .detail = "",
         .example = "krt9ctl desktop kill com.apple.FinalCut",
         .parameters = {Application()},
         .work = ActScript<make::Kill>},
        {.name = "desktop hang",
         .summary = "make an application hang: calls to it time out",
         .detail = "",
         .example = "krt9ctl desktop hang com.apple.FinalCut --for 2.5",
         .parameters = {Application(), Seconds("--for", "after this time it replies again")},
         .work = ActScript<make::Hang>},
        {.name = "desktop unhang",
         .summary = "make a hung application reply again",
         .detail = "",
         .example = "krt9ctl desktop unhang com.apple.FinalCut",
         .parameters = {Application()},
         .work = ActScript<make::Unhang>},
        {.name = "desktop trust",
         .summary = "trust every process for accessibility",
         .detail = "",
         .example = "krt9ctl desktop trust --revoke",
         .parameters = {Flag("--revoke", "trust no process")},
         .work = ActScript<make::Trust>},
        {.name = "desktop set",
         .summary = "change an attribute of an element",
         .detail = "VALUE is JSON in the notation of scenes; a text that is not JSON stands for "
                   "itself.",
         .example = "krt9ctl desktop set _NS:159 AXValue 1",
         .parameters = {Address(), Text("ATTRIBUTE", "such as AXValue"),
                        Text("VALUE", "the new value"), OtherApplication()},
         .work = ActScript<make::Set>},
        {.name = "desktop press",
         .summary = "press an element, as its user would",
         .detail = "",
         .example = "krt9ctl desktop press _NS:159",
         .parameters = {Address(),
                        {.name = "--action",
                         .kind = ValueKind::text,
                         .help = "another action than AXPress",
                         .placeholder = "ACTION"},
                        OtherApplication()},
         .work = ActScript<make::Press>},
        {.name = "desktop element",
         .summary = "show an element's attributes and actions",
         .detail = "",
         .example = "krt9ctl desktop element _NS:159",
         .parameters = {Address(), OtherApplication()},
         .work = ActScript<make::Element>},
        {.name = "desktop select-clip",
         .summary = "select a clip in the editor",
         .detail = "",
         .example = "krt9ctl desktop select-clip Gulls",
         .parameters = {Optional("CLIP", "the clip's name"),
                        {.name = "--row",
                         .kind = ValueKind::number,
                         .help = "by its row in the clip table, 0 for the first one",
                         .placeholder = "N"},
                        Flag("--none", "select no clip"),
                        OtherApplication()},
         .work = ActScript<make::SelectClip>},
        {.name = "desktop playhead",
         .summary = "move the editor's playhead",
         .detail = "",
         .example = "krt9ctl desktop playhead 01:00:00:12",
         .parameters = {Optional("TIMECODE", "the new timecode"),
                        {.name = "--frames",
                         .kind = ValueKind::number,
                         .help = "how many frames forward, or back when negative",
                         .placeholder = "N",
                         .smallest = -1000000000,
                         .largest = 1000000000},
                        OtherApplication()},
         .work = ActScript<make::Playhead>},
        {.name = "desktop plug",
         .summary = "plug a MIDI device in",
         .detail = "",
         .example = "krt9ctl desktop plug '{\"name\": \"KRT-9 USB\"}'",
         .parameters = {Text("JSON", "the device in the notation of scenes")},
         .work = ActScript<make::Plug>},
        {.name = "desktop unplug",
         .summary = "unplug a MIDI device",
         .detail = "",
         .example = "krt9ctl desktop unplug \"KRT-9 USB\"",
         .parameters = {Text("DEVICE", "its name")},
         .work = ActScript<make::Unplug>},
        {.name = "desktop pointer",
         .summary = "move the pointer without an event",
         .detail = "",
         .example = "krt9ctl desktop pointer 100,200",
         .parameters = {{.name = "POINT",
                         .kind = ValueKind::coordinates,
                         .help = "the new position, as X,Y",
                         .smallest = kSmallestSigned32,
                         .largest = kLargestSigned32}},
         .work = ActScript<make::Pointer>},
        {.name = "desktop log",
         .summary = "show what happened: events, actions, settings",
         .detail = "Prints one entry a line, as JSON.",
         .example = "krt9ctl desktop log --since 12",
         .parameters = {{.name = "--since",
                         .kind = ValueKind::number,
                         .help = "only what came after entry N",
                         .placeholder = "N"},
                        Flag("--clear", "empty the log afterwards")},
         .work = ActScript<make::Log>},
        {.name = "desktop state",
         .summary = "show applications, pointer, trust and time",
         .detail = "",
         .example = "krt9ctl desktop state",
         .work = ActScript<make::State>},
        {.name = "desktop step",
         .summary = "run the next command of the scene's script",
         .detail = "",
         .example = "krt9ctl desktop step",
         .work = ActScript<make::Step>},
        {.name = "desktop play",
         .summary = "run the rest of the scene's script",
         .detail = "",
         .example = "krt9ctl desktop play",
         .work = ActScript<make::Play>},
        {.name = "desktop advance",
         .summary = "advance the desktop's clock at once",
         .detail = "",
         .example = "krt9ctl desktop advance 0.5",
         .parameters = {{.name = "SECONDS", .kind = ValueKind::seconds, .help = "by how much"}},
         .work = ActScript<make::Advance>},
        {.name = "desktop stop",
         .summary = "end the desktop's process",
         .detail = "",
         .example = "krt9ctl desktop stop",
         .work = ActScript<make::Stop>},
        {.name = "desktop raw",
         .summary = "send any command, as JSON",
         .detail = "",
         .example = "krt9ctl desktop raw '{\"command\": \"state\"}'",
         .parameters = {Text("JSON", "the command")},
         .work = ActScript<make::Raw>},
    };
}

}  // namespace krt9ctl
