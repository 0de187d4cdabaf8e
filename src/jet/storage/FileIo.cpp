#include "jet/storage/FileIo.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <memory>

#include "jet/storage/File.h"
#include "platform/Fehler.h"

namespace wendel::jet {
namespace {

// Calls with what is left until nothing is; a call that does nothing ends it.
template <typename Bytes, typename Call>
bool inPieces(Bytes bytes, std::uint64_t offset, Call call) {
    while (!bytes.empty()) {
        const ssize_t n = call(bytes, static_cast<off_t>(offset));
        if (n < 0 && errno == EINTR) continue;
        if (n <= 0) return false;
        bytes = bytes.subspan(static_cast<std::size_t>(n));
        offset += static_cast<std::uint64_t>(n);
    }
    return true;
}

std::int64_t nanoseconds(const timespec& t) { return std::int64_t{t.tv_sec} * 1'000'000'000 + t.tv_nsec; }

constexpr char kSource[] = "Datenbankdatei";

std::string quoted(const std::string& path) { return "'" + path + "'"; }

bool isFolder(const std::string& path) {
    struct stat info {};
    return ::stat(path.c_str(), &info) == 0 && S_ISDIR(info.st_mode);
}

[[noreturn]] void throwOpenError(const std::string& path, int error) {
    if (error == ENOENT && isFolder(folderOf(path))) {
        throw Fehler(jetfehler::kFileNotFound, kSource,
                     "Die Datei " + quoted(path) + " wurde nicht gefunden.");
    }
    if (error == ENOENT || error == ENOTDIR || error == ENAMETOOLONG || error == ELOOP) {
        throw Fehler(
            jetfehler::kInvalidPath, kSource,
            quoted(path) + " ist kein zulässiger Pfad. Prüfen Sie, ob der Pfad richtig geschrieben ist.");
    }
    throw Fehler(
        jetfehler::kNoAccess, kSource,
        "Die Datei " + quoted(path) +
            " kann nicht geöffnet werden. Sie ist von einem anderen Benutzer exklusiv geöffnet, oder Sie "
            "haben keine Berechtigung, sie zu lesen.");
}

}  // namespace

FileStamp stampOf(const struct stat& info) {
    return {info.st_dev, info.st_ino, static_cast<std::uint64_t>(info.st_size), nanoseconds(info.st_mtim),
            nanoseconds(info.st_ctim)};
}

FileRights rightsOf(const struct stat& info) { return {info.st_mode & 0666, info.st_uid, info.st_gid}; }

void giveRights(int fd, const FileRights& rights) {
    if (::fchown(fd, rights.owner, rights.group) != 0)
        (void)!::fchown(fd, static_cast<uid_t>(-1), rights.group);
    (void)::fchmod(fd, rights.mode);
}

OpenedFile openFile(const std::string& path, bool write) {
    // A pipe or a device in place of the file must neither block the open nor be read.
    constexpr int kFlags = O_CLOEXEC | O_NONBLOCK | O_NOCTTY;
    OpenedFile file{-1, write};
    if (write) file.fd = ::open(path.c_str(), O_RDWR | kFlags);
    if (file.fd < 0) file = {::open(path.c_str(), O_RDONLY | kFlags), false};
    if (file.fd < 0) throwOpenError(path, errno);
    struct stat info {};
    const int error = ::fstat(file.fd, &info) != 0 ? errno : S_ISDIR(info.st_mode) ? EISDIR : 0;
    if (error == 0 && S_ISREG(info.st_mode)) return file;
    ::close(file.fd);
    if (error != 0) throwOpenError(path, error);
    throwUnknownFormat(path);
}

bool readFully(int fd, std::span<std::uint8_t> buffer, std::uint64_t offset) {
    return inPieces(buffer, offset, [fd](std::span<std::uint8_t> rest, off_t at) {
        return ::pread(fd, rest.data(), rest.size(), at);
    });
}

bool writeFully(int fd, std::span<const std::uint8_t> bytes, std::uint64_t offset) {
    errno = EIO;  // for a call that writes nothing without saying why
    return inPieces(bytes, offset, [fd](std::span<const std::uint8_t> rest, off_t at) {
        return ::pwrite(fd, rest.data(), rest.size(), at);
    });
}

bool leadsTo(const std::string& path, const struct stat& file) {
    struct stat info {};
    return ::stat(path.c_str(), &info) == 0 && info.st_dev == file.st_dev && info.st_ino == file.st_ino;
}

std::string resolvedPath(const std::string& path) {
    const std::unique_ptr<char, decltype(&std::free)> real(::realpath(path.c_str(), nullptr), &std::free);
    struct stat here {};
    // Paths below /proc lead to files that have no name, or another one.
    const bool same = real && ::stat(path.c_str(), &here) == 0 && leadsTo(real.get(), here);
    return same ? std::string(real.get()) : path;
}

std::string folderOf(const std::string& path) {
    const std::size_t slash = path.rfind('/');
    if (slash == std::string::npos) return ".";
    return slash == 0 ? "/" : path.substr(0, slash);
}

bool folderTakesFiles(const std::string& path) {
    struct stat info {};
    return ::stat(folderOf(path).c_str(), &info) == 0 && (info.st_mode & 0222) != 0;
}

bool syncFolderOf(const std::string& path) {
    const int fd = ::open(folderOf(path).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (fd < 0) return false;
    // Some file systems cannot sync a folder, and need not.
    const bool done = ::fsync(fd) == 0 || errno == EINVAL;
    ::close(fd);
    return done;
}

void throwUnknownFormat(const std::string& path) {
    throw Fehler(jetfehler::kUnknownFormat, kSource, "Nicht erkanntes Datenbankformat " + quoted(path) + ".");
}

void throwCannotLock(const std::string& path) {
    throw Fehler(jetfehler::kCannotLock, kSource,
                 "Die Datei " + quoted(path) + " konnte nicht gesperrt werden.");
}

void throwWriteError(const std::string& path, int error) {
    if (error == ENOSPC || error == EDQUOT || error == EFBIG) {
        throw Fehler(jetfehler::kDiskFull, kSource,
                     "Auf dem Datenträger ist nicht genug Platz, um " + quoted(path) + " zu schreiben.");
    }
    throw Fehler(jetfehler::kNoAccess, kSource,
                 "Die Datei " + quoted(path) +
                     " kann nicht geschrieben werden. Prüfen Sie den Datenträger und Ihre Berechtigungen.");
}

}  // namespace wendel::jet
