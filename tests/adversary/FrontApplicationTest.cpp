// Malformed front applications: without a bundle, with something that is not a bundle,
// with an unusual Info.plist, with a version that is not one.

#include <CoreFoundation/CoreFoundation.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "VEKCommon/MessageCodes.h"
#include "frontapplication/FrontApplication.h"
#include "platform/DesktopLink/Session.h"
#include "platform/Testing/LiveObjects.h"
#include "platform/Testing/LogCapture.h"
#include "platform/Variants/Variants.h"
#include "tests/adversary/AllocationMeter.h"
#include "tests/adversary/HostileDocuments.h"
#include "tests/support/DriverInspector.h"
#include "tests/support/OwnedObject.h"
#include "tests/support/ScriptedDesktop.h"
#include "tests/support/SessionFixture.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/TestDriver.h"
#include "tests/unit/protocol/Bytes.h"

namespace adversary {

namespace {

constexpr UInt32 kUnknownSignature = 0x3F3F3F3F;  // "????"
constexpr int kProfileOf10_2 = 1;
constexpr int kProfileOf10_4_6 = 5;

class FrontApplication : public testing::Test {
  protected:
    FrontApplication() {
        static const bool observing = [] {
            CFWorkspace_StartObservingFrontApplication();
            return true;
        }();
        (void)observing;
        desktop_link::FrontApplication();  // the first use of a transport makes it listen
        // What was in front before is known: a release of which nothing may be left.
        WriteInfo("before.app", XmlDictionary("<key>CFBundleShortVersionString</key>"
                                              "<string>10.2.1</string>"
                                              "<key>CFBundleSignature</key><string>abcd</string>"));
        Activate(folder_.Path() / "before.app");
        Tick();
        EXPECT_EQ(DriverInspector::Profile(*driver_), kProfileOf10_2);
    }

    void WriteInfo(const std::string& bundle, const std::string& document) {
        folder_.Write(bundle + "/Contents/Info.plist", document);
    }

    std::filesystem::path NewBundle() {
        std::filesystem::create_directories(folder_.Path() / "hostile.app/Contents");
        return folder_.Path() / "hostile.app";
    }

    void Activate(std::optional<std::filesystem::path> bundle,
                  std::optional<std::string> identifier = "com.apple.FinalCut") {
        desktop_link::Application application;
        application.pid = 501;
        application.bundleIdentifier = std::move(identifier);
        application.bundlePath = std::move(bundle);
        const platform_testing::AutoreleasePool pool;
        desktop_.Deliver({application});
    }

    void Tick() {
        const platform_testing::AutoreleasePool pool;
        CVEK_UserSpaceDriver::TimeoutCounterEntry(nullptr, nullptr);
    }

    // Of 'JAcF', which takes note of the front application like a tick.
    void Refresh() {
        const platform_testing::AutoreleasePool pool;
        const Bytes body = Integers({1, 0, 0});
        const test_support::OwnedObject<CFDataRef> data =
            CFDataCreate(kCFAllocatorDefault, body.data(), static_cast<CFIndex>(body.size()));
        EXPECT_EQ(CVEK_UserSpaceDriver::MessageCallbackEntry(nullptr, kJAcF, data, nullptr),
                  nullptr);
    }

    static bool HasVersion() {
        CFStringRef version = nullptr;
        return CFWorkspace_FrontApplicationShortVersion(&version);
    }

    void ExpectProfile(int profile) {
        for (const bool refresh : {false, true}) {
            refresh ? Refresh() : Tick();
            EXPECT_EQ(DriverInspector::Profile(*driver_), profile);
        }
    }

