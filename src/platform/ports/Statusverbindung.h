#pragma once
#include <functional>
#include <string>

namespace wendel {

// The link to the live-update program, which pushes every change of its two items. What it says arrives on
// the user-interface thread, never from inside a call of this port.
class Statusverbindung {
  public:
    struct Empfaenger {
        std::function<void(const std::string& text)> statusLabel;  // item "StatusLabel"
        std::function<void(const std::string& text)> statusCode;   // item "StatusCode"
    };

    virtual ~Statusverbindung() = default;
    // Links both items of the topic; what they hold at that moment arrives too. False while nobody serves it:
    // to be asked again.
    [[nodiscard]] virtual bool verbinden(const Empfaenger& empfaenger) = 0;
    // Nothing arrives any more.
    virtual void trennen() = 0;
};

}  // namespace wendel
