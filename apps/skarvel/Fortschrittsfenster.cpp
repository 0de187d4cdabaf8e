#include "Fortschrittsfenster.h"

#include <QCloseEvent>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QVBoxLayout>
#include <utility>

#include "desktop/QtText.h"
#include "desktop/Symbole.h"

namespace wendel::skarvel {
namespace {

constexpr int kBreite = 420;

}  // namespace

Fortschrittsfenster::Fortschrittsfenster(std::function<void()> beimEnden) : beimEnden_(std::move(beimEnden)) {
    setWindowTitle(QStringLiteral("Drumlet"));
    setWindowIcon(Symbole::symbol("wendel"));
    setMinimumWidth(kBreite);

    status_.setObjectName(QStringLiteral("LabelStatus"));
    status_.setWordWrap(true);
    status_.setMinimumHeight(2 * status_.fontMetrics().lineSpacing());  // the balance at the end
    status_.setTextInteractionFlags(Qt::TextSelectableByMouse);
    fortschritt_.setObjectName(QStringLiteral("ProgressBarFortschritt"));
    fortschritt_.setAccessibleName(QStringLiteral("Fortschritt des Live-Updates"));
    fortschritt_.setRange(0, 100);
    knopf_.setObjectName(QStringLiteral("cmdAbbrechen"));
    knopf_.setText(QStringLiteral("&Abbrechen"));
    connect(&knopf_, &QPushButton::clicked, this, [this] { close(); });

    auto* unten = new QHBoxLayout;
    unten->addStretch();
    unten->addWidget(&knopf_);
    auto* alles = new QVBoxLayout(this);
    alles->addWidget(&status_);
    alles->addWidget(&fortschritt_);
    alles->addStretch();
    alles->addLayout(unten);
}

void Fortschrittsfenster::zeigeStand(const std::string& text, int prozent) {
    status_.setText(qtZeilen(text));
    fortschritt_.setValue(prozent);
}

void Fortschrittsfenster::zeigeFehler(const std::string& text) {
    status_.setText(QStringLiteral("Das Live-Update ist gescheitert.\n\n") + qtZeilen(text));
    fortschritt_.hide();
    gescheitert_ = true;
    knopf_.setText(QStringLiteral("&Schließen"));
    knopf_.setEnabled(true);
    knopf_.setFocus();
    adjustSize();
}

// The run goes on to its next row; the window goes with the program.
void Fortschrittsfenster::closeEvent(QCloseEvent* ereignis) {
    ereignis->ignore();
    knopf_.setEnabled(false);
    beimEnden_();
}

void Fortschrittsfenster::keyPressEvent(QKeyEvent* ereignis) {
    const bool eingabe = ereignis->key() == Qt::Key_Return || ereignis->key() == Qt::Key_Enter;
    // Return meant for another window must not break off a run.
    if (ereignis->key() == Qt::Key_Escape || (eingabe && gescheitert_))
        close();
    else
        QWidget::keyPressEvent(ereignis);
}

}  // namespace wendel::skarvel
