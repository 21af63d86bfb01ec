#include "tools/Request.h"

#include <algorithm>
#include <array>

#include "VEKCommon/MessageCodes.h"

namespace krt9ctl {

namespace {

constexpr std::array kSignedValue{ReplyField{"value", true}};
constexpr std::array kIndex{ReplyField{"index", false}};
constexpr std::array kPoint{ReplyField{"x", true}, ReplyField{"y", true}};
constexpr std::array kFrame{ReplyField{"x", true}, ReplyField{"y", true}, ReplyField{"width", true},
                            ReplyField{"height", true}};
constexpr std::array kTargetFrame{ReplyField{"target", false}, ReplyField{"x", true},
                                  ReplyField{"y", true}, ReplyField{"width", true},
                                  ReplyField{"height", true}};

struct ReplyForm {
    std::span<const ReplyField> fields;
    std::string_view text;
};

// Named for the record that the reply is.
constexpr ReplyForm kFormOfNoReply{{}, ""};
constexpr ReplyForm kFormOfSOneIntSpec{kSignedValue, "{value}"};
constexpr ReplyForm kFormOfSPointSpec{kPoint, "{x},{y}"};
constexpr ReplyForm kFormOfSPointSizeSpec{kFrame, "at {x},{y} size {width}x{height}"};
constexpr ReplyForm kFormOfSTargetPointSizeSpec{kTargetFrame,
                                                "target {target} at {x},{y} size {width}x{height}"};

constexpr RequestRow Row(MessageCode code, const ReplyForm& form) {
    // The one integer of this request is the index of a button.
    if (code == kJGRV) {
        return {code, kIndex, "{index}"};
    }
    return {code, form.fields, form.text};
}

constexpr std::array kRequests{
#define REQUEST(code, guard, body, operation, reply) Row(k##code, kFormOf##reply),
#include "VEKCommon/Requests.def"
#undef REQUEST
};

}  // namespace

std::span<const RequestRow> RequestTable() {
    return kRequests;
}

const RequestRow* FindRequest(MessageCode code) {
    const auto* row = std::find_if(kRequests.begin(), kRequests.end(),
                                   [code](const RequestRow& each) { return each.code == code; });
    return row == kRequests.end() ? nullptr : row;
}

}  // namespace krt9ctl
