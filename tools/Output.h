// What krt9ctl prints: sentences for people, or one JSON object a line for programs.
#pragma once

#include <nlohmann/json.hpp>
#include <ostream>
#include <string>

#include "tools/ExitCode.h"

namespace krt9ctl {

using Json = nlohmann::ordered_json;

class Output {
  public:
    Output(std::ostream& out, std::ostream& err, bool json) : out_(out), err_(err), json_(json) {}

    bool IsJson() const { return json_; }

    // The object for programs, the sentence for people (none when it is empty). Each line is
    // flushed, so that a reader at the other end of a pipe sees it at once.
    void Result(const Json& object, const std::string& sentence);

    // A text that is the same for both, as it stands.
    void Document(const std::string& text);

    // The sentence on the error stream; for programs also the object with "error" and "message".
    void Problem(ExitCode code, const std::string& sentence, Json object = Json::object());

    // A sentence on the error stream that is neither result nor failure.
    void Remark(const std::string& sentence);

  private:
    std::ostream& out_;
    std::ostream& err_;
    bool json_;
};

// One line, whatever the object holds: bytes that are no UTF-8 become U+FFFD.
std::string OneLine(const Json& object);

}  // namespace krt9ctl
