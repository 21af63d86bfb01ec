// A desktop whose every answer the input decides: mostly what an application would say, so that
// the driver gets far, but at any place also a value of any other type, any error, no answer at
// all, or bytes that are not a message.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "fuzz/Choices.h"
#include "platform/DesktopLink/Messages.h"

namespace fuzz {

class Answers {
  public:
    explicit Answers(Choices& choices) : choices_(choices) {}

    std::optional<desktop_link::Reply> To(const desktop_link::Request& request);

    // An application for the front; its bundle, if it has one, is in `bundleFolder`.
    desktop_link::Application Application(const std::string& bundleFolder);

    // What a request is about: many elements have this identifier from now on.
    void Seek(std::string identifier) { sought_ = std::move(identifier); }

    // From now on the front application has one window with the first static text of the newest
    // releases in it, whatever the input says.
    void OnlyTheFirstStaticText() { settled_ = true; }

  private:
    using Value = desktop_link::Value;

    desktop_link::Reply Plausible(const desktop_link::Request& request);
    desktop_link::Reply Settled(const desktop_link::Request& request) const;
    desktop_link::Array SoughtElement(const std::vector<std::string>& names);
    Value PlausibleAttribute(const std::string& name);
    Value AnyValue(int depth);
    Value Elements();
    Value Number();
    desktop_link::ElementReference Element();
    double Coordinate();
    std::string Text();
    std::int32_t ErrorCode();

    Choices& choices_;
    std::string sought_;
    bool settled_ = false;
    int answered_ = 0;
};

}  // namespace fuzz
