#include <fcntl.h>
#include <fmt/format.h>
#include <sys/file.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>

#include "platform/LocalSocket/SessionDirectory.h"
#include "platform/LocalSocket/Socket.h"
#include "platform/LocalSocket/SocketAddress.h"

namespace local_socket {
namespace {

// A socket is bound under this name and gets its own once it listens, so that no client ever finds
// a socket that refuses. No name maps to it; the holder of the folder's lock may use it.
constexpr char kUnfinishedFileName[] = "#binding";

// Keeps every other process of the session from the names of the folder. Nothing under it waits for
// another process.
class DirectoryLock {
  public:
    explicit DirectoryLock(int directory) : directory_(directory) {
        while (flock(directory_, LOCK_EX) != 0 && errno == EINTR) {
        }
    }
    DirectoryLock(const DirectoryLock&) = delete;
    DirectoryLock& operator=(const DirectoryLock&) = delete;
    ~DirectoryLock() { flock(directory_, LOCK_UN); }

  private:
    int directory_;
};

Descriptor NewSocket() {
    return Descriptor(socket(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0));
}

// 0 or the error of the attempt to connect.
int ConnectTo(int socket, int directory, const std::string& fileName) {
    const SocketAddress address = AddressInDirectory(directory, fileName);
    return connect(socket, address.Get(), address.length) == 0 ? 0 : errno;
}

bool PeerIsSameUser(int socket) {
    ucred credentials{};
    socklen_t length = sizeof credentials;
    return getsockopt(socket, SOL_SOCKET, SO_PEERCRED, &credentials, &length) == 0 &&
           credentials.uid == geteuid();
}

// Why a file under a name of the session is not a socket that this user's processes could have left
// there, or nothing. The kernel follows a link to a socket, and reports for a file that is not one
// the same as for a socket that no process serves.
std::string PlantedFileProblem(int directory, const std::string& fileName) {
    struct stat status {};
    if (fstatat(directory, fileName.c_str(), &status, AT_SYMLINK_NOFOLLOW) != 0) {
        return {};  // what prevents looking at it also prevents using it
    }
    const std::string path = SessionDirectoryPath() + "/" + fileName;
    if (S_ISLNK(status.st_mode)) {
        return fmt::format("{} is a symbolic link instead of a socket", path);
    }
    if (!S_ISSOCK(status.st_mode)) {
        return fmt::format("{} is not a socket", path);
    }
    if (status.st_uid != geteuid()) {
        return fmt::format("{} belongs to user {} instead of {}", path, status.st_uid, geteuid());
    }
    return {};
}

enum class Occupant { none, dead, living, unknown };

Occupant ProbeOccupant(int directory, const std::string& fileName) {
    const Descriptor probe = NewSocket();
    if (!probe) {
        return Occupant::unknown;
    }
    switch (ConnectTo(probe.get(), directory, fileName)) {
        case ENOENT:
            return Occupant::none;
        case ECONNREFUSED:
            return Occupant::dead;
        case 0:
        case EAGAIN:      // its backlog is full
        case EPROTOTYPE:  // a socket of another kind
            return Occupant::living;
        default:
            return Occupant::unknown;
    }
}

// Makes the socket listen in the folder under its final name. The folder is locked.
bool ListenIn(int directory, const std::string& fileName, int socket, struct stat* status) {
    unlinkat(directory, kUnfinishedFileName, 0);
    const SocketAddress address = AddressInDirectory(directory, kUnfinishedFileName);
    return bind(socket, address.Get(), address.length) == 0 && listen(socket, SOMAXCONN) == 0 &&
           fstatat(directory, kUnfinishedFileName, status, AT_SYMLINK_NOFOLLOW) == 0 &&
           renameat(directory, kUnfinishedFileName, directory, fileName.c_str()) == 0;
}

Descriptor OpenReserve() {
    return Descriptor(open("/dev/null", O_RDONLY | O_CLOEXEC));
}

}  // namespace

std::optional<Listener> Listener::Create(std::string_view name, bool* taken, std::string* problem) {
    bool unusedTaken = false;
    std::string unusedProblem;
    taken = taken != nullptr ? taken : &unusedTaken;
    problem = problem != nullptr ? problem : &unusedProblem;
    *taken = false;

    Listener listener;
    listener.fileName_ = SocketFileName(name);
    listener.directory_ = OpenSessionDirectory(IfMissing::make, problem);
    if (!listener.directory_) {
        return std::nullopt;
    }
    const DirectoryLock lock(listener.directory_.get());
    for (const std::string& fileName : {listener.fileName_, std::string(kUnfinishedFileName)}) {
        *problem = PlantedFileProblem(listener.directory_.get(), fileName);
        if (!problem->empty()) {
            return std::nullopt;
        }
    }
    switch (ProbeOccupant(listener.directory_.get(), listener.fileName_)) {
        case Occupant::living:
            *taken = true;
            return std::nullopt;
        case Occupant::unknown:
            *problem = fmt::format("{}/{} cannot be probed: {}", SessionDirectoryPath(),
                                   listener.fileName_, std::strerror(errno));
            return std::nullopt;
        case Occupant::none:
        case Occupant::dead:
            break;
    }
    Descriptor socket = NewSocket();
    struct stat status {};
    if (!socket ||
        !ListenIn(listener.directory_.get(), listener.fileName_, socket.get(), &status)) {
        *problem = fmt::format("{}/{} cannot be served: {}", SessionDirectoryPath(),
                               listener.fileName_, std::strerror(errno));
        return std::nullopt;
    }
    listener.descriptor_ = std::move(socket);
    listener.reserve_ = OpenReserve();
    listener.device_ = status.st_dev;
    listener.inode_ = status.st_ino;
    return listener;
}

Listener& Listener::operator=(Listener&& other) noexcept {
    if (this != &other) {
        Withdraw();
        directory_ = std::move(other.directory_);
        descriptor_ = std::move(other.descriptor_);
        reserve_ = std::move(other.reserve_);
        fileName_ = std::move(other.fileName_);
        device_ = other.device_;
        inode_ = other.inode_;
    }
    return *this;
}

void Listener::Withdraw() {
    if (!descriptor_) {
        return;
    }
    const DirectoryLock lock(directory_.get());
    // The inode cannot have been given to another file: the socket, still open, holds it.
    struct stat status {};
    if (fstatat(directory_.get(), fileName_.c_str(), &status, AT_SYMLINK_NOFOLLOW) == 0 &&
        status.st_dev == device_ && status.st_ino == inode_) {
        unlinkat(directory_.get(), fileName_.c_str(), 0);
    }
    descriptor_.reset();
}

Descriptor Listener::Accept() {
    for (;;) {
        Descriptor client(
            accept4(descriptor_.get(), nullptr, nullptr, SOCK_NONBLOCK | SOCK_CLOEXEC));
        if (client) {
            if (PeerIsSameUser(client.get())) {
                return client;
            }
        } else if (errno == EMFILE || errno == ENFILE) {
            return RefuseForWantOfDescriptors();
        } else if (errno != EINTR && errno != ECONNABORTED) {
            return {};
        }
    }
}

Descriptor Listener::RefuseForWantOfDescriptors() {
    int client = -1;
    do {
        reserve_.reset();
        client = accept4(descriptor_.get(), nullptr, nullptr, SOCK_CLOEXEC);
        if (client >= 0) {
            close(client);
        }
        reserve_ = OpenReserve();
    } while (client >= 0);
    return {};
}

Descriptor Connect(std::string_view name, std::string* problem) {
    std::string unusedProblem;
    problem = problem != nullptr ? problem : &unusedProblem;
    problem->clear();
    const Descriptor directory = OpenSessionDirectory(IfMissing::leave, problem);
    if (!directory) {
        return {};
    }
    *problem = PlantedFileProblem(directory.get(), SocketFileName(name));
    if (!problem->empty()) {
        return {};
    }
    Descriptor socket = NewSocket();
    if (!socket || ConnectTo(socket.get(), directory.get(), SocketFileName(name)) != 0) {
        return {};
    }
    if (!PeerIsSameUser(socket.get())) {
        *problem = fmt::format("{}/{} is served by another user", SessionDirectoryPath(),
                               SocketFileName(name));
        return {};
    }
    return socket;
}

std::string NameProblem(std::string_view name) {
    std::string unused;
    const Descriptor directory = OpenSessionDirectory(IfMissing::leave, &unused);
    return directory ? PlantedFileProblem(directory.get(), SocketFileName(name)) : std::string();
}

}  // namespace local_socket
