#include "platform/CoreFoundation/Strings/FormatText.h"

namespace core_foundation {
namespace {

constexpr std::u16string_view kConversions = u"@%aAcCdDeEfFgGinoOpPsSuUxX";
constexpr std::u16string_view kBeforeConversion = u"0123456789$-+ #'.*hlqLzjt";
// The position of the argument, such as "2$", at the beginning of a conversion; empty without one.
std::u16string_view Position(std::u16string_view conversion) {
    const std::size_t end = conversion.find(u'$');
    return end == std::u16string_view::npos ? u"" : conversion.substr(0, end + 1);
}

std::u16string Conversion(std::u16string_view before, char16_t conversion) {
    std::u16string text = u"%";
    const std::u16string_view position = Position(before);
    // A width that is an argument has to be consumed.
    if (conversion == u'@' && before.find(u'*') == std::u16string_view::npos) {
        text += position;
    } else if (conversion == u'p' && before == position) {
        text.insert(0, u"0x").append(position).append(u"l");
        conversion = u'x';
    } else {
        text += before;
    }
    return text += conversion;
}

}  // namespace

std::u16string FormatForGNUstep(std::u16string_view format) {
    std::u16string text;
    while (!format.empty()) {
        const std::size_t plain = format.find(u'%');
        text += format.substr(0, plain);
        if (plain == std::u16string_view::npos) {
            break;
        }
        format.remove_prefix(plain + 1);
        const std::size_t end = format.find_first_not_of(kBeforeConversion);
        if (end == std::u16string_view::npos) {
            break;  // an unfinished conversion produces nothing
        }
        const std::u16string_view before = format.substr(0, end);
        const char16_t conversion = format[end];
        format.remove_prefix(end + 1);
        if (kConversions.find(conversion) == std::u16string_view::npos) {
            text += conversion;
        } else {
            text += Conversion(before, conversion);
        }
    }
    return text;
}

}  // namespace core_foundation
