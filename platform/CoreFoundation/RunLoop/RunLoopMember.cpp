#include "platform/CoreFoundation/RunLoop/RunLoopMember.h"

#include <algorithm>

namespace run_loop {

bool LoopMember::IsIn(const Mode& mode) const {
    return std::find(modes_.begin(), modes_.end(), &mode) != modes_.end();
}

void LoopMember::Join(RunLoop& loop, Mode& mode) {
    loop_ = &loop;
    modes_.push_back(&mode);
}

bool LoopMember::Leave(Mode& mode) {
    std::erase(modes_, &mode);
    if (!modes_.empty()) {
        return false;
    }
    loop_ = nullptr;
    return true;
}

}  // namespace run_loop
