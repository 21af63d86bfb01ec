// The strings behind CFSTR. They are built as the compiler builds @"…", without a message, so that
// they exist before every initialiser.
#include <CoreFoundation/CFString.h>
#include <objc/runtime.h>

#include <mutex>
#include <string>
#include <unordered_map>

namespace {

// The layout of NSConstantString, on which the compiler relies as well.
struct ConstantString {
    Class isa;
    const char* text;     // UTF-8
    unsigned int length;  // in bytes
};

struct Table {
    std::mutex mutex;
    std::unordered_map<std::string, ConstantString> strings;  // elements never move
};

// Never destroyed: constant strings are immortal.
Table& Strings() {
    static Table& table = *new Table;
    return table;
}

}  // namespace

CFStringRef __CFStringMakeConstantString(const char* text) {
    Table& table = Strings();
    const std::lock_guard lock(table.mutex);
    const auto [entry, isNew] = table.strings.try_emplace(text);
    ConstantString& string = entry->second;
    if (isNew) {
        string.isa = reinterpret_cast<Class>(objc_getClass("NSConstantString"));
        string.text = entry->first.c_str();
        string.length = static_cast<unsigned int>(entry->first.size());
    }
    return reinterpret_cast<CFStringRef>(&string);
}
