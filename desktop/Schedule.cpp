#include "desktop/Schedule.h"

#include <utility>

namespace desktop {

void Schedule::After(double seconds, std::function<void()> effect) {
    effects_.emplace(now_ + seconds, std::move(effect));
}

void Schedule::Advance(double seconds) {
    advancing_ = true;
    const double until = now_ + seconds;
    while (!effects_.empty() && effects_.begin()->first <= until) {
        auto next = effects_.extract(effects_.begin());
        now_ = next.key();
        next.mapped()();
    }
    now_ = until;
    advancing_ = false;
}

std::optional<double> Schedule::NextDue() const {
    if (effects_.empty()) {
        return std::nullopt;
    }
    const double left = effects_.begin()->first - now_;
    return left > 0 ? left : 0;
}

}  // namespace desktop
