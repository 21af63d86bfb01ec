// The lines of an input that may be of any length, read as they arrive.
#pragma once

#include <cstddef>
#include <optional>
#include <stdexcept>
#include <string>

namespace krt9ctl {

inline constexpr std::size_t kLongestLine = 1 << 20;  // bytes, without the line break

struct InputLine {
    std::string text;  // without the line break; empty when it is too long
    bool isTooLong = false;
};

class InputLines {
  public:
    explicit InputLines(int descriptor) : descriptor_(descriptor) {}

    // Nothing at the end, and when a signal has arrived (Interruption.h), also while it waits. The
    // last line need not end with a line break. Throws std::runtime_error when the input cannot be
    // read.
    std::optional<InputLine> Next();

  private:
    bool ReadMore();
    InputLine Take(std::size_t length);

    int descriptor_;
    std::string pending_;
    bool isTooLong_ = false;  // the line whose end is awaited; its beginning was dropped
    bool hasEnded_ = false;
};

}  // namespace krt9ctl
