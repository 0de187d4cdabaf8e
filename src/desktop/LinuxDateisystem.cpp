#include "desktop/LinuxDateisystem.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <memory>
#include <new>
#include <stdexcept>

#include "desktop/Dateideskriptor.h"
#include "desktop/Pfade.h"
#include "platform/Text.h"

namespace wendel {

namespace {

constexpr mode_t kNeueDatei = 0666;
constexpr mode_t kNeuerOrdner = 0777;

// The system cuts a path at its first NUL and would then touch another file.
bool brauchbar(const std::string& pfad) { return !pfad.empty() && pfad.find('\0') == std::string::npos; }

Dateideskriptor oeffne(const std::string& nativ, int schalter, mode_t modus = kNeueDatei) {
    int fd;
    do
        fd = ::open(nativ.c_str(), schalter | O_CLOEXEC | O_NOCTTY, modus);
    while (fd < 0 && errno == EINTR);
    return Dateideskriptor(fd);
}

bool istDatei(const std::string& nativ, struct stat& angaben) {
    return ::stat(nativ.c_str(), &angaben) == 0 && S_ISREG(angaben.st_mode);
}

bool istOrdner(const std::string& nativ) {
    struct stat angaben {};
    return ::stat(nativ.c_str(), &angaben) == 0 && S_ISDIR(angaben.st_mode);
}

Dateistand dateistand(const struct stat& angaben) {
    constexpr std::int64_t kNsJeSekunde = 1'000'000'000;
    return {static_cast<std::uint64_t>(angaben.st_size),
            angaben.st_mtim.tv_sec * kNsJeSekunde + angaben.st_mtim.tv_nsec};
}

// The name in the folder that differs from `name` in case only; the first in byte order, so that several give
// the same answer every time. "" when there is none.
std::string ohneGrossKlein(const std::string& ordner, std::string_view name) {
    const std::unique_ptr<DIR, int (*)(DIR*)> verzeichnis(::opendir(ordner.c_str()), &::closedir);
    std::string gefunden;
    if (!verzeichnis || name.empty()) return gefunden;
    while (const dirent* eintrag = ::readdir(verzeichnis.get())) {
        const std::string_view kandidat = eintrag->d_name;
        if (gleichOhneGrossKlein(kandidat, name) && (gefunden.empty() || kandidat < gefunden))
            gefunden = kandidat;
    }
    return gefunden;
}

// Native path of an existing regular file, found as the port says; "" when there is none.
std::string finde(const std::string& pfad, struct stat& angaben) {
    if (!brauchbar(pfad)) return {};
    const std::string nativ = nativerPfad(pfad);
    if (istDatei(nativ, angaben)) return nativ;
    const std::string ordner = elternordner(nativ);
    const std::string name = ohneGrossKlein(ordner, letzterTeil(nativ));
    if (name.empty()) return {};
    const std::string anders = ordner + "/" + name;
    return istDatei(anders, angaben) ? anders : std::string();
}

bool schreibeAlles(int fd, std::string_view inhalt) {
    while (!inhalt.empty()) {
        const ssize_t n = ::write(fd, inhalt.data(), inhalt.size());
        if (n < 0 && errno == EINTR) continue;
        if (n <= 0) return false;
        inhalt.remove_prefix(static_cast<std::size_t>(n));
    }
    return true;
}

bool aufPlatte(int fd) {
    int ergebnis;
    do
        ergebnis = ::fsync(fd);
    while (ergebnis != 0 && errno == EINTR);
    // Devices and some network folders know no syncing; that is no failure of the write.
    return ergebnis == 0 || errno == EINVAL || errno == ENOTSUP;
}

// Makes a new, renamed or removed name of this folder durable.
bool ordnerAufPlatte(const std::string& ordner) {
    const Dateideskriptor fd = oeffne(ordner, O_RDONLY | O_DIRECTORY);
    // A folder one may write to but not read can't be opened; its entry is then as durable as it gets.
    return fd ? aufPlatte(fd.get()) : errno == EACCES;
}

// Writes and syncs; the folder too when the file is new, since else a crash can take its name away.
bool schreibeInDatei(const std::string& pfad, std::string_view inhalt, int schalter) {
    if (!brauchbar(pfad)) return false;
    const std::string nativ = nativerPfad(pfad);
    struct stat vorher {};
    const bool neu = ::stat(nativ.c_str(), &vorher) != 0;
    if (!neu && S_ISFIFO(vorher.st_mode)) return false;  // would wait for a reader
    const Dateideskriptor fd = oeffne(nativ, O_WRONLY | O_CREAT | schalter);
    if (!fd || !schreibeAlles(fd.get(), inhalt) || !aufPlatte(fd.get())) return false;
    return !neu || ordnerAufPlatte(elternordner(nativ));
}

// The file that a chain of links leads to; the path itself when it is no link; "" for a link to nowhere.
std::string hinterLinks(const std::string& nativ) {
    struct stat angaben {};
    if (::lstat(nativ.c_str(), &angaben) != 0 || !S_ISLNK(angaben.st_mode)) return nativ;
    const std::unique_ptr<char, void (*)(void*)> ziel(::realpath(nativ.c_str(), nullptr), &std::free);
    return ziel ? std::string(ziel.get()) : std::string();
}

// Opens the new file beside the old one under a fixed name, so that what a crash leaves behind is used again
// and does not pile up. The lock keeps a second writer (another program of the suite) out of it until the
// rename; it waits for at most half a second.
Dateideskriptor oeffneNeben(const std::string& neben) {
    constexpr int kVersuche = 50;
    constexpr timespec kPause{0, 10'000'000};
    for (int i = 0; i < kVersuche; ++i) {
        Dateideskriptor fd = oeffne(neben, O_WRONLY | O_CREAT | O_NOFOLLOW);
        if (!fd) return fd;
        if (::flock(fd.get(), LOCK_EX | LOCK_NB) == 0) {
            struct stat offen {
            }, dort{};
            const bool dieselbe = ::fstat(fd.get(), &offen) == 0 && ::lstat(neben.c_str(), &dort) == 0 &&
                                  offen.st_ino == dort.st_ino && offen.st_dev == dort.st_dev;
            if (dieselbe) return fd;  // else the other writer has just renamed it: it is the real file now
            continue;
        }
        ::nanosleep(&kPause, nullptr);
    }
    return {};
}

bool fuelleNeben(int fd, std::string_view inhalt, const struct stat* alt) {
    if (::ftruncate(fd, 0) != 0) return false;
    if (alt) {
        // Best effort: another user's file keeps its owner where we may give it away. Owner first, since
        // changing it clears bits of the mode.
        [[maybe_unused]] const int besitzer = ::fchown(fd, alt->st_uid, alt->st_gid);
        if (::fchmod(fd, alt->st_mode & 07777) != 0) return false;
    }
    return schreibeAlles(fd, inhalt) && aufPlatte(fd);
}

}  // namespace

std::string vorhandeneDatei(const std::string& pfad) {
    struct stat angaben {};
    return finde(pfad, angaben);
}

bool LinuxDateisystem::existiert(const std::string& pfad) { return !vorhandeneDatei(pfad).empty(); }

std::optional<std::uint64_t> LinuxDateisystem::groesse(const std::string& pfad) {
    struct stat angaben {};
    if (finde(pfad, angaben).empty()) return std::nullopt;
    return static_cast<std::uint64_t>(angaben.st_size);
}

std::optional<Dateistand> LinuxDateisystem::stand(const std::string& pfad) {
    struct stat angaben {};
    if (finde(pfad, angaben).empty()) return std::nullopt;
    return dateistand(angaben);
}

std::optional<std::string> LinuxDateisystem::lesen(const std::string& pfad) try {
    struct stat angaben {};
    const std::string nativ = finde(pfad, angaben);
    if (nativ.empty()) return std::nullopt;
    const Dateideskriptor fd = oeffne(nativ, O_RDONLY);
    if (!fd) return std::nullopt;
    std::string inhalt;
    // One byte more than the size says: the end is then seen without a second, larger buffer.
    std::size_t voll = 0;
    inhalt.resize(static_cast<std::size_t>(angaben.st_size) + 1);
    while (true) {
        const ssize_t n = ::read(fd.get(), inhalt.data() + voll, inhalt.size() - voll);
        if (n < 0 && errno == EINTR) continue;
        if (n < 0) return std::nullopt;
        if (n == 0) break;
        voll += static_cast<std::size_t>(n);
        if (voll == inhalt.size()) inhalt.resize(inhalt.size() * 2);
    }
    inhalt.resize(voll);
    return inhalt;
} catch (const std::bad_alloc&) {
    return std::nullopt;  // larger than memory: for the caller a file that can't be read
} catch (const std::length_error&) {
    return std::nullopt;
}

bool LinuxDateisystem::anlegen(const std::string& pfad) { return schreibeInDatei(pfad, {}, 0); }

bool LinuxDateisystem::ueberschreibenAmAnfang(const std::string& pfad, std::string_view inhalt) {
    return schreibeInDatei(pfad, inhalt, 0);
}

bool LinuxDateisystem::schreiben(const std::string& pfad, std::string_view inhalt) {
    return schreibeInDatei(pfad, inhalt, O_TRUNC);
}

bool LinuxDateisystem::anhaengen(const std::string& pfad, std::string_view inhalt) {
    if (!brauchbar(pfad)) return false;
    const Dateideskriptor fd = oeffne(nativerPfad(pfad), O_WRONLY | O_CREAT | O_APPEND | O_NONBLOCK);
    return fd && schreibeAlles(fd.get(), inhalt);
}

bool LinuxDateisystem::ersetzen(const std::string& pfad, std::string_view inhalt) {
    if (!brauchbar(pfad)) return false;
    const std::string ziel = hinterLinks(nativerPfad(pfad));
    if (ziel.empty()) return false;
    struct stat angaben {};
    const bool vorhanden = ::stat(ziel.c_str(), &angaben) == 0;
    if (vorhanden && !S_ISREG(angaben.st_mode)) return false;

    const std::string ordner = elternordner(ziel);
    const std::string neben = ordner + "/." + std::string(letzterTeil(ziel)) + ".neu";
    const Dateideskriptor fd = oeffneNeben(neben);
    if (!fd) return false;
    if (!fuelleNeben(fd.get(), inhalt, vorhanden ? &angaben : nullptr) ||
        ::rename(neben.c_str(), ziel.c_str()) != 0) {
        ::unlink(neben.c_str());
        return false;
    }
    return ordnerAufPlatte(ordner);
}

bool LinuxDateisystem::loeschen(const std::string& pfad) {
    if (!brauchbar(pfad)) return false;
    const std::string nativ = nativerPfad(pfad);
    return ::unlink(nativ.c_str()) == 0 && ordnerAufPlatte(elternordner(nativ));
}

bool LinuxDateisystem::umbenennen(const std::string& von, const std::string& nach) {
    if (!brauchbar(von) || !brauchbar(nach)) return false;
    const std::string alt = nativerPfad(von);
    const std::string neu = nativerPfad(nach);
    if (::renameat2(AT_FDCWD, alt.c_str(), AT_FDCWD, neu.c_str(), RENAME_NOREPLACE) != 0) {
        if (errno != EINVAL && errno != ENOSYS) return false;
        // File systems without the exclusive rename: a hard link fails on an existing target just as well.
        if (::link(alt.c_str(), neu.c_str()) != 0 || ::unlink(alt.c_str()) != 0) return false;
    }
    const bool ort = ordnerAufPlatte(elternordner(neu));
    return ordnerAufPlatte(elternordner(alt)) && ort;
}

bool LinuxDateisystem::ordnerAnlegen(const std::string& pfad) {
    if (!brauchbar(pfad)) return false;
    std::string nativ = nativerPfad(pfad);
    while (nativ.size() > 1 && nativ.back() == '/')
        nativ.pop_back();
    if (istOrdner(nativ)) return true;
    const std::string eltern = elternordner(nativ);
    if (!istOrdner(eltern) && !ordnerAnlegen(eltern)) return false;
    if (::mkdir(nativ.c_str(), kNeuerOrdner) != 0) return errno == EEXIST && istOrdner(nativ);
    return ordnerAufPlatte(eltern);
}

std::optional<std::vector<Ordnereintrag>> LinuxDateisystem::ordnerinhalt(const std::string& pfad) {
    if (!brauchbar(pfad)) return std::nullopt;
    const std::unique_ptr<DIR, int (*)(DIR*)> verzeichnis(::opendir(nativerPfad(pfad).c_str()), &::closedir);
    if (!verzeichnis) return std::nullopt;
    std::vector<Ordnereintrag> eintraege;
    while (const dirent* eintrag = ::readdir(verzeichnis.get())) {
        struct stat angaben {};
        if (::fstatat(::dirfd(verzeichnis.get()), eintrag->d_name, &angaben, 0) == 0 &&
            S_ISREG(angaben.st_mode))
            eintraege.push_back({eintrag->d_name, dateistand(angaben)});
    }
    return eintraege;
}

bool LinuxDateisystem::ordnerWechseln(const std::string& pfad) {
    return brauchbar(pfad) && ::chdir(nativerPfad(pfad).c_str()) == 0;
}

std::string LinuxDateisystem::pfadAnzeige(const std::string& pfad) { return wendel::pfadAnzeige(pfad); }

}  // namespace wendel
