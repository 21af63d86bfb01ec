#include "tools/trace/Signpost.h"

#include <charconv>
#include <sstream>

#include "tools/Output.h"

namespace krt9ctl::trace {

namespace {

// A text of digits, else nothing.
std::optional<int> Digits(std::string_view text, std::size_t begin, std::size_t count) {
    int number = 0;
    if (text.size() < begin + count) {
        return std::nullopt;
    }
    const char* const first = text.data() + begin;
    const auto read = std::from_chars(first, first + count, number);
    return read.ec == std::errc() && read.ptr == first + count ? std::optional(number)
                                                               : std::nullopt;
}

// "2026-01-31 11:03:11.145000+0100"
std::optional<Time> ReadTime(std::string_view text) {
    using namespace std::chrono;
    const auto y = Digits(text, 0, 4), mo = Digits(text, 5, 2), d = Digits(text, 8, 2);
    const auto h = Digits(text, 11, 2), mi = Digits(text, 14, 2), s = Digits(text, 17, 2);
    const auto us = Digits(text, 20, 6), zh = Digits(text, 27, 2), zm = Digits(text, 29, 2);
    if (!y || !mo || !d || !h || !mi || !s || !us || !zh || !zm) {
        return std::nullopt;
    }
    const year_month_day date(year(*y), month(static_cast<unsigned>(*mo)),
                              day(static_cast<unsigned>(*d)));
    if (!date.ok()) {
        return std::nullopt;
    }
    const auto offset = hours(*zh) + minutes(*zm);
    return sys_days(date) + hours(*h) + minutes(*mi) + seconds(*s) + microseconds(*us) -
           (text[26] == '-' ? -offset : offset);
}

std::map<std::string, std::string, std::less<>> ReadFields(const std::string& message) {
    std::map<std::string, std::string, std::less<>> fields;
    std::istringstream words(message);
    for (std::string word; words >> word;) {
        if (const std::size_t equals = word.find('='); equals != std::string::npos) {
            fields[word.substr(0, equals)] = word.substr(equals + 1);
        }
    }
    return fields;
}

std::string TextIn(const Json& object, const char* key) {
    const auto found = object.find(key);
    return found != object.end() && found->is_string() ? found->get<std::string>() : "";
}

// A number, or an object that holds it as its count.
std::uint64_t CountIn(const Json& object, const char* key) {
    const auto found = object.find(key);
    if (found == object.end()) {
        return 0;
    }
    const Json& count = found->is_object() ? found->value("count", Json(0)) : Json(*found);
    return count.is_number() ? count.get<std::uint64_t>() : 0;
}

std::optional<Signpost::Type> TypeOf(const Json& object) {
    const std::string kind = TextIn(object, "eventType");
    const std::string type = TextIn(object, "signpostType");
    if (kind == "lossEvent") {
        return Signpost::Type::loss;
    }
    if (kind != "signpostEvent") {
        return std::nullopt;
    }
    return type == "begin" ? Signpost::Type::begin
           : type == "end" ? Signpost::Type::end
                           : Signpost::Type::event;
}

}  // namespace

std::int64_t Signpost::Number(std::string_view field) const {
    const std::string text = Text(field);
    std::int64_t number = 0;
    std::from_chars(text.data(), text.data() + text.size(), number);
    return number;
}

std::string Signpost::Text(std::string_view field) const {
    const auto found = fields.find(field);
    return found == fields.end() ? "" : found->second;
}

std::optional<Signpost> ReadSignpost(const std::string& line) {
    const Json object = Json::parse(line, nullptr, false);
    const auto type = object.is_object() ? TypeOf(object) : std::nullopt;
    if (!type) {
        return std::nullopt;
    }
    Signpost signpost;
    signpost.type = *type;
    signpost.pid = static_cast<std::int64_t>(CountIn(object, "processID"));
    signpost.lost = CountIn(object, "lossCount");
    if (*type == Signpost::Type::loss) {
        return signpost;
    }
    const auto time = ReadTime(TextIn(object, "timestamp"));
    if (!time) {
        return std::nullopt;
    }
    signpost.time = *time;
    signpost.name = TextIn(object, "signpostName");
    signpost.fields = ReadFields(TextIn(object, "eventMessage"));
    return signpost;
}

}  // namespace krt9ctl::trace
