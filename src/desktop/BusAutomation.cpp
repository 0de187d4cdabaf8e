#include "desktop/BusAutomation.h"

#include <QDBusConnection>
#include <QDBusError>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QEventLoop>

#include "desktop/QtText.h"

namespace wendel {

bool BusAutomation::rufeDoThis(const std::string& klasse, const std::string& text) {
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected()) return false;
    const QString name = qtText(klasse);
    QDBusMessage ruf = QDBusMessage::createMethodCall(name, u'/' + QString(name).replace(u'.', u'/'), name,
                                                      QStringLiteral("DoThis"));
    ruf << qtText(text);
    ruf.setAutoStartService(false);

    QDBusPendingCallWatcher antwort(bus.asyncCall(ruf, zeitMs_));
    if (!antwort.isFinished()) {
        // Timers go on meanwhile: a reminder must not wait for a busy program.
        QEventLoop schleife;
        QObject::connect(&antwort, &QDBusPendingCallWatcher::finished, &schleife, &QEventLoop::quit);
        schleife.exec();
    }
    if (!antwort.isFinished()) return false;  // the program ends
    if (!antwort.isError()) return true;
    const QDBusError::ErrorType art = antwort.error().type();
    if (art == QDBusError::NoReply || art == QDBusError::Timeout || art == QDBusError::TimedOut) {
        meldungen_.meldung(text_, meldungsstil::kAusrufezeichen, titel_);
    }
    return false;
}

void BusAutomation::setzeWartemeldung(const std::string& titel, const std::string& text, int zeitMs) {
    titel_ = titel;
    text_ = text;
    zeitMs_ = zeitMs;
}

}  // namespace wendel
