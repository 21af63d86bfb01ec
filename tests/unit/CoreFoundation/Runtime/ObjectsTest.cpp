// References, types, and the consequences of programming errors.
#include <CoreFoundation/CoreFoundation.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>

#include "VEKCommon/OwnedReference.h"
#include "platform/CoreFoundation/Runtime/CFRuntime.h"
#include "platform/Testing/LiveObjects.h"
#include "tests/unit/CoreFoundation/Vectors.h"

namespace {

using platform_testing::LeftOverBy;

CFNumberRef NewNumber(SInt64 value) {
    return CFNumberCreate(kCFAllocatorDefault, kCFNumberSInt64Type, &value);
}

TEST(ObjectsDeathTest, NullStopsTheProcess) {
    EXPECT_DEATH(CFRetain(nullptr), "CFRetain: null argument");
    EXPECT_DEATH(CFRelease(nullptr), "CFRelease: null argument");
    EXPECT_DEATH(CFGetTypeID(nullptr), "CFGetTypeID: null argument");
    EXPECT_DEATH(CFEqual(kCFNull, nullptr), "CFEqual: null argument");
    EXPECT_DEATH(CFHash(nullptr), "CFHash: null argument");
    EXPECT_DEATH(CFStringGetLength(nullptr), "CFStringGetLength: null argument");
    EXPECT_DEATH(CFArrayGetCount(nullptr), "CFArrayGetCount: null argument");
    EXPECT_DEATH(CFDictionaryGetValue(nullptr, kCFNull), "null argument");
    EXPECT_DEATH(CFDataGetLength(nullptr), "CFDataGetLength: null argument");
}

TEST(ObjectsDeathTest, WhatLiesOutsideAnObjectStopsTheProcess) {
    const OwnedReference<CFArrayRef> array(
        CFArrayCreate(kCFAllocatorDefault, nullptr, 0, &kCFTypeArrayCallBacks));
    EXPECT_DEATH(CFArrayGetValueAtIndex(array.get(), 0), "index outside the array");
    EXPECT_DEATH(CFArrayGetValueAtIndex(array.get(), -1), "index outside the array");
    const UInt8 bytes[] = {1, 2};
    const OwnedReference<CFDataRef> data(CFDataCreate(kCFAllocatorDefault, bytes, sizeof bytes));
    UInt8 buffer[8];
    EXPECT_DEATH(CFDataGetBytes(data.get(), CFRangeMake(1, 2), buffer), "range outside the data");
    EXPECT_DEATH(CFDataGetBytes(data.get(), CFRangeMake(0, -1), buffer), "range outside the data");
    EXPECT_DEATH(CFDataGetBytes(data.get(), CFRangeMake(1, kCFNotFound), buffer),
                 "range outside the data");
    UniChar units[8];
    EXPECT_DEATH(CFStringGetCharacters(CFSTR("ab"), CFRangeMake(2, 1), units),
                 "range outside the string");
    EXPECT_DEATH(CFDataCreate(kCFAllocatorDefault, nullptr, 1), "no bytes");
    EXPECT_DEATH(CFStringCompare(CFSTR("a"), CFSTR("b"), kCFCompareCaseInsensitive),
                 "only options 0 is provided");
}

TEST(TypeIDs, AreGivenOutOnceEach) {
    const CFTypeID first = core_foundation::RegisterType("TypeOfThisTest");
    const CFTypeID second = core_foundation::RegisterType("OtherTypeOfThisTest");
    EXPECT_NE(first, second);
    const OwnedReference<CFStringRef> name(CFCopyTypeIDDescription(first));
    EXPECT_EQ(vectors::Shown(name.get()), "\"TypeOfThisTest\"");
    EXPECT_EQ(CFCopyTypeIDDescription(0), nullptr);
    EXPECT_EQ(CFCopyTypeIDDescription(second + 1000), nullptr);
}

TEST(TypeIDs, BearTheNamesOfTheirTypes) {
    const std::pair<CFTypeID, const char*> kNames[] = {{CFNullGetTypeID(), "CFNull"},
                                                       {CFBooleanGetTypeID(), "CFBoolean"},
                                                       {CFNumberGetTypeID(), "CFNumber"},
                                                       {CFStringGetTypeID(), "CFString"},
                                                       {CFDataGetTypeID(), "CFData"},
                                                       {CFArrayGetTypeID(), "CFArray"},
                                                       {CFDictionaryGetTypeID(), "CFDictionary"}};
    for (const auto& [type, expected] : kNames) {
        const OwnedReference<CFStringRef> name(CFCopyTypeIDDescription(type));
        EXPECT_EQ(vectors::Shown(name.get()), '"' + std::string(expected) + '"');
    }
}

TEST(TypeIDs, AreTheSameForMutableAndImmutableObjects) {
    const OwnedReference<CFMutableStringRef> text(CFStringCreateMutable(kCFAllocatorDefault, 0));
    EXPECT_EQ(CFGetTypeID(text.get()), CFStringGetTypeID());
    const OwnedReference<CFMutableDataRef> data(CFDataCreateMutable(kCFAllocatorDefault, 0));
    EXPECT_EQ(CFGetTypeID(data.get()), CFDataGetTypeID());
}

TEST(References, AreCounted) {
    const OwnedReference<CFNumberRef> number(NewNumber(5000));
    EXPECT_EQ(CFGetRetainCount(number.get()), 1);
    EXPECT_EQ(CFRetain(number.get()), number.get());
    EXPECT_EQ(CFGetRetainCount(number.get()), 2);
    CFRelease(number.get());
    EXPECT_EQ(CFGetRetainCount(number.get()), 1);
}

TEST(Descriptions, AreThoseOfTheContentsUnlessThatAreBarePointers) {
    const void* text = CFSTR("text");
    const OwnedReference<CFArrayRef> objects(
        CFArrayCreate(kCFAllocatorDefault, &text, 1, &kCFTypeArrayCallBacks));
    EXPECT_EQ(vectors::Shown(OwnedReference<CFStringRef>(CFCopyDescription(objects.get())).get()),
              "\"(text)\"");
    const CFDictionaryKeyCallBacks* const noKeys = nullptr;
    const CFDictionaryValueCallBacks* const noValues = nullptr;
    for (const bool bareKeys : {false, true}) {
        const OwnedReference<CFDictionaryRef> dictionary(
            CFDictionaryCreate(kCFAllocatorDefault, &text, &text, 1,
                               bareKeys ? noKeys : &kCFTypeDictionaryKeyCallBacks,
                               bareKeys ? &kCFTypeDictionaryValueCallBacks : noValues));
        EXPECT_THAT(
            vectors::Shown(OwnedReference<CFStringRef>(CFCopyDescription(dictionary.get())).get()),
            testing::StartsWith("\"{ 0x"));
    }
}

// Every function that returns a new object, and every one that keeps an object.
TEST(Ownership, NothingIsLeftOverWhenWhatWasCreatedIsReleased) {
    const std::map<std::string, void (*)()> operations = {
        {"strings",
         [] {
             const UniChar units[] = {'a', 0xD800};
             const OwnedReference<CFStringRef> odd(
                 CFStringCreateWithCharacters(kCFAllocatorDefault, units, 2));
             const OwnedReference<CFStringRef> text(CFStringCreateWithCString(
                 kCFAllocatorDefault, "a text of this test", kCFStringEncodingUTF8));
             const OwnedReference<CFMutableStringRef> copy(
                 CFStringCreateMutableCopy(kCFAllocatorDefault, 0, text.get()));
             CFStringReplaceAll(copy.get(), odd.get());
             const OwnedReference<CFStringRef> formatted(CFStringCreateWithFormat(
                 kCFAllocatorDefault, nullptr, CFSTR("%@ %s"), text.get(), "x"));
             char buffer[64];
             CFStringGetCString(odd.get(), buffer, sizeof buffer, kCFStringEncodingUTF8);
             CFStringGetFileSystemRepresentation(text.get(), buffer, sizeof buffer);
             CFStringCompare(text.get(), formatted.get(), 0);
             CFStringGetIntValue(text.get());
         }},
        {"containers",
         [] {
             const OwnedReference<CFNumberRef> number(NewNumber(4711));
             const void* values[] = {number.get(), number.get()};
             const OwnedReference<CFArrayRef> array(
                 CFArrayCreate(kCFAllocatorDefault, values, 2, &kCFTypeArrayCallBacks));
             const OwnedReference<CFMutableDictionaryRef> dictionary(
                 CFDictionaryCreateMutable(kCFAllocatorDefault, 0, &kCFTypeDictionaryKeyCallBacks,
                                           &kCFTypeDictionaryValueCallBacks));
             CFDictionarySetValue(dictionary.get(), number.get(), array.get());
             CFDictionarySetValue(dictionary.get(), number.get(), number.get());
             CFDictionaryAddValue(dictionary.get(), CFSTR("key"), array.get());
             CFDictionaryRemoveValue(dictionary.get(), CFSTR("key"));
             CFRelease(CFCopyDescription(dictionary.get()));
         }},
        {"data",
         [] {
             const UInt8 bytes[] = {1, 2, 3};
             const OwnedReference<CFDataRef> data(
                 CFDataCreate(kCFAllocatorDefault, bytes, sizeof bytes));
             const OwnedReference<CFMutableDataRef> grown(
                 CFDataCreateMutable(kCFAllocatorDefault, 0));
             CFDataAppendBytes(grown.get(), bytes, sizeof bytes);
         }},
    };
    for (const auto& [name, operation] : operations) {
        EXPECT_EQ(LeftOverBy(operation), "") << name;
    }
}

}  // namespace
