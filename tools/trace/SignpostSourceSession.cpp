// The processes of the session connect to the one that listens under the tracer's name.
#include <poll.h>

#include <list>
#include <stdexcept>
#include <utility>

#include "platform/LocalSocket/Socket.h"
#include "platform/UnifiedLogging/TracerName.h"
#include "tools/Session.h"
#include "tools/trace/SignpostSource.h"

namespace krt9ctl::trace {

namespace {

using local_socket::Descriptor;
using local_socket::FrameReader;

class SessionSource : public SignpostSource {
  public:
    explicit SessionSource(local_socket::Listener listener) : listener_(std::move(listener)) {}

    std::vector<std::string> Read(double seconds) override;
    bool HasEnded() const override { return false; }

  private:
    struct Process {
        Descriptor socket;
        FrameReader reader{unified_logging::kLongestLine};
    };

    void Await(double seconds);

    local_socket::Listener listener_;
    std::list<Process> processes_;
};

void SessionSource::Await(double seconds) {
    std::vector<pollfd> watched = {{listener_.descriptor(), POLLIN, 0}};
    for (const Process& process : processes_) {
        watched.push_back({process.socket.get(), POLLIN, 0});
    }
    poll(watched.data(), watched.size(), static_cast<int>(seconds * 1000));
}

std::vector<std::string> SessionSource::Read(double seconds) {
    Await(seconds);
    for (Descriptor socket = listener_.Accept(); socket; socket = listener_.Accept()) {
        processes_.push_back({std::move(socket)});
    }
    std::vector<std::string> lines;
    for (auto process = processes_.begin(); process != processes_.end();) {
        const auto status = process->reader.ReadFrom(process->socket.get());
        while (const auto line = process->reader.Next()) {
            lines.emplace_back(line->begin(), line->end());
        }
        process =
            status == FrameReader::Status::open ? std::next(process) : processes_.erase(process);
    }
    return lines;
}

}  // namespace

std::unique_ptr<SignpostSource> OpenSignposts() {
    CheckSession();
    bool isTaken = false;
    std::string problem;
    auto listener =
        local_socket::Listener::Create(unified_logging::kTracerName, &isTaken, &problem);
    if (isTaken) {
        return nullptr;
    }
    if (!listener) {
        throw std::runtime_error(problem);
    }
    return std::make_unique<SessionSource>(std::move(*listener));
}

}  // namespace krt9ctl::trace
