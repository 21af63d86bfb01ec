// An application whose accessibility elements reply exactly what a test tells them, right or
// wrong.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "platform/DesktopLink/Transport.h"

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

class FakeEditor final : public desktop_link::Transport {
  public:
    static constexpr std::int32_t kProcess = 501;

    // Becomes the transport of this process; it lives until the next one is installed.
    static FakeEditor& Install();

    ElementReference Application() const { return {kProcess, 0}; }

    // An element with that role and, where not empty, that identifier and those children. Without
    // children it has no AXChildren at all.
    ElementReference Add(const std::string& role, const std::string& identifier = "",
                         const std::vector<ElementReference>& children = {});
    void Set(ElementReference element, const std::string& attribute, Value value);
    void Unset(ElementReference element, const std::string& attribute);
    void SetWindows(const std::vector<ElementReference>& windows);

    // One window with these children; the front application has no other.
    ElementReference ShowWindow(const std::vector<ElementReference>& children);

    // Every call on the element fails with that code.
    void Fail(ElementReference element, std::int32_t error);
    // So does this action, or setting this attribute.
    void Refuse(ElementReference element, const std::string& name, std::int32_t error);

    // Reading several attributes of the element succeeds and yields no value at all.
    void AnswerEmpty(ElementReference element) { empty_.insert(element.id); }

    // No call is answered any more: it hangs, or it died.
    void StopAnswering(bool gone);

    // Asked for the value of an attribute before the elements above are: for trees too large to
    // keep.
    using Generator = std::function<std::optional<Value>(ElementReference, const std::string&)>;
    void Generate(Generator generator) { generator_ = std::move(generator); }

    // Runs before a request is answered; it may change the tree.
    void BeforeEach(std::function<void(const desktop_link::Request&)> hook);

    // Elements whose attributes were read, in order; and "action element identifier" or "set
    // attribute element identifier = text" for each change of an element.
    const std::vector<ElementReference>& Reads() const { return reads_; }
    const std::vector<std::string>& Changes() const { return changes_; }

    std::optional<desktop_link::Reply> Exchange(const desktop_link::Request& request,
                                                double timeout) override;
    bool Unreachable() const override { return gone_; }
    void SetNotificationHandler(
        std::function<void(const desktop_link::Notification&)> /*handler*/) override {}

  private:
    using Attributes = std::map<std::string, Value>;

    desktop_link::Reply Answer(const desktop_link::Request& request);
    Value Read(ElementReference element, const std::string& name) const;
    std::int32_t Refusal(ElementReference element, const std::string& name) const;
    std::string NameOf(ElementReference element) const;

    std::vector<Attributes> elements_ = std::vector<Attributes>(1);  // by id
    std::map<std::uint64_t, std::int32_t> failing_;
    std::map<std::pair<std::uint64_t, std::string>, std::int32_t> refused_;
    std::set<std::uint64_t> empty_;
    std::function<void(const desktop_link::Request&)> hook_;
    Generator generator_;
    std::vector<ElementReference> reads_;
    std::vector<std::string> changes_;
    bool answers_ = true;
    bool gone_ = false;
};
