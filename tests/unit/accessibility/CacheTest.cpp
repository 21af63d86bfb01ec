#include "accessibility/VEK_C_AXUtils.h"
#include "platform/Testing/LogCapture.h"
#include "tests/unit/accessibility/AXUtilsInspector.h"
#include "tests/unit/accessibility/AccessibilityTest.h"

namespace {

class ElementCache : public AccessibilityTest {
  protected:
    CFMutableDictionaryRef Cache() { return AXUtilsInspector::Cache(utils_); }
    CFIndex Count() { return CFDictionaryGetCount(Cache()); }
    std::string KeyedFor() {
        return TextOf(
            static_cast<CFStringRef>(CFDictionaryGetValue(Cache(), kVEK_CF_Key_Application_ID)));
    }

    // Two entries: the key and one element, which no operation brings about by itself.
    void Fill() {
        utils_.CachedElementsForApplication(CFSTR("com.apple.FinalCut"));
        CFDictionarySetValue(Cache(), CFSTR("_NS:1"), element_.get());
    }

    VEK_C_AXUtils utils_;
    OwnedReference<AXUIElementRef> element_ = Object(editor_.Add("AXButton", "_NS:1"));
};

TEST_F(ElementCache, ReadsRoleChildrenIdentifierAndSubroleInThatOrder) {
    std::vector<std::string> names;
    CFArrayRef attributes = AXUtilsInspector::Attributes();
    for (CFIndex i = 0; i < CFArrayGetCount(attributes); ++i) {
        names.push_back(TextOf(static_cast<CFStringRef>(CFArrayGetValueAtIndex(attributes, i))));
    }
    EXPECT_THAT(names, testing::ElementsAre("AXRole", "AXChildren", "AXIdentifier", "AXSubrole"));
}

TEST(ElementCacheLifecycle, AttributeNamesAreSharedAndGoWithTheFirstInstanceDestroyed) {
    platform_testing::AutoreleasePool pool;
    auto first = std::make_unique<VEK_C_AXUtils>();
    CFArrayRef shared = AXUtilsInspector::Attributes();
    auto second = std::make_unique<VEK_C_AXUtils>();
    EXPECT_EQ(AXUtilsInspector::Attributes(), shared);
    first.reset();
    EXPECT_EQ(AXUtilsInspector::Attributes(), nullptr);
    second.reset();
    VEK_C_AXUtils third;
    EXPECT_NE(AXUtilsInspector::Attributes(), nullptr);
}

TEST_F(ElementCache, ASearchWithoutAttributeNamesFindsNothing) {
    editor_.ShowWindow({editor_.Add("AXButton", "_NS:1")});
    { VEK_C_AXUtils other; }
    EXPECT_EQ(utils_.CopyElement(CFSTR("_NS:1"), kVEK_AXRole_AllValidRoles, false, ""), nullptr);
}

TEST_F(ElementCache, KeyingAFreshCacheStoresTheApplicationOnly) {
    EXPECT_EQ(Count(), 0);
    EXPECT_EQ(utils_.CachedElementsForApplication(CFSTR("com.apple.FinalCut")), Cache());
    EXPECT_EQ(Count(), 1);
    EXPECT_EQ(KeyedFor(), "com.apple.FinalCut");
}

TEST_F(ElementCache, KeyingForTheSameApplicationKeepsTheElements) {
    Fill();
    auto equal = String("com.apple.FinalCut");
    utils_.CachedElementsForApplication(equal.get());
    EXPECT_EQ(Count(), 2);
    EXPECT_EQ(CFDictionaryGetValue(Cache(), CFSTR("_NS:1")), element_.get());
}

TEST_F(ElementCache, KeyingForAnotherApplicationEmptiesTheCache) {
    Fill();
    utils_.CachedElementsForApplication(CFSTR("com.apple.Finder"));
    EXPECT_EQ(Count(), 1);
    EXPECT_EQ(KeyedFor(), "com.apple.Finder");
}

TEST_F(ElementCache, KeyingForNoApplicationEmptiesTheCache) {
    Fill();
    EXPECT_EQ(utils_.CachedElementsForApplication(nullptr), Cache());
    EXPECT_EQ(Count(), 1);
    EXPECT_EQ(CFDictionaryGetValue(Cache(), kVEK_CF_Key_Application_ID), nullptr);
}

TEST_F(ElementCache, KeyingIsCaseSensitive) {
    Fill();
    utils_.CachedElementsForApplication(CFSTR("com.apple.finalcut"));
    EXPECT_EQ(Count(), 1);
}

TEST_F(ElementCache, ACacheThatLostItsKeyCountsAsKeyedForAnotherApplication) {
    CFDictionarySetValue(Cache(), CFSTR("_NS:1"), element_.get());
    CFDictionarySetValue(Cache(), CFSTR("_NS:2"), element_.get());
    utils_.CachedElementsForApplication(CFSTR("com.apple.FinalCut"));
    EXPECT_EQ(Count(), 1);
}

TEST_F(ElementCache, CachingInAFreshlyKeyedCacheStoresNothing) {
    utils_.CacheElement(element_.get(), CFSTR("_NS:1"));
    EXPECT_EQ(Count(), 1);
    EXPECT_EQ(KeyedFor(), "com.apple.FinalCut");
    utils_.CacheElement(element_.get(), CFSTR("_NS:1"));
    EXPECT_EQ(Count(), 1) << "a cache that holds its key only takes no element, ever";
}

TEST_F(ElementCache, CachingInACacheThatHoldsAnElementStores) {
    Fill();
    utils_.CacheElement(element_.get(), CFSTR("_NS:2"));
    EXPECT_EQ(Count(), 3);
    EXPECT_EQ(CFDictionaryGetValue(Cache(), CFSTR("_NS:2")), element_.get());
}

TEST_F(ElementCache, CachingForAnotherFrontApplicationRekeysAndStoresNothing) {
    Fill();
    test_support::SetFrontApplication({"com.apple.Finder", "1.0", 7});
    utils_.CacheElement(element_.get(), CFSTR("_NS:2"));
    EXPECT_EQ(Count(), 1);
    EXPECT_EQ(KeyedFor(), "com.apple.Finder");
}

TEST_F(ElementCache, WithoutAFrontBundleIdentifierNothingIsTouched) {
    Fill();
    test_support::SetFrontApplication({nullptr, nullptr, 7});
    utils_.CacheElement(element_.get(), CFSTR("_NS:2"));
    utils_.UncacheElement(CFSTR("_NS:1"));
    utils_.ResetFrontApplicationCache();
    EXPECT_EQ(Count(), 2);
}

TEST_F(ElementCache, UncachingRemovesTheEntry) {
    Fill();
    utils_.UncacheElement(CFSTR("_NS:1"));
    EXPECT_EQ(Count(), 1);
    EXPECT_EQ(KeyedFor(), "com.apple.FinalCut");
}

TEST_F(ElementCache, UncachingForAnotherFrontApplicationEmptiesTheCacheAndKeysItForThatOne) {
    Fill();
    CFDictionarySetValue(Cache(), CFSTR("_NS:2"), element_.get());
    test_support::SetFrontApplication({"com.apple.Finder", "1.0", 7});
    utils_.UncacheElement(CFSTR("_NS:1"));
    EXPECT_EQ(Count(), 1);
    EXPECT_EQ(KeyedFor(), "com.apple.Finder");
}

TEST_F(ElementCache, KeysAreComparedByAddressNotByText) {
    Fill();
    auto sameText = String("_NS:1");
    ASSERT_NE(sameText.get(), CFSTR("_NS:1"));
    utils_.UncacheElement(sameText.get());
    EXPECT_EQ(Count(), 2);
}

TEST_F(ElementCache, RetainsNeitherKeysNorElements) {
    Fill();
    auto key = String("a key that is not a constant");
    CFIndex keyCount = CFGetRetainCount(key.get());
    CFIndex elementCount = CFGetRetainCount(element_.get());
    utils_.CacheElement(element_.get(), key.get());
    ASSERT_EQ(Count(), 3);
    EXPECT_EQ(CFGetRetainCount(key.get()), keyCount);
    EXPECT_EQ(CFGetRetainCount(element_.get()), elementCount);
}

TEST_F(ElementCache, ResettingEmptiesItTheKeyIncluded) {
    Fill();
    utils_.ResetCacheForApplication(CFSTR("com.apple.FinalCut"));
    EXPECT_EQ(Count(), 0);
    Fill();
    utils_.ResetCacheForApplication(CFSTR("com.apple.Finder"));
    EXPECT_EQ(Count(), 0);
    Fill();
    utils_.ResetFrontApplicationCache();
    EXPECT_EQ(Count(), 0);
}

TEST_F(ElementCache, ComparesWithAnIdentifierThatItsOwnerHasReleased) {
    auto identifier = String("com.apple.FinalCut of a while ago");
    utils_.CachedElementsForApplication(identifier.get());
    CFDictionarySetValue(Cache(), CFSTR("_NS:1"), element_.get());
    identifier.reset();
    utils_.CachedElementsForApplication(CFSTR("com.apple.FinalCut of a while ago"));
    EXPECT_EQ(Count(), 2);
}

TEST_F(ElementCache, LetsGoOfTheIdentifierWhenReset) {
    auto identifier = String("com.apple.FinalCut of a while ago");
    CFIndex before = CFGetRetainCount(identifier.get());
    utils_.CachedElementsForApplication(identifier.get());
    utils_.CachedElementsForApplication(identifier.get());
    utils_.ResetCacheForApplication(CFSTR("com.apple.Finder"));
    EXPECT_EQ(CFGetRetainCount(identifier.get()), before);
}

TEST_F(ElementCache, LetsGoOfTheIdentifierWhenDestroyed) {
    auto identifier = String("com.apple.FinalCut of a while ago");
    CFIndex before = CFGetRetainCount(identifier.get());
    {
        VEK_C_AXUtils utils;
        utils.CachedElementsForApplication(identifier.get());
        EXPECT_EQ(CFGetRetainCount(identifier.get()), before + 1);
    }
    EXPECT_EQ(CFGetRetainCount(identifier.get()), before);
}

TEST_F(ElementCache, SearchesNeverConsultIt) {
    Fill();
    editor_.ShowWindow({});
    EXPECT_EQ(utils_.CopyElement(CFSTR("_NS:1"), kVEK_AXRole_AllValidRoles, false, ""), nullptr);
}

TEST_F(ElementCache, DebugDumpLogsAddressTagAndKeys) {
    utils_.CachedElementsForApplication(CFSTR("com.apple.FinalCut"));
    platform_testing::LogCapture console;
    utils_.DebugCache(Cache(), "now");
    ASSERT_EQ(console.ConsoleTexts().size(), 1U);
    char start[64];
    snprintf(start, sizeof start, "cache:debug (%p) now ", static_cast<void*>(Cache()));
    EXPECT_THAT(console.ConsoleTexts()[0], testing::StartsWith(start));
    EXPECT_THAT(console.ConsoleTexts()[0], testing::HasSubstr("VEKAPPID"));
}

TEST_F(ElementCache, DebugDumpIsOfTheDictionaryThatItIsGiven) {
    Fill();
    OwnedReference<CFMutableDictionaryRef> other(
        CFDictionaryCreateMutable(kCFAllocatorDefault, 0, nullptr, nullptr));
    CFDictionarySetValue(other.get(), CFSTR("a key of its own"), CFSTR("a value of its own"));
    platform_testing::LogCapture console;
    utils_.DebugCache(other.get(), "another");
    ASSERT_EQ(console.ConsoleTexts().size(), 1U);
    const std::string line = console.ConsoleTexts()[0];
    char start[64];
    snprintf(start, sizeof start, "cache:debug (%p) another ", static_cast<void*>(other.get()));
    EXPECT_THAT(line, testing::StartsWith(start));
    EXPECT_THAT(line, testing::HasSubstr("a key of its own"));
    EXPECT_THAT(line, testing::Not(testing::HasSubstr("a value of its own")));
    EXPECT_THAT(line, testing::Not(testing::HasSubstr("VEKAPPID")));
}

TEST_F(ElementCache, DebugDumpOfAnEmptyCacheLogsNoKey) {
    platform_testing::LogCapture console;
    utils_.DebugCache(Cache(), "");
    ASSERT_EQ(console.ConsoleTexts().size(), 1U);
    EXPECT_THAT(console.ConsoleTexts()[0], testing::Not(testing::HasSubstr("VEKAPPID")));
}

TEST_F(ElementCache, SetDebugLevelSetsTheSearchLevel) {
    utils_.SetDebugLevel(7);
    EXPECT_EQ(AXUtilsInspector::Level(utils_), 7U);
    utils_.CopyElement(CFSTR("_NS:1"), kVEK_AXRole_AllValidRoles, false, "");
    EXPECT_EQ(AXUtilsInspector::Level(utils_), 0U);
}

}  // namespace
