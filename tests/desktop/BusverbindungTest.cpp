// What other programs on the buses tell us and do for us: the live-update program its state, NetworkManager
// its connections, the login manager that the machine stays awake. Stand-ins of all on a bus of the test's
// own.

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <unistd.h>

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusObjectPath>
#include <QDBusUnixFileDescriptor>
#include <QDBusVirtualObject>
#include <QProcess>
#include <QTemporaryDir>

#include "desktop/BusStatusverbindung.h"
#include "desktop/Fensterhilfe.h"
#include "desktop/LoginEnergie.h"
#include "desktop/Netzschnittstellen.h"
#include "desktop/Netzverbindung.h"
#include "platform/ModulDFUEConnect.h"

namespace wendel {
namespace {

using Namen = std::vector<std::string>;
using Profil = QMap<QString, QVariantMap>;

// One place for all tests: the bus library reads the variables once in a process.
QString busadresse() {
    static const QTemporaryDir ordner;
    return "unix:path=" + ordner.path() + "/bus";
}

// The first test finds none. Gives its process id.
pid_t starteBus() {
    static QProcess daemon;
    if (daemon.state() != QProcess::NotRunning) return static_cast<pid_t>(daemon.processId());
    daemon.start("dbus-daemon",
                 {"--session", "--nofork", "--nopidfile", "--print-address", "--address=" + busadresse()});
    EXPECT_TRUE(daemon.waitForReadyRead(5000));
    QObject::connect(QCoreApplication::instance(), &QObject::destroyed, &daemon,
                     [] { daemon.kill(), daemon.waitForFinished(); });
    return static_cast<pid_t>(daemon.processId());
}

// A program with one name on the bus that answers questions for properties, all at all of its paths.
class Fremdprogramm : public QDBusVirtualObject {
  public:
    Fremdprogramm(const QString& name, const QString& pfad)
        : name_(name), pfad_(pfad), bus_((starteBus(), QDBusConnection::connectToBus(busadresse(), name))) {
        bus_.registerVirtualObject(pfad, this, QDBusConnection::SubPath);
    }
    ~Fremdprogramm() override { QDBusConnection::disconnectFromBus(name_); }
    void komm() { EXPECT_TRUE(bus_.registerService(name_)); }
    void geh() { EXPECT_TRUE(bus_.unregisterService(name_)); }
    void melde(const QString& pfad, const QString& schnittstelle, const QString& signal,
               const QVariantList& argumente) {
        QDBusMessage nachricht = QDBusMessage::createSignal(pfad, schnittstelle, signal);
        nachricht.setArguments(argumente);
        bus_.send(nachricht);
    }
    void meldeWerte(const QString& schnittstelle, const QVariantMap& werte,
                    const QStringList& ungueltig = {}) {
        melde(pfad_, "org.freedesktop.DBus.Properties", "PropertiesChanged",
              {schnittstelle, werte, ungueltig});
    }

    QMap<QString, QVariant> antworten;  // by path and member
    int fragen = 0;

    QString introspect(const QString&) const override { return {}; }
    bool handleMessage(const QDBusMessage& ruf, const QDBusConnection& bus) override {
        ++fragen;
        const QString schluessel = ruf.path().mid(pfad_.size()) + " " + ruf.member();
        if (!antworten.contains(schluessel)) return false;
        return bus.send(ruf.createReply(antworten[schluessel]));
    }

  protected:
    const QDBusConnection& bus() const { return bus_; }

  private:
    QString name_, pfad_;
    QDBusConnection bus_;
};

class Loginverwalter : public Fremdprogramm {
  public:
    enum class Art { Erlaubt, Verweigert, Stumm };
    Art art = Art::Erlaubt;
    QList<QString> bitten;

    Loginverwalter() : Fremdprogramm("org.freedesktop.login1", "/org/freedesktop/login1") { komm(); }
    bool handleMessage(const QDBusMessage& ruf, const QDBusConnection&) override {
        QStringList teile{ruf.member()};
        for (const QVariant& teil : ruf.arguments())
            teile << teil.toString();
        bitten << teile.join(u'|');
        ruf_ = ruf;
        if (art == Art::Verweigert) bus().send(ruf.createErrorReply(QDBusError::AccessDenied, "no"));
        if (art == Art::Erlaubt) antworte();
        return true;
    }
    void antworte() {
        int enden[2];
        ASSERT_EQ(0, ::pipe2(enden, O_CLOEXEC));
        leseende_ = Dateideskriptor(enden[0]);
        const Dateideskriptor schreibende(enden[1]);
        bus().send(ruf_.createReply(QVariant::fromValue(QDBusUnixFileDescriptor(schreibende.get()))));
    }
    bool gebeten(int mal) {
        return warte([&] { return bitten.size() == mal; });
    }
    // The descriptor is closed, by which it knows that the machine may sleep.
    bool frei() {
        return warte([this] { return freigegeben(); });
    }
    bool gehalten(int mal) {
        return gebeten(mal) && warte([this] { return bool(leseende_); }) && !freigegeben();
    }

