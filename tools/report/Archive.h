// Archives of a few named texts, as reports are.
#pragma once

#include <cstddef>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace krt9ctl {

struct ArchiveMember {
    std::string name;  // ASCII, without folder
    std::string content;
};

// What is larger is refused, in an archive or as a member once it is unpacked.
inline constexpr std::size_t kLargestMember = 32 << 20;

// Writes a zip file. Throws std::runtime_error with one line; what was written of a regular file is
// removed then.
void WriteArchive(const std::string& path, const std::vector<ArchiveMember>& members);

// True for a file that begins as a zip file does.
bool IsArchive(const std::string& content);

// The members with these names; others are left alone. Nothing is unpacked into a file. Throws
// std::runtime_error with one line when it is no archive, is broken, or has too many members, one
// of the names twice, one of them too large, or a name that leads out of a folder.
std::map<std::string, std::string> ReadArchive(const std::string& content,
                                               const std::set<std::string>& names);

}  // namespace krt9ctl
