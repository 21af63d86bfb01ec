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

    // Made to be read: Serialize() answers null.
    SWindowRequestSpec();
    SWindowRequestSpec(const std::string& windowName, bool partialMatch);

    static bool SkipOver(BoundedBytes& body);
    static std::optional<std::size_t> CompleteSize(const unsigned char* bytes, std::size_t length);

    unsigned char* Serialize() override;
    void Deserialize(const unsigned char* src) override;
    unsigned int SerialBufferSize() override;

    bool flag = false;  // the title may be a part of the window's
    std::string name;   // UTF-8

  private:
    unsigned int ComputedSize() const;

    std::vector<unsigned char> buffer_;  // empty in a record made to be read
};
