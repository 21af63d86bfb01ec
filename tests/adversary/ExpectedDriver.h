// What the driver must do with the answers that it got: its rules written a second time, as
// plainly as can be, on the values of the desktop link, and without regard to what they cost.
//
// Every operation takes the exchanges that the driver made, in their order, and returns what it had
// to derive from them.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "tests/adversary/Replay.h"
#include "tests/unit/protocol/Bytes.h"

namespace adversary {

struct Outcome {
    std::optional<Bytes> reply;
    std::vector<std::string> logged;
    std::vector<std::string> sent;  // to the companion: "JFSC Clip"
    friend bool operator==(const Outcome&, const Outcome&) = default;
};

std::string Description(const Outcome& outcome);

class ExpectedDriver {
  public:
    // What is known of the front application; process -1: nothing was ever in front.
    struct Front {
        std::int32_t process = -1;
        bool hasBundleIdentifier = false;
        bool isEditor = false;
    };
    Front front;
    int profile = 5;

    // --- Requests

    Outcome Value(Replay& replay, const std::string& id);
    Outcome TextAsNumber(Replay& replay, const std::string& id);
    Outcome Position(Replay& replay, const std::string& id);
    Outcome ParentPosition(Replay& replay, const std::string& id);
    Outcome Press(Replay& replay, const std::string& id);
    Outcome SelectedRadioButton(Replay& replay, const std::string& id);
    Outcome SelectRadioButton(Replay& replay, const std::string& id, unsigned index);
    Outcome SetNumberAsText(Replay& replay, const std::string& id, int number);
    Outcome WindowFrame(Replay& replay, const std::string& name, bool partial);

    struct Candidate {
        std::string name;
        std::optional<std::string> subWindow;
    };
    Outcome TargetWindowFrame(Replay& replay, const std::vector<Candidate>& candidates);
    Outcome PointerPosition(Replay& replay);
    Outcome EventsPosted(Replay& replay, int count);

    // --- The periodic work, and what it remembers from one tick to the next

    Outcome Tick(Replay& replay);

    bool observesClip = false;
    bool observesTimecode = false;
    unsigned clipNameSource = 0;
    bool indexVisible = false;
    bool indexChanged = false;
    long long lastRow = -1;
    std::string lastClipName;
    std::string lastTimecode;

    // --- Searches that no request makes

    std::optional<ElementReference> ColorPuck(Replay& replay, const std::string& id);

    // Both among the children of the main window, which are read first.
    std::optional<ElementReference> ChildWithID(Replay& replay, const std::string& id);
    std::optional<ElementReference> ChildWithDescription(Replay& replay, const std::string& role,
                                                         const std::string& description);
    ElementReference mainWindow;

  private:
    using Elements = std::vector<std::optional<ElementReference>>;  // none: something else

    std::optional<Elements> CopyElements(Replay& replay, const ElementReference& element,
                                         const std::string& attribute);
    std::optional<Elements> Windows(Replay& replay);
    std::optional<ElementReference> Find(Replay& replay, const std::string& id,
                                         const std::string& role);
    std::optional<ElementReference> WindowWithTitle(Replay& replay, const std::string& title,
                                                    bool partial);
    std::optional<Bytes> Frame(Replay& replay, const ElementReference& window);

    void FollowClip(Replay& replay, Outcome& outcome);
    void FollowTable(Replay& replay, Outcome& outcome);
    std::optional<std::string> NameInRow(Replay& replay, const ElementReference& row);
    bool IndexIsVisible(Replay& replay);
    void FollowTimecode(Replay& replay, Outcome& outcome);
    void ReportName(const std::string& name, Outcome& outcome);
};

}  // namespace adversary
