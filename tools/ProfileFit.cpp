#include "tools/ProfileFit.h"

#include <map>
#include <unordered_map>

#include "tools/Reach.h"
#include "tools/Text.h"

namespace krt9ctl {

namespace {

class Fitting {
  public:
    explicit Fitting(const ElementList& list);

    FittedRow Fit(const EditorProfile& row);

  private:
    FittedControl Fit(std::string_view identifier, std::string_view role);
    const std::vector<Judgement>& JudgementsFor(std::string_view role);

    const ElementList& list_;
    std::unordered_map<std::string, std::vector<std::size_t>> named_;
    std::map<std::string, std::vector<Judgement>, std::less<>> judgements_;  // by role
};

Fitting::Fitting(const ElementList& list) : list_(list) {
    for (std::size_t place = 1; place < list.size(); ++place) {
        if (list[place].identifier) {
            named_[*list[place].identifier].push_back(place);
        }
    }
}

const std::vector<Judgement>& Fitting::JudgementsFor(std::string_view role) {
    const auto known = judgements_.find(role);
    if (known != judgements_.end()) {
        return known->second;
    }
    return judgements_.emplace(role, JudgeReach(list_, StringOf(role).get())).first->second;
}

FittedControl Fitting::Fit(std::string_view identifier, std::string_view role) {
    const auto named = named_.find(std::string(identifier));
    if (named == named_.end()) {
        return {};
    }
    const std::vector<std::size_t>& places = named->second;
    if (role.empty()) {
        return {ProfileFit::found, places.front()};
    }
    FittedControl best{ProfileFit::role, places.front()};
    for (const std::size_t place : places) {
        if (JudgementsFor(role)[place].reach == Reach::reached) {
            return {ProfileFit::found, place};
        }
        if (best.fit == ProfileFit::role && list_[place].role == role) {
            best = {ProfileFit::reach, place};
        }
    }
    return best;
}

FittedRow Fitting::Fit(const EditorProfile& row) {
    FittedRow fitted;
    for (std::size_t control = 0; control < kProfileControlCount; ++control) {
        fitted.controls[control] =
            Fit(row.controls[control].identifier, row.controls[control].role);
        fitted.found += fitted.controls[control].fit == ProfileFit::found ? 1 : 0;
    }
    return fitted;
}

}  // namespace

std::size_t ProfileRowFor(const std::optional<std::string>& shortVersion) {
    const EditorProfile& profile = ProfileOfVersion(shortVersion.value_or("")).profile;
    return static_cast<std::size_t>(&profile - EditorProfiles().data());
}

std::string_view ProfileFitName(ProfileFit fit) {
    switch (fit) {
        case ProfileFit::found:
            return "found";
        case ProfileFit::reach:
            return "out-of-reach";
        case ProfileFit::role:
            return "other-role";
        case ProfileFit::missing:
            return "missing";
    }
    return "";
}

std::vector<FittedRow> FitProfiles(const ElementList& list) {
    Fitting fitting(list);
    std::vector<FittedRow> fitted;
    for (const EditorProfile& row : EditorProfiles()) {
        fitted.push_back(fitting.Fit(row));
    }
    return fitted;
}

std::size_t BestRow(const std::vector<FittedRow>& fitted, std::size_t preferred) {
    std::size_t best = preferred;
    for (std::size_t row = fitted.size(); row-- > 0;) {
        best = fitted[row].found > fitted[best].found ? row : best;
    }
    return best;
}

}  // namespace krt9ctl
