#include "accessibility/ApplicationCall.h"

namespace {

// Applications that answer with kAXErrorCannotComplete themselves do so within milliseconds; then
// only that one call has failed.
constexpr CFTimeInterval kLongestAnswer = 0.25;

OneWait* currentWait = nullptr;

}  // namespace

OneWait::OneWait() : outer_(currentWait) {
    currentWait = this;
}

OneWait::~OneWait() {
    currentWait = outer_;
}

bool OneWait::IsOver() {
    return currentWait != nullptr && currentWait->over_;
}

void OneWait::Note(AXError error, CFTimeInterval seconds) {
    if (currentWait != nullptr && error == kAXErrorCannotComplete && seconds > kLongestAnswer) {
        currentWait->over_ = true;
    }
}
