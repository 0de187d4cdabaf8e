#include "jet/storage/DurableCalls.h"

#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <random>
#include <utility>

namespace wendel::jet::test {
namespace {

struct Interposer {
    Fault fault = Fault::kNone;
    unsigned nth = 0, calls = 0;
    std::string folder;
    std::vector<Call> noted;
};
Interposer& interposer() {
    static Interposer instance;
    return instance;
}

constexpr std::size_t kDiskBlock = 512;

// 0, or the errno that the call ends with.
int beforeCall(bool canFail, bool divisible = false) {
    Interposer& me = interposer();
    ++me.calls;
    const bool killed = me.fault == Fault::kKilled || (me.fault == Fault::kKilledHalfWay && !divisible);
    if (killed && me.calls == me.nth) ::_exit(0);
    if (!canFail || me.calls < me.nth) return 0;
    return me.fault == Fault::kDiskFull ? ENOSPC : me.fault == Fault::kInputOutput ? EIO : 0;
}

std::string pathOf(int fd) {
    char path[4096];
    const auto length = ::readlink(("/proc/self/fd/" + std::to_string(fd)).c_str(), path, sizeof(path));
    return {path, length < 0 ? 0 : static_cast<std::size_t>(length)};
}

void note(Call::Kind kind, const std::string& path, std::uint64_t offset = 0, std::string bytes = {}) {
    Interposer& me = interposer();
    if (!me.folder.empty() && path.starts_with(me.folder))
        me.noted.push_back({kind, path, offset, std::move(bytes)});
}

// Only said to be done: here nobody pulls the plug but afterPowerCut().
int syncCall(int fd) {
    if ((errno = beforeCall(true)) != 0) return -1;
    note(Call::Kind::kSync, pathOf(fd));
    return 0;
}

void put(std::string& file, std::uint64_t offset, std::string_view bytes) {
    if (file.size() < offset + bytes.size()) file.resize(offset + bytes.size());
    std::copy(bytes.begin(), bytes.end(), file.begin() + static_cast<std::ptrdiff_t>(offset));
}

}  // namespace

void orderFault(Fault fault, unsigned nth) {
    interposer().fault = fault;
    interposer().nth = nth;
    interposer().calls = 0;
}
void startNoting(const std::string& folder) { interposer().folder = folder; }
std::size_t callsNoted() { return interposer().noted.size(); }
std::vector<Call> endNoting() {
    interposer().folder.clear();
    return std::exchange(interposer().noted, {});
}

Files afterPowerCut(Files files, const std::vector<Call>& calls, std::size_t count, unsigned seed) {
    std::mt19937 random(seed);
    std::map<std::string, std::size_t> synced;  // calls before this place have reached the disk
    for (std::size_t i = 0; i < count; ++i)
        if (calls[i].kind == Call::Kind::kSync) synced[calls[i].path] = i;
    const auto odds = random() % 3;  // none, half or all of what was not synced
    for (std::size_t i = 0; i < count; ++i) {
        const Call& call = calls[i];
        const auto lucky = [&] {
            return i < synced[call.path] || odds == 2 || (odds == 1 && random() % 2 == 0);
        };
        if (call.kind == Call::Kind::kRemove) files.erase(call.path);
        if (call.kind == Call::Kind::kTruncate && lucky()) files[call.path].resize(call.offset);
        if (call.kind != Call::Kind::kWrite) continue;
        files[call.path];
        for (std::size_t at = 0; at < call.bytes.size();) {
            const std::size_t length =
                std::min(kDiskBlock - (call.offset + at) % kDiskBlock, call.bytes.size() - at);
            if (lucky())
                put(files[call.path], call.offset + at, std::string_view(call.bytes).substr(at, length));
            at += length;
        }
    }
    return files;
}

}  // namespace wendel::jet::test

// These take the place of the C library's for the whole program.
using namespace wendel::jet::test;

extern "C" ssize_t pwrite(int fd, const void* data, size_t size, off_t offset) {
    if ((errno = beforeCall(true, true)) != 0) return -1;
    const Interposer& me = interposer();
    const bool half = me.fault == Fault::kKilledHalfWay && me.calls == me.nth;
    if (half) size = size / 2;
    note(Call::Kind::kWrite, pathOf(fd), static_cast<std::uint64_t>(offset),
         {static_cast<const char*>(data), size});
    const long written = ::syscall(SYS_pwrite64, fd, data, size, offset);
    if (half) ::_exit(0);
    return written;
}
extern "C" int fdatasync(int fd) { return syncCall(fd); }
extern "C" int fsync(int fd) { return syncCall(fd); }
extern "C" int ftruncate(int fd, off_t length) noexcept {
    beforeCall(false);
    note(Call::Kind::kTruncate, pathOf(fd), static_cast<std::uint64_t>(length));
    return static_cast<int>(::syscall(SYS_ftruncate, fd, length));
}
extern "C" int unlink(const char* path) noexcept {
    beforeCall(false);
    note(Call::Kind::kRemove, path);
    return static_cast<int>(::syscall(SYS_unlink, path));
}
