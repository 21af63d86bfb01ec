#include "fuzz/JsonMutator.h"

#include <algorithm>
#include <cstring>
#include <iterator>
#include <nlohmann/json.hpp>
#include <random>
#include <utility>

extern "C" std::size_t LLVMFuzzerMutate(std::uint8_t* data, std::size_t size, std::size_t maxSize);

namespace fuzz {

namespace {

using nlohmann::json;

constexpr std::size_t kLongestText = 64;

const char* const kKeys[] = {"trusted",
                             "screens",
                             "frame",
                             "pointer",
                             "front",
                             "applications",
                             "midi",
                             "script",
                             "activationGap",
                             "bundleID",
                             "name",
                             "pid",
                             "info",
                             "localizations",
                             "windows",
                             "hung",
                             "dead",
                             "misbehaviour",
                             "editor",
                             "clipTable",
                             "clipNames",
                             "playhead",
                             "actions",
                             "settable",
                             "AXRole",
                             "AXChildren",
                             "AXIdentifier",
                             "AXValue",
                             "AXPosition",
                             "AXSize",
                             "AXTitle",
                             "AXMain",
                             "AXSelectedRows",
                             "AXMinValue",
                             "AXMaxValue",
                             "AXEnabled",
                             "point",
                             "size",
                             "rect",
                             "range",
                             "array",
                             "dictionary",
                             "data",
                             "double",
                             "element",
                             "application",
                             "null",
                             "axerror",
                             "error",
                             "nothing",
                             "read",
                             "set",
                             "action",
                             "multiple",
                             "after",
                             "times",
                             "answer",
                             "then",
                             "works",
                             "delay",
                             "devices",
                             "entities",
                             "sources",
                             "destinations",
                             "id",
                             "connectError",
                             "command",
                             "at",
                             "attribute",
                             "value",
                             "parent",
                             "position",
                             "row",
                             "clip",
                             "timecode",
                             "frames",
                             "seconds",
                             "since",
                             "clear",
                             "for",
                             "gap",
                             "device",
                             "framesPerSecond",
                             "request",
                             "names",
                             "flag",
                             "number",
                             "text",
                             "type",
                             "keyCode",
                             "flags",
                             "*"};

const char* const kTexts[] = {"/",
                              "/0/0",
                              "/AXWindow/AXGroup[1]",
                              "_NS:1",
                              "AXWindow",
                              "AXTable",
                              "AXRow",
                              "AXRadioButton",
                              "AXSlider",
                              "AXTextField",
                              "AXPress",
                              "AXConfirm",
                              "AXIncrement",
                              "AXCancel",
                              "AXDecrement",
                              "AXRaise",
                              "AXMain",
                              "AXFrontmost",
                              "AXSelected",
                              "AXSelectedRows",
                              "AXWindows",
                              "AXFrame",
                              "AXFocusedWindow",
                              "01:00:00:00",
                              "nan",
                              "00ff",
                              "com.apple.FinalCut",
                              "pid:501",
                              "activate",
                              "launch",
                              "quit",
                              "kill",
                              "hang",
                              "unhang",
                              "trust",
                              "set",
                              "insert",
                              "remove",
                              "press",
                              "misbehave",
                              "selectClip",
                              "playhead",
                              "plug",
                              "unplug",
                              "pointer",
                              "log",
                              "state",
                              "element",
                              "dump",
                              "step",
                              "play",
                              "advance",
                              "stop",
                              "",
                              "en",
                              "CFBundleShortVersionString"};

class Mutation {
  public:
    explicit Mutation(unsigned seed) : random_(seed) {}

    std::size_t Below(std::size_t count) { return random_() % count; }

    // Every value of the tree, the root first.
    static std::vector<json*> Places(json& root) {
        std::vector<json*> places{&root};
        for (std::size_t next = 0; next < places.size(); ++next) {
            if (places[next]->is_structured()) {
                for (json& item : *places[next]) {
                    places.push_back(&item);
                }
            }
        }
        return places;
    }

