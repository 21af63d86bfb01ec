// A process of another user, as the tests need it: it connects to a socket again and again, or it
// serves one.
//
//   stranger connect SOCKET TIMES HEX   connects, sends the bytes and reads; prints what came of it
//   stranger serve SOCKET               prints "serving", and "met" for every client; ends on a
//                                       signal

#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "scenes/notation/Hex.h"

namespace {

constexpr int kPatience = 5000;  // milliseconds

sockaddr_un Address(const std::string& path) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    path.copy(address.sun_path, sizeof address.sun_path - 1);
    return address;
}

struct Outcome {
    int refused = 0;   // the system did not let it connect
    int closed = 0;    // it connected and was closed without a byte
    int answered = 0;  // a byte came back
    int kept = 0;      // nothing happened
};

void TryOnce(const std::string& path, const std::vector<std::uint8_t>& bytes, Outcome& outcome) {
    const sockaddr_un address = Address(path);
    const int socket = ::socket(AF_UNIX, SOCK_STREAM, 0);
    if (connect(socket, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
        outcome.refused += errno == EACCES ? 1 : 0;
        close(socket);
        return;
    }
    send(socket, bytes.data(), bytes.size(), MSG_NOSIGNAL);
    pollfd readable{socket, POLLIN, 0};
    char byte = 0;
    if (poll(&readable, 1, kPatience) <= 0) {
        ++outcome.kept;
    } else if (read(socket, &byte, 1) > 0) {
        ++outcome.answered;
    } else {
        ++outcome.closed;
    }
    close(socket);
}

int Connect(const std::string& path, int times, const std::vector<std::uint8_t>& bytes) {
    Outcome outcome;
    for (int i = 0; i < times; ++i) {
        TryOnce(path, bytes, outcome);
    }
    std::printf("%d refused, %d closed, %d answered, %d kept\n", outcome.refused, outcome.closed,
                outcome.answered, outcome.kept);
    return 0;
}

int Serve(const std::string& path) {
    const sockaddr_un address = Address(path);
    const int socket = ::socket(AF_UNIX, SOCK_STREAM, 0);
    if (bind(socket, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0 ||
        listen(socket, 8) != 0) {
        std::perror("stranger");
        return 1;
    }
    std::printf("serving\n");
    std::fflush(stdout);
    while (accept(socket, nullptr, nullptr) >= 0) {
        std::printf("met\n");
        std::fflush(stdout);
    }
    return 0;
}

}  // namespace

int main(int count, char** arguments) {
    const std::string verb = count > 1 ? arguments[1] : "";
    if (verb == "connect" && count == 5) {
        return Connect(arguments[2], std::stoi(arguments[3]),
                       scene_notation::ParseHex(arguments[4]).value());
    }
    if (verb == "serve" && count == 3) {
        return Serve(arguments[2]);
    }
    return 2;
}
