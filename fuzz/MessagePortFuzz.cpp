// The wire of the message ports, with a peer that sends anything: to a port of this process, and
// back to a client in this process.
//
// What must hold: a peer harms only itself. One that sends nothing but requests gets the reply to
// each that wants one, in order unless a callback runs the loop, whatever the others do.
#include <CoreFoundation/CoreFoundation.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <deque>
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
#include "platform/CoreFoundation/MessagePort/MessageFrame.h"
#include "platform/LocalSocket/Socket.h"
#include "platform/Testing/TestClock.h"

namespace {

using fuzz::Choices;
using message_port::DecodeMessage;
using message_port::Message;
using message_port::MessageHeader;
using Bytes = std::vector<std::uint8_t>;

constexpr int kMostSteps = 64;
constexpr std::size_t kMostPeers = 4;
constexpr SInt32 kNestsLoop = 1 << 8;  // bits of a request's msgid
constexpr SInt32 kAnswersNothing = 1 << 9;

void Pump(int passes) {
    for (; passes > 0; --passes) {
        CFRunLoopRunInMode(kCFRunLoopDefaultMode, 0, true);
    }
}

Bytes Payload(const MessageHeader& header, const Bytes& data) {
    const message_port::HeaderBytes head = EncodeHeader(header);
    Bytes payload(head.begin(), head.end());
    payload.insert(payload.end(), data.begin(), data.end());
    return payload;
}

// Mostly short; a long one fills the sockets' buffers until the other end reads. All long ones of
// an input together stay below the limit of one allocation: only memory for a length that was
// announced, and not received, can exceed it.
class DataSource {
  public:
    explicit DataSource(Choices& choices) : choices_(choices) {}

    Bytes Next() {
        const std::uint8_t size = choices_.Byte();
        if (size < 240) {
            return choices_.Bytes(size);
        }
        const std::size_t length = std::min(std::size_t{size - 239U} * 20000, longBytesLeft_);
        longBytesLeft_ -= length;
        return Bytes(length, size);
    }

  private:
    Choices& choices_;
    std::size_t longBytesLeft_ = 1900000;
};

// Frames that come in, in parts of any size.
class Inbox {
  public:
    void Add(const Bytes& bytes) { bytes_.insert(bytes_.end(), bytes.begin(), bytes.end()); }

    std::optional<Bytes> Next() {
        if (bytes_.size() < 4) {
            return std::nullopt;
        }
        const std::size_t size = std::size_t{bytes_[0]} | std::size_t{bytes_[1]} << 8 |
                                 std::size_t{bytes_[2]} << 16 | std::size_t{bytes_[3]} << 24;
        if (bytes_.size() - 4 < size) {
            return std::nullopt;
        }
        const auto begin = bytes_.begin() + 4;
        Bytes payload(begin, begin + static_cast<std::ptrdiff_t>(size));
        bytes_.erase(bytes_.begin(), begin + static_cast<std::ptrdiff_t>(size));
        return payload;
    }

  private:
    Bytes bytes_;
};

class ServedPort {
  public:
    explicit ServedPort(Choices& choices) : choices_(choices) {
        CFMessagePortContext context = {0, this, RetainInfo, ReleaseInfo, nullptr};
        Boolean isNotTaken = true;
        port_ = CFMessagePortCreateLocal(nullptr, CFSTR("Served"), Receive, &context, &isNotTaken);
        fuzz::Check(port_ != nullptr && !isNotTaken, "a port of a free name takes its context");
        source_ = CFMessagePortCreateRunLoopSource(nullptr, port_, 0);
        CFRunLoopAddSource(CFRunLoopGetCurrent(), source_, kCFRunLoopDefaultMode);
    }
    ServedPort(const ServedPort&) = delete;
    ServedPort& operator=(const ServedPort&) = delete;
    ~ServedPort() {
        CFMessagePortInvalidate(port_);
        CFRelease(source_);
        CFRelease(port_);
        fuzz::Check(infos_ == 0, "what a port was given is released as often as it was retained");
    }

    void Run() {
        for (int step = 0; step < kMostSteps && !choices_.Exhausted(); ++step) {
            Step();
            fuzz::Check(CFMessagePortIsValid(port_) == valid_, "a port is valid until its end");
        }
        do {
            Pump(80);  // more than there are requests
        } while (valid_ && TakeReplies() > 0);
        for (const Sender& sender : senders_) {
            fuzz::Check(!valid_ || !sender.honest || sender.expected.empty(),
                        "an honest peer gets its replies");
        }
    }

  private:
    struct Sender {
        fuzz::Peer peer;
        bool honest = true;
        std::deque<Bytes> expected = {};  // payloads of the replies to come
        Inbox inbox = {};
        std::uint32_t sequence = 0;
    };

