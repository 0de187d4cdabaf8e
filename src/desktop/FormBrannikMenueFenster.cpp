#include "desktop/FormBrannikMenueFenster.h"

#include <QGuiApplication>
#include <QMenu>
#include <QTimer>
#include <QToolTip>
#include <QWidget>
#include <QWindow>

#include "desktop/Desktopfenster.h"
#include "desktop/Menuemaler.h"
#include "desktop/PicPaint.h"
#include "desktop/PictureTagestipp.h"
#include "desktop/QtText.h"
#include "traymenu/FormBrannikMenue.h"

namespace wendel {
namespace {

// Not a popup: that would never be the active window, and would swallow the click that closes it.
constexpr Qt::WindowFlags kFensterart = Qt::Tool | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint;

QTimer* zeitgeber(QWidget* fenster, const char* name) {
    auto* neu = new QTimer(fenster);
    neu->setObjectName(QString::fromLatin1(name));
    return neu;
}

void stelle(QTimer& zeitgeber, int ms) {
    if (ms > 0) {
        zeitgeber.start(ms);
    } else {
        zeitgeber.stop();
    }
}

// Wayland lets a program place only what counts as a small helper of another of its windows.
bool nurHelferPlatzierbar() { return QGuiApplication::platformName().startsWith(QLatin1String("wayland")); }

// The desktop keeps a sub-menu above its parent by that.
void ordneUnter(const QWidget& fenster, Fensterhandle eltern) {
    const QWidget* gefunden = eltern != 0 ? QWidget::find(eltern) : nullptr;
    if (gefunden) fenster.windowHandle()->setTransientParent(gefunden->windowHandle());
}

}  // namespace

FormBrannikMenueFenster::FormBrannikMenueFenster(FormBrannikMenue& form, Menuebilder& bilder)
    : form_(form),
      fenster_(new QWidget(nullptr, kFensterart)),
      picPaint_(new PicPaint(*fenster_, bilder)),
      pictureTagestipp_(new PictureTagestipp(*fenster_, bilder)),
      timerEinblendung_(zeitgeber(fenster_, "TimerEinblendung")),
      timerUnload_(zeitgeber(fenster_, "TimerUnload")) {
    fenster_->setObjectName(QStringLiteral("FormBrannikMenue"));
    fenster_->setWindowTitle(QStringLiteral("Lomrick - Menü"));
    fenster_->setAccessibleName(fenster_->windowTitle());
    picPaint_->setzeForm(&form);
    pictureTagestipp_->setzeForm(&form);
    QObject::connect(timerEinblendung_, &QTimer::timeout, verbindungen_.get(),
                     [&form] { form.TimerEinblendung_Timer(); });
    QObject::connect(timerUnload_, &QTimer::timeout, verbindungen_.get(),
                     [&form] { form.TimerUnload_Timer(); });
}

FormBrannikMenueFenster::~FormBrannikMenueFenster() {
    verbindungen_.reset();
    picPaint_->setzeForm(nullptr);
    pictureTagestipp_->setzeForm(nullptr);
    setzeTimerEinblendung(0);
    setzeTimerUnload(0);
    verbergen();
    fenster_->deleteLater();
}

Fensterhandle FormBrannikMenueFenster::hwnd() { return fenster_->winId(); }

void FormBrannikMenueFenster::setzeSchrift(const std::string& name, int punkt) {
    const QFont schrift = Menuemaler::schrift(name, punkt);
    picPaint_->setFont(schrift);
    pictureTagestipp_->setFont(schrift);
}

int FormBrannikMenueFenster::textbreite(const std::string& text) {
    return Menuemaler::textbreite(picPaint_->font(), text);
}

Menuefarben FormBrannikMenueFenster::farben() { return Menuemaler::farben(QGuiApplication::palette()); }

// What panel and rows leave free of the window is its frame.
void FormBrannikMenueFenster::zeichne(const Menuebild& bild) {
    QPalette rahmen = QGuiApplication::palette();
    rahmen.setColor(QPalette::Window, Menuemaler::rahmenfarbe(bild.farben));
    fenster_->setPalette(rahmen);
    fenster_->resize(bild.fenster.breite, bild.fenster.hoehe);
    picPaint_->setGeometry(Menuemaler::qtRechteck(bild.PicPaint));
    picPaint_->setzeZeilen(bild.zeilen, bild.farben);
    pictureTagestipp_->setzeBild(bild);
}

void FormBrannikMenueFenster::zeichneZeile(const Zeilenbild& zeile) { picPaint_->setzeZeile(zeile); }

void FormBrannikMenueFenster::zeichneTipp(bool hervorgehoben) {
    pictureTagestipp_->setzeHervorgehoben(hervorgehoben);
}

void FormBrannikMenueFenster::zeigen(const Rechteck& fenster, Fensterhandle eltern) {
    if (eltern != 0 && nurHelferPlatzierbar())
        fenster_->setWindowFlags(Qt::ToolTip | Qt::FramelessWindowHint);
    fenster_->winId();  // what follows needs the native window
    ordneUnter(*fenster_, eltern);
    // At some scales the toolkit makes the window manager round sizes to steps, counted from here.
    fenster_->setBaseSize(fenster.breite, fenster.hoehe);
    fenster_->setGeometry(Menuemaler::qtRechteck(fenster));
    fenster_->show();
    aktivieren();
}

void FormBrannikMenueFenster::verbergen() {
    if (menueMenue_) menueMenue_->close();
    if (fenster_->isVisible()) QToolTip::hideText();
    fenster_->hide();
}

void FormBrannikMenueFenster::aktivieren() { Desktopfenster::aktiviereEigenes(*fenster_); }

void FormBrannikMenueFenster::setzeTimerEinblendung(int ms) { stelle(*timerEinblendung_, ms); }

void FormBrannikMenueFenster::setzeTimerUnload(int ms) { stelle(*timerUnload_, ms); }

// ---- the context menu ----

QAction* FormBrannikMenueFenster::befehl(const char* name, const char* text,
                                         void (FormBrannikMenue::*klick)()) {
    QAction* neu = menueMenue_->addAction(qtText(text));
    neu->setObjectName(qtText(name));
    QObject::connect(neu, &QAction::triggered, verbindungen_.get(),
                     [&form = form_, klick] { (form.*klick)(); });
    return neu;
}

void FormBrannikMenueFenster::baueMenueMenue() {
    menueMenue_ = new QMenu(fenster_);
    menueMenue_->setObjectName(QStringLiteral("MenueMenue"));
    menueMenue_->setFont(picPaint_->font());
    befehl("MenueAnzeigen", kTextAnzeigen, &FormBrannikMenue::MenueAnzeigen_Click);
    menueMenue_->addSeparator()->setObjectName(QStringLiteral("Trennleiste1"));
    befehl("MenueErinnern", kTextErinnern, &FormBrannikMenue::MenueErinnern_Click);
    trennleiste2_ = menueMenue_->addSeparator();
    trennleiste2_->setObjectName(QStringLiteral("Trennleiste2"));
    menueImTVZeigen_ = befehl("MenueImTVZeigen", kTextImTVZeigen, &FormBrannikMenue::MenueImTVZeigen_Click);
    QObject::connect(menueMenue_, &QMenu::aboutToHide, verbindungen_.get(),
                     [&form = form_] { form.MenueMenue_Geschlossen(); });
}

void FormBrannikMenueFenster::zeigeMenueMenue(const Kontextmenue& menue) {
    if (!menueMenue_) baueMenueMenue();
    trennleiste2_->setVisible(menue.imTVZeigen);
    menueImTVZeigen_->setVisible(menue.imTVZeigen);
    menueMenue_->popup(picPaint_->mapToGlobal(QPoint(menue.ort.x, menue.ort.y)));
    menueMenue_->setActiveAction(menueMenue_->actions().front());
}

}  // namespace wendel
