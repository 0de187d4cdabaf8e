#pragma once
// The only reader of the system's clocks. WENDEL_UHR="2012-12-24 20:04:50" starts the program's clock at that
// local moment; it then runs on at normal speed, suspends included, and no clock step moves it.

#include <ctime>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "platform/ports/Uhr.h"

namespace wendel {

// Reads "yyyy-mm-dd hh:mm:ss" (a "T" between the parts will do); nothing for any other text, a day that the
// calendar lacks, or a year before 1971 or after 2200.
std::optional<Datum> uhrAusText(std::string_view text);

class LinuxUhr : public Uhr {
  public:
    // The system's clock, or one that shows `start` at this instant.
    LinuxUhr();
    explicit LinuxUhr(Datum start);

    // As WENDEL_UHR says; unset or empty is the system's clock. On a malformed value null, and `meldung` gets
    // a German line for stderr: the caller prints it and ends with exit code 2.
    static std::unique_ptr<LinuxUhr> ausUmgebung(std::string& meldung);

    // What nachrichtenVerarbeiten() does: the composition root hands in its event loop. Unset: nothing.
    void setzeNachrichten(std::function<void()> nachrichten);

    // Follows a change of the system's time zone within the hour.
    Datum jetzt() override;
    // Counts the time that the machine slept, too: a wait is over by the clock on the wall, and a gap between
    // two ticks is seen.
    std::int64_t laufzeitMs() override;
    void schlafe(int ms) override;
    void nachrichtenVerarbeiten() override;

    // When jetzt() will show this local moment, by the system's own clock, in seconds since 1970. The earlier
    // one of the two in the autumn hour.
    std::time_t systemzeit(Datum lokal) const;

    // Milliseconds, 1 to 1000, until jetzt() shows the next second: a tick started then is aligned.
    int msBisZurNaechstenSekunde();

    // Reads the system's time zone at once: after a wake-up the user may have travelled.
    void zoneNeuLesen();

  private:
    std::timespec weltzeit() const;

    // Set for a clock that was started at a given moment: its distance from the boot clock.
    std::optional<std::int64_t> abstandZurBootuhrNs_;
    std::function<void()> nachrichten_;
    std::time_t zonenstunde_ = 0;
};

}  // namespace wendel
