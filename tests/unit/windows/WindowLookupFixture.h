// Lookups of windows on a desktop of the test's own, with a home folder of its own for
// translations.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#import <AppKit/AppKit.h>

#include "frontapplication/FrontApplication.h"
#import "frontapplication/VEK_Driver_FrontAppObserver.h"
#include "platform/DesktopLink/Transport.h"
#include "platform/Testing/LiveObjects.h"
#include "tests/support/DriverInspector.h"
#include "tests/support/FrameworkAnswers.h"
#include "tests/support/HomeFolder.h"
#include "tests/support/ScriptedDesktop.h"
#include "tests/support/SessionFixture.h"
#include "tests/support/TestDriver.h"

inline const char* const kWindows = R"([
  { "AXRole": "AXWindow", "AXTitle": "Event Viewer", "AXPosition": [10, 20], "AXSize": [300, 200] },
  { "AXRole": "AXWindow", "AXTitle": "Final Cut Pro", "AXPosition": [0, 22], "AXSize": [1440, 878] },
  { "AXRole": "AXWindow", "AXTitle": "Farben: Clip 7", "AXPosition": [500, -40], "AXSize": [320.5, 240.75] }
])";

// The editor in front, with these windows.
inline std::string SceneOfWindows(const std::string& windows) {
    return R"({"front": "com.apple.FinalCut", "applications": [{"bundleID": "com.apple.FinalCut",
        "name": "Editor", "pid": 501, "windows": )" +
           windows + "}]}";
}

inline VEK_Driver_TargetWindowInfo Candidate(const char* key, const char* subWindowKey = nullptr) {
    VEK_Driver_TargetWindowInfo info = {};
    strncpy(info.windowName, key, sizeof info.windowName - 1);
    if (subWindowKey != nullptr) {
        info.hasSubWindow = true;
        strncpy(info.subWindowName, subWindowKey, sizeof info.subWindowName - 1);
    }
    return info;
}

// A new shared observer, which knows the application in front.
inline void ObserveAnew() {
    [[[VEK_Driver_FrontAppObserver alloc] init] release];
    CFWorkspace_StartObservingFrontApplication();
}

class WindowLookup : public testing::Test {
  protected:
    explicit WindowLookup(const std::string& scene = SceneOfWindows(kWindows)) : desktop(scene) {
        ObserveAnew();
    }
    ~WindowLookup() override { FrameworkAnswers::Current() = FrameworkAnswers(); }

    // Translations of the driver's current language, which is `tag` from now on.
    void Translate(const std::string& tag, const std::string& entries) {
        SetLanguage(tag);
        home.WriteTranslations(
            tag, R"(<?xml version="1.0" encoding="UTF-8"?><plist version="1.0"><dict>)" + entries +
                     "</dict></plist>");
    }

    void SetLanguage(const std::string& tag) {
        char(&language)[32] = DriverInspector::Language(*driver);
        std::fill(std::begin(language), std::end(language), '\0');
        tag.copy(language, sizeof language - 1);
    }

    // By the array of candidates and by the packed list of them, which must come to the same.
    bool Find(std::vector<VEK_Driver_TargetWindowInfo> candidates) {
        unsigned listIndex = index;
        CGPoint listPosition = position;
        CGSize listSize = size;
        const TargetWindowList list(candidates.data(), candidates.size());
        const bool listFound =
            driver->GetPosAndSizeForTargetWindow(list, listIndex, listPosition, listSize);
        const bool found = driver->GetPosAndSizeForTargetWindow(
            candidates.data(), static_cast<unsigned>(candidates.size()), index, position, size);
        EXPECT_EQ(listFound, found);
        EXPECT_EQ(listIndex, index);
        EXPECT_EQ(listPosition.x, position.x);
        EXPECT_EQ(listPosition.y, position.y);
        EXPECT_EQ(listSize.width, size.width);
        EXPECT_EQ(listSize.height, size.height);
        return found;
    }

    platform_testing::AutoreleasePool pool;
    test_support::HomeFolder home;
    test_support::SessionFixture session;
    test_support::ScriptedDesktop desktop;
    test_support::TestDriver driver;
    unsigned index = 99;
    CGPoint position = {-1, -1};
    CGSize size = {-1, -1};
};

// Windows that a test decides.
class OtherWindows : public WindowLookup {
  protected:
    OtherWindows() : WindowLookup(SceneOfWindows("[]")) {}
    void Use(const std::string& windows) {
        desktop.Load(SceneOfWindows(windows));
        ObserveAnew();
    }
};
