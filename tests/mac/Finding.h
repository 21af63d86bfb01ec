// What a Mac was found to do, compared with what platform/ does.
#pragma once

#include <gtest/gtest.h>

#include <iostream>
#include <string>

namespace mac_test {

// Prints the finding, and fails when the layer behaves differently: then the layer has to change,
// and the driver's tests have to pass with the finding.
template <typename Value>
void ExpectAsInLayer(const std::string& question, const Value& found, const Value& layer) {
    std::cout << "[    FOUND ] " << question << ": " << testing::PrintToString(found)
              << "; the layer: " << testing::PrintToString(layer) << '\n';
    EXPECT_EQ(found, layer) << question;
}

// For what has no single right value.
inline void Report(const std::string& question, const std::string& found) {
    std::cout << "[    FOUND ] " << question << ": " << found << '\n';
}

}  // namespace mac_test
