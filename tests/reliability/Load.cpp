#include "tests/reliability/Load.h"

#include "tests/reliability/RequestMix.h"
#include "tests/reliability/WireClient.h"

namespace test_support {

void Load::Run() {
    constexpr std::uint32_t kWindow = 8;  // requests in flight at once
    while (!stop_) {
        WireClient client;
        std::uint32_t sent = 0;
        std::uint32_t received = 0;
        while (!stop_ && client.Connected()) {
            const MixedRequest& next = RequestMix()[sent % RequestMix().size()];
            if (!client.SendBytes(WireClient::Request(next.code, next.body, ++sent), 1)) {
                break;
            }
            if (sent - received == kWindow) {
                if (!client.ReceiveReply(1)) {
                    break;
                }
                ++received;
                ++answered_;
            }
        }
        std::this_thread::yield();
    }
}

}  // namespace test_support