    void Change(json& root) {
        const std::vector<json*> places = Places(root);
        json& place = *places[Below(places.size())];
        switch (Below(7)) {
            case 0:
                place = json(*places[Below(places.size())]);
                break;
            case 1:
                place = Scalar();
                break;
            case 2:
                place = json{{kKeys[Below(std::size(kKeys))], json(place)}};
                break;
            case 3:
                place = json::array({json(place), Scalar()});
                break;
            case 4:
                Remove(place);
                break;
            case 5:
                Add(place, json(*places[Below(places.size())]));
                break;
            default:
                ChangeScalar(place);
                break;
        }
    }

  private:
    json Scalar() {
        switch (Below(8)) {
            case 0:
                return nullptr;
            case 1:
                return Below(2) == 0;
            case 2:
                return static_cast<std::int64_t>(Below(5)) - 2;
            case 3:
                return std::int64_t{1} << Below(63);
            case 4:
                return static_cast<double>(Below(1000)) / 8 - 50;
            case 5:
                return -25200 - static_cast<int>(Below(15));
            case 6:
                return 1e300;
            default:
                return kTexts[Below(std::size(kTexts))];
        }
    }

    void Remove(json& place) {
        if (place.is_structured() && !place.empty()) {
            place.erase(std::next(place.begin(), static_cast<std::ptrdiff_t>(Below(place.size()))));
        }
    }

    void Add(json& place, json value) {
        if (place.is_object()) {
            place[kKeys[Below(std::size(kKeys))]] = Below(2) == 0 ? std::move(value) : Scalar();
        } else if (place.is_array()) {
            place.insert(
                std::next(place.begin(), static_cast<std::ptrdiff_t>(Below(place.size() + 1))),
                std::move(value));
        }
    }

    void ChangeScalar(json& place) {
        if (place.is_string()) {
            std::string text = place.get<std::string>();
            const std::size_t size = std::min(text.size(), kLongestText);
            text.resize(kLongestText);
            text.resize(
                LLVMFuzzerMutate(reinterpret_cast<std::uint8_t*>(text.data()), size, kLongestText));
            place = text;
        } else if (place.is_number_integer()) {
            place = place.get<std::int64_t>() ^ (std::int64_t{1} << Below(40));
        } else if (!place.is_structured()) {
            place = Scalar();
        }
    }

    std::mt19937 random_;
};

}  // namespace

std::vector<std::string> Lines(const std::uint8_t* data, std::size_t size) {
    std::vector<std::string> lines(1);
    for (std::size_t index = 0; index < size; ++index) {
        if (data[index] == '\n') {
            lines.emplace_back();
        } else {
            lines.back().push_back(static_cast<char>(data[index]));
        }
    }
    return lines;
}

std::vector<std::string> MutateOneLine(std::vector<std::string> lines, unsigned seed) {
    Mutation mutation(seed);
    std::string& line = lines[mutation.Below(lines.size())];
    if (mutation.Below(16) == 0) {
        std::string copy = line;
        lines.push_back(std::move(copy));
        return lines;
    }
    json tree = json::parse(line, nullptr, false);
    if (!tree.is_discarded()) {
        mutation.Change(tree);
        line = tree.dump(-1, ' ', false, json::error_handler_t::replace);
    }
    return lines;
}

}  // namespace fuzz

// One mutation in four is of bytes, as everywhere.
extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size,
                                               std::size_t maxSize, unsigned seed) {
    if (seed % 4 == 0) {
        return LLVMFuzzerMutate(data, size, maxSize);
    }
    std::string text;
    for (const std::string& line : fuzz::MutateOneLine(fuzz::Lines(data, size), seed)) {
        text += text.empty() ? line : "\n" + line;
    }
    if (text.empty() || text.size() > maxSize) {
        return LLVMFuzzerMutate(data, size, maxSize);
    }
    std::copy(text.begin(), text.end(), data);
    return text.size();
}
