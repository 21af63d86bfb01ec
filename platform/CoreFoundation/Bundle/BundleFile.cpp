#include "platform/CoreFoundation/Bundle/BundleFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "../PropertyList/PropertyListReader.h"

namespace bundle {

namespace {

class OpenFile {
  public:
    // O_NONBLOCK: a pipe without a writer must not block the caller.
    explicit OpenFile(const std::filesystem::path& path)
        : descriptor_(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK)) {}
    OpenFile(const OpenFile&) = delete;
    OpenFile& operator=(const OpenFile&) = delete;
    ~OpenFile() {
        if (descriptor_ >= 0) {
            close(descriptor_);
        }
    }

    // The length that a regular file claims to have; nothing for other files and for long ones.
    std::optional<std::size_t> ClaimedLength() const {
        struct stat status {};
        fstat(descriptor_, &status);  // leaves nothing there when the file could not be opened
        if (!S_ISREG(status.st_mode) ||
            static_cast<std::uint64_t>(status.st_size) > property_list::kLongestDocument) {
            return std::nullopt;
        }
        return static_cast<std::size_t>(status.st_size);
    }

    // As read(2), which is not interrupted by signals for a regular file.
    ssize_t Read(std::uint8_t* buffer, std::size_t size) const {
        return read(descriptor_, buffer, size);
    }

  private:
    int descriptor_;
};

}  // namespace

std::optional<std::vector<std::uint8_t>> ReadFile(const std::filesystem::path& path) {
    const OpenFile file(path);
    const std::optional<std::size_t> length = file.ClaimedLength();
    if (!length) {
        return std::nullopt;
    }
    // It may grow while it is read, and some files do not know their length: the end is where
    // reading ends.
    constexpr std::size_t kPiece = std::size_t{64} << 10U;
    std::vector<std::uint8_t> bytes;
    bytes.reserve(*length + kPiece);
    for (;;) {
        const std::size_t used = bytes.size();
        bytes.resize(used + kPiece);
        const ssize_t count = file.Read(bytes.data() + used, kPiece);
        if (count < 0 || bytes.size() > property_list::kLongestDocument + kPiece) {
            return std::nullopt;
        }
        bytes.resize(used + static_cast<std::size_t>(count));
        if (count == 0) {
            return bytes;
        }
    }
}

}  // namespace bundle
