// What an application that does not answer costs: a request, and a tick, one messaging time-out,
// wherever in it the application stops answering.
//
// A search goes on after a control that fails, since the one sought may come after it; but a call
// that has timed out means that its whole process hangs, and further calls
// to that process are not made. Elements of other processes are found.
//
// Where a call to an application that hangs fails earlier (variants hang-at-once and
// hang-for-a-second), it cannot be told from one that the application failed by itself: the calls
// that follow are made, and each is waited for.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <thread>

#include "VEKCommon/MessageCodes.h"
#include "platform/Testing/TestClock.h"
#include "platform/Variants/Variants.h"
#include "tests/adversary/DriverUnderAttack.h"
#include "tests/adversary/Operations.h"
#include "tests/support/CallClock.h"

namespace adversary {

namespace {

using platform_testing::IsOn;
using platform_testing::UnderVariant;
using platform_testing::Variant;
using platform_testing::WithoutVariants;

const char* const kScene = R"({"front": "com.apple.FinalCut", "applications": [
  {"bundleID": "com.apple.FinalCut", "pid": 501, "windows": [
    {"AXRole": "AXWindow", "AXTitle": "First", "AXChildren": [
      {"AXRole": "AXGroup", "AXChildren": [
        {"AXRole": "AXGroup", "AXChildren": [{"AXRole": "AXButton"}, {"AXRole": "AXButton"}]},
        {"AXRole": "AXGroup", "AXChildren": [{"AXRole": "AXButton"}, {"AXRole": "AXButton"},
                                             {"AXRole": "AXButton"}]}]},
      {"AXRole": "AXGroup", "AXChildren": [
        {"AXRole": "AXCheckBox", "AXIdentifier": "_NS:59", "AXValue": 3}]}]},
    {"AXRole": "AXWindow", "AXTitle": "Second", "AXChildren": [{"AXRole": "AXButton"}]}]}]})";

// An editor that works, with a view of another process, 777, before everything else in its window.
const char* const kSceneWithRemoteView = R"({"front": "com.apple.FinalCut", "applications": [
  {"bundleID": "com.apple.FinalCut", "pid": 501, "windows": [
    {"AXRole": "AXWindow", "AXTitle": "Only", "AXChildren": [
      {"AXRole": "AXGroup", "AXChildren": [
        {"AXRole": "AXCheckBox", "AXIdentifier": "_NS:59", "AXValue": 3},
        {"AXRole": "AXStaticText", "AXIdentifier": "_NS:100", "AXValue": "Clip"},
        {"AXRole": "AXLayoutArea", "AXIdentifier": "_NS:393", "AXChildren": [
          {"AXRole": "AXValueIndicator", "AXDescription": "Playhead",
           "AXValueDescription": "01:00"}]}]}],
     "misbehaviour": {"read": {"AXChildren": {"answer": {"array": [
       {"element": "/0", "application": "com.example.extension"},
       {"element": "/0", "application": "com.example.extension"},
       {"element": "/0/0"}]}}}}}]},
  {"bundleID": "com.example.extension", "pid": 777, "windows": [
    {"AXRole": "AXGroup", "AXChildren": [
      {"AXRole": "AXCheckBox", "AXIdentifier": "_NS:60", "AXValue": 8}]}]}]})";

const std::string kHangExtension = R"({"command": "hang", "application": "com.example.extension"})";
const std::string kHang = R"({"command": "hang", "application": "com.apple.FinalCut"})";
const std::string kKill = R"({"command": "kill", "application": "com.apple.FinalCut"})";
const std::string kUnhang = R"({"command": "unhang", "application": "com.apple.FinalCut"})";

constexpr double kTimeOut = 6;  // seconds
constexpr double kOneSecond = 1;
constexpr std::int32_t kEditor = 501;
constexpr std::int32_t kExtension = 777;

class HungApplication : public testing::Test {
  protected:
    HungApplication() {
        driver_.Desktop().onSilence = [](double seconds) {
            test_support::CallClock::Advance(seconds);
        };
        Begin(kScene);
    }

