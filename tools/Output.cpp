#include "tools/Output.h"

#include <fmt/format.h>
#include <poll.h>

#include <cerrno>
#include <cstring>

#include "tools/terminal/Terminal.h"

namespace krt9ctl {

Output::Output(const Streams& streams, bool json)
    : streams_(streams),
      json_(json),
      progress_(streams.err, terminal::IsTerminal(streams.errDescriptor), "krt9ctl") {}

bool Output::HasColour() const {
    return !json_ && terminal::WantsColour(streams_.outDescriptor);
}

void Output::Write(const std::string& text) {
    if (status_ != ExitCode::ok) {
        return;
    }
    progress_.Clear();
    errno = 0;
    streams_.out << text << std::flush;
    if (streams_.out) {
        return;
    }
    const int problem = errno;
    status_ = problem == EPIPE ? ExitCode::pipeClosed : ExitCode::failure;
    if (status_ == ExitCode::failure) {
        WriteError(fmt::format("the output cannot be written: {}", std::strerror(problem)), true);
    }
}

void Output::WriteError(const std::string& sentence, bool isFailure) {
    progress_.Clear();
    const std::string name = terminal::MessagePrefix("krt9ctl", streams_.errDescriptor, isFailure);
    streams_.err << name << ' ' << sentence << std::endl;
}

void Output::Result(const Json& object, const std::string& sentence) {
    if (json_) {
        Write(OneLine(object) + '\n');
    } else if (!sentence.empty()) {
        Write(sentence + '\n');
    }
}

void Output::Document(const std::string& text) {
    Write(text);
}

void Output::Fail(ExitCode code, const std::string& sentence, Json object) {
    if (json_) {
        object["error"] = ExitCodeName(code);
        object["message"] = sentence;
        Write(OneLine(object) + '\n');
    }
    WriteError(sentence, true);
}

void Output::Remark(const std::string& sentence) {
    WriteError(sentence, false);
}

void Output::NoticeClosedPipe() {
    pollfd watched{streams_.outDescriptor, 0, 0};
    if (status_ == ExitCode::ok && streams_.outDescriptor >= 0 && poll(&watched, 1, 0) > 0 &&
        (watched.revents & (POLLERR | POLLHUP)) != 0) {
        status_ = ExitCode::pipeClosed;
    }
}

}  // namespace krt9ctl
