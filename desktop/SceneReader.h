// From a scene's JSON to the model. Nothing recurses over the tree of elements.
#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "desktop/Model.h"
#include "scenes/notation/SceneError.h"
#include "scenes/notation/ValueReading.h"

namespace desktop {

class SceneReader {
  public:
    explicit SceneReader(Model& model) : model_(model) {}

    // Fills an empty model. Consumes the JSON while it reads, so that the two are never in
    // memory completely at once. All members throw SceneError; the model is unusable after that.
    void ReadScene(nlohmann::json scene);

    // Adds one application; the model is unchanged after an error.
    Application& AddApplication(nlohmann::json application, const std::string& place);

    // Adds one element, or a tree of them; the model is unchanged after an error.
    Element& AddElement(Element& parent, std::size_t position, nlohmann::json element,
                        const std::string& place);

  private:
    // What can only be read once the whole tree exists: values that mention elements.
    struct Deferred {
        Element* element;
        std::string key;
        nlohmann::json source;
        std::string place;
    };

    Application& ReadApplication(nlohmann::json& source, const std::string& place);
    void ReadChildren(Element& parent, nlohmann::json::array_t sources, const std::string& place);
    Element& ReadElement(std::int32_t pid, nlohmann::json source, const std::string& place,
                         nlohmann::json::array_t* children);
    void ReadAttribute(Element& element, const std::string& key, nlohmann::json& source,
                       const std::string& place);
    void TakeMainWindow(Application& application, Element& window);
    void ResolveDeferred();
    void Resolve(Deferred& deferred);

    Model& model_;
    std::vector<Deferred> deferred_;
};

// Throws SceneError for a name that no scene accepts.
void ExpectAttributeName(const std::string& name, const std::string& place);

// Reads one attribute of an element that is in its tree, as a scene or a command writes it.
void SetFromScene(Model& model, Element& element, const std::string& attribute,
                  const nlohmann::json& source, const std::string& place);

// Resolves addresses; those without an application key belong to `home`.
scene_notation::ElementResolver ResolverFor(Model& model, Application* home);

}  // namespace desktop
