#include "desktop/Hinweisrahmen.h"

#include <QCloseEvent>
#include <QFrame>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QPushButton>
#include <QScrollArea>
#include <QScrollBar>
#include <QVBoxLayout>
#include <algorithm>

#include "desktop/Bildschirm.h"
#include "desktop/Farben.h"
#include "desktop/QtText.h"
#include "desktop/Schrift.h"
#include "desktop/Symbole.h"

namespace wendel {
namespace {

// Device-independent pixels.
constexpr int kMindestbreite = 460;
constexpr int kRand = 18;
constexpr int kStreifen = 5;
constexpr int kBild = 64;
constexpr int kTextMindesthoehe = 42;
constexpr int kFensterrahmen = 40;  // kept free of the screen for the window manager's frame
// Where the desktop scales the font alone, the window grows with it; in heights of the font.
constexpr int kBreite = 30;

}  // namespace

Hinweisrahmen::Hinweisrahmen(const Namen& namen)
    : QWidget(nullptr, Qt::Window | Qt::CustomizeWindowHint | Qt::WindowTitleHint |
                           Qt::WindowCloseButtonHint | Qt::WindowStaysOnTopHint),
      namen_(namen) {
    setObjectName(QString::fromUtf8(namen.fenster));
    setWindowTitle(qtText(namen.titel));
    setAccessibleName(windowTitle());
    setAttribute(Qt::WA_ShowWithoutActivating);
    setFocusPolicy(Qt::ClickFocus);
}

void Hinweisrahmen::baueAuf() {
    if (seite_ != nullptr) return;
    setWindowIcon(Symbole::symbol("wendel"));
    setFont(schrift(9.5));

    auto* aufbau = new QVBoxLayout(this);
    aufbau->setContentsMargins(0, 0, 0, 0);
    aufbau->setSpacing(0);
    auto* streifen = new QWidget(this);
    streifen->setFixedHeight(kStreifen);
    streifen->setAutoFillBackground(true);
    QPalette farben;
    farben.setColor(QPalette::Window, QColor(kAkzent));
    streifen->setPalette(farben);
    aufbau->addWidget(streifen);
    baueSeite();
    aufbau->addWidget(seite_, 1);
    fussleiste_ = new QWidget(this);
    fussleiste_->setAutoFillBackground(true);
    leiste_ = new QHBoxLayout(fussleiste_);
    leiste_->setContentsMargins(kRand, 12, kRand, 14);
    leiste_->setSpacing(12);
    aufbau->addWidget(fussleiste_);
    faerbe();
    baueInhalt();
}

void Hinweisrahmen::baueSeite() {
    seite_ = new QWidget(this);
    seite_->setAutoFillBackground(true);
    auto* aufbau = new QHBoxLayout(seite_);
    aufbau->setContentsMargins(kRand, kRand, kRand, kRand);
    aufbau->setSpacing(kRand);

    auto* bild = new QLabel(seite_);
    bild->setObjectName(QString::fromUtf8(namen_.bild));
    bild->setAccessibleName(QString::fromUtf8(namen_.bildname));
    bild->setPixmap(Symbole::bild(namen_.bilddatei, devicePixelRatioF()));
    bild->setFixedSize(kBild, kBild);
    aufbau->addWidget(bild, 0, Qt::AlignTop);

    spalte_ = new QVBoxLayout;
    spalte_->setSpacing(8);
    text_ = new QLabel(seite_);
    text_->setObjectName(QString::fromUtf8(namen_.text));
    text_->setTextFormat(Qt::PlainText);
    text_->setWordWrap(true);
    text_->setFont(schrift(10.5));
    text_->setAlignment(Qt::AlignTop | Qt::AlignLeft);
    textbereich_ = new QScrollArea(seite_);
    textbereich_->setFrameShape(QFrame::NoFrame);
    textbereich_->setWidgetResizable(true);
    textbereich_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    textbereich_->setFocusPolicy(Qt::NoFocus);
    textbereich_->setWidget(text_);
    textbereich_->viewport()->setAutoFillBackground(false);
    text_->setAutoFillBackground(false);
    spalte_->addWidget(textbereich_, 1);
    aufbau->addLayout(spalte_, 1);
}

QLabel* Hinweisrahmen::baueUeberschrift(const char* name) {
    auto* ueberschrift = new QLabel(seite_);
    ueberschrift->setObjectName(QString::fromUtf8(name));
    ueberschrift->setTextFormat(Qt::PlainText);
    ueberschrift->setFont(schrift(13, QFont::Bold));
    spalte_->insertWidget(0, ueberschrift);
    return ueberschrift;
}

QPushButton* Hinweisrahmen::baueOK() {
    auto* cmdOK = new QPushButton(QStringLiteral("&OK"), fussleiste_);
    cmdOK->setObjectName(QStringLiteral("cmdOK"));
    cmdOK->setAccessibleName(QStringLiteral("OK"));
    cmdOK->setAutoDefault(true);  // Return presses it while it has the focus, and only then
    cmdOK->setMinimumSize(96, 32);
    leiste_->addWidget(cmdOK);
    return cmdOK;
}

// The message stands on the colour of written pages, the bar below on that of windows, in light and dark
// themes.
void Hinweisrahmen::faerbe() {
    const QPalette grund = QGuiApplication::palette();
    QPalette farben = grund;
    farben.setColor(QPalette::Window, grund.color(QPalette::Base));
    farben.setColor(QPalette::WindowText, grund.color(QPalette::Text));
    seite_->setPalette(farben);
    fussleiste_->setPalette(grund);
}

void Hinweisrahmen::changeEvent(QEvent* ereignis) {
    if (ereignis->type() == QEvent::ApplicationPaletteChange && seite_ != nullptr) faerbe();
    QWidget::changeEvent(ereignis);
}

void Hinweisrahmen::zeigeText(const std::string& text) {
    text_->setText(qtZeilen(text));
    text_->setAccessibleName(text_->text());
}

int Hinweisrahmen::hoeheOhneText() const {
    int hoehe = kStreifen + 2 * kRand + fussleiste_->sizeHint().height();
    for (int i = 0; i + 1 < spalte_->count(); ++i)  // the text is the last one
        hoehe += spalte_->itemAt(i)->sizeHint().height() + spalte_->spacing();
    return hoehe;
}

void Hinweisrahmen::passeAn() {
    const int breite = std::max(kMindestbreite, kBreite * fontMetrics().height());
    const int frei = freieFlaeche().height() - kFensterrahmen;
    text_->setMinimumHeight(0);
    const int rest = hoeheOhneText();
    const int gewuenscht = std::max(kTextMindesthoehe, text_->heightForWidth(breite - 3 * kRand - kBild));
    const int hoehe = std::min(gewuenscht, std::max(kTextMindesthoehe, frei - rest));
    const bool rollt = gewuenscht > hoehe;
    textbereich_->setVerticalScrollBarPolicy(rollt ? Qt::ScrollBarAlwaysOn : Qt::ScrollBarAlwaysOff);
    setFixedSize(breite, rest + hoehe);
    if (isVisible()) move(inDerMitte(size(), freieFlaeche()));
}

void Hinweisrahmen::komm() {
    if (isVisible()) {
        raise();
        return;
    }
    setFocus(Qt::OtherFocusReason);  // the window itself: no control
    textbereich_->verticalScrollBar()->setValue(0);
    move(inDerMitte(size(), freieFlaeche()));
    show();
    raise();
}

void Hinweisrahmen::closeEvent(QCloseEvent* ereignis) {
    ereignis->ignore();
    willSchliessen();
}

void Hinweisrahmen::keyPressEvent(QKeyEvent* ereignis) {
    switch (ereignis->key()) {
        case Qt::Key_Escape: willSchliessen(); return;
        case Qt::Key_PageUp:
        case Qt::Key_PageDown:
            QCoreApplication::sendEvent(textbereich_->verticalScrollBar(), ereignis);
            return;
        default: QWidget::keyPressEvent(ereignis);
    }
}

}  // namespace wendel
