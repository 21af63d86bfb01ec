// What the driver tells the system's tracing of its requests, ticks and messages.
#include <memory>

#include "tests/support/FrontApplicationState.h"
#include "tests/support/SignpostListener.h"
#include "tests/unit/driver/TickedDriver.h"

namespace {

using test_support::SignpostListener;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::IsSupersetOf;

class SignpostsOfTheDriver : public TickedDriver {
  protected:
    SignpostsOfTheDriver() : TickedDriver(SceneWithController()) { listener_.Take(); }

    void Ask(SInt32 code, const test_support::Bytes& body) {
        const CFDataRef data =
            CFDataCreate(kCFAllocatorDefault, body.data(), static_cast<CFIndex>(body.size()));
        const CFDataRef reply = driver_->MessageCallback(nullptr, code, data, nullptr);
        CFRelease(data);
        if (reply != nullptr) {
            CFRelease(reply);
        }
    }

    // "begin request code=JElV ...", one for each that has arrived.
    std::vector<std::string> Told() {
        std::vector<std::string> lines;
        for (const auto& line : listener_.Take()) {
            EXPECT_EQ(line["subsystem"], "com.solvanto.KRT9Background");
            EXPECT_EQ(line["category"], "driver");
            lines.push_back(line["signpostType"].get<std::string>() + " " +
                            line["signpostName"].get<std::string>() + " " +
                            line["eventMessage"].get<std::string>());
        }
        return lines;
    }

    SignpostListener listener_;
};

TEST_F(SignpostsOfTheDriver, TellEachRequestWithItsElementResultAndExchanges) {
    desktop_.Run(
        R"({"command": "set", "element": "_NS:100", "attribute": "AXValue", "value": -5})");
    desktop_.Run(R"({"command": "set", "element": "_NS:100", "attribute": "AXRole",
                     "value": "AXButton"})");
    Ask(kJElV, {100, 0, 0, 0});
    const auto lines = Told();
    ASSERT_EQ(lines.size(), 2U);
    EXPECT_EQ(lines[0], "begin request code=JElV length=4 first=100");
    EXPECT_THAT(lines[1], testing::MatchesRegex("end request code=JElV result=replied "
                                                "exchanges=[1-9][0-9]* count=1 reply=-5,0,0,0,0"));
}

TEST_F(SignpostsOfTheDriver, TellWhatBecameOfEachRequest) {
    Ask(kJElV, {200, 200, 0, 0});
    Ask(kJElV, {});
    Ask(kJElV, {1});
    Ask(FourCharacterCode("A\tCD"), {1});
    Ask(kJPth, {});
    std::vector<std::string> ends;
    for (const std::string& line : Told()) {
        if (line.starts_with("end")) {
            ends.push_back(line.substr(12, line.find(" exchanges") - 12));
        }
    }
    EXPECT_THAT(ends, ElementsAre("code=JElV result=failed", "code=JElV result=ignored",
                                  "code=JElV result=refused", "code=A.CD result=unknown",
                                  "code=JPth result=done"));
}

TEST_F(SignpostsOfTheDriver, TellTheStepsAndMessagesOfATick) {
    ObserveBoth();
    Told();
    RunTicks();
    EXPECT_THAT(Told(),
                ElementsAre("begin tick ", "begin step step=language",
                            testing::MatchesRegex("begin message code=JSLg length=[0-9]+"),
                            "end message code=JSLg status=0", "end step step=language exchanges=0",
                            "begin step step=profile", "end step step=profile exchanges=0",
                            "begin step step=clip",
                            testing::MatchesRegex("begin message code=JFSC length=[0-9]+"),
                            "end message code=JFSC status=0",
                            testing::MatchesRegex("end step step=clip exchanges=[1-9][0-9]*"),
                            "begin step step=timecode",
                            testing::MatchesRegex("begin message code=JFTC length=[0-9]+"),
                            "end message code=JFTC status=0",
                            testing::MatchesRegex("end step step=timecode exchanges=[1-9][0-9]*"),
                            "begin step step=status", "begin message code=Stus length=0",
                            testing::StartsWith("end message code=Stus status="),
                            "end step step=status exchanges=0",
                            testing::MatchesRegex("end tick exchanges=[1-9][0-9]*")));
}

TEST_F(SignpostsOfTheDriver, TellAMessageThatHasNobodyToGoTo) {
    companion_.reset();
    RunTicks(2);
    EXPECT_THAT(Told(), testing::Contains("end message code=Stus status=-3"));
}

// Neither titles nor names may reach the system's log.
TEST_F(SignpostsOfTheDriver, TellNoTextOfTheUsers) {
    ObserveBoth();
    RunTicks();
    Ask(kJWiP, {0, 0, 0, 0, 'V', 0, 'i', 0});
    for (const std::string& line : Told()) {
        EXPECT_THAT(line, testing::Not(testing::HasSubstr("Clip")));
        EXPECT_THAT(line, testing::MatchesRegex("(begin|end) [a-z]+ [A-Za-z0-9=,. -]*"));
    }
}

TEST_F(SignpostsOfTheDriver, CostTheEditorNoExchange) {
    ObserveBoth();
    RunTicks();
    const auto exchanges = [this] {
        const unsigned long before = desktop_link::ExchangeCount();
        RunTicks();
        Ask(kJElV, {159, 0, 0, 0});
        return desktop_link::ExchangeCount() - before;
    };
    const unsigned long watched = exchanges();
    listener_.DropClients();
    EXPECT_EQ(exchanges(), watched);
}

}  // namespace
