#pragma once
// One running copy per user session: a lock on a file, held for life. The kernel releases it however the
// process ends, so a crash never blocks the next start.

#include <string>

namespace wendel {

// $XDG_RUNTIME_DIR/wendel.lock, else wendel/wendel.lock in the configuration folder. Native.
std::string sperrdateipfad();

// Whether some process holds the lock, by the kernel's list: trying it would turn away a copy that starts at
// this moment.
bool sperreGehalten(const std::string& sperrdatei);

class Einzelinstanz {
  public:
    enum class Ergebnis {
        Erste,          // the lock is ours until this object dies
        Zweite,         // another copy holds it
        NichtPruefbar,  // the lock file can't be made: the caller carries on without the check
    };

    explicit Einzelinstanz(std::string sperrdatei = sperrdateipfad());
    ~Einzelinstanz();
    Einzelinstanz(const Einzelinstanz&) = delete;
    Einzelinstanz& operator=(const Einzelinstanz&) = delete;

    // Never waits. A second call gives the result of the first.
    Ergebnis ergebnis();

  private:
    std::string sperrdatei_;
    int fd_ = -1;
    bool geprueft_ = false;
    Ergebnis ergebnis_ = Ergebnis::NichtPruefbar;
};

}  // namespace wendel
