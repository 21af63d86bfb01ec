// The companion's side of the driver's message protocol, as docs/protocol.md describes it. The
// folder needs nothing but Core Foundation: a companion may take this header and the sources beside
// it as they are. sample/FollowEditor.cpp uses both directions.
//
// Threads: an object is used on one thread at a time. Sending waits on the thread that sends; a
// CompanionPort calls its handler on the thread whose run loop it was opened on. Texts are UTF-8.
// Nothing throws but std::bad_alloc, and what a handler throws must not leave it.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include <cstdint>
#include <functional>
#include <initializer_list>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

namespace krt9 {

using Bytes = std::vector<std::uint8_t>;
using Code = std::int32_t;  // four characters, the first one in the most significant byte

constexpr Code CodeOf(const char (&characters)[5]) {
    std::uint32_t code = 0;
    for (int i = 0; i < 4; ++i) {
        code = code << 8 | static_cast<unsigned char>(characters[i]);
    }
    return static_cast<Code>(code);
}

// --- Values --------------------------------------------------------------------------------------

// 59 is the control with the accessibility identifier "_NS:59".
using Element = std::uint32_t;

// Global display coordinates in points, origin at the top left of the main screen.
struct Point {
    std::int32_t x = 0;
    std::int32_t y = 0;
    friend bool operator==(const Point&, const Point&) = default;
};

struct Frame {
    Point position;
    std::int32_t width = 0;
    std::int32_t height = 0;
    friend bool operator==(const Frame&, const Frame&) = default;
};

struct TargetFrame {
    std::uint32_t candidate = 0;  // its index, from 0
    Frame frame;
    friend bool operator==(const TargetFrame&, const TargetFrame&) = default;
};

// Bits of a modifier word.
inline constexpr std::uint32_t kCommand = 0x0100;
inline constexpr std::uint32_t kShift = 0x0200;
inline constexpr std::uint32_t kOption = 0x0800;
inline constexpr std::uint32_t kControl = 0x1000;

struct Key {
    std::uint32_t code = 0;  // virtual key code; the driver never posts 0
    std::uint32_t modifiers = 0;
};

// A step of a gesture. All steps of one gesture have the same modifiers and the same click. The
// driver takes the coordinates as unsigned numbers.
struct GestureStep {
    std::uint32_t x = 0;
    std::uint32_t y = 0;
    std::uint32_t modifiers = 0;
    bool click = true;  // press the left mouse button
};

// What 'JAcF' does.
struct Refresh {
    bool frontApplication = false;  // its process, and the profile of its version
    bool timecode = false;          // start to observe it
    bool clip = false;              // likewise
};

// A window by the keys of its translated title, in the system encoding at most 255 bytes each.
struct Candidate {
    std::string name;
    std::optional<std::string> subWindowName;  // of the window whose frame is wanted instead
};

struct ControllerStatus {
    std::uint32_t units = 1;  // the driver keeps the low 16 bits of both
    std::uint32_t channels = 8;
};

// --- Requests, encoded ---------------------------------------------------------------------------

struct Request {
    Code code = 0;
    Bytes body;
};

namespace requests {

Request RefreshAndObserve(const Refresh& what);                 // 'JAcF'
Request Press(Element element);                                 // 'JBtP'
Request PostKey(const Key& key, bool press);                    // 'JCPK'
Request ParentPosition(Element element);                        // 'JEPp'
Request TextAsNumber(Element element);                          // 'JESI'
Request Position(Element element);                              // 'JElP'
Request Value(Element element);                                 // 'JElV'
Request SelectedButton(Element radioGroup);                     // 'JGRV'
Request PointerPosition();                                      // 'JGlM'
Request ObserveClip();                                          // 'JObE'
Request ObserveTimecode();                                      // 'JObT'
Request ContinueGesture(const GestureStep& step);               // 'JPMC'
Request EndGesture(const GestureStep& step);                    // 'JPME'
Request StartGesture(const GestureStep& step);                  // 'JPMS'
Request Ping();                                                 // 'JPth'
Request SetNumber(Element textField, std::int32_t number);      // 'JSIS'
Request SelectButton(Element radioGroup, std::uint32_t index);  // 'JSRV'
Request StopObserving();                                        // 'JStO'
Request FindWindow(std::string_view title, bool partial);       // 'JWiP'
Request ForgetLast();                                           // 'JXRs'

// 'JTWP'. Nothing when a name is not UTF-8, does not fit, or has characters that the system
// encoding lacks. With several candidates the body ends with zeros, which the driver ignores.
std::optional<Request> FindTarget(std::span<const Candidate> candidates);

}  // namespace requests

// 4 bytes each, least significant first.
Bytes IntegersBody(std::initializer_list<std::uint32_t> integers);
// All of them; a rest of fewer than 4 bytes is left out.
std::vector<std::uint32_t> IntegersOf(std::span<const std::uint8_t> bytes);

// --- The connection to the driver ----------------------------------------------------------------

// Distinct from the results of CFMessagePortSendRequest, none of which is positive.
inline constexpr std::int32_t kPortMissing = 1;

// What came of a request, as the message port reports it.
struct Delivery {
    std::int32_t status = 0;  // kPortMissing or a result of CFMessagePortSendRequest
    Bytes reply;              // empty: the driver sent an empty reply
};

enum class Outcome {
    delivered,    // the driver took the request and is done with it
    noDriver,     // there is no driver; nothing was sent
    notTaken,     // the driver did not take it in time; it may still take effect
    notAnswered,  // the driver took it and did not reply in time; it may still take effect
    ended,        // the driver ended
    failed,       // the message port could not deliver it
    unencodable,  // a candidate's name cannot be sent; nothing was
};

Outcome OutcomeOf(std::int32_t status);

// The reply to a request that has one. Delivered and without a value: the request failed, because
// the element or window is not there, for instance.
template <class Value>
struct Result {
    Outcome outcome = Outcome::failed;
    std::optional<Value> value;
    explicit operator bool() const { return value.has_value(); }
    const Value& operator*() const { return *value; }
};

class Driver {
  public:
    // `timeout` in seconds, for handing a request over and once more for its reply. While it waits,
    // the run loop runs in `mode` (retained; null: a mode of its own), so that no source of another
    // mode is handled, a CompanionPort's messages included.
    explicit Driver(double timeout = 1, CFStringRef mode = nullptr);

