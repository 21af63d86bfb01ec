// The bytes of every request, exactly.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/unit/tools/PlanOf.h"

namespace krt9ctl {
namespace {

using testing::ElementsAre;

TEST(ElementVerbs, CarryTheElementsNumberLowByteFirst) {
    EXPECT_THAT(SentBy({"value", "59"}), ElementsAre("JElV 3b000000"));
    EXPECT_THAT(SentBy({"number", "59"}), ElementsAre("JESI 3b000000"));
    EXPECT_THAT(SentBy({"position", "128"}), ElementsAre("JElP 80000000"));
    EXPECT_THAT(SentBy({"parent-position", "989855744"}), ElementsAre("JEPp 0000003b"));
    EXPECT_THAT(SentBy({"press", "0X3b"}), ElementsAre("JBtP 3b000000"));
    EXPECT_THAT(SentBy({"press", "0x3B"}), ElementsAre("JBtP 3b000000"));
    EXPECT_THAT(SentBy({"selected", "4294967295"}), ElementsAre("JGRV ffffffff"));
}

TEST(ElementVerbs, SelectCarriesElementAndIndex) {
    EXPECT_THAT(SentBy({"select", "59", "2"}), ElementsAre("JSRV 3b00000002000000"));
}

TEST(ElementVerbs, SetCarriesElementAndNumber) {
    EXPECT_THAT(SentBy({"set", "59", "42"}), ElementsAre("JSIS 3b0000002a000000"));
}

TEST(ElementVerbs, SetWritesANegativeNumberAsTwosComplement) {
    EXPECT_THAT(SentBy({"set", "59", "-2"}), ElementsAre("JSIS 3b000000feffffff"));
}

TEST(Keystroke, IsDownAndUpUnlessOneIsAskedFor) {
    EXPECT_THAT(SentBy({"keystroke", "0x31"}),
                ElementsAre("JCPK 310000000000000001000000", "JCPK 310000000000000000000000"));
    EXPECT_THAT(SentBy({"keystroke", "49", "--down"}),
                ElementsAre("JCPK 310000000000000001000000"));
    EXPECT_THAT(SentBy({"keystroke", "49", "--up"}), ElementsAre("JCPK 310000000000000000000000"));
}

TEST(Keystroke, CarriesEachModifierAsItsBit) {
    EXPECT_THAT(SentBy({"keystroke", "49", "--down", "--command"}),
                ElementsAre("JCPK 310000000001000001000000"));
    EXPECT_THAT(SentBy({"keystroke", "49", "--down", "--shift"}),
                ElementsAre("JCPK 310000000002000001000000"));
    EXPECT_THAT(SentBy({"keystroke", "49", "--down", "--option"}),
                ElementsAre("JCPK 310000000008000001000000"));
    EXPECT_THAT(SentBy({"keystroke", "49", "--down", "--control"}),
                ElementsAre("JCPK 310000000010000001000000"));
    EXPECT_THAT(
        SentBy({"keystroke", "49", "--up", "--command", "--shift", "--option", "--control"}),
        ElementsAre("JCPK 31000000001b000000000000"));
}

TEST(Drag, EndsWithTheModifiersItBeganWith) {
    EXPECT_THAT(SentBy({"drag", "100,200", "300,400", "--option", "--steps", "2"}),
                ElementsAre("JPMS 64000000c80000000008000001000000",
                            "JPMC c80000002c0100000008000001000000",
                            "JPMC 2c010000900100000008000001000000",
                            "JPME 2c010000900100000008000001000000"));
}

TEST(Drag, WithoutClickSaysSoInEveryRequest) {
    EXPECT_THAT(SentBy({"drag", "1,2", "3,4", "--no-click", "--steps", "1"}),
                ElementsAre("JPMS 01000000020000000000000000000000",
                            "JPMC 03000000040000000000000000000000",
                            "JPME 03000000040000000000000000000000"));
}

TEST(Drag, TakesTenStepsUnlessToldOtherwiseAndNoneWhenToldNone) {
    EXPECT_EQ(PlanOf({"drag", "0,0", "100,100"}).size(), 12U);
    EXPECT_EQ(PlanOf({"drag", "0,0", "100,100", "--steps", "0"}).size(), 2U);
}

TEST(Drag, GoesThroughWholePointsAndBackwardsToo) {
    EXPECT_THAT(SentBy({"drag", "10,3", "7,-3", "--steps", "2"}),
                ElementsAre("JPMS 0a000000030000000000000001000000",
                            "JPMC 08000000000000000000000001000000",
                            "JPMC 07000000fdffffff0000000001000000",
                            "JPME 07000000fdffffff0000000001000000"));
}

TEST(Drag, OnlyItsEndLetsGo) {
    const Plan plan = PlanOf({"drag", "0,0", "1,1", "--steps", "1"});
    ASSERT_EQ(plan.size(), 3U);
    EXPECT_FALSE(plan[0].releases);
    EXPECT_FALSE(plan[1].releases);
    EXPECT_TRUE(plan[2].releases);
}

TEST(Mouse, HasAVerbForEachStep) {
    EXPECT_THAT(SentBy({"mouse", "start", "1,2", "--shift"}),
                ElementsAre("JPMS 01000000020000000002000001000000"));
    EXPECT_THAT(SentBy({"mouse", "continue", "1,2"}),
                ElementsAre("JPMC 01000000020000000000000001000000"));
    EXPECT_THAT(SentBy({"mouse", "end", "1,2", "--no-click"}),
                ElementsAre("JPME 01000000020000000000000000000000"));
}

TEST(Mouse, ANegativeCoordinateIsNoOptionAndTravelsAsTwosComplement) {
    EXPECT_THAT(SentBy({"mouse", "start", "-5,-10"}),
                ElementsAre("JPMS fbfffffff6ffffff0000000001000000"));
}

TEST(BareVerbs, HaveNoBody) {
    EXPECT_THAT(SentBy({"pointer"}), ElementsAre("JGlM "));
    EXPECT_THAT(SentBy({"observe", "clip"}), ElementsAre("JObE "));
    EXPECT_THAT(SentBy({"observe", "timecode"}), ElementsAre("JObT "));
    EXPECT_THAT(SentBy({"stop"}), ElementsAre("JStO "));
    EXPECT_THAT(SentBy({"reset"}), ElementsAre("JXRs "));
    EXPECT_THAT(SentBy({"ping"}), ElementsAre("JPth "));
}

TEST(Refresh, CarriesAFlagForEachOption) {
    EXPECT_THAT(SentBy({"refresh", "--profile"}), ElementsAre("JAcF 010000000000000000000000"));
    EXPECT_THAT(SentBy({"refresh", "--timecode"}), ElementsAre("JAcF 000000000100000000000000"));
    EXPECT_THAT(SentBy({"refresh", "--clip"}), ElementsAre("JAcF 000000000000000001000000"));
    EXPECT_THAT(SentBy({"refresh", "--profile", "--timecode", "--clip"}),
                ElementsAre("JAcF 010000000100000001000000"));
}

TEST(Window, CarriesTheFlagAndTheTitleWithItsTerminator) {
    EXPECT_THAT(SentBy({"window", "Viewer"}), ElementsAre("JWiP 0000000056696577657200"));
    EXPECT_THAT(SentBy({"window", "Viewer", "--partial"}),
                ElementsAre("JWiP 0100000056696577657200"));
}

TEST(Window, TitleIsUtf8AndTakenAsTyped) {
    EXPECT_THAT(SentBy({"window", "\xC3\x84"}), ElementsAre("JWiP 00000000c38400"));
    EXPECT_THAT(SentBy({"window", "[a,b]"}), ElementsAre("JWiP 000000005b612c625d00"));
    EXPECT_THAT(SentBy({"window", "{}"}), ElementsAre("JWiP 000000007b7d00"));
    EXPECT_THAT(SentBy({"window", "\x1F[a]"}), ElementsAre("JWiP 000000001f5b615d00"));
    EXPECT_THAT(SentBy({"window", "press"}), ElementsAre("JWiP 00000000707265737300"));
    EXPECT_THAT(SentBy({"window", "--", "--json"}), ElementsAre("JWiP 000000002d2d6a736f6e00"));
    EXPECT_THAT(SentBy({"window", ""}), ElementsAre("JWiP 0000000000"));
}

TEST(Target, CarriesACandidateAsTheRecordWritesIt) {
    EXPECT_THAT(SentBy({"target", "Ab"}), ElementsAre("JTWP 01000000"
                                                      "416200"
                                                      "02000000"
                                                      "41006200"
                                                      "00000000"
                                                      "00000000"
                                                      "00000000"
                                                      "00000000"
                                                      "00000000"));
}

TEST(Target, SlashSeparatesTheSubWindowsKeyWhichTravelsWhole) {
    EXPECT_THAT(SentBy({"target", "A/Bc"}), ElementsAre("JTWP 01000000"
                                                        "4100"
                                                        "01000000"
                                                        "4100"
                                                        "00000000"
                                                        "00000000"
                                                        "00000000"
                                                        "00000000"
                                                        "01000000"
                                                        "426300"
                                                        "02000000"
                                                        "42006300"));
}

TEST(Target, TwoCandidatesAreFollowedByTheRecordsSurplus) {
    const Plan plan = PlanOf({"target", "A", "B"});
    ASSERT_EQ(plan.size(), 1U);
    // 4, then 28 for the first candidate and 28 + 28 for the second.
    EXPECT_EQ(plan[0].body.size(), 4U + 28U + 56U);
}

TEST(Target, AKeyInBracketsIsOneKey) {
    EXPECT_THAT(SentBy({"target", "[]"}), ElementsAre("JTWP 01000000"
                                                      "5b5d00"
                                                      "02000000"
                                                      "5b005d00"
                                                      "00000000"
                                                      "00000000"
                                                      "00000000"
                                                      "00000000"
                                                      "00000000"));
}

TEST(Target, KeyIsInTheSystemEncodingBesideItsUtf16) {
    EXPECT_THAT(SentBy({"target", "\xC3\x84"}), ElementsAre("JTWP 01000000"
                                                            "8000"
                                                            "01000000"
                                                            "c400"
                                                            "00000000"
                                                            "00000000"
                                                            "00000000"
                                                            "00000000"
                                                            "00000000"));
}

TEST(RawForm, SendsAnyCodeAndBody) {
    EXPECT_THAT(SentBy({"request", "JElV", "3b000000"}), ElementsAre("JElV 3b000000"));
    EXPECT_THAT(SentBy({"request", "JElV", "3B 00 00 00"}), ElementsAre("JElV 3b000000"));
    EXPECT_THAT(SentBy({"request", "ABCD"}), ElementsAre("ABCD "));
    EXPECT_THAT(SentBy({"request", "ABCD", ""}), ElementsAre("ABCD "));
}

}  // namespace
}  // namespace krt9ctl
