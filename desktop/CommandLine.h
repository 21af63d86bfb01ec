// The command line of krt9-desktop, parsed by its program's table.
#pragma once

#include <map>
#include <string>
#include <string_view>

#include "tools/terminal/Program.h"

namespace desktop {

class CommandLine {
  public:
    CommandLine(const terminal::Program& program, std::string_view version)
        : program_(program), version_(version) {}

    enum class Outcome { run, information, wrong };
    Outcome Parse(int argumentCount, char** arguments);

    // Of `information`: help or version. Of `wrong`: what is wrong, in one line.
    const std::string& Text() const { return text_; }

    // Of `run`. What was given; a flag has an empty value.
    bool Has(const std::string& name) const { return values_.contains(name); }
    const std::string& Value(const std::string& name) const { return values_.at(name); }
    int Number(const std::string& name) const { return std::stoi(Value(name)); }

  private:
    Outcome Refuse(std::string problem);
    Outcome CheckNumbers();

    const terminal::Program& program_;
    std::string version_;
    std::string text_;
    std::map<std::string, std::string> values_;
};

}  // namespace desktop
