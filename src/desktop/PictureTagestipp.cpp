#include "desktop/PictureTagestipp.h"

#include <QMouseEvent>
#include <QPainter>
#include <QTextDocument>

#include "desktop/Menuemaler.h"
#include "desktop/Menuezugang.h"
#include "desktop/QtText.h"
#include "traymenu/FormBrannikMenue.h"

namespace wendel {

PictureTagestipp::PictureTagestipp(QWidget& fenster, Menuebilder& bilder)
    : QAbstractButton(&fenster), bilder_(bilder) {
    setObjectName(QStringLiteral("PictureTagestipp"));
    setMouseTracking(true);
    setFocusPolicy(Qt::NoFocus);  // the keyboard reaches it through the form, as it does every entry
    setAttribute(Qt::WA_OpaquePaintEvent);
    setContextMenuPolicy(Qt::PreventContextMenu);
    connect(this, &QAbstractButton::clicked, this, [this] {
        if (form_) form_->PictureTagestipp_Click();
    });
}

void PictureTagestipp::setzeBild(const Menuebild& bild) {
    bild_ = bild;
    bild_.zeilen.clear();
    const bool vorhanden = bild.tipp.TagesTippPos != 0;
    setVisible(bild.PictureTagestipp.breite > 0);
    setGeometry(Menuemaler::qtRechteck(bild.PictureTagestipp));
    setAccessibleName(qtText(bild.tippName));
    setAccessibleDescription(vorhanden ? qtText(bild.tipp.TagesTippGenre) : QString());
    setCursor(vorhanden ? Qt::PointingHandCursor : Qt::ArrowCursor);
    setToolTip(vorhanden ? Qt::convertFromPlainText(qtText(bild.tipp.TagesTippTitel), Qt::WhiteSpaceNormal)
                         : QString());
    update();
}

void PictureTagestipp::setzeHervorgehoben(bool hervorgehoben) {
    bild_.tippHervorgehoben = hervorgehoben;
    update();
    if (hervorgehoben) Menuezugang::meldeHervorgehoben(*this);
}

void PictureTagestipp::mouseMoveEvent(QMouseEvent* ereignis) {
    QAbstractButton::mouseMoveEvent(ereignis);
    if (form_) form_->PictureTagestipp_MouseMove();
}

void PictureTagestipp::paintEvent(QPaintEvent*) {
    QPainter maler(this);
    Menuemaler::maleTipp(maler, rect(), bild_, bilder_.tippbild(devicePixelRatioF()));
}

}  // namespace wendel
