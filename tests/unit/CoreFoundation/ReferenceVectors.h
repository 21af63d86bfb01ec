// The reference vectors: what the open-source Core Foundation returned for the same calls.
#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <map>
#include <nlohmann/json.hpp>
#include <string>
#include <string_view>
#include <vector>

// The whole file of a group, such as "plist_read".
const nlohmann::json& VectorFile(const std::string& group);

// The cases of a group that `isWanted` picks, in the file's order.
std::vector<nlohmann::json> Vectors(const std::string& group,
                                    const std::function<bool(const nlohmann::json&)>& isWanted);

// Bytes from "text" or "hex".
std::string VectorBytes(const nlohmann::json& content);

// What the layer gives for a vector instead of what was measured, and why.
struct KnownDifference {
    nlohmann::json actual;
    std::string_view reason;
};
using KnownDifferences = std::map<std::string, KnownDifference>;
void ExpectVector(const nlohmann::json& vector, const nlohmann::json& actual,
                  const nlohmann::json& expected, const KnownDifferences& known);

// For parameterised tests: the id as a test name.
std::string VectorName(const ::testing::TestParamInfo<nlohmann::json>& info);
