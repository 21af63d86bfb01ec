// Input events that cannot be made or are not taken: every creation of every request fails once.

#include <string>
#include <vector>

#include "VEKCommon/MessageCodes.h"
#include "platform/Variants/EventFaults.h"
#include "tests/unit/protocol/DispatcherTest.h"

namespace adversary {

namespace {

using platform_testing::EventCreation;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr unsigned kAllModifiers = 0x1B00;

class EventFailure : public DispatcherTest {
  protected:
    ~EventFailure() override { platform_testing::ForgetEventFaults(); }

    // What arrives when the n-th creation of that kind fails, in the numbers of the event types
    // and, of keyboard events, the key codes.
    std::vector<std::string> Posted(SInt32 code, const Bytes& body, EventCreation kind,
                                    unsigned long failing) {
        platform_testing::ForgetEventFaults();
        if (failing != 0) {
            platform_testing::FailEventCreation(kind, failing);
        }
        const std::size_t before = desktop_->Events().size();
        EXPECT_EQ(Ask(code, body), std::nullopt);
        std::vector<std::string> posted;
        for (std::size_t i = before; i < desktop_->Events().size(); ++i) {
            const desktop_link::Event& event = desktop_->Events()[i];
            const bool isKey = event.type == 10 || event.type == 11;
            posted.push_back(std::to_string(event.type) +
                             (isKey ? "/" + std::to_string(event.keyCode) : ""));
        }
        return posted;
    }

    // One failure at each creation that the request makes; `kept` says what is left of a whole one.
    void ExpectLosses(SInt32 code, const Bytes& body, EventCreation kind,
                      const std::vector<std::vector<std::string>>& kept) {
        for (std::size_t failing = 0; failing < kept.size(); ++failing) {
            EXPECT_EQ(Posted(code, body, kind, failing), kept[failing])
                << "creation " << failing << " failed";
            EXPECT_EQ(platform_testing::LeftOverBy([&] { Posted(code, body, kind, failing); }), "");
        }
    }

    const Bytes gesture_ = Integers({3, 4, kAllModifiers, 1});
};

using Lists = std::vector<std::vector<std::string>>;

}  // namespace

TEST_F(EventFailure, OfAKeystrokeLosesItWithOneLine) {
    ExpectLosses(kJCPK, Integers({7, kAllModifiers, 1}), EventCreation::keyboard,
                 Lists{{"10/7"}, {}});
    log_.Clear();
    Posted(kJCPK, Integers({7, 0, 1}), EventCreation::keyboard, 1);
    Posted(kJCPK, Integers({7, 0, 0}), EventCreation::keyboard, 1);
    EXPECT_THAT(log_.SystemTexts(), ElementsAre("  couldn't make keypress event\n",
                                                "  couldn't make key release event\n"));
}

TEST_F(EventFailure, OfAModifierKeyLosesThatKeyOnly) {
    ExpectLosses(kJPMS, gesture_, EventCreation::keyboard,
                 Lists{{"10/55", "10/56", "10/58", "10/59", "5", "1"},
                       {"10/56", "10/58", "10/59", "5", "1"},
                       {"10/55", "10/58", "10/59", "5", "1"},
                       {"10/55", "10/56", "10/59", "5", "1"},
                       {"10/55", "10/56", "10/58", "5", "1"}});
    ExpectLosses(kJPME, gesture_, EventCreation::keyboard,
                 Lists{{"2", "11/55", "11/56", "11/58", "11/59"},
                       {"2", "11/56", "11/58", "11/59"},
                       {"2", "11/55", "11/58", "11/59"},
                       {"2", "11/55", "11/56", "11/59"},
                       {"2", "11/55", "11/56", "11/58"}});
    EXPECT_THAT(log_.Lines(), IsEmpty());
}

TEST_F(EventFailure, OfAMouseEventLosesWhatDependsOnIt) {
    ExpectLosses(kJPMS, gesture_, EventCreation::mouse,
                 Lists{{"10/55", "10/56", "10/58", "10/59", "5", "1"},
                       {"10/55", "10/56", "10/58", "10/59"},
                       {"10/55", "10/56", "10/58", "10/59", "5"}});
    ExpectLosses(kJPMC, gesture_, EventCreation::mouse, Lists{{"6"}, {}});
    ExpectLosses(kJPME, gesture_, EventCreation::mouse,
                 Lists{{"2", "11/55", "11/56", "11/58", "11/59"}, {}});
    EXPECT_THAT(log_.Lines(), IsEmpty());
}

// The next request is not touched by what became of the one before.
TEST_F(EventFailure, IsOverWithTheNextRequest) {
    EXPECT_THAT(Posted(kJPME, gesture_, EventCreation::mouse, 1), IsEmpty());
    EXPECT_THAT(Posted(kJPME, gesture_, EventCreation::mouse, 0),
                ElementsAre("2", "11/55", "11/56", "11/58", "11/59"));
}

// The events of a process that is not trusted go nowhere, and it is not told.
TEST_F(EventFailure, OfPostingWithoutPermissionIsNotNoticed) {
    desktop_.Run(R"({"command": "trust", "trusted": false})");
    for (const SInt32 code : {kJPMS, kJPMC, kJPME}) {
        EXPECT_THAT(Posted(code, gesture_, EventCreation::mouse, 0), IsEmpty());
    }
    EXPECT_THAT(Posted(kJCPK, Integers({7, 0, 1}), EventCreation::keyboard, 0), IsEmpty());
    EXPECT_THAT(log_.Lines(), IsEmpty());
}

}  // namespace adversary
