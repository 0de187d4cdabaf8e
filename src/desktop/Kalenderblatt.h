#pragma once
// The calendar that drops down from a date field: German, weeks from Monday. Operated by mouse or arrow keys;
// Return or a click chooses, Esc leaves everything as it was.

#include <QDate>
#include <QFrame>
#include <functional>

class QCalendarWidget;

namespace wendel {

class Kalenderblatt final : public QFrame {
  public:
    // gewaehlt is told the day when the calendar has closed.
    Kalenderblatt(QWidget* eltern, std::function<void(QDate)> gewaehlt);

    // Below that widget, or above it where the screen ends, on the given day.
    void klappeAuf(const QWidget& feld, QDate tag);

  private:
    void faerbe();
    void waehle(QDate tag);

    QCalendarWidget* kalender_;
    std::function<void(QDate)> gewaehlt_;
};

}  // namespace wendel
