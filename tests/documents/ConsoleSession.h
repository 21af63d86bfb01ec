// A session for one example: a desktop, the driver, and a shell that finds the programs.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "tests/documents/ConsoleBlock.h"
#include "tests/support/Companion.h"
#include "tests/support/EnvironmentVariable.h"
#include "tests/support/HomeFolder.h"
#include "tests/support/Stage.h"
#include "tests/support/TemporaryFolder.h"

namespace documents {

inline constexpr char kUsualScene[] = "editor-10.4.6.json";

// What runs when the example begins.
struct Setting {
    std::string scene = kUsualScene;
    bool hasDesktop = true;
    bool hasDriver = true;  // a desktop, then
    enum class Companion {
        none,
        watch,  // krt9ctl
        here,   // this process
    } companion = Companion::watch;
    std::optional<Bytes> statusReply;  // of this process
};

// The document whose block of XML is the file of translations, en.plist, of every session.
inline constexpr char kTranslationsDocument[] = "docs/protocol.md";

struct CommandResult {
    int status = 0;
    std::vector<std::string> lines;  // of the standard output, then of the standard error stream
};

class ConsoleSession {
  public:
    explicit ConsoleSession(const Setting& setting);

    // A line for a shell, in a folder where the checkout's scenes are at scenes/. No command in an
    // example gives up because the machine is busy.
    CommandResult Run(const std::string& command);

    // Starts it and returns when it has begun to print. Its output so far and its end.
    test_support::ChildProcess& RunInBackground(const std::string& command);

    // Each step in order. What went wrong, with the line's number; empty when nothing did.
    std::string Play(const std::vector<Step>& steps);

  private:
    std::string PlayStep(const Step& step);
    std::string PlayCommand(const Step& step);
    std::string PlayRequest(const Step& step);
    std::string AwaitMessage(const Step& step);
    std::string CheckBackground();
    void MakePrograms();
    void AwaitFirstTick();
    bool HasTicked();
    std::vector<std::string> ShellWords(const std::string& command) const;
    void ForgetDesktopLog();

    struct Background {
        Step step;
        test_support::ChildProcess* process;
    };

    test_support::HomeFolder home_;
    test_support::EnvironmentVariable languages_{"KRT9_LANGUAGES", "en"};
    test_support::TemporaryFolder folder_;
    test_support::Stage stage_;
    std::unique_ptr<test_support::Companion> companion_;
    std::vector<std::unique_ptr<test_support::ChildProcess>> processes_;
    std::vector<Background> backgrounds_;
    test_support::ChildProcess* driver_ = nullptr;
    Setting setting_;
};

}  // namespace documents
