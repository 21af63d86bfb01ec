// A driver beside a desktop of this process, with the real front-application observer.
#pragma once

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <vector>

#include "desktop/Desktop.h"
#include "frontapplication/FrontApplication.h"
#include "platform/Testing/LiveObjects.h"
#include "tests/support/Companion.h"
#include "tests/support/ScriptedDesktop.h"
#include "tests/support/SessionFixture.h"
#include "tests/support/TestDriver.h"
#include "tests/unit/accessibility/DriverBesideEditor.h"

// A driver that sees one scene, from start to end.
class EditorSession {
  public:
    explicit EditorSession(const std::string& scene) : desktop_(scene) {
        driver_.emplace();
        CFWorkspace_StartObservingFrontApplication();
    }
    explicit EditorSession(const nlohmann::json& scene) : EditorSession(scene.dump()) {}

    CVEK_UserSpaceDriver* operator->() { return &**driver_; }
    CVEK_UserSpaceDriver& Driver() { return **driver_; }
    desktop::Desktop& Desktop() { return *desktop_; }

    void Do(const nlohmann::json& command) { desktop_.Run(command.dump()); }

    // Runs the command when the element's role is read for the first time.
    void WhenRead(const std::string& address, const nlohmann::json& command) {
        desktop_link::ElementReference trigger = desktop_->Find("com.apple.FinalCut", address);
        desktop_->onRead = [this, trigger, command, pending = true](
                               const desktop_link::ElementReference& element,
                               const std::string&) mutable {
            if (pending && element == trigger) {
                pending = false;
                Do(command);  // of which the process learns in the middle of its call
            }
        };
    }

    std::optional<unsigned> Value(const char* identifier) {
        unsigned value = 0;
        bool read = driver_->operator->()->GetValueOfElementWithID(String(identifier).get(), value);
        return read ? std::optional(value) : std::nullopt;
    }

    std::vector<std::string> Sent() {
        std::vector<std::string> texts;
        for (const SentMessage& message : TakeSentTexts(companion_, **driver_)) {
            texts.push_back(message.body.substr(0, message.body.size() - 1));
        }
        return texts;
    }

  private:
    platform_testing::AutoreleasePool pool_;
    test_support::SessionFixture session_;
    test_support::ScriptedDesktop desktop_;
    test_support::Companion companion_;
    std::optional<test_support::TestDriver> driver_;
};