    void Begin(const std::string& scene, const std::string& version = "10.4.6") {
        driver_.Forget(version);
        driver_.Desktop().Load(scene);
    }

    // Seconds that the driver waited for answers that never came, of one process or of all.
    double Waited(std::optional<std::int32_t> process = std::nullopt) {
        double seconds = 0;
        for (const Exchange& exchange : driver_.Desktop().Exchanges()) {
            if (!exchange.reply && (!process || exchange.request.element.pid == *process)) {
                seconds += exchange.timeout;
            }
        }
        return seconds;
    }

    // What this many calls to a hung process cost when every one of them is made; usually the
    // first is the only one.
    static double CostOf(int calls) {
        if (IsOn(Variant::hangAtOnce)) {
            return 0;
        }
        return IsOn(Variant::hangForASecond) ? calls * kOneSecond : kTimeOut;
    }

    int ReadsOfAttributes() {
        const auto& made = driver_.Desktop().Exchanges();
        return static_cast<int>(std::count_if(made.begin(), made.end(), [](const Exchange& each) {
            return each.request.operation == desktop_link::Operation::copyAttribute ||
                   each.request.operation == desktop_link::Operation::copyAttributes;
        }));
    }

    // The exchange with that number, counted from 0, ends with the error of a hung application, but
    // this many seconds after it began.
    void FailAfter(double seconds, std::size_t exchange) {
        driver_.Desktop().onReply = [=](std::size_t number, Exchange& now) {
            if (number == exchange) {
                test_support::CallClock::Advance(seconds);
                now.reply->error = kAXErrorCannotComplete;
                now.reply->values.clear();
            }
        };
    }

    // From the moment on that the n-th exchange begins.
    void HangAt(std::size_t exchange, const std::string& command = kHang) {
        driver_.Desktop().onRequest = [=, this](const auto&) {
            if (driver_.Desktop().Exchanges().size() == exchange) {
                driver_.Desktop().RunUnnoticed(command);
            }
        };
    }

    // Runs it with an editor that hangs from that exchange on, if any; the number of exchanges.
    // Undisturbed, it must do what it is there for.
    std::size_t RunFrom(const DriverOperation& operation, std::optional<std::size_t> exchange,
                        const std::string& command = kHang) {
        if (operation.clipSource) {
            driver_.LoseTrack();
            driver_.LookForClipNameIn(*operation.clipSource);
        }
        Begin(operation.scene, operation.version);
        driver_.Expected().mainWindow = driver_.Desktop()->Find("", "/1");
        if (operation.clipSource) {
            driver_.ObserveBoth();
        }
        if (exchange) {
            HangAt(*exchange, command);
        }
        const Outcome outcome = operation.run(driver_);
        if (!exchange) {
            Replay replay(driver_.Desktop().Exchanges());
            EXPECT_EQ(Description(outcome),
                      Description(operation.expect(driver_.Expected(), replay)))
                << operation.name;
            EXPECT_EQ(replay.Deviation(), "") << operation.name;
            EXPECT_NE(ReadsOfAttributes(), 1) << operation.name << " ends where it could hang";
        }
        driver_.Desktop().onRequest = nullptr;
        driver_.LoseTrack();
        return driver_.Desktop().Exchanges().size();
    }

    std::optional<Bytes> ValueOf(unsigned number) {
        return driver_.Ask(kJElV, Integers({number})).reply;
    }
    std::optional<Bytes> ValueOf59() { return ValueOf(59); }

    // What the tick sends that looks for the clip's name in the first static text.
    std::vector<std::string> SentByATick(const std::string& scene, const std::string& command) {
        driver_.LookForClipNameIn(0);
        Begin(scene);
        driver_.ObserveBoth();
        driver_.Desktop().RunUnnoticed(command);
        std::vector<std::string> sent = driver_.Tick().sent;
        driver_.LoseTrack();
        return sent;
    }

