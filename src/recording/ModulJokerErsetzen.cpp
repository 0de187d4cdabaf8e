#include "recording/ModulJokerErsetzen.h"

#include "platform/Text.h"
#include "tvdb/ModulGrundbefehle.h"

namespace wendel::ModulJokerErsetzen {

namespace {

// Where the system folders lie on a machine whose shell does not tell. A second system on drive D is the one
// in use.
std::string vorhandenerOrdner(const Ports& ports, const std::string& programmordner, const char* name) {
    std::string gefunden;
    for (const char* laufwerk : {"C:\\", "D:\\"}) {
        const std::string ordner = std::string(laufwerk) + name;
        if (ModulGrundbefehle::OrdnerExistiert(ports.dateien, programmordner, ordner)) gefunden = ordner;
    }
    return gefunden;
}

}  // namespace

std::string JokerErsetzen(std::string_view text, std::string_view platzhalter, std::string_view wert) {
    if (platzhalter.empty()) return std::string(text);
    // Lower case has the same length, so that the places found are those of the text.
    const std::string klein = LCase(text), gesucht = LCase(platzhalter);
    std::string ergebnis;
    std::size_t von = 0;
    for (;;) {
        const std::size_t stelle = klein.find(gesucht, von);
        ergebnis += text.substr(von, stelle - von);
        if (stelle == std::string::npos) return ergebnis;
        ergebnis += wert;
        von = stelle + gesucht.size();
    }
}

std::string SpezialOrdner(const Ports& ports, const std::string& programmordner, int nummer) {
    if (const auto ordner = ports.rechner.spezialordner(nummer)) return *ordner;
    switch (nummer) {
        case kWindowsOrdner: return vorhandenerOrdner(ports, programmordner, "Windows");
        case kSystem32Ordner: return vorhandenerOrdner(ports, programmordner, "Windows\\System32");
        default: return "";
    }
}

std::string OrdnerJokerErsetzen(const Ports& ports, const std::string& programmordner,
                                std::string_view text) {
    const auto ordner = [&](int nummer) { return SpezialOrdner(ports, programmordner, nummer); };
    std::string ergebnis = JokerErsetzen(text, "[ProgrammeOrdner]", ordner(kProgrammeOrdner));
    ergebnis = JokerErsetzen(ergebnis, "[WindowsOrdner]", ordner(kWindowsOrdner));
    return JokerErsetzen(ergebnis, "[System32Ordner]", ordner(kSystem32Ordner));
}

std::string sichererTitel(std::string_view titel) {
    constexpr std::u32string_view kErlaubt = U"abcdefghijklmnopqrstuvwxyz0123456789öäüß!§$%&()={}[]+-#;";
    std::string ergebnis;
    for (const char32_t klein : codepunkte(LCase(titel))) {
        const std::string zeichen = Left(titel, 1);
        titel.remove_prefix(zeichen.size());
        ergebnis += kErlaubt.find(klein) == std::u32string_view::npos ? "-" : zeichen;
    }
    return ergebnis;
}

}  // namespace wendel::ModulJokerErsetzen
