#include "desktop/Menuemaler.h"

#include <QFontInfo>
#include <QFontMetricsF>
#include <QImage>
#include <QPainterPath>
#include <QtMath>
#include <algorithm>
#include <array>
#include <utility>
#include <vector>

#include "desktop/Farben.h"
#include "desktop/QtText.h"
#include "desktop/Schrift.h"

namespace wendel::Menuemaler {
namespace {

using namespace Menuemasse;

constexpr Qt::Alignment kLinks = Qt::AlignLeft | Qt::AlignVCenter;

Farbe farbe(const QColor& f) { return f.rgb() & 0xFFFFFF; }
QColor qtFarbe(Farbe f) { return QColor(QRgb(f)); }

QColor gemischt(const QColor& a, const QColor& b, int anteilA) {
    const auto teil = [&](int x, int y) { return (x * anteilA + y * (100 - anteilA)) / 100; };
    return {teil(a.red(), b.red()), teil(a.green(), b.green()), teil(a.blue(), b.blue())};
}

bool istDunkel(const QColor& flaeche) { return qGray(flaeche.rgb()) < 128; }

// Both ends differ from the desktop's colour only away from the writing on it.
std::pair<Farbe, Farbe> verlaufsenden(const QColor& grund, const QColor& schrift) {
    const bool hellerGrund = qGray(grund.rgb()) > qGray(schrift.rgb());
    if (hellerGrund) return {farbe(gemischt(Qt::white, grund, 45)), farbe(grund)};
    return {farbe(grund), farbe(gemischt(Qt::black, grund, 18))};
}

// The same place on whole device pixels.
QRectF aufPixel(const QPainter& maler, const QRectF& r) {
    const QTransform zuPixeln = maler.deviceTransform();
    const QRectF p = zuPixeln.mapRect(r);
    const QPointF ecke(qRound(p.left()), qRound(p.top()));
    return zuPixeln.inverted().mapRect(QRectF(ecke, QPointF(qRound(p.right()), qRound(p.bottom()))));
}

void maleVerlauf(QPainter& maler, const QRectF& flaeche, Farbe oben, Farbe unten) {
    const int linien = qRound(maler.deviceTransform().mapRect(flaeche).height());
    const std::vector<Farbe> farben = Farbverlauf::verlauf(oben, unten, linien);
    QImage streifen(1, std::max(linien, 1), QImage::Format_RGB32);
    for (int y = 0; y < linien; ++y)
        streifen.setPixel(0, y, 0xFF000000U | farben[static_cast<std::size_t>(y)]);
    maler.drawImage(flaeche, streifen);
}

// On a dark ground the usual pair would glare, so there it is a darker and a lighter shade of the ground.
void maleLinienpaar(QPainter& maler, const QRectF& zeile, qreal y, const Menuefarben& farben) {
    const QColor grund = qtFarbe(farben.flaecheUnten);
    const bool dunkel = istDunkel(grund);
    const std::array<QColor, 2> paar{dunkel ? gemischt(Qt::black, grund, 45) : qtFarbe(kLinieDunkel),
                                     dunkel ? gemischt(Qt::white, grund, 18) : qtFarbe(kLinieHell)};
    for (const QColor& linie : paar)
        maler.fillRect(aufPixel(maler, {zeile.left() + kAbstand, y++, zeile.width() - 2 * kAbstand, 1}),
                       linie);
}

void maleText(QPainter& maler, const QRectF& platz, const QString& text) {
    const int breite = qFloor(platz.width());
    if (text.isEmpty() || breite <= 0) return;
    const QFontMetrics masse = maler.fontMetrics();
    // Measuring is cheap, eliding is not, and nearly every text fits.
    const bool passt = masse.horizontalAdvance(text) <= breite;
    maler.drawText(platz, kLinks | Qt::TextSingleLine,
                   passt ? text : masse.elidedText(text, Qt::ElideRight, breite));
}

void maleSpalte(QPainter& maler, const QRectF& zeile, const Zeilentext& spalte) {
    maleText(maler, {zeile.left() + spalte.x, zeile.top(), qreal(spalte.breite), zeile.height()},
             qtText(spalte.text));
}

void maleSymbol(QPainter& maler, const QRectF& zeile, int x, const QIcon& symbol) {
    const QRectF platz(zeile.left() + x, zeile.top() + (zeile.height() - kSymbolgroesse) / 2, kSymbolgroesse,
                       kSymbolgroesse);
    const QPixmap bild =
        symbol.pixmap(QSize(kSymbolgroesse, kSymbolgroesse), maler.device()->devicePixelRatioF());
    maler.drawPixmap(aufPixel(maler, platz).topLeft(), bild);
}

void malePfeil(QPainter& maler, const QRectF& zeile, const QColor& farbe) {
    constexpr qreal kHoehe = 3.5;
    const QPointF spitze(zeile.right() - kAbstand - 2, zeile.center().y());
    QPainterPath winkel(spitze + QPointF(-kHoehe, -kHoehe));
    winkel.lineTo(spitze);
    winkel.lineTo(spitze + QPointF(-kHoehe, kHoehe));
    maler.save();
    maler.setRenderHint(QPainter::Antialiasing);
    maler.strokePath(winkel, QPen(farbe, 1.4, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    maler.restore();
}

// ---- the panel of the tip ----

constexpr int kTippRand = 12;
constexpr int kTippMotiv = 82;  // where the bitmap has its motif, at the right
constexpr int kHoechsterAbstand = 4;

struct Tippzeile {
    QString text;
    QFont schrift;
    QColor farbe;
};

QFont anders(QFont font, double faktor, bool fett) {
    font.setPixelSize(std::max(1, qRound(QFontInfo(font).pixelSize() * faktor)));
    font.setBold(fett);
    return font;
}

struct Tippfarben {
    QColor schrift, blass, akzent;
};

Tippfarben tippfarben(const Menuebild& menue, const Tippbild& grund) {
    QColor flaeche = qtFarbe(menue.farben.flaecheUnten), schrift = qtFarbe(menue.farben.schrift);
    if (!grund.bild.isNull()) {
        flaeche = grund.hell ? Qt::white : QColor(0x16, 0x2e, 0x54);
        schrift = grund.hell ? QColor(0x14, 0x1c, 0x2c) : Qt::white;
    }
    return {schrift, gemischt(schrift, flaeche, 75), istDunkel(flaeche) ? 0xffffc24a : 0xffa85a00};
}

std::vector<Tippzeile> tippzeilen(const Tagestippfelder& tipp, const QFont& schrift, const Tippfarben& f) {
    std::vector<Tippzeile> zeilen{{QStringLiteral("Tagestipp"), anders(schrift, 0.9, true), f.akzent}};
    if (tipp.TagesTippPos == 0) {
        zeilen.push_back({qtText(tipp.TagesTippGenre), schrift, f.schrift});
        return zeilen;
    }
    zeilen.push_back({qtText(tipp.TagesTippTitel).simplified(), anders(schrift, 1.2, true), f.schrift});
    const QString wann = qtText(tipp.TagesTippUhrzeit), wo = qtText(tipp.TagesTippSender);
    const bool beide = !wann.isEmpty() && !wo.isEmpty();
    zeilen.push_back({beide ? wann + QStringLiteral(" · ") + wo : wann + wo, schrift, f.schrift});
    zeilen.push_back({qtText(tipp.TagesTippGenre).simplified(), schrift, f.blass});
    std::erase_if(zeilen, [](const Tippzeile& zeile) { return zeile.text.isEmpty(); });
    return zeilen;
}

void maleTippzeilen(QPainter& maler, const QRect& platz, const std::vector<Tippzeile>& zeilen) {
    qreal hoehe = 0;
    for (const Tippzeile& zeile : zeilen)
        hoehe += QFontMetricsF(zeile.schrift).height();
    const qreal luecken = static_cast<qreal>(zeilen.size()) - 1;
    const qreal abstand = std::clamp((platz.height() - hoehe) / (luecken + 2), 0.0, qreal(kHoechsterAbstand));
    qreal y = platz.top() + (platz.height() - hoehe - luecken * abstand) / 2;
    for (const Tippzeile& zeile : zeilen) {
        const qreal zeilenhoehe = QFontMetricsF(zeile.schrift).height();
        maler.setFont(zeile.schrift);
        maler.setPen(zeile.farbe);
        maleText(maler, QRectF(platz.left(), y, platz.width(), zeilenhoehe), zeile.text);
        y += zeilenhoehe + abstand;
    }
}

void maleTippgrund(QPainter& maler, const QRect& flaeche, const Menuefarben& farben, const QPixmap& bild) {
    if (bild.isNull()) return maleVerlauf(maler, flaeche, farben.flaecheOben, farben.flaecheUnten);
    const QSizeF groesse = bild.deviceIndependentSize();
    const qreal links = flaeche.right() + 1 - groesse.width();
    if (links > flaeche.left()) {
        const QRectF rest(flaeche.left(), flaeche.top(), links - flaeche.left() + 1, flaeche.height());
        maler.drawPixmap(rest, bild, QRectF(0, 0, 1, bild.height()));
    }
    maler.drawPixmap(aufPixel(maler, {QPointF(links, flaeche.top()), groesse}).topLeft(), bild);
}

}  // namespace

QFont schrift(const std::string& name, int punkt) {
    QFont font = wendel::schrift(punkt);
    font.setFamilies(QStringList{qtText(name)} + font.families());
    for (int hoehe = QFontInfo(font).pixelSize(); QFontMetrics(font).height() > kZeilenhoehe - 2;)
        font.setPixelSize(--hoehe);
    return font;
}

// One more than measured: a scaled screen puts glyphs elsewhere by fractions of a pixel.
int textbreite(const QFont& schrift, const std::string& text) {
    return text.empty() ? 0 : qCeil(QFontMetricsF(schrift).horizontalAdvance(qtText(text))) + 1;
}

Menuefarben farben(const QPalette& palette) {
    const QColor flaeche = palette.color(QPalette::Active, QPalette::Button),
                 schrift = palette.color(QPalette::Active, QPalette::ButtonText),
                 hervorhebung = palette.color(QPalette::Active, QPalette::Highlight),
                 hervorgehoben = palette.color(QPalette::Active, QPalette::HighlightedText);
    Menuefarben f;
    std::tie(f.flaecheOben, f.flaecheUnten) = verlaufsenden(flaeche, schrift);
    f.schrift = farbe(schrift);
    f.schriftGesperrt = farbe(gedaempft(gedaempft(schrift, flaeche), flaeche));
    std::tie(f.hervorhebungOben, f.hervorhebungUnten) = verlaufsenden(hervorhebung, hervorgehoben);
    f.hervorhebungSchrift = farbe(hervorgehoben);
    return f;
}

QColor rahmenfarbe(const Menuefarben& farben) {
    return gemischt(qtFarbe(farben.schrift), qtFarbe(farben.flaecheUnten), 40);
}

void maleZeile(QPainter& maler, const Zeilenbild& zeile, const Menuefarben& farben, Menuebilder& bilder) {
    const QRectF platz = aufPixel(maler, qtRechteck(zeile.rechteck));
    maleVerlauf(maler, platz, zeile.oben, zeile.unten);
    if (zeile.trenner) return maleLinienpaar(maler, platz, platz.center().y() - 1, farben);
    if (zeile.gruppenlinie) maleLinienpaar(maler, platz, platz.top(), farben);
    if (!zeile.symbol.empty()) maleSymbol(maler, platz, zeile.symbolX, bilder.symbol(zeile.symbol));
    maler.setPen(qtFarbe(zeile.schrift));
    for (const Zeilentext* spalte : {&zeile.zeit, &zeile.sender, &zeile.text})
        maleSpalte(maler, platz, *spalte);
    if (zeile.pfeil) malePfeil(maler, platz, qtFarbe(zeile.schrift));
}

void maleTipp(QPainter& maler, const QRect& flaeche, const Menuebild& menue, const Tippbild& grund) {
    maler.setClipRect(flaeche);
    maleTippgrund(maler, flaeche, menue.farben, grund.bild);
    const Tippfarben farben = tippfarben(menue, grund);
    if (menue.tippHervorgehoben) {
        QColor schimmer = farben.schrift;
        schimmer.setAlpha(28);
        maler.fillRect(flaeche, schimmer);
    }
    const int rechts = grund.bild.isNull() ? kTippRand : kTippMotiv;
    maleTippzeilen(maler, flaeche.adjusted(kTippRand, 0, -rechts, 0),
                   tippzeilen(menue.tipp, maler.font(), farben));
    if (!menue.tippHervorgehoben) return;
    maler.setPen(QPen(farben.akzent, 2, Qt::SolidLine, Qt::SquareCap, Qt::MiterJoin));
    maler.drawRect(QRectF(flaeche).adjusted(1, 1, -1, -1));
}

}  // namespace wendel::Menuemaler
