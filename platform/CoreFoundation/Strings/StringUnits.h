// The UTF-16 code units of a string, in memory for as long as this object lives.
#pragma once

#import <Foundation/Foundation.h>

#include <array>
#include <memory>
#include <string_view>

namespace core_foundation {

class StringUnits {
  public:
    explicit StringUnits(NSString* string) : StringUnits(string, NSMakeRange(0, [string length])) {}
    StringUnits(NSString* string, NSRange range);
    StringUnits(const StringUnits&) = delete;
    StringUnits& operator=(const StringUnits&) = delete;

    std::u16string_view view() const { return view_; }

  private:
    static constexpr std::size_t kShort = 128;  // most strings are short: no allocation for them
    std::array<char16_t, kShort> near_;
    std::unique_ptr<char16_t[]> far_;
    std::u16string_view view_;
};

bool SameUnits(NSString* first, NSString* second);

// A new string that the caller owns.
NSString* NewString(std::u16string_view units);

}  // namespace core_foundation
