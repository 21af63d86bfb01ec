// The contents of the XML form's elements without children. Each is empty for malformed text.
#pragma once

#include <string>
#include <string_view>

#include "platform/CoreFoundation/PropertyList/ObjectMaker.h"

namespace property_list {

// Decimal or hexadecimal, from INT64_MIN to UINT64_MAX; white space before it is skipped.
Object ParseInteger(std::u16string_view text);

// A decimal number, an infinity or "nan"; white space before a number is skipped.
Object ParseReal(std::u16string_view text);

// YYYY-MM-DDThh:mm:ssZ. Days, hours, minutes and seconds out of range carry over.
Object ParseDate(std::u16string_view text);

// Base64. Characters outside its alphabet are skipped, an incomplete last group is dropped.
Object ParseData(std::u16string_view text, const ObjectMaker& make);

// `rest` begins with '&': appends the character that the entity names and removes the entity from
// `rest`. False for an unknown entity or a number that is not a character.
bool AppendEntity(std::u16string_view& rest, std::u16string& text);

}  // namespace property_list
