// The declarations of Core Foundation's objects must be those of macOS, so that one source compiles
// for both. Checked by the compiler.
#include <CoreFoundation/CoreFoundation.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <type_traits>

namespace {

template <typename Declared, typename Expected>
constexpr bool kIs = std::is_same_v<Declared, Expected>;

// CFBase.h
static_assert(kIs<decltype(CFRetain), CFTypeRef(CFTypeRef)>);
static_assert(kIs<decltype(CFRelease), void(CFTypeRef)>);
static_assert(kIs<decltype(CFGetRetainCount), CFIndex(CFTypeRef)>);
static_assert(kIs<decltype(CFGetTypeID), CFTypeID(CFTypeRef)>);
static_assert(kIs<decltype(CFEqual), Boolean(CFTypeRef, CFTypeRef)>);
static_assert(kIs<decltype(CFHash), CFHashCode(CFTypeRef)>);
static_assert(kIs<decltype(CFCopyDescription), CFStringRef(CFTypeRef)>);
static_assert(kIs<decltype(CFCopyTypeIDDescription), CFStringRef(CFTypeID)>);
static_assert(kIs<decltype(CFNullGetTypeID), CFTypeID()>);

// CFString.h
static_assert(kIs<decltype(CFStringGetTypeID), CFTypeID()>);
static_assert(kIs<decltype(CFStringCreateWithCString),
                  CFStringRef(CFAllocatorRef, const char*, CFStringEncoding)>);
static_assert(kIs<decltype(CFStringCreateWithBytes),
                  CFStringRef(CFAllocatorRef, const UInt8*, CFIndex, CFStringEncoding, Boolean)>);
static_assert(kIs<decltype(CFStringCreateWithCharacters),
                  CFStringRef(CFAllocatorRef, const UniChar*, CFIndex)>);
static_assert(kIs<decltype(CFStringCreateCopy), CFStringRef(CFAllocatorRef, CFStringRef)>);
static_assert(kIs<decltype(CFStringCreateWithFormat),
                  CFStringRef(CFAllocatorRef, CFDictionaryRef, CFStringRef, ...)>);
static_assert(kIs<decltype(CFStringCreateMutable), CFMutableStringRef(CFAllocatorRef, CFIndex)>);
static_assert(kIs<decltype(CFStringCreateMutableCopy),
                  CFMutableStringRef(CFAllocatorRef, CFIndex, CFStringRef)>);
static_assert(kIs<decltype(CFStringReplaceAll), void(CFMutableStringRef, CFStringRef)>);
static_assert(kIs<decltype(CFStringGetLength), CFIndex(CFStringRef)>);
static_assert(kIs<decltype(CFStringGetCharacters), void(CFStringRef, CFRange, UniChar*)>);
static_assert(
    kIs<decltype(CFStringGetCString), Boolean(CFStringRef, char*, CFIndex, CFStringEncoding)>);
static_assert(kIs<decltype(CFStringGetBytes), CFIndex(CFStringRef, CFRange, CFStringEncoding, UInt8,
                                                      Boolean, UInt8*, CFIndex, CFIndex*)>);
static_assert(kIs<decltype(CFStringGetMaximumSizeForEncoding), CFIndex(CFIndex, CFStringEncoding)>);
static_assert(
    kIs<decltype(CFStringGetFileSystemRepresentation), Boolean(CFStringRef, char*, CFIndex)>);
static_assert(kIs<decltype(CFStringGetSystemEncoding), CFStringEncoding()>);
static_assert(kIs<decltype(CFStringCompare),
                  CFComparisonResult(CFStringRef, CFStringRef, CFStringCompareFlags)>);
static_assert(kIs<decltype(CFStringHasPrefix), Boolean(CFStringRef, CFStringRef)>);
static_assert(kIs<decltype(CFStringGetIntValue), SInt32(CFStringRef)>);

// CFData.h
static_assert(kIs<decltype(CFDataGetTypeID), CFTypeID()>);
static_assert(kIs<decltype(CFDataCreate), CFDataRef(CFAllocatorRef, const UInt8*, CFIndex)>);
static_assert(kIs<decltype(CFDataCreateMutable), CFMutableDataRef(CFAllocatorRef, CFIndex)>);
static_assert(kIs<decltype(CFDataAppendBytes), void(CFMutableDataRef, const UInt8*, CFIndex)>);
static_assert(kIs<decltype(CFDataGetLength), CFIndex(CFDataRef)>);
static_assert(kIs<decltype(CFDataGetBytePtr), const UInt8*(CFDataRef)>);
static_assert(kIs<decltype(CFDataGetBytes), void(CFDataRef, CFRange, UInt8*)>);

// CFArray.h
static_assert(kIs<decltype(CFArrayGetTypeID), CFTypeID()>);
static_assert(kIs<decltype(CFArrayCreate),
                  CFArrayRef(CFAllocatorRef, const void**, CFIndex, const CFArrayCallBacks*)>);
static_assert(kIs<decltype(CFArrayCreateMutable),
                  CFMutableArrayRef(CFAllocatorRef, CFIndex, const CFArrayCallBacks*)>);
static_assert(kIs<decltype(CFArrayGetCount), CFIndex(CFArrayRef)>);
static_assert(kIs<decltype(CFArrayGetValueAtIndex), const void*(CFArrayRef, CFIndex)>);
static_assert(kIs<decltype(CFArrayAppendValue), void(CFMutableArrayRef, const void*)>);

// CFDictionary.h
static_assert(kIs<decltype(CFDictionaryGetTypeID), CFTypeID()>);
static_assert(
    kIs<decltype(CFDictionaryCreate),
        CFDictionaryRef(CFAllocatorRef, const void**, const void**, CFIndex,
                        const CFDictionaryKeyCallBacks*, const CFDictionaryValueCallBacks*)>);
static_assert(kIs<decltype(CFDictionaryCreateMutable),
                  CFMutableDictionaryRef(CFAllocatorRef, CFIndex, const CFDictionaryKeyCallBacks*,
                                         const CFDictionaryValueCallBacks*)>);
static_assert(kIs<decltype(CFDictionaryGetCount), CFIndex(CFDictionaryRef)>);
static_assert(kIs<decltype(CFDictionaryGetValue), const void*(CFDictionaryRef, const void*)>);
static_assert(kIs<decltype(CFDictionaryGetValueIfPresent),
                  Boolean(CFDictionaryRef, const void*, const void**)>);
static_assert(
    kIs<decltype(CFDictionaryGetKeysAndValues), void(CFDictionaryRef, const void**, const void**)>);
static_assert(
    kIs<decltype(CFDictionaryAddValue), void(CFMutableDictionaryRef, const void*, const void*)>);
static_assert(
    kIs<decltype(CFDictionarySetValue), void(CFMutableDictionaryRef, const void*, const void*)>);
static_assert(kIs<decltype(CFDictionaryRemoveValue), void(CFMutableDictionaryRef, const void*)>);
static_assert(kIs<decltype(CFDictionaryRemoveAllValues), void(CFMutableDictionaryRef)>);

// CFNumber.h
static_assert(kIs<decltype(CFBooleanGetTypeID), CFTypeID()>);
static_assert(kIs<decltype(CFBooleanGetValue), Boolean(CFBooleanRef)>);
static_assert(kIs<decltype(CFNumberGetTypeID), CFTypeID()>);
static_assert(
    kIs<decltype(CFNumberCreate), CFNumberRef(CFAllocatorRef, CFNumberType, const void*)>);
static_assert(kIs<decltype(CFNumberGetType), CFNumberType(CFNumberRef)>);
static_assert(kIs<decltype(CFNumberIsFloatType), Boolean(CFNumberRef)>);
static_assert(kIs<decltype(CFNumberGetValue), Boolean(CFNumberRef, CFNumberType, void*)>);
// Types: sizes, signedness, and which references point to constant objects.
static_assert(kIs<Boolean, unsigned char> && kIs<UInt8, unsigned char> && kIs<SInt8, signed char>);
static_assert(kIs<UInt16, unsigned short> && kIs<SInt16, short> && kIs<UniChar, unsigned short>);
static_assert(kIs<UInt32, unsigned int> && kIs<SInt32, int> && kIs<OSStatus, SInt32>);
static_assert(kIs<UInt64, std::uint64_t> && kIs<SInt64, std::int64_t> && kIs<OSErr, SInt16>);
static_assert(kIs<FourCharCode, UInt32> && kIs<OSType, FourCharCode> && kIs<Byte, UInt8>);
static_assert(kIs<CFIndex, long> && kIs<CFTypeID, unsigned long> && kIs<CFHashCode, unsigned long>);
static_assert(kIs<CFOptionFlags, unsigned long> && kIs<CFTypeRef, const void*>);
static_assert(kIs<CFTimeInterval, double> && kIs<CFAbsoluteTime, double>);
static_assert(kIs<CFStringEncoding, UInt32> && kIs<CFPropertyListRef, CFTypeRef>);
static_assert(kIs<ItemCount, unsigned long> && kIs<ByteCount, unsigned long>);

template <typename Reference>
constexpr bool kIsImmutable = std::is_const_v<std::remove_pointer_t<Reference>>;
static_assert(kIsImmutable<CFStringRef> && kIsImmutable<CFDataRef> && kIsImmutable<CFArrayRef> &&
              kIsImmutable<CFDictionaryRef> && kIsImmutable<CFNumberRef> &&
              kIsImmutable<CFBooleanRef> && kIsImmutable<CFAllocatorRef> && kIsImmutable<CFURLRef>);
static_assert(!kIsImmutable<CFMutableStringRef> && !kIsImmutable<CFMutableDataRef> &&
              !kIsImmutable<CFMutableArrayRef> && !kIsImmutable<CFMutableDictionaryRef> &&
              !kIsImmutable<CFBundleRef> && !kIsImmutable<CFReadStreamRef> &&
              !kIsImmutable<CFErrorRef>);
static_assert(std::is_convertible_v<CFMutableStringRef, CFStringRef> &&
              std::is_convertible_v<CFMutableDataRef, CFDataRef> &&
              std::is_convertible_v<CFMutableArrayRef, CFArrayRef> &&
              std::is_convertible_v<CFMutableDictionaryRef, CFDictionaryRef>);

static_assert(sizeof(CFRange) == 16 && kIs<decltype(CFRange::location), CFIndex> &&
              kIs<decltype(CFRange::length), CFIndex>);
static_assert(kIs<decltype(CFRangeMake), CFRange(CFIndex, CFIndex)>);
static_assert(sizeof(CFArrayCallBacks) == 40 && sizeof(CFDictionaryKeyCallBacks) == 48 &&
              sizeof(CFDictionaryValueCallBacks) == 40);
static_assert(
    kIs<decltype(CFArrayCallBacks::retain), const void* (*)(CFAllocatorRef, const void*)>);
static_assert(kIs<decltype(CFArrayCallBacks::equal), Boolean (*)(const void*, const void*)>);
static_assert(kIs<decltype(CFDictionaryKeyCallBacks::hash), CFHashCode (*)(const void*)>);

// Enumerations are types of their own; option sets are integers.
static_assert(std::is_enum_v<CFComparisonResult> && std::is_enum_v<CFNumberType>);
static_assert(kIs<std::underlying_type_t<CFComparisonResult>, CFIndex> &&
              kIs<std::underlying_type_t<CFNumberType>, CFIndex>);
static_assert(kIs<CFStringCompareFlags, CFOptionFlags>);

// Values.
static_assert(kCFNotFound == -1);
static_assert(kCFCompareLessThan == -1 && kCFCompareEqualTo == 0 && kCFCompareGreaterThan == 1);
static_assert(kCFCompareCaseInsensitive == 1 && kCFCompareBackwards == 4 &&
              kCFCompareAnchored == 8 && kCFCompareNonliteral == 16 && kCFCompareLocalized == 32 &&
              kCFCompareNumerically == 64 && kCFCompareDiacriticInsensitive == 128 &&
              kCFCompareWidthInsensitive == 256 && kCFCompareForcedOrdering == 512);
static_assert(kCFStringEncodingMacRoman == 0 && kCFStringEncodingUTF16 == 0x100 &&
              kCFStringEncodingUnicode == 0x100 && kCFStringEncodingISOLatin1 == 0x201 &&
              kCFStringEncodingWindowsLatin1 == 0x500 && kCFStringEncodingASCII == 0x600 &&
              kCFStringEncodingNextStepLatin == 0xB01 && kCFStringEncodingNonLossyASCII == 0xBFF &&
              kCFStringEncodingUTF8 == 0x08000100 && kCFStringEncodingUTF32 == 0x0C000100 &&
              kCFStringEncodingUTF16BE == 0x10000100 && kCFStringEncodingUTF16LE == 0x14000100 &&
              kCFStringEncodingUTF32BE == 0x18000100 && kCFStringEncodingUTF32LE == 0x1C000100 &&
              kCFStringEncodingInvalidId == 0xFFFFFFFF);
static_assert(kCFNumberSInt8Type == 1 && kCFNumberSInt16Type == 2 && kCFNumberSInt32Type == 3 &&
              kCFNumberSInt64Type == 4 && kCFNumberFloat32Type == 5 && kCFNumberFloat64Type == 6 &&
              kCFNumberCharType == 7 && kCFNumberShortType == 8 && kCFNumberIntType == 9 &&
              kCFNumberLongType == 10 && kCFNumberLongLongType == 11 && kCFNumberFloatType == 12 &&
              kCFNumberDoubleType == 13 && kCFNumberCFIndexType == 14 &&
              kCFNumberNSIntegerType == 15 && kCFNumberCGFloatType == 16 && kCFNumberMaxType == 16);

// Constants that live in the library.
static_assert(kIs<decltype(kCFAllocatorDefault), const CFAllocatorRef>);
static_assert(kIs<decltype(kCFNull), const CFNullRef>);
static_assert(kIs<decltype(kCFBooleanTrue), const CFBooleanRef> &&
              kIs<decltype(kCFBooleanFalse), const CFBooleanRef>);
static_assert(kIs<decltype(kCFTypeArrayCallBacks), const CFArrayCallBacks>);
static_assert(kIs<decltype(kCFTypeDictionaryKeyCallBacks), const CFDictionaryKeyCallBacks> &&
              kIs<decltype(kCFCopyStringDictionaryKeyCallBacks), const CFDictionaryKeyCallBacks>);
static_assert(kIs<decltype(kCFTypeDictionaryValueCallBacks), const CFDictionaryValueCallBacks>);
static_assert(kIs<decltype(CFSTR("x")), CFStringRef>);

TEST(ApiContract, TheDefaultAllocatorIsNullAndCallbacksHaveVersionZero) {
    EXPECT_EQ(kCFAllocatorDefault, nullptr);
    EXPECT_EQ(kCFTypeArrayCallBacks.version, 0);
    EXPECT_EQ(kCFTypeDictionaryKeyCallBacks.version, 0);
    EXPECT_EQ(kCFCopyStringDictionaryKeyCallBacks.version, 0);
    EXPECT_EQ(kCFTypeDictionaryValueCallBacks.version, 0);
}

}  // namespace
