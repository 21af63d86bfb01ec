// The simulated desktop: what surrounds a process in a log-in session, and how it replies.
//
// Deterministic: the same scene, requests and commands in the same order give the same replies and
// the same log. Time passes only by Advance. One thread.
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "desktop/Bundles.h"
#include "desktop/EventLog.h"
#include "desktop/EventTap.h"
#include "desktop/Model.h"
#include "desktop/Schedule.h"
#include "platform/DesktopLink/Messages.h"

namespace desktop {

using ClientId = std::uint64_t;

struct DesktopOptions {
    // Folder in which the bundles of applications are made and removed again; empty: a temporary
    // folder of the system.
    std::string bundleFolder;
};

class Desktop {
  public:
    // A scene as JSON text or parsed; throws SceneError. See docs/scenes.md.
    explicit Desktop(const std::string& scene, DesktopOptions options = {});
    explicit Desktop(const char* scene, DesktopOptions options = {});
    explicit Desktop(nlohmann::json scene, DesktopOptions options = {});
    ~Desktop();
    Desktop(const Desktop&) = delete;
    Desktop& operator=(const Desktop&) = delete;

    // Nothing means no reply, because the application hangs. The request may be tried again; it has
    // had no effect so far.
    std::optional<desktop_link::Reply> Handle(ClientId client,
                                              const desktop_link::Request& request);

    // Runs one JSON command and returns JSON, {"ok": true, ...} or {"error": "one line"}.
    std::string Run(std::string_view command);

    // Called inside every attribute read, before the value is taken; it may change anything by Run.
    std::function<void(const desktop_link::ElementReference& element, const std::string& attribute)>
        onRead;

    // Advances the time: delayed effects and the playing script take place in their order.
    void Advance(double seconds);
    // Seconds until something is due; none when nothing is.
    std::optional<double> NextDue() const { return schedule_.NextDue(); }

    // Called whenever the front application changes. Returns a number for Unsubscribe.
    int Subscribe(std::function<void(const desktop_link::Notification&)> listener);
    void Unsubscribe(int subscription);

    EventLog& Log() { return log_; }
    // The posted events so far, as the event tap saw them.
    const std::vector<desktop_link::Event>& Events() const { return log_.Events(); }

    // Requests answered so far.
    unsigned long Count(desktop_link::Operation operation) const {
        return counts_[static_cast<std::size_t>(operation)];
    }
    // Attributes read so far, each of several in one request counted.
    unsigned long AttributesRead() const { return attributesRead_; }

    // The element that an address of Address.h names; an empty key is the application in front.
    // Throws SceneError.
    desktop_link::ElementReference Find(const std::string& application, const std::string& address);

    // The present state as a scene.
    std::string Dump();

    // True once a command has asked the desktop to end.
    bool QuitWanted() const { return quitWanted_; }

  private:
    friend class Script;

    using Reply = desktop_link::Reply;
    using Request = desktop_link::Request;

    // An accessibility request whose element and application are there.
    struct Target {
        Application* application;
        Element* element;
    };

    std::optional<Reply> Answer(const Request& request);
    std::optional<Reply> AnswerAccessibility(const Request& request);
    Reply AnswerElement(const Request& request, Target target);
    Reply CopyAttributes(const Request& request);
    desktop::Answer Read(const desktop_link::ElementReference& reference, const std::string& name);
    Reply SetAttribute(const Request& request, Target target);
    Reply PerformAction(const Request& request, Target target);
    void SetNow(const desktop_link::ElementReference& reference, const std::string& attribute,
                const Value& value);
    void PerformNow(const desktop_link::ElementReference& reference, const std::string& action);
    Reply AnswerHello() const;
    Reply AnswerMidiConnect(std::int64_t source);
    nlohmann::ordered_json Named(const char* what, const std::string& name, const Element& element);

    void Activate(Application* application, double gap);
    void SetFront(Application* application);
    void ActivatePrevious();
    Application& Launch(nlohmann::json source);  // throws SceneError
    Application& AddWithBundle(nlohmann::json source);
    void Kill(Application& application);
    void Quit(Application& application);
    void PlayScript();

    Model model_;
    EventLog log_;
    EventTap tap_;
    Bundles bundles_;
    Schedule schedule_;
    std::vector<std::int32_t> activationOrder_;  // process ids, the latest last
    std::uint64_t activations_ = 0;
    std::map<int, std::function<void(const desktop_link::Notification&)>> listeners_;
    int lastSubscription_ = 0;
    std::array<unsigned long, 16> counts_ = {};
    unsigned long attributesRead_ = 0;
    std::size_t nextStep_ = 0;  // of the scene's script
    bool quitWanted_ = false;
};

}  // namespace desktop
