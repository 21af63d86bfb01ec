// NSLog, in place of GNUstep's, which converts the text to the default C string encoding. The
// line on stderr is UTF-8, as on macOS.
#import <Foundation/Foundation.h>

#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <ctime>

#include "platform/CoreFoundation/Strings/FormatText.h"
#include "platform/CoreFoundation/Strings/StringUnits.h"
#include "platform/CoreFoundation/Strings/TextEncoding.h"
#include "platform/Foundation/LogSink.h"

namespace {

// Such as "2024-05-01 12:00:00.123 krt9[4711:4712] ".
std::string Prefix() {
    timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    tm local{};
    localtime_r(&now.tv_sec, &local);
    std::array<char, 32> date{};
    std::strftime(date.data(), date.size(), "%Y-%m-%d %H:%M:%S", &local);

    constexpr long kNanosecondsPerMillisecond = 1000000;
    std::array<char, 64> fraction{};
    std::snprintf(fraction.data(), fraction.size(), ".%03ld ",
                  now.tv_nsec / kNanosecondsPerMillisecond);
    std::array<char, 64> process{};
    std::snprintf(process.data(), process.size(), "[%d:%d] ", getpid(), gettid());
    return std::string(date.data()) + fraction.data() + program_invocation_short_name +
           process.data();
}

}  // namespace

void NSLogv(NSString* format, va_list arguments) {
    @autoreleasepool {
        NSString* plain = core_foundation::NewString(
            core_foundation::FormatForGNUstep(core_foundation::StringUnits(format).view()));
        NSString* text = [[NSString alloc] initWithFormat:plain arguments:arguments];
        [plain release];
        const std::string bytes =
            core_foundation::EncodeForPeople(core_foundation::StringUnits(text).view());
        [text release];
        foundation::WriteLogLine(foundation::Log::console, 0, Prefix(), bytes);
    }
}

void NSLog(NSString* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    NSLogv(format, arguments);
    va_end(arguments);
}
