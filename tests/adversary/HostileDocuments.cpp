#include "tests/adversary/HostileDocuments.h"

#include <fcntl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <fstream>
#include <stdexcept>

namespace adversary {

namespace {

constexpr std::size_t kLong = 300'000;
constexpr off_t kEndless = off_t{1} << 40U;  // bytes, of a file that takes no place on the disk

void Write(const std::filesystem::path& path, const std::string& bytes) {
    std::ofstream(path, std::ios::binary) << bytes;
}

HostileFile WithBytes(const std::string& name, const std::string& bytes) {
    return {name, [bytes](const std::filesystem::path& path) { Write(path, bytes); }};
}

std::string Repeated(const std::string& text, std::size_t count) {
    std::string repeated;
    repeated.reserve(text.size() * count);
    for (std::size_t i = 0; i < count; ++i) {
        repeated += text;
    }
    return repeated;
}

std::string Long64(std::uint64_t value) {
    std::string bytes;
    for (int shift = 56; shift >= 0; shift -= 8) {
        bytes += static_cast<char>(value >> shift & 0xFF);
    }
    return bytes;
}

// Entities that stand for ten of the one before: a document of a kilobyte that means gigabytes.
std::string EntityBomb() {
    std::string document = "<?xml version=\"1.0\"?><!DOCTYPE plist [<!ENTITY e0 \"bomb\">";
    for (int level = 1; level <= 10; ++level) {
        const std::string below = "&e" + std::to_string(level - 1) + ";";
        document += "<!ENTITY e" + std::to_string(level) + " \"" + Repeated(below, 10) + "\">";
    }
    return document +
           "]><plist><dict><key>CFBundleShortVersionString</key><string>&e10;</string></dict>"
           "</plist>";
}

std::string BigEndian(std::uint64_t value, std::size_t size) {
    return Long64(value).substr(8 - size);
}

void MakeSocket(const std::filesystem::path& path) {
    const std::filesystem::path folder = path.parent_path();
    const int descriptor = open(folder.c_str(), O_PATH | O_DIRECTORY);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    ("/proc/self/fd/" + std::to_string(descriptor) + "/" + path.filename().string())
        .copy(address.sun_path, sizeof address.sun_path - 1);
    const int made = socket(AF_UNIX, SOCK_STREAM, 0);
    const int result = bind(made, reinterpret_cast<sockaddr*>(&address), sizeof address);
    close(made);
    close(descriptor);
    if (result != 0) {
        throw std::runtime_error("no socket can be made");
    }
}

// An array of 4000 data objects that begin six bytes after each other and are 100,000 bytes long
// each: a document of 160 kilobytes that means 400 megabytes.
std::string OverlappingData() {
    constexpr std::uint64_t kObjects = 4000;
    constexpr std::uint64_t kLength = 100'000;
    std::string document = "bplist00\xAF\x11" + BigEndian(kObjects, 2);
    for (std::uint64_t object = 1; object <= kObjects; ++object) {
        document += BigEndian(object, 2);
    }
    std::string offsets = Long64(8);
    for (std::uint64_t object = 0; object < kObjects; ++object) {
        offsets += Long64(document.size());
        document += "\x4F\x12" + BigEndian(kLength, 4);
    }
    document += std::string(kLength, 'd');
    const std::uint64_t table = document.size();
    return document + offsets + std::string(6, '\0') + "\x08\x02" + Long64(kObjects + 1) +
           Long64(0) + Long64(table);
}

}  // namespace

std::string BinaryPropertyList(const std::vector<std::string>& objects) {
    std::string document = "bplist00";
    std::string offsets;
    for (const std::string& object : objects) {
        offsets += Long64(document.size());
        document += object;
    }
    const std::uint64_t table = document.size();
    return document + offsets + std::string(6, '\0') + "\x08\x01" + Long64(objects.size()) +
           Long64(0) + Long64(table);
}

std::vector<HostileFile> FilesWithoutDictionary() {
    const std::string key =
        "\x5F\x10\x1A"
        "CFBundleShortVersionString";
    return {
        {"NothingAtAll", [](const auto&) {}},
        {"AFolder", [](const auto& path) { std::filesystem::create_directory(path); }},
        {"APipeThatNobodyWritesTo", [](const auto& path) { mkfifo(path.c_str(), 0600); }},
        {"ADeviceThatNeverEnds",
         [](const auto& path) { std::filesystem::create_symlink("/dev/zero", path); }},
        {"ASocket", MakeSocket},
        {"ALinkToNowhere",
         [](const auto& path) { std::filesystem::create_symlink("nowhere", path); }},
        {"AFileThatCannotBeRead",  // opened it can be: reading fails, for the superuser too
         [](const auto& path) { std::filesystem::create_symlink("/proc/self/mem", path); }},
        {"ALinkToItself", [](const auto& path) { std::filesystem::create_symlink(path, path); }},
        {"ATebibyteOfZeros",
         [](const auto& path) {
             Write(path, "");
             if (truncate(path.c_str(), kEndless) != 0) {
                 throw std::runtime_error("no sparse file can be made");
             }
         }},
        WithBytes("NoByte", ""),
        WithBytes("Garbage", std::string("\x01\x02\xFF\xFE garbage \0 and more", 22)),
        WithBytes("AnEntityBomb", EntityBomb()),
        WithBytes("ManyOpenArrays", "<plist>" + Repeated("<array>", kLong)),
        WithBytes("ManyOpenDictionaries", "<plist>" + Repeated("<dict><key>k</key>", kLong)),
        WithBytes("ManyOpenBraces", Repeated("{k=", kLong)),
        WithBytes("ADictionaryCutShort", "<plist><dict><key>CFBundleShortVersionString</key>"),
        WithBytes("AnArray", "<plist><array><string>10.4.6</string></array></plist>"),
        WithBytes("AText", "<plist><string>10.4.6</string></plist>"),
        WithBytes("ANumber", "<plist><integer>10</integer></plist>"),
        WithBytes("ABinaryArrayThatHoldsItself", BinaryPropertyList({"\xA1" + std::string(1, 0)})),
        WithBytes("ABinaryDictionaryThatHoldsItself",
                  BinaryPropertyList({"\xD1\x01" + std::string(1, 0), key})),
        WithBytes("ABinaryDictionaryThatIsItsOwnKey",
                  BinaryPropertyList({"\xD1" + std::string(1, 0) + "\x01", key})),
        WithBytes("ABinaryDictionaryInACircle",
                  BinaryPropertyList({"\xD1\x02\x01", "\xA1" + std::string(1, 0), key})),
        WithBytes("ABinaryDictionaryWithAKeyOfNowhere", BinaryPropertyList({"\xD1\x63\x01", key})),
        WithBytes("ABinaryCountWithoutEnd",
                  BinaryPropertyList({"\xDF\x13\x7F\xFF\xFF\xFF\xFF\xFF\xFF\xFF", key})),
        WithBytes("BinaryDataThatOverlaps", OverlappingData()),
    };
}

std::vector<HostileValue> ValuesThatAreNoText() {
    return {
        {"ANumber", "<integer>10</integer>"},
        {"ARealNumber", "<real>10.4</real>"},
        {"ATruth", "<true/>"},
        {"AnArray", "<array><string>10.4.6</string></array>"},
        {"ADictionary", "<dict><key>10.4.6</key><string>10.4.6</string></dict>"},
        {"Data", "<data>MTAuNC42</data>"},
        {"ADate", "<date>2020-01-01T00:00:00Z</date>"},
    };
}

std::size_t MostMemoryFor(const std::filesystem::path& file) {
    constexpr std::size_t kPerByte = 24;
    constexpr std::size_t kSmallChange = std::size_t{1} << 20U;
    std::error_code error;
    const auto status = std::filesystem::status(file, error);
    std::uintmax_t size = 0;
    if (std::filesystem::is_regular_file(status)) {
        size = std::filesystem::file_size(file);
    } else if (std::filesystem::is_character_file(status)) {
        size = kLongestDocument;  // it never ends
    }
    return kPerByte * std::min<std::uintmax_t>(size, kLongestDocument) + kSmallChange;
}

std::string XmlDictionaryOfSize(std::size_t size, const std::string& content) {
    const std::string before = "<key>Padding</key><string>";
    const std::string after = "</string>";
    const std::size_t frame = XmlDictionary(content + before + after).size();
    return XmlDictionary(content + before + std::string(size - frame, 'p') + after);
}

std::string XmlDictionary(const std::string& content) {
    return R"(<?xml version="1.0" encoding="UTF-8"?><plist version="1.0"><dict>)" + content +
           "</dict></plist>";
}

}  // namespace adversary
