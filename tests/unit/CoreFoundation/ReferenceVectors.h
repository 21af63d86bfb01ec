// The reference vectors: what the open-source Core Foundation answered to the same calls.
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

// A vector that cannot pass, and why. It must still fail: one that passes is to leave the list.
using KnownDifferences = std::map<std::string, std::string_view>;
void ExpectVector(const nlohmann::json& vector, const nlohmann::json& actual,
                  const nlohmann::json& expected, const KnownDifferences& known);

// For parameterised tests: the id as a test name.
std::string VectorName(const ::testing::TestParamInfo<nlohmann::json>& info);
