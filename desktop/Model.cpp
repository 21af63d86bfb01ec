#include "desktop/Model.h"

#include <algorithm>

namespace desktop {

std::string Application::Key() const {
    return bundleIdentifier ? *bundleIdentifier : "pid:" + std::to_string(pid);
}

desktop_link::Application Application::Description() const {
    return {pid, bundleIdentifier, bundlePath, name};
}

Application* Model::ApplicationWithPid(std::int32_t pid) {
    const auto found = std::find_if(applications.begin(), applications.end(),
                                    [&](const auto& each) { return each->pid == pid; });
    return found == applications.end() ? nullptr : found->get();
}

Application* Model::ApplicationNamed(std::string_view key) {
    const auto found = std::find_if(applications.begin(), applications.end(),
                                    [&](const auto& each) { return each->Key() == key; });
    if (found != applications.end()) {
        return found->get();
    }
    constexpr std::string_view kPrefix = "pid:";
    const auto byPid =
        std::find_if(applications.begin(), applications.end(), [&](const auto& each) {
            return key.starts_with(kPrefix) &&
                   key.substr(kPrefix.size()) == std::to_string(each->pid);
        });
    return byPid == applications.end() ? nullptr : byPid->get();
}

std::string Model::NameOf(const Application& application) {
    std::string key = application.Key();
    return ApplicationNamed(key) == &application ? key : "pid:" + std::to_string(application.pid);
}

Element* Model::Find(const desktop_link::ElementReference& reference) {
    if (reference.id == 0) {
        Application* application = ApplicationWithPid(reference.pid);
        return application == nullptr || application->dead ? nullptr : &application->root;
    }
    Element* element = arena.Find(reference.id);
    return element == nullptr || element->pid != reference.pid ? nullptr : element;
}

std::size_t Model::KeyScreen() const {
    const Element* window = front != nullptr ? front->mainWindow : nullptr;
    if (window == nullptr) {
        return 0;
    }
    const Answer* position = window->Stored("AXPosition");
    const Answer* size = window->Stored("AXSize");
    if (position == nullptr || size == nullptr) {
        return 0;
    }
    const auto* origin = std::get_if<desktop_link::Point>(&position->value.content);
    const auto* extent = std::get_if<desktop_link::Size>(&size->value.content);
    if (origin == nullptr || extent == nullptr) {
        return 0;
    }
    const double x = origin->x + extent->width / 2;
    const double y = origin->y + extent->height / 2;
    for (std::size_t index = 0; index < screens.size(); ++index) {
        const desktop_link::Rect& screen = screens[index];
        if (x >= screen.origin.x && x < screen.origin.x + screen.size.width &&
            y >= screen.origin.y && y < screen.origin.y + screen.size.height) {
            return index;
        }
    }
    return 0;
}

}  // namespace desktop
