// What the lines of a batch press, and do not release.
#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>
#include <utility>

#include "VEKCommon/MessageCodes.h"
#include "tests/support/Stage.h"
#include "tests/unit/tools/BatchFixture.h"
#include "tests/unit/tools/FakeDriver.h"

namespace krt9ctl {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

std::vector<std::string> AfterTheStart(const FakeDriver& driver) {
    return {driver.received.begin() + 1, driver.received.end()};
}

FakeDriver::Reply PointerAt(std::uint8_t x, std::uint8_t y) {
    return [x, y](const Request& request) {
        return request.code == kJGlM ? Always({x, 0, 0, 0, y, 0, 0, 0})(request)
                                     : CFDataRef{nullptr};
    };
}

TEST_F(BatchVerb, EndsAGestureThatItsLinesDoNotEndWhereThePointerIs) {
    const FakeDriver driver(PointerAt(7, 9));
    EXPECT_EQ(Run("mouse start 1,2 --option\nmouse continue 3,4 --option\n"), ExitCode::ok);
    EXPECT_THAT(AfterTheStart(driver), ElementsAre("JPMC 03000000040000000008000001000000", "JGlM ",
                                                   "JPME 07000000090000000008000001000000"));
    EXPECT_EQ(out_.str(), "1: ok\n2: ok\n");
    EXPECT_EQ(err_.str(),
              "krt9ctl: the lines ended in the middle of a gesture or a key press: "
              "released\n");
}

TEST_F(BatchVerb, EndsAGestureWhereItsLastStepWentWhenThePointerIsNotTold) {
    const FakeDriver driver(Nothing);
    EXPECT_EQ(Run("mouse start 1,2\nmouse continue 3,4 --shift\njuggle\nmouse end 1,2", {"--stop"}),
              ExitCode::usage);
    EXPECT_EQ(driver.received.back(), "JPME 03000000040000000002000001000000");
}

TEST_F(BatchVerb, LeavesAGestureAloneThatItsLinesEnd) {
    const FakeDriver driver(PointerAt(7, 9));
    EXPECT_EQ(Run("mouse start 1,2\nmouse continue 3,4\nmouse end 3,4\ndrag 1,2 3,4\n"
                  "mouse continue 5,6\n"),
              ExitCode::ok);
    EXPECT_THAT(driver.received.back(), testing::StartsWith("JPMC 05"));
    EXPECT_EQ(err_.str(), "");
}

TEST_F(BatchVerb, ReleasesKeysThatItsLinesLeaveDown) {
    const FakeDriver driver(Nothing);
    EXPECT_EQ(Run("keystroke cmd+b --down\nkeystroke c --down\nkeystroke c --up\n"), ExitCode::ok);
    EXPECT_THAT(AfterTheStart(driver),
                ElementsAre(testing::StartsWith("JCPK 08000000"), testing::StartsWith("JCPK 08"),
                            "JCPK 0b0000000001000000000000"));
}

TEST_F(BatchVerb, SaysThatItCouldNotReleaseWhatIsPressed) {
    FakeDriver* running = nullptr;
    FakeDriver driver([&running](const Request& request) {
        if (request.code == kJPMC) {
            running->End();
        }
        return nullptr;
    });
    running = &driver;
    EXPECT_EQ(Run("mouse start 1,2\nmouse continue 1,2\n"), ExitCode::transport);
    EXPECT_THAT(err_.str(),
                HasSubstr("krt9ctl panic releases, since the driver did not: 'JPME': no driver"));
}

TEST(Batch, ThatASignalEndsInAGestureReleasesButtonAndModifierKeys) {
    test_support::Stage stage;
    stage.StartDesktop("{}");
    stage.StartDriver();
    const auto held = [] {
        const auto panic = test_support::Stage::Control({"panic", "--json"});
        return Json::parse(panic.standardOutput);
    };
    constexpr std::pair<int, int> kEnds[] = {{SIGINT, 130}, {SIGTERM, 143}, {SIGHUP, 129}};
    for (const auto& [signal, status] : kEnds) {
        const std::string pipe = (stage.Session().Path() / fmt::format("pipe{}", signal)).string();
        test_support::ChildProcess batch(
            "/bin/sh", {"-c",
                        "mkfifo \"$1\"; exec 3<>\"$1\"; echo mouse start 10,20 --shift >&3; "
                        "exec \"$0\" batch <&3",
                        test_support::Stage::ControlPath(), pipe});
        ASSERT_TRUE(batch.WaitForOutput("1: ok\n")) << batch.Output();
        batch.Signal(signal);
        EXPECT_EQ(batch.WaitForExit(), status);
        EXPECT_THAT(batch.StandardError(), HasSubstr("released\n"));
        const Json pressed = held();
        EXPECT_EQ(pressed["buttons"], Json::array()) << signal;
        EXPECT_EQ(pressed["keys"], Json::array()) << signal;
    }
}

}  // namespace
}  // namespace krt9ctl
