#include <gtest/gtest.h>
#include <malloc.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include "VEKCommon/CLanguageSupport.h"
#include "platform/Testing/LiveObjects.h"
#include "tests/support/HomeFolder.h"
#include "tests/support/OwnedObject.h"
#include "tests/unit/VEKCommon/Failures.h"

namespace {

using platform_testing::LeftOverBy;
using test_support::OwnedObject;

// The expanded path, or "(null)".
std::string Expanded(const std::string& path) {
    char* expanded = CLanguageSupport::CreatePathByExpandingTildePath(path.c_str());
    std::string text = expanded != nullptr ? expanded : "(null)";
    std::free(expanded);
    return text;
}

std::string ExpandedString(CFStringRef path) {
    const OwnedObject<CFStringRef> expanded =
        CLanguageSupport::CreateCFStringByExpandingTildePath(path);
    char text[2048] = "(null)";
    if (expanded.get() != nullptr) {
        EXPECT_TRUE(CFStringGetCString(expanded, text, sizeof text, kCFStringEncodingUTF8));
    }
    return text;
}

class TildePath : public ::testing::Test {
  protected:
    platform_testing::AutoreleasePool pool_;
    test_support::HomeFolder home_;
};

TEST_F(TildePath, TildeBecomesTheHomeFolder) {
    EXPECT_EQ(Expanded("~"), home_.Path().string());
    EXPECT_EQ(ExpandedString(CFSTR("~")), home_.Path().string());
}

TEST_F(TildePath, SlashAtTheEndOfAFolderIsKept) {
    std::filesystem::create_directories(home_.MakersFolder());
    EXPECT_EQ(Expanded("~/Library/Application Support/Solvanto/"),
              home_.MakersFolder().string() + "/");
}

TEST_F(TildePath, PathThatDoesNotExistIsNull) {
    EXPECT_EQ(Expanded("~/Library/Application Support/Solvanto/"), "(null)");
    EXPECT_EQ(ExpandedString(CFSTR("~/Library/Application Support/Solvanto/")), "(null)");
}

TEST_F(TildePath, UnknownUserIsNull) {
    EXPECT_EQ(Expanded("~no-such-user-here/x"), "(null)");
}

TEST_F(TildePath, EmptyPathIsNull) {
    EXPECT_EQ(Expanded(""), "(null)");
    EXPECT_EQ(ExpandedString(CFSTR("")), "(null)");
}

TEST_F(TildePath, OfSeveralMatchesTheFirstIsTaken) {
    std::ofstream(home_.Path() / "b.txt") << "b";
    std::ofstream(home_.Path() / "a.txt") << "a";
    EXPECT_EQ(Expanded("~/*.txt"), (home_.Path() / "a.txt").string());
}

TEST_F(TildePath, PathLongerThanTheFileSystemRepresentationIsNull) {
    const std::string name(2000, 'x');
    const OwnedObject<CFStringRef> path =
        CFStringCreateWithCString(kCFAllocatorDefault, ("/" + name).c_str(), kCFStringEncodingUTF8);
    EXPECT_EQ(ExpandedString(path), "(null)");
    // Its 1024 bytes include the terminator: 1022 slashes and a dot are as much as fits.
    const std::string longest = std::string(1022, '/') + ".";
    const OwnedObject<CFStringRef> fits =
        CFStringCreateWithCString(kCFAllocatorDefault, longest.c_str(), kCFStringEncodingUTF8);
    EXPECT_EQ(ExpandedString(fits), longest);
    const OwnedObject<CFStringRef> tooLong = CFStringCreateWithCString(
        kCFAllocatorDefault, ("/" + longest).c_str(), kCFStringEncodingUTF8);
    EXPECT_EQ(ExpandedString(tooLong), "(null)");
}

TEST_F(TildePath, WhatAFailedRepresentationWroteIsNotExpanded) {
    Failures::Current().representation = true;
    EXPECT_EQ(ExpandedString(CFSTR("anything")), "(null)");
    Failures::Current() = Failures();
}

TEST_F(TildePath, ExpansionLeavesNothingOver) {
    EXPECT_EQ(LeftOverBy([] { ExpandedString(CFSTR("~")); }), "");
    EXPECT_EQ(LeftOverBy([] { ExpandedString(CFSTR("~/absent")); }), "");
}

// Under a sanitizer the system's own count stays 0, and the sanitizer counts.
TEST_F(TildePath, ExpansionLeavesNoBytesOfTheHeapOver) {
    const auto expand = [] {
        ExpandedString(CFSTR("~"));
        Expanded("~");
    };
    expand();  // whatever is made once
    const std::size_t before = mallinfo2().uordblks;
    for (int i = 0; i < 1000; ++i) {
        expand();
    }
    EXPECT_LT(mallinfo2().uordblks, before + 10000);
}

TEST(TildePathDeathTest, NullPathEndsTheProcessWithTheKnownAssertion) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_DEATH(CLanguageSupport::CreatePathByExpandingTildePath(nullptr),
                 "VEKCommon/CLanguageSupport:150: .*CreatePathByExpandingTildePath.*"
                 "path != NULL");
}

}  // namespace
