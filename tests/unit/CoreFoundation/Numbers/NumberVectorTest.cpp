// Numbers and booleans, against measured cases.
#include <cmath>

#include "VEKCommon/OwnedReference.h"
#include "scenes/notation/Hex.h"
#include "tests/unit/CoreFoundation/Vectors.h"

namespace {

using nlohmann::json;
using vectors::Vector;

constexpr char kFile[] = "cfnumber.json";
constexpr std::size_t kLargest = 8;
constexpr std::size_t kGuard = 16;
constexpr UInt8 kFill = 0xEE;

bool IsReal(CFNumberType type) {
    return type == kCFNumberFloat32Type || type == kCFNumberFloat64Type ||
           type == kCFNumberFloatType || type == kCFNumberDoubleType ||
           type == kCFNumberCGFloatType;
}

bool IsSingle(CFNumberType type) {
    return type == kCFNumberFloat32Type || type == kCFNumberFloatType;
}

CFTypeRef NewObject(const json& description) {
    if (description.contains("CFBoolean")) {
        return CFRetain(description.at("CFBoolean").get<bool>() ? kCFBooleanTrue : kCFBooleanFalse);
    }
    if (description.contains("CFString")) {
        return vectors::NewText(description.at("CFString"));
    }
    const auto type = static_cast<CFNumberType>(description.at("create_type_value").get<int>());
    const auto value = description.at("value").get<std::string>();
    if (IsSingle(type)) {
        const float real = std::stof(value);
        return CFNumberCreate(kCFAllocatorDefault, type, &real);
    }
    if (IsReal(type)) {
        const double real = std::stod(value);
        return CFNumberCreate(kCFAllocatorDefault, type, &real);
    }
    const long long integer = std::stoll(value);  // little-endian: the low bytes are the value
    return CFNumberCreate(kCFAllocatorDefault, type, &integer);
}

std::string CheckGetValue(const Vector& vector) {
    const OwnedReference<CFTypeRef> number(NewObject(vector.input));
    const auto type = static_cast<CFNumberType>(vector.input.at("get_type_value").get<int>());
    const std::vector<UInt8> expected = vectors::Bytes(vector.result.at("bytes"));
    std::vector<UInt8> buffer(kLargest + kGuard, kFill);
    const bool ok = CFNumberGetValue(static_cast<CFNumberRef>(number.get()), type, buffer.data());
    const std::string hex = scene_notation::FormatHex({buffer.data(), expected.size()});
    if (buffer[expected.size()] != kFill) {
        return "wrote past the value";
    }
    return ok == vector.result.at("ok").get<bool>() &&
                   hex == vector.result.at("bytes").get<std::string>()
               ? ""
               : (ok ? "ok " : "not ok ") + hex;
}

std::string CheckInfo(const Vector& vector) {
    const OwnedReference<CFTypeRef> object(NewObject(vector.input));
    const auto number = static_cast<CFNumberRef>(object.get());
    const CFNumberType type = CFNumberGetType(number);
    const bool isFloat = CFNumberIsFloatType(number);
    return type == vector.result.at("type").get<CFIndex>() &&
                   isFloat == vector.result.at("is_float").get<bool>()
               ? ""
               : "type " + std::to_string(type) + (isFloat ? " float" : "");
}

std::string CheckEqual(const Vector& vector) {
    const OwnedReference<CFTypeRef> first(NewObject(vector.input.at("a")));
    const OwnedReference<CFTypeRef> second(NewObject(vector.input.at("b")));
    const bool equal = CFEqual(first.get(), second.get());
    if (equal != static_cast<bool>(CFEqual(second.get(), first.get()))) {
        return "equal in one direction only";
    }
    if (equal && CFHash(first.get()) != CFHash(second.get())) {
        return "equal numbers hash differently";
    }
    return equal == vector.result.at("equal").get<bool>() ? "" : equal ? "equal" : "not equal";
}

std::string CheckBoolean(const Vector& vector) {
    const OwnedReference<CFTypeRef> object(NewObject(vector.input.at("value")));
    return CFBooleanGetValue(static_cast<CFBooleanRef>(object.get())) ==
                   vector.result.at("value").get<bool>()
               ? ""
               : "got the other value";
}

std::string CheckTypeID(const Vector& vector) {
    const OwnedReference<CFTypeRef> object(NewObject(vector.input.at("object")));
    const CFTypeID type = CFGetTypeID(object.get());
    const OwnedReference<CFStringRef> name(CFCopyTypeIDDescription(type));
    const json got = {{"is_number", type == CFNumberGetTypeID()},
                      {"is_boolean", type == CFBooleanGetTypeID()},
                      {"is_string", type == CFStringGetTypeID()}};
    for (const auto& [key, value] : got.items()) {
        if (value != vector.result.at(key)) {
            return key + " is " + value.dump();
        }
    }
    return vectors::CompareText(name.get(), vector.result.at("type_description"));
}

std::string CheckTypeIDsDiffer(const Vector& vector) {
    const std::set<CFTypeID> types = {
        CFStringGetTypeID(), CFNumberGetTypeID(),     CFBooleanGetTypeID(), CFDataGetTypeID(),
        CFArrayGetTypeID(),  CFDictionaryGetTypeID(), CFNullGetTypeID()};
    constexpr std::size_t kTypes = 7;
    return (types.size() == kTypes) == vector.result.at("distinct").get<bool>() ? ""
                                                                                : "not distinct";
}

const vectors::Checks kChecks = {
    {"getvalue", CheckGetValue},     {"getvalue-c-types", CheckGetValue}, {"info", CheckInfo},
    {"equal", CheckEqual},           {"boolean", CheckBoolean},           {"typeid", CheckTypeID},
    {"typeids", CheckTypeIDsDiffer},
};

bool UsesNumberConstant(const Vector& vector) {
    return vector.input.contains("a") &&
           (vector.input.at("a").contains("constant") || vector.input.at("b").contains("constant"));
}

std::vector<Vector> CasesWithoutNumberConstants() {
    std::vector<Vector> cases = vectors::Covered(kFile, kChecks);
    std::erase_if(cases, UsesNumberConstant);
    return cases;
}

class NumberVector : public testing::TestWithParam<Vector> {};

TEST_P(NumberVector, AgreesWithWhatWasMeasured) {
    vectors::Verify(GetParam(), kChecks, {});
}

INSTANTIATE_TEST_SUITE_P(Measured, NumberVector, testing::ValuesIn(CasesWithoutNumberConstants()),
                         vectors::NameOf);

TEST(NumberVectors, AreLeftOutOnlyForFunctionsAndConstantsThatAreNotProvided) {
    const std::map<std::string, int> expected = {
        {"compare", 26},            // CFNumberCompare
        {"getvalue-constants", 7},  // kCFNumberNaN and the infinities
        {"info-constants", 2},
    };
    EXPECT_EQ(vectors::Uncovered(kFile, kChecks), expected);
    const std::vector<Vector> covered = vectors::Covered(kFile, kChecks);
    EXPECT_EQ(std::count_if(covered.begin(), covered.end(), UsesNumberConstant), 1);
}

}  // namespace
