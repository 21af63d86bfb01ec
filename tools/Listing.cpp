#include "tools/Listing.h"

#include <fmt/format.h>

#include "tools/ChosenApplication.h"
#include "tools/SceneFile.h"
#include "tools/Text.h"

namespace krt9ctl {

namespace {

ExitCode Fail(Context& context, const std::string& sentence) {
    context.output.Problem(ExitCode::accessibility, sentence);
    return ExitCode::accessibility;
}

}  // namespace

std::variant<Listing, ExitCode> ReadListing(const Arguments& arguments,
                                            const std::optional<std::string>& sceneFile,
                                            Context& context) {
    if (sceneFile) {
        return ReadSceneFile(*sceneFile, arguments);
    }
    const auto choice = ChooseApplication(arguments, context);
    if (!choice) {
        return ExitCode::accessibility;
    }
    const auto read = ReadTree(choice->facts.pid, false, context);
    if (const AXError* error = std::get_if<AXError>(&read)) {
        return Fail(context, ExplainAccessibility(*error));
    }
    const auto& tree = std::get<AccessibilityTree>(read);
    if (tree.WindowsError()) {
        return Fail(context, fmt::format("its windows cannot be read (accessibility error {})",
                                         static_cast<int>(*tree.WindowsError())));
    }
    if (tree.LeftOut() > 0) {
        context.output.Remark(fmt::format(
            "{} elements disappeared while they were read, or exceeded the limit", tree.LeftOut()));
    }
    return Listing{choice->facts, ListElements(tree), {}};
}

std::vector<Parameter> WithSource(std::vector<Parameter> parameters) {
    parameters = WithApplication(std::move(parameters));
    parameters.push_back({.name = "--scene",
                          .kind = ValueKind::file,
                          .help = "the elements of a scene or dump, instead of those on the screen",
                          .placeholder = "FILE"});
    return parameters;
}

std::optional<std::string> SceneFileOf(const Arguments& arguments, std::string_view parameter) {
    if (!parameter.empty() && arguments.Has(parameter)) {
        if (arguments.Has("--scene")) {
            throw UsageError(fmt::format("{} and --scene exclude each other", parameter));
        }
        return arguments.Text(parameter);
    }
    return arguments.Has("--scene") ? std::optional(arguments.Text("--scene")) : std::nullopt;
}

std::string NameOf(const Listing& listing) {
    if (listing.facts.bundleIdentifier) {
        return Printable(*listing.facts.bundleIdentifier);
    }
    if (const auto& title = listing.elements.front().title; title && !title->empty()) {
        return Printable(*title);
    }
    return listing.facts.pid > 0 ? fmt::format("the application with pid {}", listing.facts.pid)
                                 : "the application";
}

}  // namespace krt9ctl
