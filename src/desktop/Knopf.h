#pragma once
// A push button of the program's windows.

#include <QPushButton>

namespace wendel {

// name is the control's, text has its access key; the size follows the font.
inline QPushButton* knopf(const char* name, const char* text, QWidget* eltern) {
    auto* neu = new QPushButton(QString::fromUtf8(text), eltern);
    neu->setObjectName(QString::fromUtf8(name));
    neu->setAccessibleName(neu->text().remove(u'&'));
    neu->setAutoDefault(true);  // Return presses it while it has the focus
    neu->setMinimumSize(neu->fontMetrics().height() * 7, neu->fontMetrics().height() * 2);
    return neu;
}

}  // namespace wendel
