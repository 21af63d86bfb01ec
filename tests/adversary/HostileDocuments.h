// Files that are no property list that anyone would write.
#pragma once

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

namespace adversary {

// The bytes of a binary property list: its objects as they are stored, the first one the root. One
// byte refers to an object.
std::string BinaryPropertyList(const std::vector<std::string>& objects);

// What lies at a path in the place of a property list. None of these holds a dictionary.
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

// What is read at most, in bytes, and what it may take meanwhile: a document as bytes, decoded, and
// as objects, and whatever grows by doubling.
constexpr std::size_t kLongestDocument = std::size_t{32} << 20U;
constexpr std::size_t kMostMemory = 16 * kLongestDocument;

}  // namespace adversary
