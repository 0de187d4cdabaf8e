#include "desktop/TrayIcon.h"

#include <QApplication>
#include <QMouseEvent>
#include <algorithm>
#include <utility>

#include "core/TaskbarIcon.h"
#include "desktop/QtText.h"
#include "desktop/Symbole.h"
#include "platform/Text.h"

namespace wendel {
namespace {

// Between two calls of a host for one click of the right button.
constexpr int kZwillingMs = 150;

std::uint32_t zahl(std::span<const std::uint8_t, 88> datensatz, std::size_t stelle) {
    std::uint32_t wert = 0;
    for (std::size_t i = 4; i-- > 0;)
        wert = (wert << 8) | datensatz[stelle + i];
    return wert;
}

QString tipp(std::span<const std::uint8_t, 88> datensatz) {
    const auto bytes = datensatz.subspan(kIconStelleTipp);
    const auto ende = std::find(bytes.begin(), bytes.end(), 0);
    return qtText(ausWindows1252(std::string(bytes.begin(), ende)));
}

// The second call for one click is none: true when the one before is that young.
bool istZwilling(QElapsedTimer& letzter, int ms) {
    const bool eben = letzter.isValid() && letzter.elapsed() < ms;
    letzter.start();
    return eben;
}

}  // namespace

TrayIcon::TrayIcon() {
    rechtsklick_.setSingleShot(true);
    connect(&rechtsklick_, &QTimer::timeout, this, [this] { melde(kMausRechtsLos); });
    wartezeit_.setSingleShot(true);
    connect(&wartezeit_, &QTimer::timeout, this, [this] {
        if (ohneWirt_) ohneWirt_();
    });
}

void TrayIcon::hinzufuegen(std::span<const std::uint8_t, 88> datensatz) {
    kennung_ = zahl(datensatz, kIconStelleKennung);
    nachricht_ = zahl(datensatz, kIconStelleNachricht);
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
    if (einfaches_) einfaches_->erneuern();
}

void TrayIcon::entfernen(std::uint32_t kennung) {
    if (kennung != kennung_) return;
    gewuenscht_ = false;
    wartezeit_.stop();
    icon_.reset();
}

void TrayIcon::setzeEinfachesMenue(EinfachesTraymenue::Quelle quelle, EinfachesTraymenue::Befehl befehl) {
    quelle_ = std::move(quelle);
    befehl_ = std::move(befehl);
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
    // Only a tray window knows where its icon is.
    trayfenster_ = !icon_->geometry().isEmpty();
    if (!trayfenster_) exportiereMenue();
}

// Some hosts report the right button only through a menu that they are about to show: one entry that nobody
// sees is enough for them. Others show nothing but such menus. A tray window would pop it up itself.
void TrayIcon::exportiereMenue() {
    if (quelle_ && EinfachesTraymenue::gewuenscht()) {
        einfaches_ = std::make_unique<EinfachesTraymenue>(quelle_, befehl_);
        icon_->setContextMenu(&einfaches_->menue());
        return;
    }
    anstoss_ = std::make_unique<QMenu>();
    anstoss_->addAction(QStringLiteral("Lomrick"))->setVisible(false);
    connect(anstoss_.get(), &QMenu::aboutToShow, this, &TrayIcon::rechts);
    icon_->setContextMenu(anstoss_.get());
}

void TrayIcon::angeklickt(QSystemTrayIcon::ActivationReason grund) {
    switch (grund) {
        case QSystemTrayIcon::Trigger:
            if (!trayfenster_) links();
            return;
        case QSystemTrayIcon::DoubleClick: melde(kMausLinksDoppelklick); return;
        case QSystemTrayIcon::Context:
            // A tray window reports the press; the menu comes with the release, which goes to the same
            // window.
            if (!trayfenster_) {
                rechts();
            } else if (!symbolfenster_) {
                qApp->installEventFilter(this);
            }
            return;
        case QSystemTrayIcon::MiddleClick:
            if (!trayfenster_) rechts();
            return;
        default: return;
    }
}

// A notifier host calls once for a click and twice for a double click: the first call acts, its twin does
// not.
void TrayIcon::links() {
    if (!istZwilling(letzteAktivierung_, QApplication::doubleClickInterval())) melde(kMausLinksDoppelklick);
}

// A host may ask for the menu and be about to show the exported one as well. It waits for its call to come
// back, so nothing is done from inside it.
void TrayIcon::rechts() {
    if (!istZwilling(letzterRechtsklick_, kZwillingMs)) rechtsklick_.start(0);
}

// The release that belongs to the first press on the icon shows which window to watch from then on: the
// second press of two quick ones is reported by no signal.
bool TrayIcon::eventFilter(QObject* objekt, QEvent* ereignis) {
    const bool los = ereignis->type() == QEvent::MouseButtonRelease &&
                     static_cast<QMouseEvent*>(ereignis)->button() == Qt::RightButton;
    if (los) rechtsklick_.start(0);
    if (symbolfenster_) return QObject::eventFilter(objekt, ereignis);
    if (los) {
        symbolfenster_ = objekt;
        objekt->installEventFilter(this);
    }
    if (los || ereignis->type() == QEvent::MouseButtonPress) qApp->removeEventFilter(this);
    return QObject::eventFilter(objekt, ereignis);
}

void TrayIcon::melde(std::uint32_t maus) {
    if (prozedur_) prozedur_(nachricht_, kennung_, maus);
}

}  // namespace wendel
