#include "desktop/PicPaint.h"

#include <QHelpEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QTextDocument>
#include <QTimer>
#include <QToolTip>
#include <algorithm>
#include <optional>

#include "desktop/Menuemaler.h"
#include "desktop/Menuezugang.h"
#include "desktop/QtText.h"
#include "traymenu/FormBrannikMenue.h"

namespace wendel {
namespace {

std::optional<Menuetaste> menuetaste(const QKeyEvent& ereignis) {
    switch (ereignis.key()) {
        case Qt::Key_Up: return Menuetaste::Hoch;
        case Qt::Key_Down: return Menuetaste::Runter;
        case Qt::Key_Left: return Menuetaste::Links;
        case Qt::Key_Right: return Menuetaste::Rechts;
        case Qt::Key_Home: return Menuetaste::Pos1;
        case Qt::Key_End: return Menuetaste::Ende;
        case Qt::Key_Return:
        case Qt::Key_Enter:
        case Qt::Key_Select:
        case Qt::Key_Space: return Menuetaste::Enter;
        case Qt::Key_Escape: return Menuetaste::Esc;
        case Qt::Key_Menu: return Menuetaste::Menue;
        case Qt::Key_F10:
            if (ereignis.modifiers() == Qt::ShiftModifier) return Menuetaste::Menue;
            return std::nullopt;
        default: break;
    }
    const bool befehl = ereignis.modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier);
    const QString text = ereignis.text();
    if (befehl || text.isEmpty() || !text.front().isPrint()) return std::nullopt;
    return Menuetaste::Zeichen;
}

}  // namespace

PicPaint::PicPaint(QWidget& fenster, Menuebilder& bilder) : QWidget(&fenster), bilder_(bilder) {
    setObjectName(QStringLiteral("PicPaint"));
    setAccessibleName(QStringLiteral("Menü"));
    setMouseTracking(true);
    setFocusPolicy(Qt::StrongFocus);
    setAttribute(Qt::WA_OpaquePaintEvent);
    setContextMenuPolicy(Qt::PreventContextMenu);  // it comes with the release of the button, from the form
    setFocus();
    fenster.installEventFilter(this);
}

void PicPaint::setzeZeilen(std::vector<Zeilenbild> zeilen, const Menuefarben& farben) {
    zeilen_ = std::move(zeilen);
    farben_ = farben;
    update();
}

void PicPaint::setzeZeile(const Zeilenbild& zeile) {
    const auto stelle = std::find_if(zeilen_.begin(), zeilen_.end(),
                                     [&](const Zeilenbild& alt) { return alt.index == zeile.index; });
    if (stelle == zeilen_.end()) return;
    const bool neuHervorgehoben = zeile.hervorgehoben && !stelle->hervorgehoben;
    *stelle = zeile;
    update(Menuemaler::qtRechteck(zeile.rechteck));
    if (neuHervorgehoben) Menuezugang::meldeHervorgehoben(*this, zeile.index);
}

const Zeilenbild* PicPaint::zeileBei(const QPoint& ort) const {
    const auto stelle = std::find_if(zeilen_.begin(), zeilen_.end(), [&](const Zeilenbild& zeile) {
        return !zeile.trenner && zeile.rechteck.enthaelt({ort.x(), ort.y()});
    });
    return stelle == zeilen_.end() ? nullptr : &*stelle;
}

void PicPaint::waehle(int index) {
    if (form_) form_->waehlen(index);
}

void PicPaint::paintEvent(QPaintEvent* ereignis) {
    QPainter maler(this);
    maler.fillRect(ereignis->rect(), QColor(QRgb(farben_.flaecheUnten)));
    for (const Zeilenbild& zeile : zeilen_) {
        if (Menuemaler::qtRechteck(zeile.rechteck).intersects(ereignis->rect()))
            Menuemaler::maleZeile(maler, zeile, farben_, bilder_);
    }
}

// ---- what the user does; the form may be gone after each call ----

void PicPaint::mouseMoveEvent(QMouseEvent* ereignis) {
    if (form_) form_->PicPaint_MouseMove(ereignis->pos().x(), ereignis->pos().y());
}

void PicPaint::mouseReleaseEvent(QMouseEvent* ereignis) {
    const bool links = ereignis->button() == Qt::LeftButton;
    if (!form_ || (!links && ereignis->button() != Qt::RightButton)) return;
    form_->PicPaint_MouseUp(links ? FormBrannikMenue::kMausLinks : FormBrannikMenue::kMausRechts,
                            ereignis->pos().x(), ereignis->pos().y());
}

void PicPaint::keyPressEvent(QKeyEvent* ereignis) {
    if (const auto taste = menuetaste(*ereignis); form_ && taste)
        form_->PicPaint_KeyDown(*taste, logikText(ereignis->text()));
}

// The toolkit tells screen readers of the surface; where the user is on it is told after that.
void PicPaint::focusInEvent(QFocusEvent* ereignis) {
    QWidget::focusInEvent(ereignis);
    QTimer::singleShot(0, this, [this] {
        for (const Zeilenbild& zeile : zeilen_) {
            if (zeile.hervorgehoben) Menuezugang::meldeHervorgehoben(*this, zeile.index);
        }
    });
}

bool PicPaint::event(QEvent* ereignis) {
    if (ereignis->type() != QEvent::ToolTip) return QWidget::event(ereignis);
    zeigeTooltip(*static_cast<QHelpEvent*>(ereignis));
    return true;
}

// As a document: its lines are wrapped, and what looks like markup in a title stays text.
void PicPaint::zeigeTooltip(const QHelpEvent& ereignis) {
    const Zeilenbild* zeile = zeileBei(ereignis.pos());
    if (!zeile || zeile->tooltip.empty()) return QToolTip::hideText();
    QToolTip::showText(ereignis.globalPos(),
                       Qt::convertFromPlainText(qtZeilen(zeile->tooltip), Qt::WhiteSpaceNormal), this,
                       Menuemaler::qtRechteck(zeile->rechteck));
}

// The window's own: another theme, and the window manager's wish that it closes.
bool PicPaint::eventFilter(QObject* objekt, QEvent* ereignis) {
    if (objekt != window()) return QWidget::eventFilter(objekt, ereignis);
    if (ereignis->type() == QEvent::ApplicationPaletteChange && form_ && isVisible()) form_->PaintMenue();
    if (ereignis->type() != QEvent::Close) return false;
    ereignis->ignore();
    if (form_) form_->PicPaint_KeyDown(Menuetaste::Esc);
    return true;
}

}  // namespace wendel
