// The driver between a companion and a desktop that both do what the input says: requests from the
// input's front, what the desktop answers from its back.
//
// What must hold: no crash, nothing undefined, no endless loop, and no object left over but those
// that the selection of a radio button keeps.
#include <CoreFoundation/CoreFoundation.h>

#include <array>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <system_error>

#include "VEKCommon/MessageCodes.h"
#include "frontapplication/FrontApplication.h"
#include "fuzz/Answers.h"
#include "fuzz/Check.h"
#include "fuzz/ObjectLedger.h"
#include "fuzz/Requests.h"
#include "fuzz/StartUp.h"
#include "fuzz/Surroundings.h"
#include "platform/DesktopLink/Session.h"
#include "platform/Testing/LiveObjects.h"
#include "platform/Testing/TestClock.h"
#include "platform/Variants/EventFaults.h"
#include "platform/Variants/MidiFaults.h"
#include "protocol/GeometryRecords.h"
#include "protocol/IntegerRecords.h"
#include "tests/support/Companion.h"
#include "tests/support/DriverInspector.h"
#include "tests/support/FrontApplicationState.h"
#include "tests/support/OwnedObject.h"
#include "tests/support/ScriptedDesktop.h"

namespace {

using fuzz::Choices;

constexpr int kMostSteps = 48;
constexpr CFTimeInterval kTick = 0.1;

// The records that replies are have their size; this one stands for no reply.
struct NoReply {
    static constexpr unsigned int kSmallestSize = 0;
};

// Bytes of the reply to a request that succeeds; 0 for one that never gets any.
CFIndex ReplySize(SInt32 code) {
    static const std::map<SInt32, CFIndex> sizes = {
#define REQUEST(request, guard, body, operation, reply) {k##request, reply::kSmallestSize},
#include "VEKCommon/Requests.def"
#undef REQUEST
    };
    const auto found = sizes.find(code);
    return found != sizes.end() ? found->second : 0;
}

// A driver as `main` makes it, its timer running. The process of a real one ends right after its
// destructor, which leaves the timer, the last timecode, the MIDI client and its static pointer
// behind.
class WholeDriver {
  public:
    WholeDriver() : driver_(std::make_unique<CVEK_UserSpaceDriver>()) {}
    WholeDriver(const WholeDriver&) = delete;
    WholeDriver& operator=(const WholeDriver&) = delete;
    ~WholeDriver() {
        const CFRunLoopTimerRef timer = DriverInspector::TimeoutTimer(*driver_);
        const CFMutableStringRef timecode = DriverInspector::LastTimecode(*driver_);
        const MIDIClientRef midi = DriverInspector::MIDIClient(*driver_);
        driver_.reset();
        if (midi != 0) {
            MIDIClientDispose(midi);
        }
        CVEK_UserSpaceDriver::sSelf = nullptr;
        CFRelease(timecode);
        if (timer != nullptr) {
            CFRelease(timer);
        }
    }

    CVEK_UserSpaceDriver& operator*() { return *driver_; }
    CVEK_UserSpaceDriver* operator->() { return driver_.get(); }

  private:
    std::unique_ptr<CVEK_UserSpaceDriver> driver_;
};

class Play {
  public:
    explicit Play(std::span<const std::uint8_t> input)
        : input_(input),
          program_(input_, fuzz::End::front),
          back_(input_, fuzz::End::back),
          answers_(back_) {
        desktop_.replyInstead = [this](const auto& request) { return answers_.To(request); };
    }

    void Run() {
        Prepare();
        WholeDriver driver;
        for (int step = 0; step < kMostSteps && !program_.Exhausted(); ++step) {
            Step(*driver);
        }
        Settle(*driver);
        platform_testing::ForgetEventFaults();
        platform_testing::ForgetMidiFaults();
    }

  private:
    // The observer of the front application is one for the whole process.
    void Prepare() {
        test_support::SetFrontApplication({});
        desktop_link::FrontApplication();  // so that notifications are wanted
        const std::uint8_t choice = program_.Byte();
        if (choice % 4 != 3) {
            companion_.emplace();
        }
        if (choice / 16 == 15) {
            platform_testing::FailMidiCreation(platform_testing::MidiCreation{choice % 3}, 1);
        }
        if (choice / 16 == 14) {
            platform_testing::FailEventCreation(platform_testing::EventCreation::source, 1);
        }
    }

    static void LetTicksPass(int ticks) {
        CFRunLoopRunInMode(kCFRunLoopDefaultMode, kTick * ticks, false);
    }

