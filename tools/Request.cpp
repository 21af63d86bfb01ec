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
constexpr std::span<const ReplyField> kNone{};

constexpr std::array kRequests{
    RequestRow{kJAcF, kNone, ""},
    RequestRow{kJBtP, kNone, ""},
    RequestRow{kJCPK, kNone, ""},
    RequestRow{kJEPp, kPoint, "{x},{y}"},
    RequestRow{kJESI, kSignedValue, "{value}"},
    RequestRow{kJElP, kPoint, "{x},{y}"},
    RequestRow{kJElV, kSignedValue, "{value}"},
    RequestRow{kJGRV, kIndex, "{index}"},
    RequestRow{kJGlM, kPoint, "{x},{y}"},
    RequestRow{kJObE, kNone, ""},
    RequestRow{kJObT, kNone, ""},
    RequestRow{kJPMC, kNone, ""},
    RequestRow{kJPME, kNone, ""},
    RequestRow{kJPMS, kNone, ""},
    RequestRow{kJPth, kNone, ""},
    RequestRow{kJSIS, kNone, ""},
    RequestRow{kJSRV, kNone, ""},
    RequestRow{kJStO, kNone, ""},
    RequestRow{kJTWP, kTargetFrame, "target {target} at {x},{y} size {width}x{height}"},
    RequestRow{kJWiP, kFrame, "at {x},{y} size {width}x{height}"},
    RequestRow{kJXRs, kNone, ""},
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
