#include "desktop/Address.h"

#include <algorithm>
#include <charconv>

#include "scenes/notation/Addresses.h"
#include "scenes/notation/Json.h"
#include "scenes/notation/SceneError.h"

namespace desktop {

using namespace scene_notation;

namespace {

[[noreturn]] void Refuse(std::string_view address, const std::string& place) {
    throw SceneError(place, "no element " + OneLine(nlohmann::json(address)));
}

bool IsNumber(std::string_view text, std::size_t& number) {
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    return error == std::errc() && end == text.data() + text.size();
}

Element* ChildWithRole(Element& parent, std::string_view role, std::size_t number) {
    for (Element* child : parent.children) {
        if (child->Role() == role && number-- == 0) {
            return child;
        }
    }
    return nullptr;
}

// "3", "AXGroup" or "AXGroup[2]".
Element* Child(Element& parent, std::string_view step) {
    std::size_t number = 0;
    if (IsNumber(step, number)) {
        return number < parent.children.size() ? parent.children[number] : nullptr;
    }
    const std::size_t bracket = step.find('[');
    if (bracket == std::string_view::npos) {
        return ChildWithRole(parent, step, 0);
    }
    if (step.back() != ']' ||
        !IsNumber(step.substr(bracket + 1, step.size() - bracket - 2), number)) {
        return nullptr;
    }
    return ChildWithRole(parent, step.substr(0, bracket), number);
}

Element* FollowPath(Element& root, std::string_view path) {
    Element* element = path.ends_with('/') ? nullptr : &root;
    while (element != nullptr && !path.empty()) {
        const std::size_t end = path.find('/');
        element = Child(*element, path.substr(0, end));
        path = end == std::string_view::npos ? std::string_view() : path.substr(end + 1);
    }
    return element;
}

Element* WithIdentifier(Element& root, std::string_view identifier) {
    Element* element = &root;
    while ((element = NextInPreOrder(*element, root)) != nullptr) {
        if (element->Text("AXIdentifier") == identifier) {
            return element;
        }
    }
    return nullptr;
}

}  // namespace

Element& ResolveAddress(Application& application, std::string_view address,
                        const std::string& place) {
    Element* element = nullptr;
    if (address.starts_with('/')) {
        element = FollowPath(application.root, address.substr(1));
    } else if (!address.empty()) {
        element = WithIdentifier(application.root, address);
    }
    if (element == nullptr) {
        Refuse(address, place);
    }
    return *element;
}

Element& ResolveAddress(Model& model, const std::string& applicationKey, Application* byDefault,
                        std::string_view address, const std::string& place) {
    Application* application =
        applicationKey.empty() ? byDefault : model.ApplicationNamed(applicationKey);
    if (application == nullptr) {
        throw SceneError(place, applicationKey.empty()
                                    ? "no application is in front; name one"
                                    : "no application " + OneLine(nlohmann::json(applicationKey)));
    }
    return ResolveAddress(*application, address, place);
}

std::string AddressOf(const Element& element) {
    std::vector<std::size_t> path;
    for (const Element* each = &element; each->parent != nullptr; each = each->parent) {
        path.push_back(PositionInParent(*each));
    }
    return PathAddress(path);
}

nlohmann::ordered_json DescribeElement(Model& model, const Application* home,
                                       const desktop_link::ElementReference& reference) {
    const Element* element = model.Find(reference);
    if (element == nullptr) {
        return WriteNoElement();
    }
    const Application* application = model.ApplicationWithPid(element->pid);
    return WriteElement(AddressOf(*element),
                        application == home ? std::string() : model.NameOf(*application));
}

}  // namespace desktop
