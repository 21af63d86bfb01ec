// The driver's signposts as they come, each a JSON object in one line in the form of macOS's `log
// stream`. The two systems have nothing in common here: there is one source for each.
#pragma once

#include <memory>
#include <string>
#include <vector>

namespace krt9ctl::trace {

class SignpostSource {
  public:
    SignpostSource() = default;
    virtual ~SignpostSource() = default;
    SignpostSource(const SignpostSource&) = delete;
    SignpostSource& operator=(const SignpostSource&) = delete;

    // The lines that arrive within so many seconds; returns when there are some. A signal ends the
    // wait.
    virtual std::vector<std::string> Read(double seconds) = 0;

    // Nothing more will come.
    virtual bool HasEnded() const = 0;
};

// Null when another process has the signposts of this session. Throws std::runtime_error when they
// cannot be had.
std::unique_ptr<SignpostSource> OpenSignposts();

}  // namespace krt9ctl::trace
