#pragma once
// WeckTimer's clockwork: calls the tick once a second, right after the program's clock has turned to it, and
// once more when the machine wakes up or its clock is set. One wake-up of the process a second.

#include <QObject>
#include <QTimer>
#include <functional>

#include "desktop/AufwachMelder.h"
#include "desktop/LinuxUhr.h"

class QSocketNotifier;

namespace wendel {

class Sekundentakt final : public QObject {
  public:
    // uhr outlives this object. The tick may run event loops of its own: further ticks come meanwhile.
    Sekundentakt(LinuxUhr& uhr, std::function<void()> tick);

    void starte();
    void halteAn();

  private:
    void naechste();
    void schlage();
    void aufgewacht();

    LinuxUhr& uhr_;
    std::function<void()> tick_;
    QTimer timer_;
    AufwachMelder melder_;
    QSocketNotifier* lauscher_ = nullptr;
};

}  // namespace wendel
