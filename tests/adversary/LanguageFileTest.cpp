// Malformed and unusual translation files: a target-window request reads its language's file for
// every window.

#include <filesystem>
#include <fstream>

#include "VEKCommon/MessageCodes.h"
#include "tests/adversary/AllocationMeter.h"
#include "tests/adversary/HostileDocuments.h"
#include "tests/unit/protocol/DispatcherTest.h"

namespace adversary {

namespace {

using testing::IsEmpty;

class LanguageFile : public DispatcherTest {
  protected:
    LanguageFile() {
        Translate({});
        std::filesystem::remove(Path());
    }

    std::filesystem::path Path() const { return home_.MakersFolder() / "xx.plist"; }

    void Write(const std::string& document) { std::ofstream(Path()) << document; }

    // The frame of the window whose title contains the translation of "Board" is asked for.
    std::optional<Bytes> AskForBoard() {
        return Ask(kJTWP, Integers({1}) + Text("Board") + Integers({0, 0, 0, 0, 0, 0}));
    }

    const Bytes frame_ = Integers({0, 50, 60, 300, 200});
};

class FileWithoutDictionary : public LanguageFile,
                              public testing::WithParamInterface<HostileFile> {};
class Translation : public LanguageFile, public testing::WithParamInterface<HostileValue> {};

INSTANTIATE_TEST_SUITE_P(Like, FileWithoutDictionary, testing::ValuesIn(FilesWithoutDictionary()),
                         [](const auto& info) { return info.param.name; });
INSTANTIATE_TEST_SUITE_P(That, Translation, testing::ValuesIn(ValuesThatAreNoText()),
                         [](const auto& info) { return "Is" + info.param.name; });

}  // namespace

TEST_P(FileWithoutDictionary, CountsAsMissingSoThatTheKeyIsItsOwnTranslation) {
    GetParam().make(Path());
    {
        const AllocationMeter meter;
        EXPECT_EQ(AskForBoard(), frame_);
        EXPECT_LT(meter.SoFar().peak, MostMemoryFor(Path()));
    }
    EXPECT_THAT(log_.Lines(), IsEmpty());
    EXPECT_EQ(platform_testing::LeftOverBy([&] { AskForBoard(); }, 1), "");
}

TEST_P(Translation, MatchesNoTitle) {
    Write(XmlDictionary("<key>Board</key>" + GetParam().xml));
    EXPECT_EQ(AskForBoard(), std::nullopt);
    EXPECT_THAT(log_.Lines(), IsEmpty());
    EXPECT_EQ(platform_testing::LeftOverBy([&] { AskForBoard(); }), "");
}

TEST_F(LanguageFile, MayHoldAnyTextInAnyNumber) {
    std::string entries;
    for (int i = 0; i < 1'000; ++i) {
        entries += "<key>key " + std::to_string(i) + "</key><string>value</string>";
    }
    const struct {
        std::string translation;
        bool matches;
    } cases[] = {
        {"Color", true},
        {"", false},
        {"&#0;", false},
        {std::string(1'000'000, 'C'), false},
        {"\xF0\x9F\x98\x80", false},
        {"C\xCC\x81olor", false},  // a combining character in between
    };
    for (const auto& [translation, matches] : cases) {
        Write(XmlDictionary(entries + "<key>Board</key><string>" + translation + "</string>"));
        EXPECT_EQ(AskForBoard(), matches ? std::optional(frame_) : std::nullopt);
        EXPECT_EQ(platform_testing::LeftOverBy([&] { AskForBoard(); }, 1), "");
    }
}

TEST_F(LanguageFile, IsReadUpToItsLongestAndNoFurther) {
    const std::string absent = "<key>Board</key><string>Absent</string>";
    Write(XmlDictionaryOfSize(kLongestDocument, absent));
    {
        const AllocationMeter meter;
        EXPECT_EQ(AskForBoard(), std::nullopt);
        EXPECT_LT(meter.SoFar().peak, MostMemoryFor(Path()));
    }
    Write(XmlDictionaryOfSize(kLongestDocument + 1, absent));
    EXPECT_EQ(AskForBoard(), frame_) << "the key is its own translation";
}

TEST_F(LanguageFile, MayHaveKeysThatAreNoText) {
    const std::string number = "\x10\x07";
    const std::string board =
        "\x55"
        "Board";
    const std::string color =
        "\x55"
        "Color";
    // { 7: "Color", "Board": "Color" }, in which case either the whole is not a property list, or
    // only the odd key is skipped; there is no third possibility.
    Write(BinaryPropertyList({"\xD2\x01\x02\x03\x03", number, board, color}));
    EXPECT_EQ(AskForBoard(), frame_);
    EXPECT_THAT(log_.Lines(), IsEmpty());
}

TEST_F(LanguageFile, ThatChangesBetweenTwoRequestsIsReadAnew) {
    Write(XmlDictionary("<key>Board</key><string>Absent</string>"));
    EXPECT_EQ(AskForBoard(), std::nullopt);
    Write(XmlDictionary("<key>Board</key><string>Color</string>"));
    EXPECT_EQ(AskForBoard(), frame_);
    std::filesystem::remove_all(Path().parent_path());
    EXPECT_EQ(AskForBoard(), frame_) << "without the folder the key is its own translation";
}

}  // namespace adversary
