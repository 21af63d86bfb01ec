#include "protocol/WindowRequestSpec.h"

SWindowRequestSpec::SWindowRequestSpec() : SMessageSpec(kSmallestSize) {}

SWindowRequestSpec::SWindowRequestSpec(const std::string& windowName, bool partialMatch)
    : SMessageSpec(kSmallestSize), flag(partialMatch), name(windowName) {
    serialSize = ComputedSize();
    buffer_.resize(serialSize);
}

std::optional<std::size_t> SWindowRequestSpec::CompleteSize(const unsigned char* bytes,
                                                            std::size_t length) {
    return CompleteSizeOf<SWindowRequestSpec>(bytes, length);
}

bool SWindowRequestSpec::SkipOver(BoundedBytes& body) {
    if (!body.Holds(kSmallestSize)) {
        return false;
    }
    body.SkipInteger();
    return body.SkipString().has_value();
}

unsigned char* SWindowRequestSpec::Serialize() {
    if (buffer_.empty()) {
        return nullptr;
    }
    buffer_.resize(ComputedSize());
    SerializeStringField(name, buffer_.data() + SerializeField(flag ? 1 : 0, buffer_.data()));
    return buffer_.data();
}

void SWindowRequestSpec::Deserialize(const unsigned char* src) {
    unsigned int flagValue = 0;
    src += DeserializeField(src, &flagValue);
    flag = flagValue != 0;
    DeserializeStringField(src, name);
}

unsigned int SWindowRequestSpec::SerialBufferSize() {
    return ComputedSize();
}

unsigned int SWindowRequestSpec::ComputedSize() const {
    return kSmallestSize + static_cast<unsigned int>(name.length());
}
