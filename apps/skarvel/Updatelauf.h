#pragma once
// A live update on a thread of its own, so that window and bus stay awake. What it tells arrives on the
// thread of the event loop.

#include <QObject>
#include <atomic>
#include <functional>
#include <string>
#include <thread>

#include "LiveUpdate.h"
#include "platform/ports/Uhr.h"

namespace wendel::skarvel {

struct Updateergebnis {
    bool fertig = false;
    bool geschrieben = false;  // the database has changed, also where the run failed
    std::string text;          // German, for the user
};

class Updatelauf final : public QObject, private Verlauf {
  public:
    struct Empfaenger {
        std::function<void(const std::string& text, int prozent)> stand;
        std::function<void(const Updateergebnis&)> ende;  // once, the last call
    };
    // uhr outlives this and belongs to the run. Nothing happens before start().
    Updatelauf(Uhr& uhr, std::string programmordner, Empfaenger empfaenger);
    // Breaks the run off and waits for it.
    ~Updatelauf() override;

    void start();
    void brichAb() { abbruch_ = true; }

  private:
    void melde(const std::string& text, int prozent) override;
    bool abgebrochen() override { return abbruch_; }
    Updateergebnis aktualisiere();

    Uhr& uhr_;
    std::string programmordner_;
    Empfaenger empfaenger_;
    std::atomic<bool> abbruch_{false};
    std::thread faden_;
};

}  // namespace wendel::skarvel
