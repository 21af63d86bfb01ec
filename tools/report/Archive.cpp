#include "tools/report/Archive.h"

#include <archive.h>
#include <archive_entry.h>
#include <fmt/format.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <filesystem>
#include <memory>
#include <stdexcept>
#include <string_view>

#include "tools/Text.h"

namespace krt9ctl {

namespace {

constexpr int kMostMembers = 1000;

using Writer = std::unique_ptr<archive, decltype(&archive_write_free)>;
using Reader = std::unique_ptr<archive, decltype(&archive_read_free)>;
using Entry = std::unique_ptr<archive_entry, decltype(&archive_entry_free)>;

[[noreturn]] void Fail(archive* source) {
    const char* const why = archive_error_string(source);
    throw std::runtime_error(Printable(why == nullptr ? "the archive is broken" : why));
}

// A warning is about what is kept besides the content.
void Check(int result, archive* source) {
    if (result < ARCHIVE_WARN) {
        Fail(source);
    }
}

void WriteMember(archive* writer, const ArchiveMember& member) {
    const Entry entry(archive_entry_new(), archive_entry_free);
    archive_entry_set_pathname(entry.get(), member.name.c_str());
    archive_entry_set_size(entry.get(), static_cast<la_int64_t>(member.content.size()));
    archive_entry_set_filetype(entry.get(), AE_IFREG);
    archive_entry_set_perm(entry.get(), 0644);
    archive_entry_set_mtime(
        entry.get(), std::chrono::system_clock::to_time_t(std::chrono::system_clock::now()), 0);
    Check(archive_write_header(writer, entry.get()), writer);
    std::string_view rest = member.content;
    while (!rest.empty()) {
        const la_ssize_t written = archive_write_data(writer, rest.data(), rest.size());
        if (written <= 0) {
            Fail(writer);
        }
        rest.remove_prefix(static_cast<std::size_t>(written));
    }
}

void WriteMembers(const std::string& path, const std::vector<ArchiveMember>& members) {
    const Writer writer(archive_write_new(), archive_write_free);
    Check(archive_write_set_format_zip(writer.get()), writer.get());
    Check(archive_write_set_bytes_in_last_block(writer.get(), 1), writer.get());
    Check(archive_write_open_filename(writer.get(), path.c_str()), writer.get());
    for (const ArchiveMember& member : members) {
        WriteMember(writer.get(), member);
    }
    Check(archive_write_close(writer.get()), writer.get());
}

bool LeadsOutside(std::string_view name) {
    if (name.starts_with('/')) {
        return true;
    }
    while (!name.empty()) {
        const std::string_view step = name.substr(0, name.find('/'));
        if (step == "..") {
            return true;
        }
        name.remove_prefix(std::min(step.size() + 1, name.size()));
    }
    return false;
}

std::string ContentOf(archive* reader, const std::string& name) {
    std::string content;
    std::array<char, 65536> block;
    while (true) {
        const la_ssize_t count = archive_read_data(reader, block.data(), block.size());
        if (count < 0) {
            Fail(reader);
        }
        if (count == 0) {
            return content;
        }
        content.append(block.data(), static_cast<std::size_t>(count));
        if (content.size() > kLargestMember) {
            throw std::runtime_error(
                fmt::format("{} has more than {} MiB", name, kLargestMember >> 20));
        }
    }
}

// Empty for a name that no text of ours can have.
std::string NameOf(archive_entry* entry) {
    const char* const name = archive_entry_pathname(entry);
    return name == nullptr ? "" : name;
}

}  // namespace

void WriteArchive(const std::string& path, const std::vector<ArchiveMember>& members) {
    try {
        WriteMembers(path, members);
    } catch (const std::runtime_error& error) {
        std::error_code ignored;
        if (std::filesystem::is_regular_file(path, ignored)) {
            unlink(path.c_str());
        }
        throw std::runtime_error(
            fmt::format("'{}' cannot be written: {}", Printable(path), error.what()));
    }
}

bool IsArchive(const std::string& content) {
    return content.starts_with("PK");
}

std::map<std::string, std::string> ReadArchive(const std::string& content,
                                               const std::set<std::string>& names) {
    const Reader reader(archive_read_new(), archive_read_free);
    Check(archive_read_support_format_zip(reader.get()), reader.get());
    Check(archive_read_open_memory(reader.get(), content.data(), content.size()), reader.get());
    std::map<std::string, std::string> members;
    archive_entry* entry = nullptr;
    for (int count = 0;; ++count) {
        const int result = archive_read_next_header(reader.get(), &entry);
        if (result == ARCHIVE_EOF) {
            return members;
        }
        Check(result, reader.get());
        if (count == kMostMembers) {
            throw std::runtime_error(fmt::format("it has more than {} members", kMostMembers));
        }
        const std::string name = NameOf(entry);
        if (LeadsOutside(name)) {
            throw std::runtime_error(
                fmt::format("its member {} leads out of a folder", Printable(name)));
        }
        if (!names.contains(name)) {
            continue;
        }
        if (archive_entry_filetype(entry) != AE_IFREG) {
            throw std::runtime_error(fmt::format("its member {} is no file", name));
        }
        if (!members.emplace(name, ContentOf(reader.get(), name)).second) {
            throw std::runtime_error(fmt::format("it has {} twice", name));
        }
    }
}

}  // namespace krt9ctl
