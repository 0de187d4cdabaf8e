#include "jet/storage/FileLocks.h"

#include <fcntl.h>

#include <algorithm>
#include <cerrno>
#include <thread>

namespace wendel::jet {
namespace {

using Milliseconds = std::chrono::milliseconds;

// Room for the slot behind each place: a lock's length tells who holds it.
constexpr std::int64_t kPlaceDistance = 1024;
constexpr std::int64_t kFirstPlace = std::int64_t{1} << 40;
constexpr Milliseconds kShortestPause{1}, kLongestPause{16};

struct flock placeLock(LockPlace place, int type, unsigned slot) {
    struct flock lock {};
    lock.l_type = static_cast<decltype(lock.l_type)>(type);
    lock.l_whence = SEEK_SET;
    lock.l_start = kFirstPlace + kPlaceDistance * static_cast<int>(place);
    lock.l_len = 1 + static_cast<decltype(lock.l_len)>(slot);
    return lock;
}

FileLocks::Result request(int fd, struct flock lock) {
    while (::fcntl(fd, F_OFD_SETLK, &lock) != 0) {
        if (errno == EAGAIN || errno == EACCES) return FileLocks::Result::kBusy;
        if (errno != EINTR) return FileLocks::Result::kImpossible;
    }
    return FileLocks::Result::kGot;
}

// Tries with growing pauses; the first are short because most statements are.
template <typename Try>
FileLocks::Result waitFor(Try tryOnce) {
    const auto end = std::chrono::steady_clock::now() + kLockPatience;
    Milliseconds pause = kShortestPause;
    for (;;) {
        const FileLocks::Result result = tryOnce();
        if (result != FileLocks::Result::kBusy || std::chrono::steady_clock::now() >= end) return result;
        std::this_thread::sleep_for(pause);
        pause = std::min(2 * pause, kLongestPause);
    }
}

}  // namespace

FileLocks::Result FileLocks::tryShared(LockPlace place) { return request(fd_, placeLock(place, F_RDLCK, 0)); }

FileLocks::Result FileLocks::tryExclusive(LockPlace place, unsigned slot) {
    return request(fd_, placeLock(place, F_WRLCK, slot));
}

FileLocks::Result FileLocks::waitShared(LockPlace place) {
    return waitFor([&] { return tryShared(place); });
}

FileLocks::Result FileLocks::waitExclusive(LockPlace place, unsigned slot) {
    return waitFor([&] { return tryExclusive(place, slot); });
}

void FileLocks::release(LockPlace place) { request(fd_, placeLock(place, F_UNLCK, kPlaceDistance - 1)); }

unsigned FileLocks::holderOfWriter() const {
    struct flock lock = placeLock(LockPlace::kWriter, F_WRLCK, 0);
    if (::fcntl(fd_, F_OFD_GETLK, &lock) != 0 || lock.l_type == F_UNLCK || lock.l_len < 1) return 0;
    return static_cast<unsigned>(lock.l_len - 1);
}

}  // namespace wendel::jet
