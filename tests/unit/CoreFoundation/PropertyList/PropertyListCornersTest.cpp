// Malformed and unusual documents, one corner of the readers each.
#include <CoreFoundation/CoreFoundation.h>
#include <gtest/gtest.h>

#include <string>

#include "VEKCommon/OwnedReference.h"
#include "tests/unit/CoreFoundation/PropertyList/TaggedTree.h"

namespace {

using nlohmann::json;
using namespace std::string_literals;

json Tree(const std::string& document, CFOptionFlags options = kCFPropertyListImmutable) {
    const OwnedReference<CFDataRef> data(
        CFDataCreate(kCFAllocatorDefault, reinterpret_cast<const UInt8*>(document.data()),
                     static_cast<CFIndex>(document.size())));
    const OwnedReference<CFPropertyListRef> root(
        CFPropertyListCreateWithData(kCFAllocatorDefault, data.get(), options, nullptr, nullptr));
    return TaggedTree(root.get());
}

std::string Numbers(std::initializer_list<unsigned> numbers) {
    std::string bytes;
    for (const unsigned number : numbers) {
        bytes += static_cast<char>(number >> 8U);
        bytes += static_cast<char>(number & 0xFFU);
    }
    return bytes;
}

// A binary document of these objects, the first on top; references and offsets of two bytes.
std::string Binary(const std::vector<std::string>& objects) {
    std::string document = "bplist00";
    std::string offsets;
    for (const std::string& object : objects) {
        offsets += Numbers({static_cast<unsigned>(document.size())});
        document += object;
    }
    const auto table = static_cast<unsigned>(document.size());
    return document + offsets + std::string(6, '\0') + "\x02\x02" +
           Numbers({0, 0, 0, static_cast<unsigned>(objects.size())}) + std::string(8, '\0') +
           Numbers({0, 0, 0, table});
}

TEST(BinaryCorners, ObjectsThatReachIntoTheOffsetsAreRefused) {
    const std::vector<std::string> cut = {
        "\x13\0\0\0"s,            // an integer of 8 bytes
        "\x22\0\0"s,              // a real of 4
        "\x23\0\0\0\0"s,          // a real of 8
        "\x33\0\0\0\0"s,          // a date
        "\x83\0\0"s,              // a UID of 4
        "\x4F"s,                  // data without its count
        "\x4F\x13\0"s,            // data with half a count
        "\x4F\x51"s,              // data whose count is text
        "\x24\0\0\0\0\0\0\0\0"s,  // a real of 16
        "\x32\0\0\0\0\0\0\0\0"s,  // a date of 4
        "\x15\0"s,                // an integer of 32
        "\x0A"s,                  // no constant
        "\x70"s,                  // no object
    };
    for (const std::string& object : cut) {
        EXPECT_TRUE(Tree(Binary({object})).is_null()) << testing::PrintToString(object);
    }
}

TEST(BinaryCorners, UIDsAreOf32Bits) {
    EXPECT_EQ(Tree(Binary({"\x84\0\0\0\x01\x02"s})),
              (json{{"other", "CFKeyedArchiverUID"}, {"value", 258}}));
    EXPECT_TRUE(Tree(Binary({"\x84\x01\0\0\0\0"s})).is_null());
}

TEST(BinaryCorners, UIDsAreEqualByTheirValue) {
    const auto made = [](const std::string& object) {
        const std::string document = Binary({object});
        const OwnedReference<CFDataRef> data(
            CFDataCreate(kCFAllocatorDefault, reinterpret_cast<const UInt8*>(document.data()),
                         static_cast<CFIndex>(document.size())));
        return OwnedReference<CFPropertyListRef>(CFPropertyListCreateWithData(
            kCFAllocatorDefault, data.get(), kCFPropertyListImmutable, nullptr, nullptr));
    };
    EXPECT_TRUE(CFEqual(made("\x80\x05").get(), made("\x81\0\x05"s).get()));
    EXPECT_EQ(CFHash(made("\x80\x05").get()), CFHash(made("\x81\0\x05"s).get()));
    EXPECT_FALSE(CFEqual(made("\x80\x05").get(), made("\x80\x06").get()));
    EXPECT_FALSE(CFEqual(made("\x80\x05").get(), made("\x10\x05").get())) << "a number";
    const OwnedReference<CFURLRef> url(
        CFURLCreateWithFileSystemPath(nullptr, CFSTR("/"), kCFURLPOSIXPathStyle, true));
    EXPECT_FALSE(CFEqual(made("\x80\x05").get(), url.get()));
}

TEST(BinaryCorners, OffsetsThatCannotReachTheTableAreRefused) {
    const std::string body = "bplist00\x4F\x11\x01\x2C" + std::string(300, 'x');
    const auto table = static_cast<unsigned>(body.size());
    const auto document = [&](const std::string& offsets, char size) {
        return body + offsets + std::string(6, '\0') + size + '\x01' + Numbers({0, 0, 0, 1}) +
               std::string(8, '\0') + Numbers({0, 0, 0, table});
    };
    EXPECT_FALSE(Tree(document("\0\x08"s, '\x02')).is_null());
    EXPECT_TRUE(Tree(document("\x08", '\x01')).is_null());
}

TEST(BinaryCorners, KeysThatReferToNoObjectAreRefused) {
    EXPECT_TRUE(Tree(Binary({"\xD1\0\x07\0\x01"s, "\x51x"})).is_null());
    EXPECT_TRUE(Tree(Binary({"\xD1\0\x01\0\x07"s, "\x51x"})).is_null());
    EXPECT_FALSE(Tree(Binary({"\xD1\0\x01\0\x01"s, "\x51x"})).is_null());
}

TEST(BinaryCorners, SetsHoldAnythingButContainers) {
    const std::vector<std::string> leaves = {"\x51x", "\x09", "\x41x", "\x10\x05",
                                             "\x33\0\0\0\0\0\0\0\0"s};
    for (const std::string& leaf : leaves) {
        EXPECT_EQ(Tree(Binary({"\xC1\0\x01"s, leaf})), (json{{"other", "CFSet"}}))
            << testing::PrintToString(leaf);
    }
    EXPECT_TRUE(Tree(Binary({"\xC1\0\x01"s, "\xA0"})).is_null());
    EXPECT_TRUE(Tree(Binary({"\xC1\0\x07"s})).is_null()) << "refers to no object";
    EXPECT_TRUE(Tree(Binary({"\xC1\0\x01"s, "\x80\x05"})).is_null()) << "a UID";
}

TEST(OpenStepCorners, EscapesAreThoseOfC) {
    EXPECT_EQ(Tree(R"("\a\b\f\n\r\t\v\"\q")"), (json{{"string", "\a\b\f\n\r\t\v\"q"}}));
    EXPECT_EQ(Tree(R"("\1\1012\8")"), (json{{"string",
                                             "\x01"
                                             "A28"}}));
    EXPECT_EQ(Tree(R"("\18")"), (json{{"string",
                                       "\x01"
                                       "8"}}));
    EXPECT_EQ(Tree(R"("\U00e9\U41x\Ux")"), (json{{"string", "\u00e9Ax\0x"s}}));
    EXPECT_EQ(Tree("\"\\\n\""), (json{{"string", "\n"}}));
}

