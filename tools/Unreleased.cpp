#include "tools/Unreleased.h"

#include "VEKCommon/MessageCodes.h"
#include "tools/RequestBody.h"

namespace krt9ctl {

namespace {

constexpr std::size_t kKeystrokeFields = 3;  // key code, modifiers, press or release
constexpr std::size_t kMouseFields = 4;

}  // namespace

void Unreleased::Note(const Request& request) {
    const auto fields = krt9::IntegersOf(request.body);
    switch (request.code) {
        case kJPMS:
        case kJPMC:
            // A step on its own presses nothing.
            if (fields.size() >= kMouseFields && (request.code == kJPMS || gesture_)) {
                gesture_ = request.body;
            }
            break;
        case kJPME:
            gesture_.reset();
            break;
        case kJCPK:
            if (fields.size() >= kKeystrokeFields && fields[2] != 0) {
                keys_[fields[0]] = request.body;
            } else if (fields.size() >= kKeystrokeFields) {
                keys_.erase(fields[0]);
            }
            break;
        default:
            break;
    }
}

std::vector<Request> Unreleased::Releases() const {
    std::vector<Request> requests;
    if (gesture_) {
        requests.push_back({kJPME, *gesture_, true});
    }
    for (const auto& [code, body] : keys_) {
        requests.push_back({kJCPK, krt9::IntegersBody({code, krt9::IntegersOf(body)[1], 0}), true});
    }
    return requests;
}

}  // namespace krt9ctl
