#import <Foundation/Foundation.h>

#include <CoreFoundation/CoreFoundation.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <string>

#include "platform/Variants/Variants.h"
#include "tests/support/Paths.h"
#include "tests/support/TemporaryFolder.h"

namespace {

using test_support::TemporaryFolder;
std::string Utf8(id object) {
    return object == nil ? "nil" : [[object description] UTF8String];
}

NSString* Path(const std::filesystem::path& path) {
    return [NSString stringWithUTF8String:path.c_str()];
}

NSURL* FolderURL(const std::filesystem::path& path) {
    return [NSURL fileURLWithPath:Path(path) isDirectory:YES];
}

std::string Info(const std::string& entries) {
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\"><dict>" + entries +
           "</dict></plist>\n";
}

std::string Entry(const std::string& key, const std::string& text) {
    return "<key>" + key + "</key><string>" + text + "</string>";
}

class BundleOnDisk : public ::testing::Test {
  protected:
    void SetUp() override { pool_ = [[NSAutoreleasePool alloc] init]; }
    void TearDown() override { [pool_ release]; }

    void WriteIdentifier(const std::string& identifier) {
        folder_.Write("X.app/Contents/Info.plist", Info(Entry("CFBundleIdentifier", identifier)));
    }

    NSBundle* WithURL(const char* name) {
        return [NSBundle bundleWithURL:FolderURL(folder_.Path() / name)];
    }

    // What a copy of the small program prints when it runs from `folder`.
    std::string PrintedFrom(const std::filesystem::path& folder) {
        const std::filesystem::path program = folder_.Path() / folder / "program";
        std::filesystem::create_directories(program.parent_path());
        std::filesystem::copy_file(KRT9_BINARIES "/print_main_bundle", program);
        FILE* pipe = popen(program.c_str(), "r");
        std::string text;
        for (int c = std::fgetc(pipe); c != EOF; c = std::fgetc(pipe)) {
            text.push_back(static_cast<char>(c));
        }
        EXPECT_EQ(pclose(pipe), 0);
        return text;
    }

