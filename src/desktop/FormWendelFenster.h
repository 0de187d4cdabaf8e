#pragma once
// The window of the main form: the list of entries with its popup menu, the live-update line and a status
// bar. It shows what FormWendel says and forwards what the user does; its close box hides it, since the
// program stays resident. How the list itself behaves is TermineListView's business. What the window holds
// comes into being when it is shown for the first time, which after a start with the system may be never.

#include <QMenu>
#include <QTimer>
#include <QWidget>
#include <optional>

#include "core/FormWendelView.h"
#include "desktop/Eingabesperre.h"

class QLabel;
class QPushButton;

namespace wendel {

class FormWendel;
class Statuszeile;
class TermineListView;

// What there is to show, until there are controls for it.
struct Listeninhalt {
    std::vector<Terminzeile> zeilen;
    std::optional<std::size_t> auswahl;
    bool zeileGewaehlt = false;
    std::string liveUpdateEinstellungen;
};

class FormWendelFenster final : public QWidget, public FormWendelView {
  public:
    // merkdatei keeps the window's place and size over the runs; it and its folder are made when needed.
    explicit FormWendelFenster(QString merkdatei);
    ~FormWendelFenster() override;
    FormWendelFenster(const FormWendelFenster&) = delete;
    FormWendelFenster& operator=(const FormWendelFenster&) = delete;

    // Whom the user's actions go to; must be set before the window is shown and outlive it.
    void setzeForm(FormWendel& form);

    Fensterhandle hwnd() override;
    void zeigen() override;
    void verstecken() override;
    void nachVorn() override;
    void setzeZeilen(const std::vector<Terminzeile>& zeilen, std::optional<std::size_t> auswahl) override;
    void setzeMenuezustand(bool zeileGewaehlt) override;
    void zeigePopupTerminliste(bool editierenAlsVorgabe) override;
    void setzeLiveUpdateEinstellungen(const std::string& text) override;
    void setzeStatustext(const std::string& text) override;
    void rufeVorgemerktesBald() override;
    void entladen() override;

  protected:
    void changeEvent(QEvent* ereignis) override;
    void closeEvent(QCloseEvent* ereignis) override;
    bool event(QEvent* ereignis) override;
    void hideEvent(QHideEvent* ereignis) override;
    void keyPressEvent(QKeyEvent* ereignis) override;
    void moveEvent(QMoveEvent* ereignis) override;
    void resizeEvent(QResizeEvent* ereignis) override;

  private:
    void baueAuf();
    void stelleHin();
    void geheZurueck();
    void merkeLage();
    void merkeLageBald();
    void baueMenue();
    QWidget* baueFussleiste();
    void zeigeBanner();
    void zeigeStatus();

    QString merkdatei_;
    QByteArray lage_;
    QTimer lagezeit_;
    Eingabesperre eingabesperre_;
    QString statustext_;
    FormWendel* form_ = nullptr;
    std::optional<Listeninhalt> vorab_{std::in_place};
    TermineListView* listViewTermineListe_;
    QLabel* pictureInfoBanner_;
    QLabel* labelAnzLiveUpdateEinstellungen_;
    QPushButton* labelAnzLiveUpdateEinstellungenStartLink_;
    Statuszeile* statuszeile_;
    QMenu popupTerminliste_{this};
    QAction* mnuNeuTermin_;
    QAction* mnuEditieren_;
    QAction* mnuLoeschen_;
};

}  // namespace wendel
