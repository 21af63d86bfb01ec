#include "platform/LocalSocket/SocketAddress.h"

#include <fmt/format.h>
#include <sha2.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace local_socket {
namespace {

// Longer file names are hashed, so that every address fits.
constexpr std::size_t kLongestPlainFileName = 64;

bool IsPlain(char character, bool first) {
    return (character >= 'a' && character <= 'z') || (character >= 'A' && character <= 'Z') ||
           (character >= '0' && character <= '9') || character == '-' || character == '_' ||
           (character == '.' && !first);
}

std::string HashedFileName(std::string_view name) {
    char hex[SHA256_DIGEST_STRING_LENGTH];
    SHA256Data(reinterpret_cast<const std::uint8_t*>(name.data()), name.size(), hex);
    return std::string("=") + hex;
}

}  // namespace

std::string SocketFileName(std::string_view name) {
    if (name.empty()) {
        return "%";
    }
    std::string fileName;
    for (const char character : name) {
        if (IsPlain(character, fileName.empty())) {
            fileName += character;
        } else {
            fileName += fmt::format("%{:02X}", static_cast<unsigned char>(character));
        }
        if (fileName.size() > kLongestPlainFileName) {
            return HashedFileName(name);
        }
    }
    return fileName;
}

SocketAddress AddressInDirectory(int directory, const std::string& fileName) {
    const std::string path = fmt::format("/proc/self/fd/{}/{}", directory, fileName);
    SocketAddress result{};
    result.address.sun_family = AF_UNIX;
    std::copy_n(path.data(), std::min(path.size(), sizeof result.address.sun_path - 1),
                result.address.sun_path);
    result.length = sizeof result.address;
    return result;
}

}  // namespace local_socket
