#include "desktop/ApplicationReader.h"

#include <limits>

#include "scenes/notation/Fields.h"

namespace desktop {

using namespace scene_notation;
using nlohmann::json;

namespace {

constexpr std::int32_t kFirstPid = 501;

std::int32_t ReadPid(Model& model, const json& source, const std::string& place) {
    if (const json* given = Field(source, "pid")) {
        // The system reports -1 for an application that no longer has a process.
        const auto pid = static_cast<std::int32_t>(ExpectInteger(
            *given, Place(place, "pid"), -1, std::numeric_limits<std::int32_t>::max()));
        if (model.ApplicationWithPid(pid) != nullptr) {
            throw SceneError(Place(place, "pid"), "the process id is taken");
        }
        return pid;
    }
    std::int32_t pid = kFirstPid;
    while (model.ApplicationWithPid(pid) != nullptr) {
        ++pid;
    }
    return pid;
}

std::string DefaultName(const Application& application) {
    const std::string key = application.Key();
    return key.substr(key.rfind('.') + 1);
}

EditorPlaces ReadEditor(const json& source, const std::string& place) {
    ExpectOnly(source, place, {"clipTable", "clipNames", "playhead", "framesPerSecond"});
    EditorPlaces editor;
    if (const json* table = Field(source, "clipTable")) {
        editor.clipTable = ExpectText(*table, Place(place, "clipTable"));
    }
    if (const json* names = Field(source, "clipNames")) {
        for (const json& name : ExpectArray(*names, Place(place, "clipNames"))) {
            editor.clipNames.push_back(ExpectText(name, Place(place, "clipNames")));
        }
    }
    if (const json* playhead = Field(source, "playhead")) {
        editor.playhead = ExpectText(*playhead, Place(place, "playhead"));
    }
    if (const json* rate = Field(source, "framesPerSecond")) {
        editor.framesPerSecond = ExpectInteger(*rate, Place(place, "framesPerSecond"), 1, 1000);
    }
    return editor;
}

void ReadBundle(Application& application, const json& source, const std::string& place) {
    if (const json* info = Field(source, "info")) {
        ExpectShallow(ExpectObject(*info, Place(place, "info")), Place(place, "info"));
        application.info = *info;
    }
    const json* localizations = Field(source, "localizations");
    if (localizations == nullptr) {
        return;
    }
    const std::string inside = Place(place, "localizations");
    if (!application.info) {
        throw SceneError(inside, "only an application with \"info\" has a bundle");
    }
    for (const auto& [language, texts] : ExpectObject(*localizations, inside).items()) {
        for (const auto& [key, text] : ExpectObject(texts, Place(inside, language)).items()) {
            ExpectText(text, Place(Place(inside, language), key));
        }
        application.localizations[language] = texts;
    }
}

}  // namespace

std::unique_ptr<Application> ReadApplicationFacts(Model& model, const json& source,
                                                  const std::string& place) {
    ExpectOnly(source, place,
               {"bundleID", "name", "pid", "info", "localizations", "windows", "misbehaviour",
                "hung", "dead", "editor"});
    auto application = std::make_unique<Application>();
    application->pid = ReadPid(model, source, place);
    if (const json* identifier = Field(source, "bundleID"); identifier && !identifier->is_null()) {
        application->bundleIdentifier = ExpectText(*identifier, Place(place, "bundleID"));
    }
    const json* name = Field(source, "name");
    application->name =
        name == nullptr ? DefaultName(*application) : ExpectText(*name, Place(place, "name"));
    ReadBundle(*application, source, place);
    if (const json* hung = Field(source, "hung")) {
        application->hung = ExpectBoolean(*hung, Place(place, "hung"));
    }
    if (const json* dead = Field(source, "dead")) {
        application->dead = ExpectBoolean(*dead, Place(place, "dead"));
    }
    if (const json* editor = Field(source, "editor")) {
        application->editor = ReadEditor(*editor, Place(place, "editor"));
    }
    application->root.pid = application->pid;
    application->root.hasChildren = true;
    return application;
}

}  // namespace desktop
