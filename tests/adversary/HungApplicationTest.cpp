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
const std::string kUnhang = R"({"command": "unhang", "application": "com.apple.FinalCut"})";

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
    void HangAt(std::size_t exchange) {
        driver_.Desktop().onMoment = [this, exchange](unsigned) {
            if (driver_.Desktop().Exchanges().size() == exchange) {
                driver_.Desktop().Run(kHang);
            }
        };
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
        EXPECT_EQ(Waited(), asksTheApplication ? 6.0 : 0.0) << operation.name;
    }
}

TEST_F(HungApplication, CostsATickOneTimeOutForEachOfItsTwoObservations) {
    for (unsigned source : {0U, 1U, 2U}) {
        driver_.LookForClipNameIn(source);
        Begin(kScene);
        driver_.ObserveBoth();
        driver_.Desktop().Run(kHang);
        driver_.Tick();
        EXPECT_EQ(Waited(), 2 * 6.0) << "source " << source;
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
        EXPECT_EQ(Waited(), 6.0 * static_cast<double>(unanswered.size())) << exchange;
        EXPECT_EQ(Unanswered(), unanswered) << exchange;
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
    EXPECT_EQ(Waited(), 2 * 6.0);
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
