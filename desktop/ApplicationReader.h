// Reads what a scene says about an application, except for its windows.
#pragma once

#include <memory>
#include <nlohmann/json.hpp>
#include <string>

#include "desktop/Model.h"

namespace desktop {

// Throws SceneError. The application is not added to the model, which only provides free process
// ids.
std::unique_ptr<Application> ReadApplicationFacts(Model& model, const nlohmann::json& source,
                                                  const std::string& place);

}  // namespace desktop
