#pragma once
// The TaskleistenSymbol port over QSystemTrayIcon: appears when a host comes, translates clicks into the
// icon's mouse messages. What they do is the form's business.

#include <QElapsedTimer>
#include <QPointer>
#include <QSystemTrayIcon>
#include <QTimer>
#include <functional>
#include <memory>

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
    // Called once when no host has come within kWartezeitMs after the icon was added.
    void setzeOhneWirt(std::function<void()> ohneWirt) { ohneWirt_ = std::move(ohneWirt); }

    void hinzufuegen(std::span<const std::uint8_t, 88> datensatz) override;
    void aendern(std::span<const std::uint8_t, 88> datensatz) override;
    void entfernen(std::uint32_t kennung) override;

  private:
    void wirtDa();
    void angeklickt(QSystemTrayIcon::ActivationReason grund);
    void links();
    void melde(std::uint32_t maus);
    // Notifier hosts report single activations, tray windows real mouse clicks.
    bool istTrayfenster() const { return icon_ && !icon_->geometry().isEmpty(); }

    Fensterprozedur prozedur_;
    std::function<void()> ohneWirt_;
    Taskleistenwirt wirt_;
    QTimer wartezeit_;
    std::unique_ptr<QSystemTrayIcon> icon_;
    QElapsedTimer letzteAktivierung_;
    QString tipp_;
    std::uint32_t kennung_ = 0;
    std::uint32_t nachricht_ = 0;
    bool gewuenscht_ = false;
    bool gesucht_ = false;
    bool gefunden_ = false;
};

}  // namespace wendel
