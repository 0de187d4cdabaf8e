#pragma once
// The window of the recordings' history: a list with one row for each recording that was planned, and below
// it the whole text of the chosen one. It shows what FormAufzeichnungsverlauf has read; Esc and the close box
// close it. Its list comes into being with the first rows.

#include <QTreeView>
#include <QWidget>

#include "core/FormAufzeichnungsverlauf.h"

class QLabel;
class QStandardItemModel;

namespace wendel {

class FormAufzeichnungsverlaufFenster final : public QWidget, public FormAufzeichnungsverlaufView {
  public:
    // It comes up in the middle of that window, where it is visible. That outlives this one.
    explicit FormAufzeichnungsverlaufFenster(QWidget& liste);

    // Must be set before the window is shown and outlive it.
    void setzeForm(FormAufzeichnungsverlauf& form) { form_ = &form; }

    void setzeZeilen(const std::vector<Aufzeichnungsverlaufszeile>& zeilen) override;
    void zeigen() override;
    void verbergen() override;

  protected:
    void closeEvent(QCloseEvent* ereignis) override;
    void keyPressEvent(QKeyEvent* ereignis) override;

  private:
    // Without rows it says that there are none yet.
    class Verlaufsliste final : public QTreeView {
      public:
        using QTreeView::QTreeView;

      protected:
        void paintEvent(QPaintEvent* ereignis) override;
    };

    void baueAuf();
    void baueListe();
    QWidget* baueLeiste();
    void zeigeGewaehlte();

    QWidget& terminliste_;
    FormAufzeichnungsverlauf* form_ = nullptr;
    QStandardItemModel* modell_ = nullptr;
    Verlaufsliste* listViewAufzeichnungen_;
    QLabel* labelErgebnis_;
};

}  // namespace wendel
