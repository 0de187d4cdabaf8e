#pragma once
// The remote access service of a desktop: NetworkManager's active modem or dial-up profile; on a machine that
// has no such profile, its primary connection; without NetworkManager the kernel's interfaces. The system bus
// is touched with the first question only. What NetworkManager says is followed by its signals, so that a
// question costs nothing.

#include <QObject>
#include <QString>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "desktop/Systembusprobe.h"
#include "platform/ports/Einwahl.h"

class QDBusMessage;
class QDBusServiceWatcher;

namespace wendel {

class Netzverbindung final : public QObject, public Einwahl {
    Q_OBJECT
  public:
    Netzverbindung();
    ~Netzverbindung() override;

    std::optional<std::vector<std::string>> aktiveVerbindungen() override;

  private Q_SLOTS:
    void erneuern();

  private:
    struct Erkundung;

    void beobachten();
    void erkunde();
    void frageVerwalter(const std::shared_ptr<Erkundung>& erkundung);
    void frageAktive(const std::shared_ptr<Erkundung>& erkundung, const QString& pfad);
    void frageProfile(const std::shared_ptr<Erkundung>& erkundung);
    template <class Auswertung>
    void frage(const std::shared_ptr<Erkundung>& erkundung, const QDBusMessage& nachricht,
               Auswertung auswertung);
    void abschliessen(const Erkundung& erkundung);

    Systembusprobe bus_;
    std::unique_ptr<QDBusServiceWatcher> dienst_;
    bool verwalterDa_ = false;
    bool erkundungLaeuft_ = false;
    bool veraltet_ = false;
    std::vector<std::string> verbindungen_;
};

}  // namespace wendel
