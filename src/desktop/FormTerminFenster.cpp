#include "desktop/FormTerminFenster.h"

#include <QApplication>
#include <QButtonGroup>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QIcon>
#include <QKeyEvent>
#include <QLabel>
#include <QPainter>
#include <QPlainTextEdit>
#include <QRadioButton>
#include <QShortcut>
#include <QTextDocument>
#include <QToolButton>
#include <QVBoxLayout>
#include <QWindow>
#include <algorithm>

#include "desktop/Bildschirm.h"
#include "desktop/Desktopfenster.h"
#include "desktop/Kalenderblatt.h"
#include "desktop/Knopf.h"
#include "desktop/QtText.h"
#include "desktop/Schrift.h"
#include "desktop/Symbole.h"
#include "desktop/Zeitfeld.h"
#include "reminders/Termineingabefelder.h"

namespace wendel {
namespace {

const QString kKeinDatum = QStringLiteral("kein Datum");
const QString kLaengsterWochentag = QStringLiteral("Donnerstag");
constexpr int kTextzeilen = 3;  // what the text field shows at least
constexpr int kHoechstensWartenMs = 300;
constexpr int kBildzeilen = 5;  // height of the picture in lines of text

constexpr Zeitfeld::Regeln kTag{"00.00.0000", tagVervollstaendigt, tagVerschoben, 1, 7};
constexpr Zeitfeld::Regeln kUhrzeit{"00:00:00", uhrzeitVervollstaendigt, uhrzeitVerschoben, 1, 60};

struct Option {
    const char* name;
    const char* text;
    std::int16_t intervallwert;
};
constexpr Option kOptionen[] = {
    {"OptionNichtWiederkehrend", "&Einmalig", intervall::kEinmal},
    {"OptionTaeglichWiederkehrend", "Tä&glich wiederkehrend", intervall::kTaeglich},
    {"OptionWerkTaeglichWiederkehrend", "&Werktäglich wiederkehrend", intervall::kWerktags},
    {"OptionWoechentlichWiederkehrend", "Wö&chentlich wiederkehrend", intervall::kWoechentlich},
};

// A drawing that grows with the text beside it.
class Bild final : public QWidget {
  public:
    explicit Bild(QWidget* eltern) : QWidget(eltern) {
        setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    }
    QSize sizeHint() const override {
        const int hoehe = kBildzeilen * fontMetrics().height();
        return {hoehe + fontMetrics().height() / 2, hoehe};  // with some air to the right
    }

  protected:
    void paintEvent(QPaintEvent*) override {
        QPainter maler(this);
        bild_.paint(&maler, QRect(0, 0, height(), height()));
    }

  private:
    QIcon bild_{QStringLiteral(":/symbole/wiztermin.png")};
};

// By its access key it is chosen at once. The base class waits a tenth of a second, to look pressed: a Return
// typed meanwhile would confirm the dialog without the choice.
class Optionsknopf final : public QRadioButton {
  public:
    using QRadioButton::QRadioButton;

  protected:
    bool event(QEvent* ereignis) override {
        if (ereignis->type() != QEvent::Shortcut) return QRadioButton::event(ereignis);
        setFocus(Qt::ShortcutFocusReason);
        click();
        return true;
    }
};

QLabel* beschriftung(const char* text, QWidget* feld, QWidget* eltern) {
    auto* label = new QLabel(QString::fromUtf8(text), eltern);
    label->setBuddy(feld);
    feld->setAccessibleName(label->text().remove(u'&'));
    return label;
}

QHBoxLayout* zeile(QWidget* flaeche) {
    auto* aufbau = new QHBoxLayout(flaeche);
    aufbau->setContentsMargins(0, 0, 0, 0);
    return aufbau;
}

}  // namespace

// Several lines, since the text of a snoozed notice has some; but Return belongs to the dialog, as in its
// other fields. With Ctrl or Shift it makes a new line.
class Textfeld final : public QPlainTextEdit {
  public:
    using QPlainTextEdit::QPlainTextEdit;
    QSize sizeHint() const override {
        return {fontMetrics().averageCharWidth() * 46,
                kTextzeilen * fontMetrics().lineSpacing() + 2 * rand() + 2};
    }
    QSize minimumSizeHint() const override {
        return {fontMetrics().averageCharWidth() * 20, sizeHint().height()};
    }

