#include "desktop/FormAufzeichnungsHinweisFenster.h"

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QPushButton>

namespace wendel {

FormAufzeichnungsHinweisFenster::FormAufzeichnungsHinweisFenster()
    : Hinweisrahmen({.fenster = "FormAufzeichnungsHinweis",
                     .bild = "Picture2",
                     .text = "Label",
                     .titel = FormAufzeichnungsHinweis::kFenstertitel,
                     .bilddatei = "aufzeichnung",
                     .bildname = "Aufzeichnung"}) {}

void FormAufzeichnungsHinweisFenster::baueInhalt() {
    leiste().addStretch(1);
    connect(baueOK(), &QPushButton::clicked, this, [this] { form_->cmdOK_Click(); });
}

Fensterhandle FormAufzeichnungsHinweisFenster::hwnd() { return internalWinId(); }

void FormAufzeichnungsHinweisFenster::setzeText(const std::string& text) {
    baueAuf();
    zeigeText(text);
    passeAn();
}

void FormAufzeichnungsHinweisFenster::zeigen() { komm(); }

void FormAufzeichnungsHinweisFenster::verbergen() { hide(); }

void FormAufzeichnungsHinweisFenster::willSchliessen() { form_->schliessen(); }

// There is nothing to choose here: Return will do wherever the focus is.
void FormAufzeichnungsHinweisFenster::keyPressEvent(QKeyEvent* ereignis) {
    const bool eingabe = ereignis->key() == Qt::Key_Return || ereignis->key() == Qt::Key_Enter;
    if (!eingabe) {
        Hinweisrahmen::keyPressEvent(ereignis);
    } else if (!ereignis->isAutoRepeat()) {
        form_->cmdOK_Click();
    }
}

}  // namespace wendel
