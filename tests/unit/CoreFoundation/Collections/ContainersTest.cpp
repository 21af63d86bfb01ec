#include <CoreFoundation/CoreFoundation.h>
#include <gmock/gmock.h>

#include <set>

#include "tests/unit/CoreFoundation/Owned.h"
#include "tests/unit/CoreFoundation/Vectors.h"

namespace {

using testing::HasSubstr;

constexpr CFIndex kCapacity = 20;

const void* Pointer(std::uintptr_t address) {
    return reinterpret_cast<const void*>(address);
}

Owned<CFMutableDictionaryRef> PointerDictionary() {
    return Owned<CFMutableDictionaryRef>(
        CFDictionaryCreateMutable(kCFAllocatorDefault, kCapacity, nullptr, nullptr));
}

Owned<CFStringRef> NewText() {
    return Owned<CFStringRef>(
        CFStringCreateWithCString(kCFAllocatorDefault, "equal text", kCFStringEncodingASCII));
}

TEST(DictionaryWithoutCallbacks, TellsEqualKeysApartByAddressAndRetainsNothing) {
    const Owned<CFMutableDictionaryRef> dictionary = PointerDictionary();
    const Owned<CFStringRef> key = NewText();
    const Owned<CFStringRef> equalKey = NewText();
    const Owned<CFStringRef> value = NewText();
    CFDictionarySetValue(dictionary.get(), key.get(), value.get());
    EXPECT_EQ(CFDictionaryGetValue(dictionary.get(), key.get()), value.get());
    EXPECT_EQ(CFDictionaryGetValue(dictionary.get(), equalKey.get()), nullptr);
    EXPECT_EQ(CFGetRetainCount(key.get()), 1);
    EXPECT_EQ(CFGetRetainCount(value.get()), 1);
}

TEST(DictionaryWithoutCallbacks, HoldsPointersThatAreNoObjects) {
    const Owned<CFMutableDictionaryRef> dictionary = PointerDictionary();
    CFDictionarySetValue(dictionary.get(), Pointer(1), Pointer(2));
    CFDictionarySetValue(dictionary.get(), nullptr, nullptr);
    EXPECT_EQ(CFDictionaryGetCount(dictionary.get()), 2);
    const void* value = Pointer(3);
    EXPECT_TRUE(CFDictionaryGetValueIfPresent(dictionary.get(), nullptr, &value));
    EXPECT_EQ(value, nullptr);
    const Owned<CFStringRef> description(CFCopyDescription(dictionary.get()));
    EXPECT_THAT(vectors::Shown(description.get()), HasSubstr("0x1 = 0x2"));
}

TEST(DictionaryWithoutCallbacks, GrowsFarBeyondItsCapacityAndShrinksToNothing) {
    const Owned<CFMutableDictionaryRef> dictionary = PointerDictionary();
    constexpr std::uintptr_t kEntries = 100000;
    for (std::uintptr_t address = 1; address <= kEntries; ++address) {
        CFDictionarySetValue(dictionary.get(), Pointer(address), Pointer(address * 2));
    }
    std::vector<const void*> keys(kEntries);
    std::vector<const void*> values(kEntries);
    CFDictionaryGetKeysAndValues(dictionary.get(), keys.data(), values.data());
    for (std::size_t index = 0; index < kEntries; ++index) {
        ASSERT_EQ(reinterpret_cast<std::uintptr_t>(values[index]),
                  2 * reinterpret_cast<std::uintptr_t>(keys[index]));
    }
    EXPECT_EQ(std::set<const void*>(keys.begin(), keys.end()).size(), kEntries);
    for (std::uintptr_t address = 1; address <= kEntries; ++address) {
        CFDictionaryRemoveValue(dictionary.get(), Pointer(address));
    }
    EXPECT_EQ(CFDictionaryGetCount(dictionary.get()), 0);
}

TEST(DictionaryOfObjects, KeepsItsContentsAliveAndLetsThemGo) {
    const Owned<CFStringRef> key = NewText();
    const Owned<CFStringRef> value = NewText();
    {
        const Owned<CFMutableDictionaryRef> dictionary(
            CFDictionaryCreateMutable(kCFAllocatorDefault, 0, &kCFTypeDictionaryKeyCallBacks,
                                      &kCFTypeDictionaryValueCallBacks));
        CFDictionarySetValue(dictionary.get(), key.get(), value.get());
        EXPECT_EQ(CFGetRetainCount(key.get()), 2);
        EXPECT_EQ(CFGetRetainCount(value.get()), 2);
        CFDictionarySetValue(dictionary.get(), key.get(), value.get());
        EXPECT_EQ(CFGetRetainCount(value.get()), 2);
        CFDictionaryRemoveAllValues(dictionary.get());
        EXPECT_EQ(CFGetRetainCount(value.get()), 1);
        CFDictionarySetValue(dictionary.get(), key.get(), value.get());
    }
    EXPECT_EQ(CFGetRetainCount(key.get()), 1);
    EXPECT_EQ(CFGetRetainCount(value.get()), 1);
}

TEST(DictionaryOfObjects, FindsAKeyByItsTextAndNotByACanonicallyEquivalentOne) {
    const Owned<CFStringRef> composed(
        CFStringCreateWithCString(kCFAllocatorDefault, "\u00e9", kCFStringEncodingUTF8));
    const void* keys[] = {CFSTR("equal text"), composed.get()};
    const void* values[] = {kCFBooleanTrue, kCFBooleanFalse};
    const Owned<CFDictionaryRef> dictionary(CFDictionaryCreate(kCFAllocatorDefault, keys, values, 2,
                                                               &kCFTypeDictionaryKeyCallBacks,
                                                               &kCFTypeDictionaryValueCallBacks));
    EXPECT_EQ(CFDictionaryGetValue(dictionary.get(), NewText().get()), kCFBooleanTrue);
    EXPECT_EQ(CFDictionaryGetValue(dictionary.get(), CFSTR("\u00e9")), kCFBooleanFalse);
    EXPECT_EQ(CFDictionaryGetValue(dictionary.get(), CFSTR("e\u0301")), nullptr);
}

TEST(Array, KeepsItsContentsAliveInOrder) {
    const Owned<CFStringRef> text = NewText();
    {
        const Owned<CFMutableArrayRef> array(
            CFArrayCreateMutable(kCFAllocatorDefault, 0, &kCFTypeArrayCallBacks));
        CFArrayAppendValue(array.get(), text.get());
        CFArrayAppendValue(array.get(), kCFNull);
        EXPECT_EQ(CFGetRetainCount(text.get()), 2);
        EXPECT_EQ(CFArrayGetValueAtIndex(array.get(), 0), text.get());
        EXPECT_EQ(CFArrayGetValueAtIndex(array.get(), 1), kCFNull);
    }
    EXPECT_EQ(CFGetRetainCount(text.get()), 1);
}

TEST(Array, DescribesPointersThatAreNoObjects) {
    const void* values[] = {Pointer(1), Pointer(2)};
    const Owned<CFArrayRef> array(CFArrayCreate(kCFAllocatorDefault, values, 2, nullptr));
    const Owned<CFStringRef> description(CFCopyDescription(array.get()));
    EXPECT_EQ(vectors::Shown(description.get()), "\"( 0x1 0x2 )\"");
}

}  // namespace
