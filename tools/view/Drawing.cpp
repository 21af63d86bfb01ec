#include "tools/view/Drawing.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

#include "tools/ElementLine.h"
#include "tools/Reach.h"
#include "tools/Text.h"

namespace krt9ctl {

namespace {

constexpr double kFarthest = 1e6;
constexpr long kLargestWindow = 20000;
constexpr long kGap = 30;         // above each window, for its title
constexpr long kLabelLetter = 6;  // points that a letter of a label takes
constexpr long kLabelHeight = 10;

long Whole(double number) {
    return std::lround(std::clamp(number, -kFarthest, kFarthest));
}

Rectangle Rounded(const desktop_link::Rect& frame) {
    return {Whole(frame.origin.x), Whole(frame.origin.y), Whole(frame.size.width),
            Whole(frame.size.height)};
}

bool IsVisible(const Rectangle& frame) {
    return frame.width > 0 && frame.height > 0;
}

std::string StyleOf(const Judgement& judgement) {
    switch (judgement.reach) {
        case Reach::reached:
            return "reached";
        case Reach::nameless:
            return "nameless";
        default:
            return "unreached";
    }
}

// The number that requests carry.
std::string LabelOf(const ListedElement& element, const std::string& style) {
    const auto number =
        style == "reached" ? ParseElement(*element.identifier) : std::optional<std::int64_t>();
    return number ? std::to_string(*number) : "";
}

bool IsLarger(const DrawnElement& left, const DrawnElement& right) {
    return left.frame.width * left.frame.height > right.frame.width * right.frame.height;
}

class Drawer {
  public:
    Drawer(const Listing& listing, const std::map<std::size_t, std::size_t>& pairs)
        : list_(listing.elements), judgements_(JudgeReach(list_)), pairs_(pairs) {
        drawing_.title = NameOf(listing);
        if (listing.facts.shortVersion) {
            drawing_.title += " " + ShortText(*listing.facts.shortVersion);
        }
    }

    Drawing Draw();

  private:
    void Begin(std::size_t window);
    void Add(std::size_t place);

    const ElementList& list_;
    const std::vector<Judgement> judgements_;
    const std::map<std::size_t, std::size_t>& pairs_;
    Drawing drawing_;
    std::size_t drawn_ = 0;
    long originX_ = 0, originY_ = 0;  // of the window
    bool isOpen_ = false;             // the window has a frame
};

void Drawer::Begin(std::size_t window) {
    const auto& frame = list_[window].frame;
    const Rectangle rounded = frame ? Rounded(*frame) : Rectangle{};
    isOpen_ = IsVisible(rounded);
    if (!isOpen_) {
        return;
    }
    originX_ = rounded.x;
    originY_ = rounded.y;
    DrawnWindow drawn;
    drawn.frame = {0, drawing_.height + kGap, std::min(rounded.width, kLargestWindow),
                   std::min(rounded.height, kLargestWindow)};
    drawn.title = ShortText(list_[window].title.value_or(""));
    drawing_.height = drawn.frame.y + drawn.frame.height;
    drawing_.width = std::max(drawing_.width, drawn.frame.width);
    drawing_.windows.push_back(std::move(drawn));
}

void Drawer::Add(std::size_t place) {
    const ListedElement& element = list_[place];
    const Rectangle frame = element.frame ? Rounded(*element.frame) : Rectangle{};
    const bool isDrawn = isOpen_ && IsVisible(frame);
    if (!isDrawn && !element.identifier) {
        return;
    }
    if (++drawn_ > kMostDrawn) {
        ++drawing_.leftOut;
        return;
    }
    const std::string line = ElementLine(list_, place, judgements_[place], {false, false});
    if (!isDrawn) {
        drawing_.undrawn.push_back(line);
        return;
    }
    DrawnElement drawn;
    drawn.frame = {frame.x - originX_, frame.y - originY_, frame.width, frame.height};
    drawn.line = line;
    drawn.style = StyleOf(judgements_[place]);
    if (const auto pair = pairs_.find(place); pair != pairs_.end()) {
        drawn.pair = pair->second;
    }
    const std::string label = LabelOf(element, drawn.style);
    if (frame.height >= kLabelHeight &&
        frame.width >= kLabelLetter * static_cast<long>(label.size())) {
        drawn.label = label;
    }
    drawing_.windows.back().elements.push_back(std::move(drawn));
}

Drawing Drawer::Draw() {
    for (std::size_t place = 1; place < list_.size(); ++place) {
        if (list_[place].depth == 1) {
            Begin(place);
        }
        Add(place);
    }
    for (DrawnWindow& window : drawing_.windows) {
        std::stable_sort(window.elements.begin(), window.elements.end(), IsLarger);
    }
    return std::move(drawing_);
}

}  // namespace

Drawing Draw(const Listing& listing, const std::map<std::size_t, std::size_t>& pairs) {
    return Drawer(listing, pairs).Draw();
}

}  // namespace krt9ctl
