// Verbs that show an application's elements, and what of them the driver can reach.
#include <fmt/format.h>

#include <algorithm>

#include "tools/ElementLine.h"
#include "tools/Grammar.h"
#include "tools/Listing.h"
#include "tools/TextSearch.h"

namespace krt9ctl {

namespace {

// What a line is printed for. Conditions that are not given are met by every element.
struct Filter {
    std::optional<std::string> role, identifier, text;

    bool IsEmpty() const { return !role && !identifier && !text; }
};

std::optional<std::string> TextOrNone(const Arguments& arguments, std::string_view name) {
    return arguments.Has(name) ? std::optional(arguments.Text(name)) : std::nullopt;
}

// The number of an element stands for its identifier, as everywhere.
std::string IdentifierOf(const std::string& given) {
    const auto number = ParseElement(given);
    return number ? fmt::format("_NS:{}", *number) : given;
}

bool Contains(const ListedElement& element, const TextSearch& search) {
    for (const auto& text :
         {element.identifier, element.title, element.description, ValueText(element)}) {
        if (text && search.IsIn(*text)) {
            return true;
        }
    }
    return false;
}

std::vector<bool> Matches(const ElementList& list, const Filter& filter) {
    const TextSearch search(filter.text.value_or(""));
    std::vector<bool> matches;
    for (const ListedElement& element : list) {
        matches.push_back((!filter.role || element.role == *filter.role) &&
                          (!filter.identifier || element.identifier == filter.identifier) &&
                          (!filter.text || Contains(element, search)));
    }
    return matches;
}

// Also the elements in which those lie.
std::vector<bool> WithAncestors(const ElementList& list, std::vector<bool> shown) {
    for (std::size_t place = list.size(); place-- > 1;) {
        if (shown[place]) {
            shown[list[place].parent] = true;
        }
    }
    return shown;
}

ExitCode Show(const Arguments& arguments, const Filter& filter, bool asTree, Context& context) {
    const auto read = ReadListing(arguments, SceneFileOf(arguments), context);
    if (const ExitCode* code = std::get_if<ExitCode>(&read)) {
        return *code;
    }
    const ElementList& list = std::get<Listing>(read).elements;
    Output& output = context.output;
    const auto judgements = JudgeReach(list);
    auto shown = Matches(list, filter);
    if (!filter.IsEmpty() && std::find(shown.begin(), shown.end(), true) == shown.end()) {
        output.Problem(ExitCode::notThere,
                       fmt::format("none of the {} elements fits", list.size()));
        return ExitCode::notThere;
    }
    if (asTree && !output.IsJson()) {
        shown = WithAncestors(list, std::move(shown));
    }
    const LineStyle style{output.HasColour(), asTree};
    for (std::size_t place = 0; place < list.size() && output.Status() == ExitCode::ok; ++place) {
        if (shown[place]) {
            output.Result(ElementObject(list, place, judgements[place]),
                          ElementLine(list, place, judgements[place], style));
        }
    }
    return ExitCode::ok;
}

ExitCode ActTree(const Arguments& arguments, Context& context) {
    Filter filter{TextOrNone(arguments, "--role"), TextOrNone(arguments, "--identifier"),
                  TextOrNone(arguments, "--text")};
    if (filter.identifier) {
        filter.identifier = IdentifierOf(*filter.identifier);
    }
    return Show(arguments, filter, true, context);
}

ExitCode ActFind(const Arguments& arguments, Context& context) {
    return Show(arguments, {std::nullopt, std::nullopt, arguments.Text("TEXT")}, false, context);
}

}  // namespace

std::vector<Verb> TreeVerbs() {
    return {
        {.name = "tree",
         .requests = "",
         .summary = "show the front application's elements, and which of them requests can name",
         .detail = "One line for each element, below the one in which it lies: role, identifier, "
                   "title, description in parentheses, value. '+' stands before what requests can "
                   "name, '-' before what has an identifier and they cannot, with the reason in "
                   "brackets: its role; inside an element that the driver does not search, as a "
                   "table; a search field; a window; an identifier of another form; or behind an "
                   "earlier element with the same identifier. With a filter, "
                   "the elements around those found are shown as well, but not with --json. Reads "
                   "the elements itself, without the driver; --timeout is that of each call.",
         .example = "krt9ctl tree --text index",
         .parameters = WithSource(
             {{.name = "--role",
               .kind = ValueKind::text,
               .help = "only elements of this role",
               .placeholder = "ROLE"},
              {.name = "--identifier",
               .kind = ValueKind::text,
               .help = "only elements with this identifier: 59, _NS:59 or any other text",
               .placeholder = "IDENTIFIER"},
              {.name = "--text",
               .kind = ValueKind::text,
               .help = "only elements whose identifier, title, description or value contains this",
               .placeholder = "TEXT"}}),
         .work = ActTree},
        {.name = "find",
         .requests = "",
         .summary = "find elements by a part of their identifier, title, description or value",
         .detail = "Upper and lower case do not matter. Prints for each element its address from "
                   "the window down, and then the same as tree, which explains the marks.",
         .example = "krt9ctl find \"index\"",
         .parameters =
             WithSource({{.name = "TEXT", .kind = ValueKind::text, .help = "what to look for"}}),
         .work = ActFind},
    };
}

}  // namespace krt9ctl
