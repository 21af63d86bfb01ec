// The exchanges that a driver made, returned one by one to a caller that says what it had to ask.
//
// An exchange that is not the one expected, or that is missing, is a deviation; after the first one
// nothing is returned any more.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "tests/support/ScriptedDesktop.h"

namespace adversary {

using desktop_link::ElementReference;
using desktop_link::Operation;
using desktop_link::Value;
using test_support::Exchange;

class Replay {
  public:
    explicit Replay(const std::vector<Exchange>& exchanges) : exchanges_(exchanges) {}

    // The attribute's value, if there is one.
    std::optional<Value> Copy(const ElementReference& element, const std::string& attribute);

    // Several attributes in one exchange. None: the call failed.
    std::optional<desktop_link::Array> CopyAll(const ElementReference& element,
                                               const std::vector<std::string>& attributes);

    // True when the application said that it did so.
    bool Set(const ElementReference& element, const std::string& attribute, const Value& value);
    bool Perform(const ElementReference& element, const std::string& action);

    // An exchange that is about no element. What came with it; empty when it failed.
    desktop_link::Array OfSession(Operation operation);

    // One line, empty when everything was asked and nothing else. To be called at the end.
    std::string Deviation() const;

  private:
    const Exchange* Next(Operation operation, const ElementReference& element,
                         const std::vector<std::string>& names, const Value& value = {});

    const std::vector<Exchange>& exchanges_;
    std::size_t next_ = 0;
    std::string deviation_;
};

}  // namespace adversary
