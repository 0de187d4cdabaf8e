#include "desktop/TrayIcon.h"

#include <QApplication>
#include <algorithm>
#include <string_view>

#include "desktop/QtText.h"
#include "desktop/Symbole.h"
#include "platform/Text.h"

namespace wendel {
namespace {

// Places in the icon record.
constexpr std::size_t kStelleKennung = 8;
constexpr std::size_t kStelleNachricht = 16;
constexpr std::size_t kStelleTipp = 24;

constexpr std::uint32_t kLinksDoppelklick = 515;
constexpr std::uint32_t kRechtsLos = 517;

std::uint32_t zahl(std::span<const std::uint8_t, 88> datensatz, std::size_t stelle) {
    std::uint32_t wert = 0;
    for (std::size_t i = 4; i-- > 0;)
        wert = (wert << 8) | datensatz[stelle + i];
    return wert;
}

QString tipp(std::span<const std::uint8_t, 88> datensatz) {
    const auto bytes = datensatz.subspan(kStelleTipp);
    const auto ende = std::find(bytes.begin(), bytes.end(), 0);
    return qtText(ausWindows1252(std::string(bytes.begin(), ende)));
}

}  // namespace

TrayIcon::TrayIcon() {
    wartezeit_.setSingleShot(true);
    connect(&wartezeit_, &QTimer::timeout, this, [this] {
        if (ohneWirt_) ohneWirt_();
    });
}

void TrayIcon::hinzufuegen(std::span<const std::uint8_t, 88> datensatz) {
    kennung_ = zahl(datensatz, kStelleKennung);
    nachricht_ = zahl(datensatz, kStelleNachricht);
    gewuenscht_ = true;
    aendern(datensatz);
    if (gefunden_) {
        wirtDa();
    } else if (!gesucht_) {
        gesucht_ = true;
        wartezeit_.start(kWartezeitMs);
        wirt_.suche([this] { wirtDa(); });
    }
}

void TrayIcon::aendern(std::span<const std::uint8_t, 88> datensatz) {
    const QString text = tipp(datensatz);
    if (text == tipp_) return;
    tipp_ = text;
    if (icon_) icon_->setToolTip(tipp_);
}

void TrayIcon::entfernen(std::uint32_t kennung) {
    if (kennung != kennung_) return;
    gewuenscht_ = false;
    wartezeit_.stop();
    icon_.reset();
}

// From here on Qt has chosen: it brings the icon back by itself when the host restarts.
void TrayIcon::wirtDa() {
    gefunden_ = true;
    wartezeit_.stop();
    if (!gewuenscht_ || icon_) return;
    icon_ = std::make_unique<QSystemTrayIcon>(Symbole::symbol("wendel"));
    icon_->setObjectName(QStringLiteral("TaskbarIcon"));
    icon_->setToolTip(tipp_);
    connect(icon_.get(), &QSystemTrayIcon::activated, this, &TrayIcon::angeklickt);
    icon_->show();
}

void TrayIcon::angeklickt(QSystemTrayIcon::ActivationReason grund) {
    switch (grund) {
        case QSystemTrayIcon::Trigger:
            if (!istTrayfenster()) links();
            return;
        case QSystemTrayIcon::DoubleClick: melde(kLinksDoppelklick); return;
        case QSystemTrayIcon::Context: melde(kRechtsLos); return;
        case QSystemTrayIcon::MiddleClick:
            if (!istTrayfenster()) melde(kRechtsLos);
            return;
        default: return;
    }
}

// A notifier host calls once for a click and twice for a double click: the first call acts, its twin does
// not.
void TrayIcon::links() {
    const bool zwilling =
        letzteAktivierung_.isValid() && letzteAktivierung_.elapsed() < QApplication::doubleClickInterval();
    letzteAktivierung_.start();
    if (!zwilling) melde(kLinksDoppelklick);
}

void TrayIcon::melde(std::uint32_t maus) {
    if (prozedur_) prozedur_(nachricht_, kennung_, maus);
}

}  // namespace wendel
