#include "desktop/FormHinweisFenster.h"

#include <QAbstractItemView>
#include <QCloseEvent>
#include <QComboBox>
#include <QCursor>
#include <QFrame>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QPushButton>
#include <QScreen>
#include <QScrollArea>
#include <QScrollBar>
#include <QVBoxLayout>
#include <algorithm>

#include "desktop/QtText.h"
#include "desktop/Symbole.h"

namespace wendel {
namespace {

// Device-independent pixels.
constexpr int kBreite = 460;
constexpr int kRand = 18;
constexpr int kStreifen = 5;
constexpr int kBild = 64;
constexpr int kTextMindesthoehe = 42;
constexpr int kFensterrahmen = 40;  // kept free of the screen for the window manager's frame
constexpr QRgb kAkzent = 0xfff0901c;

QFont schrift(double punkte, QFont::Weight staerke = QFont::Normal) {
    QFont font(QStringList{QStringLiteral("Verdana"), QStringLiteral("DejaVu Sans")});
    font.setPointSizeF(punkte);
    font.setWeight(staerke);
    return font;
}

QScreen* bildschirmDesZeigers() {
    QScreen* schirm = QGuiApplication::screenAt(QCursor::pos());
    return schirm != nullptr ? schirm : QGuiApplication::primaryScreen();
}

}  // namespace

FormHinweisFenster::FormHinweisFenster()
    : QWidget(nullptr, Qt::Window | Qt::CustomizeWindowHint | Qt::WindowTitleHint |
                           Qt::WindowCloseButtonHint | Qt::WindowStaysOnTopHint) {
    setObjectName(QStringLiteral("FormHinweis"));
    setWindowTitle(qtText(FormHinweis::kFenstertitel));
    setAccessibleName(windowTitle());
    setWindowIcon(Symbole::symbol("wendel"));
    setAttribute(Qt::WA_ShowWithoutActivating);
    setFocusPolicy(Qt::ClickFocus);
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
    nachricht_ = baueNachricht();
    fussleiste_ = baueFussleiste();
    aufbau->addWidget(nachricht_, 1);
    aufbau->addWidget(fussleiste_);
    setTabOrder(comboFunktion_, cmdOK_);
    faerbe();

    timerOKErlaubt_.setObjectName(QStringLiteral("TimerOKErlaubt"));
    timerOKErlaubt_.setSingleShot(true);
    timerOKErlaubt_.setTimerType(Qt::PreciseTimer);
    connect(&timerOKErlaubt_, &QTimer::timeout, this, [this] { form_->TimerOKErlaubt_Timer(); });
}

QWidget* FormHinweisFenster::baueNachricht() {
    auto* flaeche = new QWidget(this);
    flaeche->setAutoFillBackground(true);
    auto* aufbau = new QHBoxLayout(flaeche);
    aufbau->setContentsMargins(kRand, kRand, kRand, kRand);
    aufbau->setSpacing(kRand);

    hinweisPicture_ = new QLabel(flaeche);
    hinweisPicture_->setObjectName(QStringLiteral("HinweisPicture"));
    hinweisPicture_->setAccessibleName(QStringLiteral("Erinnerung"));
    hinweisPicture_->setPixmap(Symbole::bild("hinweis", devicePixelRatioF()));
    hinweisPicture_->setFixedSize(kBild, kBild);
    aufbau->addWidget(hinweisPicture_, 0, Qt::AlignTop);

    auto* spalte = new QVBoxLayout;
    spalte->setSpacing(8);
    labelHinweisTitel_ = new QLabel(QStringLiteral("Achtung !"), flaeche);
    labelHinweisTitel_->setObjectName(QStringLiteral("LabelHinweisTitel"));
    labelHinweisTitel_->setTextFormat(Qt::PlainText);
    labelHinweisTitel_->setFont(schrift(13, QFont::Bold));
    labelHinweisText_ =
        new QLabel(QStringLiteral("Der Zeitpunkt für die TV-Erinnerung ist erreicht."), flaeche);
    labelHinweisText_->setObjectName(QStringLiteral("LabelHinweisText"));
    labelHinweisText_->setTextFormat(Qt::PlainText);
    labelHinweisText_->setWordWrap(true);
    labelHinweisText_->setFont(schrift(10.5));
    labelHinweisText_->setAlignment(Qt::AlignTop | Qt::AlignLeft);
    textbereich_ = new QScrollArea(flaeche);
    textbereich_->setFrameShape(QFrame::NoFrame);
    textbereich_->setWidgetResizable(true);
    textbereich_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    textbereich_->setFocusPolicy(Qt::NoFocus);
    textbereich_->setWidget(labelHinweisText_);
    textbereich_->viewport()->setAutoFillBackground(false);
    labelHinweisText_->setAutoFillBackground(false);
    spalte->addWidget(labelHinweisTitel_);
    spalte->addWidget(textbereich_, 1);
    aufbau->addLayout(spalte, 1);
    return flaeche;
}

QWidget* FormHinweisFenster::baueFussleiste() {
    auto* flaeche = new QWidget(this);
    flaeche->setAutoFillBackground(true);
    auto* aufbau = new QHBoxLayout(flaeche);
    aufbau->setContentsMargins(kRand, 12, kRand, 14);
    aufbau->setSpacing(12);

    frameComboFunktion_ = new QFrame(flaeche);
    frameComboFunktion_->setObjectName(QStringLiteral("FrameComboFunktion"));
    auto* rahmen = new QHBoxLayout(frameComboFunktion_);
    rahmen->setContentsMargins(0, 0, 0, 0);
    comboFunktion_ = new QComboBox(frameComboFunktion_);
    comboFunktion_->setObjectName(QStringLiteral("ComboFunktion"));
    comboFunktion_->setAccessibleName(QStringLiteral("Was soll geschehen?"));
    // On this system the list's name is its choice.
    comboFunktion_->setAccessibleDescription(comboFunktion_->accessibleName());
    comboFunktion_->setFocusPolicy(Qt::StrongFocus);
    comboFunktion_->setMinimumHeight(32);
    comboFunktion_->installEventFilter(this);
    comboFunktion_->view()->installEventFilter(this);
    connect(comboFunktion_, &QComboBox::activated, this,
            [this](int index) { form_->ComboFunktion_Click(index); });
    rahmen->addWidget(comboFunktion_);
    aufbau->addWidget(frameComboFunktion_, 1);

    cmdOK_ = new QPushButton(QStringLiteral("&OK"), flaeche);
    cmdOK_->setObjectName(QStringLiteral("cmdOK"));
    cmdOK_->setAccessibleName(QStringLiteral("OK"));
    cmdOK_->setAutoDefault(true);  // Return presses it while it has the focus, and only then
    cmdOK_->setMinimumSize(96, 32);
    connect(cmdOK_, &QPushButton::clicked, this, [this] { form_->cmdOK_Click(); });
    aufbau->addWidget(cmdOK_);
    return flaeche;
}

// The message stands on the colour of written pages, the bar below on that of windows, in light and dark
// themes.
void FormHinweisFenster::faerbe() {
    const QPalette grund = QGuiApplication::palette();
    QPalette farben = grund;
    farben.setColor(QPalette::Window, grund.color(QPalette::Base));
    farben.setColor(QPalette::WindowText, grund.color(QPalette::Text));
    nachricht_->setPalette(farben);
    fussleiste_->setPalette(grund);
}

void FormHinweisFenster::changeEvent(QEvent* ereignis) {
    if (ereignis->type() == QEvent::ApplicationPaletteChange) faerbe();
    QWidget::changeEvent(ereignis);
}

void FormHinweisFenster::setzeTitel(const std::string& titel) {
    labelHinweisTitel_->setText(qtZeilen(titel));
    labelHinweisTitel_->setAccessibleName(labelHinweisTitel_->text());
}

void FormHinweisFenster::setzeText(const std::string& text) {
    labelHinweisText_->setText(qtZeilen(text));
    labelHinweisText_->setAccessibleName(labelHinweisText_->text());
}

void FormHinweisFenster::setzeFunktionen(const std::vector<std::string>& zeilen) {
    comboFunktion_->clear();
    for (const std::string& zeile : zeilen)
        comboFunktion_->addItem(qtText(zeile));
    comboFunktion_->setMaxVisibleItems(static_cast<int>(zeilen.size()));
}

void FormHinweisFenster::setzeAuswahl(int index) { comboFunktion_->setCurrentIndex(index); }

void FormHinweisFenster::anpassen() {
    const int textbreite = kBreite - 3 * kRand - kBild;
    const int frei = bildschirmDesZeigers()->availableGeometry().height() - kFensterrahmen;
    labelHinweisText_->setMinimumHeight(0);
    const int rest = kStreifen + 2 * kRand + 8 + labelHinweisTitel_->sizeHint().height() +
                     fussleiste_->sizeHint().height();
    const int gewuenscht = std::max(kTextMindesthoehe, labelHinweisText_->heightForWidth(textbreite));
    const int hoehe = std::min(gewuenscht, std::max(kTextMindesthoehe, frei - rest));
    const bool rollt = gewuenscht > hoehe;
    textbereich_->setVerticalScrollBarPolicy(rollt ? Qt::ScrollBarAlwaysOn : Qt::ScrollBarAlwaysOff);
    setFixedSize(kBreite, rest + hoehe);
    if (isVisible()) zentriere();
}

void FormHinweisFenster::zentriere() {
    const QRect frei = bildschirmDesZeigers()->availableGeometry();
    QRect fenster(QPoint(0, 0), size());
    fenster.moveCenter(frei.center());
    move(std::max(frei.left(), fenster.left()), std::max(frei.top(), fenster.top()));
}

void FormHinweisFenster::zeigen() {
    if (isVisible()) {
        raise();
        return;
    }
    setFocus(Qt::OtherFocusReason);  // the window itself: no control
    textbereich_->verticalScrollBar()->setValue(0);
    zentriere();
    show();
    raise();
}

void FormHinweisFenster::verbergen() {
    comboFunktion_->hidePopup();
    hide();
}

void FormHinweisFenster::starteOKTimer(int ms) { timerOKErlaubt_.start(ms); }

Fensterhandle FormHinweisFenster::fensterhandle() { return internalWinId(); }

void FormHinweisFenster::closeEvent(QCloseEvent* ereignis) {
    ereignis->ignore();
    form_->Schliessen();
}

void FormHinweisFenster::keyPressEvent(QKeyEvent* ereignis) {
    switch (ereignis->key()) {
        case Qt::Key_Escape: form_->Schliessen(); return;
        case Qt::Key_Up:
        case Qt::Key_Down:
            // Chooses a row whether or not the list has the focus.
            if (focusWidget() != comboFunktion_) QCoreApplication::sendEvent(comboFunktion_, ereignis);
            return;
        case Qt::Key_PageUp:
        case Qt::Key_PageDown:
            QCoreApplication::sendEvent(textbereich_->verticalScrollBar(), ereignis);
            return;
        default: QWidget::keyPressEvent(ereignis);
    }
}

bool FormHinweisFenster::leertasteInListe(int taste) {
    if (taste != Qt::Key_Space) return false;
    if (comboFunktion_->view()->isVisible()) {
        const QModelIndex zeile = comboFunktion_->view()->currentIndex();
        comboFunktion_->hidePopup();
        if (zeile.isValid()) {
            comboFunktion_->setCurrentIndex(zeile.row());
            form_->ComboFunktion_Click(zeile.row());
        }
    }
    form_->ComboFunktion_KeyPress(' ');
    return true;
}

bool FormHinweisFenster::eventFilter(QObject* objekt, QEvent* ereignis) {
    if (ereignis->type() == QEvent::KeyPress && leertasteInListe(static_cast<QKeyEvent*>(ereignis)->key())) {
        return true;
    }
    return QWidget::eventFilter(objekt, ereignis);
}

}  // namespace wendel
