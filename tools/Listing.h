// One application as verbs show it: what is known of it, and its elements, from the screen or from
// a scene file.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "tools/Arguments.h"
#include "tools/ElementList.h"
#include "tools/FrontApplication.h"
#include "tools/Run.h"
#include "tools/SceneObstacles.h"

namespace krt9ctl {

struct Listing {
    ApplicationFacts facts;  // of a scene: as far as it gives them, with pid -1 when it does not
    ElementList elements;
    SceneObstacles obstacles;  // of a scene only
};

// The elements of the application in front, or of the one that --application or --pid names; of a
// scene file, when one is given. The exit code is that of a problem which was reported. Throws
// UsageError and, for a file that is no scene, std::runtime_error.
std::variant<Listing, ExitCode> ReadListing(const Arguments& arguments,
                                            const std::optional<std::string>& sceneFile,
                                            Context& context);

// The parameters, and after them --application, --pid and --scene.
std::vector<Parameter> WithSource(std::vector<Parameter> parameters);

// The file given with --scene, or by its place as the parameter of that name. Throws UsageError
// when both are given.
std::optional<std::string> SceneFileOf(const Arguments& arguments, std::string_view parameter = {});

// The bundle identifier, else the name, else the process id, else "the application".
std::string NameOf(const Listing& listing);

}  // namespace krt9ctl
