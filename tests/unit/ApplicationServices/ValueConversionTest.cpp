#include <ApplicationServices/ApplicationServices.h>
#include <gtest/gtest.h>

#include <limits>

#include "platform/ApplicationServices/ValueConversion.h"
#include "platform/DesktopLink/Messages.h"
#include "platform/Testing/LiveObjects.h"
#include "tests/support/OwnedObject.h"

namespace application_services {
namespace {

using desktop_link::Array;
using desktop_link::Bytes;
using desktop_link::Dictionary;
using desktop_link::ElementReference;
using desktop_link::ErrorValue;
using desktop_link::Point;
using desktop_link::Range;
using desktop_link::Rect;
using desktop_link::Size;
using desktop_link::Value;
using Owned = test_support::OwnedObject<CFTypeRef>;

Value Nested(std::size_t depth) {
    Value value{std::int64_t{1}};
    for (std::size_t level = 0; level < depth; ++level) {
        value = Value{Array{std::move(value)}};
    }
    return value;
}

std::vector<Value> OneOfEachType() {
    return {
        Value{},
        Value{true},
        Value{false},
        Value{std::int64_t{0}},
        Value{std::int64_t{1}},
        Value{std::numeric_limits<std::int64_t>::min()},
        Value{std::numeric_limits<std::int64_t>::max()},
        Value{0.5},
        Value{2.0},
        Value{std::string()},
        Value{std::string("AXButton")},
        Value{std::string("01:02:03:04 \xC3\xA9\xF0\x9F\x8E\xAC")},
        Value{std::string("nul\0inside", 10)},
        Value{Point{1, -2}},
        Value{Size{3, 4}},
        Value{Rect{{1, 2}, {3, 4}}},
        Value{Range{-5, 6}},
        Value{ErrorValue{-25205}},
        Value{ElementReference{501, 12}},
        Value{ElementReference{-1, 0}},
        Value{Bytes{}},
        Value{Bytes{{0, 255, 7}}},
        Value{Array{}},
        Value{Array{Value{true}, Value{Array{Value{std::string("inner")}}}}},
        Value{Dictionary{}},
        Value{Dictionary{{"key", Value{std::int64_t{7}}}}},
    };
}

TEST(ValueConversion, EveryTypeOfValueComesBackAsItWas) {
    const std::vector<Value> values = OneOfEachType();
    for (std::size_t i = 0; i < values.size(); ++i) {
        const Owned object = CreateObject(values[i]);
        ASSERT_NE(object.get(), nullptr) << "value " << i;
        EXPECT_EQ(ValueOf(object), values[i]) << "value " << i;
    }
}

TEST(ValueConversion, BooleansAreNotNumbers) {
    const Owned boolean = CreateObject(Value{true});
    const Owned number = CreateObject(Value{std::int64_t{1}});
    EXPECT_EQ(boolean.get(), kCFBooleanTrue);
    EXPECT_EQ(CFGetTypeID(number.get()), CFNumberGetTypeID());
    EXPECT_EQ(ValueOf(kCFBooleanFalse), Value{false});
}

TEST(ValueConversion, NothingAndObjectsThatCannotTravelHaveNoValue) {
    EXPECT_EQ(ValueOf(nullptr), std::nullopt);
    const Owned event = CGEventCreateKeyboardEvent(nullptr, 1, true);
    EXPECT_EQ(ValueOf(event), std::nullopt);
    const void* entries[] = {event.get()};
    const Owned array = CFArrayCreate(kCFAllocatorDefault, entries, 1, &kCFTypeArrayCallBacks);
    EXPECT_EQ(ValueOf(array), std::nullopt);
}

TEST(ValueConversion, DictionaryWithKeysOtherThanTextHasNoValue) {
    const void* key = kCFBooleanTrue;
    const void* entry = CFSTR("value");
    const Owned dictionary =
        CFDictionaryCreate(kCFAllocatorDefault, &key, &entry, 1, &kCFTypeDictionaryKeyCallBacks,
                           &kCFTypeDictionaryValueCallBacks);
    EXPECT_EQ(ValueOf(dictionary), std::nullopt);
}

TEST(ValueConversion, UnpairedSurrogateHasNoText) {
    const UniChar units[] = {'a', 0xD800};
    const Owned text = CFStringCreateWithCharacters(kCFAllocatorDefault, units, 2);
    EXPECT_EQ(TextOf(text), std::nullopt);
    EXPECT_EQ(ValueOf(text), std::nullopt);
}

TEST(ValueConversion, NestingIsFollowedAsDeepAsMessagesNest) {
    const Value deepest = Nested(desktop_link::kDeepestValue);
    const Owned object = CreateObject(deepest);
    ASSERT_NE(object.get(), nullptr);
    EXPECT_EQ(ValueOf(object), deepest);
}

TEST(ValueConversion, NestingBeyondThatEndsWithAFailureInItsPlace) {
    const Owned object = CreateObject(Nested(1000));
    CFTypeRef innermost = object.get();
    std::size_t depth = 0;
    while (CFGetTypeID(innermost) == CFArrayGetTypeID()) {
        innermost = CFArrayGetValueAtIndex(static_cast<CFArrayRef>(innermost), 0);
        ++depth;
    }
    EXPECT_EQ(depth, desktop_link::kDeepestValue + 1);
    EXPECT_EQ(AXValueGetType(static_cast<AXValueRef>(innermost)), kAXValueTypeAXError);
}

// The protocol's own reader lets no such text through; a transport of tests may.
TEST(ValueConversion, EntriesThatAreNoTextAreLeftOut) {
    const Value entries{Dictionary{{"caf\xE9", Value{true}},
                                   {"broken", Value{std::string("caf\xE9")}},
                                   {"good", Value{std::int64_t{7}}}}};
    const Owned object = CreateObject(entries);
    EXPECT_EQ(ValueOf(object), (Value{Dictionary{{"good", Value{std::int64_t{7}}}}}));
}

TEST(ValueConversion, ObjectsNestedBeyondWhatTravelsHaveNoValue) {
    CFTypeRef nested = CFRetain(kCFBooleanTrue);
    for (std::size_t level = 0; level <= desktop_link::kDeepestValue; ++level) {
        const void* inner = nested;
        nested = CFArrayCreate(kCFAllocatorDefault, &inner, 1, &kCFTypeArrayCallBacks);
        CFRelease(inner);
    }
    const Owned object = nested;
    EXPECT_EQ(ValueOf(object), std::nullopt);
    EXPECT_NE(ValueOf(CFArrayGetValueAtIndex(static_cast<CFArrayRef>(nested), 0)), std::nullopt);
}

TEST(ValueConversion, DictionaryWithAnObjectThatCannotTravelHasNoValue) {
    const Owned event = CGEventCreateKeyboardEvent(nullptr, 1, true);
    const void* key = CFSTR("key");
    const void* entry = event.get();
    const Owned dictionary =
        CFDictionaryCreate(kCFAllocatorDefault, &key, &entry, 1, &kCFTypeDictionaryKeyCallBacks,
                           &kCFTypeDictionaryValueCallBacks);
    EXPECT_EQ(ValueOf(dictionary), std::nullopt);
}

TEST(ValueConversion, TextsThatOnlyBeginLikeNamesComeBackAsTheyWere) {
    for (const char* text : {"AX", "AX9", "AXa z", "AX/", "AX:", "AX@", "AX[", "AX`", "AX{"}) {
        const Owned object = CreateObject(Value{std::string(text)});
        EXPECT_EQ(ValueOf(object), Value{std::string(text)});
    }
}

TEST(ValueConversion, NamesBeyondAVocabularyAreStillAnswered) {
    for (int i = 0; i < 2000; ++i) {
        const Value name{"AXName" + std::to_string(i)};
        const Owned object = CreateObject(name);
        EXPECT_EQ(ValueOf(object), name);
    }
}

TEST(ValueConversion, LeavesNoObjectBehind) {
    const Value value{Array{OneOfEachType()}};
    EXPECT_EQ(platform_testing::LeftOverBy([&] {
                  const Owned object = CreateObject(value);
                  ValueOf(object);
              }),
              "");
}

}  // namespace
}  // namespace application_services
