// Strings. A string is a sequence of UTF-16 code units; all lengths and ranges count those. It may
// hold unpaired surrogates and NULs.
#pragma once

#include <CoreFoundation/CFBase.h>

#include <cstdarg>

using CFStringEncoding = UInt32;

enum : CFStringEncoding {
    kCFStringEncodingMacRoman = 0x00000000,
    kCFStringEncodingUTF16 = 0x00000100,  // in the host's byte order
    kCFStringEncodingUnicode = 0x00000100,
    kCFStringEncodingISOLatin1 = 0x00000201,
    kCFStringEncodingWindowsLatin1 = 0x00000500,
    kCFStringEncodingASCII = 0x00000600,
    kCFStringEncodingNextStepLatin = 0x00000B01,
    kCFStringEncodingNonLossyASCII = 0x00000BFF,
    kCFStringEncodingUTF8 = 0x08000100,
    kCFStringEncodingUTF32 = 0x0C000100,
    kCFStringEncodingUTF16BE = 0x10000100,
    kCFStringEncodingUTF16LE = 0x14000100,
    kCFStringEncodingUTF32BE = 0x18000100,
    kCFStringEncodingUTF32LE = 0x1C000100,
};
static const CFStringEncoding kCFStringEncodingInvalidId = 0xFFFFFFFFU;

using CFStringCompareFlags = CFOptionFlags;
enum : CFStringCompareFlags {
    kCFCompareCaseInsensitive = 1,
    kCFCompareBackwards = 4,
    kCFCompareAnchored = 8,
    kCFCompareNonliteral = 16,
    kCFCompareLocalized = 32,
    kCFCompareNumerically = 64,
    kCFCompareDiacriticInsensitive = 128,
    kCFCompareWidthInsensitive = 256,
    kCFCompareForcedOrdering = 512,
};

// The constant string of a literal: made on first use, immortal, and the same object wherever the
// same text is written. It may also initialise variables at namespace scope.
#define CFSTR(literal)                                                                   \
    ([]() noexcept -> CFStringRef {                                                      \
        static const CFStringRef constant = __CFStringMakeConstantString("" literal ""); \
        return constant;                                                                 \
    }())

extern "C" {

CFStringRef __CFStringMakeConstantString(const char* text);  // UTF-8

CFTypeID CFStringGetTypeID(void);

// Null when the bytes are not text in that encoding. The byte-order mark of UTF-8 is left out.
CFStringRef CFStringCreateWithCString(CFAllocatorRef alloc, const char* cStr,
                                      CFStringEncoding encoding);
// isExternalRepresentation: UTF-16 may begin with a byte-order mark, and is big-endian without one.
// Half a unit at its end is left out.
CFStringRef CFStringCreateWithBytes(CFAllocatorRef alloc, const UInt8* bytes, CFIndex numBytes,
                                    CFStringEncoding encoding, Boolean isExternalRepresentation);
CFStringRef CFStringCreateWithCharacters(CFAllocatorRef alloc, const UniChar* chars,
                                         CFIndex numChars);
CFStringRef CFStringCreateCopy(CFAllocatorRef alloc, CFStringRef theString);

// printf conversions, %@ for objects; %s text is in the system encoding. A width or precision of %@
// is ignored; a letter that is not a conversion stands for itself. formatOptions is not used.
CFStringRef CFStringCreateWithFormat(CFAllocatorRef alloc, CFDictionaryRef formatOptions,
                                     CFStringRef format, ...);

// maxLength is a hint; 0 means none.
CFMutableStringRef CFStringCreateMutable(CFAllocatorRef alloc, CFIndex maxLength);
CFMutableStringRef CFStringCreateMutableCopy(CFAllocatorRef alloc, CFIndex maxLength,
                                             CFStringRef theString);
void CFStringReplaceAll(CFMutableStringRef theString, CFStringRef replacement);

CFIndex CFStringGetLength(CFStringRef theString);
void CFStringGetCharacters(CFStringRef theString, CFRange range, UniChar* buffer);

// bufferSize counts the terminating NUL. False, with an empty string in the buffer, when the text
// does not fit or has a character that the encoding lacks.
Boolean CFStringGetCString(CFStringRef theString, char* buffer, CFIndex bufferSize,
                           CFStringEncoding encoding);
// Returns how many code units of the range were converted. lossByte 0: stops at the first character
// that the encoding lacks. buffer may be null to learn the size.
CFIndex CFStringGetBytes(CFStringRef theString, CFRange range, CFStringEncoding encoding,
                         UInt8 lossByte, Boolean isExternalRepresentation, UInt8* buffer,
                         CFIndex maxBufLen, CFIndex* usedBufLen);
CFIndex CFStringGetMaximumSizeForEncoding(CFIndex length, CFStringEncoding encoding);
// Decomposed UTF-8, as file systems of macOS store names.
Boolean CFStringGetFileSystemRepresentation(CFStringRef string, char* buffer, CFIndex maxBufLen);
CFStringEncoding CFStringGetSystemEncoding(void);  // MacRoman

// Only options 0 (by code units) is provided.
CFComparisonResult CFStringCompare(CFStringRef theString1, CFStringRef theString2,
                                   CFStringCompareFlags compareOptions);
Boolean CFStringHasPrefix(CFStringRef theString, CFStringRef prefix);

// The number that the text begins with, blanks before and after its sign skipped: 0 when there is
// none, held at the limits of 32 bits.
SInt32 CFStringGetIntValue(CFStringRef str);

}  // extern "C"
