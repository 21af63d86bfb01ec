// The candidates of one target-window request, packed: each takes the bytes that its names have,
// and never more than on the wire. As a VEK_Driver_TargetWindowInfo, which has room for the longest
// names, the smallest candidate would take 186 times as much.
#pragma once

#include <cstddef>
#include <iterator>
#include <vector>

#include "windows/VEK_Driver_TargetWindowInfo.h"

class TargetWindowList {
  public:
    using Info = VEK_Driver_TargetWindowInfo;

    // Iterates over copies of the candidates, in the order of their indexes.
    class Iterator {
      public:
        using iterator_category = std::input_iterator_tag;
        using value_type = Info;
        using difference_type = std::ptrdiff_t;
        using pointer = const Info*;
        using reference = Info;

        explicit Iterator(const unsigned char* next) : next_(next) {}
        Info operator*() const;
        Iterator& operator++();
        bool operator==(const Iterator&) const = default;

      private:
        const unsigned char* next_;
    };

    TargetWindowList() = default;

    // Copies the candidates.
    TargetWindowList(const Info* infos, std::size_t count);

    // Bytes that Append() adds for a candidate. A name counts up to its terminator, at most 255
    // bytes, and its UTF-16 form with the number of units it gives, at most 1,024.
    static std::size_t PackedSize(const Info& info);

    // Allocates memory for candidates of that total size.
    void Reserve(std::size_t packedBytes) { bytes_.reserve(packedBytes); }
    void Append(const Info& info);

    std::size_t size() const { return count_; }
    bool empty() const { return count_ == 0; }
    Iterator begin() const { return Iterator(bytes_.data()); }
    Iterator end() const { return Iterator(bytes_.data() + bytes_.size()); }

    // A copy of the candidate at an index below size(). Takes time linear in the index.
    Info operator[](std::size_t index) const;

  private:
    std::vector<unsigned char> bytes_;
    std::size_t count_ = 0;
};
