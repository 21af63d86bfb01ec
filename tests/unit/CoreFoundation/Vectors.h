// Measured inputs and results of Core Foundation, kept as JSON in tests/data/corefoundation. Each
// case is a test of its own, named after its id.
#pragma once

#include <CoreFoundation/CoreFoundation.h>
#include <gtest/gtest.h>

#include <map>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

namespace vectors {

struct Vector {
    std::string id;
    std::string family;
    nlohmann::json input;
    nlohmann::json result;
};

void PrintTo(const Vector& vector, std::ostream* stream);

// Compares one case with what this layer does: empty when they agree, else what was got instead.
using Check = std::string (*)(const Vector& vector);

// Family -> check. Families without an entry are of functions that the layer does not have.
using Checks = std::map<std::string, Check>;

// What the layer gives instead of what was measured, as the check tells it, and why.
struct Deviation {
    std::string got;
    std::string reason;
};
using Deviations = std::map<std::string, Deviation>;  // by case id

std::vector<Vector> Load(const std::string& file);

// The cases for which `checks` has an entry.
std::vector<Vector> Covered(const std::string& file, const Checks& checks);

// How many cases have no entry, by family.
std::map<std::string, int> Uncovered(const std::string& file, const Checks& checks);

// Runs the check. A case with a deviation must give exactly what the deviation says.
void Verify(const Vector& vector, const Checks& checks, const Deviations& deviations);

// The case's id as a test name.
std::string NameOf(const testing::TestParamInfo<Vector>& info);

// Text of a vector as code units: a JSON string, or {"u16": hex} when it has an unpaired surrogate.
std::vector<UniChar> UnitsOf(const nlohmann::json& text);
CFStringRef NewText(const nlohmann::json& text);  // null for null
std::vector<UniChar> UnitsOf(CFStringRef text);
std::string Shown(CFStringRef text);  // for messages: printable ASCII, the rest as \\uXXXX

std::vector<UInt8> Bytes(const std::string& hex);

// "" when `text` holds exactly `expected` (null for null), else a message.
std::string CompareText(CFStringRef text, const nlohmann::json& expected);

}  // namespace vectors
