#pragma once
// The typeface of the suite's windows.

#include <QFont>

namespace wendel {

inline QFont schrift(double punkte, QFont::Weight staerke = QFont::Normal) {
    QFont font(QStringList{QStringLiteral("Verdana"), QStringLiteral("DejaVu Sans")});
    font.setPointSizeF(punkte);
    font.setWeight(staerke);
    return font;
}

}  // namespace wendel
