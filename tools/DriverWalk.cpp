#include "tools/DriverWalk.h"

#include "accessibility/DepthFirstSearch.h"
#include "accessibility/ElementQuery.h"
#include "accessibility/SearchTrace.h"
#include "accessibility/calls/AccessibilityCalls.h"
#include "accessibility/calls/ApplicationCall.h"
#include "accessibility/calls/ElementAttributes.h"
#include "tools/Text.h"

namespace krt9ctl {

namespace {

class WatchedSearch : public SearchTrace {
  public:
    WatchedSearch(const ElementQuery& query, DriverWalk& walk) : query_(query), walk_(walk) {}

    void WindowRead(CFIndex index, const CallFailure* failure) override {
        ++walk_.windows;
        window_ = static_cast<std::size_t>(index);
        if (failure != nullptr && !walk_.unreadWindow) {
            walk_.unreadWindow = window_;
            walk_.windowFailure = *failure;
        }
    }
    void LevelBegins() override { positions_.push_back(0); }
    void LevelEnds(bool /*found*/) override {
        CountUnread();
        positions_.pop_back();
    }
    void ChildBegins(CFIndex index) override {
        CountUnread();
        isUnread_ = true;
        positions_.back() = static_cast<std::size_t>(index);
    }
    void RoleChecked(CFStringRef role, bool taken, CFArrayRef values) override {
        isUnread_ = false;
        if (taken) {
            role_ = Utf8Of(role).value_or("");
        } else if (!walk_.otherRole &&
                   SameText(StringAt(values, ElementQuery::kIdentifierIndex), query_.identifier)) {
            const bool isSearchField = query_.TakesRole(role);
            walk_.otherRole = MetElement{Here(), Utf8Of(role).value_or(""), isSearchField};
        }
    }
    void Found(AXUIElementRef /*element*/, CFIndex /*index*/) override {
        walk_.found = MetElement{Here(), role_, false};
    }

  private:
    std::vector<std::size_t> Here() const {
        std::vector<std::size_t> here = {window_};
        here.insert(here.end(), positions_.begin(), positions_.end());
        return here;
    }

    void CountUnread() {
        walk_.unreadElements += isUnread_ ? 1 : 0;
        isUnread_ = false;
    }

    const ElementQuery& query_;
    DriverWalk& walk_;
    std::size_t window_ = 0;
    std::vector<std::size_t> positions_;  // of the child that each level looks at
    bool isUnread_ = false;               // no role of that child has been seen yet
    std::string role_;                    // of the last child whose role is sought
};

}  // namespace

DriverWalk WalkAsDriver(pid_t pid, CFStringRef identifier, CFStringRef role, float timeout) {
    using Clock = std::chrono::steady_clock;
    CallTiming timing;
    timing.timeout = timeout;
    const CallTiming before = SetCallTiming(timing);
    const auto start = Clock::now();
    const unsigned long callsBefore = CallsMade();
    DriverWalk walk;
    {
        const OneWait wait;
        const OwnedReference<CFArrayRef> attributes(CreateAttributesFromWindows());
        const ElementQuery query = QueryFromWindows(identifier, role, attributes.get());
        WatchedSearch watched(query, walk);
        const auto application = CreateApplicationElement(pid);
        auto windows = ReadWindows(application.get());
        if (windows) {
            FindElementInWindows(query, (*windows).get(), &watched);
        } else {
            walk.windowsFailure = windows.Failure();
        }
    }
    walk.exchanges = CallsMade() - callsBefore;
    walk.time = Clock::now() - start;
    SetCallTiming(before);
    return walk;
}

}  // namespace krt9ctl
