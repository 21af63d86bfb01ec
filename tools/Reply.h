// Replies of the driver, decoded.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "tools/Output.h"
#include "tools/Request.h"

namespace krt9ctl {

// The values of the fields in the row's order. Nothing unless the bytes are exactly that record.
std::optional<std::vector<std::int64_t>> DecodeReply(const RequestRow& row,
                                                     std::span<const std::uint8_t> bytes);

// The row's sentence with its fields filled in.
std::string DescribeReply(const RequestRow& row, const std::vector<std::int64_t>& values);

// {"code": ..., and the fields}
Json ReplyObject(const RequestRow& row, const std::vector<std::int64_t>& values);

}  // namespace krt9ctl
