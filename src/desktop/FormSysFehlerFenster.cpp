#include "desktop/FormSysFehlerFenster.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPlainTextEdit>
#include <QRegularExpression>
#include <QScrollArea>
#include <QScrollBar>
#include <QStyle>
#include <QVBoxLayout>
#include <algorithm>

#include "desktop/Bildschirm.h"
#include "desktop/Knopf.h"
#include "desktop/QtText.h"
#include "desktop/Schrift.h"
#include "desktop/Symbole.h"

namespace wendel {
namespace {

constexpr int kTwipsJePixel = 15;
// In heights of the font.
constexpr int kBreite = 30;
constexpr int kBildhoehe = 3;
constexpr int kDetailzeilen = 8;
// A message that is longer than this part of the screen scrolls.
constexpr int kHoechstensTeil = 3;
constexpr int kLangesWort = 30;

// A path or a command line is one long word to the toolkit, which would cut it at the window's edge: such a
// word may break anywhere.
QString umbrechbar(const QString& text) {
    static const QRegularExpression langesWort(QStringLiteral("\\S{%1,}").arg(kLangesWort));
    QString ergebnis;
    qsizetype ende = 0;
    for (const QRegularExpressionMatch& wort : langesWort.globalMatch(text)) {
        ergebnis += QStringView(text).mid(ende, wort.capturedStart() - ende);
        for (const QChar zeichen : wort.capturedView())
            (ergebnis += zeichen) += zeichen.isHighSurrogate() ? QString() : QStringLiteral("\u200B");
        ende = wort.capturedEnd();
    }
    return ergebnis += QStringView(text).mid(ende);
}

}  // namespace

FormSysFehlerFenster::FormSysFehlerFenster()
    : QDialog(nullptr,
              Qt::Dialog | Qt::CustomizeWindowHint | Qt::WindowTitleHint | Qt::WindowCloseButtonHint) {
    setObjectName(QStringLiteral("FormSysFehler"));
    setWindowIcon(Symbole::symbol("wendel"));
    setFont(schrift(9.5));
    meldung_ = baueMeldung();
    knoepfe_ = baueKnoepfe();
    details_ = baueDetails();

    auto* aufbau = new QVBoxLayout(this);
    aufbau->setContentsMargins(0, 0, 0, 0);
    aufbau->setSpacing(0);
    aufbau->setSizeConstraint(QLayout::SetNoConstraint);  // the form says how high the window is
    aufbau->addWidget(meldung_);
    aufbau->addWidget(knoepfe_);
    aufbau->addWidget(details_, 1);
}

QWidget* FormSysFehlerFenster::baueMeldung() {
    auto* flaeche = new QWidget(this);
    auto* aufbau = new QHBoxLayout(flaeche);
    const int luft = fontMetrics().height();
    aufbau->setContentsMargins(luft, luft, luft, luft / 2);
    aufbau->setSpacing(luft);
    auto* pictureAnimation = new QLabel(flaeche);
    pictureAnimation->setObjectName(QStringLiteral("PictureAnimation"));
    pictureAnimation->setAccessibleName(QStringLiteral("Warnung"));
    const int bild = kBildhoehe * luft;
    pictureAnimation->setPixmap(
        style()->standardIcon(QStyle::SP_MessageBoxWarning, nullptr, this).pixmap(QSize(bild, bild)));
    aufbau->addWidget(pictureAnimation, 0, Qt::AlignTop);

    labelText_ = new QLabel(flaeche);
    labelText_->setObjectName(QStringLiteral("LabelText"));
    labelText_->setTextFormat(Qt::PlainText);
    labelText_->setWordWrap(true);
    labelText_->setAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    textbereich_ = new QScrollArea(flaeche);
    textbereich_->setFrameShape(QFrame::NoFrame);
    textbereich_->setWidgetResizable(true);
    textbereich_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    textbereich_->setFocusPolicy(Qt::NoFocus);
    textbereich_->setWidget(labelText_);
    aufbau->addWidget(textbereich_, 1);
    return flaeche;
}

QWidget* FormSysFehlerFenster::baueKnoepfe() {
    auto* flaeche = new QWidget(this);
    auto* aufbau = new QHBoxLayout(flaeche);
    const int luft = fontMetrics().height();
    aufbau->setContentsMargins(luft, luft / 2, luft, luft);
    aufbau->setSpacing(luft / 2);
    aufbau->addStretch(1);
    cmdWiederholen_ = knopf("cmdWiederholen", "&Wiederholen", flaeche);
    connect(cmdWiederholen_, &QPushButton::clicked, this, [this] { form_->cmdWiederholen_Click(); });
    cmdDetails_ = knopf("cmdDetails", "&Details ..", flaeche);
    connect(cmdDetails_, &QPushButton::clicked, this, [this] { form_->cmdDetails_Click(); });
    cmdOK_ = knopf("cmdOK", "&OK", flaeche);
    cmdOK_->setDefault(true);
    connect(cmdOK_, &QPushButton::clicked, this, [this] { form_->cmdOK_Click(); });
    for (QPushButton* neu : {cmdWiederholen_, cmdDetails_, cmdOK_})
        aufbau->addWidget(neu);
    return flaeche;
}

QWidget* FormSysFehlerFenster::baueDetails() {
    auto* flaeche = new QWidget(this);
    auto* aufbau = new QVBoxLayout(flaeche);
    const int luft = fontMetrics().height();
    aufbau->setContentsMargins(luft, 0, luft, luft);
    aufbau->setSpacing(luft / 4);
    auto* labelDetails = new QLabel(QStringLiteral("&Technische Einzelheiten:"), flaeche);
    labelDetails->setObjectName(QStringLiteral("LabelDetails"));
    labelDetails->setAccessibleName(labelDetails->text().remove(u'&'));
    aufbau->addWidget(labelDetails);
    textDetails_ = new QPlainTextEdit(flaeche);
    textDetails_->setObjectName(QStringLiteral("TextDetails"));
    textDetails_->setAccessibleName(labelDetails->accessibleName());
    textDetails_->setReadOnly(true);
    textDetails_->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    textDetails_->setTabChangesFocus(true);
    textDetails_->setWordWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    labelDetails->setBuddy(textDetails_);
    aufbau->addWidget(textDetails_, 1);
    return flaeche;
}

void FormSysFehlerFenster::setzeCaption(const std::string& titel) {
    setWindowTitle(qtText(titel));
    setAccessibleName(windowTitle());
}

void FormSysFehlerFenster::setzeLabelText(const std::string& text) {
    labelText_->setText(umbrechbar(qtZeilen(text)));
    labelText_->setAccessibleName(qtZeilen(text));
    textbereich_->verticalScrollBar()->setValue(0);
}

void FormSysFehlerFenster::setzeTextDetails(const std::string& text) {
    textDetails_->setPlainText(qtZeilen(text));
}

void FormSysFehlerFenster::setzeCmdDetailsCaption(const std::string& text) {
    cmdDetails_->setText(qtText(text));
}

void FormSysFehlerFenster::setzeCmdWiederholenSichtbar(bool sichtbar) {
    cmdWiederholen_->setVisible(sichtbar);
}

// ---- size ----

int FormSysFehlerFenster::breite() const {
    return std::min(kBreite * fontMetrics().height(), freieFlaeche().width());
}

int FormSysFehlerFenster::kopfhoehe() const {
    const int luft = fontMetrics().height();
    const int neben = kBildhoehe * luft + 3 * luft;  // the picture and the space around both
    const int gewuenscht = std::max(labelText_->heightForWidth(breite() - neben), kBildhoehe * luft);
    const int hoehe = std::min(gewuenscht, freieFlaeche().height() / kHoechstensTeil);
    textbereich_->setVerticalScrollBarPolicy(gewuenscht > hoehe ? Qt::ScrollBarAlwaysOn
                                                                : Qt::ScrollBarAlwaysOff);
    textbereich_->setFixedHeight(hoehe);
    return meldung_->sizeHint().height() + knoepfe_->sizeHint().height();
}

SysFehlerMasse FormSysFehlerFenster::masse() {
    const int kopf = kopfhoehe();
    const int zeilen = kDetailzeilen * fontMetrics().lineSpacing();
    const int details = zeilen + 3 * fontMetrics().height();
    return {.form = {.skalenmodus = ModulFenster::kSkalenmodusPixel,
                     .aussenhoeheTwips = frameGeometry().height() * kTwipsJePixel,
                     .innenhoehe = height(),
                     .twipsJePixel = kTwipsJePixel},
            .unterkanteKnoepfe = kopf * kTwipsJePixel,
            .unterkanteTextDetails = (kopf + details) * kTwipsJePixel};
}

void FormSysFehlerFenster::setzeHoehe(int twips) {
    const int rahmen = frameGeometry().height() - height();
    const int innen = twips / kTwipsJePixel - rahmen;
    details_->setVisible(innen > kopfhoehe());
    setFixedSize(breite(), innen);
    if (isVisible()) bleibeImBild();
}

// One that has grown downwards beyond the screen is moved up.
void FormSysFehlerFenster::bleibeImBild() {
    const QRect frei = freieFlaeche();
    const int zuViel = frameGeometry().bottom() - frei.bottom();
    if (zuViel > 0) move(x(), std::max(frei.top(), y() - zuViel));
}

// ---- coming and going ----

void FormSysFehlerFenster::zeigen() {
    setAttribute(Qt::WA_ShowWithoutActivating);
    setWindowModality(Qt::NonModal);
    if (!isVisible()) {
        cmdOK_->setFocus(Qt::OtherFocusReason);
        move(inDerMitte(size(), freieFlaeche()));
    }
    show();
    raise();
}

// Modal to its own window only: the toolkit's application-wide modality would take the mouse from notices
// too.
void FormSysFehlerFenster::zeigenModal() {
    setAttribute(Qt::WA_ShowWithoutActivating, false);
    setWindowModality(Qt::WindowModal);
    cmdOK_->setFocus(Qt::OtherFocusReason);
    move(inDerMitte(size(), freieFlaeche()));
    sperre_(true);
    exec();
    sperre_(false);
}

void FormSysFehlerFenster::verbergen() { hide(); }

void FormSysFehlerFenster::reject() { form_->Schliessen(); }

}  // namespace wendel
