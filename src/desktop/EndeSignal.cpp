#include "desktop/EndeSignal.h"

#include <fcntl.h>
#include <unistd.h>
#include <csignal>

#include <QSocketNotifier>
#include <atomic>
#include <cerrno>
#include <utility>

namespace wendel {
namespace {

// All that a signal handler can reach. Blocking the signals and reading a signalfd would do without it, but
// every program that we start would inherit the blocking.
std::atomic<int> schreibende{-1};
static_assert(std::atomic<int>::is_always_lock_free);

void signalAngekommen(int) {
    const int fehler = errno;
    const char zeichen = 0;
    [[maybe_unused]] const ssize_t geschrieben = write(schreibende.load(), &zeichen, 1);
    errno = fehler;
}

}  // namespace

EndeSignal::EndeSignal(std::function<void()> ende) : ende_(std::move(ende)) {
    int rohr[2];
    if (pipe2(rohr, O_CLOEXEC | O_NONBLOCK) != 0) return;
    fd_ = rohr[0];
    schreibende = rohr[1];
    auto* lauscher = new QSocketNotifier(fd_, QSocketNotifier::Read, this);
    connect(lauscher, &QSocketNotifier::activated, this, [this] {
        char zeichen;
        if (read(fd_, &zeichen, 1) == 1) ende_();
    });
    struct sigaction behandlung {};
    behandlung.sa_handler = signalAngekommen;
    behandlung.sa_flags = SA_RESTART;
    for (const int nummer : {SIGTERM, SIGINT, SIGHUP})
        sigaction(nummer, &behandlung, nullptr);
}

EndeSignal::~EndeSignal() {
    if (fd_ < 0) return;
    for (const int nummer : {SIGTERM, SIGINT, SIGHUP})
        std::signal(nummer, SIG_DFL);
    close(schreibende.exchange(-1));
    close(fd_);
}

}  // namespace wendel
