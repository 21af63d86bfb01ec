// The verb that collects what a bug needs in one archive.
#include <fmt/chrono.h>
#include <fmt/format.h>

#include <algorithm>
#include <chrono>
#include <ctime>

#include "tools/Arguments.h"
#include "tools/Conversation.h"
#include "tools/Grammar.h"
#include "tools/Interruption.h"
#include "tools/Run.h"
#include "tools/Text.h"
#include "tools/doctor/Examination.h"
#include "tools/report/Report.h"

namespace krt9ctl {

namespace {

constexpr double kUsualTrace = 2;  // seconds

std::string UsualName() {
    const std::time_t time = std::chrono::system_clock::to_time_t(std::chrono::system_clock::now());
    std::tm local = {};
    localtime_r(&time, &local);
    return fmt::format("krt9-report-{:%Y%m%d-%H%M%S}.zip", local);
}

void Tell(const std::string& path, const Report& report, Output& output) {
    Json members = Json::array();
    std::string lines;
    std::size_t widest = 0;
    for (const ReportPart& part : report.parts) {
        widest = std::max(widest, part.member.name.size());
    }
    for (const ReportPart& part : report.parts) {
        members.push_back({{"name", part.member.name}, {"holds", part.summary}});
        lines += fmt::format("\n  {:<{}}  {}", part.member.name, widest, part.summary);
    }
    output.Result({{"report", path}, {"members", members}},
                  fmt::format("{} holds{}\nLook inside before you pass it on: it is a zip file of "
                              "texts.",
                              Printable(path), lines));
}

ExitCode ActReport(const Arguments& arguments, Context& context) {
    const Interruption interruption;
    if (arguments.Has("--after")) {
        doctor::WaitForTheFront(arguments.SecondsOr("--after", 0), context.output);
    }
    const std::string path = arguments.Has("FILE") ? arguments.Text("FILE") : UsualName();
    const Report report = CollectReport(arguments.SecondsOr("--for", kUsualTrace), context);
    if (const ExitCode signal = Interruption::Raised(); signal != ExitCode::ok) {
        ReportSignal(signal, context.output);
        return signal;
    }
    std::vector<ArchiveMember> members;
    for (const ReportPart& part : report.parts) {
        members.push_back(part.member);
    }
    WriteArchive(path, members);
    Tell(path, report, context.output);
    if (!report.editorIsInFront) {
        context.output.Remark(
            "the editor was not in front: with --after 5 there is time to bring it there");
    }
    return ExitCode::ok;
}

}  // namespace

std::vector<Verb> ReportVerbs() {
    return {
        {.name = "report",
         .requests = "",
         .summary = "write what a bug report needs into one archive",
         .detail =
             "A zip file with the result of doctor, a dump of the front application whose texts "
             "are replaced, the driver's replies to requests that read each of its controls, a "
             "trace, and versions. Works without driver or companion, too; the file report.json "
             "says what is missing and why. Nothing is changed and nothing is sent anywhere. "
             "replay carries the report out again.",
         .example = "krt9ctl report report.zip",
         .parameters = {{.name = "FILE",
                         .kind = ValueKind::file,
                         .help = "the archive (default: krt9-report-, date and time, .zip)",
                         .presence = Presence::optional},
                        {.name = "--after",
                         .kind = ValueKind::seconds,
                         .help = "wait first, so that the editor can be brought to the front",
                         .placeholder = "SECONDS"},
                        {.name = "--for",
                         .kind = ValueKind::seconds,
                         .help = "how long to trace the driver (default 2)",
                         .placeholder = "SECONDS"}},
         .work = ActReport},
    };
}

}  // namespace krt9ctl
