// What callers rely on at compile time: the types and signatures of the real framework.
#include <CoreServices/CoreServices.h>

#include <cstddef>
#include <type_traits>

static_assert(std::is_same_v<decltype(UTGetOSTypeFromString), OSType(CFStringRef)>);
static_assert(std::is_same_v<OSType, UInt32> && sizeof(OSType) == 4);
static_assert(sizeof(ProcessSerialNumber) == 8 && alignof(ProcessSerialNumber) == 2);
static_assert(offsetof(ProcessSerialNumber, highLongOfPSN) == 0);
static_assert(offsetof(ProcessSerialNumber, lowLongOfPSN) == 4);
