#include "jet/storage/LockFile.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <string_view>

#include "platform/Text.h"

namespace wendel::jet {
namespace {

constexpr unsigned kSlots = 255;
constexpr std::size_t kNameSize = 32;
constexpr std::int64_t kUserLocks = 0x10000000;
constexpr int kFlags = O_CLOEXEC | O_NONBLOCK | O_NOCTTY | O_NOFOLLOW;
// The name of every user of a database without user accounts.
constexpr std::string_view kUserName = "Admin";

using Record = std::array<char, 2 * kNameSize>;

off_t recordAt(unsigned slot) { return static_cast<off_t>(sizeof(Record)) * (slot - 1); }

std::string lockFilePath(const std::string& databasePath) {
    const std::size_t name = databasePath.rfind('/') + 1;  // npos + 1 is 0
    const std::size_t dot = databasePath.rfind('.');
    const bool extension = dot != std::string::npos && dot > name;
    return databasePath.substr(0, extension ? dot : std::string::npos) + ".ldb";
}

void putName(Record& record, std::size_t at, std::string_view name) {
    const std::size_t length = std::min(name.size(), kNameSize - 1);
    std::copy_n(name.data(), length, record.data() + at);
}

std::string nameAt(const Record& record, std::size_t at) {
    const char* const begin = record.data() + at;
    return ausWindows1252({begin, std::find(begin, begin + kNameSize, '\0')});
}

Record ownRecord() {
    std::array<char, 256> computer{};
    if (::gethostname(computer.data(), computer.size() - 1) != 0) computer[0] = '\0';
    Record record{};
    putName(record, 0, nachWindows1252(computer.data()));
    putName(record, kNameSize, kUserName);
    return record;
}

struct flock slotLock(short type, unsigned first, unsigned count) {
    struct flock lock {};
    lock.l_type = type;
    lock.l_whence = SEEK_SET;
    lock.l_start = kUserLocks + first;
    lock.l_len = count;
    return lock;
}

}  // namespace

LockFile::~LockFile() {
    if (fd_ >= 0) ::close(fd_);
}

void LockFile::enter(const std::string& databasePath, const FileRights& rights) {
    path_ = lockFilePath(databasePath);
    if (path_ == databasePath || !folderTakesFiles(path_)) return;
    fd_ = ::open(path_.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, rights.mode);
    if (fd_ >= 0)
        giveRights(fd_, rights);
    else
        fd_ = ::open(path_.c_str(), O_RDWR | kFlags);
    if (fd_ < 0) return;
    for (unsigned slot = 1; slot <= kSlots && slot_ == 0; ++slot) {
        struct flock lock = slotLock(F_WRLCK, slot, 1);
        if (::fcntl(fd_, F_OFD_SETLK, &lock) == 0) slot_ = slot;
    }
    if (slot_ == 0) return;
    const Record record = ownRecord();
    // A record that cannot be written leaves the place without a name.
    [[maybe_unused]] const ssize_t written = ::pwrite(fd_, record.data(), record.size(), recordAt(slot_));
}

LockFile::User LockFile::user(const std::string& databasePath, unsigned slot) {
    if (slot < 1 || slot > kSlots) return {};
    const int fd = ::open(lockFilePath(databasePath).c_str(), O_RDONLY | kFlags);
    Record record{};
    const bool known =
        fd >= 0 && ::pread(fd, record.data(), record.size(), recordAt(slot)) == ssize_t{sizeof(Record)};
    if (fd >= 0) ::close(fd);
    return known ? User{nameAt(record, 0), nameAt(record, kNameSize)} : User{};
}

unsigned LockFile::users(const std::string& databasePath) {
    const int fd = ::open(lockFilePath(databasePath).c_str(), O_RDONLY | kFlags);
    unsigned count = 0;
    for (unsigned slot = 1; fd >= 0 && slot <= kSlots; ++slot) {
        struct flock lock = slotLock(F_WRLCK, slot, 1);
        if (::fcntl(fd, F_OFD_GETLK, &lock) == 0 && lock.l_type != F_UNLCK) ++count;
    }
    if (fd >= 0) ::close(fd);
    return count;
}

void LockFile::remove() {
    if (fd_ < 0) return;
    struct flock others = slotLock(F_WRLCK, 1, kSlots);
    if (::fcntl(fd_, F_OFD_GETLK, &others) == 0 && others.l_type == F_UNLCK) ::unlink(path_.c_str());
}

}  // namespace wendel::jet
