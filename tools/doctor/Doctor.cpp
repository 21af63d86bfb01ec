// The verb that looks for what may be wrong between companion, driver and editor.
#include <CoreFoundation/CoreFoundation.h>

#include <chrono>
#include <thread>

#include "tools/Arguments.h"
#include "tools/Grammar.h"
#include "tools/Interruption.h"
#include "tools/doctor/Examination.h"

namespace krt9ctl {

// The run loop must run for the process to learn what comes to the front.
void doctor::WaitForTheFront(double seconds, Output& output) {
    using Clock = std::chrono::steady_clock;
    const auto end = Clock::now() + std::chrono::duration<double>(seconds);
    output.Progress("waiting before the first look");
    while (Clock::now() < end && Interruption::Raised() == ExitCode::ok) {
        CFRunLoopRunInMode(kCFRunLoopDefaultMode, 0, false);
        std::this_thread::sleep_for(std::min<Clock::duration>(
            std::chrono::milliseconds(100),
            std::chrono::duration_cast<Clock::duration>(end - Clock::now())));
    }
    CFRunLoopRunInMode(kCFRunLoopDefaultMode, 0, false);
}

namespace {

ExitCode ActDoctor(const Arguments& arguments, Context& context) {
    if (arguments.Has("--after")) {
        doctor::WaitForTheFront(arguments.SecondsOr("--after", 0), context.output);
    }
    ExitCode code = ExitCode::ok;
    for (const doctor::Finding& finding : doctor::Examine(context)) {
        context.output.Result(FindingObject(finding), FindingLine(finding));
        if (code == ExitCode::ok) {
            code = finding.code;
        }
    }
    return code;
}

}  // namespace

std::vector<Verb> DoctorVerbs() {
    return {
        {.name = "doctor",
         .requests = "",
         .summary = "look for what is wrong between companion, driver, editor and controller",
         .detail =
             "Prints one line for each possible cause: ok, fails with the command to type, or "
             "cannot-tell with the reason. The exit code is that of the first check that fails; 0 "
             "when none does. The checks: the driver runs and replies; there is no second one; "
             "driver and krt9ctl have the same version; the companion's port was there before the "
             "driver; the editor is in front; the driver may read it; its controls are found; the "
             "controller was there before the driver; translated titles can be read. It changes "
             "nothing: it sends the driver two requests that only read.",
         .example = "krt9ctl doctor",
         .parameters = {{.name = "--after",
                         .kind = ValueKind::seconds,
                         .help = "wait first, so that the editor can be brought to the front",
                         .placeholder = "SECONDS"}},
         .work = ActDoctor},
    };
}

}  // namespace krt9ctl
