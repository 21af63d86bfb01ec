// The bytes of a bundle's files, which may be anything.

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <string>

#include "platform/CoreFoundation/Bundle/BundleFile.h"
#include "platform/CoreFoundation/PropertyList/PropertyListReader.h"
#include "tests/support/Files.h"
#include "tests/support/TemporaryFolder.h"

namespace {

std::optional<std::string> Read(const std::filesystem::path& path) {
    const auto bytes = bundle::ReadFile(path);
    return bytes ? std::optional(std::string(bytes->begin(), bytes->end())) : std::nullopt;
}

TEST(BundleFile, OfAnyLengthIsReadWhole) {
    const test_support::TemporaryFolder folder;
    for (const std::size_t size : {0U, 1U, 65535U, 65536U, 65537U, 1'000'000U}) {
        const std::string text(size, 'x');
        EXPECT_TRUE(Read(folder.Write("file", text)) == text) << size;
    }
}

// Files of /proc report a size of 0.
TEST(BundleFile, OfUnknownLengthIsReadToItsEnd) {
    const std::string text = test_support::ContentOf("/proc/self/limits");
    ASSERT_FALSE(text.empty());
    EXPECT_EQ(std::filesystem::file_size("/proc/self/limits"), 0U);
    EXPECT_EQ(Read("/proc/self/limits"), text);
}

TEST(BundleFile, IsOnlyARegularOne) {
    const test_support::TemporaryFolder folder;
    EXPECT_EQ(Read(folder.Path()), std::nullopt);
    EXPECT_EQ(Read(folder.Path() / "missing"), std::nullopt);
    const auto pipe = folder.Path() / "pipe";
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    EXPECT_EQ(Read(pipe), std::nullopt) << "and nobody waits for its writer";
}

TEST(BundleFile, IsAtMostAsLongAsADocument) {
    const test_support::TemporaryFolder folder;
    const auto file = folder.Write("file", "x");
    std::filesystem::resize_file(file, property_list::kLongestDocument);
    EXPECT_EQ(Read(file).value_or("").size(), property_list::kLongestDocument);
    std::filesystem::resize_file(file, property_list::kLongestDocument + 1);
    EXPECT_EQ(Read(file), std::nullopt);
}

// One of these files of /proc never ends, and the other cannot be read at its beginning.
TEST(BundleFile, IsGivenUpWhenItHasNoEndOrFails) {
    EXPECT_EQ(Read("/proc/self/pagemap"), std::nullopt);
    EXPECT_EQ(Read("/proc/self/mem"), std::nullopt);
}

TEST(BundleFile, MayBeReachedThroughALink) {
    const test_support::TemporaryFolder folder;
    folder.Write("file", "text");
    std::filesystem::create_symlink("file", folder.Path() / "link");
    EXPECT_EQ(Read(folder.Path() / "link"), "text");
}

}  // namespace
