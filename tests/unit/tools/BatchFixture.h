// The verb batch with lines of a file as its standard input.
#pragma once

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <sstream>
#include <string>
#include <vector>

#include "tests/support/SessionFixture.h"
#include "tools/Run.h"

namespace krt9ctl {

// A file as the standard input.
class Input {
  public:
    Input(const test_support::SessionFixture& session, const std::string& text)
        : descriptor_(open(session.Write("input", text).c_str(), O_RDONLY | O_CLOEXEC)) {}
    ~Input() { close(descriptor_); }
    Input(const Input&) = delete;
    Input& operator=(const Input&) = delete;

    int Descriptor() const { return descriptor_; }

  private:
    int descriptor_;
};

class BatchVerb : public testing::Test {
  protected:
    ExitCode Run(const std::string& lines, std::vector<std::string> options = {}) {
        const Input input(session_, lines);
        options.insert(options.begin(), "batch");
        return RunCommandLine(options, {out_, err_, -1, -1, input.Descriptor()});
    }

    test_support::SessionFixture session_;
    std::ostringstream out_, err_;
};

}  // namespace krt9ctl
