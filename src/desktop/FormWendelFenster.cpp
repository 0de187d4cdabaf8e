#include "desktop/FormWendelFenster.h"

#include <QAction>
#include <QCloseEvent>
#include <QCoreApplication>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QPushButton>
#include <QScreen>
#include <QSettings>
#include <QVBoxLayout>
#include <QWindow>
#include <algorithm>
#include <utility>

#include "core/FormWendel.h"
#include "desktop/Desktopfenster.h"
#include "desktop/Knopf.h"
#include "desktop/Linkschalter.h"
#include "desktop/QtText.h"
#include "desktop/Schrift.h"
#include "desktop/Statuszeile.h"
#include "desktop/Symbole.h"
#include "desktop/TermineListView.h"

namespace wendel {
namespace {

const QString kLage = QStringLiteral("FormWendel/Lage");
// A moved window is stored when it has come to rest.
constexpr int kLagezeitMs = 1500;

// A row that fits into the window as it opens for the first time, in rows of which there are as many.
const QString kMusterzeile = QStringLiteral(
    "24.12.12 20:15 20:10 Das Übermorgen-Magazin (KABEL) (Aufzeichnung 19:35 bis 20:20) 88888 Tage");
constexpr int kMusterzeilen = 20;

// The proportions of the picture in the corner.
constexpr QSize kBanner(96, 40);

const QString kHinweisNeu = QStringLiteral("Neuer Termin: Rechtsklick oder Einfg");
const QString kHinweisEigener =
    QStringLiteral("Bearbeiten: Doppelklick oder Eingabe   ·   Löschen: Entf   ·   Neuer Termin: Einfg");
const QString kHinweisFavoriten =
    QStringLiteral("Ändern in der Favoritenliste: Doppelklick oder Eingabe   ·   Neuer Termin: Einfg");

// At least so much of a window must be on a screen to be found and moved.
constexpr QSize kSichtbar(160, 60);

// The place of a window that was on a screen which is no longer there, or which has shrunk.
QRect imBild(QRect fenster, const QRect& frei) {
    const QRect zuSehen = fenster & frei;
    const bool oben = fenster.top() >= frei.top();  // the title, by which it is moved
    if (oben && zuSehen.width() >= kSichtbar.width() && zuSehen.height() >= kSichtbar.height())
        return fenster;
    fenster.setSize(fenster.size().boundedTo(frei.size()));
    fenster.moveLeft(std::clamp(fenster.left(), frei.left(), frei.right() + 1 - fenster.width()));
    fenster.moveTop(std::clamp(fenster.top(), frei.top(), frei.bottom() + 1 - fenster.height()));
    return fenster;
}

}  // namespace

FormWendelFenster::FormWendelFenster(QString merkdatei) : merkdatei_(std::move(merkdatei)) {
    setObjectName(QStringLiteral("FormWendel"));
    setWindowTitle(QStringLiteral("Lomrick"));
    setAccessibleName(windowTitle());
    lagezeit_.setSingleShot(true);
    lagezeit_.setInterval(kLagezeitMs);
    connect(&lagezeit_, &QTimer::timeout, this, [this] { merkeLage(); });
}

void FormWendelFenster::baueAuf() {
    if (!vorab_) return;
    const Listeninhalt inhalt = *std::exchange(vorab_, std::nullopt);
    setWindowIcon(Symbole::symbol("wendel"));
    setFont(schrift(9.5));

    listViewTermineListe_ = new TermineListView(this);
    if (form_ != nullptr) listViewTermineListe_->setzeForm(*form_);
    statuszeile_ = new Statuszeile(this);
    baueMenue();
    auto* trennung = new QFrame(this);
    trennung->setFrameStyle(QFrame::HLine | QFrame::Sunken);
    auto* aufbau = new QVBoxLayout(this);
    aufbau->setContentsMargins(0, 0, 0, 0);
    aufbau->setSpacing(0);
    aufbau->addWidget(listViewTermineListe_, 1);
    aufbau->addWidget(trennung);
    aufbau->addWidget(baueFussleiste());
    aufbau->addWidget(statuszeile_);
    connect(listViewTermineListe_->selectionModel(), &QItemSelectionModel::selectionChanged, this,
            [this] { zeigeStatus(); });
    stelleHin();
    setzeZeilen(inhalt.zeilen, inhalt.auswahl);
    setzeMenuezustand(inhalt.zeileGewaehlt);
    setzeLiveUpdateEinstellungen(inhalt.liveUpdateEinstellungen);
}

FormWendelFenster::~FormWendelFenster() {
    if (isVisible()) merkeLage();
    if (!vorab_) listViewTermineListe_->selectionModel()->disconnect(this);
}

void FormWendelFenster::setzeForm(FormWendel& form) { form_ = &form; }

void FormWendelFenster::baueMenue() {
    popupTerminliste_.setObjectName(QStringLiteral("PopupTerminliste"));
    popupTerminliste_.setAccessibleName(QStringLiteral("Terminliste"));
    const auto eintrag = [this](const char* name, const char* text, const QList<QKeySequence>& tasten,
                                auto vorgang) {
        QAction* aktion = popupTerminliste_.addAction(QString::fromUtf8(text));
        aktion->setObjectName(QString::fromUtf8(name));
        aktion->setShortcuts(tasten);
        aktion->setShortcutVisibleInContextMenu(true);
        connect(aktion, &QAction::triggered, this, vorgang);
        return aktion;
    };
    mnuNeuTermin_ = eintrag("mnuNeuTermin", "&Neuer Termin ..", {Qt::Key_Insert, Qt::CTRL | Qt::Key_N},
                            [this] { form_->mnuNeuTermin_Click(); });
    mnuEditieren_ =
        eintrag("mnuEditieren", "&Bearbeiten ..", {Qt::Key_Return}, [this] { form_->mnuEditieren_Click(); });
    mnuLoeschen_ =
        eintrag("mnuLöschen", "&Löschen ..", {Qt::Key_Delete}, [this] { form_->mnuLöschen_Click(); });
    popupTerminliste_.addSeparator();
    QAction* mnuAufzeichnungen = eintrag("mnuAufzeichnungen", "&Aufzeichnungen ..", {Qt::CTRL | Qt::Key_H},
                                         [this] { form_->mnuAufzeichnungen_Click(); });
    popupTerminliste_.addSeparator();
    eintrag("mnuBeenden", "B&eenden ..", {}, [this] { form_->mnuBeenden_Click(); });
    // The keys of the others are the list's own: elsewhere in the window they mean other things.
    addActions({mnuNeuTermin_, mnuAufzeichnungen});
}

QWidget* FormWendelFenster::baueFussleiste() {
    auto* flaeche = new QWidget(this);
    auto* aufbau = new QHBoxLayout(flaeche);
    aufbau->setContentsMargins(14, 10, 14, 10);
    aufbau->setSpacing(14);

    pictureInfoBanner_ = new QLabel(flaeche);
    pictureInfoBanner_->setObjectName(QStringLiteral("PictureInfoBanner"));
    pictureInfoBanner_->setAccessibleName(QStringLiteral("Lomrick"));
    zeigeBanner();
    aufbau->addWidget(pictureInfoBanner_);

    auto* liveUpdate = new QVBoxLayout;
    liveUpdate->setSpacing(2);
    labelAnzLiveUpdateEinstellungen_ = new QLabel(flaeche);
    labelAnzLiveUpdateEinstellungen_->setObjectName(QStringLiteral("LabelAnzLiveUpdateEinstellungen"));
    labelAnzLiveUpdateEinstellungen_->setTextFormat(Qt::PlainText);
    labelAnzLiveUpdateEinstellungen_->setWordWrap(true);
    labelAnzLiveUpdateEinstellungen_->setContentsMargins(Linkschalter::kRand, 0, 0,
                                                         0);  // in line with the link
    labelAnzLiveUpdateEinstellungenStartLink_ =
        new Linkschalter(QStringLiteral("&Einstellungen des Live-Updates ändern .."), flaeche);
    labelAnzLiveUpdateEinstellungenStartLink_->setObjectName(
        QStringLiteral("LabelAnzLiveUpdateEinstellungenStartLink"));
    labelAnzLiveUpdateEinstellungenStartLink_->setAccessibleName(
        QStringLiteral("Einstellungen des Live-Updates ändern"));
    connect(labelAnzLiveUpdateEinstellungenStartLink_, &QPushButton::clicked, this,
            [this] { form_->LabelAnzLiveUpdateEinstellungenStartLink_Click(); });
    liveUpdate->addWidget(labelAnzLiveUpdateEinstellungen_);
    liveUpdate->addWidget(labelAnzLiveUpdateEinstellungenStartLink_, 0, Qt::AlignLeft);
    aufbau->addLayout(liveUpdate, 1);

    QPushButton* cmdAusblenden = knopf("cmdAusblenden", "&Ausblenden", flaeche);
    connect(cmdAusblenden, &QPushButton::clicked, this, [this] { form_->cmdAusblenden_Click(); });
    aufbau->addWidget(cmdAusblenden);
    return flaeche;
}

// As large as two and a half lines, which a desktop may scale by the font alone, and as sharp as the screen.
void FormWendelFenster::zeigeBanner() {
    const QSize groesse = kBanner * std::max(1.0, fontMetrics().height() / 16.0);
    pictureInfoBanner_->setPixmap(Symbole::symbol("infobanner").pixmap(groesse, devicePixelRatioF()));
}

// ---- what the form asks ----

Fensterhandle FormWendelFenster::hwnd() { return internalWinId(); }

void FormWendelFenster::zeigen() {
    baueAuf();
    if (isMinimized()) {
        setWindowState(windowState() & ~Qt::WindowMinimized);
        return;
    }
    if (!isVisible()) geheZurueck();
    show();
}

void FormWendelFenster::verstecken() { hide(); }

void FormWendelFenster::nachVorn() {
    if (isMinimized()) setWindowState(windowState() & ~Qt::WindowMinimized);
    Desktopfenster::aktiviereEigenes(*this);
}

void FormWendelFenster::setzeZeilen(const std::vector<Terminzeile>& zeilen,
                                    std::optional<std::size_t> auswahl) {
    if (vorab_) {
        vorab_->zeilen = zeilen;
        vorab_->auswahl = auswahl;
        return;
    }
    listViewTermineListe_->setzeZeilen(zeilen, auswahl);
    zeigeStatus();
}

void FormWendelFenster::setzeMenuezustand(bool zeileGewaehlt) {
    if (vorab_) {
        vorab_->zeileGewaehlt = zeileGewaehlt;
        return;
    }
    mnuEditieren_->setEnabled(zeileGewaehlt);
    mnuLoeschen_->setEnabled(zeileGewaehlt);
}

void FormWendelFenster::zeigePopupTerminliste(bool editierenAlsVorgabe) {
    popupTerminliste_.setDefaultAction(editierenAlsVorgabe ? mnuEditieren_ : nullptr);
    popupTerminliste_.popup(listViewTermineListe_->menuestelle());
    if (listViewTermineListe_->menueDurchTaste())
        popupTerminliste_.setActiveAction(editierenAlsVorgabe ? mnuEditieren_ : mnuNeuTermin_);
}

void FormWendelFenster::setzeLiveUpdateEinstellungen(const std::string& text) {
    if (vorab_) {
        vorab_->liveUpdateEinstellungen = text;
        return;
    }
    labelAnzLiveUpdateEinstellungen_->setText(qtZeilen(text));
    labelAnzLiveUpdateEinstellungen_->setAccessibleName(labelAnzLiveUpdateEinstellungen_->text());
}

void FormWendelFenster::setzeStatustext(const std::string& text) {
    statustext_ = qtZeilen(text).replace(u'\n', u' ');
    if (!vorab_) zeigeStatus();
}

// With nothing to report the status bar says what can be done here.
void FormWendelFenster::zeigeStatus() {
    if (!statustext_.isEmpty()) {
        statuszeile_->melde(statustext_);
        return;
    }
    const Terminzeile* zeile = listViewTermineListe_->gewaehlteZeile();
    if (zeile == nullptr) {
        statuszeile_->weiseHin(kHinweisNeu);
    } else {
        statuszeile_->weiseHin(zeile->symbol == "terminuhr2" ? kHinweisEigener : kHinweisFavoriten);
    }
}

void FormWendelFenster::rufeVorgemerktesBald() {
    QTimer::singleShot(0, this, [this] { form_->VorgemerktesAusfuehren(); });
}

void FormWendelFenster::entladen() {
    hide();
    // Not quit(): that asks the windows first, and ours hide instead of closing.
    QCoreApplication::exit(0);
}

// ---- place and size ----

void FormWendelFenster::stelleHin() {
    const QSize frei = screen()->availableGeometry().size();
    const int hoehe = fontMetrics().height();
    const QSize groesse(fontMetrics().horizontalAdvance(kMusterzeile) + 9 * hoehe,
                        kMusterzeilen * 3 * hoehe / 2);
    resize(groesse.boundedTo(frei * 0.9));
    lage_ = QSettings(merkdatei_, QSettings::IniFormat).value(kLage).toByteArray();
}

// A window that does not ask for its place is placed anew by the window manager each time it comes up. Qt
// asks for it only where the program has set it, and be it to what it is.
void FormWendelFenster::geheZurueck() {
    if (!restoreGeometry(lage_) || isMaximized() || isFullScreen()) return;
    setGeometry(imBild(geometry(), screen()->availableGeometry()));
    if (windowHandle() != nullptr) windowHandle()->setGeometry(geometry());
}

void FormWendelFenster::merkeLage() {
    lagezeit_.stop();
    const QByteArray lage = saveGeometry();
    if (lage == lage_) return;
    lage_ = lage;
    QSettings(merkdatei_, QSettings::IniFormat).setValue(kLage, lage_);
}

// Not only when the window is hidden: nobody tells a program that the power goes.
void FormWendelFenster::merkeLageBald() {
    if (isVisible()) lagezeit_.start();
}

// ---- events ----

void FormWendelFenster::closeEvent(QCloseEvent* ereignis) {
    ereignis->ignore();
    form_->fensterSchliessen();
}

void FormWendelFenster::changeEvent(QEvent* ereignis) {
    QWidget::changeEvent(ereignis);
    if (ereignis->type() == QEvent::WindowStateChange) merkeLageBald();
    // A question has come up: the menu would stay open beside it without a use.
    if (ereignis->type() == QEvent::EnabledChange && !isEnabled()) popupTerminliste_.close();
}

bool FormWendelFenster::event(QEvent* ereignis) {
    const bool erledigt = QWidget::event(ereignis);
    if (ereignis->type() == QEvent::ScreenChangeInternal && !vorab_) zeigeBanner();
    return erledigt;
}

// Hidden by the program or its user, not minimised.
void FormWendelFenster::hideEvent(QHideEvent* ereignis) {
    if (!ereignis->spontaneous()) {
        popupTerminliste_.close();
        merkeLage();
    }
    QWidget::hideEvent(ereignis);
}

void FormWendelFenster::moveEvent(QMoveEvent* ereignis) {
    QWidget::moveEvent(ereignis);
    merkeLageBald();
}

void FormWendelFenster::resizeEvent(QResizeEvent* ereignis) {
    QWidget::resizeEvent(ereignis);
    merkeLageBald();
}

void FormWendelFenster::keyPressEvent(QKeyEvent* ereignis) {
    if (ereignis->key() == Qt::Key_Escape) {
        form_->cmdAusblenden_Click();
        return;
    }
    QWidget::keyPressEvent(ereignis);
}

}  // namespace wendel
