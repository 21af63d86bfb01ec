#include "tools/Reach.h"

#include <fmt/format.h>

#include <optional>
#include <unordered_map>

#include "VEKCommon/OwnedReference.h"
#include "tools/Arguments.h"
#include "tools/Text.h"

namespace krt9ctl {

namespace {

// Null for an empty text: no role, no subrole.
OwnedReference<CFStringRef> StringOrNull(const std::string& utf8) {
    return utf8.empty() ? nullptr : StringOf(utf8);
}

// As a request's number becomes one: 059 and 0x3b do not stand for _NS:59 there.
bool IsNameOfRequests(const std::string& identifier) {
    const auto number = ParseElement(identifier);
    return number && identifier == fmt::format("_NS:{}", *number);
}

class Judge {
  public:
    Judge(const ElementList& list, CFStringRef role)
        : list_(list), query_(QueryFromWindows(nullptr, role, nullptr)) {}

    std::vector<Judgement> Rule();

  private:
    void FindVisited();
    void Descend(std::size_t place, std::vector<std::size_t>& pending);
    Judgement RuleOn(std::size_t place);
    std::size_t EndOfDescent(std::size_t place) const;

    const ElementList& list_;
    const ElementQuery query_;
    std::vector<bool> isSearched_;   // its children are
    std::vector<bool> isVisited_;    // as a child of one that is searched
    std::vector<std::size_t> ends_;  // the outermost element above it that is not searched; or 0
    std::unordered_map<std::string, std::size_t> first_;  // with that identifier
};

// An element may be listed by several others, and by some below itself.
void Judge::FindVisited() {
    std::vector<std::vector<std::size_t>> children(list_.size());
    std::vector<std::size_t> pending;
    for (std::size_t place = 1; place < list_.size(); ++place) {
        children[list_[place].parent].push_back(place);
        for (const std::size_t other : list_[place].alsoIn) {
            children[other].push_back(place);
        }
    }
    isVisited_.assign(list_.size(), false);
    isSearched_.assign(list_.size(), false);
    for (const std::size_t window : children[0]) {
        isSearched_[window] = true;
        pending.push_back(window);
    }
    while (!pending.empty()) {
        const std::size_t searched = pending.back();
        pending.pop_back();
        for (const std::size_t child : children[searched]) {
            isVisited_[child] = true;
            if (!isSearched_[child] && IsSearchedFurther(StringOrNull(list_[child].role).get())) {
                isSearched_[child] = true;
                pending.push_back(child);
            }
        }
    }
}

Judgement Judge::RuleOn(std::size_t place) {
    const ListedElement& element = list_[place];
    if (!element.identifier || place == 0) {
        return {};
    }
    if (!isVisited_[place]) {
        return element.parent == 0 ? Judgement{Reach::window, 0}
                                   : Judgement{Reach::inside, ends_[place]};
    }
    const auto role = StringOrNull(element.role);
    if (!role || !query_.TakesRole(role.get())) {
        return {Reach::role, 0};
    }
    if (query_.Skips(role.get(), StringOrNull(element.subrole).get())) {
        return {Reach::searchField, 0};
    }
    if (!IsNameOfRequests(*element.identifier)) {
        return {Reach::otherName, 0};
    }
    const auto [first, isFirst] = first_.emplace(*element.identifier, place);
    return isFirst ? Judgement{Reach::reached, 0} : Judgement{Reach::shadowed, first->second};
}

std::vector<Judgement> Judge::Rule() {
    FindVisited();
    ends_.assign(list_.size(), 0);
    std::vector<Judgement> judgements;
    for (std::size_t place = 0; place < list_.size(); ++place) {
        const std::size_t parent = list_[place].parent;
        if (ends_[parent] != 0 || isSearched_[parent]) {
            ends_[place] = ends_[parent];
        } else {
            ends_[place] = parent;
        }
        judgements.push_back(RuleOn(place));
    }
    return judgements;
}

}  // namespace

std::vector<Judgement> JudgeReach(const ElementList& list, CFStringRef role) {
    return Judge(list, role).Rule();
}

std::string_view ReachName(Reach reach) {
    switch (reach) {
        case Reach::nameless:
            return "nameless";
        case Reach::reached:
            return "reached";
        case Reach::window:
            return "window";
        case Reach::inside:
            return "inside";
        case Reach::role:
            return "role";
        case Reach::searchField:
            return "search-field";
        case Reach::otherName:
            return "other-name";
        case Reach::shadowed:
            return "shadowed";
    }
    return "";
}

std::string ReasonOf(const Judgement& judgement, const ElementList& list) {
    switch (judgement.reach) {
        case Reach::nameless:
        case Reach::reached:
            return "";
        case Reach::window:
            return "a window";
        case Reach::inside: {
            const std::string& role = list[judgement.cause].role;
            return "inside " + (role.empty() ? "an element without role" : Printable(role));
        }
        case Reach::role:
            return "its role";
        case Reach::searchField:
            return "a search field";
        case Reach::otherName:
            return "not _NS: and a number";
        case Reach::shadowed:
            return "behind " + AddressOf(list, judgement.cause);
    }
    return "";
}

}  // namespace krt9ctl
