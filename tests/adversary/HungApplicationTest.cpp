// What an application that does not answer costs: a request, and a tick, one messaging time-out,
// wherever in it the application stops answering.
//
// A search goes on after a control that fails, since the one sought may stand behind it; but a call
// that was waited for to the end of its time-out means that the whole application hangs, and the
// calls that would follow are not made.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

#include "platform/Testing/TestClock.h"
#include "protocol/MessageCodes.h"
#include "tests/adversary/DriverUnderAttack.h"
#include "tests/adversary/Operations.h"

namespace adversary {

namespace {

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

const std::string kHang = R"({"command": "hang", "application": "com.apple.FinalCut"})";
const std::string kKill = R"({"command": "kill", "application": "com.apple.FinalCut"})";
const std::string kUnhang = R"({"command": "unhang", "application": "com.apple.FinalCut"})";

constexpr double kTimeOut = 6;  // seconds

class HungApplication : public testing::Test {
  protected:
    HungApplication() {
        driver_.Desktop().onSilence = [this](double seconds) { clock_.Advance(seconds); };
        Begin(kScene);
    }

    void Begin(const std::string& scene, const std::string& version = "10.4.6") {
        driver_.Forget(version);
        driver_.Desktop().Load(scene);
    }

    // Seconds that the driver waited for answers that never came.
    double Waited() {
        double seconds = 0;
        for (const Exchange& exchange : driver_.Desktop().Exchanges()) {
            seconds += exchange.reply ? 0 : exchange.timeout;
        }
        return seconds;
    }

    // From the moment on that the n-th exchange begins.
    void HangAt(std::size_t exchange, const std::string& command = kHang) {
        driver_.Desktop().onMoment = [=, this, done = false](unsigned) mutable {
            if (!done && driver_.Desktop().Exchanges().size() == exchange) {
                done = true;
                driver_.Desktop().Run(command);
            }
        };
    }

    // Runs it with an editor that hangs from that exchange on, if any; the number of exchanges.
    std::size_t RunFrom(const DriverOperation& operation, std::optional<std::size_t> exchange,
                        const std::string& command = kHang) {
        if (operation.clipSource) {
            driver_.LoseTrack();
            driver_.LookForClipNameIn(*operation.clipSource);
        }
        Begin(operation.scene, operation.version);
        if (operation.clipSource) {
            driver_.ObserveBoth();
        }
        if (exchange) {
            HangAt(*exchange, command);
        }
        operation.run(driver_);
        driver_.Desktop().onMoment = nullptr;
        driver_.LoseTrack();
        return driver_.Desktop().Exchanges().size();
    }

    std::optional<Bytes> ValueOf59() { return driver_.Ask(kJElV, Integers({59})).reply; }

    platform_testing::AutoreleasePool pool_;
    platform_testing::TestClock clock_;
    DriverUnderAttack driver_;
};

}  // namespace

// Every request and every tick, from whichever of its calls on nobody answers.
TEST_F(HungApplication, CostsOneTimeOutFromWhicheverExchangeOnItHangs) {
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
TEST_F(HungApplication, CostsATickOneTimeOut) {
    for (unsigned source : {0U, 1U, 2U}) {
        driver_.LookForClipNameIn(source);
        Begin(kScene);
        driver_.ObserveBoth();
        driver_.Desktop().Run(kHang);
        driver_.Tick();
        EXPECT_EQ(Waited(), kTimeOut) << "source " << source;
        driver_.LoseTrack();
    }
}

// A search that has just listed a thousand controls.
TEST_F(HungApplication, CostsASearchInACrowdOneTimeOut) {
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
    EXPECT_EQ(Waited(), kTimeOut);
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

// The error of a hung application, but at once: it is that control's alone, and the search goes on.
TEST_F(HungApplication, IsNotTakenForOneThatCannotCompleteASingleCall) {
    driver_.Desktop().onReply = [](std::size_t exchange, auto& reply) {
        if (exchange == 2) {
            reply->error = kAXErrorCannotComplete;
            reply->values.clear();
        }
    };
    EXPECT_EQ(ValueOf59(), Integers({3}));
}

// The answer comes late, but it comes.
TEST_F(HungApplication, IsNotTakenForOneThatIsSlow) {
    driver_.Desktop().onReply = [this](std::size_t, auto&) { clock_.Advance(kTimeOut / 2); };
    EXPECT_EQ(ValueOf59(), Integers({3}));
}

TEST_F(HungApplication, IsAskedAnewByTheNextRequest) {
    HangAt(4);
    EXPECT_EQ(ValueOf59(), std::nullopt);
    driver_.Desktop().Run(kUnhang);
    driver_.Desktop().Restart();
    EXPECT_EQ(ValueOf59(), Integers({3}));
    EXPECT_EQ(Waited(), 0.0);
}

}  // namespace adversary
