#include "desktop/Desktop.h"

#include <algorithm>
#include <cstddef>
#include <memory>
#include <utility>

#include "desktop/Address.h"
#include "desktop/SceneReader.h"
#include "desktop/SceneWriter.h"
#include "desktop/Script.h"
#include "scenes/notation/Fields.h"
#include "scenes/notation/Json.h"

namespace desktop {

using namespace scene_notation;
using desktop_link::Notification;
using desktop_link::Operation;
using desktop_link::Reply;
using desktop_link::Request;
using nlohmann::ordered_json;

Desktop::Desktop(const std::string& scene, DesktopOptions options)
    : Desktop(ParseJson(scene, ""), std::move(options)) {}

Desktop::Desktop(const char* scene, DesktopOptions options)
    : Desktop(ParseJson(scene, ""), std::move(options)) {}

Desktop::Desktop(nlohmann::json scene, DesktopOptions options)
    : tap_(model_, log_), bundles_(std::move(options.bundleFolder)) {
    SceneReader(model_).ReadScene(std::move(scene));
    for (const auto& application : model_.applications) {
        bundles_.Write(*application);
    }
    if (model_.front != nullptr) {
        activationOrder_.push_back(model_.front->pid);
    }
}

Desktop::~Desktop() = default;

std::optional<Reply> Desktop::Handle(ClientId /*client*/, const Request& request) {
    auto reply = Answer(request);
    if (reply) {
        ++counts_[static_cast<std::size_t>(request.operation) % counts_.size()];
    }
    return reply;
}

std::optional<Reply> Desktop::Answer(const Request& request) {
    Reply reply;
    switch (request.operation) {
        case Operation::hello:
            return AnswerHello();
        case Operation::isTrusted:
            if (request.flag && !model_.trusted) {
                log_.Add({{"trustPrompt", true}});
            }
            reply.flag = model_.trusted;
            return reply;
        case Operation::postEvent:
            tap_.Post(request.event);
            return reply;
        case Operation::keyState:
            reply.flag = tap_.IsKeyDown(request.number);
            return reply;
        case Operation::buttonState:
            reply.flag = tap_.IsButtonDown(request.number);
            return reply;
        case Operation::pointerLocation:
            reply.values.push_back({model_.pointer});
            if (!model_.screens.empty()) {
                reply.values.push_back({model_.screens.front()});
            }
            return reply;
        case Operation::screens:
            for (const desktop_link::Rect& screen : model_.screens) {
                reply.values.push_back({screen});
            }
            if (const std::size_t key = model_.KeyScreen(); key != 0) {
                reply.values.push_back({static_cast<std::int64_t>(key)});
            }
            return reply;
        case Operation::midiDevices:
            reply.text = OneLine(model_.midi.Describe());
            return reply;
        case Operation::midiConnectSource:
            return AnswerMidiConnect(request.number);
        case Operation::script:
            reply.text = Run(request.text);
            reply.error = reply.text.starts_with("{\"error\"") ? kIllegalArgument : kSuccess;
            return reply;
        default:
            return AnswerAccessibility(request);
    }
}

Reply Desktop::AnswerHello() const {
    Reply reply;
    reply.session.emplace();
    reply.session->messagingTimeout = model_.messagingTimeout;
    if (model_.front != nullptr) {
        reply.session->frontApplication = model_.front->Description();
    }
    return reply;
}

Reply Desktop::AnswerMidiConnect(std::int64_t source) {
    Reply reply;
    reply.error = model_.midi.Connect(source);
    log_.Add({{"midi", "connect"}, {"source", source}, {"error", reply.error}});
    return reply;
}

std::string Desktop::Run(std::string_view command) {
    return Script(*this).Run(command);
}

void Desktop::Advance(double seconds) {
    schedule_.Advance(seconds);
}

int Desktop::Subscribe(std::function<void(const Notification&)> listener) {
    listeners_[++lastSubscription_] = std::move(listener);
    return lastSubscription_;
}

void Desktop::Unsubscribe(int subscription) {
    listeners_.erase(subscription);
}

desktop_link::ElementReference Desktop::Find(const std::string& application,
                                             const std::string& address) {
    return ResolveAddress(model_, application, model_.front, address, "").Reference();
}

std::string Desktop::Dump() {
    return WriteScene(model_);
}

void Desktop::Activate(Application* application, double gap) {
    const std::uint64_t activation = ++activations_;
    if (application == model_.front) {
        return;
    }
    if (gap <= 0 || model_.front == nullptr || application == nullptr) {
        SetFront(application);
        return;
    }
    SetFront(nullptr);
    schedule_.After(gap, [this, activation, pid = application->pid] {
        Application* waiting = model_.ApplicationWithPid(pid);
        if (activation == activations_ && waiting != nullptr) {
            SetFront(waiting);
        }
    });
}

void Desktop::SetFront(Application* application) {
    if (application == model_.front) {
        return;
    }
    model_.front = application;
    Notification notification;
    if (application != nullptr) {
        std::erase(activationOrder_, application->pid);
        activationOrder_.push_back(application->pid);
        notification.activated = application->Description();
    }
    log_.Add({{"activated",
               application == nullptr ? ordered_json(nullptr) : ordered_json(application->Key())}});
    const auto listeners = listeners_;  // one of them may unsubscribe
    for (const auto& [number, listener] : listeners) {
        listener(notification);
    }
}

// What was in front before the one that died comes to the front again.
void Desktop::ActivatePrevious() {
    while (!activationOrder_.empty()) {
        Application* previous = model_.ApplicationWithPid(activationOrder_.back());
        if (previous != nullptr && !previous->dead) {
            Activate(previous, model_.activationGap);
            return;
        }
        activationOrder_.pop_back();
    }
    Activate(nullptr, 0);
}

Application& Desktop::Launch(nlohmann::json source) {
    // The process id of one that died may be used again.
    auto& applications = model_.applications;
    const auto dead = std::find_if(applications.begin(), applications.end(), [&](const auto& each) {
        return each->dead && each.get() != model_.front && source.contains("pid") &&
               source["pid"] == each->pid;
    });
    const std::ptrdiff_t place = dead - applications.begin();
    std::unique_ptr<Application> replaced;
    if (dead != applications.end()) {
        replaced = std::move(*dead);
        applications.erase(dead);
    }
    try {
        Application& application = AddWithBundle(std::move(source));
        log_.Add({{"launched", application.Key()}});
        return application;
    } catch (const SceneError&) {
        if (replaced != nullptr) {
            applications.insert(applications.begin() + place, std::move(replaced));
        }
        throw;
    }
}

Application& Desktop::AddWithBundle(nlohmann::json source) {
    Application& application = SceneReader(model_).AddApplication(std::move(source), "application");
    try {
        bundles_.Write(application);
    } catch (const SceneError&) {
        model_.arena.DestroyChildren(application.root);
        model_.applications.pop_back();
        throw;
    }
    return application;
}

void Desktop::Kill(Application& application) {
    log_.Add({{"killed", application.Key()}});
    application.dead = true;
    application.hung = false;
    application.mainWindow = nullptr;
    model_.arena.DestroyChildren(application.root);
    if (&application == model_.front) {
        ActivatePrevious();
    }
}

// Each command at its time after now; one without a time follows the one before it at once.
void Desktop::PlayScript() {
    // All times are read before anything is planned: one that is wrong refuses the whole script.
    std::vector<double> times;
    for (std::size_t step = nextStep_; step < model_.script.size(); ++step) {
        const nlohmann::json* time = Field(model_.script[step], "at");
        const double before = times.empty() ? 0 : times.back();
        times.push_back(
            time == nullptr ? before : ExpectDuration(*time, Place(Place("script", step), "at")));
    }
    for (const double at : times) {
        schedule_.After(at, [this, command = nlohmann::json(model_.script[nextStep_])] {
            Script(*this).RunPlanned(command);
        });
        ++nextStep_;
    }
}

void Desktop::Quit(Application& application) {
    log_.Add({{"quit", application.Key()}});
    application.dead = true;
    model_.arena.DestroyChildren(application.root);
    if (&application == model_.front) {
        ActivatePrevious();
    }
    bundles_.Remove(application);
    std::erase_if(model_.applications,
                  [&](const auto& each) { return each.get() == &application; });
}

}  // namespace desktop
