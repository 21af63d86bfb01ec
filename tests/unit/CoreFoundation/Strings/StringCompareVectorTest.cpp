// Comparing and changing strings, against measured cases.
#include <algorithm>

#include "VEKCommon/OwnedReference.h"
#include "tests/unit/CoreFoundation/Vectors.h"

namespace {

using nlohmann::json;
using vectors::NewText;
using vectors::Vector;

constexpr char kFile[] = "cfstring_compare_find.json";

OwnedReference<CFStringRef> Text(const Vector& vector, const char* key) {
    return OwnedReference<CFStringRef>(NewText(vector.input.at(key)));
}

OwnedReference<CFMutableStringRef> MutableText(const Vector& vector, const char* key) {
    const OwnedReference<CFStringRef> text = Text(vector, key);
    return OwnedReference<CFMutableStringRef>(
        CFStringCreateMutableCopy(kCFAllocatorDefault, 0, text.get()));
}

std::string CompareFlag(bool got, const json& expected) {
    return got == expected.get<bool>() ? "" : got ? "got true" : "got false";
}

std::string CheckCompare(const Vector& vector) {
    const CFComparisonResult order =
        CFStringCompare(Text(vector, "a").get(), Text(vector, "b").get(), 0);
    return order == vector.result.at("order").get<CFIndex>() ? "" : "got " + std::to_string(order);
}

std::string CheckHasPrefix(const Vector& vector) {
    return CompareFlag(
        CFStringHasPrefix(Text(vector, "string").get(), Text(vector, "prefix").get()),
        vector.result.at("result"));
}

std::string CheckEqual(const Vector& vector) {
    const OwnedReference<CFStringRef> first = Text(vector, "a");
    const OwnedReference<CFStringRef> second = Text(vector, "b");
    const OwnedReference<CFMutableStringRef> mutableSecond = MutableText(vector, "b");
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
    const OwnedReference<CFMutableStringRef> text = MutableText(vector, "string");
    CFStringReplaceAll(text.get(), Text(vector, "replacement").get());
    return CompareChanged(text.get(), vector);
}

std::string CheckReplaceAllOfNew(const Vector& vector) {
    const OwnedReference<CFMutableStringRef> text(
        CFStringCreateMutable(kCFAllocatorDefault, vector.input.at("max_length")));
    if (CFStringGetLength(text.get()) != 0) {
        return "was not empty";
    }
    CFStringReplaceAll(text.get(), Text(vector, "replacement").get());
    return CompareChanged(text.get(), vector);
}

std::string CheckReplaceAllByItself(const Vector& vector) {
    const OwnedReference<CFMutableStringRef> text = MutableText(vector, "string");
    CFStringReplaceAll(text.get(), text.get());
    return CompareChanged(text.get(), vector);
}

const vectors::Checks kChecks = {
    {"compare", CheckCompare},
    {"hasprefix", CheckHasPrefix},
    {"equal", CheckEqual},
    {"intvalue", CheckIntValue},
    {"replaceall", CheckReplaceAll},
    {"replaceall-new", CheckReplaceAllOfNew},
    {"replaceall-self", CheckReplaceAllByItself},
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

// The driver compares without options only, so that nothing else is provided.
TEST(StringCompareVectors, AreLeftOutOnlyForFunctionsAndOptionsThatAreNotProvided) {
    const std::map<std::string, int> expected = {
        {"append", 4},            // CFStringAppend
        {"compare-options", 7},   // options
        {"compare-range", 4},     // CFStringCompareWithOptions
        {"doublevalue", 21},      // CFStringGetDoubleValue
        {"find", 137},            // CFStringFind
        {"find-options", 8},      // CFStringFind
        {"findandreplace", 11},   // CFStringFindAndReplace
        {"findwithoptions", 21},  // CFStringFindWithOptions
        {"format", 139},          // has its own test
        {"hassuffix", 10},        // CFStringHasSuffix
        {"split", 7},             // CFStringCreateArrayBySeparatingStrings
        {"substring", 5},         // CFStringCreateWithSubstring
    };
    EXPECT_EQ(vectors::Uncovered(kFile, kChecks), expected);

    const std::vector<Vector> covered = vectors::Covered(kFile, kChecks);
    EXPECT_EQ(std::count_if(covered.begin(), covered.end(), HasOptions), 33);
}

}  // namespace
