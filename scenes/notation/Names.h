// Limits, tags and attribute names of the notation in which scenes are written. See docs/scenes.md.
#pragma once

#include <cstddef>
#include <string_view>

#include "platform/DesktopLink/Value.h"

namespace scene_notation {

// Arrays and dictionaries nest at most this deep below an attribute's value: a scene can hold every
// value that a process can get from the desktop.
inline constexpr std::size_t kDeepestValue = desktop_link::kDeepestValue;

// The levels of JSON that such a value can take: a dictionary is wrapped in its tag, and a value
// may stand in a rule of misbehaviour or in a command.
inline constexpr std::size_t kDeepestJson = 2 * kDeepestValue + 8;

// {"point": [1, 2]}: the one key of an object that stands for a value.
namespace tag {
inline constexpr char kNull[] = "null";
inline constexpr char kNothing[] = "nothing";
inline constexpr char kPoint[] = "point";
inline constexpr char kSize[] = "size";
inline constexpr char kRect[] = "rect";
inline constexpr char kRange[] = "range";
inline constexpr char kErrorValue[] = "axerror";
inline constexpr char kFailure[] = "error";
inline constexpr char kElement[] = "element";
inline constexpr char kApplication[] = "application";  // beside kElement
inline constexpr char kData[] = "data";
inline constexpr char kDouble[] = "double";
inline constexpr char kArray[] = "array";
inline constexpr char kDictionary[] = "dictionary";
}  // namespace tag

// Other keys of an element are not attributes.
bool IsAttributeName(std::string_view name);

// The order of an element's attributes: first what tells elements apart, last what is long, in
// between by name.
bool AttributeComesBefore(std::string_view left, std::string_view right);

// The tag that numbers in a plain array need not have as the value of this attribute: a position is
// a point, and so on. Empty for an attribute that does not say what numbers are.
std::string_view TagOfPlainNumbers(std::string_view attribute);

// True for an attribute whose plain array is a point, a size, a frame, or a list of elements, so
// that an array of values needs its tag.
bool PlainArrayMeansSomethingElse(std::string_view attribute);

}  // namespace scene_notation
