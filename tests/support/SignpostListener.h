// Looks at the signposts of this process, or of all processes of the test's session.
#pragma once

#include <poll.h>

#include <deque>
#include <list>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "platform/LocalSocket/Socket.h"
#include "platform/UnifiedLogging/Tracer.h"

namespace test_support {

class SignpostListener {
  public:
    using Json = nlohmann::json;

    // This process looks for it at once. A session must be set.
    SignpostListener()
        : listener_(
              local_socket::Listener::Create(unified_logging::kTracerName, nullptr, nullptr)) {
        if (!listener_) {
            throw std::runtime_error("signposts cannot be listened to");
        }
        unified_logging::UseClock(nullptr);
    }
    ~SignpostListener() { unified_logging::UseClock(nullptr); }
    SignpostListener(const SignpostListener&) = delete;
    SignpostListener& operator=(const SignpostListener&) = delete;

    // What has arrived so far and was not taken yet.
    std::vector<Json> Take() {
        Accept();
        for (Client& client : clients_) {
            while (client.reader.ReadFrom(client.socket.get()) ==
                       local_socket::FrameReader::Status::open &&
                   IsReady(client.socket.get())) {
            }
            while (const auto line = client.reader.Next()) {
                lines_.push_back(Json::parse(line->begin(), line->end()));
            }
        }
        return std::exchange(lines_, {});
    }

    // Those who wait are let in, without reading from them.
    void Accept() {
        for (auto socket = listener_->Accept(); socket; socket = listener_->Accept()) {
            clients_.push_back(
                {std::move(socket), local_socket::FrameReader(unified_logging::kLongestLine)});
        }
    }

    // As when the tracer's process ends, but for its listening.
    void DropClients() {
        Accept();
        clients_.clear();
    }

  private:
    struct Client {
        local_socket::Descriptor socket;
        local_socket::FrameReader reader;
    };

    static bool IsReady(int descriptor) {
        pollfd watched{descriptor, POLLIN, 0};
        return poll(&watched, 1, 0) > 0;
    }

    std::optional<local_socket::Listener> listener_;
    std::list<Client> clients_;
    std::vector<Json> lines_;
};

}  // namespace test_support