    void SetTimeout(double timeout) { timeout_ = timeout; }

    // Looks the driver's port up with the first request, and again with the first one after its end
    // was noticed: a driver that was started anew is found.
    Delivery Send(const Request& request);

    // Whether the port has been found and is still valid, as far as was noticed.
    bool IsConnected() const;

    // Without reply: that a request was delivered does not say that it worked.
    Outcome RefreshAndObserve(const Refresh& what);
    Outcome Press(Element element);
    Outcome PostKey(const Key& key, bool press);
    Outcome ObserveClip();
    Outcome ObserveTimecode();
    Outcome StartGesture(const GestureStep& step);
    Outcome ContinueGesture(const GestureStep& step);
    Outcome EndGesture(const GestureStep& step);
    Outcome Ping();
    Outcome SetNumber(Element textField, std::int32_t number);
    Outcome SelectButton(Element radioGroup, std::uint32_t index);
    Outcome StopObserving();
    Outcome ForgetLast();

    Result<std::int32_t> Value(Element element);
    Result<std::int32_t> TextAsNumber(Element element);
    Result<std::uint32_t> SelectedButton(Element radioGroup);  // from 0
    Result<Point> Position(Element element);
    Result<Point> ParentPosition(Element element);
    Result<Point> PointerPosition();
    Result<Frame> FindWindow(std::string_view title, bool partial);
    Result<TargetFrame> FindTarget(std::span<const Candidate> candidates);

  private:
    struct Release {
        void operator()(CFTypeRef object) const { CFRelease(object); }
    };
    template <class Reference>
    using Owned = std::unique_ptr<std::remove_pointer_t<Reference>, Release>;

    double timeout_;
    Owned<CFStringRef> mode_;
    Owned<CFMessagePortRef> port_;
};

// --- Messages of the driver ----------------------------------------------------------------------

enum class MessageKind {
    statusQuery,  // 'Stus', already replied to
    language,     // 'JSLg': the driver has started, and observes nothing yet
    clip,         // 'JFSC': the selected clip's name, or kNoClipSelected
    timecode,     // 'JFTC'
    other,        // an unknown code, or a body that is not what the code has
};

inline constexpr char kNoClipSelected[] = "no clip selected";

struct Message {
    MessageKind kind = MessageKind::other;
    std::string text;  // of language, clip and timecode
    Code code = 0;     // as it came, like the body
    Bytes body;
};

Message DecodeMessage(Code code, std::span<const std::uint8_t> body);

// The reply to 'Stus'.
Bytes StatusReply(const ControllerStatus& status);

// The companion's port. It must be open before the driver starts, which looks for it only once.
class CompanionPort {
  public:
    using Handler = std::function<void(const Message&)>;

    // Null when another process owns the name. Messages arrive while the current thread's run loop
    // runs in the default mode.
    static std::unique_ptr<CompanionPort> Open(const ControllerStatus& status, Handler handler);

    // On the thread that opened it, and not in the handler.
    ~CompanionPort();
    CompanionPort(const CompanionPort&) = delete;
    CompanionPort& operator=(const CompanionPort&) = delete;

  private:
    CompanionPort(const ControllerStatus& status, Handler handler);
    static CFDataRef Receive(CFMessagePortRef port, SInt32 code, CFDataRef data, void* self);

    ControllerStatus status_;
    Handler handler_;
    CFMessagePortRef port_ = nullptr;
    CFRunLoopSourceRef source_ = nullptr;
};

// --- Texts ---------------------------------------------------------------------------------------

// In the system encoding, up to the first 0. Nothing when the text is not UTF-8 or a character has
// no place in the encoding.
std::optional<std::string> ToSystemEncoding(std::string_view utf8);

// Nothing when the bytes are not text of the system encoding.
std::optional<std::string> FromSystemEncoding(std::span<const std::uint8_t> bytes);

// Empty when the text is not UTF-8.
std::vector<std::uint16_t> ToUtf16(std::string_view utf8);

}  // namespace krt9