    // Between the field's edge and its text.
    int rand() const { return frameWidth() + static_cast<int>(document()->documentMargin()); }

    // The base class's own reading turns non-breaking blanks into plain ones.
    QString zeilen() const {
        QString text = document()->toRawText();
        for (const char16_t trenner : {u'\u2028', u'\u2029', u'\uFDD0', u'\uFDD1'})
            text.replace(QChar(trenner), u'\n');
        return text;
    }

  protected:
    void keyPressEvent(QKeyEvent* ereignis) override {
        const bool zeilenende = ereignis->key() == Qt::Key_Return || ereignis->key() == Qt::Key_Enter;
        if (!zeilenende) {
            QPlainTextEdit::keyPressEvent(ereignis);
        } else if ((ereignis->modifiers() & (Qt::ControlModifier | Qt::ShiftModifier)) != 0) {
            textCursor().insertBlock();
            ensureCursorVisible();
        } else {
            ereignis->ignore();
        }
    }
};

FormTerminFenster::FormTerminFenster(QWidget& liste)
    : QDialog(nullptr,
              Qt::Dialog | Qt::CustomizeWindowHint | Qt::WindowTitleHint | Qt::WindowCloseButtonHint),
      liste_(liste) {
    setObjectName(QStringLiteral("FormTermin"));
    setWindowTitle(qtText(FormTermin::kFenstertitel));
    setAccessibleName(windowTitle());
}

void FormTerminFenster::baueAuf() {
    if (textDatum_ != nullptr) return;
    setWindowIcon(Symbole::symbol("terminuhr2"));
    setFont(schrift(9.5));

    auto* gitter = new QGridLayout(this);
    const int luft = fontMetrics().height();
    gitter->setContentsMargins(luft, luft, luft, luft);
    gitter->setVerticalSpacing(luft / 2);
    gitter->setHorizontalSpacing(luft / 2);
    auto* pictureWizTermin = new Bild(this);
    pictureWizTermin->setObjectName(QStringLiteral("PictureWizTermin"));
    pictureWizTermin->setAccessibleName(windowTitle());
    gitter->addWidget(pictureWizTermin, 0, 0, 3, 1, Qt::AlignTop);
    baueFelder(*gitter);
}

// In the order in which Tab walks them.
void FormTerminFenster::baueFelder(QGridLayout& gitter) {
    QWidget* tag = baueTag();
    gitter.addWidget(beschriftung("&Datum", textDatum_, this), 0, 1);
    gitter.addWidget(tag, 0, 2);
    QWidget* uhrzeit = baueUhrzeit();
    gitter.addWidget(beschriftung("&Uhrzeit", textUhrzeit_, this), 1, 1);
    gitter.addWidget(uhrzeit, 1, 2);

    textInhalt_ = new Textfeld(this);
    textInhalt_->setObjectName(QStringLiteral("TextInhalt"));
    textInhalt_->setTabChangesFocus(true);
    QLabel* text = beschriftung("&Text", textInhalt_, this);
    text->setContentsMargins(0, textInhalt_->rand(), 0, 0);  // beside the first line
    gitter.addWidget(text, 2, 1, Qt::AlignTop);
    gitter.addWidget(textInhalt_, 2, 2);
    gitter.setRowStretch(2, 1);
    gitter.setColumnStretch(2, 1);
    gitter.addWidget(baueWiederholung(), 3, 0, 1, 3);
    gitter.addWidget(baueKnoepfe(), 4, 0, 1, 3);
}

QWidget* FormTerminFenster::baueTag() {
    auto* flaeche = new QWidget(this);
    QHBoxLayout* aufbau = zeile(flaeche);
    textDatum_ = new Zeitfeld(kTag, flaeche);
    textDatum_->setObjectName(QStringLiteral("TextDatum"));
    connect(textDatum_, &QLineEdit::textChanged, this, [this] { zeigeWochentag(); });
    aufbau->addWidget(textDatum_);

    auto* cmdKalender = new QToolButton(flaeche);
    cmdKalender->setObjectName(QStringLiteral("cmdKalender"));
    cmdKalender->setIcon(Symbole::symbol("kalender"));
    cmdKalender->setToolTip(QStringLiteral("Kalender (F4 oder Alt+Pfeil nach unten)"));
    cmdKalender->setAccessibleName(QStringLiteral("Kalender"));
    cmdKalender->setFocusPolicy(Qt::NoFocus);  // the keys of the date field do the same
    connect(cmdKalender, &QToolButton::clicked, this, [this] { oeffneKalender(); });
    aufbau->addWidget(cmdKalender);

    for (const QKeySequence& tasten : {QKeySequence(Qt::Key_F4), QKeySequence(Qt::ALT | Qt::Key_Down)}) {
        auto* kuerzel = new QShortcut(tasten, textDatum_);
        kuerzel->setContext(Qt::WidgetShortcut);
        connect(kuerzel, &QShortcut::activated, this, [this] { oeffneKalender(); });
    }
    kalender_ = new Kalenderblatt(this, [this](QDate gewaehlt) {
        textDatum_->setFocus(Qt::OtherFocusReason);
        textDatum_->uebernimm(
            qtText(tagAlsEingabe(DateSerial(gewaehlt.year(), gewaehlt.month(), gewaehlt.day()))));
    });

    labelWochentag_ = new QLabel(flaeche);
    labelWochentag_->setObjectName(QStringLiteral("LabelWochentag"));
    labelWochentag_->setMinimumWidth(labelWochentag_->fontMetrics().horizontalAdvance(kLaengsterWochentag));
    aufbau->addWidget(labelWochentag_, 1);
    return flaeche;
}

QWidget* FormTerminFenster::baueUhrzeit() {
    auto* flaeche = new QWidget(this);
    QHBoxLayout* aufbau = zeile(flaeche);
    textUhrzeit_ = new Zeitfeld(kUhrzeit, flaeche);
    textUhrzeit_->setObjectName(QStringLiteral("TextUhrzeit"));
    aufbau->addWidget(textUhrzeit_);
    aufbau->addWidget(new QLabel(QStringLiteral("Uhr"), flaeche), 1);
    return flaeche;
}

QGroupBox* FormTerminFenster::baueWiederholung() {
    auto* frameTermin = new QGroupBox(QStringLiteral("Wiederholung"), this);
    frameTermin->setObjectName(QStringLiteral("FrameTermin"));
    frameTermin->setAccessibleName(frameTermin->title());
    auto* gitter = new QGridLayout(frameTermin);
    wiederholung_ = new QButtonGroup(this);
    int stelle = 0;
    for (const Option& option : kOptionen) {
        auto* neu = new Optionsknopf(QString::fromUtf8(option.text), frameTermin);
        neu->setObjectName(QString::fromUtf8(option.name));
        neu->setAccessibleName(neu->text().remove(u'&'));
        wiederholung_->addButton(neu, option.intervallwert);
        gitter->addWidget(neu, stelle % 2, stelle / 2);
        ++stelle;
    }
    return frameTermin;
}

QWidget* FormTerminFenster::baueKnoepfe() {
    auto* flaeche = new QWidget(this);
    QHBoxLayout* aufbau = zeile(flaeche);
    aufbau->addStretch(1);
    QPushButton* cmdOK = knopf("cmdOK", "&OK", flaeche);
    cmdOK->setDefault(true);
    connect(cmdOK, &QPushButton::clicked, this, [this] { form_->cmdOK_Click(); });
    aufbau->addWidget(cmdOK);
    QPushButton* cmdCancel = knopf("cmdCancel", "&Abbrechen", flaeche);
    connect(cmdCancel, &QPushButton::clicked, this, [this] { form_->cmdCancel_Click(); });
    aufbau->addWidget(cmdCancel);
    return flaeche;
}

void FormTerminFenster::setzeEingabe(const Termineingabe& eingabe) {
    baueAuf();
    textDatum_->setText(qtText(eingabe.TextDatum));
    textUhrzeit_->setText(qtText(eingabe.TextUhrzeit));
    inhalt_ = eingabe.TextInhalt;
    textInhalt_->setPlainText(qtText(inhalt_));
    inhaltImFeld_ = textInhalt_->zeilen();
    if (QAbstractButton* option = wiederholung_->button(eingabe.Intervall)) option->setChecked(true);
}

Termineingabe FormTerminFenster::eingabe() const {
    QString inhalt = textInhalt_->zeilen();
    // The field knows one kind of line end only; a text that the user has left alone stays as it was.
    const bool unveraendert = inhalt == inhaltImFeld_;
    inhalt.replace(u'\n', QStringLiteral("\r\n"));
    return {logikText(textDatum_->text()), logikText(textUhrzeit_->text()),
            unveraendert ? inhalt_ : logikText(inhalt),
            static_cast<std::int16_t>(wiederholung_->checkedId())};
}

void FormTerminFenster::zeigeWochentag() {
    const auto tag = tagAusEingabe(logikText(textDatum_->text()));
    labelWochentag_->setText(tag ? qtText(Format(*tag, "dddd")) : kKeinDatum);
    textDatum_->setAccessibleDescription(labelWochentag_->text());
}

void FormTerminFenster::oeffneKalender() {
    const auto tag = tagAusEingabe(textDatum_->letzterGueltiger());
    if (!tag) return;
    const Datumsteile teile = zerlegt(*tag);
    kalender_->klappeAuf(*textDatum_, QDate(teile.jahr, teile.monat, teile.tag));
}

// Where a list that has only just been shown stands is known when the window manager has placed it.
void FormTerminFenster::warteAufListe() {
    QElapsedTimer gewartet;
    gewartet.start();
    while (liste_.isVisible() && !liste_.windowHandle()->isExposed() &&
           gewartet.elapsed() < kHoechstensWartenMs)
        QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents, kHoechstensWartenMs);
}

