// The table of the companion's requests, and what looks them up for the message port's callback.

#include <CoreFoundation/CoreFoundation.h>
#include <syslog.h>

#include <algorithm>
#include <iterator>
#include <memory>
#include <optional>
#include <string>

#include "VEKCommon/MessageCodes.h"
#include "VEKCommon/Signposts.h"
#include "accessibility/calls/ApplicationCall.h"
#include "driver/CVEK_UserSpaceDriver.h"
#include "protocol/BoundedBytes.h"
#include "protocol/RequestOperations.h"
#include "protocol/ServerSpec.h"

namespace {

// What a body must be for the request to be considered at all. A request that its guard stops is
// ignored, without a log line. An absent body has no bytes either, so that the last two stop the
// same requests.
enum class Guard {
    kNone,
    kNonEmpty,
    kPresentNonEmpty,
};

struct Request {
    SInt32 code;
    Guard guard;
    bool hasReply;
    bool (*holdsCompleteRecord)(BoundedBytes& body);
    CFDataRef (*serve)(CVEK_UserSpaceDriver& driver, const unsigned char* completeBody);
};

template <class Body, auto operation, class Reply>
CFDataRef Serve(CVEK_UserSpaceDriver& driver, const unsigned char* completeBody) {
    Body body;
    body.Deserialize(completeBody);
    std::optional<Reply> reply = operation(driver, body);
    return reply ? CFDataCreate(kCFAllocatorDefault, reply->Serialize(),
                                static_cast<CFIndex>(reply->SerialBufferSize()))
                 : nullptr;
}

template <class Body, auto operation>
CFDataRef ServeWithoutReply(CVEK_UserSpaceDriver& driver, const unsigned char* completeBody) {
    Body body;
    body.Deserialize(completeBody);
    operation(driver, body);
    return nullptr;
}

using Do = RequestOperations;
using NoReply = void;

template <SInt32 code, Guard guard, class Body, auto operation, class Reply>
constexpr Request Row = {code, guard, true, &Body::SkipOver, &Serve<Body, operation, Reply>};

template <SInt32 code, Guard guard, class Body, auto operation>
constexpr Request Row<code, guard, Body, operation, NoReply> = {
    code, guard, false, &Body::SkipOver, &ServeWithoutReply<Body, operation>};

constexpr Request kRequests[] = {
#define REQUEST(code, guard, Body, operation, Reply) \
    Row<k##code, Guard::guard, Body, &Do::operation, Reply>,
#include "VEKCommon/Requests.def"
#undef REQUEST
};

// A copy of the body that lasts for the whole operation, whatever becomes of the port's data.
class BodyCopy {
  public:
    explicit BodyCopy(CFDataRef data) {
        const CFIndex length = data == nullptr ? 0 : CFDataGetLength(data);
        if (length > 0) {
            length_ = static_cast<std::size_t>(length);
            bytes_ = std::make_unique<unsigned char[]>(length_);
            CFDataGetBytes(data, CFRangeMake(0, length), bytes_.get());
        }
    }

    const unsigned char* Bytes() const { return bytes_.get(); }
    std::size_t Length() const { return length_; }

  private:
    std::unique_ptr<unsigned char[]> bytes_;
    std::size_t length_ = 0;
};

std::string Description(const BodyFault& fault) {
    const std::string value = std::to_string(fault.value);
    const std::string needed = std::to_string(fault.needed);
    if (fault.kind == BodyFault::Kind::kTooShort) {
        return "is too short, at least " + needed + " are needed";
    }
    if (fault.kind == BodyFault::Kind::kNoTerminator) {
        return "holds a text without terminator";
    }
    if (fault.kind == BodyFault::Kind::kTooLong) {
        return "holds a name of " + value + " " + fault.unit + ", of which " + needed + " fit";
    }
    return "does not hold its count of " + value + ", at least " + needed + " are needed";
}

void LogRefusedBody(const Request& request, std::size_t length, const BodyFault& fault) {
    const auto character = [&request](int shift) { return request.code >> shift & 0xFF; };
    syslog(LOG_EMERG, "request '%c%c%c%c' refused: its body of %zu bytes %s\n", character(24),
           character(16), character(8), character(0), length, Description(fault).c_str());
}

// What became of a request: the reply, if there is one, and a word for the signposts.
struct Outcome {
    CFDataRef reply;
    const char* result;
};

Outcome HandleMessage(CVEK_UserSpaceDriver& driver, SInt32 code, const BodyCopy& body) {
    const auto* const request =
        std::find_if(std::begin(kRequests), std::end(kRequests),
                     [code](const Request& candidate) { return candidate.code == code; });
    if (request == std::end(kRequests)) {
        syslog(LOG_EMERG, "%s - message not handled\n",
               "CFDataRef CVEK_UserSpaceDriver::MessageCallback(CFMessagePortRef, SInt32, "
               "CFDataRef, void *)");
        return {nullptr, "unknown"};
    }
    if (request->guard != Guard::kNone && body.Length() == 0) {
        return {nullptr, "ignored"};
    }
    BoundedBytes bytes(body.Bytes(), body.Length());
    if (!request->holdsCompleteRecord(bytes)) {
        LogRefusedBody(*request, body.Length(), bytes.Fault());
        return {nullptr, "refused"};
    }
    const OneWait wait;
    const CFDataRef reply = request->serve(driver, body.Bytes());
    return {reply, reply != nullptr ? "replied" : request->hasReply ? "failed" : "done"};
}

}  // namespace

CFDataRef CVEK_UserSpaceDriver::MessageCallback(CFMessagePortRef, SInt32 msgid, CFDataRef data,
                                                void*) {
    [[maybe_unused]] const SServerSpec envelope;  // the family's envelope; requests come without it
    const BodyCopy body(data);
    SignpostRequestBegins(msgid, body.Bytes(), body.Length());
    const unsigned long callsBefore = CallsMade();
    const Outcome outcome = HandleMessage(*this, msgid, body);
    SignpostRequestEnds(msgid, outcome.result, outcome.reply, CallsMade() - callsBefore);
    return outcome.reply;
}
