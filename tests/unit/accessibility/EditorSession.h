// A driver beside a desktop of this process, with the real front-application observer.
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "desktop/Desktop.h"
#include "desktop/InProcessTransport.h"
#include "frontapplication/FrontApplication.h"
#include "platform/DesktopLink/Transport.h"
#include "platform/Testing/LiveObjects.h"
#include "tests/support/Companion.h"
#include "tests/support/SessionFixture.h"
#include "tests/support/TestDriver.h"
#include "tests/unit/accessibility/DriverTest.h"

// A driver that sees one scene, from start to end.
class EditorSession {
  public:
    // The scene as JSON or as its text.
    template <class SceneForm>
    explicit EditorSession(const SceneForm& scene) : desktop_(scene) {
        auto transport = std::make_unique<desktop::InProcessTransport>(desktop_);
        transport_ = transport.get();
        desktop_link::SetTransport(std::move(transport));
        driver_.emplace();
        CFWorkspace_StartObservingFrontApplication();
    }
    ~EditorSession() {
        driver_.reset();
        desktop_link::SetTransport(nullptr);
    }
    EditorSession(const EditorSession&) = delete;
    EditorSession& operator=(const EditorSession&) = delete;

    CVEK_UserSpaceDriver* operator->() { return &**driver_; }
    CVEK_UserSpaceDriver& Driver() { return **driver_; }
    desktop::Desktop& Desktop() { return desktop_; }

    void Do(const nlohmann::json& command) {
        EXPECT_TRUE(nlohmann::json::parse(desktop_.Run(command.dump())).contains("ok")) << command;
        transport_->DeliverNotifications();
    }

    // Runs the command when the element's role is read for the first time.
    void WhenRead(const std::string& address, const nlohmann::json& command) {
        desktop_link::ElementReference trigger = desktop_.Find("com.apple.FinalCut", address);
        desktop_.onRead = [this, trigger, command, pending = true](
                              const desktop_link::ElementReference& element,
                              const std::string&) mutable {
            if (pending && element == trigger) {
                pending = false;
                Do(command);
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
        for (const SentMessage& message : TakeSent(companion_, **driver_)) {
            texts.push_back(message.body.substr(0, message.body.size() - 1));
        }
        return texts;
    }

  private:
    platform_testing::AutoreleasePool pool_;
    test_support::SessionFixture folder_;
    test_support::Companion companion_;
    desktop::Desktop desktop_;
    desktop::InProcessTransport* transport_ = nullptr;
    std::optional<test_support::TestDriver> driver_;
};
