#pragma once
// How the tray menu looks: its typeface, its colours out of the desktop's, the painting of a row and of the
// panel of the tip. Everything is put on whole device pixels, so that lines and icons are sharp at every
// scale. What stands where comes from the form; widgets are left to PicPaint and PictureTagestipp.

#include <QColor>
#include <QFont>
#include <QPainter>
#include <QPalette>
#include <string>

#include "desktop/Menuebilder.h"
#include "traymenu/FormBrannikMenueView.h"

namespace wendel::Menuemaler {

inline QRect qtRechteck(const Rechteck& r) { return {r.links, r.oben, r.breite, r.hoehe}; }

// That typeface, never higher than a row has room for.
QFont schrift(const std::string& name, int punkt);
// Room that the text needs in a row, in device-independent pixels.
int textbreite(const QFont& schrift, const std::string& text);

// Gradients and writing stay as far apart as the desktop's own colours are.
Menuefarben farben(const QPalette& palette);
QColor rahmenfarbe(const Menuefarben& farben);

// The painter has the menu's typeface; places are those of PicPaint.
void maleZeile(QPainter& maler, const Zeilenbild& zeile, const Menuefarben& farben, Menuebilder& bilder);
// The bitmap stands at the right of a panel; where that is wider, the bitmap's left edge goes on.
void maleTipp(QPainter& maler, const QRect& flaeche, const Menuebild& menue, const Tippbild& grund);

}  // namespace wendel::Menuemaler
