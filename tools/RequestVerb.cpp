#include "tools/RequestVerb.h"

#include "tools/ReplyTimes.h"

namespace krt9ctl {

Errand ErrandOf(const Verb& verb, const Arguments& arguments) {
    Errand errand;
    errand.plan = std::get<MakePlan>(verb.work)(arguments);
    errand.expectation = verb.expects == nullptr ? std::nullopt : verb.expects(arguments);
    errand.isMeasured = !verb.measuredWith.empty() && arguments.Has(verb.measuredWith);
    return errand;
}

ExitCode RunErrand(const Errand& errand, const Send& send, const Stopped& stopped, Output& output) {
    if (errand.isMeasured) {
        return MeasureReplies(errand.plan, send, stopped, output);
    }
    if (!errand.expectation) {
        return Converse(errand.plan, send, stopped, output);
    }
    ExitCode code = CheckThatItIsNews(*errand.expectation, send, output);
    if (code == ExitCode::ok) {
        code = Converse(errand.plan, send, stopped, output);
    }
    return code == ExitCode::ok ? AwaitNumber(*errand.expectation, send, stopped, output) : code;
}

}  // namespace krt9ctl
