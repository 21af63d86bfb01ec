// The editor in front of a simulated desktop, its elements stated one by one: the tree that a scene
// would hold, with values that are right or wrong.
//
// Each element is a window of the application in the desktop's model, whatever its role is; what
// the application gives as its windows and an element as its children is stated by itself. So one
// element can be in several places, and in itself.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <vector>

#include "platform/DesktopLink/Value.h"
#include "tests/support/ScriptedDesktop.h"

using desktop_link::ElementReference;
using desktop_link::Value;

// Attribute values.
Value Text(const std::string& text);
Value Number(std::int64_t number);
Value Real(double number);
Value Truth(bool truth);
Value PointAt(double x, double y);
Value Failing(std::int32_t error);  // reading the attribute fails with that code
Value Null();                       // the null object
Value List(std::vector<Value> values);
Value Elements(const std::vector<ElementReference>& elements);

class EditorTree {
  public:
    static constexpr std::int32_t kProcess = 501;

    explicit EditorTree(test_support::ScriptedDesktop& desktop);

    static std::string Scene();  // that of the desktop: the application without windows

    ElementReference Application() const { return {kProcess, 0}; }

    // An element with that role and, where not empty, that identifier and those children. Without
    // children it has no AXChildren at all.
    ElementReference Add(const std::string& role, const std::string& identifier = "",
                         const std::vector<ElementReference>& children = {});
    // An element as a scene states it, with all that is in it.
    ElementReference AddTree(const nlohmann::json& element);
    void Set(ElementReference element, const std::string& attribute, const Value& value);
    void Unset(ElementReference element, const std::string& attribute);
    void SetWindows(const std::vector<ElementReference>& windows);

    // One window with these children; the front application has no other.
    ElementReference ShowWindow(const std::vector<ElementReference>& children);

    // Every call on the element fails with that code.
    void Fail(ElementReference element, std::int32_t error);
    // So does this action, or setting this attribute.
    void Refuse(ElementReference element, const std::string& name, std::int32_t error);

    // Reading several attributes of the element succeeds and yields no value at all.
    void AnswerEmpty(ElementReference element);

    // From now on no call is answered, or the application is dead.
    void Hang();
    void Die();

    // The application without windows, as in the beginning.
    void StartAnew();

    // Elements whose attributes were read, in order, of the exchanges that the desktop remembers.
    std::vector<ElementReference> Reads() const;

    // "action identifier" or "set attribute identifier = text" for each action and setting of an
    // element, from the desktop's log; "failed" is appended to those that the element refused.
    std::vector<std::string> Changes() const;

  private:
    std::string AddressOf(ElementReference element) const;
    nlohmann::json Written(const Value& value, const std::string& attribute) const;
    void Misbehave(ElementReference element);
    void Run(const nlohmann::json& command);

    test_support::ScriptedDesktop& desktop_;
    std::map<std::uint64_t, std::size_t> places_;  // of elements among the windows, by id
    std::map<std::uint64_t, nlohmann::json> misbehaviour_;
};
