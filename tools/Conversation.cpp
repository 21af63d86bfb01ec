#include "tools/Conversation.h"

#include <fmt/format.h>

#include "tools/Reply.h"

namespace krt9ctl {

namespace {

ExitCode ReportProblem(const Request& request, ExitCode code, const std::string& sentence,
                       Output& output) {
    const std::string name = FormatCode(request.code);
    output.Problem(code, fmt::format("'{}': {}", name, sentence), Json{{"code", name}});
    return code;
}

ExitCode ReportNothing(const Request& request, const RequestRow* row, Output& output) {
    if (row != nullptr && !row->reply.empty()) {
        return ReportProblem(request, ExitCode::noReply,
                             "the driver answered with nothing: it could not do it (it says no "
                             "more; its log may)",
                             output);
    }
    output.Result({{"code", FormatCode(request.code)}, {"delivered", true}}, "");
    return ExitCode::ok;
}

ExitCode ReportReply(const Request& request, const RequestRow* row, const Bytes& reply,
                     Output& output) {
    if (row == nullptr) {
        const std::string hex = FormatHex(reply);
        output.Result({{"code", FormatCode(request.code)}, {"reply", hex}}, hex);
        return ExitCode::ok;
    }
    const auto values = DecodeReply(*row, reply);
    if (!values) {
        return ReportProblem(request, ExitCode::badReply,
                             fmt::format("the reply has {} bytes where {} were due: {}",
                                         reply.size(), row->reply.size() * 4, FormatHex(reply)),
                             output);
    }
    output.Result(ReplyObject(*row, *values), DescribeReply(*row, *values));
    return ExitCode::ok;
}

ExitCode Report(const Request& request, const Answer& answer, Output& output) {
    const DeliveryRow& delivery = DeliveryOf(answer.status);
    if (delivery.code != ExitCode::ok) {
        return ReportProblem(request, delivery.code, std::string(delivery.sentence), output);
    }
    const RequestRow* row = FindRequest(request.code);
    return answer.reply.empty() ? ReportNothing(request, row, output)
                                : ReportReply(request, row, answer.reply, output);
}

}  // namespace

ExitCode Converse(const Plan& plan, const Send& send, const std::function<bool()>& interrupted,
                  Output& output) {
    ExitCode result = ExitCode::ok;
    bool mayHaveArrived = false;
    for (const Request& request : plan) {
        if (result == ExitCode::ok && interrupted()) {
            result = ExitCode::interrupted;
        }
        if (result != ExitCode::ok && !(request.letsGo && mayHaveArrived)) {
            continue;
        }
        const Answer answer = send(request);
        mayHaveArrived = mayHaveArrived || answer.status != kPortMissing;
        const ExitCode outcome = Report(request, answer, output);
        result = result == ExitCode::ok ? outcome : result;
    }
    return result;
}

}  // namespace krt9ctl
