#include "tests/golden/Session.h"

#include <algorithm>
#include <cstdlib>
#include <stdexcept>

#include "VEKCommon/MessageCodes.h"
#include "frontapplication/FrontApplication.h"
#include "platform/Testing/LiveObjects.h"
#include "tests/support/DriverInspector.h"
#include "tests/support/Files.h"
#include "tests/support/LeakAllowance.h"
#include "tests/support/OwnedObject.h"
#include "tests/support/Paths.h"
#include "tests/support/SentMessages.h"

namespace golden {

namespace {

using platform_testing::AutoreleasePool;
using platform_testing::LogLine;
using recording::HexOf;
using test_support::OwnedObject;

constexpr CFTimeInterval kTickInterval = 0.1;
constexpr std::size_t kStatusWords = 7;
constexpr CFTimeInterval kPatience = 10;  // seconds of the test's clock: time-outs of a request

// The process remembers which source of the clip's name it uses. Three looks at a scene in which
// the first source works set it back to that one, whichever it was.
void LookForClipNamesFromTheStart(const std::string& scene) {
    const test_support::SessionFixture session;
    const test_support::ScriptedDesktop desktop(scene);
    test_support::TestDriver driver;
    CFWorkspace_StartObservingFrontApplication();
    driver->ObserveFCPXClipSelectionChange();
    for (int look = 0; look < 3; ++look) {
        driver->TimeoutCounter();
    }
}

const std::string& Only(const std::vector<std::string>& arguments, std::size_t index) {
    if (index >= arguments.size()) {
        throw std::invalid_argument("too few words");
    }
    return arguments[index];
}

}  // namespace

Session::~Session() {
    if (port_ != nullptr) {
        CFRelease(port_);
    }
    if (timer_ != nullptr) {
        (*driver_)->StopTimeoutCounter();
        CFRunLoopTimerInvalidate(timer_);
        CFRelease(timer_);
    }
    unsetenv("KRT9_LANGUAGES");
}

std::vector<std::string> Session::Perform(const std::string& step) {
    const AutoreleasePool pool;
    lines_.clear();
    const std::string verb = step.substr(0, step.find(' '));
    if (verb == "desktop") {
        desktop_.value().Run(step.substr(verb.size() + 1));
        Report();
        return lines_;
    }
    Arguments arguments = recording::Words(step);
    arguments.erase(arguments.begin());
    if (verb == "scene") {
        Scene(Only(arguments, 0));
    } else if (verb == "language") {
        language_ = Only(arguments, 0);
    } else if (verb == "title") {
        Title(Only(arguments, 0), recording::TextOf(Only(arguments, 1)));
    } else if (verb == "start") {
        Start();
    } else if (verb == "ask") {
        Ask(recording::CodeOf(Only(arguments, 0)),
            recording::BodyOf({arguments.begin() + 1, arguments.end()}));
    } else if (verb == "tick") {
        Tick(arguments.empty() ? 1 : std::stoi(arguments[0]));
    } else if (verb == "status") {
        AnswerStatus(arguments);
    } else if (verb == "counts") {
        ReadCounts();
    } else if (verb == "unheard") {
        isHeard_ = false;
    } else {
        throw std::invalid_argument("no such step");
    }
    Report();
    return lines_;
}

void Session::Scene(const std::string& file) {
    const std::string scene = test_support::ContentOf(KRT9_SCENES "/" + file);
    LookForClipNamesFromTheStart(scene);
    session_.emplace();
    desktop_.emplace(scene);
}

void Session::Title(const std::string& key, const std::string& text) {
    titles_[key] = text;
    std::string document = R"(<?xml version="1.0" encoding="UTF-8"?><plist version="1.0"><dict>)";
    for (const auto& [eachKey, eachText] : titles_) {
        document.append("<key>").append(eachKey).append("</key><string>");
        document.append(eachText).append("</string>");
    }
    home_.WriteTranslations(language_, document + "</dict></plist>");
}

// In the order of the driver's own start. The session then stands half-way between two ticks.
void Session::Start() {
    setenv("KRT9_LANGUAGES", language_.c_str(), 1);
    companion_.emplace();
    driver_.emplace();
    (*driver_)->StartTimeoutCounter();
    timer_ = DriverInspector::TimeoutTimer(**driver_);
    CFWorkspace_StartObservingFrontApplication();
    CFRunLoopRunInMode(kCFRunLoopDefaultMode, kTickInterval / 2, false);
    log_.emplace();
    port_ = CFMessagePortCreateRemote(kCFAllocatorDefault, CFSTR("KRT9Background"));
    if (port_ == nullptr) {
        throw std::runtime_error("the driver does not listen");
    }
}

void Session::Ask(SInt32 code, const std::optional<Bytes>& body) {
    OwnedObject<CFDataRef> data =
        body ? CFDataCreate(kCFAllocatorDefault, body->data(), static_cast<CFIndex>(body->size()))
             : nullptr;
    Add("request", recording::RequestText(code, body));
    const CFAbsoluteTime before = CFAbsoluteTimeGetCurrent();
    const std::optional<Bytes> reply = Exchange(code, data);
    if (CFAbsoluteTimeGetCurrent() != before) {
        throw std::runtime_error("the request took time of the clock");
    }
    Add("reply", recording::ReplyText(reply));
}

// Nothing: no reply. The port hands out data without bytes then; no record is that short.
std::optional<Bytes> Session::Exchange(SInt32 code, CFDataRef body) {
    std::optional<test_support::LeakAllowance> groupAndChildren;
    if (code == kJSRV) {
        groupAndChildren.emplace();  // deliberately never released
    }
    OwnedObject<CFDataRef> reply;
    const SInt32 status = CFMessagePortSendRequest(port_, code, body, kPatience, kPatience,
                                                   kCFRunLoopDefaultMode, reply.Out());
    if (status != kCFMessagePortSuccess) {
        throw std::runtime_error("the port answered " + std::to_string(status));
    }
    if (reply.get() == nullptr || CFDataGetLength(reply) == 0) {
        return std::nullopt;
    }
    return Bytes(CFDataGetBytePtr(reply), CFDataGetBytePtr(reply) + CFDataGetLength(reply));
}

void Session::Tick(int count) {
    CFRunLoopRunInMode(kCFRunLoopDefaultMode, kTickInterval * count, false);
}

void Session::AnswerStatus(const Arguments& words) {
    if (words.empty()) {
        companion_.value().reply.reset();
    } else if (words[0].starts_with('x')) {
        companion_.value().reply = recording::BytesOf(words[0]);
    } else {
        std::vector<unsigned int> status;
        for (const std::string& word : words) {
            status.push_back(static_cast<unsigned int>(std::stoul(word, nullptr, 0)));
        }
        status.resize(kStatusWords);
        companion_.value().reply = recording::BigEndian(status);
    }
    Add("answer", HexOf(companion_->reply));
}

void Session::ReadCounts() {
    Add("counts", std::to_string(CVEK_UserSpaceDriver::GetUnitCount()) + " units, " +
                      std::to_string(CVEK_UserSpaceDriver::GetChannelCount()) + " channels");
}

void Session::Report() {
    if (driver_) {
        for (const auto& [code, body] : test_support::TakeSent(**driver_, *companion_)) {
            if (isHeard_) {
                Add("message", recording::MessageText(code, body));
            }
        }
    }
    if (desktop_) {
        for (const std::string& entry : (*desktop_)->Log().LinesSince(desktopEntries_)) {
            Add("desktop", entry);
        }
        desktopEntries_ = (*desktop_)->Log().LastNumber();
    }
    for (const LogLine& line : log_ ? log_->Lines() : std::vector<LogLine>()) {
        const char* const kind = line.log == LogLine::Log::console ? "console: " : "system: ";
        Add("log", kind + line.text.substr(0, line.text.find_last_not_of('\n') + 1));
    }
    if (log_) {
        log_->Clear();
    }
}

void Session::Add(const char* what, const std::string& text) {
    lines_.push_back(recording::OutcomeLine(what, text));
}

}  // namespace golden
