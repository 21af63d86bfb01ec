// The request for the frame of the first open window among candidates.
#pragma once

#include <cstddef>
#include <optional>
#include <vector>

#include "protocol/BoundedBytes.h"
#include "protocol/MessageSpec.h"
#include "windows/TargetWindowList.h"
#include "windows/VEK_Driver_TargetWindowInfo.h"

struct STargetWindowRequestSpec : SMessageSpec {
    static constexpr unsigned int kSmallestSize = 4;  // bytes: no candidate

    STargetWindowRequestSpec();

    // Copies the candidates.
    STargetWindowRequestSpec(const VEK_Driver_TargetWindowInfo* infos, unsigned int count);

    // A name that does not fit its fields in a VEK_Driver_TargetWindowInfo, which hold 255 bytes
    // and 1,024 UTF-16 units, makes the record incomplete.
    static bool SkipOver(BoundedBytes& body);
    static std::optional<std::size_t> CompleteSize(const unsigned char* bytes, std::size_t length);

    // Bytes of one candidate, the second name's own bytes left out: see SerialBufferSize().
    static unsigned int CalcInfoFieldSize(const VEK_Driver_TargetWindowInfo& info);

    unsigned char* Serialize() override;
    void Deserialize(const unsigned char* src) override;

    // Not the sum of the fields: each candidate adds the sizes of all candidates up to itself. With
    // several candidates that is more than the fields take: the surplus, which has room for the
    // uncounted second names, is filled with zeros. With one candidate the second name can lie
    // beyond this size; the buffer of Serialize() holds it all the same.
    unsigned int SerialBufferSize() override;

    TargetWindowList targets;

  private:
    unsigned int StoredSize() const;

    std::vector<unsigned char> buffer_;
};
