#include "platform/CoreFoundation/Strings/CanonicalText.h"

#include <unicode/normalizer2.h>
#include <unicode/uchar.h>
#include <unicode/unistr.h>
#include <unicode/utf16.h>

#include <algorithm>
#include <string>

namespace core_foundation {
namespace {

bool IsMark(UChar32 character) {
    return u_hasBinaryProperty(character, UCHAR_GRAPHEME_EXTEND);
}

// Core Foundation decomposes characters by its set of decomposable characters, which has no
// Hangul syllables.
bool IsHangulSyllable(UChar32 character) {
    return u_getIntPropertyValue(character, UCHAR_HANGUL_SYLLABLE_TYPE) >= U_HST_LV_SYLLABLE;
}

void AppendDecomposed(UChar32 character, std::u32string& decomposed) {
    static const icu::Normalizer2* const normalizer = [] {
        UErrorCode error = U_ZERO_ERROR;
        return icu::Normalizer2::getNFDInstance(error);
    }();
    icu::UnicodeString parts;
    if (IsHangulSyllable(character) || !normalizer->getDecomposition(character, parts)) {
        decomposed += static_cast<char32_t>(character);
        return;
    }
    for (int32_t at = 0; at < parts.length(); at = parts.moveIndex32(at, 1)) {
        decomposed += static_cast<char32_t>(parts.char32At(at));
    }
}

// Removes the character at the front, with the marks after it, from the text. An unpaired surrogate
// is a character of its own.
std::u32string TakeCluster(std::u16string_view& text) {
    std::u32string cluster;
    std::size_t end = 0;
    for (std::size_t next = 0; next < text.size(); end = next) {
        UChar32 character = 0;
        U16_NEXT(text.data(), next, text.size(), character);
        if (end > 0 && !IsMark(character)) {
            break;
        }
        AppendDecomposed(character, cluster);
    }
    text.remove_prefix(end);
    // Marks of one class keep their order; none is defined for class 0.
    const auto isBase = [](char32_t c) {
        return u_getCombiningClass(static_cast<UChar32>(c)) == 0;
    };
    for (auto run = cluster.begin(); run != cluster.end();) {
        const auto runEnd = std::find_if(run, cluster.end(), isBase);
        std::stable_sort(run, runEnd, [](char32_t a, char32_t b) {
            return u_getCombiningClass(static_cast<UChar32>(a)) <
                   u_getCombiningClass(static_cast<UChar32>(b));
        });
        run = std::find_if_not(runEnd, cluster.end(), isBase);
    }
    return cluster;
}

std::u32string Decomposed(std::u16string_view text) {
    std::u32string decomposed;
    while (!text.empty()) {
        decomposed += TakeCluster(text);
    }
    return decomposed;
}

// How many code units at the front of `text` decompose to `wanted`.
std::optional<std::size_t> PrefixLength(std::u16string_view text, std::u32string_view wanted) {
    const std::size_t length = text.size();
    while (!wanted.empty() && !text.empty()) {
        const std::u32string cluster = TakeCluster(text);
        if (!wanted.starts_with(cluster)) {
            return std::nullopt;
        }
        wanted.remove_prefix(cluster.size());
    }
    return wanted.empty() ? std::optional(length - text.size()) : std::nullopt;
}

}  // namespace

int CompareCanonically(std::u16string_view first, std::u16string_view second) {
    return Decomposed(first).compare(Decomposed(second));
}

std::optional<FoundText> FindCanonically(std::u16string_view text, std::u16string_view wanted) {
    const std::u32string decomposed = Decomposed(wanted);
    for (std::size_t start = 0; start < text.size(); ++start) {
        if (const auto length = PrefixLength(text.substr(start), decomposed)) {
            return FoundText{start, *length};
        }
    }
    return std::nullopt;
}

}  // namespace core_foundation
