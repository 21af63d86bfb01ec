// The application whose accessibility tree a verb reads.
#pragma once

#include <ApplicationServices/ApplicationServices.h>

#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "tools/AccessibilityTree.h"
#include "tools/Arguments.h"
#include "tools/FrontApplication.h"
#include "tools/Run.h"

namespace krt9ctl {

struct ChosenApplication {
    ApplicationFacts facts;
    bool isFront = false;
};

// The parameters, and after them --application and --pid.
std::vector<Parameter> WithApplication(std::vector<Parameter> parameters);

// The application in front, or the one that the options name. Nothing when there is none. Throws
// UsageError when both options are given, std::runtime_error when the session is refused.
std::optional<ChosenApplication> FindChosenApplication(const Arguments& arguments);

// Why there is none.
std::string ExplainNoApplication(const Arguments& arguments);

// The same, and reported as `accessibility` when there is none.
std::optional<ChosenApplication> ChooseApplication(const Arguments& arguments, Context& context);

// The application's tree, with the progress shown. The error is one that ended the reading.
std::variant<AccessibilityTree, AXError> ReadTree(pid_t pid, bool withActions, Context& context);

// What an error that ended the reading of a tree means, without a full stop.
std::string ExplainAccessibility(AXError error);

}  // namespace krt9ctl
