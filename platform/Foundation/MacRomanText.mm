// GNUstep reads every text of bytes through GSToUnicode, also the %s of a format. Its MacRoman has
// two characters wrong; this function replaces it and corrects them.
#import <Foundation/Foundation.h>

#include <GNUstepBase/Unicode.h>
#include <dlfcn.h>

namespace {

constexpr unsigned char kIncrementByte = 0xC6;
constexpr unichar kIncrement = 0x2206;
constexpr unsigned char kLogoByte = 0xF0;
constexpr unichar kLogo = 0xF8FF;

}  // namespace

BOOL GSToUnicode(unichar** dst, unsigned int* size, const unsigned char* src, unsigned int slen,
                 NSStringEncoding enc, NSZone* zone, unsigned int options) {
    static const auto original =
        reinterpret_cast<decltype(&GSToUnicode)>(dlsym(RTLD_NEXT, "GSToUnicode"));
    const BOOL converted = original(dst, size, src, slen, enc, zone, options);
    // Without a destination, only the length is requested. Each byte is one unit.
    if (enc == NSMacOSRomanStringEncoding && converted && dst != nullptr) {
        for (unsigned int index = 0; index < slen; ++index) {
            if (src[index] == kIncrementByte) {
                (*dst)[index] = kIncrement;
            } else if (src[index] == kLogoByte) {
                (*dst)[index] = kLogo;
            }
        }
    }
    return converted;
}
