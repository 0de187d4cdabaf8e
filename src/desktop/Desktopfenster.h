#pragma once
// The Fenstersystem port over Qt for own windows and over the window manager's EWMH messages for those of
// other programs. Where the toolkit does not run on X, other programs' windows can't be seen and count as
// absent.

#include "platform/ports/Fenstersystem.h"

class QWidget;

namespace wendel {

class Desktopfenster final : public Fenstersystem {
  public:
    // The monitor at this place without its panels; of the nearest monitor when there is none.
    static Arbeitsbereich freieFlaeche(Punkt ort);
    // Raises a window of our own that is shown and gives it the keyboard.
    static void aktiviereEigenes(QWidget& fenster);

    Arbeitsbereich arbeitsbereich() override;
    Punkt zeiger() override;
    Fensterhandle vordergrundfenster() override;
    std::uint64_t fensterThread(Fensterhandle fenster) override;
    // Input queues are nothing that a Linux desktop ties together: does nothing.
    void eingabeVerbinden(std::uint64_t vonThread, std::uint64_t zuThread, bool verbinden) override;

    // An own window that opens by itself (Qt::WA_ShowWithoutActivating) is activated only while neither
    // another program's window nor a dialog of our own is active; else it is raised and asks for attention.
    // Windows that the user opened are activated in any case.
    bool vordergrundSetzen(Fensterhandle fenster) override;
    bool istMinimiert(Fensterhandle fenster) override;
    void wiederherstellen(Fensterhandle fenster) override;
    void zeigen(Fensterhandle fenster) override;

    // Off X the main application counts as activated when it is reachable on the session bus: it comes to the
    // front by itself on what it is told there.
    bool aktivierenNachTitel(const std::string& titel) override;

    void sanduhr(bool an) override;

  private:
    bool sanduhr_ = false;
};

}  // namespace wendel