TEST(OpenStepCorners, TextMayEndAnywhereWithoutBeingRead) {
    for (const char* document :
         {"\"a", "\"a\\", "\"a\\1", "\"a\\U00", "(a", "(a,", "(a b)", "{a=b;", "{a=b}", "{a",
          "{\"a", "{a=", "(a) b", "{\"", "a b", "a=b; c=\"", "\"a\" \"", "%", "a %"}) {
        EXPECT_TRUE(Tree(document).is_null()) << document;
    }
}

TEST(OpenStepCorners, LineAndParagraphSeparatorsAreSpace) {
    const json expected{{"array", json::array({json{{"string", "a"}}})}};
    EXPECT_EQ(Tree("(\u2028a\u2029)"), expected);
    EXPECT_EQ(Tree("( // x\u2028a /* y */ )"), expected);
}

TEST(TextCorners, TheDeclarationNamesTheEncoding) {
    const auto read = [](const std::string& declaration, const std::string& text) {
        return Tree("<?xml version=\"1.0\" " + declaration + "?><string>" + text + "</string>");
    };
    const json euro{{"string", "\u20ac"}};
    EXPECT_EQ(read("encoding=\"windows-1252\"", "\x80"), euro);
    EXPECT_EQ(read("encoding='UTF-8'", "\u20ac"), euro);
    EXPECT_EQ(read("encoding=UTF-8", "\u20ac"), euro) << "without quotes it names none";
    EXPECT_EQ(read("encoding=\"windows-1252", "\u20ac"), euro) << "without its end it names none";
    EXPECT_EQ(read("encoding=", "\u20ac"), euro);
    EXPECT_TRUE(read("encoding=\"no-such\"", "a").is_null());
}

TEST(XmlCorners, EmptyAndUnfinishedElementsAreRefused) {
    for (const char* document :
         {"<plist/>", "<plist><true/><!-- ", "<array><!-- ", "<dict><key>a</key><!-- ", "<data/>",
          "<date/>", "<real/>", "<integer/>", "<plist><true/><!DOCTYPE x></plist>"}) {
        EXPECT_TRUE(Tree(document).is_null()) << document;
    }
    EXPECT_EQ(Tree("<array>\r<true/>\r</array>"),
              (json{{"array", json::array({json{{"bool", true}}})}}));
}

TEST(XmlCorners, DatesHaveTwoDigitsInEveryField) {
    for (const char* date :
         {"020-01-01T00:00:00Z", "2020-01-01T0:00:00Z", "2020-01-01T00:0:00Z",
          "2020-01-01T00-00:00Z", "2020-01-01T00:00:00", "2020-01-01T00:00:00Zx"}) {
        EXPECT_TRUE(Tree("<date>"s + date + "</date>").is_null()) << date;
    }
}

TEST(XmlCorners, NumbersBeyond64BitsAndOtherAlphabetsAreRefused) {
    for (const char* element :
         {"<integer>18446744073709551616</integer>", "<integer>184467440737095516150</integer>",
          "<real>1\u00e9</real>", "<real>\u0665</real>", "<data>\u00e9</data>"}) {
        EXPECT_TRUE(Tree(element).is_null()) << element;
    }
}

TEST(XmlCorners, WhatIsNoBase64IsLeftOut) {
    const json expected{{"data", "616263"}};
    EXPECT_EQ(Tree("<data>{Y~\x01W\nJ-j}</data>"), expected);
    EXPECT_EQ(Tree("<data>YWJj</data>", kCFPropertyListMutableContainersAndLeaves), expected);
}

}  // namespace
