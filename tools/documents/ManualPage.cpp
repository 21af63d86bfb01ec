#include "tools/documents/ManualPage.h"

#include <fmt/format.h>

#include <algorithm>

#include "tools/ExitCode.h"

namespace documents {

namespace {

using krt9ctl::Verb;
using terminal::Parameter;
using terminal::Presence;
using terminal::Program;
using terminal::Term;
using terminal::ValueKind;

// Literal text: a backslash and a hyphen have a special meaning, and so has a point or an
// apostrophe at the start of a line.
std::string Escaped(std::string_view text) {
    std::string escaped = text.starts_with('.') || text.starts_with('\'') ? "\\&" : "";
    for (const char character : text) {
        switch (character) {
            case '\\':
                escaped += "\\e";
                break;
            case '-':
                escaped += "\\-";
                break;
            case '\'':
                escaped += "\\(aq";
                break;
            default:
                escaped += character;
        }
    }
    return escaped;
}

bool IsOption(const Parameter& parameter) {
    return parameter.name.starts_with("--");
}

// "[--steps N]", "ELEMENT", "KEY..."
std::string Usage(const Parameter& parameter) {
    if (IsOption(parameter)) {
        const std::string value = parameter.kind == ValueKind::flag
                                      ? ""
                                      : fmt::format(" \\fI{}\\fR", Escaped(parameter.placeholder));
        return fmt::format("[\\fB{}\\fR{}]", Escaped(parameter.name), value);
    }
    std::string name = fmt::format("\\fI{}\\fR", Escaped(parameter.name));
    switch (parameter.presence) {
        case Presence::required:
            return name;
        case Presence::optional:
            return "[" + name + "]";
        case Presence::repeated:
            return name + "...";
    }
    return name;
}

class Page {
  public:
    explicit Page(const Program& program, std::string_view version) {
        std::string title(program.name);
        std::transform(title.begin(), title.end(), title.begin(), [](char letter) {
            return letter >= 'a' && letter <= 'z' ? static_cast<char>(letter - 'a' + 'A') : letter;
        });
        Line(R"(.\" Written by krt9-documents from the programs' own tables.)");
        Line(fmt::format(".TH \"{}\" \"{}\" \"\" \"KRT9 {}\" \"KRT9 background driver\"",
                         Escaped(title), program.section, version));
        Heading("NAME");
        Line(Escaped(program.name) + " \\- " + Escaped(program.summary));
    }

    void Line(const std::string& line) { text_ += line + "\n"; }
    void Heading(std::string_view heading) { Line(fmt::format(".SH {}", heading)); }
    void Text(std::string_view text) { Line(Escaped(text)); }
    void Paragraph(std::string_view text) {
        Line(".PP");
        Text(text);
    }
    void AddTerm(const std::string& formatted, std::string_view meaning) {
        Line(".TP");
        Line(formatted);
        Text(meaning);
    }
    void Terms(std::string_view heading, const std::vector<Term>& terms) {
        if (terms.empty()) {
            return;
        }
        Heading(heading);
        for (const Term& term : terms) {
            AddTerm(fmt::format("\\fB{}\\fR", Escaped(term.name)), term.meaning);
        }
    }
    void Parameters(const std::vector<Parameter>& parameters) {
        for (const Parameter& parameter : parameters) {
            AddTerm(Usage(parameter), parameter.help);
        }
    }
    const std::string& Whole() const { return text_; }

  private:
    std::string text_;
};

std::string Synopsis(std::string_view command, const std::vector<Parameter>& parameters) {
    std::string line = fmt::format("\\fB{}\\fR", Escaped(command));
    for (const Parameter& parameter : parameters) {
        line += " " + Usage(parameter);
    }
    return line;
}

void AddVerb(Page& page, const Verb& verb) {
    page.Line(fmt::format(".SS \"{}\"", Escaped(verb.name)));
    page.Line(Synopsis(fmt::format("krt9ctl {}", verb.name), verb.parameters));
    page.Paragraph(
        fmt::format("{}.{}{}", verb.summary, verb.detail.empty() ? "" : " ", verb.detail));
    page.Parameters(verb.parameters);
    if (!verb.requests.empty()) {
        page.Paragraph(fmt::format("Request: {}", verb.requests));
    }
    page.Line(".PP");
    page.Line("Example: " + Escaped(verb.example));
}

void AddVerbs(Page& page, const krt9ctl::Grammar& grammar) {
    page.Heading("OPTIONS");
    page.Parameters(krt9ctl::CommonOptions());
    page.AddTerm("\\fB\\-h\\fR, \\fB\\-\\-help\\fR",
                 "print the help and exit; after a verb, the help of that verb");
    page.AddTerm("\\fB\\-\\-version\\fR", "print the version and exit");
    page.Heading("VERBS");
    for (const Verb& verb : grammar.verbs) {
        AddVerb(page, verb);
    }
    std::vector<Term> statuses;
    std::vector<std::string> numbers;
    for (const krt9ctl::ExitCodeRow& row : krt9ctl::ExitCodes()) {
        numbers.push_back(fmt::format("{} {}", static_cast<int>(row.code), row.name));
    }
    page.Heading("EXIT STATUS");
    for (std::size_t i = 0; i < numbers.size(); ++i) {
        page.AddTerm(fmt::format("\\fB{}\\fR", Escaped(numbers[i])),
                     krt9ctl::ExitCodes()[i].meaning);
    }
}

}  // namespace

std::string WriteManualPage(const Program& program, const krt9ctl::Grammar* verbs,
                            std::string_view version) {
    Page page(program, version);
    page.Heading("SYNOPSIS");
    page.Line(verbs == nullptr
                  ? Synopsis(program.name, program.parameters)
                  : fmt::format("\\fB{}\\fR [\\fIOPTION\\fR...] \\fIVERB\\fR [\\fIARGUMENT\\fR...]",
                                Escaped(program.name)));
    page.Heading("DESCRIPTION");
    page.Text(program.description);
    if (verbs != nullptr) {
        AddVerbs(page, *verbs);
    } else if (!program.parameters.empty()) {
        page.Heading("OPTIONS");
        page.Parameters(program.parameters);
        page.AddTerm("\\fB\\-h\\fR, \\fB\\-\\-help\\fR", "print the help and exit");
        page.AddTerm("\\fB\\-\\-version\\fR", "print the version and exit");
    }
    page.Terms("EXIT STATUS", program.statuses);
    page.Terms("SIGNALS", program.signals);
    page.Terms("ENVIRONMENT", program.environment);
    page.Terms("FILES", program.files);
    page.Heading("EXAMPLE");
    page.Text(program.example);
    page.Heading("SEE ALSO");
    std::string others;
    for (const std::string_view other : program.seeAlso) {
        others += (others.empty() ? "" : ", ") + Escaped(other);
    }
    page.Line(others);
    return page.Whole();
}

}  // namespace documents
