#include "platform/LocalSocket/SessionDirectory.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>

namespace local_socket {
namespace {

// An empty variable counts as one that is not set.
bool IsSet(const char* value) {
    return value != nullptr && *value != '\0';
}

// Why the path could not be opened as a real folder. A link is named as such: the kernel's own
// words for it would speak of something that is "not a directory".
std::string OpenProblem(const std::string& path, int error) {
    struct stat status {};
    if (lstat(path.c_str(), &status) == 0 && S_ISLNK(status.st_mode)) {
        return fmt::format("the session folder {} is a symbolic link", path);
    }
    if (error == ENOTDIR) {
        return fmt::format("the session folder {} is not a folder", path);
    }
    return fmt::format("the session folder {} cannot be opened: {}", path, std::strerror(error));
}

// Why the open folder is not private to this user, or nothing.
std::string OwnershipProblem(const std::string& path, int directory) {
    struct stat status {};
    if (fstat(directory, &status) != 0) {
        return fmt::format("the session folder {} cannot be examined: {}", path,
                           std::strerror(errno));
    }
    if (status.st_uid != geteuid()) {
        return fmt::format("the session folder {} belongs to user {} instead of {}", path,
                           status.st_uid, geteuid());
    }
    if ((status.st_mode & 07777) != 0700) {
        return fmt::format("the session folder {} has mode {:04o} instead of 0700", path,
                           status.st_mode & 07777);
    }
    return {};
}

}  // namespace

std::string SessionDirectoryPath(const char* sessionVariable, const char* runtimeVariable) {
    if (IsSet(sessionVariable)) {
        std::string path = sessionVariable;
        // The kernel follows a link that is written with a slash behind it.
        while (path.size() > 1 && path.back() == '/') {
            path.pop_back();
        }
        return path;
    }
    if (IsSet(runtimeVariable)) {
        return std::string(runtimeVariable) + "/krt9";
    }
    return fmt::format("/tmp/krt9-{}", geteuid());
}

std::string SessionDirectoryPath() {
    return SessionDirectoryPath(std::getenv("KRT9_SESSION_DIR"), std::getenv("XDG_RUNTIME_DIR"));
}

Descriptor OpenSessionDirectory(IfMissing ifMissing, std::string* problem) {
    const std::string path = SessionDirectoryPath();
    if (path.front() != '/') {
        *problem = fmt::format("the session folder {} is not an absolute path", path);
        return {};
    }
    if (ifMissing == IfMissing::make && mkdir(path.c_str(), 0700) != 0 && errno != EEXIST) {
        *problem =
            fmt::format("the session folder {} cannot be made: {}", path, std::strerror(errno));
        return {};
    }
    Descriptor directory(open(path.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    if (!directory) {
        if (errno != ENOENT || ifMissing == IfMissing::make) {
            *problem = OpenProblem(path, errno);
        }
        return {};
    }
    *problem = OwnershipProblem(path, directory.get());
    if (!problem->empty()) {
        return {};
    }
    return directory;
}

}  // namespace local_socket