    // The value of the control when the editor hangs for one call to a group, and then goes on.
    std::optional<Bytes> ValueOf59AfterALapse() {
        Begin(kScene);
        HangAt(2);
        driver_.Desktop().onReply = [this](std::size_t exchange, auto&) {
            if (exchange == 2) {
                driver_.Desktop().RunUnnoticed(kUnhang);
            }
        };
        return ValueOf59();
    }

    platform_testing::AutoreleasePool pool_;
    platform_testing::TestClock wallClock_;
    test_support::CallClock callClock_;
    DriverUnderAttack driver_;
};

// Pinned to the usual behaviour, whatever the program runs under: what is proved here is that calls
// behind one that was waited for to its end are not made, and no other call is waited for so long.
class HungForTheTimeOut : public HungApplication {
  private:
    const WithoutVariants usual_{{Variant::hangAtOnce, Variant::hangForASecond}};
};

}  // namespace

// Every request and every tick, from each of its calls on without an answer.
TEST_F(HungForTheTimeOut, CostsOneTimeOutFromWhicheverExchangeOnItHangs) {
    for (const DriverOperation& operation : AllOperations()) {
        const std::size_t exchanges = RunFrom(operation, std::nullopt);
        EXPECT_EQ(Waited(), 0.0) << operation.name;
        for (std::size_t exchange = 0; exchange < exchanges; ++exchange) {
            RunFrom(operation, exchange);
            const auto& made = driver_.Desktop().Exchanges();
            const auto first = std::find_if(made.begin(), made.end(),
                                            [](const Exchange& each) { return !each.reply; });
            EXPECT_LE(Waited(), kTimeOut) << operation.name << " from exchange " << exchange;
            EXPECT_TRUE(first == made.end() ||
                        std::none_of(first + 1, made.end(),
                                     [](const Exchange& each) { return each.request.element.pid; }))
                << operation.name << " from exchange " << exchange;
        }
    }
}

// With both observations on, from the beginning.
TEST_F(HungForTheTimeOut, CostsATickOneTimeOut) {
    for (unsigned source : {0U, 1U, 2U}) {
        driver_.LookForClipNameIn(source);
        Begin(kScene);
        driver_.ObserveBoth();
        driver_.Desktop().RunUnnoticed(kHang);
        driver_.Tick();
        EXPECT_EQ(Waited(), kTimeOut) << "source " << source;
        driver_.LoseTrack();
    }
}

