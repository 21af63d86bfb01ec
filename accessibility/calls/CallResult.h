// What an accessibility call gives: a value, or the name of its failure.
#pragma once

#include <ApplicationServices/ApplicationServices.h>

#include <utility>
#include <variant>

enum class CallFailureKind {
    timedOut,     // the application did not answer, or counts as hung (ApplicationCall.h)
    elementGone,  // there is no such element, or no longer
    notThere,     // the element has no such attribute, no value for it, or no such action
    wrongType,    // there is a value, but not of the type asked for
    refused,      // the application or the system does not allow it, or failed
};

struct CallFailure {
    CallFailureKind kind;
    AXError error = kAXErrorSuccess;  // what the call itself returned
};

// The failure that an error stands for; `error` is not kAXErrorSuccess.
CallFailure FailureOf(AXError error);

// The value of a call that has none but its success.
struct Done {};

// `Value` is movable and owns what it refers to.
template <typename Value>
class CallResult {
  public:
    // Both convert, so that a call returns either.
    CallResult(Value value) : content_(std::move(value)) {}
    CallResult(CallFailure failure) : content_(failure) {}

    explicit operator bool() const { return std::holds_alternative<Value>(content_); }

    // Only of a result that has a value, or only of one that has none.
    Value& operator*() { return std::get<Value>(content_); }
    const CallFailure& Failure() const { return std::get<CallFailure>(content_); }

    // The value; an empty one when there is none, for callers to whom all failures are alike.
    Value ValueOrEmpty() && { return *this ? std::move(**this) : Value(); }

  private:
    std::variant<Value, CallFailure> content_;
};
