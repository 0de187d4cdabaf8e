#pragma once
// Whether something is being recorded, seen from the folder of the recordings: within a minute after the
// start a file must appear and grow in it, which none does in a folder that can't be read. Looks every few
// seconds only.

#include <cstdint>
#include <map>
#include <optional>
#include <string>

#include "platform/Ports.h"

namespace wendel {

class Dateiwachstum {
  public:
    enum class Befund { Unklar, Waechst, KeineDatei };
    static constexpr int kFristSekunden = 60;

    explicit Dateiwachstum(const Ports& ports) : ports_(ports) {}

    // What is there before anything is started. An empty ordner: nothing to look at.
    void vormerken(const std::string& ordner);
    // The start commands have run: the minute begins.
    void beginnen();
    void aufhoeren() { vorher_.reset(); }

    // To be called with every tick. An answer other than Unklar comes once, and it is the last.
    Befund pruefen();

  private:
    using Groessen = std::map<std::string, std::uint64_t>;
    std::optional<Groessen> lies() const;

    const Ports& ports_;
    std::string ordner_;
    std::optional<Groessen> vorher_;                   // by name; nothing while nobody waits for an answer
    std::int64_t fristMs_ = 0, naechsterBlickMs_ = 0;  // of the running time
};

}  // namespace wendel
