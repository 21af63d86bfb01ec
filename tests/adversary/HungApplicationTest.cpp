// What an application that does not answer costs: every call to it its messaging time-out, and no
// operation more calls than it has to make.
//
// A search goes on after a control that does not answer, because that control alone may be slow and
// the one sought may stand behind it. When the whole application hangs, a search under way
// therefore waits for each control whose element it already holds; a search that begins then waits
// once.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <set>

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
    HungApplication() { Begin(kScene); }

    void Begin(const std::string& scene, const std::string& version = "10.4.6") {
        driver_.Forget(version);
        driver_.Desktop().Load(scene);
    }

    // Elements whose calls nobody answered, in order, as the desktop addresses them.
    std::vector<std::string> Unanswered() {
        driver_.Desktop().Run(kUnhang);
        const std::vector<std::string> addresses = {
            "/",        "/0",       "/0/0",     "/0/0/0", "/0/0/0/0", "/0/0/0/1", "/0/0/1",
            "/0/0/1/0", "/0/0/1/1", "/0/0/1/2", "/0/1",   "/0/1/0",   "/1",       "/1/0"};
        std::vector<std::string> unanswered;
        for (const Exchange& exchange : driver_.Desktop().Exchanges()) {
            if (exchange.reply) {
                continue;
            }
            for (const std::string& address : addresses) {
                if (driver_.Desktop().Find(address) == exchange.request.element) {
                    unanswered.push_back(address);
                }
            }
        }
        return unanswered;
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

    int MostTimeOuts(const DriverOperation& operation) {
        int most = 0;
        const std::size_t exchanges = RunFrom(operation, std::nullopt);
        for (std::size_t exchange = 0; exchange < exchanges; ++exchange) {
            RunFrom(operation, exchange);
            most = std::max(most, static_cast<int>(Waited() / kTimeOut));
        }
        return most;
    }

    std::optional<Bytes> ValueOf59() { return driver_.Ask(kJElV, Integers({59})).reply; }

    platform_testing::AutoreleasePool pool_;
    DriverUnderAttack driver_;
};

}  // namespace

TEST_F(HungApplication, CostsARequestThatBeginsOneTimeOut) {
    for (const DriverOperation& operation : AllOperations()) {
        if (operation.clipSource || operation.name.starts_with("Child")) {
            continue;
        }
        Begin(operation.scene);
        operation.run(driver_);
        const auto& exchanges = driver_.Desktop().Exchanges();
        const bool asksTheApplication =
            std::any_of(exchanges.begin(), exchanges.end(),
                        [](const Exchange& each) { return each.request.element.pid != 0; });
        Begin(operation.scene);
        driver_.Desktop().Run(kHang);
        operation.run(driver_);
        EXPECT_EQ(Waited(), asksTheApplication ? kTimeOut : 0.0) << operation.name;
    }
}

TEST_F(HungApplication, CostsATickOneTimeOutForEachOfItsTwoObservations) {
    for (unsigned source : {0U, 1U, 2U}) {
        driver_.LookForClipNameIn(source);
        Begin(kScene);
        driver_.ObserveBoth();
        driver_.Desktop().Run(kHang);
        driver_.Tick();
        EXPECT_EQ(Waited(), 2 * kTimeOut) << "source " << source;
        driver_.LoseTrack();
    }
}

TEST_F(HungApplication, CostsASearchUnderWayOneTimeOutForEachControlThatItHolds) {
    EXPECT_EQ(ValueOf59(), Integers({3}));
    const struct {
        std::size_t exchange;
        std::vector<std::string> unanswered;
    } cases[] = {
        {0, {"/"}},
        {1, {"/0", "/1"}},
        {2, {"/0/0", "/0/1", "/1"}},
        {3, {"/0/0/0", "/0/0/1", "/0/1", "/1"}},
        {4, {"/0/0/0/0", "/0/0/0/1", "/0/0/1", "/0/1", "/1"}},
        {5, {"/0/0/0/1", "/0/0/1", "/0/1", "/1"}},
        {6, {"/0/0/1", "/0/1", "/1"}},
        {7, {"/0/0/1/0", "/0/0/1/1", "/0/0/1/2", "/0/1", "/1"}},
        {10, {"/0/1", "/1"}},
        {11, {"/0/1/0", "/1"}},
        {12, {"/0/1/0"}},  // found: only its value is missing
    };
    for (const auto& [exchange, unanswered] : cases) {
        Begin(kScene);
        HangAt(exchange);
        const std::optional<Bytes> reply = ValueOf59();
        EXPECT_EQ(reply, exchange == 12 ? std::optional(Integers({0})) : std::nullopt);
        EXPECT_EQ(Waited(), kTimeOut * static_cast<double>(unanswered.size())) << exchange;
        EXPECT_EQ(Unanswered(), unanswered) << exchange;
    }
}