// A search that has just listed a thousand controls.
TEST_F(HungForTheTimeOut, CostsASearchInACrowdOneTimeOut) {
    std::string buttons;
    for (int i = 0; i < 1000; ++i) {
        buttons += R"({"AXRole": "AXButton"},)";
    }
    Begin(R"({"front": "com.apple.FinalCut", "applications": [
        {"bundleID": "com.apple.FinalCut", "pid": 501, "windows": [
          {"AXRole": "AXWindow", "AXTitle": "Only", "AXChildren": [)" +
          buttons + R"({"AXRole": "AXCheckBox", "AXIdentifier": "_NS:59"}]}]}]})");
    HangAt(2);  // behind the list of windows and that of the window's controls
    EXPECT_EQ(ValueOf59(), std::nullopt);
    EXPECT_EQ(Waited(), kTimeOut);
}

// The control was found; only its value did not come.
TEST_F(HungApplication, BetweenAControlAndItsValueGivesZero) {
    HangAt(12);
    EXPECT_EQ(ValueOf59(), Integers({0}));
    EXPECT_EQ(Waited(), CostOf(1));
}

// A call counts as a sign of a hung process only when it lasted the whole time-out.
TEST_F(HungForTheTimeOut, ForOneCallIsNotAskedAgain) {
    EXPECT_EQ(ValueOf59AfterALapse(), std::nullopt);
    EXPECT_EQ(Waited(), kTimeOut);
}

TEST_F(HungForTheTimeOut, ForOneCallThatFailsAtOnceIsSearchedOn) {
    const UnderVariant atOnce(Variant::hangAtOnce);
    EXPECT_EQ(ValueOf59AfterALapse(), Integers({3}));
    EXPECT_EQ(Waited(), 0.0);
}

TEST_F(HungForTheTimeOut, ForOneCallThatFailsAfterASecondIsSearchedOn) {
    const UnderVariant forASecond(Variant::hangForASecond);
    EXPECT_EQ(ValueOf59AfterALapse(), Integers({3}));
    EXPECT_EQ(Waited(), kOneSecond);
}

// Dead, and not merely silent: the system itself answers, with an error and at once.
TEST_F(HungApplication, ThatIsDeadCostsNoTimeAtAll) {
    for (const DriverOperation& operation : AllOperations()) {
        const std::size_t exchanges = RunFrom(operation, std::nullopt);
        for (std::size_t exchange = 0; exchange < exchanges; ++exchange) {
            RunFrom(operation, exchange, kKill);
            EXPECT_EQ(Waited(), 0.0) << operation.name << " from exchange " << exchange;
        }
    }
}

// The error of a hung application, but early: it is that control's alone, and the search goes on.
TEST_F(HungApplication, IsNotTakenForOneThatCannotCompleteASingleCall) {
    FailAfter(0, 2);
    EXPECT_EQ(ValueOf59(), Integers({3}));
}

TEST_F(HungApplication, IsNotTakenForAGroupThatCannotCompleteAfterAWhile) {
    for (const double seconds : {0.25, 0.3, 1.0, 5.0}) {
        driver_.Desktop().Restart();
        FailAfter(seconds, 2);
        EXPECT_EQ(ValueOf59(), Integers({3})) << seconds;
    }
}

// A call that takes no time at all, while the clock is being set.
TEST_F(HungApplication, IsNotTakenForAStepOfTheWallClock) {
    for (const double step : {7.0, 86'400.0, -86'400.0}) {
        driver_.Desktop().Restart();
        driver_.Desktop().onReply = [&](std::size_t number, Exchange& exchange) {
            if (number == 2) {
                wallClock_.Advance(step);
                exchange.reply->error = kAXErrorCannotComplete;
                exchange.reply->values.clear();
            }
        };
        EXPECT_EQ(ValueOf59(), Integers({3})) << step;
    }
}

// Set back by a day while the driver waits: it has waited nevertheless.
TEST_F(HungForTheTimeOut, IsRecognisedAcrossAStepOfTheWallClock) {
    driver_.Desktop().onSilence = [this](double seconds) {
        test_support::CallClock::Advance(seconds);
        wallClock_.Advance(-86'400);
    };
    HangAt(4);
    EXPECT_EQ(ValueOf59(), std::nullopt);
    EXPECT_EQ(Waited(), kTimeOut);
}

// The answer comes late, but it comes.
TEST_F(HungApplication, IsNotTakenForOneThatIsSlow) {
    for (const double seconds : {kTimeOut / 2, kTimeOut}) {
        driver_.Desktop().Restart();
        driver_.Desktop().onReply = [=](std::size_t, auto&) {
            test_support::CallClock::Advance(seconds);
        };
        EXPECT_EQ(ValueOf59(), Integers({3})) << seconds;
    }
}

// By the real clock, and with a time-out that is shorter than some honest answers.
TEST_F(HungForTheTimeOut, OfAFifthOfASecondIsWaitedForOnceInACrowd) {
    const float timeout = 0.2F;
    const CallTiming ofTheFixture = SetCallTiming({.timeout = timeout});
    driver_.Desktop().onSilence = [](double seconds) {
        std::this_thread::sleep_for(std::chrono::duration<double>(seconds));
    };
    std::string buttons;
    for (int i = 0; i < 100; ++i) {
        buttons += R"({"AXRole": "AXButton"},)";
    }
    Begin(R"({"front": "com.apple.FinalCut", "applications": [
        {"bundleID": "com.apple.FinalCut", "pid": 501, "windows": [
          {"AXRole": "AXWindow", "AXTitle": "Only", "AXChildren": [)" +
          buttons + R"({"AXRole": "AXCheckBox", "AXIdentifier": "_NS:59"}]}]}]})");
    HangAt(2);
    EXPECT_EQ(ValueOf59(), std::nullopt);
    EXPECT_EQ(Waited(), timeout);
    SetCallTiming(ofTheFixture);
}

// --- A hung process whose view is part of a window of an editor that works -----------------------

TEST_F(HungApplication, BehindARemoteViewLeavesTheEditorsOwnValuesThere) {
    Begin(kSceneWithRemoteView);
    EXPECT_EQ(ValueOf(60), Integers({8})) << "the view is part of the tree";
    driver_.Desktop().Restart();
    driver_.Desktop().RunUnnoticed(kHangExtension);
    EXPECT_EQ(ValueOf59(), Integers({3}));
    EXPECT_EQ(Waited(kExtension), CostOf(2)) << "the view is listed twice";
    EXPECT_EQ(Waited(kEditor), 0.0);
}

TEST_F(HungApplication, BehindARemoteViewLeavesTheClipNameAndTheTimecodeThere) {
    EXPECT_THAT(SentByATick(kSceneWithRemoteView, kHangExtension),
                testing::ElementsAre("JFSC Clip", "JFTC 01:00"));
    EXPECT_EQ(Waited(kExtension), CostOf(4)) << "of both tasks together";
    EXPECT_EQ(Waited(kEditor), 0.0);
}

// No element has the clip's name, so the clip's task searches everything and meets the hung view.
TEST_F(HungApplication, MetByTheClipTaskLeavesTheTimecodeTaskItsTurn) {
    driver_.LookForClipNameIn(1);
    Begin(kSceneWithRemoteView);
    driver_.ObserveBoth();
    driver_.Desktop().RunUnnoticed(kHangExtension);
    EXPECT_THAT(driver_.Tick().sent, testing::ElementsAre("JFTC 01:00"));
    EXPECT_EQ(Waited(), CostOf(4));
    driver_.LoseTrack();
}

TEST_F(HungApplication, BesideAnotherIsWaitedForOnceLikeThatOne) {
    Begin(kSceneWithRemoteView);
    driver_.Desktop().RunUnnoticed(kHangExtension);
    // The editor's own group, behind the view, which is asked again only if it failed early.
    HangAt(CostOf(1) == kTimeOut ? 3 : 4);
    EXPECT_EQ(ValueOf59(), std::nullopt);
    EXPECT_EQ(Waited(kExtension), CostOf(2));
    EXPECT_EQ(Waited(kEditor), CostOf(1));
}

TEST_F(HungApplication, IsAskedAnewByTheNextRequest) {
    HangAt(4);
    EXPECT_EQ(ValueOf59(), std::nullopt);
    driver_.Desktop().RunUnnoticed(kUnhang);
    driver_.Desktop().Restart();
    EXPECT_EQ(ValueOf59(), Integers({3}));
    EXPECT_EQ(Waited(), 0.0);
}

// What hung is remembered for one request or tick, not from one to the next.
TEST_F(HungApplication, BehindARemoteViewIsAskedAnewByEachRequestAndTick) {
    driver_.LookForClipNameIn(0);
    Begin(kSceneWithRemoteView);
    driver_.ObserveBoth();
    driver_.Desktop().RunUnnoticed(kHangExtension);
    ValueOf59();
    EXPECT_EQ(Waited(kExtension), CostOf(2));
    driver_.Tick();
    EXPECT_EQ(Waited(kExtension), CostOf(2) + CostOf(4));
    ValueOf59();
    EXPECT_EQ(Waited(kExtension), 2 * CostOf(2) + CostOf(4));
    driver_.LoseTrack();
}

}  // namespace adversary