    void Step() {
        const std::uint8_t choice = choices_.Byte();
        if (senders_.empty() || (choice % 16 == 0 && senders_.size() < kMostPeers)) {
            senders_.push_back({fuzz::Peer(local_socket::Connect("Served"))});
            return;
        }
        Sender& sender = senders_[choice / 16U % senders_.size()];
        switch (choice % 16) {
            case 1:
                SendDishonest(sender, choices_.Bytes(choices_.Byte()));
                break;
            case 2:
                SendDishonest(sender, fuzz::Damaged(fuzz::Framed(NextRequest(sender)), choices_));
                break;
            case 3:
                sender.honest = false;
                sender.peer.Close();
                break;
            case 4:
                sender.honest = false;
                sender.peer.EndSending();
                break;
            case 5:
                if (choice / 16 < 4) {
                    valid_ = false;
                    CFMessagePortInvalidate(port_);
                } else {
                    MakeAgain();
                }
                break;
            case 6:
            case 7:
                TakeReplies();
                break;
            case 8:
            case 9:
            case 10:
                Pump(1 + choice / 16);
                break;
            default:
                SendRequest(sender);
                break;
        }
    }

    // The same port while it is valid; its source serves the peers there are.
    void MakeAgain() {
        if (!valid_) {
            return;
        }
        Boolean isNotTaken = false;
        const CFMessagePortRef same =
            CFMessagePortCreateLocal(nullptr, CFSTR("Served"), nullptr, nullptr, &isNotTaken);
        fuzz::Check(same == port_ && isNotTaken, "a port of a taken name is that which has it");
        CFRelease(same);
        CFRunLoopSourceInvalidate(source_);
        CFRelease(source_);
        source_ = CFMessagePortCreateRunLoopSource(nullptr, port_, 0);
        CFRunLoopAddSource(CFRunLoopGetCurrent(), source_, kCFRunLoopDefaultMode);
    }

    static const void* RetainInfo(const void* info) {
        ++infos_;
        return info;
    }

    static void ReleaseInfo(const void*) { --infos_; }

    // No reply is expected for what NextRequest() made here.
    static void SendDishonest(Sender& sender, const Bytes& bytes) {
        sender.honest = false;
        if (sender.peer.IsOpen()) {
            sender.peer.Send(bytes);
        }
    }

    Bytes NextRequest(Sender& sender) {
        MessageHeader header;
        header.wantsReply = choices_.Flag();
        header.msgid = choices_.Byte() << 4;
        header.sequence = ++sender.sequence;
        return Payload(header, data_.Next());
    }

    void SendRequest(Sender& sender) {
        const Bytes payload = NextRequest(sender);
        if (!sender.peer.IsOpen() || !sender.peer.Send(fuzz::Framed(payload))) {
            sender.honest = false;
            return;
        }
        MessageHeader header = DecodeMessage(payload)->header;
        nested_ = nested_ || (header.msgid & kNestsLoop) != 0;
        if (header.wantsReply) {
            header.kind = MessageHeader::Kind::reply;
            header.wantsReply = false;
            const bool empty = (header.msgid & kAnswersNothing) != 0;
            sender.expected.push_back(
                Payload(header, empty ? Bytes() : Bytes(payload.begin() + 12, payload.end())));
        }
    }

    // Replies with the number of bytes.
    std::size_t TakeReplies() {
        std::size_t count = 0;
        for (Sender& sender : senders_) {
            if (!sender.peer.IsOpen()) {
                continue;
            }
            const Bytes bytes = sender.peer.Receive();
            count += bytes.size();
            sender.inbox.Add(bytes);
            while (const auto payload = sender.inbox.Next()) {
                const auto message = DecodeMessage(*payload);
                fuzz::Check(message && message->header.kind == MessageHeader::Kind::reply,
                            "a port answers with replies");
                if (sender.honest) {
                    TakeReply(sender, *payload);
                }
            }
        }
        return count;
    }

    // A callback that runs the loop is overtaken by the requests behind it.
    void TakeReply(Sender& sender, const Bytes& payload) const {
        const auto found = std::find(sender.expected.begin(), sender.expected.end(), payload);
        fuzz::Check(found != sender.expected.end(), "a reply is that to a request");
        fuzz::Check(nested_ || found == sender.expected.begin(),
                    "a reply is that to the next request");
        sender.expected.erase(found);
    }

    // Replies with the data itself.
    static CFDataRef Receive(CFMessagePortRef, SInt32 msgid, CFDataRef data, void*) {
        fuzz::Check(data != nullptr, "a request has data");
        const CFDataRef copy = CFDataCreate(nullptr, CFDataGetBytePtr(data), CFDataGetLength(data));
        if ((msgid & kNestsLoop) != 0) {
            CFRunLoopRunInMode(kCFRunLoopDefaultMode, 0, true);
        }
        if ((msgid & kAnswersNothing) != 0) {
            CFRelease(copy);
            return nullptr;
        }
        return copy;
    }

