// What a scene says of an application, its windows excepted.
#pragma once

#include <memory>
#include <nlohmann/json.hpp>
#include <string>

#include "desktop/Model.h"

namespace desktop {

// Throws SceneError. The application is not put into the model, which is asked for free process
// ids.
std::unique_ptr<Application> ReadApplicationFacts(Model& model, const nlohmann::json& source,
                                                  const std::string& place);

}  // namespace desktop
