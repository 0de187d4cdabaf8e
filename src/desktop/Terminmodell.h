#pragma once
// The rows of ListViewTermineListe for Qt: texts, picture, and what a screen reader is told of them. Which
// rows there are, in which order and with which words, is FormWendel's business.

#include <QAbstractTableModel>
#include <QIcon>
#include <map>
#include <string>
#include <vector>

#include "core/Terminzeilen.h"

namespace wendel {

class Terminmodell final : public QAbstractTableModel {
  public:
    enum Spalte { kZeit, kText, kRest, kSpalten };

    explicit Terminmodell(QObject* eltern);

    // Replaces all rows. Views are told of rows that came or went and of those whose texts have changed, not
    // of a new model: they keep what else they know, and repaint only what differs.
    void setzeZeilen(const std::vector<Terminzeile>& zeilen);
    const std::vector<Terminzeile>& zeilen() const { return zeilen_; }

    int rowCount(const QModelIndex& eltern = {}) const override;
    int columnCount(const QModelIndex& eltern = {}) const override;
    QVariant data(const QModelIndex& index, int rolle) const override;
    QVariant headerData(int abschnitt, Qt::Orientation richtung, int rolle) const override;

  private:
    QVariant bild(const Terminzeile& zeile, int rolle) const;
    void gleicheAnzahlAn(const std::vector<Terminzeile>& neu, std::size_t stelle);

    std::vector<Terminzeile> zeilen_;
    std::map<std::string, QIcon> bilder_;
};

// Whether both rows show the same entry, apart from the time that is left.
bool gleicherEintrag(const Terminzeile& a, const Terminzeile& b);

}  // namespace wendel
