// What is printed, kept instead.
#pragma once

#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "tools/Output.h"

namespace krt9ctl {

// What one line of the input prints, kept to become one line of the output.
class KeptOutput : public Output {
  public:
    KeptOutput() : Output({nowhere_, nowhere_}, true) {}

    void Result(const Json& object, const std::string& sentence) override {
        objects_.push_back(object);
        if (!sentence.empty()) {
            sentences_.push_back(sentence);
        }
    }

    const Json& Objects() const { return objects_; }
    const std::vector<std::string>& Sentences() const { return sentences_; }
    const std::string& Failure() const { return failure_; }  // the first one

  protected:
    void Fail(ExitCode /*code*/, const std::string& sentence, Json object) override {
        if (failure_.empty()) {
            failure_ = sentence;
        }
        if (!object.empty()) {
            objects_.push_back(std::move(object));
        }
    }

  private:
    std::ostringstream nowhere_;
    Json objects_ = Json::array();
    std::vector<std::string> sentences_;
    std::string failure_;
};

}  // namespace krt9ctl
