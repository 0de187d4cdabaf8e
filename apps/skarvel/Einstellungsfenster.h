#pragma once
// The settings of the live update: where the guide comes from, and when the resident program fetches it. What
// is done with them is left to the program.

#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QSpinBox>
#include <QTimeEdit>
#include <QWidget>
#include <array>
#include <functional>

#include "Updateeinstellungen.h"

class QBoxLayout;

namespace wendel::skarvel {

class Einstellungsfenster final : public QWidget {
  public:
    // uebernommen gets what is confirmed, and whether an update is wanted at once; false keeps the window
    // open.
    using Uebernahme = std::function<bool(const Updateeinstellungen& neu, bool gleichAktualisieren)>;
    Einstellungsfenster(const Updateeinstellungen& bisher, Uebernahme uebernommen);

  private:
    QWidget* quellengruppe();
    QWidget* zeitgruppe();
    QBoxLayout* knopfzeile();
    void fuelle(const Updateeinstellungen& e);
    Updateeinstellungen gelesen() const;
    void zeigePassendes();
    void waehle(bool ordner);
    void uebernimm(bool gleichAktualisieren);
    void keyPressEvent(QKeyEvent* ereignis) override;

    Uebernahme uebernommen_;
    QWidget tagezeile_, stundenzeile_;  // before what stands in them: a parent deletes its children
    QLineEdit quelle_, befehl_;
    QCheckBox aktiv_, versteckt_;
    QComboBox modus_;
    std::array<QCheckBox, 7> tage_;
    QTimeEdit uhrzeit_;
    QSpinBox stunden_;
};

}  // namespace wendel::skarvel
