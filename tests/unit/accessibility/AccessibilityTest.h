// What the tests of this folder share: an editor in front, and elements of it as objects.
#pragma once

#include <ApplicationServices/ApplicationServices.h>
#include <CoreFoundation/CoreFoundation.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "VEKCommon/OwnedReference.h"
#include "platform/DesktopLink/Transport.h"
#include "platform/Testing/LiveObjects.h"
#include "tests/support/FrontApplicationState.h"
#include "tests/unit/accessibility/EditorTree.h"

// The size of a test that only says something when it is large; less of it where every allocation
// is recorded with its stack. A search that called itself would not survive either.
constexpr int Scaled(int size) {
#if __has_feature(address_sanitizer)
    return size / 20;
#else
    return size;
#endif
}

class AccessibilityTest : public ::testing::Test {
  protected:
    AccessibilityTest() {
        test_support::SetFrontApplication({"com.apple.FinalCut", "10.4.6", EditorTree::kProcess});
    }

    // The element as the Accessibility API hands it out.
    OwnedReference<AXUIElementRef> Object(ElementReference element);
    // An array, as an attribute of the editor would return it.
    OwnedReference<CFArrayRef> Array(Value values);
    OwnedReference<CFArrayRef> ArrayOf(const std::vector<ElementReference>& elements) {
        return Array(Elements(elements));
    }

    // The element with its AXTitle, by which tests tell apart elements of the same identifier.
    ElementReference Titled(ElementReference element, const std::string& title);

    void DrainPool() { pool_.emplace(); }

    std::optional<platform_testing::AutoreleasePool> pool_{std::in_place};
    test_support::ScriptedDesktop desktop_{EditorTree::Scene()};
    EditorTree editor_{desktop_};
};

// AXTitle of the element; "(none)" for null.
std::string TitleOf(AXUIElementRef element);

OwnedReference<CFStringRef> String(const std::string& text);
std::string TextOf(CFStringRef text);  // "(null)" for null

// Exchanges with the desktop while `operation` runs.
template <typename Operation>
unsigned long ExchangesOf(Operation operation) {
    unsigned long before = desktop_link::ExchangeCount();
    operation();
    return desktop_link::ExchangeCount() - before;
}
