#pragma once
// How the program's lists look: air around the texts, rows that alternate, a tooltip for what does not fit, a
// word where there are no rows. What stands in them and what the user may do is each list's own business.

#include <QFontMetrics>
#include <QStyledItemDelegate>
#include <QTreeView>

namespace wendel {

// Between a text and the edge of its cell.
inline int luft(const QFontMetrics& schrift) { return schrift.height() * 6 / 10; }
// A size that the pictures were drawn in, a little higher than the text.
int bildgroesse(const QFontMetrics& schrift);

// Whole rows, no tree, no editing; the columns keep the width that the list gives them.
void richteEin(QTreeView& liste);
// In the middle of a list without rows, instead of its rows; to be called while it is painted.
void maleLeer(QTreeView& liste, const QString& ueberschrift, const QString& hinweis);

// Rows with air between them, whose pictures keep their colours. What is cut off is told by a tooltip: the
// model's text of that role.
class Zeilenmaler : public QStyledItemDelegate {
  public:
    using QStyledItemDelegate::QStyledItemDelegate;
    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;
    bool helpEvent(QHelpEvent* ereignis, QAbstractItemView* liste, const QStyleOptionViewItem& option,
                   const QModelIndex& index) override;

  protected:
    // Shown paler than the others.
    virtual bool trittZurueck(const QModelIndex& index) const;
    void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override;
};

}  // namespace wendel
