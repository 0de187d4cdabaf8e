#include "recording/ModulDateiStarten.h"

#include "platform/Fehler.h"
#include "platform/Text.h"

namespace wendel::ModulDateiStarten {
namespace {

struct Aufruf {
    std::string datei;
    std::string parameter;
};

std::string verbunden(std::string schalter, std::string_view parameter) {
    if (!schalter.empty() && !parameter.empty()) schalter += ' ';
    schalter += parameter;
    return schalter;
}

Aufruf zerlegt(std::string_view datei, std::string_view parameter) {
    const std::string text = Trim(datei);
    const std::size_t schalter = text.find(" /");
    if (schalter == std::string::npos) return {text, std::string(parameter)};
    return {Trim(std::string_view(text).substr(0, schalter)),
            verbunden(text.substr(schalter + 1), parameter)};
}

// The platform numbers its styles differently from the callers' notation.
int plattformstil(int fensterstil) {
    switch (fensterstil) {
        case 0:
        case 1:
        case 2:
        case 3:
        case 4: return fensterstil;
        case 6: return 7;
        default: return 1;
    }
}

std::string fehlertext(int code) {
    switch (code) {
        case 2: return "File not found";
        case 3: return "Path not found";
        case 5: return "Access denied";
        case 8: return "Out of memory";
        case 11: return "Invalid EXE file or error in EXE image";
        case 26: return "A sharing violation occurred";
        case 27: return "Incomplete or invalid file association";
        case 28: return "DDE Time out";
        case 29: return "DDE transaction failed";
        case 30: return "DDE busy";
        case 31: return "No association for file extension";
        case 32: return "DLL not found";
        default: return "Unknown error";
    }
}

constexpr int kErsterErfolgscode = 33;

}  // namespace

void DateiStarten(Dateistarter& starter, std::string_view datei, std::string_view parameter,
                  int fensterstil) {
    const Aufruf aufruf = zerlegt(datei, parameter);
    const int code = starter.ausfuehren(aufruf.datei, aufruf.parameter, OrdnerAusPfad(aufruf.datei),
                                        plattformstil(fensterstil));
    if (code >= kErsterErfolgscode) return;
    throw Fehler(fehlernummer::kEigener, "DateiStarten", fehlertext(code) + std::string(kCrLf));
}

std::string OrdnerAusPfad(std::string_view pfad) {
    const std::size_t trenner = pfad.find_last_of("\\/");
    return std::string(pfad.substr(0, trenner == std::string_view::npos ? 0 : trenner));
}

}  // namespace wendel::ModulDateiStarten
