// The wire between a process and the desktop. The first byte chooses: one message for one of the
// decoders, or a desktop that sends the process anything.
//
// What must hold: a message that is accepted comes back the same when it is encoded and decoded
// again; whatever a desktop sends, a call returns, and the next desktop is served.
#include <CoreFoundation/CoreFoundation.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <vector>

#include "fuzz/Check.h"
#include "fuzz/Choices.h"
#include "fuzz/ObjectLedger.h"
#include "fuzz/Peer.h"
#include "fuzz/StartUp.h"
#include "fuzz/Surroundings.h"
#include "platform/DesktopLink/Framing.h"
#include "platform/DesktopLink/Messages.h"
#include "platform/DesktopLink/SocketTransport.h"
#include "platform/LocalSocket/Socket.h"

namespace {

using fuzz::Choices;
using namespace desktop_link;
using Payload = std::vector<std::uint8_t>;

constexpr int kMostSteps = 48;

// A NaN is not equal to itself, so the bytes are compared.
template <typename Message>
void DecodeAndEncode(std::span<const std::uint8_t> bytes,
                     std::optional<Message> (*decode)(const std::uint8_t*, std::size_t)) {
    const auto exact = std::make_unique<std::uint8_t[]>(bytes.size());
    std::copy(bytes.begin(), bytes.end(), exact.get());
    const auto message = decode(exact.get(), bytes.size());
    if (!message) {
        return;
    }
    const Payload encoded = Encode(*message);
    const auto again = decode(encoded.data(), encoded.size());
    fuzz::Check(again.has_value(), "what was accepted is accepted again");
    fuzz::Check(Encode(*again) == encoded, "what was accepted comes back the same");
}

class Conversation {
  public:
    explicit Conversation(Choices& choices) : choices_(choices) {
        BeThere();
        Listen();
    }

    void Run() {
        for (int step = 0; step < kMostSteps && !choices_.Exhausted(); ++step) {
            Step();
        }
        CheckNextDesktop();
    }

  private:
    void Step() {
        const std::uint8_t choice = choices_.Byte();
        switch (choice % 16) {
            case 0:
                desktop_.reset();
                if (choice / 16 < 8) {
                    BeThere();
                } else {
                    listener_.reset();
                }
                break;
            case 1:
                Send(choices_.Bytes(choices_.Byte()));
                break;
            case 2:
                Send(fuzz::Damaged(fuzz::Framed(NextPayload(choice / 16)), choices_));
                break;
            case 3:
            case 4:
                CFRunLoopRunInMode(kCFRunLoopDefaultMode, 0, false);
                Accept();
                break;
            case 5:
                if (choice / 16 % 2 == 0) {
                    transport_.SetNotificationHandler(nullptr);
                } else {
                    Listen();
                }
                break;
            case 6:
            case 7:
            case 8:
                Ask(choice / 16);
                break;
            default:
                Send(fuzz::Framed(NextPayload(choice / 16)));
                break;
        }
    }

    void BeThere() {
        if (!listener_) {
            listener_ = local_socket::Listener::Create(kSocketName, nullptr, nullptr);
        }
    }

    void Accept() {
        local_socket::Descriptor client =
            listener_ ? listener_->Accept() : local_socket::Descriptor();
        if (client) {
            desktop_.emplace(std::move(client));
            sequence_ = 1;  // of hello
        }
    }

    void Listen() {
        transport_.SetNotificationHandler([](const Notification&) {});
    }

    // A request as large as this one does not fit the socket's buffer unless the desktop reads.
    static Request LargeRequest() {
        Request request;
        request.operation = Operation::setAttribute;
        request.value = {desktop_link::Bytes{Payload(150000, 7)}};
        return request;
    }

