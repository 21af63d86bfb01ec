// docs/krt9ctl.md keeps up with the grammar.
#include <fmt/format.h>
#include <fmt/ranges.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <set>
#include <sstream>

#include "accessibility/ElementQuery.h"
#include "tests/support/Paths.h"
#include "tests/unit/tools/Carried.h"
#include "tools/Text.h"

namespace krt9ctl {
namespace {

using testing::HasSubstr;

std::string Documentation() {
    const auto root = std::filesystem::path(KRT9_TEST_DATA).parent_path().parent_path();
    std::ostringstream text;
    text << std::ifstream(root / "docs" / "krt9ctl.md").rdbuf();
    return text.str();
}

TEST(Documentation, ShowsTheExampleOfEveryVerb) {
    const std::string text = Documentation();
    for (const Verb& verb : TheGrammar().verbs) {
        EXPECT_THAT(text, HasSubstr(fmt::format("`{}`", verb.example)));
    }
}

TEST(Documentation, HasTheTableOfExitCodes) {
    const std::string text = Documentation();
    for (const ExitCodeRow& row : ExitCodes()) {
        EXPECT_THAT(text, HasSubstr(fmt::format("| {} | {} | {} |\n", static_cast<int>(row.code),
                                                row.name, row.meaning)));
    }
}

TEST(Documentation, NamesTheRolesThatRequestsLookFor) {
    std::vector<std::string> roles;
    for (CFStringRef role :
         QueryFromWindows(nullptr, kVEK_AXRole_AllValidRoles, nullptr).rolesMeantByAny) {
        roles.push_back(Utf8Of(role).value_or(""));
    }
    const std::string last = roles.back();
    roles.pop_back();
    EXPECT_THAT(Documentation(),
                HasSubstr("requests look for " + fmt::format("{}", fmt::join(roles, ", ")) +
                          " and " + last + " only"));
}

TEST(Documentation, HasTheTableOfKeys) {
    const std::string text = Documentation();
    for (const KeyRow& key : Keys()) {
        const std::string cell = key.name == "`" ? "`` ` ``" : fmt::format("`{}`", key.name);
        EXPECT_THAT(text, HasSubstr(fmt::format("| {} | 0x{:02x} |", cell, key.code)));
    }
}

TEST(Keys, HaveOneNameAndOneCodeEach) {
    std::set<std::string_view> names;
    std::set<std::uint16_t> codes;
    for (const KeyRow& key : Keys()) {
        EXPECT_TRUE(names.insert(key.name).second) << key.name;
        EXPECT_TRUE(codes.insert(key.code).second) << key.name;
    }
}

TEST(Keys, AreListedForPeopleAndPrograms) {
    EXPECT_THAT(Carried({"keys"}).out, HasSubstr("\nspace            0x31\n"));
    EXPECT_THAT(Carried({"keys"}).out, HasSubstr("command+  cmd+\n"));
    EXPECT_THAT(Carried({"keys"}).out, HasSubstr("0x00  (the driver never posts key code 0)"));
    const Json keys = Json::parse(Carried({"keys"}, true).out);
    EXPECT_EQ(keys["keys"].size(), Keys().size());
    EXPECT_EQ(keys["modifiers"][0]["otherName"], "cmd");
}

TEST(GrammarAsJson, HoldsEveryVerbWithItsParameters) {
    const Json grammar = Json::parse(Carried({"grammar"}).out);
    EXPECT_EQ(Carried({"grammar"}, true).out, OneLine(grammar) + "\n");
    ASSERT_EQ(grammar["verbs"].size(), TheGrammar().verbs.size());
    for (std::size_t i = 0; i < grammar["verbs"].size(); ++i) {
        const Verb& verb = TheGrammar().verbs[i];
        EXPECT_EQ(grammar["verbs"][i]["name"], verb.name);
        EXPECT_EQ(grammar["verbs"][i]["parameters"].size(), verb.parameters.size());
    }
    EXPECT_EQ(grammar["exitCodes"].size(), ExitCodes().size());
    EXPECT_EQ(grammar["options"][0]["name"], "--json");
}

}  // namespace
}  // namespace krt9ctl
