// Containers of Core Foundation, used through Foundation.
#import <Foundation/Foundation.h>

#include <CoreFoundation/CoreFoundation.h>
#include <gtest/gtest.h>

#include "VEKCommon/OwnedReference.h"

namespace {

class BridgedContainers : public testing::Test {
  protected:
    BridgedContainers() : pool_([[NSAutoreleasePool alloc] init]) {}
    ~BridgedContainers() override { [pool_ drain]; }

    static OwnedReference<CFMutableArrayRef> Array(const void* value) {
        OwnedReference<CFMutableArrayRef> array(
            CFArrayCreateMutable(kCFAllocatorDefault, 0, &kCFTypeArrayCallBacks));
        CFArrayAppendValue(array.get(), value);
        return array;
    }

    // Its keys are compared by pointer, so that no Foundation class would do.
    static OwnedReference<CFMutableDictionaryRef> Dictionary(const void* key, const void* value) {
        OwnedReference<CFMutableDictionaryRef> dictionary(CFDictionaryCreateMutable(
            kCFAllocatorDefault, 0, nullptr, &kCFTypeDictionaryValueCallBacks));
        CFDictionarySetValue(dictionary.get(), key, value);
        return dictionary;
    }

  private:
    NSAutoreleasePool* pool_;
};

template <typename Call>
bool RaisesRangeException(Call call) {
    @try {
        call();
    } @catch (NSException* exception) {
        return [[exception name] isEqualToString:NSRangeException];
    }
    return false;
}

TEST_F(BridgedContainers, AnIndexOutsideAnArrayRaisesAnException) {
    const auto array = Array(CFSTR("a"));
    auto* bridged = (NSMutableArray*)array.get();
    const auto get = [&](NSUInteger index) { [bridged objectAtIndex:index]; };
    const auto insert = [&](NSUInteger index) { [bridged insertObject:@"x" atIndex:index]; };
    EXPECT_FALSE(RaisesRangeException([&] { get(0); }));
    EXPECT_TRUE(RaisesRangeException([&] { get(1); }));
    EXPECT_TRUE(RaisesRangeException([&] { insert(2); }));
    EXPECT_FALSE(RaisesRangeException([&] { insert(1); }));
    EXPECT_EQ([bridged count], 2U);
}

TEST_F(BridgedContainers, ArraysAreEqualWhenTheirValuesAre) {
    const auto array = Array(CFSTR("a"));
    auto* bridged = (NSArray*)array.get();
    EXPECT_TRUE([bridged isEqual:bridged]);
    EXPECT_TRUE([bridged isEqual:(id)Array(CFSTR("a")).get()]);
    EXPECT_FALSE([bridged isEqual:(id)Array(CFSTR("b")).get()]);
    EXPECT_FALSE([bridged isEqual:@"a"]);
    EXPECT_FALSE([bridged isEqual:[NSArray array]]);
}

TEST_F(BridgedContainers, ArraysOfBarePointersAreEqualWhenTheirPointersAre) {
    const int first = 0;
    const int second = 0;
    const auto made = [](const void* pointer) {
        return OwnedReference<CFArrayRef>(CFArrayCreate(kCFAllocatorDefault, &pointer, 1, nullptr));
    };
    EXPECT_TRUE(CFEqual(made(&first).get(), made(&first).get()));
    EXPECT_FALSE(CFEqual(made(&first).get(), made(&second).get()));
}

TEST_F(BridgedContainers, DictionariesAreEqualWhenTheirKeysAndValuesAre) {
    const auto dictionary = Dictionary(CFSTR("k"), CFSTR("v"));
    auto* bridged = (NSDictionary*)dictionary.get();
    EXPECT_TRUE([bridged isEqual:bridged]);
    EXPECT_TRUE([bridged isEqual:(id)Dictionary(CFSTR("k"), CFSTR("v")).get()]);
    EXPECT_FALSE([bridged isEqual:(id)Dictionary(CFSTR("k"), CFSTR("w")).get()]);
    EXPECT_FALSE([bridged isEqual:(id)Dictionary(CFSTR("l"), CFSTR("v")).get()]);
    EXPECT_FALSE([bridged isEqual:@"k"]);
    EXPECT_FALSE([bridged isEqual:[NSDictionary dictionary]]);
}

TEST_F(BridgedContainers, FoundationsDictionaryGivesKeysAndValuesEachByItself) {
    const CFMutableDictionaryRef dictionary =
        (CFMutableDictionaryRef)[NSMutableDictionary dictionaryWithObject:@"v" forKey:@"k"];
    CFDictionaryAddValue(dictionary, @"k", @"w");
    CFDictionaryAddValue(dictionary, @"l", @"x");
    CFDictionaryRemoveValue(dictionary, @"l");
    const void* key = nullptr;
    const void* value = nullptr;
    CFDictionaryGetKeysAndValues(dictionary, nullptr, nullptr);
    CFDictionaryGetKeysAndValues(dictionary, &key, nullptr);
    EXPECT_TRUE([(id)key isEqual:@"k"]);
    CFDictionaryGetKeysAndValues(dictionary, nullptr, &value);
    EXPECT_TRUE([(id)value isEqual:@"v"]) << "an addition leaves what is there";
    EXPECT_TRUE(CFDictionaryGetValueIfPresent(dictionary, @"k", nullptr));
}

TEST_F(BridgedContainers, AnEnumeratorEndsAfterTheLastKey) {
    const auto dictionary = Dictionary(CFSTR("k"), CFSTR("v"));
    NSEnumerator* keys = [(NSDictionary*)dictionary.get() keyEnumerator];
    EXPECT_EQ([keys nextObject], (id)CFSTR("k"));
    EXPECT_EQ([keys nextObject], nil);
    EXPECT_EQ([keys nextObject], nil);
}

TEST_F(BridgedContainers, AnIndexOutsideAStringOfAnyUnitsRaisesAnException) {
    const UniChar units[] = {0xD800, 'a'};
    const OwnedReference<CFStringRef> text(
        CFStringCreateWithCharacters(kCFAllocatorDefault, units, 2));
    NSString* string = (NSString*)text.get();
    EXPECT_EQ([string characterAtIndex:1], 'a');
    unichar buffer[4];
    EXPECT_TRUE(RaisesRangeException([&] { [string characterAtIndex:2]; }));
    EXPECT_TRUE(RaisesRangeException([&] { [string characterAtIndex:3]; }));
    EXPECT_TRUE(
        RaisesRangeException([&] { [string getCharacters:buffer range:NSMakeRange(1, 2)]; }));
}

}  // namespace
