#include <CoreFoundation/CoreFoundation.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <string>

#include "tests/support/TemporaryFolder.h"
#include "tests/unit/CoreFoundation/PropertyList/TaggedTree.h"

namespace {

using nlohmann::json;
using test_support::TemporaryFolder;

CFPropertyListRef NewPropertyList(const std::string& document,
                                  CFOptionFlags options = kCFPropertyListImmutable,
                                  CFErrorRef* error = nullptr) {
    const CFDataRef data =
        CFDataCreate(kCFAllocatorDefault, reinterpret_cast<const UInt8*>(document.data()),
                     static_cast<CFIndex>(document.size()));
    const CFPropertyListRef root =
        CFPropertyListCreateWithData(kCFAllocatorDefault, data, options, nullptr, error);
    CFRelease(data);
    return root;
}

json Tree(const std::string& document) {
    const CFPropertyListRef root = NewPropertyList(document);
    json tree = TaggedTree(root);
    if (root != nullptr) {
        CFRelease(root);
    }
    return tree;
}

std::string Repeated(const std::string& text, int count) {
    std::string repeated;
    for (int index = 0; index < count; ++index) {
        repeated += text;
    }
    return repeated;
}

std::string BigEndian(std::uint64_t value, std::size_t size) {
    std::string bytes(size, '\0');
    for (std::size_t index = size; index-- > 0; value >>= 8U) {
        bytes[index] = static_cast<char>(value & 0xFFU);
    }
    return bytes;
}

// A binary document of these objects, the first on top; references and offsets of two bytes.
std::string Binary(const std::vector<std::string>& objects) {
    std::string document = "bplist00";
    std::string offsets;
    for (const std::string& object : objects) {
        offsets += BigEndian(document.size(), 2);
        document += object;
    }
    const std::size_t table = document.size();
    return document + offsets + std::string(6, '\0') + "\x02\x02" + BigEndian(objects.size(), 8) +
           BigEndian(0, 8) + BigEndian(table, 8);
}

// A <plist> and a leaf are not levels, and neither is an empty element.
TEST(PropertyList, XmlNestedAsDeepAsAllowedIsRead) {
    for (const char* leaf : {"", "<string>x</string>", "<array/>", "<dict/>"}) {
        for (const std::string plist : {"", "plist"}) {
            const std::string begin = plist.empty() ? "" : "<plist>";
            const std::string end = plist.empty() ? "" : "</plist>";
            const auto arrays = [&](int levels) {
                return Tree(begin + Repeated("<array>", levels) + leaf +
                            Repeated("</array>", levels) + end);
            };
            EXPECT_FALSE(arrays(512).is_null()) << leaf;
            EXPECT_TRUE(arrays(513).is_null()) << leaf;
        }
    }
    const auto dictionaries = [](int levels) {
        return Tree("<plist>" + Repeated("<dict><key>a</key>", levels) + "<string>x</string>" +
                    Repeated("</dict>", levels) + "</plist>");
    };
    EXPECT_FALSE(dictionaries(512).is_null());
    EXPECT_TRUE(dictionaries(513).is_null());
}

TEST(PropertyList, BinaryLeavesCountAsALevel) {
    const auto arrays = [](unsigned levels, const std::string& leaf) {
        std::vector<std::string> objects;
        for (unsigned level = 1; level <= levels; ++level) {
            objects.push_back("\xA1" + BigEndian(level, 2));
        }
        objects.push_back(leaf);
        return Tree(Binary(objects));
    };
    EXPECT_FALSE(arrays(512, "\x51x").is_null());
    EXPECT_TRUE(arrays(513, "\x51x").is_null());
    EXPECT_FALSE(arrays(512, "\xA0").is_null());
}

TEST(PropertyList, XmlIntegersMayHaveBlanksAfterTheirSign) {
    const auto integer = [](const std::string& text) {
        return Tree("<plist><integer>" + text + "</integer></plist>").value("int", "none");
    };
    EXPECT_EQ(integer("- 5"), "-5");
    EXPECT_EQ(integer("\t+\n\u3000 5"), "5");
    EXPECT_EQ(integer("- 0x1F"), "-31");
    EXPECT_EQ(integer("\x7F\u200B\u205F5"), "5");
    for (const char* text : {"- - 5", "- ", "5 ", "\u00A05", "-\u00855", "\u20285", "\u202F5"}) {
        EXPECT_TRUE(Tree(std::string("<plist><integer>") + text + "</integer></plist>").is_null())
            << text;
    }
}

TEST(PropertyList, XmlRealsMayHaveBlanksBeforeTheirSignOnly) {
    const auto real = [](const std::string& text) {
        return Tree("<plist><real>" + text + "</real></plist>").value("real", "none");
    };
    EXPECT_EQ(real("\u00A0\u2003-5"), "-5");
    EXPECT_TRUE(Tree("<plist><real>- 5</real></plist>").is_null());
}

TEST(PropertyList, XmlStringsLoseAByteOrderMarkAtTheirBeginning) {
    for (const char* mark : {"\uFEFF", "&#xFEFF;"}) {
        const std::string document =
            std::string("<plist><string>") + mark + "a\uFEFF</string></plist>";
        EXPECT_EQ(Tree(document), (json{{"string", "a\uFEFF"}}));
    }
}

TEST(PropertyList, HalfAUnitAtTheEndOfUTF16IsLeftOut) {
    std::string document = "\xFF\xFE";
    for (const char c : std::string("{a=b;}")) {
        (document += c) += '\0';
    }
    const json tree = Tree(document);
    EXPECT_FALSE(tree.is_null());
    EXPECT_EQ(Tree(document + "x"), tree);
}

TEST(PropertyList, OpenStepDataHoldsSpacesBetweenItsPairsButNoComments) {
    EXPECT_EQ(Tree("< 01 \n\t02\r\u202803 >"), (json{{"data", "010203"}}));
    for (const char* document : {"<01 /* x */ 02>", "<01\v02>", "<0 1>", "<01", "<", "<0"}) {
        EXPECT_TRUE(Tree(document).is_null()) << document;
    }
}

TEST(PropertyList, OpenStepNestedAsDeepAsAllowedIsRead) {
    EXPECT_FALSE(Tree(Repeated("(", 513) + Repeated(")", 513)).is_null());
    EXPECT_TRUE(Tree(Repeated("(", 514) + Repeated(")", 514)).is_null());
}

TEST(PropertyList, AMillionOpenContainersAreRefusedWithoutExhaustingTheStack) {
    for (const char* open : {"<array>", "<dict><key>a</key>", "<plist>", "(", "{a=", "(("}) {
        EXPECT_TRUE(Tree(Repeated(open, 1'000'000)).is_null()) << open;
    }
}

// Every level holds the level below twice: 2 to the power of 60 leaves, if they were copied.
TEST(PropertyList, BinaryObjectsThatShareTheirPartsAreMadeOnce) {
    std::vector<std::string> objects;
    for (unsigned level = 1; level <= 60; ++level) {
        objects.push_back("\xA2" + BigEndian(level, 2) + BigEndian(level, 2));
    }
    objects.emplace_back("\xA0");
    const CFPropertyListRef root = NewPropertyList(Binary(objects));
    ASSERT_NE(root, nullptr);
    const auto top = static_cast<CFArrayRef>(root);
    EXPECT_EQ(CFArrayGetValueAtIndex(top, 0), CFArrayGetValueAtIndex(top, 1));
    CFRelease(root);
}

// Two towers of shared parts that a set would compare level by level.
TEST(PropertyList, BinarySetOfContainersIsRefused) {
    std::vector<std::string> objects{"\xC2" + BigEndian(1, 2) + BigEndian(2, 2)};
    for (unsigned level = 1; level <= 60; ++level) {
        for (unsigned tower = 0; tower < 2; ++tower) {
            const std::string below = BigEndian(2 * level + 1 + tower, 2);
            objects.push_back(std::string("\xA2").append(below).append(below));
        }
    }
    objects.emplace_back("\xA0");
    objects.emplace_back("\x51x");
    EXPECT_TRUE(Tree(Binary(objects)).is_null());
}

TEST(PropertyList, BinaryCountBeyondTheDocumentIsRefused) {
    for (const char kind : {'\x4F', '\x5F', '\x6F', '\xAF', '\xCF', '\xDF'}) {
        for (const std::uint64_t count :
             {std::uint64_t{200}, std::uint64_t{1} << 40U, UINT64_MAX}) {
            EXPECT_TRUE(Tree(Binary({kind + ("\x13" + BigEndian(count, 8))})).is_null())
                << std::hex << (kind & 0xFF) << " " << count;
        }
    }
}

// A document of 46 kilobytes would mean 60 megabytes.
TEST(PropertyList, BinaryObjectsThatOverlapAreRefused) {
    constexpr std::uint64_t kLength = 30'000;
    constexpr std::uint64_t kObjects = 2'000;
    std::string array = "\xAF\x11" + BigEndian(kObjects, 2);
    for (std::uint64_t object = 1; object <= kObjects; ++object) {
        array += BigEndian(object, 2);
    }
    const std::string data = "\x4F\x11" + BigEndian(kLength, 2);
    std::vector<std::string> objects(kObjects, data);
    objects.insert(objects.begin(), array);
    objects.emplace_back(kLength, 'd');
    EXPECT_TRUE(Tree(Binary(objects)).is_null());
}

TEST(PropertyList, EveryTruncationOfABinaryDocumentIsRefused) {
    const std::string document = Binary({"\xD1" + BigEndian(1, 2) + BigEndian(2, 2), "\x51k",
                                         "\x5F\x10\x12" + std::string(18, 'v')});
    ASSERT_FALSE(Tree(document).is_null());
    for (std::size_t size = 9; size < document.size(); ++size) {
        EXPECT_TRUE(Tree(document.substr(0, size)).is_null()) << size;
    }
}

TEST(PropertyList, OnlyMutableContainersMayBeChanged) {
    const CFPropertyListRef root =
        NewPropertyList("<array><string>a</string></array>", kCFPropertyListMutableContainers);
    const auto array = static_cast<CFMutableArrayRef>(const_cast<void*>(root));
    CFArrayAppendValue(array, CFSTR("b"));
    EXPECT_EQ(CFArrayGetCount(array), 2);
    CFRelease(root);
}

TEST(PropertyList, MutableLeavesMayBeChanged) {
    const CFPropertyListRef root =
        NewPropertyList("<string>a</string>", kCFPropertyListMutableContainersAndLeaves);
    const auto string = static_cast<CFMutableStringRef>(const_cast<void*>(root));
    CFStringReplaceAll(string, CFSTR("b"));
    EXPECT_EQ(Utf8(string), "b");
    CFRelease(root);
}

TEST(PropertyList, BooleansAreTheTwoConstants) {
    const CFPropertyListRef yes = NewPropertyList("<true/>");
    const CFPropertyListRef no = NewPropertyList("<false/>");
    EXPECT_EQ(yes, kCFBooleanTrue);
    EXPECT_EQ(no, kCFBooleanFalse);
    CFRelease(yes);
    CFRelease(no);
}

TEST(PropertyList, NothingIsWrittenOnFailureButTheError) {
    const CFDataRef data = CFDataCreate(kCFAllocatorDefault, nullptr, 0);
    CFPropertyListFormat format = kCFPropertyListBinaryFormat_v1_0;
    EXPECT_EQ(CFPropertyListCreateWithData(kCFAllocatorDefault, data, kCFPropertyListImmutable,
                                           &format, nullptr),
              nullptr);
    EXPECT_EQ(format, kCFPropertyListBinaryFormat_v1_0);
    CFRelease(data);
}

TEST(XmlPropertyList, EndlessEntityNumberIsRefused) {
    EXPECT_TRUE(Tree("<string>&#" + std::string(1000, '9') + ";</string>").is_null());
    EXPECT_TRUE(Tree("<string>&#xD800;</string>").is_null());
}

TEST(XmlPropertyList, DateWithAnEndlessYearIsRefused) {
    EXPECT_TRUE(Tree("<date>" + std::string(1000, '9') + "-01-01T00:00:00Z</date>").is_null());
    EXPECT_TRUE(Tree("<date>99999-01-01T00:00:00Z</date>").is_null());
    EXPECT_TRUE(Tree("<date>2020-14-01T00:00:00Z</date>").is_null());
}

TEST(XmlPropertyList, DateBeforeTheCommonEraIsRead) {
    EXPECT_EQ(Tree("<date>-0001-01-01T00:00:00Z</date>"), (json{{"date", "-63177062400"}}));
}

TEST(XmlPropertyList, TextAfterTheDocumentIsNotLookedAt) {
    EXPECT_EQ(Tree("<plist><true/></plist> and more <"), (json{{"bool", true}}));
}

class PropertyListStream : public ::testing::Test {
  protected:
    CFReadStreamRef NewStream(const std::filesystem::path& file) {
        const CFStringRef path =
            CFStringCreateWithCString(kCFAllocatorDefault, file.c_str(), kCFStringEncodingUTF8);
        const CFURLRef url =
            CFURLCreateWithFileSystemPath(kCFAllocatorDefault, path, kCFURLPOSIXPathStyle, false);
        const CFReadStreamRef stream = CFReadStreamCreateWithFile(kCFAllocatorDefault, url);
        CFRelease(url);
        CFRelease(path);
        return stream;
    }

