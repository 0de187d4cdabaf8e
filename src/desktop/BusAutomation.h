#pragma once
// The Automation port over the session bus: class "Fennow.Open" is the bus name "Fennow.Open" with the object
// "/Fennow/Open" and the interface of the same name.

#include "platform/ports/Automation.h"
#include "platform/ports/Meldungen.h"

namespace wendel {

class BusAutomation final : public Automation {
  public:
    // meldungen shows the box of an unanswered call; it must outlive this object.
    explicit BusAutomation(Meldungen& meldungen) : meldungen_(meldungen) {}

    // Runs an event loop of its own until the reply.
    [[nodiscard]] bool rufeDoThis(const std::string& klasse, const std::string& text) override;
    void setzeWartemeldung(const std::string& titel, const std::string& text, int zeitMs) override;

  private:
    Meldungen& meldungen_;
    std::string titel_;
    std::string text_;
    int zeitMs_ = 30000;
};

}  // namespace wendel