void FormTerminFenster::stelleHin() {
    resize(sizeHint().boundedTo(flaecheBei(liste_).size()));
    stelleZu(*this, liste_);
    winId();  // makes the window handle
    windowHandle()->setTransientParent(istZuSehen(liste_) ? liste_.windowHandle() : nullptr);
}

void FormTerminFenster::zeigenModal(Terminfeld anfang) {
    QEventLoop schleife;
    schleife_ = &schleife;
    sperre_(true);
    warteAufListe();
    stelleHin();
    textInhalt_->moveCursor(QTextCursor::End);
    zumFeld(anfang);
    show();
    nachVorn();
    schleife.exec();
    schleife_ = nullptr;
    hide();  // the program's end comes without verbergen()
    sperre_(false);
}

void FormTerminFenster::verbergen() {
    hide();
    if (schleife_ != nullptr) schleife_->quit();
}

void FormTerminFenster::nachVorn() {
    QWidget* kasten = QApplication::activeModalWidget();
    QWidget& fenster = kasten != nullptr ? *kasten : *this;
    if (!fenster.isVisible()) return;
    if (fenster.isMinimized()) fenster.showNormal();
    Desktopfenster::aktiviereEigenes(fenster);
}

void FormTerminFenster::zumFeld(Terminfeld feld) {
    switch (feld) {
        case Terminfeld::Datum:
            textDatum_->setFocus();
            textDatum_->selectAll();
            break;
        case Terminfeld::Uhrzeit:
            textUhrzeit_->setFocus();
            textUhrzeit_->selectAll();
            break;
        case Terminfeld::Inhalt:
            textInhalt_->setFocus();
            textInhalt_->selectAll();
            break;
    }
}

// Esc and the close box. A box in front of the dialog must be answered first.
void FormTerminFenster::reject() {
    if (isEnabled()) form_->cmdCancel_Click();
}

}  // namespace wendel
