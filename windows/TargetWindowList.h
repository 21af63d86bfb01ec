// The candidates of one target-window request in little memory: each takes its names' own bytes,
// and never more than it takes on the wire. In the form below, with room for the longest names, the
// smallest candidates would take 186 times that.
#pragma once

#include <cstddef>
#include <iterator>
#include <vector>

#include "windows/VEK_Driver_TargetWindowInfo.h"

class TargetWindowList {
  public:
    using Info = VEK_Driver_TargetWindowInfo;

    // Goes over copies of the candidates, in the order of their indexes.
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

    // Bytes that Append() takes for a candidate. Of its fields, what they hold counts: a name up to
    // its terminator, at most 255 bytes, and as many UTF-16 units as it says, at most 1,024.
    static std::size_t PackedSize(const Info& info);

    // Memory for candidates of that many bytes together.
    void Reserve(std::size_t packedBytes) { bytes_.reserve(packedBytes); }
    void Append(const Info& info);

    std::size_t size() const { return count_; }
    bool empty() const { return count_ == 0; }
    Iterator begin() const { return Iterator(bytes_.data()); }
    Iterator end() const { return Iterator(bytes_.data() + bytes_.size()); }

    // A copy of the candidate at an index below size(); goes over all before it.
    Info operator[](std::size_t index) const;

  private:
    std::vector<unsigned char> bytes_;
    std::size_t count_ = 0;
};
