#include <gtest/gtest.h>

#include <cstring>
#include <set>
#include <string>
#include <vector>

#include "platform/LocalSocket/SocketAddress.h"

namespace local_socket {
namespace {

TEST(SocketFileName, KeepsAPlainName) {
    EXPECT_EQ(SocketFileName("KRT9Background"), "KRT9Background");
    EXPECT_EQ(SocketFileName("VEK_KRT9"), "VEK_KRT9");
    EXPECT_EQ(SocketFileName("com.example.port-1"), "com.example.port-1");
}

TEST(SocketFileName, EncodesWhatCouldLeaveTheFolder) {
    EXPECT_EQ(SocketFileName(".."), "%2E.");
    EXPECT_EQ(SocketFileName("."), "%2E");
    EXPECT_EQ(SocketFileName("../a/b"), "%2E.%2Fa%2Fb");
    EXPECT_EQ(SocketFileName(std::string_view("a\0b", 3)), "a%00b");
    EXPECT_EQ(SocketFileName("#binding"), "%23binding");
    EXPECT_EQ(SocketFileName("=a%b"), "%3Da%25b");
}

TEST(SocketFileName, EncodesTheNeighboursOfLettersAndDigits) {
    EXPECT_EQ(SocketFileName("@AZ[`az{/09:"), "%40AZ%5B%60az%7B%2F09%3A");
}

TEST(SocketFileName, HashesALongName) {
    EXPECT_EQ(SocketFileName(std::string(64, 'a')), std::string(64, 'a'));
    EXPECT_EQ(SocketFileName(std::string(65, 'a')),
              "=635361c48bb9eab14198e76ea8ab7f1a41685d6ad62aa9146d301d4f17eb0ae0");
}

TEST(SocketFileName, GivesEachNameItsOwnFile) {
    const std::vector<std::string> names = {"",
                                            "%",
                                            "a",
                                            "%61",
                                            "%25",
                                            "=",
                                            "#binding",
                                            ".",
                                            "..",
                                            "/",
                                            "a/b",
                                            "a%2Fb",
                                            "A",
                                            "\n",
                                            "é",
                                            "e\xcc\x81",
                                            "\xff\xfe",
                                            std::string(1, '\0'),
                                            std::string(2, '\0'),
                                            std::string(128, 'x'),
                                            std::string(255, 'x'),
                                            std::string(255, '/'),
                                            std::string(22, '\0'),
                                            SocketFileName(std::string(128, 'x'))};
    std::set<std::string> fileNames;
    for (const auto& name : names) {
        const std::string fileName = SocketFileName(name);
        EXPECT_TRUE(fileNames.insert(fileName).second) << fileName << " stands for two names";
        EXPECT_EQ(fileName.find('/'), std::string::npos) << fileName;
        EXPECT_NE(fileName.front(), '.') << fileName;
        EXPECT_NE(fileName.front(), '#') << fileName;
        EXPECT_LE(fileName.size(), 65U) << fileName;
    }
}

TEST(SocketAddress, FitsForTheLongestFileNameAndDescriptor) {
    const std::string fileName = SocketFileName(std::string(255, 'x'));
    const SocketAddress address = AddressInDirectory(2147483647, fileName);
    EXPECT_EQ(std::string(address.address.sun_path), "/proc/self/fd/2147483647/" + fileName);
}

}  // namespace
}  // namespace local_socket
