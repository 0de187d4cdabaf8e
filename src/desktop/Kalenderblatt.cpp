#include "desktop/Kalenderblatt.h"

#include <QCalendarWidget>
#include <QIcon>
#include <QLocale>
#include <QPainter>
#include <QScreen>
#include <QTextCharFormat>
#include <QToolButton>
#include <QVBoxLayout>
#include <algorithm>
#include <utility>

namespace wendel {
namespace {

constexpr const char* kVorigerMonat = "qt_calendar_prevmonth";
constexpr const char* kNaechsterMonat = "qt_calendar_nextmonth";

// The style's own arrows ignore the colours of the bar that they stand on.
QIcon pfeil(bool nachLinks, const QColor& farbe, int groesse) {
    QPixmap bild(4 * groesse, 4 * groesse);  // the icon scales it down for any screen
    bild.fill(Qt::transparent);
    QPainter maler(&bild);
    maler.setRenderHint(QPainter::Antialiasing);
    maler.scale(4 * groesse / 16.0, 4 * groesse / 16.0);
    maler.setPen(QPen(farbe, 2, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    const qreal spitze = nachLinks ? 5.5 : 10.5;
    maler.drawPolyline(QPolygonF({{16 - spitze, 3}, {spitze, 8}, {16 - spitze, 13}}));
    return QIcon(bild);
}

}  // namespace

Kalenderblatt::Kalenderblatt(QWidget* eltern, std::function<void(QDate)> gewaehlt)
    : QFrame(eltern, Qt::Popup), kalender_(new QCalendarWidget(this)), gewaehlt_(std::move(gewaehlt)) {
    setObjectName(QStringLiteral("Kalender"));
    setAccessibleName(QStringLiteral("Kalender"));
    setFrameShape(QFrame::StyledPanel);
    setFont(eltern->font());  // popups inherit none
    auto* aufbau = new QVBoxLayout(this);
    aufbau->setContentsMargins(1, 1, 1, 1);
    aufbau->addWidget(kalender_);

    kalender_->setLocale(QLocale(QLocale::German, QLocale::Germany));
    kalender_->setFirstDayOfWeek(Qt::Monday);
    kalender_->setVerticalHeaderFormat(QCalendarWidget::ISOWeekNumbers);
    kalender_->setDateRange(QDate(100, 1, 1), QDate(9999, 12, 31));
    kalender_->setDateEditEnabled(false);  // its small window for typed dates would cover the calendar
    kalender_->setAccessibleName(QStringLiteral("Kalender"));
    // The toolkit gives the buttons of its upper bar no names.
    const std::pair<const char*, const char*> knoepfe[] = {{kVorigerMonat, "Voriger Monat"},
                                                           {kNaechsterMonat, "Nächster Monat"},
                                                           {"qt_calendar_monthbutton", "Monat"},
                                                           {"qt_calendar_yearbutton", "Jahr"}};
    for (const auto& [name, bezeichnung] : knoepfe) {
        if (auto* knopf = findChild<QToolButton*>(QString::fromUtf8(name)))
            knopf->setAccessibleName(QString::fromUtf8(bezeichnung));
    }
    // "activated" is Return as well as a double click, "clicked" the mouse.
    connect(kalender_, &QCalendarWidget::activated, this, [this](QDate tag) { waehle(tag); });
    connect(kalender_, &QCalendarWidget::clicked, this, [this](QDate tag) { waehle(tag); });
}

void Kalenderblatt::klappeAuf(const QWidget& feld, QDate tag) {
    kalender_->setSelectedDate(tag);
    faerbe();
    adjustSize();
    const QRect frei = feld.screen()->availableGeometry();
    const QPoint darunter = feld.mapToGlobal(QPoint(0, feld.height()));
    const int darueber = feld.mapToGlobal(QPoint(0, 0)).y() - height();
    const int y = darunter.y() + height() <= frei.bottom() + 1 ? darunter.y() : darueber;
    move(std::max(frei.left(), std::min(darunter.x(), frei.right() + 1 - width())), std::max(frei.top(), y));
    show();
    kalender_->setFocus(Qt::PopupFocusReason);
}

void Kalenderblatt::faerbe() {
    // Sundays only: in Germany a Saturday is no day off. The red is one that can be read on its ground.
    QTextCharFormat sonntag;
    sonntag.setForeground(palette().color(QPalette::Base).lightness() < 128 ? QColor(255, 128, 120)
                                                                            : QColor(200, 24, 24));
    kalender_->setWeekdayTextFormat(Qt::Saturday, QTextCharFormat());
    kalender_->setWeekdayTextFormat(Qt::Sunday, sonntag);
    for (const char* name : {kVorigerMonat, kNaechsterMonat}) {
        auto* knopf = findChild<QToolButton*>(QString::fromUtf8(name));
        if (knopf == nullptr) continue;
        const QColor farbe = palette().color(QPalette::HighlightedText);
        knopf->setIcon(pfeil(name == kVorigerMonat, farbe, knopf->iconSize().height()));
    }
}

// A double click tells twice.
void Kalenderblatt::waehle(QDate tag) {
    if (!isVisible()) return;
    hide();
    gewaehlt_(tag);
}

}  // namespace wendel
