// Unix-domain stream sockets of the session. All descriptors are non-blocking and close-on-exec.
// The frames that travel over them: Frames.h.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "platform/LocalSocket/Frames.h"

namespace local_socket {

// Owns one file descriptor.
class Descriptor {
  public:
    Descriptor() = default;
    explicit Descriptor(int descriptor) : descriptor_(descriptor) {}
    Descriptor(Descriptor&& other) noexcept : descriptor_(other.release()) {}
    Descriptor& operator=(Descriptor&& other) noexcept;
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    ~Descriptor() { reset(); }

    int get() const { return descriptor_; }
    explicit operator bool() const { return descriptor_ >= 0; }
    int release();
    void reset();

  private:
    int descriptor_ = -1;
};

// A listening socket under a name of the session. The name may hold any bytes: it is mapped to a
// file name that cannot leave the folder. The socket file is removed with the listener.
class Listener {
  public:
    // Nothing when a living process serves the name (`taken` is then true) or when it cannot be
    // served (`problem` then holds one line). A socket file that a dead process of this user left
    // behind is replaced; anything else under the name is left unchanged, and the name is refused.
    // A stopped process counts as living. Both pointers may be null.
    static std::optional<Listener> Create(std::string_view name, bool* taken, std::string* problem);

    Listener(Listener&&) noexcept = default;
    Listener& operator=(Listener&& other) noexcept;
    ~Listener() { Withdraw(); }

    int descriptor() const { return descriptor_.get(); }

    // The next waiting client of the same user; clients of other users are closed at once.
    // An invalid descriptor when no client waits. When the process has no descriptor left, the
    // waiting clients are closed too: left waiting, they would make the listener ready for ever.
    Descriptor Accept();

  private:
    Listener() = default;

    // Removes the socket file if it is still this listener's own, then stops listening.
    void Withdraw();
    Descriptor RefuseForWantOfDescriptors();

    Descriptor directory_;
    Descriptor descriptor_;
    Descriptor reserve_;  // released for a moment to close clients when no other one is left
    std::string fileName_;
    std::uint64_t device_ = 0;
    std::uint64_t inode_ = 0;
};

// Connects to the listener of that name; an invalid descriptor when there is none or when it
// belongs to another user. `problem` (may be null) holds one line when the session's folder or what
// is under the name is refused, and stays empty when there is simply no listener.
Descriptor Connect(std::string_view name, std::string* problem = nullptr);

// One line when anything but a socket of this user is under the name: a file, a symbolic link,
// another user's socket. Empty otherwise, also when the session's folder is missing or refused.
std::string NameProblem(std::string_view name);

}  // namespace local_socket