    void Step(CVEK_UserSpaceDriver& driver) {
        const std::uint8_t choice = program_.Byte();
        switch (choice % 16) {
            case 9:
            case 10:
            case 11:
                LetTicksPass(1 + choice / 64);
                break;
            case 12:
                ChangeFront();
                break;
            case 13:
                ChangeLanguage(driver);
                break;
            case 14:
                ChangeCompanion();
                break;
            case 15:
                platform_testing::FailEventCreation(
                    platform_testing::EventCreation{choice / 16 % 5}, 1 + program_.Below(4));
                break;
            default: {
                const fuzz::CompanionRequest request = fuzz::NextRequest(program_);
                if (request.body && request.body->size() >= 4) {
                    std::uint32_t element = 0;
                    std::memcpy(&element, request.body->data(), sizeof element);
                    answers_.Seek("_NS:" + std::to_string(element));
                }
                Ask(request);
                break;
            }
        }
    }

    static void Ask(const fuzz::CompanionRequest& request) {
        const auto ask = [&request] {
            test_support::OwnedObject<CFDataRef> body;
            if (request.body) {
                *body.Out() = CFDataCreate(kCFAllocatorDefault, request.body->data(),
                                           static_cast<CFIndex>(request.body->size()));
            }
            const test_support::OwnedObject<CFDataRef> reply =
                CVEK_UserSpaceDriver::MessageCallbackEntry(nullptr, request.code, body, nullptr);
            CheckReply(request.code, reply);
        };
        // A pass of the run loop has its own pool, too.
        if (request.code == kJSRV) {
            fuzz::ReleaseKeptRadioGroup(ask);
        } else {
            const platform_testing::AutoreleasePool pool;
            ask();
        }
    }

    static void CheckReply(SInt32 code, CFDataRef reply) {
        if (reply == nullptr) {
            fuzz::Check(code != kJGlM, "the pointer's position is always answered");
            return;
        }
        fuzz::Check(ReplySize(code) > 0, "a request without a reply gets none");
        fuzz::Check(CFDataGetLength(reply) == ReplySize(code), "a reply is one record");
    }

    void ChangeFront() {
        const auto bundle = fuzz::PrivateFolder() / "Front.app";
        if (program_.Flag()) {
            fuzz::WriteFile(bundle / "Contents/Info.plist", fuzz::NextPropertyList(program_));
        }
        desktop_link::Notification notification;
        if (program_.Byte() < 240) {
            notification.activated = answers_.Application(bundle);
        }
        desktop_.Deliver(notification);
    }

    // The translations that window titles are looked up in.
    void ChangeLanguage(CVEK_UserSpaceDriver& driver) {
        static constexpr std::array<const char*, 4> tags = {
            "en", "VEKLanguage", "a tag of thirty-one bytes, whole", "../x"};
        std::strncpy(DriverInspector::Language(driver), program_.Pick(tags), 31);
        const std::string file = std::string(DriverInspector::Language(driver)).substr(0, 16);
        fuzz::WriteFile(fuzz::TranslationFolder() / (file + ".plist"),
                        fuzz::NextPropertyList(program_));
    }

    void ChangeCompanion() {
        const std::uint8_t choice = program_.Byte();
        if (choice % 8 == 7) {
            companion_.reset();
        } else if (companion_ && choice % 8 == 6) {
            companion_->reply.reset();
        } else if (companion_) {
            companion_->reply = program_.Bytes(choice % 8 < 4 ? 28 : choice % 64);
        }
    }

    // The process remembers which source of the clip's name it uses. Two looks at an application
    // that has only the first source set it back to that one, whichever it was.
    void Settle(CVEK_UserSpaceDriver& driver) {
        answers_.OnlyTheFirstStaticText();
        test_support::SetFrontApplication({"com.apple.FinalCut", "10.4.6", 501});
        DriverInspector::Profile(driver) = CVEK_UserSpaceDriver::kProfileForOtherVersions;
        const platform_testing::AutoreleasePool pool;
        driver.ObserveFCPXClipSelectionTask();
        driver.ObserveFCPXClipSelectionTask();
        test_support::SetFrontApplication({});
    }

    std::span<const std::uint8_t> input_;
    Choices program_;
    Choices back_;
    fuzz::Answers answers_;
    platform_testing::TestClock clock_;
    test_support::ScriptedDesktop desktop_;
    std::optional<test_support::Companion> companion_;
};

}  // namespace

void fuzz::PrepareTarget() {
    PrivateFolder();
    CFWorkspace_StartObservingFrontApplication();
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    fuzz::RunWithoutGrowth([&] {
        std::error_code nothingThere;
        std::filesystem::remove_all(fuzz::TranslationFolder(), nothingThere);
        std::filesystem::remove_all(fuzz::PrivateFolder() / "Front.app", nothingThere);
        Play({data, size}).Run();
    });
    return 0;
}