    platform_testing::AutoreleasePool pool_;
    // Several documents take their turns at one place.
    const platform_testing::UnderVariant fresh_{platform_testing::Variant::freshBundleInfo};
    test_support::TemporaryFolder folder_;
    test_support::SessionFixture session_;
    test_support::ScriptedDesktop desktop_;
    test_support::TestDriver driver_;
    platform_testing::LogCapture log_;
};

class FrontBundle : public FrontApplication, public testing::WithParamInterface<HostileFile> {};
class LocalizedInformation : public FrontApplication,
                             public testing::WithParamInterface<HostileFile> {};
class FrontVersion : public FrontApplication, public testing::WithParamInterface<HostileValue> {};

INSTANTIATE_TEST_SUITE_P(WhoseInformationIs, FrontBundle,
                         testing::ValuesIn(FilesWithoutDictionary()),
                         [](const auto& info) { return info.param.name; });
INSTANTIATE_TEST_SUITE_P(Like, LocalizedInformation, testing::ValuesIn(FilesWithoutDictionary()),
                         [](const auto& info) { return info.param.name; });
INSTANTIATE_TEST_SUITE_P(That, FrontVersion, testing::ValuesIn(ValuesThatAreNoText()),
                         [](const auto& info) { return "Is" + info.param.name; });

}  // namespace

TEST_P(FrontBundle, LeavesTheVersionAndTheSignatureUnknown) {
    const std::filesystem::path bundle = NewBundle();
    GetParam().make(bundle / "Contents/Info.plist");
    {
        const AllocationMeter meter;
        Activate(bundle);
        EXPECT_LT(meter.SoFar().peak, MostMemoryFor(bundle / "Contents/Info.plist"));
    }
    EXPECT_EQ(CFWorkspace_CurrentFrontApplicationPID(), 501);
    EXPECT_EQ(CFWorkspace_FrontApplicationSignature(), kUnknownSignature);
    ExpectProfile(kProfileOf10_2);  // the version before it is still the one known
    EXPECT_EQ(platform_testing::LeftOverBy([&] { Activate(bundle); }, 1), "");
}

// Present and no text: the version before it must not stand in for it.
TEST_P(FrontVersion, ClearsTheVersionAndLeavesTheProfile) {
    const std::filesystem::path bundle = NewBundle();
    WriteInfo("hostile.app",
              XmlDictionary("<key>CFBundleShortVersionString</key>" + GetParam().xml +
                            "<key>CFBundleSignature</key>" + GetParam().xml));
    Activate(bundle);
    EXPECT_EQ(CFWorkspace_FrontApplicationSignature(), kUnknownSignature);
    EXPECT_FALSE(HasVersion());
    ExpectProfile(kProfileOf10_2);
    EXPECT_EQ(platform_testing::LeftOverBy([&] { Activate(bundle); }), "");
}

TEST_F(FrontApplication, WithoutABundleOnDiskKeepsTheVersionBefore) {
    const std::filesystem::path file = folder_.Write("file", "no folder");
    const std::filesystem::path pipe = folder_.Path() / "pipe";
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    const std::vector<std::optional<std::filesystem::path>> places = {
        std::nullopt,
        "",
        "relative",
        folder_.Path() / "absent.app",
        file,
        file / "below a file",
        pipe,
        "/dev/zero",
        "/proc/self/mem",
        std::string(100'000, 'x'),
        "/" + std::string(100'000, 'x'),
        std::string("/\xFF\xFE"),
        std::string("/\0hidden", 8),
    };
    for (const auto& place : places) {
        Activate(place);
        EXPECT_EQ(CFWorkspace_FrontApplicationSignature(), kUnknownSignature);
        ExpectProfile(kProfileOf10_2);
        EXPECT_EQ(platform_testing::LeftOverBy([&] { Activate(place); }), "");
    }
}

TEST_F(FrontApplication, WithoutAnIdentifierKeepsTheVersionAndIsNeverTheEditor) {
    for (const auto& identifier :
         {std::optional<std::string>(), std::optional<std::string>("\xFF no UTF-8")}) {
        Activate(folder_.Path() / "before.app", identifier);
        CFStringRef known = nullptr;
        EXPECT_FALSE(CFWorkspace_FrontApplicationBundleID(&known));
        EXPECT_TRUE(HasVersion());
        ExpectProfile(kProfileOf10_2);
    }
}

TEST_F(FrontApplication, MayHaveAnIdentifierOfAnyLength) {
    Activate(folder_.Path() / "before.app", "com.apple.FinalCut" + std::string(1'000'000, '.'));
    ExpectProfile(kProfileOf10_2);
    Activate(folder_.Path() / "before.app", "");
    ExpectProfile(kProfileOf10_2);
}

TEST_F(FrontApplication, VersionIsTakenByItsBeginningWhateverFollows) {
    const struct {
        std::string version;
        int profile;
    } cases[] = {
        {"10.4.6" + std::string(1'000'000, '6'), 5},
        {"10.3.4" + std::string(1'000'000, '\n'), 3},
        {"10.1&#0;", 0},
        {"10.4\xF0\x9F\x98\x80", 4},
        {" 10.2", 5},
        {"", 5},
        {"10,2", 5},
        {"\xEF\xBC\x91\xEF\xBC\x90.2", 5},  // wide digits
        {"10.2\xCC\x81", 1},                // a combining character behind the prefix
    };
    const std::filesystem::path bundle = NewBundle();
    for (const auto& [version, profile] : cases) {
        WriteInfo("hostile.app", XmlDictionary("<key>CFBundleShortVersionString</key><string>" +
                                               version + "</string>"));
        Activate(bundle);
        DriverInspector::Profile(*driver_) = kProfileOf10_4_6;
        ExpectProfile(profile);
        EXPECT_EQ(platform_testing::LeftOverBy([&] { Activate(bundle); }, 1), "")
            << version.substr(0, 20);
    }
}

TEST_F(FrontApplication, InformationOfManyEntriesIsReadAndItsVersionTaken) {
    std::string entries;
    for (int i = 0; i < 4'000; ++i) {
        entries += "<key>key " + std::to_string(i) + "</key><string>value</string>";
    }
    WriteInfo("hostile.app", XmlDictionary(entries + "<key>CFBundleShortVersionString</key>"
                                                     "<string>10.3.4</string>"));
    Activate(folder_.Path() / "hostile.app");
    ExpectProfile(3);
}

TEST_F(FrontApplication, InformationIsReadUpToItsLongestAndNoFurther) {
    const std::string version = "<key>CFBundleShortVersionString</key><string>10.3.4</string>";
    const std::filesystem::path bundle = NewBundle();
    WriteInfo("hostile.app", XmlDictionaryOfSize(kLongestDocument + 1, version));
    Activate(bundle);
    ExpectProfile(kProfileOf10_2);
    WriteInfo("hostile.app", XmlDictionaryOfSize(kLongestDocument, version));
    {
        const AllocationMeter meter;
        Activate(bundle);
        EXPECT_LT(meter.SoFar().peak, MostMemoryFor(bundle / "Contents/Info.plist"));
    }
    ExpectProfile(3);
}

TEST_P(LocalizedInformation, ThatHoldsNoDictionaryLeavesTheInformationItself) {
    const std::filesystem::path bundle = NewBundle();
    WriteInfo("hostile.app", XmlDictionary("<key>CFBundleShortVersionString</key>"
                                           "<string>10.3.4</string>"));
    std::filesystem::create_directories(bundle / "Contents/Resources/en.lproj");
    GetParam().make(bundle / "Contents/Resources/en.lproj/InfoPlist.strings");
    {
        const AllocationMeter meter;
        Activate(bundle);
        EXPECT_LT(meter.SoFar().peak,
                  MostMemoryFor(bundle / "Contents/Resources/en.lproj/InfoPlist.strings"));
    }
    ExpectProfile(3);
}

// The driver logs nothing about any of it.
TEST_F(FrontApplication, HostileOneIsNotLogged) {
    log_.Clear();
    for (const HostileFile& file : FilesWithoutDictionary()) {
        std::filesystem::remove_all(folder_.Path() / "hostile.app");
        const std::filesystem::path bundle = NewBundle();
        file.make(bundle / "Contents/Info.plist");
        Activate(bundle);
        EXPECT_THAT(log_.Lines(), testing::IsEmpty()) << file.name;
        log_.Clear();
    }
}

}  // namespace adversary
