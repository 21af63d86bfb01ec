#include "tools/ElementMatching.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <stdexcept>
#include <string>
#include <unordered_map>

namespace krt9ctl {

namespace {

// The weight of each respect in the score.
constexpr double kRoleWeight = 0.3;
constexpr double kTextWeight = 0.3;
constexpr double kPlaceWeight = 0.2;
constexpr double kPathWeight = 0.2;
constexpr double kIdentifierWeight = 0.1;  // counts only when it is the same

constexpr double kLowestScore = 0.5;    // of a match
constexpr double kClearlyLess = 0.8;    // of the best score: another one does not matter
constexpr std::size_t kCandidates = 8;  // kept for each element
constexpr std::size_t kPathEnd = 32;    // roles compared at each end of a path
constexpr std::size_t kProgressStep = 100;

// Equal texts have equal numbers, so that they are compared at once. 0 is no text.
using Word = std::size_t;

class Words {
  public:
    Word Of(const std::string& text) {
        return text.empty() ? 0 : words_.emplace(text, words_.size() + 1).first->second;
    }
    Word Of(const std::optional<std::string>& text) { return text ? Of(*text) : 0; }

  private:
    std::unordered_map<std::string, Word> words_;
};

// Relative to the window's frame.
struct Placement {
    double x, y, width, height;
};

struct Traits {
    std::size_t place;  // in the list
    Word identifier, role, subrole, value;
    std::array<Word, 2> texts;  // title, description
    std::optional<Placement> placement;
    std::vector<Word> top, bottom;  // of the path: the first roles, and the last ones upwards
    std::size_t depth, position;
};

std::optional<Placement> PlacementIn(const ListedElement& window, const ListedElement& element) {
    if (!window.frame || !element.frame || !(window.frame->size.width > 0) ||
        !(window.frame->size.height > 0)) {
        return std::nullopt;
    }
    const auto& [origin, size] = *window.frame;
    return Placement{(element.frame->origin.x - origin.x) / size.width,
                     (element.frame->origin.y - origin.y) / size.height,
                     element.frame->size.width / size.width,
                     element.frame->size.height / size.height};
}

// What is compared of the elements that have identifiers.
class TraitsOfList {
  public:
    TraitsOfList(const ElementList& list, Words& words) : list_(list), words_(words) {
        for (std::size_t place = 0; place < list.size(); ++place) {
            const ListedElement& element = list[place];
            windows_.push_back(element.depth <= 1 ? place : windows_[element.parent]);
            tops_.push_back(TopOf(element));
            if (element.identifier && place > 0) {
                traits_.push_back(Of(place));
            }
        }
    }

    const std::vector<Traits>& All() const { return traits_; }

  private:
    std::vector<Word> TopOf(const ListedElement& element) {
        if (element.depth == 0) {
            return {};
        }
        std::vector<Word> top = tops_[element.parent];
        if (top.size() < kPathEnd) {
            top.push_back(words_.Of(element.role));
        }
        return top;
    }

    Traits Of(std::size_t place) {
        const ListedElement& element = list_[place];
        const bool hasText = element.value && element.value->is_string();
        Traits traits{place,
                      words_.Of(element.identifier),
                      words_.Of(element.role),
                      words_.Of(element.subrole),
                      hasText ? words_.Of(element.value->get<std::string>()) : 0,
                      {words_.Of(element.title), words_.Of(element.description)},
                      PlacementIn(list_[windows_[place]], element),
                      tops_[place],
                      {},
                      element.depth,
                      element.position};
        for (std::size_t up = place; up != 0 && traits.bottom.size() < kPathEnd;
             up = list_[up].parent) {
            traits.bottom.push_back(words_.Of(list_[up].role));
        }
        return traits;
    }