    // Every other desktop reads what it is sent.
    void Ask(unsigned kind) {
        Request request;
        request.operation = Operation::copyAttribute;
        if (choices_.Flag()) {
            request.operation = Operation::hello;
        } else if (kind / 4 == 1) {
            request = LargeRequest();
        }
        request.names = {"AXValue"};
        const auto reply = transport_.Exchange(request, 0);
        fuzz::Check(!reply || request.operation != Operation::hello || reply->session.has_value(),
                    "hello is answered with a session");
        fuzz::Check(!transport_.Unreachable() || !listener_, "a desktop that is there is reached");
        ++sequence_;
        Accept();
        if (desktop_ && kind % 2 == 0) {
            desktop_->Receive();
        }
    }

    // A reply to one of the latest requests or a notification, as a rule with a message inside.
    Payload NextPayload(unsigned behind) {
        const std::uint8_t kind = choices_.Byte();
        if (kind >= 224) {
            return MakePayload(static_cast<FrameKind>(kind % 8), choices_.Raw<std::uint32_t>(),
                               choices_.Bytes(choices_.Byte()));
        }
        if (kind % 4 == 0) {
            Notification notification;
            notification.activated = NextApplication();
            return MakePayload(FrameKind::notification, 0, Encode(notification));
        }
        Reply reply;
        if (kind % 4 == 1) {
            reply.session.emplace();
            reply.session->frontApplication = NextApplication();
            reply.session->messagingTimeout = choices_.Raw<double>();
        } else {
            reply.error = std::int32_t{choices_.Raw<std::int8_t>()};
            reply.values.push_back({choices_.Text(choices_.Byte() % 32)});
        }
        return MakePayload(FrameKind::reply, behind < 12 ? sequence_ + 4 - behind : behind - 11,
                           Encode(reply));
    }

    std::optional<Application> NextApplication() {
        const std::uint8_t choice = choices_.Byte();
        if (choice % 4 == 0) {
            return std::nullopt;
        }
        return Application{choice, "com.example", std::nullopt, "name"};
    }

    void Send(const Payload& bytes) {
        Accept();
        if (desktop_) {
            desktop_->Send(bytes);
        }
    }

    // After whatever was sent, a well-behaved desktop is understood.
    void CheckNextDesktop() {
        desktop_.reset();
        BeThere();
        CFRunLoopRunInMode(kCFRunLoopDefaultMode, 0, false);
        while (local_socket::Descriptor abandoned = listener_->Accept()) {
        }
        SocketTransport fresh;
        Request request;
        request.operation = Operation::isTrusted;
        fuzz::Check(!fresh.Exchange(request, 0), "nothing is answered before there is an answer");
        fuzz::Peer desktop(listener_->Accept());
        Reply reply;
        reply.session.emplace();
        desktop.Send(fuzz::Framed(MakePayload(FrameKind::reply, 1, Encode(reply))));
        reply.session.reset();
        reply.flag = true;
        desktop.Send(fuzz::Framed(MakePayload(FrameKind::reply, 3, Encode(reply))));
        fuzz::Check(fresh.Exchange(request, 0) == reply, "a desktop that behaves is understood");
    }

    Choices& choices_;
    std::optional<local_socket::Listener> listener_;
    std::optional<fuzz::Peer> desktop_;
    SocketTransport transport_;
    std::uint32_t sequence_ = 0;
};

}  // namespace

void fuzz::PrepareTarget() {
    PrivateFolder();
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) {
        return 0;
    }
    std::span<const std::uint8_t> input(data + 1, size - 1);
    switch (*data % 8) {
        case 0:
        case 1:
            DecodeAndEncode<Request>(input, DecodeRequest);
            break;
        case 2:
        case 3:
            DecodeAndEncode<Reply>(input, DecodeReply);
            break;
        case 4:
            DecodeAndEncode<Notification>(input, DecodeNotification);
            break;
        default:
            fuzz::RunWithoutGrowth([&] {
                Choices choices(input, fuzz::End::front);
                Conversation(choices).Run();
            });
            break;
    }
    return 0;
}
