// One request to the driver and what its reply looks like.
#pragma once

#include <optional>
#include <span>
#include <string_view>
#include <vector>

#include "tools/Bytes.h"

namespace krt9ctl {

struct Request {
    MessageCode code = 0;
    Bytes body;
    // Sent even when an earlier request of the same plan failed after it may have reached the
    // driver: what was pressed must be released, or keys and buttons stay down.
    bool releases = false;
};

// The requests of one verb, in the order in which they are sent.
using Plan = std::vector<Request>;

// A reply is nothing or a record of 32-bit fields.
struct ReplyField {
    std::string_view name;  // in JSON
    bool isSigned;
};

struct RequestRow {
    MessageCode code;
    std::span<const ReplyField> reply;  // empty: no reply is due
    std::string_view sentence;          // the reply for people; {name} stands for a field
};

// Every request of the driver, in the order of VEKCommon/Requests.def.
std::span<const RequestRow> RequestTable();

// The row of a code, null for a code the driver does not know.
const RequestRow* FindRequest(MessageCode code);

}  // namespace krt9ctl