    json TreeOf(CFReadStreamRef stream, CFIndex length) {
        const CFPropertyListRef root = CFPropertyListCreateWithStream(
            kCFAllocatorDefault, stream, length, kCFPropertyListImmutable, nullptr, nullptr);
        json tree = TaggedTree(root);
        if (root != nullptr) {
            CFRelease(root);
        }
        return tree;
    }

    TemporaryFolder folder_;
};

TEST_F(PropertyListStream, ReadsNoMoreThanTheGivenLength) {
    const CFReadStreamRef stream = NewStream(folder_.Write("two", "a = b;<true/>"));
    ASSERT_TRUE(CFReadStreamOpen(stream));
    EXPECT_EQ(TreeOf(stream, 6), json::parse(R"({"dict":[["a",{"string":"b"}]]})"));
    EXPECT_EQ(TreeOf(stream, 0), (json{{"bool", true}}));
    CFRelease(stream);
}

TEST_F(PropertyListStream, LongFileIsReadWhole) {
    const std::string text(1'000'000, 'x');
    const CFReadStreamRef stream =
        NewStream(folder_.Write("long", "<string>" + text + "</string>"));
    ASSERT_TRUE(CFReadStreamOpen(stream));
    EXPECT_EQ(TreeOf(stream, 0), (json{{"string", text}}));
    CFRelease(stream);
}

TEST_F(PropertyListStream, APipeThatNobodyWritesToDoesNotBlock) {
    const std::filesystem::path pipe = folder_.Path() / "pipe";
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    const CFReadStreamRef stream = NewStream(pipe);
    EXPECT_TRUE(CFReadStreamOpen(stream));
    EXPECT_TRUE(TreeOf(stream, 0).is_null());
    CFRelease(stream);
}

}  // namespace