  private:
    bool freigegeben() const {
        pollfd ende{leseende_.get(), POLLIN, 0};
        return ::poll(&ende, 1, 0) == 1 && (ende.revents & POLLHUP);
    }
    Dateideskriptor leseende_;
    QDBusMessage ruf_;
};

TEST(SleepInhibitor, HoldsTheMachineAwakeUntilItMaySleep) {
    LinuxUhr uhr;
    LoginEnergie energie{uhr, "/nonexistent"};
    energie.wachhalten("no bus");
    Loginverwalter login;
    login.art = Loginverwalter::Art::Verweigert;
    energie.wachhalten("refused");
    ASSERT_TRUE(login.gebeten(1));
    login.art = Loginverwalter::Art::Erlaubt;
    EXPECT_TRUE(warte([&] {
        energie.wachhalten("Aufzeichnung: „Tatort“");
        return login.bitten.size() == 2;
    }));
    energie.wachhalten("again while the answer is due");
    ASSERT_TRUE(login.gehalten(2));
    EXPECT_EQ("Inhibit|sleep:idle|Lomrick|Aufzeichnung: „Tatort“|block", login.bitten[1]);
    energie.wachhalten("again");
    energie.schlafErlauben();
    EXPECT_TRUE(login.frei());
    login.art = Loginverwalter::Art::Stumm;
    energie.wachhalten("slow");
    ASSERT_TRUE(login.gebeten(3));
    energie.schlafErlauben();
    login.antworte();
    EXPECT_TRUE(login.frei()) << "an answer that comes too late keeps nothing awake";
    login.art = Loginverwalter::Art::Erlaubt;
    energie.wachhalten("next");
    EXPECT_TRUE(login.gehalten(4));
}

TEST(SleepInhibitor, StuckBusHoldsNothingUpAndIsAskedWhenItGoesOn) {
    LinuxUhr uhr;
    LoginEnergie energie{uhr, "/nonexistent"};
    Loginverwalter login;
    ::kill(starteBus(), SIGSTOP);
    energie.wachhalten("stuck");  // would wait for ever
    energie.schlafErlauben();
    energie.wachhalten("still stuck");
    ::kill(starteBus(), SIGCONT);
    EXPECT_TRUE(login.gehalten(1));
}

struct StatusLink : testing::Test {
    StatusLink() { stelle("Sender werden gelesen ..", "0"); }
    void stelle(const QVariant& label, const QVariant& code) {
        skarvel.antworten[" GetAll"] = QVariantMap{{"StatusLabel", label}, {"StatusCode", code}};
    }
    bool verbinde() {
        return verbindung.verbinden({[this](const std::string& text) { gehoert += "label " + text + "; "; },
                                     [this](const std::string& text) { gehoert += "code " + text + "; "; }});
    }
    bool hoert(const std::string& text) {
        const bool da = warte([&] { return gehoert == text; });
        EXPECT_EQ(std::exchange(gehoert, ""), text);
        return da;
    }
    static constexpr const char* kName = "Drumlet.TvStatus";
    Fremdprogramm skarvel{kName, "/tvstatus"};
    BusStatusverbindung verbindung;
    std::string gehoert;
};

TEST_F(StatusLink, HearsWhatIsAndWhatChangesUntilItIsCut) {
    EXPECT_FALSE(verbinde());
    skarvel.komm();
    EXPECT_TRUE(verbinde());
    EXPECT_TRUE(hoert("label Sender werden gelesen ..; code 0; "));
    skarvel.meldeWerte("Drumlet.Other", {{"StatusCode", "-98"}});
    skarvel.meldeWerte(kName, {{"StatusCode", 43}, {"Other", 1}});
    EXPECT_TRUE(hoert("code 43; "));
    stelle("Übernahme", "44");
    skarvel.meldeWerte(kName, {}, {"StatusLabel"});
    EXPECT_TRUE(hoert("label Übernahme; code 44; "));
    skarvel.meldeWerte(kName, {{"StatusCode", "-99"}, {"StatusLabel", "Fertig"}});
    EXPECT_TRUE(hoert("label Fertig; code -99; "));

    verbindung.trennen();
    skarvel.meldeWerte(kName, {{"StatusCode", "-98"}});
    stelle("again", "1");
    EXPECT_TRUE(verbinde());
    verbindung.trennen();  // before the answer
    EXPECT_TRUE(verbinde());
    EXPECT_TRUE(hoert("label again; code 1; "));
}

// The manager of the machine's connections: profiles by type, and of the active ones the first is primary.
struct Networks : testing::Test {
    struct Aktive {
        QString name, art;
        uint zustand = 2;
    };
    void stelle(const QStringList& profile, const std::vector<Aktive>& aktive) {
        QList<QDBusObjectPath> profilpfade, pfade;
        for (const QString& art : profile) {
            const QString pfad = QStringLiteral("/Settings/%1").arg(profilpfade.size());
            verwalter.antworten[pfad + " GetSettings"] =
                QVariant::fromValue(Profil{{"connection", {{"type", art}}}});
            profilpfade << QDBusObjectPath(kPfad + pfad);
        }
        for (const auto& [name, art, zustand] : aktive) {
            const QString pfad = QStringLiteral("/ActiveConnection/%1").arg(pfade.size());
            verwalter.antworten[pfad + " GetAll"] =
                QVariantMap{{"Id", name}, {"Type", art}, {"State", zustand}};
            pfade << QDBusObjectPath(kPfad + pfad);
        }
        verwalter.antworten["/Settings ListConnections"] = QVariant::fromValue(profilpfade);
        verwalter.antworten[" GetAll"] =
            QVariantMap{{"PrimaryConnection",
                         QVariant::fromValue(pfade.isEmpty() ? QDBusObjectPath("/") : pfade.constFirst())},
                        {"ActiveConnections", QVariant::fromValue(pfade)}};
    }
    bool werden(const Namen& erwartet) {
        Namen namen;
        const bool da = warte([&] { return (namen = *netz.aktiveVerbindungen()) == erwartet; });
        EXPECT_EQ(namen, erwartet);
        return da;
    }
    static Namen ohneVerwalter() {
        const std::string schnittstelle = aktiveNetzschnittstelle();
        return schnittstelle.empty() ? Namen() : Namen{schnittstelle};
    }
    const QString kPfad = "/org/freedesktop/NetworkManager", kName = "org.freedesktop.NetworkManager";
    Fremdprogramm verwalter{kName, kPfad};
    Netzverbindung netz;
};

TEST_F(Networks, ActiveOnesAreTheDialUpProfilesOrElseThePrimary) {
    EXPECT_TRUE(werden(ohneVerwalter()));
    stelle({"802-3-ethernet", "wireguard"}, {{"Büro", "802-3-ethernet"}, {"Tunnel", "wireguard"}});
    verwalter.komm();
    EXPECT_TRUE(werden({"B\xFCro"}));

    stelle({"802-3-ethernet", "gsm"}, {{"Büro", "802-3-ethernet"}});
    verwalter.melde(kPfad + "/Settings", kName + ".Settings", "NewConnection",
                    {QVariant::fromValue(QDBusObjectPath(kPfad + "/Settings/1"))});
    EXPECT_TRUE(werden({}));

    stelle({"802-3-ethernet", "gsm"}, {{"Büro", "802-3-ethernet"}, {"Handy", "gsm", 1}, {"DSL", "pppoe"}});
    verwalter.meldeWerte(kName, {{"ActiveConnections", 0}});
    EXPECT_TRUE(werden({"DSL"}));

    stelle({"802-3-ethernet", "gsm"}, {{"Büro", "802-3-ethernet"}, {"Handy", "gsm"}, {"DSL", "pppoe"}});
    verwalter.melde(kPfad + "/ActiveConnection/1", kName + ".Connection.Active", "StateChanged", {2u, 0u});
    EXPECT_TRUE(warte([&] { return netz.aktiveVerbindungen()->size() == 2; }));
    EXPECT_FALSE(ModulDFUEConnect::GetActiveConnectionName(netz).empty());

    verwalter.geh();
    EXPECT_TRUE(werden(ohneVerwalter()));
    stelle({}, {{"wieder da", "802-11-wireless"}});
    verwalter.komm();
    EXPECT_TRUE(werden({"wieder da"}));
    const int fragen = verwalter.fragen;
    for (int i = 0; i < 100; ++i)
        (void)netz.aktiveVerbindungen();
    QCoreApplication::processEvents();
    EXPECT_EQ(verwalter.fragen, fragen) << "a question of every second must cost nothing";
}

}  // namespace
}  // namespace wendel

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    QCoreApplication anwendung(argc, argv);
    for (const char* name : {"DBUS_SESSION_BUS_ADDRESS", "DBUS_SYSTEM_BUS_ADDRESS"})
        qputenv(name, wendel::busadresse().toUtf8());
    qDBusRegisterMetaType<wendel::Profil>();
    return RUN_ALL_TESTS();
}
