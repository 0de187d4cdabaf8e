#include "desktop/Terminmodell.h"

#include <algorithm>
#include <iterator>

#include "desktop/QtText.h"
#include "desktop/Symbole.h"

namespace wendel {
namespace {

// Characters. No window is as wide as the first, no screen as high as the second; an appointment's text may
// be much longer than both, and drawing measures all of it.
constexpr qsizetype kLaengsteZeile = 600;
constexpr qsizetype kLaengsterHinweis = 1500;

constexpr Qt::Alignment kRechts = Qt::AlignRight | Qt::AlignVCenter;

QString gekuerzt(QString text, qsizetype laenge) {
    if (text.size() > laenge) text = text.left(laenge) + QStringLiteral(" ...");
    return text;
}

const std::string& spaltentext(const Terminzeile& zeile, int spalte) {
    if (spalte == Terminmodell::kZeit) return zeile.zeit;
    return spalte == Terminmodell::kText ? zeile.text : zeile.rest;
}

// A broadcast's text of several lines stays one row.
QString einzeilig(const std::string& text) {
    QString zeile = gekuerzt(qtZeilen(text), kLaengsteZeile);
    return zeile.replace(u'\n', u' ').replace(u'\t', u' ');
}

// The picture in words.
QString artname(const std::string& symbol) {
    if (symbol == "terminuhr1") return QStringLiteral("Erinnerung");
    if (symbol == "terminaufz") return QStringLiteral("Aufzeichnung");
    return QStringLiteral("Eigener Termin");
}

QString ueberschrift(int spalte) {
    switch (spalte) {
        case Terminmodell::kZeit: return QStringLiteral("Zeit");
        case Terminmodell::kText: return QStringLiteral("Termin");
        default: return QStringLiteral("Restzeit");
    }
}

// A cell without a text would be silent.
QString vorlesetext(const Terminzeile& zeile, int spalte) {
    if (spalte == Terminmodell::kRest && zeile.rest.empty()) return QStringLiteral("nicht aktiv");
    return qtZeilen(spaltentext(zeile, spalte));
}

}  // namespace

bool gleicherEintrag(const Terminzeile& a, const Terminzeile& b) {
    return a.zeit == b.zeit && a.text == b.text && a.symbol == b.symbol;
}

Terminmodell::Terminmodell(QObject* eltern) : QAbstractTableModel(eltern) {
    for (const char* name : {"terminuhr1", "terminuhr2", "terminaufz"})
        bilder_.emplace(name, Symbole::symbol(name));
}

void Terminmodell::setzeZeilen(const std::vector<Terminzeile>& zeilen) {
    const auto erste = std::mismatch(zeilen_.begin(), zeilen_.end(), zeilen.begin(), zeilen.end()).first;
    const auto stelle = static_cast<std::size_t>(erste - zeilen_.begin());
    gleicheAnzahlAn(zeilen, stelle);
    if (stelle < zeilen_.size())
        Q_EMIT dataChanged(index(static_cast<int>(stelle), 0), index(rowCount() - 1, kSpalten - 1));
}

// Where the first difference is, rows come in or go; what follows is told as changed texts. One row that came
// or went is told exactly so.
void Terminmodell::gleicheAnzahlAn(const std::vector<Terminzeile>& neu, std::size_t stelle) {
    const int vorher = rowCount(), nachher = static_cast<int>(neu.size()), ab = static_cast<int>(stelle);
    if (nachher > vorher) {
        beginInsertRows({}, ab, ab + nachher - vorher - 1);
        zeilen_ = neu;
        endInsertRows();
    } else if (nachher < vorher) {
        beginRemoveRows({}, ab, ab + vorher - nachher - 1);
        zeilen_ = neu;
        endRemoveRows();
    } else {
        zeilen_ = neu;
    }
}

int Terminmodell::rowCount(const QModelIndex& eltern) const {
    return eltern.isValid() ? 0 : static_cast<int>(zeilen_.size());
}

int Terminmodell::columnCount(const QModelIndex& eltern) const { return eltern.isValid() ? 0 : kSpalten; }

QVariant Terminmodell::data(const QModelIndex& index, int rolle) const {
    if (!index.isValid()) return {};
    const Terminzeile& zeile = zeilen_[static_cast<std::size_t>(index.row())];
    const int spalte = index.column();
    switch (rolle) {
        case Qt::DisplayRole: return einzeilig(spaltentext(zeile, spalte));
        case Qt::ToolTipRole: return gekuerzt(qtZeilen(spaltentext(zeile, spalte)), kLaengsterHinweis);
        case Qt::AccessibleTextRole: return vorlesetext(zeile, spalte);
        case Qt::TextAlignmentRole: return spalte == kRest ? QVariant(kRechts) : QVariant();
        default: return spalte == kZeit ? bild(zeile, rolle) : QVariant();
    }
}

QVariant Terminmodell::bild(const Terminzeile& zeile, int rolle) const {
    if (rolle == Qt::AccessibleDescriptionRole) return artname(zeile.symbol);
    const auto bild = bilder_.find(zeile.symbol);
    return rolle == Qt::DecorationRole && bild != bilder_.end() ? QVariant(bild->second) : QVariant();
}

QVariant Terminmodell::headerData(int abschnitt, Qt::Orientation richtung, int rolle) const {
    if (richtung != Qt::Horizontal) return {};
    if (rolle == Qt::DisplayRole) return ueberschrift(abschnitt);
    if (rolle == Qt::TextAlignmentRole && abschnitt == kRest) return QVariant(kRechts);
    return {};
}

}  // namespace wendel
