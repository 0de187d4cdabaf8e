#include "jet/storage/ReplacingLock.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

#include "jet/storage/FileIo.h"
#include "jet/storage/Journal.h"

namespace wendel::jet {

ReplacingLock::ReplacingLock(const std::string& path) {
    const OpenedFile file = openFile(path, true);
    fd_ = file.fd;
    locks_ = FileLocks(fd_);
    try {
        if (!file.writable) throwWriteError(path, EACCES);
        lock(path);
        bringJournalIn(path);
    } catch (...) {
        ::close(fd_);
        throw;
    }
}

ReplacingLock::~ReplacingLock() { ::close(fd_); }

// Alone at first, so that nobody is in the middle of anything; then only as the one who may write.
void ReplacingLock::lock(const std::string& path) {
    const bool alone = locks_.waitExclusive(LockPlace::kUsers) == FileLocks::Result::kGot &&
                       locks_.tryExclusive(LockPlace::kWriter) == FileLocks::Result::kGot;
    struct stat info {};
    if (!alone || ::fstat(fd_, &info) != 0 || !leadsTo(path, info)) throwCannotLock(path);
}

void ReplacingLock::bringJournalIn(const std::string& path) {
    Journal journal(resolvedPath(path));
    journal.open();
    struct stat info {};
    if (::fstat(fd_, &info) == 0 && journal.fits(fd_, stampOf(info)))
        journal.bringInto(fd_);
    else
        journal.setAside();
    locks_.tryShared(LockPlace::kUsers);
}

}  // namespace wendel::jet
