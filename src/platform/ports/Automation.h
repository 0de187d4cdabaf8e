#pragma once
#include <string>

namespace wendel {

// Calls to automation objects of other programs of the suite. Serving our own object is the adapter's work:
// it hands each control line to the main form.
class Automation {
  public:
    virtual ~Automation() = default;
    // Calls DoThis(text) of the class ("Fennow.Open"); waits at most the pending-request time and then shows
    // its message. False when there is no such object or the call failed.
    [[nodiscard]] virtual bool rufeDoThis(const std::string& klasse, const std::string& text) = 0;

    // Title, text and time of the box that a call shows when it stays unanswered.
    virtual void setzeWartemeldung(const std::string& titel, const std::string& text, int zeitMs) = 0;
};

}  // namespace wendel
