#include <gtest/gtest.h>

#include <set>

#include "tools/ExitCode.h"

namespace krt9ctl {
namespace {

TEST(ExitCodes, TellTheirReasonsApart) {
    std::set<int> codes;
    std::set<std::string_view> names;
    for (const ExitCodeRow& row : ExitCodes()) {
        EXPECT_TRUE(codes.insert(static_cast<int>(row.code)).second) << row.name;
        EXPECT_TRUE(names.insert(row.name).second) << row.name;
        EXPECT_EQ(ExitCodeName(row.code), row.name);
    }
}

}  // namespace
}  // namespace krt9ctl
