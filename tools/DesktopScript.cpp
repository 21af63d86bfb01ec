#include "tools/DesktopScript.h"

#include "platform/DesktopLink/Transport.h"
#include "tools/Session.h"

namespace krt9ctl {

std::optional<Json> AskDesktop(const Json& command, double timeout) {
    CheckSession();
    desktop_link::Request request;
    request.operation = desktop_link::Operation::script;
    request.text = OneLine(command);
    const auto reply = desktop_link::CurrentTransport().Exchange(request, timeout);
    if (!reply) {
        return std::nullopt;
    }
    Json answer = Json::parse(reply->text, nullptr, false);
    return answer.is_object() ? answer
                              : Json{{"error", "the desktop's reply is not a JSON object"}};
}

}  // namespace krt9ctl
