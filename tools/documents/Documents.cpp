#include "tools/documents/Documents.h"

#include "tools/Version.h"
#include "tools/documents/Completion.h"
#include "tools/documents/DesktopDocuments.h"
#include "tools/documents/ManualPage.h"
#include "tools/documents/Programs.h"

namespace documents {

namespace {

void AddCompletions(std::vector<Document>& all, const Completion& completion) {
    const std::string& program = completion.program;
    all.push_back({"bash-completion/completions/" + program, WriteBashCompletion(completion)});
    all.push_back({"zsh/site-functions/_" + program, WriteZshCompletion(completion)});
    all.push_back(
        {"fish/vendor_completions.d/" + program + ".fish", WriteFishCompletion(completion)});
}

}  // namespace

std::vector<Document> AllDocuments() {
    const krt9ctl::Grammar& grammar = krt9ctl::TheGrammar();
    std::vector<Document> all = {
        {"man/man1/krt9ctl.1", WriteManualPage(CompanionProgram(), &grammar, krt9ctl::kVersion)},
        {"man/man8/KRT9Background.8", WriteManualPage(DriverProgram(), nullptr, krt9ctl::kVersion)},
    };
    AddCompletions(all, CompletionOf(grammar));
    for (const terminal::Program* program : SimulatedPrograms()) {
        all.push_back({"man/man1/" + std::string(program->name) + ".1",
                       WriteManualPage(*program, nullptr, krt9ctl::kVersion)});
        AddCompletions(all, CompletionOf(*program));
    }
    return all;
}

}  // namespace documents