// The whole list, for the scenes of Operations.cpp: a window with one field, one with a button and
// four controls in two containers (one control is a group of three), one with a button in two
// containers. The editor hangs from each exchange of the operation on; counted is how often the
// driver then waits for the messaging time-out before it is through.
TEST_F(HungApplication, CostsAtMostSoManyTimeOutsFromWhicheverExchangeOnItHangs) {
    const std::map<std::string, int> most = {
        // No call to the editor.
        {"JAcF", 0},
        {"JCPK", 0},
        {"JGlM", 0},
        {"JObE", 0},
        {"JObT", 0},
        {"JPMC", 0},
        {"JPME", 0},
        {"JPMS", 0},
        {"JPth", 0},
        {"JStO", 0},
        {"JXRs", 0},
        // A search that holds the four controls, the button behind them and the last window.
        {"JBtP", 6},
        {"JEPp", 6},
        {"JESI", 6},
        {"JElP", 6},
        {"JElV", 6},
        {"JGRV", 6},
        {"JSIS", 6},
        {"JSRV", 6},
        // One window without a readable title ends the first, not the other two: three windows.
        {"JTWP", 1},
        {"JTWPWithASubWindow", 3},
        {"JWiP", 3},
        // Three windows, then what is in them.
        {"ColorPuck", 3},
        // A search for each of the controls involved, in both observations.
        {"TickWithTheFirstStaticText", 5},
        {"TickWithTheSecondStaticText", 5},
        {"TickWithTheClipTable", 6},
        {"TickWithTheClipTableOf103", 6},
        {"TickWithTheClipTableOf101", 6},
    };
    for (const DriverOperation& operation : AllOperations()) {
        if (operation.name.starts_with("Child")) {
            continue;  // given an array of elements; no request leads there
        }
        ASSERT_TRUE(most.contains(operation.name)) << operation.name;
        EXPECT_EQ(MostTimeOuts(operation), most.at(operation.name)) << operation.name;
    }
}

// So that a request costs at most one for each control that the editor's windows show, however it
// hangs; a tick, with several searches, one for each control and search.
TEST_F(HungApplication, IsNotWaitedForTwiceAtOneControlWithinARequest) {
    for (const DriverOperation& operation : AllOperations()) {
        if (operation.clipSource) {
            continue;
        }
        const std::size_t exchanges = RunFrom(operation, std::nullopt);
        for (std::size_t exchange = 0; exchange < exchanges; ++exchange) {
            RunFrom(operation, exchange);
            std::set<std::uint64_t> waitedFor;
            for (const Exchange& each : driver_.Desktop().Exchanges()) {
                EXPECT_TRUE(each.reply || waitedFor.insert(each.request.element.id).second)
                    << operation.name << " from exchange " << exchange;
            }
        }
    }
}

// A search that has just listed a thousand controls. Their number is the bound: it is what the
// companion risks by asking while the editor hangs.
TEST_F(HungApplication, CostsASearchInACrowdOneTimeOutForEachOfTheCrowdAtMost) {
    constexpr int kCrowd = 1000;
    std::string buttons;
    for (int i = 0; i < kCrowd; ++i) {
        buttons += R"({"AXRole": "AXButton"},)";
    }
    const std::string scene = R"({"front": "com.apple.FinalCut", "applications": [
        {"bundleID": "com.apple.FinalCut", "pid": 501, "windows": [
          {"AXRole": "AXWindow", "AXTitle": "Only", "AXChildren": [)" +
                              buttons +
                              R"({"AXRole": "AXCheckBox", "AXIdentifier": "_NS:59"}]}]}]})";
    Begin(scene);
    HangAt(2);  // behind the list of windows and that of the window's controls
    EXPECT_EQ(ValueOf59(), std::nullopt);
    EXPECT_EQ(Waited(), kTimeOut * (kCrowd + 1));
    // And the next one is cheap again.
    driver_.Desktop().Restart();
    EXPECT_EQ(ValueOf59(), std::nullopt);
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

// Why a search does not give up at the first time-out.
TEST_F(HungApplication, ThatAnswersAgainLosesOnlyTheControlsAskedMeanwhile) {
    driver_.Desktop().onReply = [this](std::size_t exchange, auto&) {
        if (exchange == 5) {
            driver_.Desktop().Run(kUnhang);
        }
    };
    driver_.Desktop().onMoment = [this](unsigned) {
        if (driver_.Desktop().Exchanges().size() == 4) {
            driver_.Desktop().Run(kHang);
        }
    };
    EXPECT_EQ(ValueOf59(), Integers({3}));
    EXPECT_EQ(Waited(), 2 * kTimeOut);
}

TEST_F(HungApplication, IsServedAgainOnceItAnswers) {
    HangAt(4);
    EXPECT_EQ(ValueOf59(), std::nullopt);
    driver_.Desktop().Run(kUnhang);
    driver_.Desktop().Restart();
    EXPECT_EQ(ValueOf59(), Integers({3}));
    EXPECT_EQ(Waited(), 0.0);
}

}  // namespace adversary
