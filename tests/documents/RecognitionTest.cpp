// What counts as an example of a document, what is refused, and how output is compared.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/documents/ConsoleBlock.h"
#include "tests/documents/Examples.h"
#include "tests/documents/Pattern.h"

namespace documents {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

Findings In(const std::string& text, const std::string& name = "docs/page.md") {
    return FindExamples({ReadDocument(name, text)});
}

TEST(Recognition, ACommandInTextIsRun) {
    const Findings found = In("Type `krt9ctl ping` and `krt9ctl value 1` (exit code 4).\n");
    EXPECT_THAT(found.unrecognised, IsEmpty());
    ASSERT_THAT(found.examples, SizeIs(2));
    EXPECT_EQ(found.examples[0].exitCode, 0);
    EXPECT_EQ(found.examples[1].code.front(), "krt9ctl value 1");
    EXPECT_EQ(found.examples[1].exitCode, 4);
}

TEST(Recognition, AMarkWithAReasonExcusesALineOrABlock) {
    const Findings found =
        In("`krt9ctl no-such-verb` and `{\"no\": \"such\"}` <!-- not run: a slip -->\n"
           "<!-- not run: a synopsis -->\n```\nkrt9ctl VERB\n```\n");
    EXPECT_THAT(found.unrecognised, IsEmpty());
    EXPECT_THAT(found.examples, IsEmpty());
}

TEST(Recognition, AMarkWithoutAReasonExcusesNothing) {
    EXPECT_THAT(In("`krt9ctl ping` <!-- not run: -->\n").examples, SizeIs(1));
    EXPECT_THAT(In("<!-- not run -->\n```sh\nkrt9ctl ping\n```\n").unrecognised,
                ElementsAre("docs/page.md:3: krt9ctl ping"));
}

TEST(Recognition, ACommandAnObjectOrBytesInABlockOfAnotherKindAreUnrecognised) {
    EXPECT_THAT(In("```sh\nkrt9ctl ping\n  {\"a\": 1}\nab 00\nmake\n```\n").unrecognised,
                ElementsAre("docs/page.md:2: krt9ctl ping", "docs/page.md:3: {\"a\": 1}",
                            "docs/page.md:4: ab 00"));
    EXPECT_THAT(In("Text:\n\n    krt9ctl ping\n").unrecognised, SizeIs(1));
}

TEST(Recognition, ABlockOfNoKnownLanguageIsUnrecognised) {
    for (const char* language : {"", "text", "bash"}) {
        EXPECT_THAT(In(std::string("```") + language + "\nwhatever\n```\n").unrecognised,
                    ElementsAre("docs/page.md:1: a block of no language that is known"));
    }
}

TEST(Recognition, AnObjectIsWhatTheCommandBeforeItPrints) {
    const Findings found = In("| `krt9ctl ping --json` | `{\"a\":1}` |\n");
    ASSERT_THAT(found.examples, SizeIs(1));
    EXPECT_THAT(found.examples[0].output, ElementsAre("{\"a\":1}"));
    EXPECT_THAT(In("An object: `{\"a\":1}`\n").unrecognised, SizeIs(1));
}

TEST(Recognition, AnObjectOfTheDocumentOfScenesIsAValueWhenItIsJson) {
    EXPECT_THAT(In("`{\"data\": \"00\"}`\n", "docs/scenes.md").examples, SizeIs(1));
    EXPECT_THAT(In("`{\"data\": BYTES}`\n", "docs/scenes.md").unrecognised, SizeIs(1));
}

TEST(Recognition, BytesInTextMustBeExchangedInAConsoleBlock) {
    const std::string console = "```console\n-> JElV  ab 00 00 00\n<- 01 00 00 00\n```\n";
    EXPECT_THAT(In("The body is `AB 00 00 00`.\n\n" + console).unrecognised, IsEmpty());
    EXPECT_THAT(In("The body is `AC 00 00 00`.\n\n" + console).unrecognised,
                ElementsAre("docs/page.md:1: AC 00 00 00"));
}

TEST(Recognition, TheColumnPrintsMustNameAKnownKind) {
    const std::string head = "| verb | prints |\n|---|---|\n";
    EXPECT_EQ(In(head + "| `krt9ctl pointer` | X,Y |\n").examples.at(0).prints, "X,Y");
    EXPECT_THAT(In(head + "| `krt9ctl pointer` | a place |\n").unrecognised,
                ElementsAre("docs/page.md:3: what is 'a place' like?"));
}

TEST(Recognition, AConsoleBlockThatIsNotUnderstoodIsUnrecognised) {
    for (const char* line : {"output of nothing", "-> JElV 0", "-> JElV zz", "<- 01", "[4]",
                             "-> JElV ab\n<- ", "desktop: x\n[4]", "> more"}) {
        EXPECT_THAT(In(std::string("```console\n") + line + "\n```\n").unrecognised, SizeIs(1))
            << line;
    }
}

TEST(Recognition, ABlockInAListIsIndentedWithItsItem) {
    const Findings found = In("1. Do:\n\n   ```console\n   $ krt9ctl tree\n     more\n   ```\n");
    EXPECT_THAT(found.unrecognised, IsEmpty());
    ASSERT_THAT(found.examples, SizeIs(1));
    EXPECT_THAT(found.examples[0].code, ElementsAre("$ krt9ctl tree", "  more"));
}

TEST(Recognition, ABlockWithoutEndIsUnrecognised) {
    EXPECT_THAT(In("```console\n$ krt9ctl ping\n").unrecognised, SizeIs(1));
}

TEST(ConsoleBlock, HasCommandsExchangesAndLogs) {
    const std::vector<Step> steps = ReadConsole(
        {"$ krt9ctl ping &", "one", "[4]", "-> JTWP  01 00  # a count", "         02",
         "<-       nothing", "<- Stus", "->  00 01", "desktop: \"event\"", "driver: request"},
        10);
    ASSERT_THAT(steps, SizeIs(5));
    EXPECT_EQ(steps[0].text, "krt9ctl ping");
    EXPECT_TRUE(steps[0].isBackground);
    EXPECT_EQ(steps[0].exitCode, 4);
    EXPECT_THAT(steps[0].output, ElementsAre("one"));
    EXPECT_EQ(steps[1].line, 13);
    EXPECT_EQ(steps[1].body, (Bytes{1, 0, 2}));
    EXPECT_EQ(steps[1].reply, Bytes());
    EXPECT_EQ(steps[2].kind, StepKind::message);
    EXPECT_EQ(steps[2].reply, (Bytes{0, 1}));
    EXPECT_EQ(steps[3].text, "\"event\"");
    EXPECT_EQ(steps[4].kind, StepKind::driver);
}

TEST(ConsoleBlock, ACommandHasFurtherLines) {
    const std::vector<Step> steps = ReadConsole({"$ cat <<E", "> one", "> E", "one"}, 1);
    ASSERT_THAT(steps, SizeIs(1));
    EXPECT_EQ(steps[0].text, "cat <<E\none\nE");
    EXPECT_THAT(steps[0].output, ElementsAre("one"));
}

TEST(Pattern, DotsStandForAnyTextWithinALine) {
    EXPECT_TRUE(Matches("a", "a"));
    EXPECT_FALSE(Matches("a", "ab"));
    EXPECT_TRUE(Matches("a...c...e", "abcde"));
    EXPECT_TRUE(Matches("...", ""));
    EXPECT_FALSE(Matches("a...c", "ab"));
    EXPECT_FALSE(Matches("a...c...c", "abc"));
    EXPECT_FALSE(Matches("b...", "ab"));
}

TEST(Pattern, ALineOfDotsStandsForAnyLines) {
    EXPECT_TRUE(MatchLines({"a", "...", "c"}, {"a", "b", "b", "c"}));
    EXPECT_TRUE(MatchLines({"...", "c"}, {"c"}));
    EXPECT_FALSE(MatchLines({"a"}, {"a", "b"}));
    EXPECT_FALSE(MatchLines({"a", "..."}, {"b"}));
    EXPECT_FALSE(MatchLines({}, {"b"}));
}

}  // namespace
}  // namespace documents
