#include "tools/Client.h"

#include "tools/Session.h"

namespace krt9ctl {

CFStringRef ReplyMode() {
    return CFSTR("krt9ctl.reply");
}

Answer Client::Send(const Request& request) {
    if (!driver_.IsConnected()) {
        CheckSession();
    }
    return driver_.Send({request.code, request.body});
}

}  // namespace krt9ctl
