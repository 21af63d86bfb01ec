// Scenes and the commands of scripts: the first line is a scene, every other one a command or, when
// it begins with '#', a request of a process in the wire's form.
//
// What must hold: a mistake is refused with one line and nothing else happens; a dump loads as it
// is and is the same when it is dumped again.
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "desktop/Desktop.h"
#include "desktop/SceneError.h"
#include "fuzz/Check.h"
#include "fuzz/JsonMutator.h"
#include "fuzz/StartUp.h"
#include "fuzz/Surroundings.h"
#include "platform/DesktopLink/Messages.h"

namespace {

constexpr std::size_t kMostCommands = 24;

desktop::DesktopOptions Options() {
    return {(fuzz::PrivateFolder() / "bundles").string()};
}

// Changes nothing when it answers an error, whatever that is.
void Run(desktop::Desktop& desktop, const std::string& command) {
    const std::string before = desktop.Dump();
    const std::string answer = desktop.Run(command);
    const auto json = nlohmann::json::parse(answer, nullptr, false);
    fuzz::Check(json.is_object(), "a command is answered with an object");
    if (json.contains("error")) {
        const std::string& problem = json["error"].get_ref<const std::string&>();
        fuzz::Check(!problem.empty() && problem.find('\n') == std::string::npos,
                    "a problem is one line");
        fuzz::Check(desktop.Dump() == before, "a refused command changes nothing");
    } else {
        fuzz::Check(json.value("ok", false), "a command answers ok or an error");
    }
}

void Ask(desktop::Desktop& desktop, const std::string& line) {
    const auto* bytes = reinterpret_cast<const std::uint8_t*>(line.data());
    const auto request = desktop_link::DecodeRequest(bytes + 1, line.size() - 1);
    const auto reply = request ? desktop.Handle(1, *request) : std::nullopt;
    if (reply) {
        const auto message = Encode(*reply);
        fuzz::Check(desktop_link::DecodeReply(message.data(), message.size()).has_value(),
                    "what the desktop answers can travel");
    }
}

// Every element that a process can reach answers.
void ReadAttributes(desktop::Desktop& desktop) {
    using namespace desktop_link;
    Request request;
    request.operation = Operation::hello;
    const auto session = desktop.Handle(1, request)->session;
    if (!session->frontApplication) {
        return;
    }
    std::vector<ElementReference> open{{session->frontApplication->pid, 0}};
    for (std::size_t next = 0; next < open.size() && next < 64; ++next) {
        request.operation = Operation::copyAttributes;
        request.element = open[next];
        request.names = {"AXRole", "AXWindows",      "AXChildren", "AXFrame", "AXParent",
                         "AXRows", "AXSelectedRows", "AXIndex",    "AXValue"};
        const auto reply = desktop.Handle(1, request);
        for (const Value& value : reply ? reply->values : Array()) {
            const auto* list = std::get_if<Array>(&value.content);
            for (const Value& item : list != nullptr ? *list : Array()) {
                if (const auto* element = std::get_if<ElementReference>(&item.content)) {
                    open.push_back(*element);
                }
            }
        }
    }
}

void CheckDump(desktop::Desktop& desktop) {
    const std::string dump = desktop.Dump();
    try {
        desktop::Desktop again(dump, Options());
        fuzz::Check(again.Dump() == dump, "a dump is dumped as it is");
    } catch (const desktop::SceneError&) {
        fuzz::Fail("a dump loads");
    }
}

void Play(const std::vector<std::string>& lines) {
    desktop::Desktop desktop(lines.front(), Options());
    CheckDump(desktop);
    ReadAttributes(desktop);
    for (std::size_t index = 1; index < lines.size() && index < kMostCommands; ++index) {
        if (lines[index].starts_with('#')) {
            Ask(desktop, lines[index]);
        } else {
            Run(desktop, lines[index]);
        }
    }
    desktop.Advance(1);
    ReadAttributes(desktop);
    CheckDump(desktop);
}

}  // namespace

void fuzz::PrepareTarget() {
    std::filesystem::create_directories(PrivateFolder() / "bundles");
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    try {
        Play(fuzz::Lines(data, size));
    } catch (const desktop::SceneError& error) {
        const std::string problem = error.what();
        fuzz::Check(!problem.empty() && problem.find('\n') == std::string::npos,
                    "a problem is one line");
    }
    return 0;
}
