#pragma once
// SIGTERM, SIGINT and SIGHUP as an ordinary call on the user-interface thread. One object per process, made
// after the application object; until then they end the process at once.

#include <QObject>
#include <functional>

namespace wendel {

class EndeSignal final : public QObject {
  public:
    explicit EndeSignal(std::function<void()> ende);
    ~EndeSignal() override;

  private:
    int fd_ = -1;
    std::function<void()> ende_;
};

}  // namespace wendel
