// CFStringCreateWithFormat against measured cases.
#include <cstdlib>

#include "VEKCommon/OwnedReference.h"
#include "tests/unit/CoreFoundation/Vectors.h"

namespace {

using nlohmann::json;
using vectors::Vector;

constexpr char kFile[] = "cfstring_compare_find.json";

// One argument of a case, of the C type that the case names.
struct Argument {
    std::string type;
    json value;
    OwnedReference<CFTypeRef> object;
    std::vector<UInt8> bytes;
};

Argument ArgumentOf(const json& entry) {
    const auto [type, value] = *entry.items().begin();
    Argument argument{type, value, nullptr, {}};
    if (type == "CFString") {
        argument.object.reset(vectors::NewText(value));
    } else if (type == "CFNumber int") {
        const int number = std::stoi(value.get<std::string>());
        argument.object.reset(CFNumberCreate(kCFAllocatorDefault, kCFNumberIntType, &number));
    } else if (type == "CFNumber double") {
        const double number = std::stod(value.get<std::string>());
        argument.object.reset(CFNumberCreate(kCFAllocatorDefault, kCFNumberDoubleType, &number));
    } else if (type == "CFBoolean") {
        argument.object.reset(value == "1" ? kCFBooleanTrue : kCFBooleanFalse);
    } else if (type == "c_string_bytes" && !value.is_null()) {
        argument.bytes = vectors::Bytes(value);
        argument.bytes.push_back(0);
    }
    return argument;
}

// Passes the remaining arguments on, each as its own C type.
template <typename... Passed>
CFStringRef Format(CFStringRef format, const std::vector<Argument>& arguments, Passed... passed) {
    constexpr std::size_t kNext = sizeof...(Passed);
    if (kNext == arguments.size()) {
        return CFStringCreateWithFormat(kCFAllocatorDefault, nullptr, format, passed...);
    }
    if constexpr (kNext < 2) {
        const Argument& next = arguments[kNext];
        const auto number = next.value.is_string() ? next.value.get<std::string>() : "";
        constexpr int kDecimal = 10;
        if (next.type == "int") {
            return Format(format, arguments, passed..., std::stoi(number));
        }
        if (next.type == "uint") {
            return Format(format, arguments, passed..., static_cast<unsigned>(std::stoul(number)));
        }
        if (next.type == "long") {
            return Format(format, arguments, passed..., std::stol(number));
        }
        if (next.type == "ulong" || next.type == "pointer") {
            return Format(format, arguments, passed...,
                          std::strtoul(number.c_str(), nullptr, kDecimal));
        }
        if (next.type == "double") {
            return Format(format, arguments, passed..., std::stod(number));
        }
        if (next.type == "c_string_bytes") {
            return Format(
                format, arguments, passed...,
                next.bytes.empty() ? nullptr : reinterpret_cast<const char*>(next.bytes.data()));
        }
        return Format(format, arguments, passed..., static_cast<CFTypeRef>(next.object.get()));
    }
    std::abort();
}

std::string CheckFormat(const Vector& vector) {
    const OwnedReference<CFStringRef> format(vectors::NewText(vector.input.at("format")));
    std::vector<Argument> arguments;
    for (const json& entry : vector.input.at("args")) {
        arguments.push_back(ArgumentOf(entry));
    }
    const OwnedReference<CFStringRef> text(Format(format.get(), arguments));
    return vectors::CompareText(text.get(), vector.result.at("string"));
}

const vectors::Checks kChecks = {{"format", CheckFormat}};

constexpr char kSystemEncoding[] = "%s was read as UTF-8; on macOS it is MacRoman";
constexpr char kDescription[] =
    "a number described without Foundation; with it, as on macOS, its description is used";
constexpr char kPointer[] = "glibc's look of a null pointer; on macOS it is 0x0";

const vectors::Deviations kDeviations = {
    {"format-023", {"got \"caf\\u221a\\u00a9\"", kSystemEncoding}},
    {"format-024", {"got \"[caf\\u221a\\u00a9]\"", kSystemEncoding}},
    {"format-026", {"got \"[\\u02c7\\u02db]\"", kSystemEncoding}},
    {"format-027", {"got \"\\u00e9\"", kSystemEncoding}},
    {"format-028", {"got \"[\\u00e9]\"", kSystemEncoding}},
    {"format-180", {"got \"0.1\"", kDescription}},
    {"format-184", {"got \"inf\"", kDescription}},
    {"format-187", {"got \"0\"", kDescription}},
    {"format-188", {"got \"1\"", kDescription}},
    {"format-189", {"got \"0x0\"", kPointer}},
};

class StringFormatVector : public testing::TestWithParam<Vector> {};

TEST_P(StringFormatVector, AgreesWithWhatWasMeasured) {
    vectors::Verify(GetParam(), kChecks, kDeviations);
}

INSTANTIATE_TEST_SUITE_P(Measured, StringFormatVector,
                         testing::ValuesIn(vectors::Covered(kFile, kChecks)), vectors::NameOf);

}  // namespace
