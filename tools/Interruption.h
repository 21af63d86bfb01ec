// SIGINT and SIGTERM as a question to ask between two steps, so that work is never cut in half.
#pragma once

namespace krt9ctl {

// While it lives the first of these signals only raises a flag; another one ends the process. One
// at a time.
class Interruption {
  public:
    Interruption();
    ~Interruption();
    Interruption(const Interruption&) = delete;
    Interruption& operator=(const Interruption&) = delete;

    static bool Raised();
};

}  // namespace krt9ctl
