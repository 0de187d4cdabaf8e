#pragma once
// One window of the tray menu: puts PicPaint and PictureTagestipp where the form says, shows, hides and
// activates, runs the timers and the context menu, and hands on what the user does. It decides nothing.

#include <QFont>
#include <QObject>
#include <memory>

#include "desktop/Menuebilder.h"
#include "traymenu/FormBrannikMenueView.h"

class QAction;
class QMenu;
class QTimer;
class QWidget;

namespace wendel {

class PicPaint;
class PictureTagestipp;

class FormBrannikMenueFenster final : public FormBrannikMenueView {
  public:
    // Both must outlive this object, the pictures also the next round of the event loop.
    FormBrannikMenueFenster(FormBrannikMenue& form, Menuebilder& bilder);
    // The widgets go later, by themselves: the toolkit may be in the middle of one of their events.
    ~FormBrannikMenueFenster() override;
    FormBrannikMenueFenster(const FormBrannikMenueFenster&) = delete;
    FormBrannikMenueFenster& operator=(const FormBrannikMenueFenster&) = delete;

    Fensterhandle hwnd() override;
    void setzeSchrift(const std::string& name, int punkt) override;
    int textbreite(const std::string& text) override;
    Menuefarben farben() override;
    void zeichne(const Menuebild& bild) override;
    void zeichneZeile(const Zeilenbild& zeile) override;
    void zeichneTipp(bool hervorgehoben) override;
    void zeigen(const Rechteck& fenster, Fensterhandle eltern) override;
    void verbergen() override;
    void aktivieren() override;
    void setzeTimerEinblendung(int ms) override;
    void setzeTimerUnload(int ms) override;
    void zeigeMenueMenue(const Kontextmenue& menue) override;

  private:
    void baueMenueMenue();
    QAction* befehl(const char* name, const char* text, void (FormBrannikMenue::*klick)());

    FormBrannikMenue& form_;
    QWidget* const fenster_;
    PicPaint* const picPaint_;
    PictureTagestipp* const pictureTagestipp_;
    QTimer* const timerEinblendung_;
    QTimer* const timerUnload_;
    QMenu* menueMenue_ = nullptr;  // made when it is first asked for
    QAction* trennleiste2_ = nullptr;
    QAction* menueImTVZeigen_ = nullptr;
    // Signals reach the form only while this lives.
    std::unique_ptr<QObject> verbindungen_ = std::make_unique<QObject>();
};

}  // namespace wendel
