// Where the socket of a name is in the session's folder.
#pragma once

#include <sys/socket.h>
#include <sys/un.h>

#include <string>
#include <string_view>

namespace local_socket {

// The file name of a name of any bytes and any length: the name itself, with every byte that is not
// a letter, digit, '-', '_' or inner '.' as %XX; a long one is '=' and its SHA-256 in hex. It never
// leaves the folder, never begins with '#' or '.', and no two names share one.
std::string SocketFileName(std::string_view name);

struct SocketAddress {
    sockaddr_un address;
    socklen_t length;

    const sockaddr* Get() const { return reinterpret_cast<const sockaddr*>(&address); }
};

// The address of a file in an open folder. A socket's address holds only 108 bytes, so it goes
// through the folder's descriptor and stays short however deep the folder lies.
SocketAddress AddressInDirectory(int directory, const std::string& fileName);

}  // namespace local_socket
