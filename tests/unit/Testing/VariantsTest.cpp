#include <gtest/gtest.h>

#include "platform/Variants/Variants.h"

namespace {

using platform_testing::IsOn;
using platform_testing::UnderVariant;
using platform_testing::Variant;
using platform_testing::VariantNamed;
using platform_testing::WithoutVariants;

TEST(Variants, AreOnForTheLifeOfTheObject) {
    ASSERT_FALSE(IsOn(Variant::offlineDevices));
    {
        const UnderVariant outer(Variant::offlineDevices);
        EXPECT_TRUE(IsOn(Variant::offlineDevices));
        EXPECT_FALSE(IsOn(Variant::lateActivation)) << "another variant";
        { const UnderVariant inner(Variant::offlineDevices); }
        EXPECT_TRUE(IsOn(Variant::offlineDevices)) << "the inner one ended the outer one's";
    }
    EXPECT_FALSE(IsOn(Variant::offlineDevices));
}

TEST(Variants, ArePutAsideForTheLifeOfAnObjectAndOnlyWhereTheyWereOn) {
    const UnderVariant on(Variant::offlineDevices);
    {
        const WithoutVariants usual({Variant::offlineDevices, Variant::lateActivation});
        EXPECT_FALSE(IsOn(Variant::offlineDevices));
        EXPECT_FALSE(IsOn(Variant::lateActivation));
    }
    EXPECT_TRUE(IsOn(Variant::offlineDevices));
    EXPECT_FALSE(IsOn(Variant::lateActivation));
}

TEST(Variants, HaveNames) {
    EXPECT_EQ(VariantNamed("hang-at-once"), Variant::hangAtOnce);
    EXPECT_EQ(VariantNamed("late-activation"), Variant::lateActivation);
    EXPECT_EQ(VariantNamed("callout"), std::nullopt);
    EXPECT_EQ(VariantNamed(""), std::nullopt);
}

}  // namespace
