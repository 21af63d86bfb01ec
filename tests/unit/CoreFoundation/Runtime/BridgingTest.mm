// Foundation sees Core Foundation's objects as its own, and the other way round.
#import <Foundation/Foundation.h>

#include <CoreFoundation/CoreFoundation.h>
#include <gtest/gtest.h>

#include <limits>

namespace {

class Bridging : public testing::Test {
  protected:
    Bridging() : pool_([[NSAutoreleasePool alloc] init]) {}
    ~Bridging() override { [pool_ drain]; }

  private:
    NSAutoreleasePool* pool_;
};

TEST_F(Bridging, FoundationObjectsHaveTheirCoreFoundationTypes) {
    EXPECT_EQ(CFGetTypeID(@"text"), CFStringGetTypeID());
    EXPECT_EQ(CFGetTypeID([NSMutableString string]), CFStringGetTypeID());
    EXPECT_EQ(CFGetTypeID(@(5)), CFNumberGetTypeID());
    EXPECT_EQ(CFGetTypeID(@(0.5)), CFNumberGetTypeID());
    EXPECT_EQ(CFGetTypeID([NSData data]), CFDataGetTypeID());
    EXPECT_EQ(CFGetTypeID([NSArray array]), CFArrayGetTypeID());
    EXPECT_EQ(CFGetTypeID([NSDictionary dictionary]), CFDictionaryGetTypeID());
    EXPECT_EQ(CFGetTypeID([NSNull null]), CFNullGetTypeID());
}

TEST_F(Bridging, FoundationsBooleansAreCoreFoundations) {
    EXPECT_EQ((CFBooleanRef) @(YES), kCFBooleanTrue);
    EXPECT_EQ((CFBooleanRef)[NSNumber numberWithBool:NO], kCFBooleanFalse);
    EXPECT_EQ(CFGetTypeID(@(YES)), CFBooleanGetTypeID());
    EXPECT_TRUE([(NSNumber*)kCFBooleanTrue boolValue]);
    EXPECT_EQ([(NSNumber*)kCFBooleanTrue intValue], 1);
    EXPECT_TRUE([(id)kCFBooleanTrue isKindOfClass:[NSNumber class]]);
}

TEST_F(Bridging, ALiteralEqualsAConstantString) {
    EXPECT_TRUE(CFEqual(@"the same text", CFSTR("the same text")));
    EXPECT_EQ(CFHash(@"the same text"), CFHash(CFSTR("the same text")));
    EXPECT_TRUE([@"the same text" isEqualToString:(NSString*)CFSTR("the same text")]);
}

TEST_F(Bridging, ANumberAnswersFoundationsQuestions) {
    const SInt64 large = std::numeric_limits<SInt64>::max();
    NSNumber* number =
        [(NSNumber*)CFNumberCreate(kCFAllocatorDefault, kCFNumberSInt64Type, &large) autorelease];
    EXPECT_EQ([number longLongValue], large);
    EXPECT_EQ([number unsignedLongLongValue], static_cast<unsigned long long>(large));
    EXPECT_TRUE([[number stringValue] isEqualToString:@"9223372036854775807"]);
    const double real = -2.5;
    number =
        [(NSNumber*)CFNumberCreate(kCFAllocatorDefault, kCFNumberDoubleType, &real) autorelease];
    EXPECT_EQ([number doubleValue], real);
    EXPECT_EQ([number intValue], -2);
    EXPECT_TRUE([number boolValue]);
    EXPECT_TRUE([[number description] isEqualToString:@"-2.5"]);
    EXPECT_TRUE([number isEqual:@(-2.5)]);
    EXPECT_EQ([number compare:@(1)], NSOrderedAscending);
    EXPECT_STREQ([number objCType], @encode(double));
    double copied = 0;
    [number getValue:&copied];
    EXPECT_EQ(copied, real);
}

TEST_F(Bridging, ANumberTooLargeForAnIntegerDoesNotCrash) {
    for (const double real : {1e300, -1e300, std::numeric_limits<double>::quiet_NaN()}) {
        NSNumber* number = [(NSNumber*)CFNumberCreate(kCFAllocatorDefault, kCFNumberDoubleType,
                                                      &real) autorelease];
        EXPECT_EQ([number longLongValue], std::numeric_limits<long long>::min());
    }
}

TEST_F(Bridging, FoundationsNumbersAreReadAsTheyWereMade) {
    double real = 0;
    EXPECT_TRUE(CFNumberGetValue((CFNumberRef) @(0.1), kCFNumberDoubleType, &real));
    EXPECT_EQ(real, 0.1);
    EXPECT_TRUE(CFNumberIsFloatType((CFNumberRef) @(0.1)));
    SInt32 integer = 0;
    EXPECT_TRUE(CFNumberGetValue((CFNumberRef) @(-7), kCFNumberSInt32Type, &integer));
    EXPECT_EQ(integer, -7);
    EXPECT_FALSE(CFNumberGetValue((CFNumberRef) @(1LL << 40), kCFNumberSInt32Type, &integer));
}

TEST_F(Bridging, AFoundationDictionaryAnswersCoreFoundation) {
    NSMutableDictionary* dictionary = [NSMutableDictionary dictionaryWithObject:@"value"
                                                                         forKey:@"key"];
    auto bridged = (CFMutableDictionaryRef)dictionary;
    EXPECT_EQ(CFDictionaryGetCount(bridged), 1);
    EXPECT_TRUE(CFEqual(CFDictionaryGetValue(bridged, CFSTR("key")), CFSTR("value")));
    EXPECT_EQ(CFDictionaryGetValue(bridged, CFSTR("other")), nullptr);
    CFDictionaryAddValue(bridged, CFSTR("key"), CFSTR("not added"));
    EXPECT_TRUE([[dictionary objectForKey:@"key"] isEqualToString:@"value"]);
    CFDictionarySetValue(bridged, CFSTR("key"), CFSTR("set"));
    EXPECT_TRUE([[dictionary objectForKey:@"key"] isEqualToString:@"set"]);
    const void* key = nullptr;
    const void* value = nullptr;
    CFDictionaryGetKeysAndValues(bridged, &key, &value);
    EXPECT_TRUE(CFEqual(key, CFSTR("key")));
    EXPECT_TRUE(CFEqual(value, CFSTR("set")));
    CFDictionaryRemoveValue(bridged, CFSTR("key"));
    EXPECT_EQ([dictionary count], 0U);
}

TEST_F(Bridging, ACoreFoundationDictionaryAnswersFoundation) {
    auto dictionary = (NSMutableDictionary*)CFDictionaryCreateMutable(
        kCFAllocatorDefault, 0, &kCFTypeDictionaryKeyCallBacks, &kCFTypeDictionaryValueCallBacks);
    constexpr int kEntries = 100;
    for (int index = 0; index < kEntries; ++index) {
        [dictionary setObject:@(index) forKey:[NSString stringWithFormat:@"key %d", index]];
    }
    int sum = 0;
    for (NSString* key in dictionary) {
        sum += [[dictionary objectForKey:key] intValue];
    }
    EXPECT_EQ(sum, kEntries * (kEntries - 1) / 2);
    EXPECT_EQ([[dictionary allKeys] count], 100U);
    EXPECT_TRUE([dictionary isEqual:[NSDictionary dictionaryWithDictionary:dictionary]]);
    EXPECT_TRUE([[NSDictionary dictionaryWithDictionary:dictionary] isEqual:dictionary]);
    [dictionary removeObjectForKey:@"key 7"];
    EXPECT_EQ([dictionary objectForKey:@"key 7"], nil);
    [dictionary release];
}

TEST_F(Bridging, ADictionaryOfPointersIsWalkedAndCopiedWithoutTouchingThem) {
    CFMutableDictionaryRef dictionary =
        CFDictionaryCreateMutable(kCFAllocatorDefault, 0, nullptr, nullptr);
    constexpr std::uintptr_t kEntries = 50;
    for (std::uintptr_t address = 1; address <= kEntries; ++address) {
        CFDictionarySetValue(dictionary, reinterpret_cast<void*>(address), nullptr);
    }
    std::uintptr_t sum = 0;
    for (id key in (NSDictionary*)dictionary) {
        sum += reinterpret_cast<std::uintptr_t>(key);
    }
    EXPECT_EQ(sum, kEntries * (kEntries + 1) / 2);
    NSDictionary* copy = [[(NSDictionary*)dictionary copy] autorelease];
    EXPECT_TRUE(CFEqual(copy, dictionary));
    EXPECT_EQ(CFHash(copy), CFHash(dictionary));
    CFRelease(dictionary);
}

TEST_F(Bridging, ACoreFoundationArrayAnswersFoundation) {
    const void* values[] = {@"a", @"b", @"c"};
    auto array = (NSArray*)CFArrayCreate(kCFAllocatorDefault, values, 3, &kCFTypeArrayCallBacks);
    NSMutableString* joined = [NSMutableString string];
    for (NSString* text in array) {
        [joined appendString:text];
    }
    EXPECT_TRUE([joined isEqualToString:@"abc"]);
    EXPECT_TRUE([[array componentsJoinedByString:@"-"] isEqualToString:@"a-b-c"]);
    EXPECT_EQ([array indexOfObject:@"c"], 2U);
    EXPECT_TRUE([array containsObject:@"b"]);
    EXPECT_TRUE([array isEqual:[NSArray arrayWithArray:array]]);
    EXPECT_TRUE([[NSArray arrayWithArray:array] isEqual:array]);
    EXPECT_TRUE(CFEqual(array, [NSArray arrayWithArray:array]));
    [array release];
}

TEST_F(Bridging, AFoundationArrayAnswersCoreFoundation) {
    NSMutableArray* array = [NSMutableArray arrayWithObjects:@"a", @(2), nil];
    auto bridged = (CFMutableArrayRef)array;
    EXPECT_EQ(CFArrayGetCount(bridged), 2);
    EXPECT_TRUE(CFEqual(CFArrayGetValueAtIndex(bridged, 0), CFSTR("a")));
    EXPECT_TRUE(CFEqual(CFArrayGetValueAtIndex(bridged, 1), @(2)));
    CFArrayAppendValue(bridged, CFSTR("last"));
    EXPECT_TRUE([[array lastObject] isEqualToString:@"last"]);
}

TEST_F(Bridging, DataIsOneObjectForBoth) {
    const UInt8 bytes[] = {1, 2, 3};
    CFDataRef data = CFDataCreate(kCFAllocatorDefault, bytes, sizeof bytes);
    EXPECT_TRUE([(NSData*)data isEqualToData:[NSData dataWithBytes:bytes length:sizeof bytes]]);
    EXPECT_EQ(CFDataGetLength((CFDataRef)[NSMutableData dataWithLength:7]), 7);
    CFRelease(data);
}

}  // namespace
