#include "fuzz/Requests.h"

#include <algorithm>
#include <iterator>
#include <string>
#include <string_view>

#include "VEKCommon/MessageCodes.h"

namespace fuzz {

namespace {

using Body = std::vector<std::uint8_t>;

enum class Record { none, element, elementAndNumber, three, keystroke, mouse, window, targets };

struct KnownRequest {
    SInt32 code;
    Record record;
};

// Named for the records of the bodies.
constexpr Record kRecordOfNoBody = Record::none;
constexpr Record kRecordOfElementIdentifier = Record::element;
constexpr Record kRecordOfSTwoIntSpec = Record::elementAndNumber;
constexpr Record kRecordOfSThreeIntSpec = Record::three;
constexpr Record kRecordOfSSendKeystrokeSpec = Record::keystroke;
constexpr Record kRecordOfSSendMouseSpec = Record::mouse;
constexpr Record kRecordOfSWindowRequestSpec = Record::window;
constexpr Record kRecordOfSTargetWindowRequestSpec = Record::targets;

constexpr KnownRequest kKnown[] = {
#define REQUEST(code, guard, body, operation, reply) {k##code, kRecordOf##body},
#include "VEKCommon/Requests.def"
#undef REQUEST
    {kStus, Record::none}, {kJFSC, Record::three}};

constexpr std::uint32_t kElements[] = {59,  16, 62, 66,  100, 128, 139,       159,
                                       352, 63, 0,  393, 99,  49,  989855744, 0xFFFFFFFF};

constexpr std::uint32_t kNumbers[] = {0,      1,       2,          3,          0x100,     0x1F00,
                                      0xFFFF, 0x10000, 0x7FFFFFFF, 0x80000000, 0xFFFFFFFF};

constexpr std::string_view kNames[] = {"Final Cut Pro", "CB", "Color Board", "",
                                       "Title",         "T",  "\xC3\xA9",    "\x8E\xFF"};

constexpr std::string_view kTranslations =
    "<plist><dict><key>CB</key><string>Color Board</string><key>T</key><integer>5</integer>"
    "<key>Title</key><string></string></dict></plist>";
constexpr std::string_view kInformation =
    "<plist><dict><key>CFBundleShortVersionString</key><string>10.4.6</string>"
    "<key>CFBundleSignature</key><string>FCPX</string></dict></plist>";

constexpr std::string_view kPropertyLists[] = {
    kTranslations,
    R"(CB = "Color Board"; T = (1, 2); Title = "Final";)",
    kInformation,
    R"({CFBundleShortVersionString = "10.3.2"; CFBundleSignature = "\U20AC"; })",
    R"({CFBundleShortVersionString = "10.1.4"; CFBundleSignature = (x); })",
    R"({CFBundleShortVersionString = "10.3.4"; })",
    R"({CFBundleShortVersionString = (10); CFBundleSignature = "more than four"; })",
    "(a)",
    ""};

void AppendNumber(Body& body, std::uint32_t number) {
    for (int shift = 0; shift < 32; shift += 8) {
        body.push_back(static_cast<std::uint8_t>(number >> shift));
    }
}

std::uint32_t NextNumber(Choices& choices) {
    const std::uint8_t choice = choices.Byte();
    return choice < 224 ? kNumbers[choice % std::size(kNumbers)] : choices.Raw<std::uint32_t>();
}

std::uint32_t NextElement(Choices& choices) {
    const std::uint8_t choice = choices.Byte();
    return choice < 240 ? kElements[choice % std::size(kElements)] : choices.Raw<std::uint32_t>();
}

std::string NextName(Choices& choices) {
    const std::uint8_t choice = choices.Byte();
    if (choice < 192) {
        return std::string(kNames[choice % std::size(kNames)]);
    }
    return choice < 208 ? std::string(240 + choice % 20U, 'n') : choices.Text(choice - 207U);
}

void AppendText(Body& body, const std::string& text) {
    body.insert(body.end(), text.begin(), text.end());
    body.push_back(0);
}

void AppendCandidateName(Body& body, Choices& choices) {
    AppendText(body, NextName(choices));
    const std::size_t units = choices.Below(4);
    AppendNumber(body, static_cast<std::uint32_t>(units));
    const Body bytes = choices.Bytes(2 * units);
    body.insert(body.end(), bytes.begin(), bytes.end());
    body.resize(body.size() + 2 * units - bytes.size());
}

void AppendTargets(Body& body, Choices& choices) {
    const std::uint8_t choice = choices.Byte();
    const std::uint32_t count = choice < 240 ? choice % 5U : NextNumber(choices);
    AppendNumber(body, count);
    for (std::uint32_t i = 0; i < count && i < 8; ++i) {
        AppendCandidateName(body, choices);
        for (int number = 0; number < 4; ++number) {
            AppendNumber(body, NextNumber(choices));
        }
        const bool hasSecondName = choices.Flag();
        AppendNumber(body, hasSecondName ? 1 : 0);
        if (hasSecondName) {
            AppendCandidateName(body, choices);
        }
    }
}

Body CompleteBody(Record record, Choices& choices) {
    Body body;
    const auto append = [&](int count) {
        for (; count > 0; --count) {
            AppendNumber(body, NextNumber(choices));
        }
    };
    switch (record) {
        case Record::none:
            break;
        case Record::element:
            AppendNumber(body, NextElement(choices));
            break;
        case Record::elementAndNumber:
            AppendNumber(body, NextElement(choices));
            append(1);
            break;
        case Record::three:
        case Record::keystroke:
            append(3);
            break;
        case Record::mouse:
            append(4);
            break;
        case Record::window:
            append(1);
            AppendText(body, NextName(choices));
            break;
        case Record::targets:
            AppendTargets(body, choices);
            break;
    }
    return body;
}

}  // namespace

CompanionRequest NextRequest(Choices& choices) {
    CompanionRequest request;
    const std::uint8_t code = choices.Byte();
    const KnownRequest& known = kKnown[code % std::size(kKnown)];
    request.code = code < 253 ? known.code : choices.Raw<SInt32>();
    const std::uint8_t form = choices.Byte();
    if (form == 255) {
        return request;
    }
    if (form < 200) {
        request.body = CompleteBody(known.record, choices);
    } else if (form < 216) {
        Body body = CompleteBody(known.record, choices);
        body.resize(body.size() - choices.Below(body.size() % 256 + 1));
        request.body = body;
    } else if (form < 232) {
        Body body = CompleteBody(known.record, choices);
        if (!body.empty()) {
            body[choices.Below(std::min<std::size_t>(body.size(), 256))] = choices.Byte();
        }
        request.body = body;
    } else {
        request.body = choices.Bytes(choices.Below(64));
    }
    return request;
}

std::vector<std::uint8_t> NextPropertyList(Choices& choices) {
    const std::uint8_t choice = choices.Byte();
    if (choice < 160) {
        const std::string_view text = kPropertyLists[choice % std::size(kPropertyLists)];
        return {text.begin(), text.end()};
    }
    return choices.Bytes(choice - 159U);
}

}  // namespace fuzz
