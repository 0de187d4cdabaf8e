#include "desktop/BusStatusverbindung.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusReply>

#include "desktop/QtText.h"

namespace wendel {

namespace {

const QString kDienst = QStringLiteral("Drumlet.TvStatus");
const QString kPfad = QStringLiteral("/tvstatus");
const QString kEigenschaften = QStringLiteral("org.freedesktop.DBus.Properties");
constexpr int kAntwortMs = 5000;
constexpr int kBusantwortMs = 500;  // the tick waits for it

bool istAngemeldet(const QDBusConnection& bus) {
    const QString dienst = QStringLiteral("org.freedesktop.DBus");
    const QDBusMessage frage = QDBusMessage::createMethodCall(dienst, QStringLiteral("/org/freedesktop/DBus"),
                                                              dienst, QStringLiteral("NameHasOwner"))
                               << kDienst;
    return QDBusReply<bool>(bus.call(frage, QDBus::Block, kBusantwortMs)).value();
}

}  // namespace

BusStatusverbindung::~BusStatusverbindung() { trennen(); }

bool BusStatusverbindung::verbinden(const Empfaenger& empfaenger) {
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected() || !istAngemeldet(bus)) return false;
    trennen();
    // Before the question: no change may fall between the answer and the first signal.
    if (!bus.connect(kDienst, kPfad, kEigenschaften, QStringLiteral("PropertiesChanged"), this,
                     SLOT(geaendert(QString, QVariantMap, QStringList))))
        return false;
    empfaenger_ = empfaenger;
    verbunden_ = true;
    ++verbindungsnummer_;
    frageWerte();
    return true;
}

void BusStatusverbindung::trennen() {
    if (!verbunden_) return;
    verbunden_ = false;
    QDBusConnection::sessionBus().disconnect(kDienst, kPfad, kEigenschaften,
                                             QStringLiteral("PropertiesChanged"), this,
                                             SLOT(geaendert(QString, QVariantMap, QStringList)));
}

void BusStatusverbindung::frageWerte() {
    QDBusMessage frage =
        QDBusMessage::createMethodCall(kDienst, kPfad, kEigenschaften, QStringLiteral("GetAll"));
    frage << kDienst;
    frage.setAutoStartService(false);
    auto* antwort =
        new QDBusPendingCallWatcher(QDBusConnection::sessionBus().asyncCall(frage, kAntwortMs), this);
    connect(antwort, &QDBusPendingCallWatcher::finished, this,
            [this, nummer = verbindungsnummer_](QDBusPendingCallWatcher* fertig) {
                const QDBusPendingReply<QVariantMap> werte = *fertig;
                fertig->deleteLater();
                if (nummer == verbindungsnummer_ && !werte.isError()) uebernimm(werte.value());
            });
}

// A program that only says that something has changed is asked what.
void BusStatusverbindung::geaendert(const QString& schnittstelle, const QVariantMap& werte,
                                    const QStringList& ungueltige) {
    if (schnittstelle != kDienst) return;
    uebernimm(werte);
    if (verbunden_ && !ungueltige.isEmpty()) frageWerte();
}

// The label first: the code may end the update, and with it the link.
void BusStatusverbindung::uebernimm(const QVariantMap& werte) {
    for (const auto& [name, empfaenger] :
         {std::pair(QStringLiteral("StatusLabel"), &empfaenger_.statusLabel),
          std::pair(QStringLiteral("StatusCode"), &empfaenger_.statusCode)}) {
        const auto wert = werte.constFind(name);
        if (verbunden_ && wert != werte.constEnd() && *empfaenger) (*empfaenger)(logikText(wert->toString()));
    }
}

}  // namespace wendel
