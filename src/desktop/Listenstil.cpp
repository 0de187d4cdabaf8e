#include "desktop/Listenstil.h"

#include <QHeaderView>
#include <QHelpEvent>
#include <QPainter>
#include <QProxyStyle>
#include <QToolTip>
#include <algorithm>

#include "desktop/Farben.h"

namespace wendel {
namespace {

// The desktop's style, but with air beside the texts of header and rows: most styles set them at the very
// edge.
class Listenstil final : public QProxyStyle {
  public:
    int pixelMetric(PixelMetric mass, const QStyleOption* option, const QWidget* widget) const override {
        const int wert = QProxyStyle::pixelMetric(mass, option, widget);
        if (mass != PM_FocusFrameHMargin || widget == nullptr) return wert;
        return std::max(wert, luft(widget->fontMetrics()) - 1);
    }
    void drawControl(ControlElement element, const QStyleOption* option, QPainter* maler,
                     const QWidget* widget) const override {
        const auto* kopf = qstyleoption_cast<const QStyleOptionHeader*>(option);
        if (element != CE_HeaderLabel || kopf == nullptr) {
            QProxyStyle::drawControl(element, option, maler, widget);
            return;
        }
        QStyleOptionHeader eingerueckt = *kopf;
        const int rand = luft(kopf->fontMetrics) - 2;  // 2 is what styles leave by themselves
        eingerueckt.rect.adjust(rand, 0, -rand, 0);
        QProxyStyle::drawControl(element, &eingerueckt, maler, widget);
    }
};

// As markup, since only that is wrapped; nothing in the text itself is.
QString alsTooltip(const QString& text) {
    return QStringLiteral("<p>%1</p>").arg(text.toHtmlEscaped().replace(u'\n', QStringLiteral("<br>")));
}

}  // namespace

int bildgroesse(const QFontMetrics& schrift) {
    for (const int groesse : {16, 20, 24, 32, 40})
        if (groesse >= schrift.height() * 6 / 5) return groesse;
    return 48;
}

void richteEin(QTreeView& liste) {
    auto* stil = new Listenstil;
    stil->setParent(&liste);
    liste.setStyle(stil);
    liste.setRootIsDecorated(false);
    liste.setItemsExpandable(false);
    liste.setUniformRowHeights(true);
    liste.setAlternatingRowColors(true);
    liste.setAllColumnsShowFocus(true);
    liste.setEditTriggers(QTreeView::NoEditTriggers);
    liste.setVerticalScrollMode(QTreeView::ScrollPerPixel);
    liste.setFrameShape(QFrame::NoFrame);
    liste.setTextElideMode(Qt::ElideRight);
    QHeaderView& kopf = *liste.header();
    kopf.setStyle(stil);
    kopf.setSectionsMovable(false);
    kopf.setHighlightSections(false);
    kopf.setStretchLastSection(false);
    kopf.setSectionResizeMode(QHeaderView::Fixed);
}

void maleLeer(QTreeView& liste, const QString& ueberschrift, const QString& hinweis) {
    const int rand = 2 * luft(liste.fontMetrics());
    QRect oben = liste.viewport()->rect().adjusted(rand, rand, -rand, -rand);
    QRect unten = oben;
    oben.setBottom(oben.center().y());
    unten.setTop(oben.bottom() + rand / 2);
    QPainter maler(liste.viewport());
    QFont gross = liste.font();
    gross.setPointSizeF(gross.pointSizeF() * 1.25);
    maler.setFont(gross);
    maler.drawText(oben, Qt::AlignHCenter | Qt::AlignBottom | Qt::TextWordWrap, ueberschrift);
    maler.setFont(liste.font());
    const QPalette& farben = liste.palette();
    maler.setPen(gedaempft(farben.color(QPalette::Text), farben.color(QPalette::Base)));
    maler.drawText(unten, Qt::AlignHCenter | Qt::AlignTop | Qt::TextWordWrap, hinweis);
}

QSize Zeilenmaler::sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const {
    const QSize groesse = QStyledItemDelegate::sizeHint(option, index);
    return {groesse.width(),
            std::max(groesse.height(), option.fontMetrics.height()) + luft(option.fontMetrics)};
}

bool Zeilenmaler::trittZurueck(const QModelIndex&) const { return false; }

void Zeilenmaler::initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const {
    QStyledItemDelegate::initStyleOption(option, index);
    // A list is locked while a question is open, which may be about what stands in it.
    option->state |= QStyle::State_Enabled;
    const bool blass = trittZurueck(index);
    const QPalette& farben = option->palette;
    if (blass)
        option->palette.setColor(QPalette::Text,
                                 gedaempft(farben.color(QPalette::Text), farben.color(QPalette::Base)));
    if (option->icon.isNull()) return;
    // Also in the selected row, which styles would tint.
    const QPixmap bild = option->icon.pixmap(option->decorationSize, option->widget->devicePixelRatioF(),
                                             blass ? QIcon::Disabled : QIcon::Normal);
    option->icon = QIcon(bild);
    option->icon.addPixmap(bild, QIcon::Selected);
}

bool Zeilenmaler::helpEvent(QHelpEvent* ereignis, QAbstractItemView* liste,
                            const QStyleOptionViewItem& option, const QModelIndex& index) {
    if (ereignis->type() != QEvent::ToolTip)
        return QStyledItemDelegate::helpEvent(ereignis, liste, option, index);
    const bool abgeschnitten = sizeHint(option, index).width() > liste->visualRect(index).width();
    const QString text = index.data(Qt::ToolTipRole).toString();
    QToolTip::showText(ereignis->globalPos(), abgeschnitten ? alsTooltip(text) : QString(), liste);
    return true;
}

}  // namespace wendel