    Choices& choices_;
    DataSource data_{choices_};
    static inline int infos_ = 0;
    CFMessagePortRef port_;
    CFRunLoopSourceRef source_;
    std::vector<Sender> senders_;
    bool valid_ = true;
    bool nested_ = false;
};

class AskedPort {
  public:
    explicit AskedPort(Choices& choices)
        : choices_(choices), listener_(local_socket::Listener::Create("Asked", nullptr, nullptr)) {}
    AskedPort(const AskedPort&) = delete;
    AskedPort& operator=(const AskedPort&) = delete;
    ~AskedPort() { Forget(); }

    void Run() {
        for (int step = 0; step < kMostSteps && !choices_.Exhausted(); ++step) {
            if (port_ == nullptr) {
                port_ = CFMessagePortCreateRemote(nullptr, CFSTR("Asked"));
                CFMessagePortSetInvalidationCallBack(port_, PortEnds);
                ++valid_;
                peer_.emplace(listener_->Accept());
                sequence_ = 0;
            }
            Step();
        }
    }

  private:
    void Forget() {
        if (port_ != nullptr) {
            CFMessagePortInvalidate(port_);
            CFRelease(port_);
            port_ = nullptr;
            fuzz::Check(valid_ == 0, "the end of a port is told once");
        }
    }

    void Step() {
        const std::uint8_t choice = choices_.Byte();
        switch (choice % 16) {
            case 0:
                Forget();
                break;
            case 1:
                peer_->Close();
                break;
            case 2:
                Send(choices_.Bytes(choices_.Byte()));
                break;
            case 3:
                Send(fuzz::Damaged(fuzz::Framed(Reply(choice / 16)), choices_));
                break;
            case 4:
                Pump(1);
                break;
            case 5:
                CheckValidity();
                break;
            case 6:
                TakeRequests();
                break;
            case 7:
            case 8:
                Ask(false);
                break;
            case 9:
            case 10:
            case 11:
                Ask(true);
                break;
            default:
                Send(fuzz::Framed(Reply(choice / 16)));
                break;
        }
    }

    static void PortEnds(CFMessagePortRef, void*) { --valid_; }

    // A port whose peer is gone is not valid, and notices it when it is queried.
    void CheckValidity() {
        const bool valid = CFMessagePortIsValid(port_);
        fuzz::Check(valid_ == (valid ? 1 : 0), "a port that ended is not valid");
        fuzz::Check(!valid || CFMessagePortGetName(port_) != nullptr, "a valid port has its name");
    }

    void Send(const Bytes& bytes) {
        if (peer_->IsOpen()) {
            peer_->Send(bytes);
        }
    }

    // To one of the next requests, as a rule.
    Bytes Reply(unsigned ahead) {
        MessageHeader header;
        header.kind = MessageHeader::Kind::reply;
        header.sequence = ahead == 15 ? choices_.Raw<std::uint32_t>() : sequence_ + ahead % 4;
        return Payload(header, data_.Next());
    }

    void Ask(bool wantsReply) {
        const Bytes data = data_.Next();
        const CFDataRef body =
            CFDataCreate(nullptr, data.data(), static_cast<CFIndex>(data.size()));
        CFDataRef reply = nullptr;
        sequence_ += wantsReply ? 1 : 0;
        const SInt32 result = CFMessagePortSendRequest(port_, 5, body, 0.01, 0.01,
                                                       wantsReply ? kCFRunLoopDefaultMode : nullptr,
                                                       wantsReply ? &reply : nullptr);
        CFRelease(body);
        fuzz::Check(result <= 0 && result >= -5, "a result is one of the six");
        fuzz::Check((reply != nullptr) == (wantsReply && result == 0),
                    "a reply comes with success and only then");
        if (reply != nullptr) {
            CFRelease(reply);
        }
    }

    void TakeRequests() {
        if (!peer_->IsOpen()) {
            return;
        }
        inbox_.Add(peer_->Receive());
        while (const auto payload = inbox_.Next()) {
            const auto message = DecodeMessage(*payload);
            fuzz::Check(message && message->header.kind == MessageHeader::Kind::request &&
                            message->header.msgid == 5,
                        "a client sends requests");
        }
    }

    Choices& choices_;
    DataSource data_{choices_};
    std::optional<local_socket::Listener> listener_;
    std::optional<fuzz::Peer> peer_;
    Inbox inbox_;
    static inline int valid_ = 0;  // ports whose end was not reported yet
    CFMessagePortRef port_ = nullptr;
    std::uint32_t sequence_ = 0;
};

}  // namespace

void fuzz::PrepareTarget() {
    PrivateFolder();
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    fuzz::RunWithoutGrowth([&] {
        std::span<const std::uint8_t> input(data, size);
        Choices choices(input, fuzz::End::front);
        const platform_testing::TestClock clock;
        if (choices.Flag()) {
            AskedPort(choices).Run();
        } else {
            ServedPort(choices).Run();
        }
    });
    return 0;
}
