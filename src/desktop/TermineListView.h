#pragma once
// ListViewTermineListe: the list of entries as a control of the main window. It hands keys, clicks and the
// user's choice of a row to the operations of FormWendel of the same name, and takes whole sets of rows
// without moving under the user's eyes.

#include <QElapsedTimer>
#include <QTreeView>
#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "desktop/Terminmodell.h"

namespace wendel {

class FormWendel;

class TermineListView final : public QTreeView {
  public:
    explicit TermineListView(QWidget* eltern);
    ~TermineListView() override;
    TermineListView(const TermineListView&) = delete;
    TermineListView& operator=(const TermineListView&) = delete;

    // Must be set before the list is shown and outlive it.
    void setzeForm(FormWendel& form) { form_ = &form; }

    // All rows, and the selected one if any; the form is not told of it. The rows in sight stay where they
    // are, unless the selected row is another entry than before: that comes into sight.
    void setzeZeilen(const std::vector<Terminzeile>& zeilen, std::optional<std::size_t> auswahl);

    std::optional<std::size_t> auswahl() const;
    const Terminzeile* gewaehlteZeile() const;  // null without a selection; valid until the next rows
    // Where on the screen the menu belongs that the user is asking for, and whether by keyboard.
    QPoint menuestelle() const;
    bool menueDurchTaste() const { return menueDurchTaste_; }

    // Finds the next row whose time, text or a word of it begins with what was typed.
    void keyboardSearch(const QString& eingabe) override;

  protected:
    void changeEvent(QEvent* ereignis) override;
    void contextMenuEvent(QContextMenuEvent* ereignis) override;
    void keyPressEvent(QKeyEvent* ereignis) override;
    void mouseDoubleClickEvent(QMouseEvent* ereignis) override;
    void mousePressEvent(QMouseEvent* ereignis) override;
    void mouseReleaseEvent(QMouseEvent* ereignis) override;
    void paintEvent(QPaintEvent* ereignis) override;

  private:
    void passeMasseAn();
    void meldeAuswahl();
    void waehle(std::optional<std::size_t> zeile);
    void bleibeBei(const std::optional<Terminzeile>& oberste, int vorher, int verdeckt);
    bool waehleDurchBewegung(const QKeyEvent& ereignis);
    void frageMenue(bool durchTaste);

    Terminmodell modell_{this};
    FormWendel* form_ = nullptr;
    bool fuellt_ = false;
    bool menueDurchTaste_ = false;
    QString suchtext_;
    QElapsedTimer letzteSuche_;
};

}  // namespace wendel
