// The verb that records requests, replies and messages while it carries out command lines.
#include <fmt/format.h>

#include <cerrno>
#include <cstring>
#include <fstream>

#include "VEKCommon/Names.h"
#include "tools/Arguments.h"
#include "tools/Batch.h"
#include "tools/Grammar.h"
#include "tools/Interruption.h"
#include "tools/Session.h"
#include "tools/Text.h"
#include "tools/doctor/Ports.h"
#include "tools/report/Recorder.h"

namespace krt9ctl {

namespace {

constexpr double kLastLook = 0.2;  // seconds, for messages that are under way

void RemarkOnMessages(const Listener* listener, bool driverWasFirst, Output& output) {
    if (listener == nullptr) {
        output.Remark(
            "another process has the companion's port: the driver's messages are not "
            "recorded");
    } else if (driverWasFirst) {
        output.Remark(
            "the driver was there first: it looks for the companion's port only when it "
            "starts, so that its messages are not recorded");
    }
}

// An empty file at once: what cannot be written must not be known only after the session.
std::ofstream Create(const std::string& path) {
    errno = 0;
    std::ofstream file(path, std::ios::binary | std::ios::trunc);
    if (!file) {
        throw std::runtime_error(
            fmt::format("'{}' cannot be written: {}", Printable(path), std::strerror(errno)));
    }
    return file;
}

ExitCode ActRecord(const Arguments& arguments, Context& context) {
    CheckSession();
    const Interruption interruption;
    const std::string& path = arguments.Text("FILE");
    std::ofstream file = Create(path);
    const bool driverWasFirst = doctor::LookAtPort(kDriverPortName).isThere;
    const bool isTaken = doctor::LookAtPort(kCompanionPortName).isThere;
    const auto listener = isTaken ? nullptr : Listener::Open();
    RemarkOnMessages(listener.get(), driverWasFirst, context.output);
    Recorder recorder(driverWasFirst ? nullptr : listener.get());
    const ExitCode code = RunBatch(
        context, arguments.Has("--stop"),
        [&](const Request& request, const Send& send) { return recorder.Carry(request, send); });
    Interruption::Pause(arguments.SecondsOr("--for", kLastLook));
    recorder.CatchUp();
    errno = 0;
    file << recorder.Text({}) << std::flush;
    if (!file) {
        throw std::runtime_error(
            fmt::format("'{}' cannot be written: {}", Printable(path), std::strerror(errno)));
    }
    context.output.Result(
        {{"recording", path}, {"requests", recorder.Requests()}, {"messages", recorder.Messages()}},
        fmt::format("{}: {} requests and {} messages", Printable(path), recorder.Requests(),
                    recorder.Messages()));
    return code;
}

}  // namespace

std::vector<Verb> RecordVerbs() {
    return {
        {.name = "record",
         .requests = "",
         .summary = "carry out the command lines of the standard input as batch does, and record",
         .detail =
             "The file then has each request with its body and the driver's reply, and the "
             "messages that arrived meanwhile, in the notation of recorded sessions, with texts as "
             "they are. It has the driver's messages only when it was started before the driver "
             "and no other companion runs, and the requests of others never. replay carries it out "
             "again.",
         .example = "krt9ctl record session.txt",
         .parameters = {{.name = "FILE", .kind = ValueKind::file, .help = "the recording"},
                        {.name = "--stop",
                         .kind = ValueKind::flag,
                         .help = "end with the first line that fails"},
                        {.name = "--for",
                         .kind = ValueKind::seconds,
                         .help = "how long to record messages after the last line (default 0.2)",
                         .placeholder = "SECONDS"}},
         .work = ActRecord},
    };
}

}  // namespace krt9ctl
