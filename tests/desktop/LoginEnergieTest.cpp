// The sleep inhibitor against a stand-in for the login manager on a system bus of its own: what is asked for,
// and when the descriptor is closed, by which the login manager knows that the machine may sleep.

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusUnixFileDescriptor>
#include <QDBusVirtualObject>
#include <QProcess>
#include <QTemporaryDir>

#include "desktop/Fensterhilfe.h"
#include "desktop/LoginEnergie.h"

namespace wendel {
namespace {

class Loginverwalter : public QDBusVirtualObject {
  public:
    enum class Art { Erlaubt, Verweigert, Stumm };
    Art art = Art::Erlaubt;
    QList<QString> bitten;

    QString introspect(const QString&) const override { return {}; }
    bool handleMessage(const QDBusMessage& ruf, const QDBusConnection& bus) override {
        QStringList teile{ruf.member()};
        for (const QVariant& teil : ruf.arguments())
            teile << teil.toString();
        bitten << teile.join(u'|');
        ruf_ = ruf;
        if (art == Art::Verweigert) bus.send(ruf.createErrorReply(QDBusError::AccessDenied, "no"));
        if (art == Art::Erlaubt) antworte(bus);
        return true;
    }
    void antworte(const QDBusConnection& bus) {
        int enden[2];
        ASSERT_EQ(0, ::pipe2(enden, O_CLOEXEC));
        leseende = Dateideskriptor(enden[0]);
        const Dateideskriptor schreibende(enden[1]);
        bus.send(ruf_.createReply(QVariant::fromValue(QDBusUnixFileDescriptor(schreibende.get()))));
    }
    bool freigegeben() const {
        pollfd ende{leseende.get(), POLLIN, 0};
        return ::poll(&ende, 1, 0) == 1 && (ende.revents & POLLHUP);
    }
    Dateideskriptor leseende;

  private:
    QDBusMessage ruf_;
};

class LoginEnergieTest : public testing::Test {
  protected:
    LoginEnergieTest() { qputenv("DBUS_SYSTEM_BUS_ADDRESS", kAdresse); }
    ~LoginEnergieTest() override {
        QDBusConnection::disconnectFromBus("stand-in");
        daemon_.kill();
        daemon_.waitForFinished();
    }
    void starteBus() {
        daemon_.start("dbus-daemon",
                      {"--session", "--nofork", "--nopidfile", "--print-address", "--address=" + kAdresse});
        ASSERT_TRUE(daemon_.waitForReadyRead(5000));
        QDBusConnection bus = QDBusConnection::connectToBus(kAdresse, "stand-in");
        ASSERT_TRUE(bus.registerVirtualObject("/org/freedesktop/login1", &login));
        ASSERT_TRUE(bus.registerService("org.freedesktop.login1"));
    }
    bool gehalten(int bitten) {
        return warte([&] { return login.bitten.size() == bitten && login.leseende; }) && !login.freigegeben();
    }
    bool frei() {
        return warte([this] { return login.freigegeben(); });
    }

    LinuxUhr uhr;
    Loginverwalter login;
    LoginEnergie energie{uhr, "/nonexistent"};

  private:
    // One for all tests: the bus library reads the variable once in a process.
    inline static const QTemporaryDir kOrdner;
    inline static const QByteArray kAdresse = "unix:path=" + kOrdner.path().toUtf8() + "/bus";
    QProcess daemon_;
};

TEST_F(LoginEnergieTest, HoldsTheMachineAwakeUntilItMaySleep) {
    energie.wachhalten("no bus");
    starteBus();
    login.art = Loginverwalter::Art::Verweigert;
    energie.wachhalten("refused");
    ASSERT_TRUE(warte([this] { return login.bitten.size() == 1; }));
    login.art = Loginverwalter::Art::Erlaubt;
    EXPECT_TRUE(warte([this] {
        energie.wachhalten("Aufzeichnung: „Tatort“");
        return login.bitten.size() == 2;
    }));
    energie.wachhalten("again while the answer is due");
    ASSERT_TRUE(gehalten(2));
    EXPECT_EQ("Inhibit|sleep:idle|Lomrick|Aufzeichnung: „Tatort“|block", login.bitten[1]);
    energie.wachhalten("again");
    energie.schlafErlauben();
    EXPECT_TRUE(frei());
    energie.wachhalten("next");
    EXPECT_TRUE(gehalten(3));
}

TEST_F(LoginEnergieTest, AnAnswerThatComesTooLateKeepsNothingAwake) {
    starteBus();
    login.art = Loginverwalter::Art::Stumm;
    energie.wachhalten("slow");
    ASSERT_TRUE(warte([this] { return login.bitten.size() == 1; }));
    energie.schlafErlauben();
    login.antworte(QDBusConnection("stand-in"));
    EXPECT_TRUE(frei());
}

}  // namespace
}  // namespace wendel
