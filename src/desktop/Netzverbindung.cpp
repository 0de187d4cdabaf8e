#include "desktop/Netzverbindung.h"

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusServiceWatcher>
#include <QVariantMap>
#include <utility>

#include "desktop/Netzschnittstellen.h"
#include "desktop/QtText.h"
#include "platform/Text.h"

namespace wendel {

namespace {

// Names and numbers of NetworkManager's D-Bus interface.
const QString kVerwalter = QStringLiteral("org.freedesktop.NetworkManager");
const QString kPfad = QStringLiteral("/org/freedesktop/NetworkManager");
const QString kProfile = QStringLiteral("/org/freedesktop/NetworkManager/Settings");
const QString kEigenschaften = QStringLiteral("org.freedesktop.DBus.Properties");
constexpr uint kAktiviert = 2;
constexpr int kAntwortMs = 10000;

bool istEinwahl(const QString& art) {
    static const QStringList kArten = {QStringLiteral("gsm"),   QStringLiteral("cdma"),
                                       QStringLiteral("pppoe"), QStringLiteral("adsl"),
                                       QStringLiteral("ppp"),   QStringLiteral("bluetooth")};
    return kArten.contains(art);
}

QDBusMessage alleEigenschaften(const QString& pfad, const QString& schnittstelle) {
    QDBusMessage nachricht =
        QDBusMessage::createMethodCall(kVerwalter, pfad, kEigenschaften, QStringLiteral("GetAll"));
    nachricht << schnittstelle;
    return nachricht;
}

QList<QDBusObjectPath> pfade(const QVariant& wert) { return qdbus_cast<QList<QDBusObjectPath>>(wert); }

}  // namespace

// What one round of questions has found; it is over when the last answer has let go of it.
struct Netzverbindung::Erkundung {
    struct Aktive {
        QString pfad, name, art;
    };
    QString primaere;
    std::vector<Aktive> aktive;
    bool einwahlprofil = false;
    int offen = 0;
};

Netzverbindung::Netzverbindung() = default;
Netzverbindung::~Netzverbindung() = default;

std::optional<std::vector<std::string>> Netzverbindung::aktiveVerbindungen() {
    if (!dienst_) bus_.wennErreichbar([this] { beobachten(); });
    // Nothing is known yet: better no connection than one that NetworkManager would not call so.
    if (verwalterDa_ || bus_.fragt()) return verbindungen_;
    const std::string schnittstelle = aktiveNetzschnittstelle();
    if (schnittstelle.empty()) return std::vector<std::string>();
    return std::vector{nachWindows1252(schnittstelle)};
}

void Netzverbindung::beobachten() {
    QDBusConnection bus = QDBusConnection::systemBus();
    dienst_ =
        std::make_unique<QDBusServiceWatcher>(kVerwalter, bus, QDBusServiceWatcher::WatchForOwnerChange);
    if (!bus.isConnected()) return;
    const auto kommtUndGeht = [this](bool da) {
        verwalterDa_ = da;
        verbindungen_.clear();
        if (da) erneuern();
    };
    connect(dienst_.get(), &QDBusServiceWatcher::serviceOwnerChanged, this,
            [kommtUndGeht](const QString&, const QString&, const QString& neuer) {
                kommtUndGeht(!neuer.isEmpty());
            });
    bus.connect(kVerwalter, kPfad, kEigenschaften, QStringLiteral("PropertiesChanged"), this,
                SLOT(erneuern()));
    // Of the single connections: one that is being made becomes active.
    bus.connect(kVerwalter, QString(), kVerwalter + QStringLiteral(".Connection.Active"),
                QStringLiteral("StateChanged"), this, SLOT(erneuern()));
    for (const char* signal : {"NewConnection", "ConnectionRemoved"})
        bus.connect(kVerwalter, kProfile, kVerwalter + QStringLiteral(".Settings"), QLatin1String(signal),
                    this, SLOT(erneuern()));
    kommtUndGeht(bus.interface()->isServiceRegistered(kVerwalter));
}

// One round at a time; what changes meanwhile is asked for once more afterwards.
void Netzverbindung::erneuern() {
    veraltet_ = true;
    if (!erkundungLaeuft_ && verwalterDa_) erkunde();
}

void Netzverbindung::erkunde() {
    erkundungLaeuft_ = true;
    veraltet_ = false;
    const auto erkundung = std::make_shared<Erkundung>();
    frageProfile(erkundung);
    frageVerwalter(erkundung);
}

// The round ends when no question of it is open; an error counts as an answer without content.
template <class Auswertung>
void Netzverbindung::frage(const std::shared_ptr<Erkundung>& erkundung, const QDBusMessage& nachricht,
                           Auswertung auswertung) {
    ++erkundung->offen;
    auto* antwort =
        new QDBusPendingCallWatcher(QDBusConnection::systemBus().asyncCall(nachricht, kAntwortMs), this);
    connect(antwort, &QDBusPendingCallWatcher::finished, this,
            [this, erkundung, auswertung](QDBusPendingCallWatcher* fertig) {
                fertig->deleteLater();
                if (!fertig->isError() && !fertig->reply().arguments().isEmpty())
                    auswertung(fertig->reply().arguments().constFirst());
                if (--erkundung->offen == 0) abschliessen(*erkundung);
            });
}

void Netzverbindung::frageVerwalter(const std::shared_ptr<Erkundung>& erkundung) {
    frage(erkundung, alleEigenschaften(kPfad, kVerwalter), [this, erkundung](const QVariant& antwort) {
        const auto werte = qdbus_cast<QVariantMap>(antwort);
        erkundung->primaere =
            werte.value(QStringLiteral("PrimaryConnection")).value<QDBusObjectPath>().path();
        for (const QDBusObjectPath& pfad : pfade(werte.value(QStringLiteral("ActiveConnections"))))
            frageAktive(erkundung, pfad.path());
    });
}

void Netzverbindung::frageAktive(const std::shared_ptr<Erkundung>& erkundung, const QString& pfad) {
    frage(erkundung, alleEigenschaften(pfad, kVerwalter + QStringLiteral(".Connection.Active")),
          [erkundung, pfad](const QVariant& antwort) {
              const auto werte = qdbus_cast<QVariantMap>(antwort);
              if (werte.value(QStringLiteral("State")).toUInt() != kAktiviert) return;
              erkundung->aktive.push_back({pfad, werte.value(QStringLiteral("Id")).toString(),
                                           werte.value(QStringLiteral("Type")).toString()});
          });
}

void Netzverbindung::frageProfile(const std::shared_ptr<Erkundung>& erkundung) {
    const QString schnittstelle = kVerwalter + QStringLiteral(".Settings");
    frage(erkundung,
          QDBusMessage::createMethodCall(kVerwalter, kProfile, schnittstelle,
                                         QStringLiteral("ListConnections")),
          [this, erkundung, schnittstelle](const QVariant& antwort) {
              for (const QDBusObjectPath& pfad : pfade(antwort)) {
                  frage(erkundung,
                        QDBusMessage::createMethodCall(kVerwalter, pfad.path(),
                                                       schnittstelle + QStringLiteral(".Connection"),
                                                       QStringLiteral("GetSettings")),
                        [erkundung](const QVariant& profil) {
                            const auto gruppen = qdbus_cast<QMap<QString, QVariantMap>>(profil);
                            const QVariantMap werte = gruppen.value(QStringLiteral("connection"));
                            if (istEinwahl(werte.value(QStringLiteral("type")).toString()))
                                erkundung->einwahlprofil = true;
                        });
              }
          });
}

void Netzverbindung::abschliessen(const Erkundung& erkundung) {
    erkundungLaeuft_ = false;
    if (!verwalterDa_) return;
    verbindungen_.clear();
    for (const Erkundung::Aktive& aktive : erkundung.aktive) {
        if (erkundung.einwahlprofil ? istEinwahl(aktive.art) : aktive.pfad == erkundung.primaere)
            verbindungen_.push_back(nachWindows1252(logikText(aktive.name)));
    }
    if (veraltet_) erkunde();
}

}  // namespace wendel
