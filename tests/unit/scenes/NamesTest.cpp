// Names of attributes and addresses of elements.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

#include "scenes/notation/Addresses.h"
#include "scenes/notation/Names.h"

namespace scene_notation {
namespace {

using testing::ElementsAre;

TEST(Names, OfAttributesBeginWithACapital) {
    EXPECT_TRUE(IsAttributeName("AXValue"));
    EXPECT_TRUE(IsAttributeName("Z"));
    for (const char* name : {"", "actions", "[", "@"}) {
        EXPECT_FALSE(IsAttributeName(name)) << name;
    }
}

TEST(Names, ComeInAnOrderThatTellsElementsApartFirst) {
    std::vector<std::string> names = {"AXWindows",  "AXSize",  "AXValue",
                                      "AXChildren", "AXTitle", "AXIdentifier",
                                      "AXSubrole",  "AXRole",  "AXEnabled"};
    std::sort(names.begin(), names.end(), AttributeComesBefore);
    EXPECT_THAT(names, ElementsAre("AXRole", "AXSubrole", "AXIdentifier", "AXTitle", "AXValue",
                                   "AXEnabled", "AXSize", "AXChildren", "AXWindows"));
}

TEST(Addresses, ArePathsFromTheWindowDown) {
    EXPECT_EQ(PathAddress({}), "/");
    EXPECT_EQ(PathAddress(std::vector<std::size_t>{5}), "/5");
    EXPECT_EQ(PathAddress(std::vector<std::size_t>{1, 3, 0}), "/0/3/1");
}

TEST(Addresses, NameTheApplicationWhereItIsAnother) {
    EXPECT_EQ(OneLine(WriteElement("/0/1")), R"({"element":"/0/1"})");
    EXPECT_EQ(OneLine(WriteElement("/", "a.b")), R"({"element":"/","application":"a.b"})");
    EXPECT_EQ(OneLine(WriteNoElement()), R"({"element":null})");
}

}  // namespace
}  // namespace scene_notation
