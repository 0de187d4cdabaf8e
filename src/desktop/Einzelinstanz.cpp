#include "desktop/Einzelinstanz.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <fstream>
#include <utility>

#include "desktop/LinuxDateisystem.h"
#include "desktop/Pfade.h"
#include "desktop/Programmordner.h"

namespace wendel {

std::string sperrdateipfad() {
    // A runtime folder that is announced but missing or not ours would make every copy the only one.
    if (const char* ordner = std::getenv("XDG_RUNTIME_DIR");
        ordner && *ordner == '/' && ::access(ordner, W_OK | X_OK) == 0)
        return std::string(ordner) + "/wendel.lock";
    return konfigurationsordner() + "/wendel/wendel.lock";
}

bool sperreGehalten(const std::string& sperrdatei) {
    struct stat angaben {};
    if (::stat(sperrdatei.c_str(), &angaben) != 0) return false;
    // "1: FLOCK  ADVISORY  WRITE 4711 08:01:1234 0 EOF"; the number before the inode is not that of stat() on
    // every file system.
    const std::string ende = ":" + std::to_string(angaben.st_ino) + " ";
    std::ifstream sperren("/proc/locks");
    for (std::string zeile; std::getline(sperren, zeile);)
        if (zeile.find(" FLOCK ") != std::string::npos && zeile.find(ende) != std::string::npos) return true;
    return false;
}

Einzelinstanz::Einzelinstanz(std::string sperrdatei) : sperrdatei_(std::move(sperrdatei)) {}

Einzelinstanz::~Einzelinstanz() {
    // The file stays: removing it would let a copy lock the old file while the next one makes a new one.
    if (fd_ >= 0) ::close(fd_);
}

Einzelinstanz::Ergebnis Einzelinstanz::ergebnis() {
    if (geprueft_) return ergebnis_;
    geprueft_ = true;
    if (!LinuxDateisystem().ordnerAnlegen(logischerPfad(elternordner(sperrdatei_)))) return ergebnis_;
    fd_ = ::open(sperrdatei_.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOCTTY, 0600);
    if (fd_ < 0) return ergebnis_;
    int gesperrt;
    do
        gesperrt = ::flock(fd_, LOCK_EX | LOCK_NB);
    while (gesperrt != 0 && errno == EINTR);
    if (gesperrt == 0)
        ergebnis_ = Ergebnis::Erste;
    else if (errno == EWOULDBLOCK)
        ergebnis_ = Ergebnis::Zweite;
    return ergebnis_;
}

}  // namespace wendel
