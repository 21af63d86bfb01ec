// A value that crosses between a process and the desktop: what an accessibility attribute can hold,
// independent of any framework's types.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <variant>
#include <vector>

namespace desktop_link {

// One control of one running application. Identity lasts as long as the desktop process; an id is
// never used again after its element is destroyed.
struct ElementReference {
    std::int32_t pid = 0;
    std::uint64_t id = 0;  // 0 is the application itself

    friend bool operator==(const ElementReference&, const ElementReference&) = default;
};

struct Point {
    double x = 0, y = 0;
    friend bool operator==(const Point&, const Point&) = default;
};

struct Size {
    double width = 0, height = 0;
    friend bool operator==(const Size&, const Size&) = default;
};

struct Rect {
    Point origin;
    Size size;
    friend bool operator==(const Rect&, const Rect&) = default;
};

struct Range {
    std::int64_t location = 0, length = 0;
    friend bool operator==(const Range&, const Range&) = default;
};

// An accessibility error in place of a value (numbers as in AXError).
struct ErrorValue {
    std::int32_t code = 0;
    friend bool operator==(const ErrorValue&, const ErrorValue&) = default;
};

struct Bytes {
    std::vector<std::uint8_t> content;
    friend bool operator==(const Bytes&, const Bytes&) = default;
};

// Arrays and dictionaries nest at most this deep below the outermost one.
inline constexpr std::size_t kDeepestValue = 64;

struct Value;
struct DictionaryEntry;
using Array = std::vector<Value>;
using Dictionary = std::vector<DictionaryEntry>;

// Text is UTF-8. std::monostate is the null object (kCFNull), not the absence of a value.
struct Value {
    std::variant<std::monostate, bool, std::int64_t, double, std::string, Point, Size, Rect, Range,
                 ErrorValue, ElementReference, Bytes, Array, Dictionary>
        content;
};

struct DictionaryEntry {
    std::string key;
    Value value;
};

inline bool operator==(const Value& left, const Value& right);
inline bool operator==(const DictionaryEntry& left, const DictionaryEntry& right) {
    return left.key == right.key && left.value == right.value;
}
inline bool operator==(const Value& left, const Value& right) {
    return left.content == right.content;
}

}  // namespace desktop_link
