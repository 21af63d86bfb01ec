// Bundles, screens and MIDI devices of macOS, where their documentation leaves room.
#import <AppKit/AppKit.h>

#include <CoreMIDI/CoreMIDI.h>
#include <gtest/gtest.h>

#include "tests/mac/Finding.h"
#include "tests/support/OwnedObject.h"
#include "tests/support/TemporaryFolder.h"

namespace {

using mac_test::ExpectAsInLayer;

void WriteVersion(const test_support::TemporaryFolder& folder, const std::string& version) {
    folder.Write("Editor.app/Contents/Info.plist",
                 "<?xml version=\"1.0\"?><plist version=\"1.0\"><dict>"
                 "<key>CFBundleIdentifier</key><string>org.example.editor</string>"
                 "<key>CFBundleShortVersionString</key><string>" +
                     version + "</string></dict></plist>");
}

std::string ReadVersion(const test_support::TemporaryFolder& folder) {
    @autoreleasepool {
        NSString* path =
            [NSString stringWithUTF8String:(folder.Path() / "Editor.app").string().c_str()];
        NSBundle* bundle = [NSBundle bundleWithURL:[NSURL fileURLWithPath:path]];
        NSString* version = [[bundle infoDictionary] objectForKey:@"CFBundleShortVersionString"];
        return version != nil ? [version UTF8String] : "none";
    }
}

}  // namespace

TEST(BundleOnMac, ReportsWhetherAChangedDictionaryIsReadAnew) {
    const test_support::TemporaryFolder folder;
    WriteVersion(folder, "10.4");
    ASSERT_EQ(ReadVersion(folder), "10.4");
    WriteVersion(folder, "10.5");
    const std::string second = ReadVersion(folder);
    mac_test::Report("which version is read after an update from 10.4 to 10.5 under way", second);
    EXPECT_TRUE(second == "10.4" || second == "10.5") << second;
}

TEST(ScreensOnMac, PointerAgreesWithAnEventsLocation) {
    @autoreleasepool {
        if ([NSScreen mainScreen] == nil) {
            GTEST_SKIP() << "needs a screen";
        }
        // The driver computes the position from AppKit's; it must be the one that Quartz reports.
        const NSPoint pointer = [NSEvent mouseLocation];
        const NSRect main = [[NSScreen mainScreen] frame];
        const test_support::OwnedObject<CGEventRef> event(CGEventCreate(nullptr));
        const CGPoint location = CGEventGetLocation(event);
        EXPECT_NEAR(pointer.x, location.x, 1);
        EXPECT_NEAR(main.size.height - pointer.y, location.y, 1)
            << "the main screen's height is not that of the screen at the origin";
        ExpectAsInLayer("is the main screen of a process without windows at the origin",
                        main.origin.x == 0 && main.origin.y == 0, true);
    }
}

TEST(MidiOnMac, ReportsOfflineDevices) {
    int offline = 0;
    const ItemCount count = MIDIGetNumberOfDevices();
    for (ItemCount index = 0; index < count; ++index) {
        SInt32 isOffline = 0;
        MIDIObjectGetIntegerProperty(MIDIGetDevice(index), kMIDIPropertyOffline, &isOffline);
        offline += isOffline != 0 ? 1 : 0;
    }
    mac_test::Report("MIDI devices listed, and how many of them are offline",
                     std::to_string(count) + ", " + std::to_string(offline));
    if (offline == 0) {
        GTEST_SKIP() << "needs a MIDI device that was plugged in once and is not now";
    }
}
