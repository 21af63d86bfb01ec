#include "tests/adversary/Replay.h"

#include <utility>

namespace adversary {

using desktop_link::Array;
using desktop_link::Request;

namespace {

std::string Description(const Request& request) {
    std::string text = "operation " + std::to_string(static_cast<int>(request.operation)) + " on " +
                       std::to_string(request.element.pid) + "/" +
                       std::to_string(request.element.id);
    for (const std::string& name : request.names) {
        text += " " + name;
    }
    return text;
}

}  // namespace

const Exchange* Replay::Next(Operation operation, const ElementReference& element,
                             const std::vector<std::string>& names, const Value& value) {
    if (!deviation_.empty()) {
        return nullptr;
    }
    Request expected;
    expected.operation = operation;
    expected.element = element;
    expected.names = names;
    const std::string number = "exchange " + std::to_string(next_);
    if (next_ == exchanges_.size()) {
        deviation_ = number + " is missing: " + Description(expected);
        return nullptr;
    }
    const Exchange& exchange = exchanges_[next_];
    if (exchange.request.operation != operation || !(exchange.request.element == element) ||
        exchange.request.names != names || !(exchange.request.value == value)) {
        deviation_ = number + " was " + Description(exchange.request) + " instead of " +
                     Description(expected);
        return nullptr;
    }
    ++next_;
    return &exchange;
}

std::optional<Value> Replay::Copy(const ElementReference& element, const std::string& attribute) {
    const Exchange* exchange = Next(Operation::copyAttribute, element, {attribute});
    if (exchange == nullptr || !exchange->reply || exchange->reply->error != 0 ||
        exchange->reply->values.size() != 1) {
        return std::nullopt;
    }
    const Value& value = exchange->reply->values.front();
    return std::holds_alternative<desktop_link::ErrorValue>(value.content) ? std::nullopt
                                                                           : std::optional(value);
}

std::optional<Array> Replay::CopyAll(const ElementReference& element,
                                     const std::vector<std::string>& attributes) {
    const Exchange* exchange = Next(Operation::copyAttributes, element, attributes);
    if (exchange == nullptr || !exchange->reply || exchange->reply->error != 0) {
        return std::nullopt;
    }
    return exchange->reply->values;
}

bool Replay::Set(const ElementReference& element, const std::string& attribute,
                 const Value& value) {
    const Exchange* exchange = Next(Operation::setAttribute, element, {attribute}, value);
    return exchange != nullptr && exchange->reply && exchange->reply->error == 0;
}

bool Replay::Perform(const ElementReference& element, const std::string& action) {
    const Exchange* exchange = Next(Operation::performAction, element, {action});
    return exchange != nullptr && exchange->reply && exchange->reply->error == 0;
}

Array Replay::OfSession(Operation operation) {
    const Exchange* exchange = Next(operation, {}, {});
    return exchange != nullptr && exchange->reply && exchange->reply->error == 0
               ? exchange->reply->values
               : Array{};
}

std::string Replay::Deviation() const {
    if (deviation_.empty() && next_ < exchanges_.size()) {
        return "exchange " + std::to_string(next_) +
               " was too many: " + Description(exchanges_[next_].request);
    }
    return deviation_;
}

}  // namespace adversary
