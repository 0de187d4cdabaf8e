#pragma once
// The automation object "Wendel.Open" on the session bus: takes control lines of the suite's other programs.
// Each call is replied to at once and its line handed on from the event loop, so that no caller waits for our
// work.

#include <QObject>
#include <functional>
#include <string>

namespace wendel {

class WendelOpen final : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "Wendel.Open")
  public:
    // empfaenger gets the lines in the order of the calls, on the user-interface thread.
    explicit WendelOpen(std::function<void(const std::string&)> empfaenger);
    ~WendelOpen() override;

    // Puts the object on the bus and asks for its name. Without a bus nothing happens, and nothing is said.
    void veroeffentliche();

  public Q_SLOTS:
    Q_SCRIPTABLE void DoThis(const QString& text);

  private:
    std::function<void(const std::string&)> empfaenger_;
    bool veroeffentlicht_ = false;
};

}  // namespace wendel
