// What the driver did, for people and for programs.
#include <fmt/chrono.h>
#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <array>
#include <ctime>
#include <sstream>

#include "VEKCommon/MessageCodes.h"
#include "tools/Delivery.h"
#include "tools/Reply.h"
#include "tools/RequestBody.h"
#include "tools/Text.h"
#include "tools/trace/Timeline.h"

namespace krt9ctl::trace {

namespace {

// Requests whose body begins with the number of an element.
constexpr std::array kOfElements = {kJBtP, kJEPp, kJESI, kJElP, kJElV, kJGRV, kJSIS, kJSRV};

std::optional<MessageCode> CodeOf(const Signpost& signpost) {
    const std::string text = signpost.Text("code");
    return text.size() == 4
               ? std::optional(FourCharacterCode({text[0], text[1], text[2], text[3], '\0'}))
               : std::nullopt;
}

std::optional<std::string> ElementOf(const Event& event) {
    const auto code = CodeOf(event.end);
    const bool names =
        code && std::find(kOfElements.begin(), kOfElements.end(), *code) != kOfElements.end();
    if (!names || !event.begin || event.begin->Number("length") < 4) {
        return std::nullopt;
    }
    return fmt::format("_NS:{}", event.begin->Number("first"));
}

// The reply's record, as far as the driver tells it.
std::optional<std::vector<std::int64_t>> ReplyOf(const Event& event, const RequestRow* row) {
    if (row == nullptr || event.end.Text("result") != "replied") {
        return std::nullopt;
    }
    Bytes bytes;
    std::istringstream numbers(event.end.Text("reply"));
    std::string number;
    for (auto left = event.end.Number("count"); left > 0 && std::getline(numbers, number, ',');
         --left) {
        const Bytes one = OneNumberBody(std::strtoll(number.c_str(), nullptr, 10));
        bytes.insert(bytes.end(), one.begin(), one.end());
    }
    return DecodeReply(*row, bytes);
}

std::string UtcText(Time time) {
    const auto second = std::chrono::floor<std::chrono::seconds>(time);
    const std::time_t seconds = std::chrono::system_clock::to_time_t(second);
    std::tm utc = {};
    gmtime_r(&seconds, &utc);
    return fmt::format("{:%Y-%m-%dT%H:%M:%S}.{:06}Z", utc, (time - second).count());
}

std::string LocalText(Time time) {
    const auto second = std::chrono::floor<std::chrono::seconds>(time);
    const std::time_t seconds = std::chrono::system_clock::to_time_t(second);
    std::tm local = {};
    localtime_r(&seconds, &local);
    return fmt::format("{:%H:%M:%S}.{:03}", local, (time - second).count() / 1000);
}

Json RequestObject(const Event& event) {
    const auto code = CodeOf(event.end);
    const RequestRow* row = code ? FindRequest(*code) : nullptr;
    Json object{{"code", event.end.Text("code")}, {"result", event.end.Text("result")}};
    if (const auto element = ElementOf(event)) {
        object["element"] = *element;
    }
    if (const auto values = ReplyOf(event, row)) {
        object["reply"] = ReplyObject(*row, *values);
        object["reply"].erase("code");
    }
    object["exchanges"] = event.end.Number("exchanges");
    return object;
}

Json TickObject(const Event& event) {
    Json steps = Json::array();
    for (const Event& step : event.steps) {
        Json object{{"step", step.end.Text("step")}, {"exchanges", step.end.Number("exchanges")}};
        if (const auto time = step.Milliseconds()) {
            object["milliseconds"] = *time;
        }
        steps.push_back(object);
    }
    return {{"exchanges", event.end.Number("exchanges")}, {"steps", steps}};
}

std::string Exchanges(const Event& event) {
    const auto count = event.end.Number("exchanges");
    return fmt::format("{} {}", count, count == 1 ? "exchange" : "exchanges");
}

std::string DescribeRequest(const Event& event) {
    const auto code = CodeOf(event.end);
    const RequestRow* row = code ? FindRequest(*code) : nullptr;
    std::string line = "request " + Printable(event.end.Text("code"));
    if (const auto element = ElementOf(event)) {
        line += " " + *element;
    }
    line += " " + Printable(event.end.Text("result"));
    if (const auto values = ReplyOf(event, row)) {
        line += ": " + DescribeReply(*row, *values);
    }
    return line + ", " + Exchanges(event);
}

std::string DescribeMessage(const Event& event) {
    const auto status = static_cast<std::int32_t>(event.end.Number("status"));
    return fmt::format("message {} {}", Printable(event.end.Text("code")),
                       status == 0 ? "sent" : fmt::format("not sent, status {}", status));
}

std::string DescribeTick(const Event& event) {
    std::vector<std::string> steps;
    for (const Event& step : event.steps) {
        steps.push_back(fmt::format("{} {:.2f} ms ({})", Printable(step.end.Text("step")),
                                    step.Milliseconds().value_or(0), Exchanges(step)));
    }
    return fmt::format("tick {}{}{}", Exchanges(event), steps.empty() ? "" : ": ",
                       fmt::join(steps, ", "));
}

std::string Describe(const Event& event) {
    if (event.end.name == "request") {
        return DescribeRequest(event);
    }
    if (event.end.name == "message") {
        return DescribeMessage(event);
    }
    return event.end.name == "tick" ? DescribeTick(event) : Printable(event.end.name);
}

}  // namespace

Json EventObject(const Event& event) {
    if (event.end.type == Signpost::Type::loss) {
        return {{"event", "lost"}, {"count", event.end.lost}, {"pid", event.end.pid}};
    }
    Json object{{"time", UtcText(event.begin ? event.begin->time : event.end.time)},
                {"event", event.end.name},
                {"pid", event.end.pid}};
    if (event.end.name == "request") {
        object.update(RequestObject(event));
    } else if (event.end.name == "message") {
        object["code"] = event.end.Text("code");
        object["status"] = event.end.Number("status");
    } else if (event.end.name == "tick") {
        object.update(TickObject(event));
    }
    if (const auto time = event.Milliseconds()) {
        object["milliseconds"] = *time;
    }
    return object;
}

std::string DescribeEvent(const Event& event) {
    if (event.end.type == Signpost::Type::loss) {
        return fmt::format("{} signposts were lost", event.end.lost);
    }
    const auto time = event.Milliseconds();
    return fmt::format("{} {}{}", LocalText(event.begin ? event.begin->time : event.end.time),
                       Describe(event), time ? fmt::format(", {:.2f} ms", *time) : "");
}

}  // namespace krt9ctl::trace
