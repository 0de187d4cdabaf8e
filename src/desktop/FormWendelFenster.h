#pragma once
// The window of the main form: the list of entries with its popup menu. It shows what FormWendel says and
// forwards what the user does; its close box hides it, since the program stays resident.

#include <QMenu>
#include <QWidget>

#include "core/FormWendelView.h"

class QLabel;
class QPushButton;
class QTreeWidget;

namespace wendel {

class FormWendel;

class FormWendelFenster final : public QWidget, public FormWendelView {
  public:
    // merkdatei keeps the window's place and size over the runs; it and its folder are made when needed.
    explicit FormWendelFenster(QString merkdatei);
    ~FormWendelFenster() override;
    FormWendelFenster(const FormWendelFenster&) = delete;
    FormWendelFenster& operator=(const FormWendelFenster&) = delete;

    // Whom the user's actions go to; must be set before the window is shown and outlive it.
    void setzeForm(FormWendel& form) { form_ = &form; }

    Fensterhandle hwnd() override;
    void zeigen() override;
    void verstecken() override;
    void nachVorn() override;
    void setzeZeilen(const std::vector<Terminzeile>& zeilen, std::optional<std::size_t> auswahl) override;
    void setzeLiveUpdateEinstellungen(const std::string& text) override;
    void entladen() override;

  protected:
    void closeEvent(QCloseEvent* ereignis) override;
    void hideEvent(QHideEvent* ereignis) override;
    void keyPressEvent(QKeyEvent* ereignis) override;

  private:
    void stelleHin();
    void geheZurueck();
    void baueListe();
    void baueMenue();
    QWidget* baueFussleiste();
    void meldeAuswahl();

    QString merkdatei_;
    QByteArray lage_;
    FormWendel* form_ = nullptr;
    QTreeWidget* listViewTermineListe_;
    QLabel* labelAnzLiveUpdateEinstellungen_;
    QLabel* pictureInfoBanner_;
    QPushButton* cmdAusblenden_;
    QMenu popupTerminliste_{this};
};

}  // namespace wendel
