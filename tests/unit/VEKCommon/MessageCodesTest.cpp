#include <gtest/gtest.h>

#include <set>

#include "VEKCommon/MessageCodes.h"

TEST(MessageCodes, FirstCharacterIsTheMostSignificantByte) {
    EXPECT_EQ(FourCharacterCode("JAcF"), 0x4A416346);
    EXPECT_EQ(FourCharacterCode("\xFF\x80\x01z"), static_cast<SInt32>(0xFF80017A));
}

TEST(MessageCodes, AreTheFamilysNumbers) {
    EXPECT_EQ(kJAcF, 0x4A416346);
    EXPECT_EQ(kJBtP, 0x4A427450);
    EXPECT_EQ(kJCPK, 0x4A43504B);
    EXPECT_EQ(kJEPp, 0x4A455070);
    EXPECT_EQ(kJESI, 0x4A455349);
    EXPECT_EQ(kJElP, 0x4A456C50);
    EXPECT_EQ(kJElV, 0x4A456C56);
    EXPECT_EQ(kJGRV, 0x4A475256);
    EXPECT_EQ(kJGlM, 0x4A476C4D);
    EXPECT_EQ(kJObE, 0x4A4F6245);
    EXPECT_EQ(kJObT, 0x4A4F6254);
    EXPECT_EQ(kJPMC, 0x4A504D43);
    EXPECT_EQ(kJPME, 0x4A504D45);
    EXPECT_EQ(kJPMS, 0x4A504D53);
    EXPECT_EQ(kJPth, 0x4A507468);
    EXPECT_EQ(kJSIS, 0x4A534953);
    EXPECT_EQ(kJSRV, 0x4A535256);
    EXPECT_EQ(kJStO, 0x4A53744F);
    EXPECT_EQ(kJTWP, 0x4A545750);
    EXPECT_EQ(kJWiP, 0x4A576950);
    EXPECT_EQ(kJXRs, 0x4A585273);
    EXPECT_EQ(kStus, 0x53747573);
    EXPECT_EQ(kJSLg, 0x4A534C67);
    EXPECT_EQ(kJFSC, 0x4A465343);
    EXPECT_EQ(kJFTC, 0x4A465443);
}

TEST(MessageCodes, CaseMatters) {
    EXPECT_NE(FourCharacterCode("JElV"), FourCharacterCode("JELV"));
}

TEST(MessageCodes, ThereAreTwentyOneRequestsAndFourOutboundMessages) {
    const std::set<SInt32> codes{kJAcF, kJBtP, kJCPK, kJEPp, kJESI, kJElP, kJElV, kJGRV, kJGlM,
                                 kJObE, kJObT, kJPMC, kJPME, kJPMS, kJPth, kJSIS, kJSRV, kJStO,
                                 kJTWP, kJWiP, kJXRs, kStus, kJSLg, kJFSC, kJFTC};
    EXPECT_EQ(codes.size(), 21u + 4u) << "all different";
}
