#pragma once
// The small window of a running update: what it does, how far it is, and a button that ends it. A failure
// stays readable until the user closes it.

#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QWidget>
#include <functional>
#include <string>

namespace wendel::skarvel {

class Fortschrittsfenster final : public QWidget {
  public:
    // beimEnden: the user wants the run to end, or has read why it did. Asked each time.
    explicit Fortschrittsfenster(std::function<void()> beimEnden);

    void zeigeStand(const std::string& text, int prozent);
    void zeigeFehler(const std::string& text);

  private:
    void closeEvent(QCloseEvent* ereignis) override;
    void keyPressEvent(QKeyEvent* ereignis) override;

    std::function<void()> beimEnden_;
    QLabel status_;
    QProgressBar fortschritt_;
    QPushButton knopf_;
    bool gescheitert_ = false;
};

}  // namespace wendel::skarvel
