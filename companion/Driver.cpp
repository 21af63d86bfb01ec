// The connection to the driver.
#include "companion/KRT9Companion.h"

namespace krt9 {

namespace {

using Integers = std::vector<std::uint32_t>;

constexpr char kDriverPort[] = "KRT9Background";

std::int32_t Signed(std::uint32_t pattern) {
    return static_cast<std::int32_t>(pattern);
}

Point PointOf(const Integers& fields, std::size_t first = 0) {
    return {Signed(fields[first]), Signed(fields[first + 1])};
}

Frame FrameOf(const Integers& fields, std::size_t first = 0) {
    return {PointOf(fields, first), Signed(fields[first + 2]), Signed(fields[first + 3])};
}

// The reply, if it has as many fields as it should have.
template <class Decode>
auto Decoded(const Delivery& delivery, std::size_t fieldCount, Decode decode) {
    Result<decltype(decode(Integers()))> result{OutcomeOf(delivery.status), {}};
    if (result.outcome == Outcome::delivered && delivery.reply.size() == 4 * fieldCount) {
        result.value = decode(IntegersOf(delivery.reply));
    }
    return result;
}

Result<std::int32_t> DecodedNumber(const Delivery& delivery) {
    return Decoded(delivery, 1, [](const Integers& fields) { return Signed(fields[0]); });
}

Result<Point> DecodedPoint(const Delivery& delivery) {
    return Decoded(delivery, 2, [](const Integers& fields) { return PointOf(fields); });
}

}  // namespace

Outcome OutcomeOf(std::int32_t status) {
    switch (status) {
        case kCFMessagePortSuccess:
            return Outcome::delivered;
        case kPortMissing:
            return Outcome::noDriver;
        case kCFMessagePortSendTimeout:
            return Outcome::notTaken;
        case kCFMessagePortReceiveTimeout:
            return Outcome::notAnswered;
        case kCFMessagePortIsInvalid:
        case kCFMessagePortBecameInvalidError:
            return Outcome::ended;
        default:
            return Outcome::failed;
    }
}

Driver::Driver(double timeout, CFStringRef mode) : timeout_(timeout) {
    mode_.reset(static_cast<CFStringRef>(CFRetain(mode == nullptr ? CFSTR("krt9.reply") : mode)));
}

bool Driver::IsConnected() const {
    return port_ && CFMessagePortIsValid(port_.get());
}

Delivery Driver::Send(const Request& request) {
    if (!IsConnected()) {
        const Owned<CFStringRef> name(
            CFStringCreateWithCString(kCFAllocatorDefault, kDriverPort, kCFStringEncodingUTF8));
        port_.reset(CFMessagePortCreateRemote(kCFAllocatorDefault, name.get()));
    }
    if (!port_) {
        return {kPortMissing, {}};
    }
    Owned<CFDataRef> body;
    if (!request.body.empty()) {
        body.reset(CFDataCreate(kCFAllocatorDefault, request.body.data(),
                                static_cast<CFIndex>(request.body.size())));
    }
    CFDataRef received = nullptr;
    Delivery delivery{CFMessagePortSendRequest(port_.get(), request.code, body.get(), timeout_,
                                               timeout_, mode_.get(), &received),
                      {}};
    if (const Owned<CFDataRef> reply(received); reply) {
        const UInt8* bytes = CFDataGetBytePtr(reply.get());
        delivery.reply.assign(bytes, bytes + CFDataGetLength(reply.get()));
    }
    return delivery;
}

Outcome Driver::RefreshAndObserve(const Refresh& what) {
    return OutcomeOf(Send(requests::RefreshAndObserve(what)).status);
}

Outcome Driver::Press(Element element) {
    return OutcomeOf(Send(requests::Press(element)).status);
}

Outcome Driver::PostKey(const Key& key, bool press) {
    return OutcomeOf(Send(requests::PostKey(key, press)).status);
}

Outcome Driver::ObserveClip() {
    return OutcomeOf(Send(requests::ObserveClip()).status);
}

Outcome Driver::ObserveTimecode() {
    return OutcomeOf(Send(requests::ObserveTimecode()).status);
}

Outcome Driver::StartGesture(const GestureStep& step) {
    return OutcomeOf(Send(requests::StartGesture(step)).status);
}

Outcome Driver::ContinueGesture(const GestureStep& step) {
    return OutcomeOf(Send(requests::ContinueGesture(step)).status);
}

Outcome Driver::EndGesture(const GestureStep& step) {
    return OutcomeOf(Send(requests::EndGesture(step)).status);
}

Outcome Driver::Ping() {
    return OutcomeOf(Send(requests::Ping()).status);
}

Outcome Driver::SetNumber(Element textField, std::int32_t number) {
    return OutcomeOf(Send(requests::SetNumber(textField, number)).status);
}

Outcome Driver::SelectButton(Element radioGroup, std::uint32_t index) {
    return OutcomeOf(Send(requests::SelectButton(radioGroup, index)).status);
}

Outcome Driver::StopObserving() {
    return OutcomeOf(Send(requests::StopObserving()).status);
}

Outcome Driver::ForgetLast() {
    return OutcomeOf(Send(requests::ForgetLast()).status);
}

Result<std::int32_t> Driver::Value(Element element) {
    return DecodedNumber(Send(requests::Value(element)));
}

Result<std::int32_t> Driver::TextAsNumber(Element element) {
    return DecodedNumber(Send(requests::TextAsNumber(element)));
}

Result<std::uint32_t> Driver::SelectedButton(Element radioGroup) {
    return Decoded(Send(requests::SelectedButton(radioGroup)), 1,
                   [](const Integers& fields) { return fields[0]; });
}

Result<Point> Driver::Position(Element element) {
    return DecodedPoint(Send(requests::Position(element)));
}

Result<Point> Driver::ParentPosition(Element element) {
    return DecodedPoint(Send(requests::ParentPosition(element)));
}

Result<Point> Driver::PointerPosition() {
    return DecodedPoint(Send(requests::PointerPosition()));
}

Result<Frame> Driver::FindWindow(std::string_view title, bool partial) {
    return Decoded(Send(requests::FindWindow(title, partial)), 4,
                   [](const Integers& fields) { return FrameOf(fields); });
}

Result<TargetFrame> Driver::FindTarget(std::span<const Candidate> candidates) {
    const auto request = requests::FindTarget(candidates);
    if (!request) {
        return {Outcome::unencodable, {}};
    }
    return Decoded(Send(*request), 5, [](const Integers& fields) {
        return TargetFrame{fields[0], FrameOf(fields, 1)};
    });
}

}  // namespace krt9
