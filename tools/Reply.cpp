#include "tools/Reply.h"

#include <fmt/args.h>
#include <fmt/format.h>

#include "protocol/MessageSpec.h"

namespace krt9ctl {

std::optional<std::vector<std::int64_t>> DecodeReply(const RequestRow& row,
                                                     std::span<const std::uint8_t> bytes) {
    if (bytes.size() != row.reply.size() * 4) {
        return std::nullopt;
    }
    std::vector<std::int64_t> values;
    const std::uint8_t* next = bytes.data();
    for (const ReplyField& field : row.reply) {
        unsigned int value = 0;
        next += SMessageSpec::DeserializeField(next, &value);
        values.push_back(field.isSigned ? static_cast<std::int64_t>(static_cast<int>(value))
                                        : static_cast<std::int64_t>(value));
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
