#include "tools/Output.h"

namespace krt9ctl {

std::string OneLine(const Json& object) {
    return object.dump(-1, ' ', false, Json::error_handler_t::replace);
}

void Output::Result(const Json& object, const std::string& sentence) {
    if (json_) {
        out_ << OneLine(object) << '\n' << std::flush;
    } else if (!sentence.empty()) {
        out_ << sentence << '\n' << std::flush;
    }
}

void Output::Document(const std::string& text) {
    out_ << text << std::flush;
}

void Output::Problem(ExitCode code, const std::string& sentence, Json object) {
    if (json_) {
        object["error"] = ExitCodeName(code);
        object["message"] = sentence;
        out_ << OneLine(object) << '\n' << std::flush;
    }
    Remark(sentence);
}

void Output::Remark(const std::string& sentence) {
    err_ << "krt9ctl: " << sentence << std::endl;
}

}  // namespace krt9ctl
