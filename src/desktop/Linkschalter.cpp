#include "desktop/Linkschalter.h"

#include <QPainter>
#include <QStyleOptionFocusRect>

namespace wendel {

Linkschalter::Linkschalter(const QString& text, QWidget* eltern) : QPushButton(text, eltern) {
    setCursor(Qt::PointingHandCursor);
    setAttribute(Qt::WA_Hover);
    setAutoDefault(true);  // Return presses it while it has the focus, and only then
}

QSize Linkschalter::sizeHint() const {
    return fontMetrics().size(Qt::TextShowMnemonic, text()) + QSize(2 * kRand, 2 * kRand);
}

// Underlined only under the pointer: else the access key would not be seen.
void Linkschalter::paintEvent(QPaintEvent*) {
    QPainter maler(this);
    QFont schrift = font();
    schrift.setUnderline(underMouse());
    maler.setFont(schrift);
    maler.setPen(palette().color(isEnabled() ? QPalette::Link : QPalette::WindowText));
    maler.drawText(rect().adjusted(kRand, kRand, -kRand, -kRand),
                   Qt::AlignLeft | Qt::AlignVCenter | Qt::TextShowMnemonic, text());
    if (!hasFocus()) return;
    QStyleOptionFocusRect rahmen;
    rahmen.initFrom(this);
    rahmen.backgroundColor = palette().color(QPalette::Window);
    style()->drawPrimitive(QStyle::PE_FrameFocusRect, &rahmen, &maler, this);
}

}  // namespace wendel
