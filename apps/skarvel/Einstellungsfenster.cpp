#include "Einstellungsfenster.h"

#include <QFileDialog>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>
#include <algorithm>
#include <cstddef>
#include <utility>

#include "desktop/QtText.h"
#include "desktop/Symbole.h"

namespace wendel::skarvel {
namespace {

constexpr int kMeisteStunden = 24 * 31;
constexpr int kModusTage = 2, kModusStunden = 3;
const std::array<const char*, 7> kTage = {"So", "Mo", "Di", "Mi", "Do", "Fr", "Sa"};

QPushButton* knopf(QWidget* fenster, const char* name, const char* text, std::function<void()> tue) {
    auto* neu = new QPushButton(QString::fromUtf8(text), fenster);
    neu->setObjectName(QString::fromUtf8(name));
    QObject::connect(neu, &QPushButton::clicked, fenster, std::move(tue));
    return neu;
}

}  // namespace

Einstellungsfenster::Einstellungsfenster(const Updateeinstellungen& bisher, Uebernahme uebernommen)
    : uebernommen_(std::move(uebernommen)) {
    setWindowTitle(QStringLiteral("Drumlet"));
    setWindowIcon(Symbole::symbol("wendel"));
    auto* alles = new QVBoxLayout(this);
    alles->addWidget(quellengruppe());
    alles->addWidget(zeitgruppe());
    alles->addStretch();
    alles->addLayout(knopfzeile());
    fuelle(bisher);
    connect(&aktiv_, &QCheckBox::toggled, this, [this] { zeigePassendes(); });
    connect(&modus_, &QComboBox::currentIndexChanged, this, [this] { zeigePassendes(); });
    zeigePassendes();
}

QWidget* Einstellungsfenster::quellengruppe() {
    auto* gruppe = new QGroupBox(QStringLiteral("Quelle (XMLTV)"));
    quelle_.setObjectName(QStringLiteral("TextXmltvQuelle"));
    quelle_.setMinimumWidth(320);
    befehl_.setObjectName(QStringLiteral("TextXmltvBefehl"));
    befehl_.setPlaceholderText(QStringLiteral("tv_grab_... --days 14"));
    auto* zeile = new QHBoxLayout;
    zeile->addWidget(&quelle_);
    zeile->addWidget(knopf(this, "cmdDatei", "&Datei ..", [this] { waehle(false); }));
    zeile->addWidget(knopf(this, "cmdOrdner", "O&rdner ..", [this] { waehle(true); }));
    auto* formular = new QFormLayout(gruppe);
    formular->addRow(QStringLiteral("Datei oder &Ordner:"), zeile);
    formular->addRow(QStringLiteral("oder &Befehl:"), &befehl_);
    formular->addRow(new QLabel(QStringLiteral("Ein Befehl, der XMLTV ausgibt, hat Vorrang vor der Datei.")));
    if (auto* text = qobject_cast<QLabel*>(formular->labelForField(zeile))) text->setBuddy(&quelle_);
    return gruppe;
}

QWidget* Einstellungsfenster::zeitgruppe() {
    auto* gruppe = new QGroupBox(QStringLiteral("Automatisches Live-Update"));
    aktiv_.setObjectName(QStringLiteral("CheckLiveUpdate"));
    aktiv_.setText(QStringLiteral("Lomrick &startet das Live-Update"));
    modus_.setObjectName(QStringLiteral("ComboModus"));
    modus_.setAccessibleName(QStringLiteral("Wann das Live-Update startet"));
    modus_.addItems({QStringLiteral("einmal am Tag, sobald eine Verbindung besteht"),
                     QStringLiteral("bei jeder neuen Verbindung"), QStringLiteral("an diesen Tagen"),
                     QStringLiteral("nach so vielen Stunden")});
    auto* tage = new QHBoxLayout(&tagezeile_);
    tage->setContentsMargins(0, 0, 0, 0);
    for (std::size_t tag = 0; tag < tage_.size(); ++tag) {
        tage_[tag].setText(QString::fromUtf8(kTage[tag]));
        tage_[tag].setObjectName(QStringLiteral("CheckTag%1").arg(tag + 1));
        tage->addWidget(&tage_[tag]);
    }
    uhrzeit_.setObjectName(QStringLiteral("TextUhrzeit"));
    uhrzeit_.setAccessibleName(QStringLiteral("Uhrzeit"));
    uhrzeit_.setDisplayFormat(QStringLiteral("HH:mm"));
    tage->addWidget(new QLabel(QStringLiteral("um")));
    tage->addWidget(&uhrzeit_);
    tage->addWidget(new QLabel(QStringLiteral("Uhr")));
    tage->addStretch();
    stunden_.setObjectName(QStringLiteral("TextStunden"));
    stunden_.setAccessibleName(QStringLiteral("Stunden"));
    stunden_.setRange(1, kMeisteStunden);
    auto* stunden = new QHBoxLayout(&stundenzeile_);
    stunden->setContentsMargins(0, 0, 0, 0);
    stunden->addWidget(&stunden_);
    stunden->addWidget(new QLabel(QStringLiteral("Stunden")));
    stunden->addStretch();
    versteckt_.setObjectName(QStringLiteral("CheckVersteckt"));
    versteckt_.setText(QStringLiteral("ohne &Fenster"));
    auto* zeilen = new QVBoxLayout(gruppe);
    for (QWidget* zeile :
         std::initializer_list<QWidget*>{&aktiv_, &modus_, &tagezeile_, &stundenzeile_, &versteckt_})
        zeilen->addWidget(zeile);
    return gruppe;
}

QBoxLayout* Einstellungsfenster::knopfzeile() {
    auto* zeile = new QHBoxLayout;
    zeile->addWidget(knopf(this, "cmdJetzt", "&Jetzt aktualisieren", [this] { uebernimm(true); }));
    zeile->addStretch();
    auto* ok = knopf(this, "cmdOK", "O&K", [this] { uebernimm(false); });
    ok->setDefault(true);
    zeile->addWidget(ok);
    zeile->addWidget(knopf(this, "cmdAbbrechen", "&Abbrechen", [this] { close(); }));
    return zeile;
}

void Einstellungsfenster::fuelle(const Updateeinstellungen& e) {
    quelle_.setText(qtText(e.quelle));
    befehl_.setText(qtText(e.befehl));
    aktiv_.setChecked(e.aktiv);
    modus_.setCurrentIndex(std::clamp<int>(e.modus, 0, modus_.count() - 1));
    for (std::size_t tag = 0; tag < tage_.size(); ++tag)
        tage_[tag].setChecked(e.tage[tag]);
    const QTime uhrzeit = QTime::fromString(qtText(e.uhrzeit), QStringLiteral("H:m"));
    uhrzeit_.setTime(uhrzeit.isValid() ? uhrzeit : QTime(6, 0));
    stunden_.setValue(e.stunden);
    versteckt_.setChecked(e.versteckt);
}

Updateeinstellungen Einstellungsfenster::gelesen() const {
    Updateeinstellungen e;
    e.quelle = logikText(quelle_.text().trimmed());
    e.befehl = logikText(befehl_.text().trimmed());
    e.aktiv = aktiv_.isChecked();
    e.modus = static_cast<std::int16_t>(modus_.currentIndex());
    for (std::size_t tag = 0; tag < tage_.size(); ++tag)
        e.tage[tag] = tage_[tag].isChecked();
    e.uhrzeit = logikText(uhrzeit_.time().toString(QStringLiteral("HH:mm")));
    e.stunden = static_cast<std::int16_t>(stunden_.value());
    e.versteckt = versteckt_.isChecked();
    return e;
}

void Einstellungsfenster::zeigePassendes() {
    for (QWidget* zeile : std::initializer_list<QWidget*>{&modus_, &tagezeile_, &stundenzeile_, &versteckt_})
        zeile->setEnabled(aktiv_.isChecked());
    tagezeile_.setVisible(modus_.currentIndex() == kModusTage);
    stundenzeile_.setVisible(modus_.currentIndex() == kModusStunden);
}

void Einstellungsfenster::waehle(bool ordner) {
    const QString gewaehlt =
        ordner ? QFileDialog::getExistingDirectory(this, QStringLiteral("Ordner mit XMLTV-Dateien"),
                                                   quelle_.text())
               : QFileDialog::getOpenFileName(this, QStringLiteral("XMLTV-Datei"), quelle_.text(),
                                              QStringLiteral("XMLTV (*.xml *.xmltv *.gz);;Alle Dateien (*)"));
    if (!gewaehlt.isEmpty()) quelle_.setText(gewaehlt);
}

void Einstellungsfenster::uebernimm(bool gleichAktualisieren) {
    if (uebernommen_(gelesen(), gleichAktualisieren)) close();
}

void Einstellungsfenster::keyPressEvent(QKeyEvent* ereignis) {
    switch (ereignis->key()) {
        case Qt::Key_Escape: close(); break;
        case Qt::Key_Return:
        case Qt::Key_Enter: uebernimm(false); break;
        default: QWidget::keyPressEvent(ereignis);
    }
}

}  // namespace wendel::skarvel
