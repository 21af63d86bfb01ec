#include "tests/adversary/DriverUnderAttack.h"

#include "VEKCommon/MessageCodes.h"
#include "VEKCommon/OwnedReference.h"
#include "frontapplication/FrontApplication.h"
#include "tests/support/Codes.h"
#include "tests/support/FrontApplicationState.h"
#include "tests/support/LeakAllowance.h"
#include "tests/support/SentMessages.h"

namespace adversary {

namespace {

constexpr std::int32_t kProcess = 501;

const char* const kFirstStaticText = R"({"front": "com.apple.FinalCut", "applications": [
    {"bundleID": "com.apple.FinalCut", "pid": 501, "windows": [{"AXRole": "AXWindow",
     "AXChildren": [{"AXRole": "AXStaticText", "AXIdentifier": "_NS:100"}]}]}]})";

}  // namespace

DriverUnderAttack::DriverUnderAttack() {
    static const bool observing = [] {
        CFWorkspace_StartObservingFrontApplication();
        return true;
    }();
    (void)observing;
    Tick();  // reports the language, once
}

DriverUnderAttack::~DriverUnderAttack() = default;

void DriverUnderAttack::Forget(const std::string& version) {
    test_support::SetFrontApplication({"com.apple.FinalCut", version.c_str(), kProcess});
    Ask(kJStO, {});
    DriverInspector::TimelineIndexVisible(*driver_) = false;
    DriverInspector::TimelineIndexChanged(*driver_) = false;
    DriverInspector::LastClipRow(*driver_) = -1;
    CFStringReplaceAll(DriverInspector::LastTimecode(*driver_), CFSTR(""));

    const unsigned source = expected_.clipNameSource;
    expected_ = ExpectedDriver();
    expected_.clipNameSource = source;
    expected_.front = {kProcess, true, true};
    const OwnedReference<CFStringRef> text(
        CFStringCreateWithCString(kCFAllocatorDefault, version.c_str(), kCFStringEncodingUTF8));
    expected_.profile = CVEK_UserSpaceDriver::ProfileForVersion(text.get());
    DriverInspector::Profile(*driver_) = expected_.profile;
}

void DriverUnderAttack::LookForClipNameIn(unsigned source) {
    const platform_testing::AutoreleasePool pool;
    if (!sourceIsKnown_) {
        FindFirstSource();
    }
    // After a source that cannot be read, the next one is tried.
    desktop_.onReply = [](std::size_t, auto& exchange) { exchange.reply.reset(); };
    for (; expected_.clipNameSource != source;
         expected_.clipNameSource = (expected_.clipNameSource + 1) % 3) {
        driver_->ObserveFCPXClipSelectionTask();
    }
    desktop_.Restart();
}

// With the first static text there, and nothing else, three tries lead to it from anywhere.
void DriverUnderAttack::FindFirstSource() {
    desktop_.Load(kFirstStaticText);
    Forget("10.4.6");
    for (int i = 0; i < 3; ++i) {
        driver_->ObserveFCPXClipSelectionTask();
    }
    expected_.clipNameSource = 0;
    sourceIsKnown_ = true;
    Outcome ignored;
    Collect(ignored);
}

void DriverUnderAttack::ObserveBoth() {
    driver_->ObserveFCPXClipSelectionChange();
    driver_->ObserveFCPXTimelineTimecode();
    expected_.observesClip = true;
    expected_.observesTimecode = true;
}

Outcome DriverUnderAttack::Ask(SInt32 code, const Bytes& body) {
    const platform_testing::AutoreleasePool pool;
    log_.Clear();
    std::optional<test_support::LeakAllowance> groupAndChildren;
    if (code == kJSRV) {
        groupAndChildren.emplace();  // deliberately never released
    }
    const CFDataRef data =
        CFDataCreate(kCFAllocatorDefault, body.data(), static_cast<CFIndex>(body.size()));
    const CFDataRef reply =
        CVEK_UserSpaceDriver::MessageCallbackEntry(nullptr, code, data, nullptr);
    CFRelease(data);
    Outcome outcome;
    if (reply != nullptr) {
        outcome.reply.emplace(CFDataGetBytePtr(reply),
                              CFDataGetBytePtr(reply) + CFDataGetLength(reply));
        CFRelease(reply);
    }
    for (const platform_testing::LogLine& line : log_.Lines()) {
        outcome.logged.push_back(line.text);
    }
    return outcome;
}

Outcome DriverUnderAttack::Tick() {
    const platform_testing::AutoreleasePool pool;
    log_.Clear();
    CVEK_UserSpaceDriver::TimeoutCounterEntry(nullptr, nullptr);
    Outcome outcome;
    for (const platform_testing::LogLine& line : log_.Lines()) {
        outcome.logged.push_back(line.text);
    }
    Collect(outcome);
    return outcome;
}

void DriverUnderAttack::Collect(Outcome& outcome) {
    for (const auto& message : test_support::TakeSent(*driver_, companion_)) {
        std::string body(message.body.begin(), message.body.end());
        if (!body.empty() && body.back() == '\0') {
            body.pop_back();  // the terminator travels with the text
        } else {
            body += " without terminator";
        }
        outcome.sent.push_back(test_support::CodeText(message.code) + " " + body);
    }
}

}  // namespace adversary
