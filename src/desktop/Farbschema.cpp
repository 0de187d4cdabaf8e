#include "desktop/Farbschema.h"

#include <QApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusVariant>
#include <QEventLoop>
#include <QPalette>
#include <QTimer>

namespace wendel {
namespace {

const QString kDienst = QStringLiteral("org.freedesktop.portal.Desktop");
const QString kObjekt = QStringLiteral("/org/freedesktop/portal/desktop");
const QString kSchnittstelle = QStringLiteral("org.freedesktop.portal.Settings");
const QString kBereich = QStringLiteral("org.freedesktop.appearance");
const QString kName = QStringLiteral("color-scheme");

constexpr uint kLieberDunkel = 1;  // 0: no wish, 2: rather light
constexpr int kWartezeitMs = 250;

bool istDunkel(const QPalette& farben) {
    return farben.color(QPalette::Window).lightness() < farben.color(QPalette::WindowText).lightness();
}

QPalette dunklePalette() {
    const QColor flaeche(0x2d2f33), seite(0x1e1f22), knopf(0x3a3d42), schrift(0xf0f0f0), blass(0x8c9098);
    QPalette farben(knopf, flaeche);  // the shades of frames follow the button's colour
    farben.setColor(QPalette::WindowText, schrift);
    farben.setColor(QPalette::Base, seite);
    farben.setColor(QPalette::AlternateBase, QColor(0x26282c));
    farben.setColor(QPalette::Text, schrift);
    farben.setColor(QPalette::ButtonText, schrift);
    farben.setColor(QPalette::BrightText, Qt::white);
    farben.setColor(QPalette::ToolTipBase, knopf);
    farben.setColor(QPalette::ToolTipText, schrift);
    farben.setColor(QPalette::PlaceholderText, blass);
    farben.setColor(QPalette::Highlight, QColor(0x2f6fb5));
    farben.setColor(QPalette::HighlightedText, Qt::white);
    farben.setColor(QPalette::Link, QColor(0x6cb2f5));
    farben.setColor(QPalette::LinkVisited, QColor(0xb59af0));
    for (const QPalette::ColorRole rolle : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
        farben.setColor(QPalette::Disabled, rolle, blass);
    // A question may be about the selected row of the list that it locks.
    farben.setColor(QPalette::Disabled, QPalette::Highlight, QColor(0x545a64));
    farben.setColor(QPalette::Disabled, QPalette::HighlightedText, schrift);
    return farben;
}

// Menus stand out from the pages that they cover: the style derives their ground from the one colour and
// their edge from the other.
QPalette dunkleMenuepalette(QPalette farben) {
    farben.setColor(QPalette::Base, QColor(0x3a3d42));
    farben.setColor(QPalette::Window, QColor(0x7c818a));
    return farben;
}

}  // namespace

Farbschema::Farbschema(Beginn beginn) {
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected() || istDunkel(QGuiApplication::palette())) return;
    bus.connect(kDienst, kObjekt, kSchnittstelle, QStringLiteral("SettingChanged"), this,
                SLOT(geaendert(QDBusMessage)));
    frage(beginn);
}

void Farbschema::frage(Beginn beginn) {
    QDBusMessage anfrage =
        QDBusMessage::createMethodCall(kDienst, kObjekt, kSchnittstelle, QStringLiteral("Read"));
    anfrage << kBereich << kName;
    auto* antwort = new QDBusPendingCallWatcher(QDBusConnection::sessionBus().asyncCall(anfrage), this);
    connect(antwort, &QDBusPendingCallWatcher::finished, this, [this](QDBusPendingCallWatcher* fertig) {
        const QDBusPendingReply<QDBusVariant> wert = *fertig;
        fertig->deleteLater();
        if (!wert.isError()) wende(wert.value().variant());
    });
    if (beginn == Beginn::Versteckt) return;
    QEventLoop warten;
    connect(antwort, &QDBusPendingCallWatcher::finished, &warten, &QEventLoop::quit);
    QTimer::singleShot(kWartezeitMs, &warten, &QEventLoop::quit);
    warten.exec();
}

void Farbschema::geaendert(const QDBusMessage& meldung) {
    const QVariantList werte = meldung.arguments();
    if (werte.size() == 3 && werte[0] == kBereich && werte[1] == kName) wende(werte[2]);
}

// A value that is read comes wrapped once more than one that is announced.
void Farbschema::wende(const QVariant& wert) {
    if (wert.metaType() == QMetaType::fromType<QDBusVariant>()) {
        wende(wert.value<QDBusVariant>().variant());
        return;
    }
    const bool dunkel = wert.toUInt() == kLieberDunkel;
    if (dunkel == dunkel_) return;
    dunkel_ = dunkel;
    const QPalette farben = dunkel ? dunklePalette() : QPalette();
    QApplication::setPalette(farben);
    QApplication::setPalette(dunkel ? dunkleMenuepalette(farben) : farben, "QMenu");
}

}  // namespace wendel
