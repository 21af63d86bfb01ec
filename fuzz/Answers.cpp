#include "fuzz/Answers.h"

#include <algorithm>
#include <iterator>
#include <limits>
#include <memory>
#include <utility>
#include <vector>

namespace fuzz {

using desktop_link::Array;
using desktop_link::Bytes;
using desktop_link::Dictionary;
using desktop_link::ErrorValue;
using desktop_link::Operation;
using desktop_link::Point;
using desktop_link::Range;
using desktop_link::Rect;
using desktop_link::Reply;
using desktop_link::Request;
using desktop_link::Size;

namespace {

// More than any request of a bounded input needs: after that, a walk is told that the application
// no longer answers.
constexpr int kMostAnswers = 4000;

constexpr const char* kRoles[] = {
    "AXButton",      "AXGroup",      "AXCheckBox", "AXRadioGroup",     "AXTextField",
    "AXTable",       "AXStaticText", "AXRow",      "AXValueIndicator", "AXLayoutArea",
    "AXRadioButton", "AXWindow",     "AXCell",     "AXSplitGroup",     "AXScrollArea"};

constexpr const char* kIdentifiers[] = {"_NS:59",  "_NS:16",  "_NS:62",  "_NS:66",  "_NS:100",
                                        "_NS:128", "_NS:139", "_NS:159", "_NS:28",  "_NS:49",
                                        "_NS:63",  "_NS:99",  "_NS:352", "_NS:363", "_NS:393",
                                        "_NS:433", "_NS:435", "_NS:114", "_NS:1234"};

// What the driver looks for in the releases of the editor, with the children that lead to it.
struct Sought {
    const char* role;
    const char* identifier;
};

constexpr Sought kSought[] = {
    {"AXStaticText", "_NS:100"}, {"AXStaticText", "_NS:28"},  {"AXStaticText", "_NS:62"},
    {"AXStaticText", "_NS:66"},  {"AXStaticText", "_NS:433"}, {"AXStaticText", "_NS:435"},
    {"AXTable", "_NS:139"},      {"AXTable", "_NS:16"},       {"AXTable", "_NS:49"},
    {"AXCheckBox", "_NS:159"},   {"AXRadioGroup", "_NS:59"},  {"AXRadioGroup", "_NS:63"},
    {"AXLayoutArea", "_NS:352"}, {"AXLayoutArea", "_NS:363"}, {"AXLayoutArea", "_NS:393"},
    {"AXLayoutArea", "_NS:99"},  {"AXLayoutArea", "_NS:16"},  {"AXButton", "_NS:59"},
    {"AXTextField", "_NS:62"},   {"AXRadioGroup", "_NS:62"},  {"AXCheckBox", "_NS:128"},
    {"AXRadioGroup", "_NS:66"},  {"AXTable", "_NS:100"},      {"AXGroup", "_NS:1"}};

constexpr const char* kTexts[] = {"Final Cut Pro",   "Color Board", "01:00:00:00",
                                  "Playhead",        "12 fps",      "",
                                  "99999999999",     "-5",          "\xC3\xA9\xF0\x9F\x8E\xAC",
                                  "\xEF\xA3\xBF",    "%@%s%n",      "AXSearchField",
                                  "no clip selected"};

constexpr std::int32_t kErrors[] = {-25200, -25201, -25202, -25204, -25205, -25206,
                                    -25211, -25212, -25200, 0,      1,      -10835};

constexpr double kCoordinates[] = {0,
                                   0.5,
                                   -0.5,
                                   1440.9,
                                   -20.75,
                                   1e300,
                                   -1e300,
                                   4294967295.0,
                                   2147483648.0,
                                   -2147483649.0,
                                   std::numeric_limits<double>::infinity(),
                                   -std::numeric_limits<double>::infinity(),
                                   std::numeric_limits<double>::quiet_NaN()};

constexpr std::int64_t kNumbers[] = {0,
                                     1,
                                     2,
                                     -1,
                                     std::numeric_limits<std::int32_t>::max(),
                                     std::numeric_limits<std::int32_t>::min(),
                                     std::int64_t{1} << 32,
                                     std::numeric_limits<std::int64_t>::max(),
                                     std::numeric_limits<std::int64_t>::min()};

constexpr const char* kBuses[] = {
    R"({"devices":[]})",
    R"({"devices":[{"id":1,"name":"KRT-9 USB","entities":[{"id":2,"name":"Private",)"
    R"("sources":[{"id":3,"name":"Private"}],"destinations":[{"id":4,"name":"Private"}]}]}]})",
    R"({"devices":[{"id":1,"name":{"error":-10835},"entities":[]},{"id":5,"name":"KRT-9 USB",)"
    R"("entities":[{"id":6,"name":"Private","sources":[],"destinations":[]}]}]})",
    "[]", ""};

// As received over the wire: what cannot be sent does not arrive here either. The copy has
// exactly the message's size, so that reads beyond it are detected.
std::optional<Reply> OverTheWire(const std::vector<std::uint8_t>& message) {
    const auto exact = std::make_unique<std::uint8_t[]>(message.size());
    std::copy(message.begin(), message.end(), exact.get());
    return desktop_link::DecodeReply(exact.get(), message.size());
}

}  // namespace

std::optional<Reply> Answers::To(const Request& request) {
    if (settled_) {
        return Settled(request);
    }
    if (++answered_ > kMostAnswers) {
        return std::nullopt;
    }
    const unsigned kind = choices_.Byte();
    Reply reply;
    if (kind < 176) {
        reply = Plausible(request);
    } else if (kind < 192) {
        reply.error = ErrorCode();
    } else if (kind < 208) {
        for (std::size_t count = choices_.Below(4); count > 0; --count) {
            reply.values.push_back(AnyValue(0));
        }
        reply.text = Text();
        reply.flag = choices_.Flag();
    } else if (kind < 232) {
        reply = Plausible(request);
        if (!reply.values.empty()) {
            reply.values[choices_.Below(reply.values.size())] = AnyValue(0);
        }
    } else if (kind < 248) {
        return OverTheWire(choices_.Bytes(choices_.Byte()));
    } else {
        return std::nullopt;
    }
    return OverTheWire(Encode(reply));
}

Reply Answers::Plausible(const Request& request) {
    Reply reply;
    switch (request.operation) {
        case Operation::isTrusted:
        case Operation::isSettable:
            reply.flag = choices_.Flag();
            break;
        case Operation::copyAttributes:
            if (choices_.Byte() < 208) {
                return {.values = SoughtElement(request.names)};
            }
            [[fallthrough]];
        case Operation::copyAttribute:
            for (const std::string& name : request.names) {
                reply.values.push_back(PlausibleAttribute(name));
            }
            break;
        case Operation::pointerLocation:
            reply.values.push_back({Point{Coordinate(), Coordinate()}});
            [[fallthrough]];
        case Operation::screens:
            for (std::size_t count = choices_.Below(3); count > 0; --count) {
                reply.values.push_back(
                    {Rect{{Coordinate(), Coordinate()}, {Coordinate(), Coordinate()}}});
            }
            break;
        case Operation::midiDevices:
            reply.text = choices_.Pick(kBuses);
            break;
        default:
            break;
    }
    return reply;
}

// One of the elements that the driver looks for, with everything it wants of it; the input decides
// which one, and its children.
Array Answers::SoughtElement(const std::vector<std::string>& names) {
    const std::uint8_t choice = choices_.Byte();
    const Sought& known = kSought[choice % std::size(kSought)];
    const bool wanted = choice < 128 && !sought_.empty();
    Array values;
    for (const std::string& name : names) {
        if (name == "AXRole") {
            values.push_back({std::string(known.role)});
        } else if (name == "AXIdentifier") {
            values.push_back({wanted ? sought_ : std::string(known.identifier)});
        } else if (name == "AXChildren") {
            values.push_back(Elements());
        } else {
            values.push_back({ErrorValue{-25205}});
        }
    }
    return values;
}

Answers::Value Answers::PlausibleAttribute(const std::string& name) {
    if (name == "AXWindows" || name == "AXChildren" || name == "AXSelectedRows") {
        return Elements();
    }
    if (name == "AXRole") {
        return {std::string(choices_.Byte() < 64 ? "AXValueIndicator" : choices_.Pick(kRoles))};
    }
    if (name == "AXIdentifier") {
        return {std::string(choices_.Pick(kIdentifiers))};
    }
    if (name == "AXSubrole") {
        return choices_.Flag() ? Value{std::string("AXSearchField")} : Value{ErrorValue{-25205}};
    }
    if (name == "AXDescription") {
        return {choices_.Byte() < 64 ? Text() : std::string("Playhead")};
    }
    if (name == "AXPosition") {
        return {Point{Coordinate(), Coordinate()}};
    }
    if (name == "AXSize") {
        return {Size{Coordinate(), Coordinate()}};
    }
    if (name == "AXParent") {
        return {Element()};
    }
    if (name == "AXIndex") {
        return Number();
    }
    if (name == "AXTitle") {
        return {Text()};
    }
    return choices_.Flag() ? Number() : Value{Text()};
}

Reply Answers::Settled(const Request& request) const {
    Reply reply;
    for (const std::string& name : request.names) {
        if (name == "AXWindows") {
            reply.values.push_back({Array{{desktop_link::ElementReference{501, 1}}}});
        } else if (name == "AXChildren" && request.operation == Operation::copyAttribute) {
            reply.values.push_back({Array{{desktop_link::ElementReference{501, 2}}}});
        } else if (name == "AXRole") {
            reply.values.push_back({std::string("AXStaticText")});
        } else if (name == "AXIdentifier") {
            reply.values.push_back({std::string("_NS:100")});
        } else {
            reply.values.push_back({ErrorValue{-25205}});
        }
    }
    return reply;
}

Answers::Value Answers::AnyValue(int depth) {
    constexpr int deepest = 4;
    switch (choices_.Below(depth < deepest ? 15 : 12)) {
        case 0:
            return {std::monostate{}};
        case 1:
            return {choices_.Flag()};
        case 2:
            return Number();
        case 3:
            return {Coordinate()};
        case 4:
            return {Text()};
        case 5:
            return {Point{Coordinate(), Coordinate()}};
        case 6:
            return {Size{Coordinate(), Coordinate()}};
        case 7:
            return {Rect{{Coordinate(), Coordinate()}, {Coordinate(), Coordinate()}}};
        case 8:
            return {Range{choices_.Raw<std::int64_t>(), choices_.Raw<std::int64_t>()}};
        case 9:
            return {ErrorValue{ErrorCode()}};
        case 10:
            return {Element()};
        case 11:
            return {Bytes{choices_.Bytes(choices_.Below(16))}};
        case 12:
            return Elements();
        case 13: {
            Array items;
            for (std::size_t count = choices_.Below(5); count > 0; --count) {
                items.push_back(AnyValue(depth + 1));
            }
            return {items};
        }
        default: {
            Dictionary entries;
            for (std::size_t count = choices_.Below(4); count > 0; --count) {
                std::string key = Text();
                entries.push_back({std::move(key), AnyValue(depth + 1)});
            }
            return {entries};
        }
    }
}

Answers::Value Answers::Elements() {
    Array elements;
    for (std::size_t count = choices_.Below(5); count > 0; --count) {
        elements.push_back({Element()});
    }
    return {elements};
}

// Of a few elements, so that each occurs several times, also as its own ancestor.
desktop_link::ElementReference Answers::Element() {
    const std::uint8_t choice = choices_.Byte();
    if (choice == 0xFF) {
        return {choices_.Raw<std::int32_t>(), choices_.Raw<std::uint64_t>()};
    }
    return {501, choice % 32U};
}

Answers::Value Answers::Number() {
    const std::uint8_t choice = choices_.Byte();
    if (choice < 192) {
        return {std::int64_t{kNumbers[choice % std::size(kNumbers)]}};
    }
    return choice < 224 ? Value{choices_.Raw<std::int64_t>()} : Value{Coordinate()};
}

double Answers::Coordinate() {
    const std::uint8_t choice = choices_.Byte();
    return choice < 224 ? kCoordinates[choice % std::size(kCoordinates)] : choices_.Raw<double>();
}

std::string Answers::Text() {
    const std::uint8_t choice = choices_.Byte();
    if (choice < 160) {
        return kTexts[choice % std::size(kTexts)];
    }
    if (choice < 176) {
        return kIdentifiers[choice % std::size(kIdentifiers)];
    }
    if (choice < 184) {
        return std::string(std::size_t{1} << (choice - 174), 'x');  // 4 to 512
    }
    if (choice < 192) {
        return std::string(1000 + choices_.Below(64), 'y');  // about the longest clip name
    }
    return choices_.Text(choices_.Below(80));
}

std::int32_t Answers::ErrorCode() {
    const std::uint8_t choice = choices_.Byte();
    return choice < 240 ? kErrors[choice % std::size(kErrors)] : choices_.Raw<std::int32_t>();
}

desktop_link::Application Answers::Application(const std::string& bundleFolder) {
    desktop_link::Application application;
    const std::uint8_t choice = choices_.Byte();
    application.pid = choice < 224 ? 501 : choice < 240 ? -1 : choices_.Raw<std::int32_t>();
    const std::uint8_t identifier = choices_.Byte();
    if (identifier < 208) {
        application.bundleIdentifier = "com.apple.FinalCut";
    } else if (identifier < 240) {
        application.bundleIdentifier = Text();
    }
    const std::uint8_t path = choices_.Byte();
    if (path < 208) {
        application.bundlePath = bundleFolder;
    } else if (path < 240) {
        application.bundlePath = Text();
    }
    application.name = Text();
    return application;
}

}  // namespace fuzz