    const ElementList& list_;
    Words& words_;
    std::vector<std::size_t> windows_;
    std::vector<std::vector<Word>> tops_;
    std::vector<Traits> traits_;
};

std::optional<double> LikeText(const Traits& a, const Traits& b) {
    double alike = 0;
    double compared = 0;
    for (std::size_t i = 0; i < a.texts.size(); ++i) {
        compared += a.texts[i] != 0 || b.texts[i] != 0 ? 1 : 0;
        alike += a.texts[i] != 0 && a.texts[i] == b.texts[i] ? 1 : 0;
    }
    // Values change while an editor runs: one that differs says less than one that is the same.
    if (a.value != 0 && b.value != 0) {
        compared += a.value == b.value ? 1 : 0.5;
        alike += a.value == b.value ? 1 : 0;
    }
    return compared > 0 ? std::optional(alike / compared) : std::nullopt;
}

std::optional<double> LikePlace(const Traits& a, const Traits& b) {
    if (!a.placement || !b.placement) {
        return std::nullopt;
    }
    const double distance = std::abs(a.placement->x - b.placement->x) +
                            std::abs(a.placement->y - b.placement->y) +
                            std::abs(a.placement->width - b.placement->width) / 2 +
                            std::abs(a.placement->height - b.placement->height) / 2;
    return std::max(0.0, 1 - 4 * distance);
}

std::size_t CommonLength(const std::vector<Word>& a, const std::vector<Word>& b) {
    const auto length = static_cast<std::ptrdiff_t>(std::min(a.size(), b.size()));
    return static_cast<std::size_t>(std::mismatch(a.begin(), a.begin() + length, b.begin()).first -
                                    a.begin());
}

double LikePath(const Traits& a, const Traits& b) {
    constexpr double kStepsWeight = 0.7;
    const std::size_t shorter = std::min({a.depth, b.depth, 2 * kPathEnd});
    const std::size_t longer = std::min(std::max(a.depth, b.depth), 2 * kPathEnd);
    const std::size_t common =
        std::min(shorter, CommonLength(a.top, b.top) + CommonLength(a.bottom, b.bottom));
    const double steps = static_cast<double>(common) / static_cast<double>(longer);
    return kStepsWeight * steps + (a.position == b.position ? 1 - kStepsWeight : 0);
}

Likeness Compare(const Traits& a, const Traits& b) {
    Likeness likeness;
    likeness.role = a.role != b.role ? 0 : a.subrole == b.subrole ? 1 : 0.8;
    likeness.text = LikeText(a, b);
    likeness.place = LikePlace(a, b);
    likeness.path = LikePath(a, b);
    likeness.sameIdentifier = a.identifier == b.identifier;
    return likeness;
}

bool IsWorthComparing(const Traits& a, const Traits& b) {
    return a.role == b.role || (a.texts[0] != 0 && a.texts[0] == b.texts[0]) ||
           (a.texts[1] != 0 && a.texts[1] == b.texts[1]);
}

struct Candidate {
    std::size_t from, to;  // indexes of the traits
    double score;
    Likeness likeness;
};

bool IsBetter(const Candidate& a, const Candidate& b) {
    if (a.score != b.score) {
        return a.score > b.score;
    }
    return a.from != b.from ? a.from < b.from : a.to < b.to;
}

// The best ones, best first.
std::vector<Candidate> CandidatesFor(const std::vector<Traits>& from, std::size_t index,
                                     const std::vector<Traits>& to) {
    std::vector<Candidate> best;
    for (std::size_t other = 0; other < to.size(); ++other) {
        if (!IsWorthComparing(from[index], to[other])) {
            continue;
        }
        const Likeness likeness = Compare(from[index], to[other]);
        const Candidate candidate{index, other, likeness.Score(), likeness};
        const bool isFull = best.size() == kCandidates;
        if (candidate.score < kLowestScore || (isFull && !IsBetter(candidate, best.back()))) {
            continue;
        }
        if (isFull) {
            best.pop_back();
        }
        best.insert(std::upper_bound(best.begin(), best.end(), candidate, IsBetter), candidate);
    }
    return best;
}

// `others` are all candidates of the same element, best first.
double ConfidenceOf(const Candidate& chosen, const std::vector<Candidate>& others) {
    double next = 0;
    for (const Candidate& other : others) {
        next = other.to == chosen.to ? next : std::max(next, other.score);
    }
    const double nearness =
        std::clamp((next / chosen.score - kClearlyLess) / (1 - kClearlyLess), 0.0, 1.0);
    return chosen.score * (1 - nearness / 2);
}

}  // namespace

double Likeness::Score() const {
    double sum = kRoleWeight * role + kPathWeight * path;
    double weights = kRoleWeight + kPathWeight;
    if (text) {
        sum += kTextWeight * *text;
        weights += kTextWeight;
    }
    if (place) {
        sum += kPlaceWeight * *place;
        weights += kPlaceWeight;
    }
    if (sameIdentifier) {
        sum += kIdentifierWeight;
        weights += kIdentifierWeight;
    }
    return sum / weights;
}

ElementMatching MatchElements(const ElementList& from, const ElementList& to,
                              const std::function<void(std::size_t)>& progress) {
    Words words;
    const TraitsOfList fromTraits(from, words);
    const TraitsOfList toTraits(to, words);
    const auto& a = fromTraits.All();
    const auto& b = toTraits.All();
    if (!b.empty() && a.size() > kMostPairs / b.size()) {
        throw std::runtime_error(fmt::format(
            "{} and {} elements with identifiers are too many to be compared", a.size(), b.size()));
    }
    std::vector<std::vector<Candidate>> candidates;
    std::vector<Candidate> all;
    for (std::size_t index = 0; index < a.size(); ++index) {
        if (index % kProgressStep == 0) {
            progress(index);
        }
        candidates.push_back(CandidatesFor(a, index, b));
        all.insert(all.end(), candidates.back().begin(), candidates.back().end());
    }
    std::sort(all.begin(), all.end(), IsBetter);
    std::vector<bool> isMatched(a.size());
    std::vector<bool> isTaken(b.size());
    ElementMatching matching;
    for (const Candidate& candidate : all) {
        if (!isMatched[candidate.from] && !isTaken[candidate.to]) {
            isMatched[candidate.from] = isTaken[candidate.to] = true;
            matching.matches.push_back({a[candidate.from].place, b[candidate.to].place,
                                        candidate.likeness,
                                        ConfidenceOf(candidate, candidates[candidate.from])});
        }
    }
    std::sort(
        matching.matches.begin(), matching.matches.end(),
        [](const ElementMatch& left, const ElementMatch& right) { return left.from < right.from; });
    for (std::size_t i = 0; i < a.size(); ++i) {
        if (!isMatched[i]) {
            matching.gone.push_back(a[i].place);
        }
    }
    for (std::size_t i = 0; i < b.size(); ++i) {
        if (!isTaken[i]) {
            matching.added.push_back(b[i].place);
        }
    }
    return matching;
}

}  // namespace krt9ctl
