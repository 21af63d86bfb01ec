// The notation of recorded sessions, which krt9ctl and the golden streams share.
#include <gtest/gtest.h>

#include <stdexcept>

#include "tools/recording/Recording.h"

namespace recording {
namespace {

TEST(Recording, IsReadAsItIsWritten) {
    const std::string text = "# A remark.\n\n" + StepLine("ask JElV 171") + "\n" +
                             OutcomeLine("reply", ReplyText(Bytes{1, 0, 0, 0})) + "\n" +
                             OutcomeLine("undelivered", "time-out") + "\n" + StepLine("tick 5");
    const auto steps = ReadRecording(text);
    ASSERT_EQ(steps.size(), 2U);
    EXPECT_EQ(steps[0].Verb(), "ask");
    EXPECT_EQ(steps[0].Rest(), "JElV 171");
    EXPECT_EQ(steps[0].line, 3U);
    ASSERT_EQ(steps[0].outcomes.size(), 2U);
    EXPECT_EQ(steps[0].outcomes[0].what, "reply");
    EXPECT_EQ(steps[0].outcomes[0].text, "01000000 = 1");
    EXPECT_EQ(steps[0].outcomes[1].what, "undelivered");
    EXPECT_EQ(steps[0].outcomes[1].text, "time-out");
    EXPECT_EQ(steps[1].Rest(), "5");
}

TEST(Recording, NamesTheLineThatIsNone) {
    for (const char* text : {"\n\nask JElV 171", "\n\n    reply 01", "\n\n>ask",
                             "\n\n\x7f"
                             "ELF"}) {
        try {
            ReadRecording(text);
            ADD_FAILURE() << text;
        } catch (const std::invalid_argument& error) {
            EXPECT_EQ(std::string(error.what()).substr(0, 8), "line 3: ") << text;
        }
    }
}

TEST(Recording, HasBodiesInWordsThatStandForTheSameBytes) {
    for (const Bytes& body :
         {Bytes{}, Bytes{0xAB, 0, 0, 0}, Bytes{0xFF, 0xFF, 0xFF, 0xFF, 1, 2, 3, 4}, Bytes{1},
          Bytes(28, 7), Bytes{'"', '#', ' ', '\n', 0}}) {
        EXPECT_EQ(BodyOf(Words(WordsOf(body))), body) << WordsOf(body);
    }
    EXPECT_EQ(WordsOf({0xAB, 0, 0, 0, 0xFE, 0xFF, 0xFF, 0xFF}), "171 -2");
}

TEST(Recording, HasCodesThatAreNoWordsInHexDigits) {
    for (const std::int32_t code : {0x4A456C56, 0x41204344, 0x22232022, 0, -1}) {
        EXPECT_EQ(CodeOf(CodeWord(code)), code);
        EXPECT_EQ(Words(CodeWord(code)).size(), 1U) << CodeWord(code);
    }
    EXPECT_EQ(CodeWord(0x4A456C56), "JElV");
    EXPECT_THROW(CodeOf("JEl"), std::invalid_argument);
    EXPECT_THROW(CodeOf("JElVx"), std::invalid_argument);
}

TEST(Recording, RefusesWordsThatStandForNoBytes) {
    for (const char* word : {"12a", "0xg", "xabc", "ten", "99999999999999999999"}) {
        EXPECT_THROW(BytesOf(word), std::logic_error) << word;
    }
}

}  // namespace
}  // namespace recording
