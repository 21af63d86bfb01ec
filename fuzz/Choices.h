// The decisions of a fuzz input, byte by byte. At its end an input decides 0.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <iterator>
#include <span>
#include <string>
#include <vector>

namespace fuzz {

enum class End { front, back };

// Reads from one end of the input. Two readers, one at each end, share it: what a mutation inserts
// for one of them leaves the other's choices as they were.
class Choices {
  public:
    Choices(std::span<const std::uint8_t>& input, End end) : input_(input), end_(end) {}

    bool Exhausted() const { return input_.empty(); }

    std::uint8_t Byte() {
        if (input_.empty()) {
            return 0;
        }
        const std::uint8_t byte = end_ == End::front ? input_.front() : input_.back();
        input_ = end_ == End::front ? input_.subspan(1) : input_.first(input_.size() - 1);
        return byte;
    }

    bool Flag() { return (Byte() & 1U) != 0; }

    // 0 to count - 1; count is at most 256.
    std::size_t Below(std::size_t count) { return Byte() % count; }

    template <typename Number>
    Number Raw() {
        std::uint8_t bytes[sizeof(Number)];
        std::generate(std::begin(bytes), std::end(bytes), [this] { return Byte(); });
        Number number;
        std::memcpy(&number, bytes, sizeof number);
        return number;
    }

    template <typename Table>
    const auto& Pick(const Table& table) {
        return table[Below(std::size(table))];
    }

    // At most `longest` bytes, fewer at the end of the input.
    std::vector<std::uint8_t> Bytes(std::size_t longest) {
        std::vector<std::uint8_t> bytes(std::min(longest, input_.size()));
        std::generate(bytes.begin(), bytes.end(), [this] { return Byte(); });
        return bytes;
    }

    std::string Text(std::size_t longest) {
        const std::vector<std::uint8_t> bytes = Bytes(longest);
        return {bytes.begin(), bytes.end()};
    }

  private:
    std::span<const std::uint8_t>& input_;
    End end_;
};

}  // namespace fuzz