    TemporaryFolder folder_;
    NSAutoreleasePool* pool_ = nil;
};

TEST_F(BundleOnDisk, ApplicationBundleAnswersFromContentsInfoPlist) {
    folder_.Write("X.app/Contents/Info.plist", Info(Entry("CFBundleIdentifier", "com.example.x") +
                                                    Entry("CFBundleShortVersionString", "10.4.6") +
                                                    Entry("CFBundleSignature", "KRT9")));
    NSBundle* bundle = WithURL("X.app");
    ASSERT_NE(bundle, nil);
    EXPECT_EQ(Utf8([bundle bundleIdentifier]), "com.example.x");
    EXPECT_EQ(Utf8([bundle bundlePath]), (folder_.Path() / "X.app").string());
    EXPECT_EQ(Utf8([[bundle bundleURL] path]), (folder_.Path() / "X.app").string());
    EXPECT_TRUE([[[bundle bundleURL] absoluteString] hasSuffix:@"/X.app/"]);
    EXPECT_EQ(Utf8([[bundle infoDictionary] objectForKey:@"CFBundleShortVersionString"]), "10.4.6");
    EXPECT_EQ(Utf8([bundle objectForInfoDictionaryKey:@"CFBundleSignature"]), "KRT9");
    EXPECT_EQ([bundle objectForInfoDictionaryKey:@"Absent"], nil);
}

TEST_F(BundleOnDisk, BundleWithPathIsTheSameAsWithURL) {
    folder_.Write("X.app/Contents/Info.plist", Info(Entry("CFBundleIdentifier", "com.example.x")));
    EXPECT_EQ(Utf8([[NSBundle bundleWithPath:Path(folder_.Path() / "X.app")] bundleIdentifier]),
              "com.example.x");
}

TEST_F(BundleOnDisk, BundleURLWithSpacesAndAccentsIsFound) {
    folder_.Write("Café Test.app/Contents/Info.plist",
                  Info(Entry("CFBundleIdentifier", "com.example.cafe")));
    EXPECT_EQ(Utf8([WithURL("Café Test.app") bundleIdentifier]), "com.example.cafe");
}

TEST_F(BundleOnDisk, NoFolderIsNoBundle) {
    folder_.Write("file", "x");
    EXPECT_EQ(WithURL("Missing.app"), nil);
    EXPECT_EQ(WithURL("file"), nil);
    EXPECT_EQ([NSBundle bundleWithPath:nil], nil);
    EXPECT_EQ([NSBundle bundleWithURL:nil], nil);
    EXPECT_EQ([NSBundle bundleWithURL:[NSURL URLWithString:@"http://example.com/X.app"]], nil);
}

TEST_F(BundleOnDisk, BundleWithoutInfoPlistHasNoInformation) {
    std::filesystem::create_directories(folder_.Path() / "X.app/Contents/Resources");
    NSBundle* bundle = WithURL("X.app");
    ASSERT_NE(bundle, nil);
    EXPECT_EQ([bundle infoDictionary], nil);
    EXPECT_EQ([bundle bundleIdentifier], nil);
    EXPECT_EQ([bundle objectForInfoDictionaryKey:@"CFBundleVersion"], nil);
}

TEST_F(BundleOnDisk, InfoPlistThatIsNoDictionaryCountsAsNone) {
    folder_.Write("Array.app/Contents/Info.plist", "<plist><array/></plist>");
    folder_.Write("Broken.app/Contents/Info.plist", "<plist><dict><key>CFBundleIdent");
    folder_.Write("Empty.app/Contents/Info.plist", "");
    for (const char* name : {"Array.app", "Broken.app", "Empty.app"}) {
        EXPECT_EQ([WithURL(name) infoDictionary], nil) << name;
    }
}

TEST_F(BundleOnDisk, IdentifierThatIsNoStringCountsAsNone) {
    folder_.Write("X.app/Contents/Info.plist",
                  Info("<key>CFBundleIdentifier</key><integer>5</integer>"));
    EXPECT_EQ([WithURL("X.app") bundleIdentifier], nil);
}

TEST_F(BundleOnDisk, LocalizedInfoIsPreferred) {
    folder_.Write("X.app/Contents/Info.plist", Info(Entry("CFBundleName", "Plain")));
    folder_.Write("X.app/Contents/Resources/en.lproj/InfoPlist.strings",
                  "CFBundleName = \"Localized\";");
    NSBundle* bundle = WithURL("X.app");
    EXPECT_EQ(Utf8([bundle objectForInfoDictionaryKey:@"CFBundleName"]), "Localized");
    EXPECT_EQ(Utf8([[bundle infoDictionary] objectForKey:@"CFBundleName"]), "Plain");
}

TEST_F(BundleOnDisk, IsRememberedForTheLifeOfTheProcess) {
    WriteIdentifier("com.example.one");
    EXPECT_EQ(Utf8([WithURL("X.app") bundleIdentifier]), "com.example.one");
    WriteIdentifier("com.example.two");
    EXPECT_EQ(Utf8([WithURL("X.app") bundleIdentifier]), "com.example.one");
    EXPECT_EQ(WithURL("X.app"), [NSBundle bundleWithPath:Path(folder_.Path() / "X.app/")]);
    std::filesystem::remove_all(folder_.Path() / "X.app");
    EXPECT_EQ(WithURL("X.app"), nil);
}

TEST_F(BundleOnDisk, IsReadAnewUnderTheVariant) {
    const platform_testing::UnderVariant fresh(platform_testing::Variant::freshBundleInfo);
    WriteIdentifier("com.example.one");
    EXPECT_EQ(Utf8([WithURL("X.app") bundleIdentifier]), "com.example.one");
    WriteIdentifier("com.example.two");
    EXPECT_EQ(Utf8([WithURL("X.app") bundleIdentifier]), "com.example.two");
}

TEST_F(BundleOnDisk, VariantForgetsWhatWasRememberedBefore) {
    WriteIdentifier("com.example.one");
    NSBundle* remembered = WithURL("X.app");
    WriteIdentifier("com.example.two");
    const platform_testing::UnderVariant fresh(platform_testing::Variant::freshBundleInfo);
    EXPECT_NE(WithURL("X.app"), remembered);
    EXPECT_EQ(Utf8([WithURL("X.app") bundleIdentifier]), "com.example.two");
}

TEST_F(BundleOnDisk, FileThatIsNamedLikeALanguageFolderIsNone) {
    folder_.Write("X.app/Contents/Info.plist", Info(Entry("CFBundleDevelopmentRegion", "de")));
    folder_.Write("X.app/Contents/Resources/en.lproj", "a file");
    folder_.Write("X.app/Contents/Resources/de.lproj/Localizable.strings", "k = german;");
    EXPECT_EQ(Utf8([WithURL("X.app") localizedStringForKey:@"k" value:nil table:nil]), "german");
}

TEST_F(BundleOnDisk, LocalizedStringOfNoKeyIsTheValueOrEmpty) {
    folder_.Write("X.app/Contents/Resources/Localizable.strings", "k = v;");
    NSBundle* bundle = WithURL("X.app");
    EXPECT_EQ(Utf8([bundle localizedStringForKey:nil value:@"given" table:nil]), "given");
    EXPECT_EQ(Utf8([bundle localizedStringForKey:nil value:nil table:nil]), "");
}

TEST_F(BundleOnDisk, LocalizedStringFallsBackToTheValueThenTheKey) {
    folder_.Write("X.app/Contents/Resources/Localizable.strings", "\"k\" = \"v\";");
    NSBundle* bundle = WithURL("X.app");
    EXPECT_EQ(Utf8([bundle localizedStringForKey:@"k" value:@"given" table:nil]), "v");
    EXPECT_EQ(Utf8([bundle localizedStringForKey:@"x" value:@"given" table:nil]), "given");
    EXPECT_EQ(Utf8([bundle localizedStringForKey:@"x" value:@"" table:nil]), "x");
    EXPECT_EQ(Utf8([bundle localizedStringForKey:@"x" value:nil table:@""]), "x");
}

TEST_F(BundleOnDisk, PlainProgramHasItsFolderAsMainBundle) {
    EXPECT_EQ(PrintedFrom("bin"),
              (folder_.Path() / "bin").string() + "\n(null)\n(null)\nVEKLanguage\n");
}

TEST_F(BundleOnDisk, PlainProgramReadsInfoAndResourcesBesideIt) {
    folder_.Write("bin/Info.plist", Info(Entry("CFBundleIdentifier", "com.example.tool") +
                                         Entry("CFBundleVersion", "7")));
    folder_.Write("bin/Resources/en.lproj/Localizable.strings", "VEKLanguage = en;");
    EXPECT_EQ(PrintedFrom("bin"),
              (folder_.Path() / "bin").string() + "\ncom.example.tool\n7\nen\n");
}

TEST_F(BundleOnDisk, PlainProgramReadsLanguageFoldersBesideIt) {
    folder_.Write("bin/en.lproj/Localizable.strings", "VEKLanguage = en;");
    EXPECT_THAT(PrintedFrom("bin"), ::testing::EndsWith("\nen\n"));
}

TEST_F(BundleOnDisk, ProgramInABundleHasThatBundleAsMainBundle) {
    folder_.Write("X.app/Contents/Info.plist", Info(Entry("CFBundleIdentifier", "com.example.x") +
                                                    Entry("CFBundleVersion", "1.0.2")));
    folder_.Write("X.app/Contents/Resources/en.lproj/Localizable.strings", "VEKLanguage = en;");
    EXPECT_EQ(PrintedFrom("X.app/Contents/MacOS"),
              (folder_.Path() / "X.app").string() + "\ncom.example.x\n1.0.2\nen\n");
}

TEST_F(BundleOnDisk, ProgramInAFolderNamedLikeABundlesHasThatFolderAsMainBundle) {
    EXPECT_EQ(PrintedFrom("tools/MacOS"),
              (folder_.Path() / "tools/MacOS").string() + "\n(null)\n(null)\nVEKLanguage\n");
}

TEST_F(BundleOnDisk, ReadStreamOfAURLWithoutAPathIsNone) {
    NSURL* url = [NSURL URLWithString:@"mailto:nobody"];
    EXPECT_EQ(CFReadStreamCreateWithFile(kCFAllocatorDefault, (CFURLRef)url), nullptr);
}

TEST(MainBundle, IsTheSameObjectEveryTime) {
    EXPECT_NE([NSBundle mainBundle], nil);
    EXPECT_EQ([NSBundle mainBundle], [NSBundle mainBundle]);
}

}  // namespace
