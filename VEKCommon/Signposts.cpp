#include "VEKCommon/Signposts.h"

#include <os/log.h>
#include <os/signpost.h>

#include <algorithm>

#include "VEKCommon/Names.h"

namespace {

os_log_t DriverLog() {
    static const os_log_t log = os_log_create(kDriverBundleID, kSignpostCategory);
    return log;
}

// Four characters; what cannot be printed is '.'.
struct CodeText {
    explicit CodeText(SInt32 code) {
        for (int i = 0; i < 4; ++i) {
            const auto character = static_cast<char>(code >> (24 - 8 * i));
            text[i] = character > ' ' && character <= '~' ? character : '.';
        }
    }
    char text[5] = {};
};

// The numbers of a record, four bytes each, in host order.
struct Numbers {
    static constexpr CFIndex kMost = 5;

    explicit Numbers(CFDataRef reply) {
        const CFIndex length = reply == nullptr ? 0 : CFDataGetLength(reply);
        count = std::min(length / 4, kMost);
        if (count > 0) {
            CFDataGetBytes(reply, CFRangeMake(0, 4 * count), reinterpret_cast<UInt8*>(values));
        }
    }
    CFIndex count = 0;
    SInt32 values[kMost] = {};
};

unsigned FirstNumber(const unsigned char* body, unsigned long length) {
    unsigned number = 0;
    if (length >= sizeof number) {
        std::copy(body, body + sizeof number, reinterpret_cast<unsigned char*>(&number));
    }
    return number;
}

const char* StepName(TickStep step) {
    switch (step) {
        case TickStep::language:
            return "language";
        case TickStep::profile:
            return "profile";
        case TickStep::clip:
            return "clip";
        case TickStep::timecode:
            return "timecode";
        default:
            return "status";
    }
}

}  // namespace

void SignpostRequestBegins(SInt32 code, const unsigned char* body, unsigned long length) {
    os_signpost_interval_begin(DriverLog(), OS_SIGNPOST_ID_EXCLUSIVE, "request",
                               "code=%{public}s length=%lu first=%u", CodeText(code).text, length,
                               FirstNumber(body, length));
}

void SignpostRequestEnds(SInt32 code, const char* result, CFDataRef reply,
                         unsigned long exchanges) {
    if (!os_signpost_enabled(DriverLog())) {
        return;
    }
    const Numbers numbers(reply);
    const SInt32* const values = numbers.values;
    os_signpost_interval_end(DriverLog(), OS_SIGNPOST_ID_EXCLUSIVE, "request",
                             "code=%{public}s result=%{public}s exchanges=%lu count=%ld "
                             "reply=%d,%d,%d,%d,%d",
                             CodeText(code).text, result, exchanges, numbers.count, values[0],
                             values[1], values[2], values[3], values[4]);
}

void SignpostTickBegins() {
    os_signpost_interval_begin(DriverLog(), OS_SIGNPOST_ID_EXCLUSIVE, "tick");
}

void SignpostTickEnds(unsigned long exchanges) {
    os_signpost_interval_end(DriverLog(), OS_SIGNPOST_ID_EXCLUSIVE, "tick", "exchanges=%lu",
                             exchanges);
}

void SignpostStepBegins(TickStep step) {
    os_signpost_interval_begin(DriverLog(), OS_SIGNPOST_ID_EXCLUSIVE, "step", "step=%{public}s",
                               StepName(step));
}

void SignpostStepEnds(TickStep step, unsigned long exchanges) {
    os_signpost_interval_end(DriverLog(), OS_SIGNPOST_ID_EXCLUSIVE, "step",
                             "step=%{public}s exchanges=%lu", StepName(step), exchanges);
}

void SignpostMessageBegins(SInt32 code, unsigned long long length) {
    os_signpost_interval_begin(DriverLog(), OS_SIGNPOST_ID_EXCLUSIVE, "message",
                               "code=%{public}s length=%llu", CodeText(code).text, length);
}

void SignpostMessageEnds(SInt32 code, SInt32 status) {
    os_signpost_interval_end(DriverLog(), OS_SIGNPOST_ID_EXCLUSIVE, "message",
                             "code=%{public}s status=%d", CodeText(code).text, status);
}
