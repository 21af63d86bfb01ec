#include "tools/CompanionMessage.h"

#include <fmt/chrono.h>
#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <ctime>
#include <optional>

#include "VEKCommon/MessageCodes.h"
#include "tools/Text.h"

namespace krt9ctl {

namespace {

struct MessageRow {
    MessageCode code;
    std::string_view meaning;
    bool hasText;
};

constexpr std::array kMessages{
    MessageRow{kStus, "status query", false},
    MessageRow{kJSLg, "language", true},
    MessageRow{kJFSC, "clip", true},
    MessageRow{kJFTC, "timecode", true},
};

// On a terminal; JSON holds every byte.
constexpr std::size_t kMostBytesShown = 64;

const MessageRow* FindMessage(MessageCode code) {
    for (const MessageRow& row : kMessages) {
        if (row.code == code) {
            return &row;
        }
    }
    return nullptr;
}

// Nothing unless the message has one, and it is well formed.
std::optional<std::string> TextOf(const CompanionMessage& message) {
    const krt9::Message decoded = krt9::DecodeMessage(message.code, message.body);
    const bool hasText =
        decoded.kind != krt9::MessageKind::other && decoded.kind != krt9::MessageKind::statusQuery;
    return hasText ? std::optional(decoded.text) : std::nullopt;
}

std::string ShownBytes(const Bytes& body) {
    const auto shown = std::span(body).first(std::min(body.size(), kMostBytesShown));
    return fmt::format("{} bytes {}{}", body.size(), FormatHex(shown),
                       shown.size() < body.size() ? "..." : "");
}

long Milliseconds(std::chrono::system_clock::time_point time) {
    const auto sinceEpoch = time.time_since_epoch();
    return static_cast<long>(
        std::chrono::duration_cast<std::chrono::milliseconds>(sinceEpoch).count() % 1000);
}

}  // namespace

Json MessageObject(const CompanionMessage& message) {
    const std::time_t time = std::chrono::system_clock::to_time_t(message.time);
    std::tm utc = {};
    gmtime_r(&time, &utc);
    Json object{
        {"time", fmt::format("{:%Y-%m-%dT%H:%M:%S}.{:03}Z", utc, Milliseconds(message.time))},
        {"code", FormatCode(message.code)}};
    const MessageRow* row = FindMessage(message.code);
    const auto text = TextOf(message);
    if (text) {
        object["text"] = *text;
    } else if (row != nullptr && (row->hasText || !message.body.empty())) {
        object["body"] = FormatHex(message.body);
        object["malformed"] = true;
    } else if (row == nullptr) {
        object["body"] = FormatHex(message.body);
    }
    if (message.answer) {
        object["units"] = message.answer->units;
        object["channels"] = message.answer->channels;
    }
    return object;
}

std::string DescribeMessage(const CompanionMessage& message) {
    const MessageRow* row = FindMessage(message.code);
    const auto text = TextOf(message);
    std::string what;
    if (row == nullptr) {
        what = "unknown message, " + ShownBytes(message.body);
    } else if (text) {
        what = fmt::format("{}: {}", row->meaning, Printable(*text));
    } else if (row->hasText || !message.body.empty()) {
        what = fmt::format("{}, malformed: {}", row->meaning, ShownBytes(message.body));
    } else {
        what = row->meaning;
    }
    if (message.answer) {
        what += fmt::format(", answered: {} units, {} channels", message.answer->units,
                            message.answer->channels);
    }
    const std::time_t time = std::chrono::system_clock::to_time_t(message.time);
    std::tm local = {};
    localtime_r(&time, &local);
    return fmt::format("{:%H:%M:%S}.{:03} {} {}", local, Milliseconds(message.time),
                       FormatCode(message.code), what);
}

}  // namespace krt9ctl
