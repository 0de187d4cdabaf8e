#include "desktop/Sekundentakt.h"

#include <QSocketNotifier>
#include <utility>

namespace wendel {
namespace {

// A timer that fires a moment early would tick in the old second and miss the new one.
constexpr int kNachDerSekundeMs = 2;

}  // namespace

Sekundentakt::Sekundentakt(LinuxUhr& uhr, std::function<void()> tick) : uhr_(uhr), tick_(std::move(tick)) {
    timer_.setObjectName(QStringLiteral("WeckTimer"));
    timer_.setSingleShot(true);
    timer_.setTimerType(Qt::PreciseTimer);
    connect(&timer_, &QTimer::timeout, this, [this] { schlage(); });
}

void Sekundentakt::starte() {
    naechste();
    if (melder_.fd() >= 0 && lauscher_ == nullptr) {
        lauscher_ = new QSocketNotifier(melder_.fd(), QSocketNotifier::Read, this);
        connect(lauscher_, &QSocketNotifier::activated, this, [this] { aufgewacht(); });
    }
}

void Sekundentakt::halteAn() {
    timer_.stop();
    if (lauscher_ != nullptr) lauscher_->setEnabled(false);
}

void Sekundentakt::naechste() { timer_.start(uhr_.msBisZurNaechstenSekunde() + kNachDerSekundeMs); }

// The next one first: the tick may wait in an event loop of its own, where the clockwork goes on.
void Sekundentakt::schlage() {
    naechste();
    tick_();
}

void Sekundentakt::aufgewacht() {
    if (melder_.lesen() == AufwachMelder::Anlass::Nichts) return;
    uhr_.zoneNeuLesen();
    schlage();
}

}  // namespace wendel
