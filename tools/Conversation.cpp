#include "tools/Conversation.h"

#include <CoreFoundation/CoreFoundation.h>
#include <fmt/format.h>

#include <optional>

#include "VEKCommon/MessageCodes.h"
#include "tools/Reply.h"
#include "tools/RequestBody.h"
#include "tools/Session.h"

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
        return ReportProblem(
            request, ExitCode::noReply,
            "the driver sent no reply: the request failed, and its log may say why", output);
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
                             fmt::format("the reply has {} bytes instead of {}: {}", reply.size(),
                                         row->reply.size() * 4, FormatHex(reply)),
                             output);
    }
    output.Result(ReplyObject(*row, *values), DescribeReply(*row, *values));
    return ExitCode::ok;
}

ExitCode Report(const Request& request, const Answer& answer, Output& output) {
    if (const ExitCode code = ReportDelivery(request, answer, output); code != ExitCode::ok) {
        return code;
    }
    const RequestRow* row = FindRequest(request.code);
    return answer.reply.empty() ? ReportNothing(request, row, output)
                                : ReportReply(request, row, answer.reply, output);
}

std::string_view SignalSentence(ExitCode code) {
    switch (code) {
        case ExitCode::hungUp:
            return "stopped by SIGHUP";
        case ExitCode::terminated:
            return "stopped by SIGTERM";
        default:
            return "stopped by SIGINT";
    }
}

class Conversation {
  public:
    // Both functions must outlive it.
    Conversation(const Send& send, const Stopped& stopped, Output& output)
        : send_(send), stopped_(stopped), output_(output) {}

    ExitCode Hold(const Plan& plan);
    ExitCode ReleaseAll(const Plan& releases);

  private:
    ExitCode ReasonToStop();
    ExitCode Tell(const Request& request);
    Request WhereThePointerIs(Request end);

    const Send& send_;
    const Stopped& stopped_;
    Output& output_;
    std::optional<Request> last_;  // that may have arrived
    bool driverReplies_ = false;   // to the last request
};

ExitCode Conversation::Hold(const Plan& plan) {
    ExitCode result = ExitCode::ok;
    std::size_t step = 0;
    for (const Request& request : plan) {
        output_.Progress(plan.size() == 1 ? "waiting for the driver"
                                          : fmt::format("request {} of {}", ++step, plan.size()));
        if (result == ExitCode::ok) {
            result = ReasonToStop();
        }
        if (result == ExitCode::ok) {
            result = Tell(request);
        } else if (request.releases && last_) {
            Tell(WhereThePointerIs(request));
        }
    }
    return result;
}

ExitCode Conversation::ReleaseAll(const Plan& releases) {
    ExitCode result = ExitCode::ok;
    for (const Request& request : releases) {
        last_ = request;
        driverReplies_ = result == ExitCode::ok;
        const ExitCode code = Tell(WhereThePointerIs(request));
        result = result == ExitCode::ok ? code : result;
    }
    return result;
}

ExitCode Conversation::ReasonToStop() {
    const ExitCode signal = stopped_();
    if (signal != ExitCode::ok) {
        ReportSignal(signal, output_);
        return signal;
    }
    return output_.Status();
}

ExitCode Conversation::Tell(const Request& request) {
    const Answer answer = send_(request);
    driverReplies_ = answer.status == kCFMessagePortSuccess;
    if (answer.status != kPortMissing) {
        last_ = request;
    }
    return Report(request, answer, output_);
}

// A driver that does not reply will find the pointer where the last step sent it.
Request Conversation::WhereThePointerIs(Request end) {
    if (end.code != kJPME) {
        return end;
    }
    auto [x, y] = PointOfMouseBody(last_->body);
    if (driverReplies_) {
        const Answer answer = send_({kJGlM, {}});
        if (const auto point = DecodeReply(*FindRequest(kJGlM), answer.reply)) {
            x = point->at(0);
            y = point->at(1);
        }
    }
    end.body = MovedMouseBody(end.body, x, y);
    return end;
}

}  // namespace

ExitCode ReportDelivery(const Request& request, const Answer& answer, Output& output) {
    const DeliveryRow& delivery = DeliveryOf(answer.status);
    if (delivery.code == ExitCode::noDriver) {
        return ReportProblem(request, delivery.code,
                             fmt::format("no driver runs in {}; start it with {}", SessionName(),
                                         DriverStartCommand()),
                             output);
    }
    if (delivery.code != ExitCode::ok) {
        return ReportProblem(request, delivery.code, std::string(delivery.sentence), output);
    }
    return ExitCode::ok;
}

void ReportSignal(ExitCode signal, Output& output) {
    output.Problem(signal, std::string(SignalSentence(signal)));
}

ExitCode Converse(const Plan& plan, const Send& send, const Stopped& stopped, Output& output) {
    return Conversation(send, stopped, output).Hold(plan);
}

ExitCode Release(const Plan& releases, const Send& send, Output& output) {
    const Stopped never = [] { return ExitCode::ok; };
    return Conversation(send, never, output).ReleaseAll(releases);
}

}  // namespace krt9ctl
