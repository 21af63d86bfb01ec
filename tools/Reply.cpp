#include "tools/Reply.h"

#include <fmt/args.h>
#include <fmt/format.h>

#include "companion/KRT9Companion.h"

namespace krt9ctl {

std::optional<std::vector<std::int64_t>> DecodeReply(const RequestRow& row,
                                                     std::span<const std::uint8_t> bytes) {
    if (bytes.size() != row.reply.size() * 4) {
        return std::nullopt;
    }
    const auto fields = krt9::IntegersOf(bytes);
    std::vector<std::int64_t> values;
    for (std::size_t i = 0; i < fields.size(); ++i) {
        values.push_back(row.reply[i].isSigned
                             ? static_cast<std::int64_t>(static_cast<std::int32_t>(fields[i]))
                             : static_cast<std::int64_t>(fields[i]));
    }
    return values;
}

std::string DescribeReply(const RequestRow& row, const std::vector<std::int64_t>& values) {
    fmt::dynamic_format_arg_store<fmt::format_context> fields;
    for (std::size_t i = 0; i < values.size(); ++i) {
        fields.push_back(fmt::arg(std::string(row.reply[i].name).c_str(), values[i]));
    }
    return fmt::vformat(row.sentence, fields);
}

Json ReplyObject(const RequestRow& row, const std::vector<std::int64_t>& values) {
    Json object{{"code", FormatCode(row.code)}};
    for (std::size_t i = 0; i < values.size(); ++i) {
        object[std::string(row.reply[i].name)] = values[i];
    }
    return object;
}

}  // namespace krt9ctl
