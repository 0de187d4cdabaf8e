#include "desktop/TermineListView.h"

#include <QApplication>
#include <QHeaderView>
#include <QKeyEvent>
#include <QScopedValueRollback>
#include <QScrollBar>
#include <algorithm>

#include "core/FormWendel.h"
#include "desktop/Listenstil.h"
#include "desktop/QtText.h"

namespace wendel {
namespace {

// The widest texts of the columns that keep their width: measuring ten thousand rows takes longer than
// anybody wants to wait for the next minute.
const QString kBreiteZeit = QStringLiteral("88.88.88 88:88");
const QString kBreiteRest = QStringLiteral("88888 Tage");

// Rows that are switched off step back.
class Terminmaler final : public Zeilenmaler {
  public:
    using Zeilenmaler::Zeilenmaler;

  protected:
    bool trittZurueck(const QModelIndex& index) const override {
        return index.siblingAtColumn(Terminmodell::kRest).data().toString().isEmpty();
    }
};

// Whether the text or one of its words begins with the other text.
bool beginntEinWort(const QString& text, const QString& anfang) {
    for (qsizetype i = 0; (i = text.indexOf(anfang, i, Qt::CaseInsensitive)) >= 0; ++i)
        if (i == 0 || !text[i - 1].isLetterOrNumber()) return true;
    return false;
}

// The row next to the place that shows the entry.
std::optional<std::size_t> naechsteGleiche(const std::vector<Terminzeile>& zeilen, const Terminzeile& gesucht,
                                           std::size_t stelle) {
    for (std::size_t abstand = 0; abstand < zeilen.size() + stelle; ++abstand) {
        const std::size_t davor = stelle - abstand, danach = stelle + abstand;
        if (abstand <= stelle && davor < zeilen.size() && gleicherEintrag(zeilen[davor], gesucht))
            return davor;
        if (danach < zeilen.size() && gleicherEintrag(zeilen[danach], gesucht)) return danach;
    }
    return std::nullopt;
}

int tastencode(const QKeyEvent& ereignis) {
    switch (ereignis.key()) {
        case Qt::Key_Return:
        case Qt::Key_Enter: return kTasteEingabe;
        case Qt::Key_Delete: return kTasteEntf;
        default: return 0;
    }
}

}  // namespace

TermineListView::TermineListView(QWidget* eltern) : QTreeView(eltern) {
    setObjectName(QStringLiteral("ListViewTermineListe"));
    setAccessibleName(QStringLiteral("Termine"));
    setModel(&modell_);
    setItemDelegate(new Terminmaler(this));
    richteEin(*this);
    header()->setSectionResizeMode(Terminmodell::kText, QHeaderView::Stretch);
    passeMasseAn();
    connect(selectionModel(), &QItemSelectionModel::selectionChanged, this, [this] { meldeAuswahl(); });
}

// A list that goes tells that its selection goes: nobody is left to hear it.
TermineListView::~TermineListView() { selectionModel()->disconnect(this); }

// Everything follows the font: the desktop may scale that alone.
void TermineListView::passeMasseAn() {
    const QFontMetrics schrift = fontMetrics();
    const int rand = luft(schrift), bild = bildgroesse(schrift);
    setIconSize(QSize(bild, bild));
    header()->setMinimumHeight(schrift.height() + rand + 2);
    header()->setMinimumSectionSize(6 * rand);
    header()->resizeSection(Terminmodell::kZeit, schrift.horizontalAdvance(kBreiteZeit) + bild + 5 * rand);
    header()->resizeSection(Terminmodell::kRest, schrift.horizontalAdvance(kBreiteRest) + 3 * rand);
}

void TermineListView::changeEvent(QEvent* ereignis) {
    QTreeView::changeEvent(ereignis);
    if (ereignis->type() == QEvent::FontChange || ereignis->type() == QEvent::StyleChange) passeMasseAn();
}

// ---- rows ----

void TermineListView::setzeZeilen(const std::vector<Terminzeile>& zeilen,
                                  std::optional<std::size_t> auswahl) {
    const QScopedValueRollback still(fuellt_, true);  // only choices of the user are told
    std::optional<Terminzeile> oberste, gewaehlte;
    const QModelIndex oben = indexAt(QPoint(0, 0));
    const int verdeckt = -visualRect(oben).top();
    if (verticalScrollBar()->value() > 0 && oben.isValid())
        oberste = modell_.zeilen()[static_cast<std::size_t>(oben.row())];
    if (const Terminzeile* zeile = gewaehlteZeile()) gewaehlte = *zeile;
    const int zeile = oben.row();

    modell_.setzeZeilen(zeilen);
    waehle(auswahl);
    bleibeBei(oberste, zeile, verdeckt);
    // A hidden list has no size yet; it scrolls to its selection when it comes up.
    const bool dieselbe = auswahl && gewaehlte && gleicherEintrag(*gewaehlte, zeilen[*auswahl]);
    if (auswahl && !dieselbe && isVisible()) scrollTo(currentIndex());
    viewport()->update();  // the first row and the last one come with another picture of the empty list
}

void TermineListView::waehle(std::optional<std::size_t> zeile) {
    if (!zeile) {
        clearSelection();
        return;
    }
    selectionModel()->setCurrentIndex(modell_.index(static_cast<int>(*zeile), 0),
                                      QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
}

// Who reads further down keeps the same rows before the eyes, also when one above has gone. At the very top
// the list stays at the top: what comes next is what matters there.
void TermineListView::bleibeBei(const std::optional<Terminzeile>& oberste, int vorher, int verdeckt) {
    executeDelayedItemsLayout();
    int stelle = 0;
    if (oberste) {
        const auto gleiche = naechsteGleiche(modell_.zeilen(), *oberste, static_cast<std::size_t>(vorher));
        const int zeile = gleiche ? static_cast<int>(*gleiche) : vorher;
        stelle = zeile * rowHeight(modell_.index(0, 0)) + verdeckt;
    }
    verticalScrollBar()->setValue(stelle);
}

std::optional<std::size_t> TermineListView::auswahl() const {
    const QModelIndexList gewaehlt = selectionModel()->selectedRows();
    if (gewaehlt.isEmpty()) return std::nullopt;
    return static_cast<std::size_t>(gewaehlt.front().row());
}

const Terminzeile* TermineListView::gewaehlteZeile() const {
    const auto zeile = auswahl();
    return zeile ? &modell_.zeilen()[*zeile] : nullptr;
}

void TermineListView::meldeAuswahl() {
    if (!fuellt_) form_->zeileGewaehlt(auswahl());
}

void TermineListView::keyboardSearch(const QString& eingabe) {
    const bool neu =
        !letzteSuche_.isValid() || letzteSuche_.hasExpired(QApplication::keyboardInputInterval());
    letzteSuche_.start();
    if (neu) suchtext_.clear();
    suchtext_ += eingabe;
    if (suchtext_.trimmed().isEmpty()) {  // the space bar also chooses the current row
        suchtext_.clear();
        return;
    }
    // The same letter again goes on to the next row.
    const bool wiederholt = suchtext_.count(suchtext_[0], Qt::CaseInsensitive) == suchtext_.size();
    const QString anfang = wiederholt ? suchtext_.left(1) : suchtext_;
    const int anzahl = modell_.rowCount();
    const int ab = currentIndex().isValid() ? currentIndex().row() + (wiederholt && auswahl() ? 1 : 0) : 0;
    for (int i = 0; i < anzahl; ++i) {
        const auto zeile = static_cast<std::size_t>((ab + i) % anzahl);
        const Terminzeile& inhalt = modell_.zeilen()[zeile];
        if (!beginntEinWort(qtText(inhalt.zeit), anfang) && !beginntEinWort(qtText(inhalt.text), anfang))
            continue;
        waehle(zeile);
        return;
    }
}

// ---- what the user does ----

void TermineListView::keyPressEvent(QKeyEvent* ereignis) {
    if (ereignis->key() == Qt::Key_F10 && ereignis->modifiers() == Qt::ShiftModifier) {
        frageMenue(true);
        return;
    }
    const int code = tastencode(*ereignis);
    // A key held down would go on answering what it has opened.
    if (code != 0 && ereignis->isAutoRepeat()) return;
    if (form_->ListViewTermineListe_KeyDown(code)) return;
    const QString zeichen = ereignis->text();
    if (!zeichen.isEmpty() && form_->ListViewTermineListe_KeyPress(zeichen[0].unicode())) return;
    if (!waehleDurchBewegung(*ereignis)) QTreeView::keyPressEvent(ereignis);
}

// Without a selection the first arrow key takes the row that has the focus frame instead of jumping over it,
// and Home takes the first one although the frame is there already.
bool TermineListView::waehleDurchBewegung(const QKeyEvent& ereignis) {
    const int taste = ereignis.key();
    const bool dieErste = taste == Qt::Key_Home || taste == Qt::Key_PageUp;
    if (taste != Qt::Key_Up && taste != Qt::Key_Down && !(dieErste && currentIndex().row() == 0))
        return false;
    if (auswahl() || !currentIndex().isValid()) return false;
    waehle(static_cast<std::size_t>(currentIndex().row()));
    return true;
}

void TermineListView::mousePressEvent(QMouseEvent* ereignis) {
    QTreeView::mousePressEvent(ereignis);
    if (!indexAt(ereignis->position().toPoint()).isValid()) clearSelection();
}

void TermineListView::mouseReleaseEvent(QMouseEvent* ereignis) {
    QTreeView::mouseReleaseEvent(ereignis);
    if (!viewport()->rect().contains(ereignis->position().toPoint())) return;  // thought better of it
    if (ereignis->button() == Qt::LeftButton) {
        form_->ListViewTermineListe_Click();
        form_->ListViewTermineListe_MouseUp(kKnopfLinks);
    } else if (ereignis->button() == Qt::RightButton) {
        frageMenue(false);
    }
}

void TermineListView::mouseDoubleClickEvent(QMouseEvent* ereignis) {
    // As two presses: the second one may hit another row than the first.
    mousePressEvent(ereignis);
    const bool zeile = indexAt(ereignis->position().toPoint()).isValid();
    if (zeile && ereignis->button() == Qt::LeftButton) form_->ListViewTermineListe_DblClick();
}

// On this system Qt asks for mouse menus at the press already; ours comes with the release.
void TermineListView::contextMenuEvent(QContextMenuEvent* ereignis) {
    if (ereignis->reason() != QContextMenuEvent::Mouse) frageMenue(true);
}

void TermineListView::frageMenue(bool durchTaste) {
    menueDurchTaste_ = durchTaste;
    if (durchTaste && auswahl()) scrollTo(currentIndex());
    form_->ListViewTermineListe_MouseUp(kKnopfRechts);
}

QPoint TermineListView::menuestelle() const {
    if (!menueDurchTaste_) return QCursor::pos();
    const QPoint rand(luft(fontMetrics()), 0);
    if (!auswahl()) return viewport()->mapToGlobal(rand + QPoint(0, rand.x()));
    return viewport()->mapToGlobal(visualRect(currentIndex().siblingAtColumn(0)).bottomLeft() + rand);
}

// A list without rows says what can be done about it instead of looking broken.
void TermineListView::paintEvent(QPaintEvent* ereignis) {
    QTreeView::paintEvent(ereignis);
    if (modell_.rowCount() > 0) return;
    maleLeer(*this, QStringLiteral("Keine Termine vorgemerkt"),
             QStringLiteral("Den ersten legen Sie mit der Taste Einfg an oder mit einem Rechtsklick hier."));
}

}  // namespace wendel
