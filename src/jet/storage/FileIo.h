#pragma once
// What the database file and its journal need of the system: whole reads and writes at an offset, what tells
// one state of a file from another, and how failures are told.

#include <cstdint>
#include <span>
#include <string>

struct stat;

namespace wendel::jet {

// What tells one state of a file from another.
struct FileStamp {
    std::uint64_t device = 0, inode = 0, size = 0;
    std::int64_t modifiedNs = 0, changedNs = 0;
    friend bool operator==(const FileStamp&, const FileStamp&) = default;
};

FileStamp stampOf(const struct stat& info);

// Who may do what with a file.
struct FileRights {
    unsigned mode = 0, owner = 0, group = 0;
};

FileRights rightsOf(const struct stat& info);

// For a file just made beside a database: its users write there as well. As far as that is allowed.
void giveRights(int fd, const FileRights& rights);

// An ordinary file, for reading and, where `write` is wanted and allowed, for writing; the descriptor is the
// caller's. Throws Fehler 3024 when there is no file, 3044 when its folder is missing, 3051 when it must not
// be read, 3343 for something that is no file.
struct OpenedFile {
    int fd;
    bool writable;
};
OpenedFile openFile(const std::string& path, bool write);

// Fills the buffer; false when the file ends before or cannot be read.
[[nodiscard]] bool readFully(int fd, std::span<std::uint8_t> buffer, std::uint64_t offset);

// False when not all was written; errno tells why.
[[nodiscard]] bool writeFully(int fd, std::span<const std::uint8_t> bytes, std::uint64_t offset);

// Makes new, renamed and removed names in the folder of this file durable.
[[nodiscard]] bool syncFolderOf(const std::string& path);

// Whether the path leads to this file.
bool leadsTo(const std::string& path, const struct stat& file);

// The path without links: what lies beside a database file lies beside the file itself, or users of a link to
// it would not find it.
std::string resolvedPath(const std::string& path);

// "." for a bare name.
std::string folderOf(const std::string& path);

// Whether the folder of this file is meant to get new files: one that nobody may write to is not, though the
// superuser could.
bool folderTakesFiles(const std::string& path);

// Throws Fehler 3343.
[[noreturn]] void throwUnknownFormat(const std::string& path);

// Throws Fehler 3050.
[[noreturn]] void throwCannotLock(const std::string& path);

// Throws Fehler 3026 when `error` (an errno) tells of a full disk, else 3051.
[[noreturn]] void throwWriteError(const std::string& path, int error);

}  // namespace wendel::jet
