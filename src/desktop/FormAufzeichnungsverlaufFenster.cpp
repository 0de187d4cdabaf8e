#include "desktop/FormAufzeichnungsverlaufFenster.h"

#include <QCloseEvent>
#include <QFrame>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QStandardItemModel>
#include <QStyle>
#include <QVBoxLayout>

#include "desktop/Bildschirm.h"
#include "desktop/Desktopfenster.h"
#include "desktop/Knopf.h"
#include "desktop/Listenstil.h"
#include "desktop/QtText.h"
#include "desktop/Schrift.h"
#include "desktop/Symbole.h"

namespace wendel {
namespace {

enum Spalte : int { kZeit, kSender, kSendung, kErgebnis };

// Texts that should fit into their columns.
const QString kMusterzeit = QStringLiteral("88.88.8888 88:88");
const QString kMustersender = QStringLiteral("MUSTERSENDER");
const QString kMustersendung = QStringLiteral("Eine Sendung mit längerem Titel");
const QString kMusterergebnis = QStringLiteral("aufgezeichnet, 88 min verspätet begonnen");
constexpr int kMusterzeilen = 12;
constexpr int kErgebniszeilen = 3;

QList<QStandardItem*> zeile(const Aufzeichnungsverlaufszeile& inhalt, const QIcon& symbol) {
    QList<QStandardItem*> felder;
    for (const std::string* text : {&inhalt.zeit, &inhalt.sender, &inhalt.sendung, &inhalt.ergebnis}) {
        auto* feld = new QStandardItem(qtText(*text));
        feld->setEditable(false);
        feld->setToolTip(feld->text());
        felder << feld;
    }
    felder[kZeit]->setIcon(symbol);
    return felder;
}

}  // namespace

FormAufzeichnungsverlaufFenster::FormAufzeichnungsverlaufFenster(QWidget& liste) : terminliste_(liste) {
    setObjectName(QStringLiteral("FormAufzeichnungsverlauf"));
    setWindowTitle(QStringLiteral("Lomrick - Aufzeichnungen"));
    setAccessibleName(windowTitle());
}

void FormAufzeichnungsverlaufFenster::baueAuf() {
    if (modell_ != nullptr) return;
    setWindowIcon(Symbole::symbol("wendel"));
    setFont(schrift(9.5));

    auto* aufbau = new QVBoxLayout(this);
    aufbau->setContentsMargins(0, 0, 0, 0);
    aufbau->setSpacing(0);
    baueListe();
    aufbau->addWidget(listViewAufzeichnungen_, 1);
    auto* trennung = new QFrame(this);
    trennung->setFrameStyle(QFrame::HLine | QFrame::Sunken);
    aufbau->addWidget(trennung);
    aufbau->addWidget(baueLeiste());
    connect(listViewAufzeichnungen_->selectionModel(), &QItemSelectionModel::currentRowChanged, this,
            [this] { zeigeGewaehlte(); });
}

QWidget* FormAufzeichnungsverlaufFenster::baueLeiste() {
    auto* flaeche = new QWidget(this);
    auto* leiste = new QHBoxLayout(flaeche);
    const int luft = fontMetrics().height();
    leiste->setContentsMargins(luft, luft * 2 / 3, luft, luft * 2 / 3);
    leiste->setSpacing(luft);
    labelErgebnis_ = new QLabel(flaeche);
    labelErgebnis_->setObjectName(QStringLiteral("LabelErgebnis"));
    labelErgebnis_->setTextFormat(Qt::PlainText);
    labelErgebnis_->setWordWrap(true);
    labelErgebnis_->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    labelErgebnis_->setFixedHeight(kErgebniszeilen * fontMetrics().lineSpacing());
    leiste->addWidget(labelErgebnis_, 1);
    QPushButton* cmdSchliessen = knopf("cmdSchließen", "&Schließen", flaeche);
    connect(cmdSchliessen, &QPushButton::clicked, this, [this] { form_->schliessen(); });
    leiste->addWidget(cmdSchliessen, 0, Qt::AlignVCenter);
    return flaeche;
}

void FormAufzeichnungsverlaufFenster::baueListe() {
    modell_ = new QStandardItemModel(this);
    modell_->setHorizontalHeaderLabels({QStringLiteral("Zeit"), QStringLiteral("Sender"),
                                        QStringLiteral("Sendung"), QStringLiteral("Ergebnis")});
    listViewAufzeichnungen_ = new Verlaufsliste(this);
    listViewAufzeichnungen_->setObjectName(QStringLiteral("ListViewAufzeichnungen"));
    listViewAufzeichnungen_->setAccessibleName(QStringLiteral("Aufzeichnungen"));
    listViewAufzeichnungen_->setModel(modell_);
    listViewAufzeichnungen_->setItemDelegate(new Zeilenmaler(listViewAufzeichnungen_));
    richteEin(*listViewAufzeichnungen_);

    const QFontMetrics metrik = fontMetrics();
    const int rand = wendel::luft(metrik), bild = bildgroesse(metrik);
    listViewAufzeichnungen_->setIconSize(QSize(bild, bild));
    QHeaderView& kopf = *listViewAufzeichnungen_->header();
    kopf.setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    kopf.setMinimumHeight(metrik.height() + rand + 2);
    kopf.setSectionResizeMode(QHeaderView::Interactive);
    kopf.setSectionResizeMode(kErgebnis, QHeaderView::Stretch);
    kopf.resizeSection(kZeit, metrik.horizontalAdvance(kMusterzeit) + bild + 5 * rand);
    kopf.resizeSection(kSender, metrik.horizontalAdvance(kMustersender) + 3 * rand);
    kopf.resizeSection(kSendung, metrik.horizontalAdvance(kMustersendung) + 3 * rand);
    const int breite = kopf.sectionSize(kZeit) + kopf.sectionSize(kSender) + kopf.sectionSize(kSendung) +
                       metrik.horizontalAdvance(kMusterergebnis) + 6 * rand;
    resize(QSize(breite, kMusterzeilen * 2 * metrik.height()).boundedTo(freieFlaeche().size() * 0.9));
}

void FormAufzeichnungsverlaufFenster::setzeZeilen(const std::vector<Aufzeichnungsverlaufszeile>& zeilen) {
    baueAuf();
    const QIcon gelungen = Symbole::symbol("terminaufz");
    const QIcon misslungen = style()->standardIcon(QStyle::SP_MessageBoxWarning, nullptr, this);
    modell_->removeRows(0, modell_->rowCount());
    for (const Aufzeichnungsverlaufszeile& inhalt : zeilen)
        modell_->appendRow(zeile(inhalt, inhalt.gelungen ? gelungen : misslungen));
    // The newest one is what the user has come for; arrow keys go on from it.
    listViewAufzeichnungen_->setCurrentIndex(modell_->index(0, 0));
    listViewAufzeichnungen_->viewport()->update();
    zeigeGewaehlte();
}

// Why one has failed may be longer than its column is wide.
void FormAufzeichnungsverlaufFenster::zeigeGewaehlte() {
    const QModelIndex zeile = listViewAufzeichnungen_->currentIndex();
    const auto feld = [&](Spalte spalte) { return zeile.siblingAtColumn(spalte).data().toString(); };
    labelErgebnis_->setText(zeile.isValid() ? feld(kSendung) + QStringLiteral(": ") + feld(kErgebnis)
                                            : QString());
    labelErgebnis_->setAccessibleName(labelErgebnis_->text());
    labelErgebnis_->setToolTip(labelErgebnis_->text());
}

void FormAufzeichnungsverlaufFenster::zeigen() {
    if (!isVisible()) {
        listViewAufzeichnungen_->setFocus(Qt::OtherFocusReason);
        stelleZu(*this, terminliste_);
    }
    if (isMinimized()) setWindowState(windowState() & ~Qt::WindowMinimized);
    show();
    Desktopfenster::aktiviereEigenes(*this);
}

void FormAufzeichnungsverlaufFenster::verbergen() { hide(); }

void FormAufzeichnungsverlaufFenster::closeEvent(QCloseEvent* ereignis) {
    ereignis->ignore();
    form_->schliessen();
}

void FormAufzeichnungsverlaufFenster::keyPressEvent(QKeyEvent* ereignis) {
    if (ereignis->key() == Qt::Key_Escape) {
        form_->schliessen();
        return;
    }
    QWidget::keyPressEvent(ereignis);
}

void FormAufzeichnungsverlaufFenster::Verlaufsliste::paintEvent(QPaintEvent* ereignis) {
    QTreeView::paintEvent(ereignis);
    if (model()->rowCount() > 0) return;
    maleLeer(*this, QStringLiteral("Noch keine Aufzeichnungen."),
             QStringLiteral("Hier steht später, was aus jeder geplanten Aufzeichnung geworden ist."));
}

}  // namespace wendel
