#pragma once
// Keeps a window from being used while boxes or dialogs in front of it wait for their answer, and gives the
// keyboard back to where it was afterwards. Other windows stay usable, which the toolkit's own modality would
// not allow: a notice may come up in front of a dialog.

#include <QEvent>
#include <QPointer>
#include <QWidget>
#include <functional>
#include <utility>

namespace wendel {

class Fenstersperre final : public QObject {
  public:
    // statt is called when the user goes to the locked window: whoever waits for an answer should come to the
    // front. The window outlives this object.
    Fenstersperre(QWidget& fenster, std::function<void()> statt)
        : fenster_(fenster), statt_(std::move(statt)) {
        fenster_.installEventFilter(this);
    }

    // The locks add up; each is taken back once.
    void setze(bool gesperrt) {
        if (gesperrt) {
            if (sperren_++ == 0) sperre();
        } else if (--sperren_ == 0) {
            gibFrei();
        }
    }

    bool eventFilter(QObject* objekt, QEvent* ereignis) override {
        if (ereignis->type() == QEvent::WindowActivate && sperren_ > 0)
            QMetaObject::invokeMethod(
                this, [this] { weiche(); }, Qt::QueuedConnection);
        return QObject::eventFilter(objekt, ereignis);
    }

  private:
    // A disabled window forgets which of its controls had the focus.
    void sperre() {
        fokus_ = fenster_.focusWidget();
        fenster_.setEnabled(false);
    }
    void gibFrei() {
        fenster_.setEnabled(true);
        if (fokus_) fokus_->setFocus(Qt::OtherFocusReason);
    }
    void weiche() {
        if (sperren_ > 0) statt_();
    }

    QWidget& fenster_;
    std::function<void()> statt_;
    QPointer<QWidget> fokus_;
    int sperren_ = 0;
};

}  // namespace wendel
