// Comparing, searching and changing strings, against measured cases.
#include "tests/unit/CoreFoundation/Owned.h"
#include "tests/unit/CoreFoundation/Vectors.h"

namespace {

using nlohmann::json;
using vectors::NewText;
using vectors::Vector;

constexpr char kFile[] = "cfstring_compare_find.json";

Owned<CFStringRef> Text(const Vector& vector, const char* key) {
    return Owned<CFStringRef>(NewText(vector.input.at(key)));
}

Owned<CFMutableStringRef> MutableText(const Vector& vector, const char* key) {
    const Owned<CFStringRef> text = Text(vector, key);
    return Owned<CFMutableStringRef>(CFStringCreateMutableCopy(kCFAllocatorDefault, 0, text.get()));
}

std::string CompareFlag(bool got, const json& expected) {
    return got == expected.get<bool>() ? "" : got ? "got true" : "got false";
}

std::string CheckCompare(const Vector& vector) {
    const CFComparisonResult order =
        CFStringCompare(Text(vector, "a").get(), Text(vector, "b").get(), 0);
    return order == vector.result.at("order").get<CFIndex>() ? "" : "got " + std::to_string(order);
}

std::string CheckFind(const Vector& vector) {
    const CFRange range = CFStringFind(Text(vector, "string").get(), Text(vector, "find").get(), 0);
    return json{range.location, range.length} == vector.result.at("range")
               ? ""
               : "got {" + std::to_string(range.location) + ", " + std::to_string(range.length) +
                     "}";
}

std::string CheckHasPrefix(const Vector& vector) {
    return CompareFlag(
        CFStringHasPrefix(Text(vector, "string").get(), Text(vector, "prefix").get()),
        vector.result.at("result"));
}

std::string CheckHasSuffix(const Vector& vector) {
    return CompareFlag(
        CFStringHasSuffix(Text(vector, "string").get(), Text(vector, "suffix").get()),
        vector.result.at("result"));
}

std::string CheckEqual(const Vector& vector) {
    const Owned<CFStringRef> first = Text(vector, "a");
    const Owned<CFStringRef> second = Text(vector, "b");
    const Owned<CFMutableStringRef> mutableSecond = MutableText(vector, "b");
    const bool equal = CFEqual(first.get(), second.get());
    if (equal && (CFHash(first.get()) != CFHash(second.get()) ||
                  CFHash(first.get()) != CFHash(mutableSecond.get()))) {
        return "equal texts hash differently";
    }
    return CompareFlag(equal, vector.result.at("equal")) +
           CompareFlag(CFEqual(first.get(), mutableSecond.get()),
                       vector.result.at("equal_to_mutable_copy"));
}

std::string CheckIntValue(const Vector& vector) {
    const SInt32 value = CFStringGetIntValue(Text(vector, "text").get());
    return value == vector.result.at("value") ? "" : "got " + std::to_string(value);
}

std::string CompareChanged(CFStringRef text, const Vector& vector) {
    return vectors::CompareText(text, vector.result.at("string"));
}

std::string CheckReplaceAll(const Vector& vector) {
    const Owned<CFMutableStringRef> text = MutableText(vector, "string");
    CFStringReplaceAll(text.get(), Text(vector, "replacement").get());
    return CompareChanged(text.get(), vector);
}

std::string CheckReplaceAllOfNew(const Vector& vector) {
    const Owned<CFMutableStringRef> text(
        CFStringCreateMutable(kCFAllocatorDefault, vector.input.at("max_length")));
    if (CFStringGetLength(text.get()) != 0) {
        return "was not empty";
    }
    CFStringReplaceAll(text.get(), Text(vector, "replacement").get());
    return CompareChanged(text.get(), vector);
}

std::string CheckReplaceAllByItself(const Vector& vector) {
    const Owned<CFMutableStringRef> text = MutableText(vector, "string");
    CFStringReplaceAll(text.get(), text.get());
    return CompareChanged(text.get(), vector);
}

std::string CheckAppend(const Vector& vector) {
    const Owned<CFMutableStringRef> text = MutableText(vector, "string");
    CFStringAppend(text.get(), Text(vector, "appended").get());
    return CompareChanged(text.get(), vector);
}

std::string CheckSubstring(const Vector& vector) {
    const json& range = vector.input.at("range");
    const Owned<CFStringRef> text(CFStringCreateWithSubstring(
        kCFAllocatorDefault, Text(vector, "string").get(), CFRangeMake(range.at(0), range.at(1))));
    return CompareChanged(text.get(), vector);
}

const vectors::Checks kChecks = {
    {"compare", CheckCompare},
    {"find", CheckFind},
    {"hasprefix", CheckHasPrefix},
    {"hassuffix", CheckHasSuffix},
    {"equal", CheckEqual},
    {"intvalue", CheckIntValue},
    {"replaceall", CheckReplaceAll},
    {"replaceall-new", CheckReplaceAllOfNew},
    {"replaceall-self", CheckReplaceAllByItself},
    {"append", CheckAppend},
    {"substring", CheckSubstring},
};

bool HasOptions(const Vector& vector) {
    return vector.input.value("options_value", 0) != 0;
}

std::vector<Vector> CasesWithoutOptions() {
    std::vector<Vector> cases = vectors::Covered(kFile, kChecks);
    std::erase_if(cases, HasOptions);
    return cases;
}

class StringCompareVector : public testing::TestWithParam<Vector> {};

TEST_P(StringCompareVector, AgreesWithWhatWasMeasured) {
    vectors::Verify(GetParam(), kChecks, {});
}

INSTANTIATE_TEST_SUITE_P(Measured, StringCompareVector, testing::ValuesIn(CasesWithoutOptions()),
                         vectors::NameOf);

// The driver compares and searches without options only, so that nothing else is provided.
TEST(StringCompareVectors, AreLeftOutOnlyForFunctionsAndOptionsThatAreNotProvided) {
    const std::map<std::string, int> expected = {
        {"compare-options", 7},   // options
        {"compare-range", 4},     // CFStringCompareWithOptions
        {"doublevalue", 21},      // CFStringGetDoubleValue
        {"find-options", 8},      // options
        {"findandreplace", 11},   // CFStringFindAndReplace
        {"findwithoptions", 21},  // CFStringFindWithOptions
        {"format", 139},          // has its own test
        {"split", 7},             // CFStringCreateArrayBySeparatingStrings
    };
    EXPECT_EQ(vectors::Uncovered(kFile, kChecks), expected);

    std::map<std::string, int> withOptions;
    for (const Vector& vector : vectors::Covered(kFile, kChecks)) {
        withOptions[vector.family] += HasOptions(vector) ? 1 : 0;
    }
    EXPECT_EQ(withOptions["compare"], 33);
    EXPECT_EQ(withOptions["find"], 102);
}

}  // namespace
