#include "tools/report/PrivateSession.h"

namespace krt9ctl {

std::unique_ptr<PrivateSession> OpenPrivateSession(const PrivateSessionOptions& /*options*/) {
    return nullptr;
}

}  // namespace krt9ctl
