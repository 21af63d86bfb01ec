// Property lists as the JSON trees in which the reference vectors give them.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include <nlohmann/json.hpp>
#include <string>

// Null for a null object.
nlohmann::json TaggedTree(CFTypeRef object);

// A tree of the vectors in full: "nest" stands for containers within each other.
nlohmann::json FullTree(const nlohmann::json& tree);

// {"domain": ..., "code": ...}; null for a null error.
nlohmann::json TaggedError(CFErrorRef error);

std::string Utf8(CFStringRef string);
