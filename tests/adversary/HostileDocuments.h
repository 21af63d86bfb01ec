// Files that are malformed or unusual property lists.
#pragma once

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

namespace adversary {

// The bytes of a binary property list: its objects as they are stored, the first one the root. One
// byte refers to an object.
std::string BinaryPropertyList(const std::vector<std::string>& objects);

// What can be at a path in place of a property list. None of these holds a dictionary.
struct HostileFile {
    std::string name;
    std::function<void(const std::filesystem::path& path)> make;
};
std::vector<HostileFile> FilesWithoutDictionary();

// A value as XML, and the same key with it.
struct HostileValue {
    std::string name;
    std::string xml;
};
std::vector<HostileValue> ValuesThatAreNoText();

// <plist><dict>...</dict></plist> around its content.
std::string XmlDictionary(const std::string& content);

// The same with one more entry, whose text makes the document as long as wanted.
std::string XmlDictionaryOfSize(std::size_t size, const std::string& content);

constexpr std::size_t kLongestDocument = std::size_t{32} << 20U;  // bytes, that are read

// What reading the file may take, in bytes, whatever it claims to be: a document as bytes, decoded,
// and as objects, each of which may have grown by doubling.
std::size_t MostMemoryFor(const std::filesystem::path& file);

}  // namespace adversary
