#include "desktop/Zeitfeld.h"

#include <QFocusEvent>
#include <QKeyEvent>
#include <QStyle>
#include <QStyleOptionFrame>
#include <QTimer>

#include "desktop/QtText.h"

namespace wendel {

Zeitfeld::Zeitfeld(const Regeln& regeln, QWidget* eltern) : QLineEdit(eltern), regeln_(regeln) {
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    connect(this, &QLineEdit::textChanged, this, [this](const QString& text) {
        const std::string neu = logikText(text);
        // Zero steps: only what is valid can be stepped at all.
        if (regeln_.verschoben(neu, 0)) letzter_ = regeln_.vervollstaendigt(neu);
    });
}

void Zeitfeld::uebernimm(const QString& text) {
    selectAll();
    insert(text);
    selectAll();
}

// The base class asks for room for seventeen letters.
QSize Zeitfeld::sizeHint() const {
    QStyleOptionFrame option;
    initStyleOption(&option);
    const QSize text(fontMetrics().horizontalAdvance(QString::fromUtf8(regeln_.muster)) +
                         fontMetrics().averageCharWidth() * 2,
                     QLineEdit::sizeHint().height() - 2 * option.lineWidth);
    return {style()->sizeFromContents(QStyle::CT_LineEdit, &option, text, this).width(),
            QLineEdit::sizeHint().height()};
}

void Zeitfeld::gehe(int schritte) {
    const auto neu = regeln_.verschoben(logikText(text()), schritte);
    // From a text that is no date or time there is a way back, but none on.
    if (neu || regeln_.verschoben(letzter_, 0)) uebernimm(qtText(neu.value_or(letzter_)));
}

void Zeitfeld::keyPressEvent(QKeyEvent* ereignis) {
    if ((ereignis->modifiers() & ~Qt::KeypadModifier) == Qt::NoModifier) {
        switch (ereignis->key()) {
            case Qt::Key_Up: gehe(regeln_.pfeil); return;
            case Qt::Key_Down: gehe(-regeln_.pfeil); return;
            case Qt::Key_PageUp: gehe(regeln_.seite); return;
            case Qt::Key_PageDown: gehe(-regeln_.seite); return;
            default: break;
        }
    }
    QLineEdit::keyPressEvent(ereignis);
}

void Zeitfeld::focusInEvent(QFocusEvent* ereignis) {
    QLineEdit::focusInEvent(ereignis);
    // The click that brings the focus puts the cursor somewhere right after this.
    if (ereignis->reason() == Qt::MouseFocusReason) QTimer::singleShot(0, this, &QLineEdit::selectAll);
}

void Zeitfeld::focusOutEvent(QFocusEvent* ereignis) {
    // Whoever looks up something in another window or opens a menu has not finished typing.
    if (ereignis->reason() != Qt::PopupFocusReason && ereignis->reason() != Qt::ActiveWindowFocusReason) {
        const QString fertig = qtText(regeln_.vervollstaendigt(logikText(text())));
        if (fertig != text()) setText(fertig);
    }
    QLineEdit::focusOutEvent(ereignis);
}

}  // namespace wendel
