#include "tools/InputLines.h"

#include <fmt/format.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <vector>

#include "tools/Interruption.h"

namespace krt9ctl {

namespace {

constexpr std::size_t kReadSize = 1 << 16;

}  // namespace

// False at the end, and when a signal has arrived.
bool InputLines::ReadMore() {
    if (hasEnded_ || !Interruption::AwaitInput(descriptor_)) {
        return false;
    }
    std::vector<char> bytes(kReadSize);
    const ssize_t count = read(descriptor_, bytes.data(), bytes.size());
    if (count < 0 && errno != EINTR) {
        throw std::runtime_error(fmt::format("the input cannot be read: {}", std::strerror(errno)));
    }
    hasEnded_ = count == 0;
    pending_.append(bytes.data(), count > 0 ? static_cast<std::size_t>(count) : 0);
    return !hasEnded_;
}

InputLine InputLines::Take(std::size_t length) {
    InputLine line{pending_.substr(0, length), isTooLong_ || length > kLongestLine};
    if (line.isTooLong) {
        line.text.clear();
    }
    isTooLong_ = false;
    pending_.erase(0, length + 1);
    return line;
}

std::optional<InputLine> InputLines::Next() {
    std::size_t searched = 0;
    while (true) {
        const std::size_t end = pending_.find('\n', searched);
        if (end != std::string::npos) {
            return Take(end);
        }
        if (pending_.size() > kLongestLine) {
            isTooLong_ = true;
            pending_.clear();
        }
        searched = pending_.size();
        if (ReadMore()) {
            continue;
        }
        const bool hasLine = hasEnded_ && (isTooLong_ || !pending_.empty());
        return hasLine ? std::optional(Take(pending_.size())) : std::nullopt;
    }
}

}  // namespace krt9ctl
