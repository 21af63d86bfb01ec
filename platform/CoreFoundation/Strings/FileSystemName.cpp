#include "platform/CoreFoundation/Strings/FileSystemName.h"

#include <unicode/normalizer2.h>
#include <unicode/unistr.h>
#include <unicode/utf16.h>

#include "platform/CoreFoundation/Strings/TextEncoding.h"

namespace core_foundation {
namespace {

// macOS leaves symbols and compatibility ideographs as they are.
bool IsLeftAlone(UChar32 character) {
    return (character >= 0x2000 && character <= 0x2FFF) ||
           (character >= 0xF900 && character <= 0xFAFF) ||
           (character >= 0x2F800 && character <= 0x2FAFF);
}

}  // namespace

std::optional<std::string> FileSystemName(std::u16string_view text) {
    UErrorCode error = U_ZERO_ERROR;
    const icu::Normalizer2* const decomposer = icu::Normalizer2::getNFDInstance(error);
    std::u16string decomposed;
    std::size_t segment = 0;
    std::size_t next = 0;
    const auto finishSegment = [&](std::size_t end) {
        icu::UnicodeString source(false, text.data() + segment,
                                  static_cast<int32_t>(end - segment));
        const icu::UnicodeString result = decomposer->normalize(source, error);
        decomposed.append(result.getBuffer(), static_cast<std::size_t>(result.length()));
    };
    while (next < text.size()) {
        const std::size_t start = next;
        UChar32 character = 0;
        U16_NEXT(text.data(), next, text.size(), character);
        if (IsLeftAlone(character)) {
            finishSegment(start);
            decomposed.append(text, start, next - start);
            segment = next;
        }
    }
    finishSegment(text.size());
    return Encode(decomposed, kCFStringEncodingUTF8);
}

}  // namespace core_foundation
