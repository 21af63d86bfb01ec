// A variable of the process's environment with another value while the object exists.
#pragma once

#include <cstdlib>
#include <optional>
#include <string>
#include <utility>

namespace test_support {

class EnvironmentVariable {
  public:
    EnvironmentVariable(std::string name, const std::string& value) : name_(std::move(name)) {
        if (const char* before = std::getenv(name_.c_str())) {
            before_ = before;
        }
        setenv(name_.c_str(), value.c_str(), 1);
    }
    ~EnvironmentVariable() {
        if (before_) {
            setenv(name_.c_str(), before_->c_str(), 1);
        } else {
            unsetenv(name_.c_str());
        }
    }
    EnvironmentVariable(const EnvironmentVariable&) = delete;
    EnvironmentVariable& operator=(const EnvironmentVariable&) = delete;

  private:
    std::string name_;
    std::optional<std::string> before_;
};

}  // namespace test_support
