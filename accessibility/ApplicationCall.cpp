#include "accessibility/ApplicationCall.h"

namespace {

// Applications that answer with kAXErrorCannotComplete themselves do so within milliseconds; then
// only that one call has failed.
constexpr CFTimeInterval kLongestAnswer = 0.25;

}  // namespace

int OneWait::depth = 0;
bool OneWait::over = false;

OneWait::OneWait() {
    ++depth;
}

OneWait::~OneWait() {
    --depth;
    over = over && depth > 0;
}

bool OneWait::IsOver() {
    return over;
}

void OneWait::Note(AXError error, CFTimeInterval seconds) {
    if (depth > 0 && error == kAXErrorCannotComplete && seconds > kLongestAnswer) {
        over = true;
    }
}
