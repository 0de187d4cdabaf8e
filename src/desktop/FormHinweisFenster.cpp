#include "desktop/FormHinweisFenster.h"

#include <QAbstractItemView>
#include <QComboBox>
#include <QCoreApplication>
#include <QFrame>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QPushButton>

#include "desktop/QtText.h"

namespace wendel {

FormHinweisFenster::FormHinweisFenster()
    : Hinweisrahmen({.fenster = "FormHinweis",
                     .bild = "HinweisPicture",
                     .text = "LabelHinweisText",
                     .titel = FormHinweis::kFenstertitel,
                     .bilddatei = "hinweis",
                     .bildname = "Erinnerung"}) {
    timerOKErlaubt_.setObjectName(QStringLiteral("TimerOKErlaubt"));
    timerOKErlaubt_.setSingleShot(true);
    timerOKErlaubt_.setTimerType(Qt::PreciseTimer);
    connect(&timerOKErlaubt_, &QTimer::timeout, this, [this] { form_->TimerOKErlaubt_Timer(); });
}

void FormHinweisFenster::baueInhalt() {
    labelHinweisTitel_ = baueUeberschrift("LabelHinweisTitel");
    baueComboFunktion();
    QPushButton* cmdOK = baueOK();
    connect(cmdOK, &QPushButton::clicked, this, [this] { form_->cmdOK_Click(); });
    setTabOrder(comboFunktion_, cmdOK);
}

void FormHinweisFenster::baueComboFunktion() {
    auto* frameComboFunktion = new QFrame(&fussleiste());
    frameComboFunktion->setObjectName(QStringLiteral("FrameComboFunktion"));
    auto* rahmen = new QHBoxLayout(frameComboFunktion);
    rahmen->setContentsMargins(0, 0, 0, 0);
    comboFunktion_ = new QComboBox(frameComboFunktion);
    comboFunktion_->setObjectName(QStringLiteral("ComboFunktion"));
    comboFunktion_->setAccessibleName(QStringLiteral("Was soll geschehen?"));
    // On this system the list's name is its choice.
    comboFunktion_->setAccessibleDescription(comboFunktion_->accessibleName());
    comboFunktion_->setFocusPolicy(Qt::StrongFocus);
    comboFunktion_->setMinimumHeight(32);
    comboFunktion_->installEventFilter(this);
    comboFunktion_->view()->installEventFilter(this);
    connect(comboFunktion_, &QComboBox::activated, this,
            [this](int index) { form_->ComboFunktion_Click(index); });
    rahmen->addWidget(comboFunktion_);
    leiste().addWidget(frameComboFunktion, 1);
}

void FormHinweisFenster::setzeTitel(const std::string& titel) {
    labelHinweisTitel_->setText(qtZeilen(titel));
    labelHinweisTitel_->setAccessibleName(labelHinweisTitel_->text());
}

void FormHinweisFenster::setzeText(const std::string& text) { zeigeText(text); }

void FormHinweisFenster::setzeFunktionen(const std::vector<std::string>& zeilen) {
    baueAuf();
    comboFunktion_->clear();
    for (const std::string& zeile : zeilen)
        comboFunktion_->addItem(qtText(zeile));
    comboFunktion_->setMaxVisibleItems(static_cast<int>(zeilen.size()));
}

void FormHinweisFenster::setzeAuswahl(int index) { comboFunktion_->setCurrentIndex(index); }

void FormHinweisFenster::anpassen() { passeAn(); }

void FormHinweisFenster::zeigen() { komm(); }

void FormHinweisFenster::verbergen() {
    comboFunktion_->hidePopup();
    hide();
}

void FormHinweisFenster::starteOKTimer(int ms) { timerOKErlaubt_.start(ms); }

Fensterhandle FormHinweisFenster::fensterhandle() { return internalWinId(); }

void FormHinweisFenster::willSchliessen() { form_->Schliessen(); }

// The arrow keys choose a row whether or not the list has the focus.
void FormHinweisFenster::keyPressEvent(QKeyEvent* ereignis) {
    const bool pfeil = ereignis->key() == Qt::Key_Up || ereignis->key() == Qt::Key_Down;
    if (!pfeil) {
        Hinweisrahmen::keyPressEvent(ereignis);
    } else if (focusWidget() != comboFunktion_) {
        QCoreApplication::sendEvent(comboFunktion_, ereignis);
    }
}

bool FormHinweisFenster::leertasteInListe(int taste) {
    if (taste != Qt::Key_Space) return false;
    if (comboFunktion_->view()->isVisible()) {
        const QModelIndex zeile = comboFunktion_->view()->currentIndex();
        comboFunktion_->hidePopup();
        if (zeile.isValid()) {
            comboFunktion_->setCurrentIndex(zeile.row());
            form_->ComboFunktion_Click(zeile.row());
        }
    }
    form_->ComboFunktion_KeyPress(' ');
    return true;
}

bool FormHinweisFenster::eventFilter(QObject* objekt, QEvent* ereignis) {
    if (ereignis->type() == QEvent::KeyPress && leertasteInListe(static_cast<QKeyEvent*>(ereignis)->key())) {
        return true;
    }
    return QWidget::eventFilter(objekt, ereignis);
}

}  // namespace wendel
