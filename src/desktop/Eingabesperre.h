#pragma once
// A Return that is held down answers only what it was pressed for, not also the dialog that this opens, nor
// the list when that is closed again. Holds in all windows of the program while the object lives; other keys,
// and Return together with a modifier, repeat as they do everywhere.

#include <QCoreApplication>
#include <QKeyEvent>
#include <QObject>

namespace wendel {

class Eingabesperre final : public QObject {
  public:
    Eingabesperre() { QCoreApplication::instance()->installEventFilter(this); }

    bool eventFilter(QObject*, QEvent* ereignis) override {
        if (ereignis->type() != QEvent::KeyPress && ereignis->type() != QEvent::KeyRelease) return false;
        const auto& taste = *static_cast<QKeyEvent*>(ereignis);
        if (taste.key() != Qt::Key_Return && taste.key() != Qt::Key_Enter) return false;
        if (ereignis->type() == QEvent::KeyRelease) {
            losgelassen_ = taste.timestamp();
            return false;
        }
        // Where windows change meanwhile the toolkit misses some: the system's time of release and press is
        // the same.
        const bool wiederholt =
            taste.isAutoRepeat() || (taste.timestamp() != 0 && taste.timestamp() == losgelassen_);
        return wiederholt && (taste.modifiers() & ~Qt::KeypadModifier) == Qt::NoModifier;
    }

  private:
    quint64 losgelassen_ = 0;
};

}  // namespace wendel
