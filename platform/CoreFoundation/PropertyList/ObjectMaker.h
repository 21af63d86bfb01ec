// Creates the objects of which a property list consists. The readers of the three formats do not
// depend on how Core Foundation's objects are created; only this does.
#pragma once

#include <CoreFoundation/CFBase.h>

#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

#include "platform/CoreFoundation/Runtime/Owned.h"

namespace property_list {

// Empty after any failure.
using Object = core_foundation::Owned<CFTypeRef>;

// Containers nested deeper than this are refused: every reader descends by recursion, and so
// does the release of what it created.
constexpr int kDeepestNesting = 512;

class ObjectMaker {
  public:
    // `options`: kCFPropertyListImmutable and its siblings.
    explicit ObjectMaker(CFOptionFlags options) : options_(options) {}

    Object String(std::u16string_view text) const;
    Object Data(std::span<const std::uint8_t> bytes) const;
    Object Array(const std::vector<Object>& items) const;
    static Object Set(const std::vector<Object>& items);

    enum class Duplicates { kFirstWins, kLastWins };
    // As many keys as values; keys are strings, data, numbers, booleans or dates.
    Object Dictionary(const std::vector<Object>& keys, const std::vector<Object>& values,
                      Duplicates duplicates) const;

    static Object Null();
    static Object Boolean(bool value);
    static Object Integer(std::int64_t value);
    // For what may be more than an int64_t holds.
    static Object WideInteger(std::uint64_t value);
    static Object Real(float value);
    static Object Real(double value);
    static Object Date(CFAbsoluteTime time);
    static Object KeyedArchiverUID(std::uint32_t value);

    static bool MayBeKey(CFTypeRef object);

    // The XML form of a keyed archiver's UID is a dictionary whose only key is "CF$UID", with a
    // number. Returns that UID for such a dictionary, and any other dictionary unchanged.
    static Object UIDOrDictionary(Object dictionary);

  private:
    bool LeavesMayChange() const;

    CFOptionFlags options_;
};

// The character that Foundation's NextStep encoding gives a byte: the meaning of octal escapes in
// OpenStep property lists.
char16_t NextStepCharacter(std::uint8_t byte);

}  // namespace property_list
