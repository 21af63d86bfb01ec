// The verb that draws an application's windows and elements.
#include <fmt/format.h>

#include <map>
#include <utility>

#include "tools/ElementMatching.h"
#include "tools/Grammar.h"
#include "tools/Listing.h"
#include "tools/SceneFile.h"
#include "tools/view/Page.h"

namespace krt9ctl {

namespace {

using Pairs = std::map<std::size_t, std::size_t>;

// Elements that were found again have the same number on both sides, from 1.
std::pair<Pairs, Pairs> NumberPairs(const Listing& from, const Listing& to, Output& output) {
    output.Progress("comparing elements");
    const ElementMatching matching =
        MatchElements(from.elements, to.elements, [&output](std::size_t count) {
            output.Progress(fmt::format("{} elements compared", count));
        });
    std::pair<Pairs, Pairs> pairs;
    std::size_t number = 0;
    for (const ElementMatch& match : matching.matches) {
        ++number;
        pairs.first[match.from] = number;
        pairs.second[match.to] = number;
    }
    return pairs;
}

ExitCode ActView(const Arguments& arguments, Context& context) {
    const auto file = SceneFileOf(arguments, "FILE");
    const auto first = ReadListing(arguments, file, context);
    if (const ExitCode* code = std::get_if<ExitCode>(&first)) {
        return *code;
    }
    const auto& from = std::get<Listing>(first);
    std::vector<Drawing> drawings;
    if (arguments.Has("NEW")) {
        const Listing to = ReadSceneFile(arguments.Text("NEW"), arguments);
        const auto [left, right] = NumberPairs(from, to, context.output);
        drawings = {Draw(from, left), Draw(to, right)};
    } else {
        drawings = {Draw(from, {})};
    }
    const bool isPicture = arguments.Has("--svg");
    const std::string text = isPicture ? PictureOf(drawings) : PageOf(drawings);
    if (context.output.IsJson()) {
        context.output.Result({{isPicture ? "svg" : "html", text}}, "");
    } else {
        context.output.Document(text);
    }
    return ExitCode::ok;
}

}  // namespace

std::vector<Verb> ViewVerbs() {
    return {
        {.name = "view",
         .requests = "",
         .summary = "draw the front application's windows and elements as a page",
         .detail =
             "Prints one HTML file that fetches nothing from outside, or with --svg a picture. "
             "Windows are drawn to scale, one below the other, with the elements that have a "
             "frame: green is what requests can name, red what has an identifier and they cannot, "
             "grey what has none. In the page, pointing at an element shows what tree says of it, "
             "and the search marks what contains a text. Of two dumps, the elements are matched "
             "as diff does: pointing at one shows both.",
         .example = "krt9ctl view scenes/editor-10.3.4.json scenes/editor-10.4.json",
         .parameters = WithSource(
             {{.name = "FILE",
               .kind = ValueKind::file,
               .help = "a dump or scene; without it, what is on the screen",
               .presence = Presence::optional},
              {.name = "NEW",
               .kind = ValueKind::file,
               .help = "another one, to be shown beside it",
               .presence = Presence::optional},
              {.name = "--svg", .kind = ValueKind::flag, .help = "a picture instead of a page"}}),
         .work = ActView},
    };
}

}  // namespace krt9ctl
