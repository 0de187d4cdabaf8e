#pragma once
// The TaskleistenSymbol port over QSystemTrayIcon: appears when a host comes, translates clicks into the
// icon's mouse messages, exports a menu where the host would not report the right button otherwise. What the
// messages do is the form's business.

#include <QElapsedTimer>
#include <QMenu>
#include <QPointer>
#include <QSystemTrayIcon>
#include <QTimer>
#include <functional>
#include <memory>

#include "desktop/EinfachesTraymenue.h"
#include "desktop/Taskleistenwirt.h"
#include "platform/ports/TaskleistenSymbol.h"

namespace wendel {

class TrayIcon final : public QObject, public TaskleistenSymbol {
  public:
    // (message, wParam, lParam) as a window procedure gets them.
    using Fensterprozedur = std::function<void(std::uint32_t, std::uintptr_t, std::uintptr_t)>;
    static constexpr int kWartezeitMs = 5000;

    TrayIcon();

    // Gets every mouse action on the icon, with the message number and identifier of the icon record.
    void setzeFensterprozedur(Fensterprozedur prozedur) { prozedur_ = std::move(prozedur); }
    // For hosts that show none but exported menus: its entries, and what one that was chosen does.
    void setzeEinfachesMenue(EinfachesTraymenue::Quelle quelle, EinfachesTraymenue::Befehl befehl);
    // Called once when no host has come within kWartezeitMs after the icon was added.
    void setzeOhneWirt(std::function<void()> ohneWirt) { ohneWirt_ = std::move(ohneWirt); }

    void hinzufuegen(std::span<const std::uint8_t, 88> datensatz) override;
    void aendern(std::span<const std::uint8_t, 88> datensatz) override;
    void entfernen(std::uint32_t kennung) override;

  private:
    void wirtDa();
    void exportiereMenue();
    void angeklickt(QSystemTrayIcon::ActivationReason grund);
    void links();
    void rechts();
    bool eventFilter(QObject* objekt, QEvent* ereignis) override;
    void melde(std::uint32_t maus);

    Fensterprozedur prozedur_;
    EinfachesTraymenue::Quelle quelle_;
    EinfachesTraymenue::Befehl befehl_;
    std::function<void()> ohneWirt_;
    Taskleistenwirt wirt_;
    QTimer wartezeit_;
    QTimer rechtsklick_;
    std::unique_ptr<QMenu> anstoss_;
    std::unique_ptr<EinfachesTraymenue> einfaches_;
    std::unique_ptr<QSystemTrayIcon> icon_;
    QPointer<QObject> symbolfenster_;  // where releases on a tray window's icon arrive, once known
    QElapsedTimer letzteAktivierung_, letzterRechtsklick_;
    QString tipp_;
    std::uint32_t kennung_ = 0;
    std::uint32_t nachricht_ = 0;
    // Notifier hosts report single activations, tray windows real mouse clicks.
    bool trayfenster_ = false;
    bool gewuenscht_ = false;
    bool gesucht_ = false;
    bool gefunden_ = false;
};

}  // namespace wendel
