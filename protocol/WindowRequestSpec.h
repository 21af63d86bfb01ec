// The request for the frame of a window named by its title.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "protocol/BoundedBytes.h"
#include "protocol/MessageSpec.h"

struct SWindowRequestSpec : SMessageSpec {
    static constexpr unsigned int kSmallestSize = 5;  // bytes: flag and empty name

    // For reading only: Serialize() returns null.
    SWindowRequestSpec();
    SWindowRequestSpec(const std::string& windowName, bool partialMatch);

    static bool SkipOver(BoundedBytes& body);
    static std::optional<std::size_t> CompleteSize(const unsigned char* bytes, std::size_t length);

    unsigned char* Serialize() override;
    void Deserialize(const unsigned char* src) override;
    unsigned int SerialBufferSize() override;

    bool flag = false;  // `name` may be a part of the window's title
    std::string name;   // UTF-8

  private:
    unsigned int ComputedSize() const;

    std::vector<unsigned char> buffer_;  // empty in a record for reading only
};
