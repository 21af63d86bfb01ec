#include "desktop/Address.h"

#include "scenes/notation/Addresses.h"
#include "scenes/notation/Json.h"
#include "scenes/notation/SceneError.h"

namespace desktop {

using namespace scene_notation;

namespace {

[[noreturn]] void Refuse(std::string_view address, const std::string& place) {
    throw SceneError(place, "no element " + OneLine(nlohmann::json(address)));
}

// Null when there is none.
Element* Child(Element& parent, const AddressStep& step) {
    std::size_t left = step.number;
    for (Element* child : parent.children) {
        if ((!step.role || child->Role() == *step.role) && left-- == 0) {
            return child;
        }
    }
    return nullptr;
}

Element* FollowPath(Element& root, std::string_view address) {
    const auto path = ParsePath(address);
    Element* element = path ? &root : nullptr;
    for (std::size_t i = 0; element != nullptr && i < path->size(); ++i) {
        element = Child(*element, (*path)[i]);
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
        element = FollowPath(application.root, address);
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
