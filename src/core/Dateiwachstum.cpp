#include "core/Dateiwachstum.h"

#include <algorithm>
#include <utility>

namespace wendel {

namespace {

constexpr std::int64_t kBlickAbstandMs = 3000;

}  // namespace

void Dateiwachstum::vormerken(const std::string& ordner) {
    ordner_ = ordner;
    vorher_ = lies();
}

void Dateiwachstum::beginnen() {
    const std::int64_t jetzt = ports_.uhr.laufzeitMs();
    fristMs_ = jetzt + kFristSekunden * 1000;
    naechsterBlickMs_ = jetzt;
}

Dateiwachstum::Befund Dateiwachstum::pruefen() {
    if (!vorher_) return Befund::Unklar;
    const std::int64_t jetzt = ports_.uhr.laufzeitMs();
    if (jetzt < naechsterBlickMs_) return Befund::Unklar;
    // The machine slept, or somebody else held the tick up: no time in which a file could have been seen to
    // grow.
    const std::int64_t versaeumtMs = jetzt - naechsterBlickMs_;
    if (versaeumtMs > kBlickAbstandMs) fristMs_ += versaeumtMs;
    naechsterBlickMs_ = jetzt + kBlickAbstandMs;
    std::optional<Groessen> nachher = lies();
    // A new file counts once it has grown between two looks: an empty one says nothing.
    const bool waechst = std::ranges::any_of(*nachher, [&](const auto& datei) {
        const auto vorher = vorher_->find(datei.first);
        return vorher != vorher_->end() && datei.second > vorher->second;
    });
    if (waechst || jetzt >= fristMs_) {
        vorher_.reset();
        return waechst ? Befund::Waechst : Befund::KeineDatei;
    }
    vorher_ = std::move(nachher);
    return Befund::Unklar;
}

std::optional<Dateiwachstum::Groessen> Dateiwachstum::lies() const {
    if (ordner_.empty()) return std::nullopt;
    // In a folder that is not there or can't be read no file grows either.
    Groessen groessen;
    for (const Ordnereintrag& datei :
         ports_.dateien.ordnerinhalt(ordner_).value_or(std::vector<Ordnereintrag>()))
        groessen[datei.name] = datei.stand.groesse;
    return groessen;
}

}  // namespace wendel
