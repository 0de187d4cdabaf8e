#pragma once
// Finds out when a notification area is there: a tray window of X or a notifier host on the session bus.
// Waits by notification, never by polling. Qt chooses its kind of tray icon once per process, at the first
// question; so nobody may ask Qt before this has found something.

#include <QAbstractNativeEventFilter>
#include <QObject>
#include <cstdint>
#include <functional>

class QDBusServiceWatcher;

namespace wendel {

class Taskleistenwirt final : public QObject, private QAbstractNativeEventFilter {
    Q_OBJECT
  public:
    Taskleistenwirt() = default;
    ~Taskleistenwirt() override;

    // Calls gefunden once, as soon as a host is there: from inside this call or later on the user-interface
    // thread.
    void suche(std::function<void()> gefunden);

  private Q_SLOTS:
    void frageBenachrichtigungswirt();

  private:
    bool nativeEventFilter(const QByteArray& art, void* nachricht, qintptr* ergebnis) override;
    bool suchtAufX11();
    void beobachteBus();
    void melde();

    std::function<void()> gefunden_;
    QDBusServiceWatcher* buswaechter_ = nullptr;
    std::uint32_t atomManager_ = 0;
    std::uint32_t atomAuswahl_ = 0;
};

}  // namespace wendel
