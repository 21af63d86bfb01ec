// The result of an accessibility call: a value, or a named failure.
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

// The value of a call that only succeeds or fails.
struct Done {};

// `Value` is movable and owns what it refers to.
template <typename Value>
class CallResult {
  public:
    // Implicit, so that a function can return either.
    CallResult(Value value) : content_(std::move(value)) {}
    CallResult(CallFailure failure) : content_(failure) {}

    explicit operator bool() const { return std::holds_alternative<Value>(content_); }

    // The first requires a value, the second a failure.
    Value& operator*() { return std::get<Value>(content_); }
    const CallFailure& Failure() const { return std::get<CallFailure>(content_); }

    // The value, or an empty one, for callers that treat all failures alike.
    Value ValueOrEmpty() && { return *this ? std::move(**this) : Value(); }

  private:
    std::variant<Value, CallFailure> content_;
};
