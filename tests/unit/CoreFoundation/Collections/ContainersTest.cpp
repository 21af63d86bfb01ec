#include <CoreFoundation/CoreFoundation.h>
#include <gmock/gmock.h>

#include <set>

#include "VEKCommon/OwnedReference.h"
#include "tests/unit/CoreFoundation/Vectors.h"

namespace {

using testing::HasSubstr;

constexpr CFIndex kCapacity = 20;

const void* Pointer(std::uintptr_t address) {
    return reinterpret_cast<const void*>(address);
}

OwnedReference<CFMutableDictionaryRef> PointerDictionary() {
    return OwnedReference<CFMutableDictionaryRef>(
        CFDictionaryCreateMutable(kCFAllocatorDefault, kCapacity, nullptr, nullptr));
}

OwnedReference<CFStringRef> NewText() {
    return OwnedReference<CFStringRef>(
        CFStringCreateWithCString(kCFAllocatorDefault, "equal text", kCFStringEncodingASCII));
}

TEST(DictionaryWithoutCallbacks, TellsEqualKeysApartByAddressAndRetainsNothing) {
    const OwnedReference<CFMutableDictionaryRef> dictionary = PointerDictionary();
    const OwnedReference<CFStringRef> key = NewText();
    const OwnedReference<CFStringRef> equalKey = NewText();
    const OwnedReference<CFStringRef> value = NewText();
    CFDictionarySetValue(dictionary.get(), key.get(), value.get());
    EXPECT_EQ(CFDictionaryGetValue(dictionary.get(), key.get()), value.get());
    EXPECT_EQ(CFDictionaryGetValue(dictionary.get(), equalKey.get()), nullptr);
    EXPECT_EQ(CFGetRetainCount(key.get()), 1);
    EXPECT_EQ(CFGetRetainCount(value.get()), 1);
}

TEST(DictionaryWithoutCallbacks, HoldsPointersThatAreNoObjects) {
    const OwnedReference<CFMutableDictionaryRef> dictionary = PointerDictionary();
    CFDictionarySetValue(dictionary.get(), Pointer(1), Pointer(2));
    CFDictionarySetValue(dictionary.get(), nullptr, nullptr);
    EXPECT_EQ(CFDictionaryGetCount(dictionary.get()), 2);
    const void* value = Pointer(3);
    EXPECT_TRUE(CFDictionaryGetValueIfPresent(dictionary.get(), nullptr, &value));
    EXPECT_EQ(value, nullptr);
}

TEST(DictionaryWithoutCallbacks, DescribesItsPointers) {
    const OwnedReference<CFMutableDictionaryRef> dictionary = PointerDictionary();
    CFDictionarySetValue(dictionary.get(), Pointer(1), Pointer(2));
    const OwnedReference<CFStringRef> description(CFCopyDescription(dictionary.get()));
    EXPECT_EQ(vectors::Shown(description.get()), "\"{ 0x1 = 0x2; }\"");
}

TEST(DictionaryWithoutCallbacks, GrowsFarBeyondItsCapacityAndShrinksToNothing) {
    const OwnedReference<CFMutableDictionaryRef> dictionary = PointerDictionary();
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
    const OwnedReference<CFStringRef> key = NewText();
    const OwnedReference<CFStringRef> value = NewText();
    {
        const OwnedReference<CFMutableDictionaryRef> dictionary(
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
    const OwnedReference<CFStringRef> composed(
        CFStringCreateWithCString(kCFAllocatorDefault, "\u00e9", kCFStringEncodingUTF8));
    const void* keys[] = {CFSTR("equal text"), composed.get()};
    const void* values[] = {kCFBooleanTrue, kCFBooleanFalse};
    const OwnedReference<CFDictionaryRef> dictionary(
        CFDictionaryCreate(kCFAllocatorDefault, keys, values, 2, &kCFTypeDictionaryKeyCallBacks,
                           &kCFTypeDictionaryValueCallBacks));
    EXPECT_EQ(CFDictionaryGetValue(dictionary.get(), NewText().get()), kCFBooleanTrue);
    EXPECT_EQ(CFDictionaryGetValue(dictionary.get(), CFSTR("\u00e9")), kCFBooleanFalse);
    EXPECT_EQ(CFDictionaryGetValue(dictionary.get(), CFSTR("e\u0301")), nullptr);
}

TEST(Array, KeepsItsContentsAliveInOrder) {
    const OwnedReference<CFStringRef> text = NewText();
    {
        const OwnedReference<CFMutableArrayRef> array(
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
    const OwnedReference<CFArrayRef> array(CFArrayCreate(kCFAllocatorDefault, values, 2, nullptr));
    const OwnedReference<CFStringRef> description(CFCopyDescription(array.get()));
    EXPECT_EQ(vectors::Shown(description.get()), "\"( 0x1 0x2 )\"");
}

}  // namespace
