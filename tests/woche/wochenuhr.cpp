// The machine of the simulated week: preloaded into every program of the test, it answers for the kernel's
// clocks. WOCHENUHR names a file of two numbers, nanoseconds: how far the wall clock is off the real one, and
// how long the machine has slept besides. The test changes them while the programs run; as on a real machine,
// a suspend moves the wall clock and the boot clock but not the monotonic one, a clock that was set moves the
// wall clock alone, and either cancels the timers that asked to be told.

#include <fcntl.h>
#include <sys/inotify.h>
#include <sys/mman.h>
#include <sys/syscall.h>
#include <sys/time.h>
#include <sys/timerfd.h>
#include <time.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdint>
#include <cstdlib>

namespace {

constexpr std::int64_t kNsJeSekunde = 1'000'000'000;

struct Versatz {
    std::atomic<std::int64_t> wanduhr, geschlafen;
};

const char* datei() {
    const char* name = std::getenv("WOCHENUHR");
    return name ? name : "";
}

const Versatz& versatz() {
    static const Versatz* const karte = [] {
        const int fd = ::open(datei(), O_RDONLY | O_CLOEXEC);
        void* ort = ::mmap(nullptr, sizeof(Versatz), PROT_READ, MAP_SHARED, fd, 0);
        if (ort == MAP_FAILED) ::abort();
        ::close(fd);
        return static_cast<const Versatz*>(ort);
    }();
    return *karte;
}

// The one timer that waits for the wall clock to be set; -1 before it is made.
std::atomic<int>& waechter() {
    static std::atomic<int> fd{-1};
    return fd;
}

// True when the clocks have been changed since the last call.
bool gestellt(int fd) {
    char ereignisse[4096];
    bool neu = false;
    while (::syscall(SYS_read, fd, ereignisse, sizeof ereignisse) > 0)
        neu = true;
    return neu;
}

std::int64_t echteZeit(clockid_t uhr) {
    timespec zeit{};
    ::syscall(SYS_clock_gettime, uhr, &zeit);
    return zeit.tv_sec * kNsJeSekunde + zeit.tv_nsec;
}

std::int64_t zeit(clockid_t uhr) {
    std::int64_t ns = echteZeit(uhr);
    if (uhr == CLOCK_REALTIME || uhr == CLOCK_REALTIME_COARSE) ns += versatz().wanduhr;
    if (uhr == CLOCK_BOOTTIME) ns += versatz().geschlafen;
    return ns;
}

}  // namespace

extern "C" {

int clock_gettime(clockid_t uhr, timespec* ergebnis) noexcept {
    const std::int64_t ns = zeit(uhr);
    *ergebnis = {ns / kNsJeSekunde, ns % kNsJeSekunde};
    return 0;
}

int gettimeofday(timeval* ergebnis, void*) noexcept {
    const std::int64_t ns = zeit(CLOCK_REALTIME);
    *ergebnis = {ns / kNsJeSekunde, ns % kNsJeSekunde / 1000};
    return 0;
}

time_t time(time_t* ergebnis) noexcept {
    const time_t sekunden = zeit(CLOCK_REALTIME) / kNsJeSekunde;
    if (ergebnis) *ergebnis = sekunden;
    return sekunden;
}

int timerfd_create(clockid_t uhr, int schalter) noexcept {
    if (uhr != CLOCK_REALTIME) return static_cast<int>(::syscall(SYS_timerfd_create, uhr, schalter));
    const int fd = ::inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
    ::inotify_add_watch(fd, datei(), IN_MODIFY);
    waechter() = fd;
    return fd;
}

int timerfd_settime(int fd, int schalter, const itimerspec* neu, itimerspec* alt) noexcept {
    if (fd != waechter()) return static_cast<int>(::syscall(SYS_timerfd_settime, fd, schalter, neu, alt));
    gestellt(fd);
    return 0;
}

ssize_t read(int fd, void* ziel, size_t laenge) {
    if (fd != waechter()) return ::syscall(SYS_read, fd, ziel, laenge);
    errno = gestellt(fd) ? ECANCELED : EAGAIN;
    return -1;
}

}  // extern "C"
