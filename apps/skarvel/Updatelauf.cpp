#include "Updatelauf.h"

#include <QMetaObject>
#include <exception>
#include <new>
#include <optional>
#include <utility>

#include "../Konsolenports.h"
#include "UnterbrechbareUhr.h"
#include "platform/Fehler.h"
#include "tvdb/Einstellungen.h"

namespace wendel::skarvel {
namespace {

std::string abschluss(const Schreibbilanz& bilanz) {
    const std::string anfang = "Das Live-Update ist abgeschlossen";
    if (bilanz.leer()) return anfang + ": Es gibt nichts Neues.";
    return anfang + ": " + std::to_string(bilanz.neu) + " neu, " + std::to_string(bilanz.geaendert) +
           " geändert, " + std::to_string(bilanz.entfallen) + " entfallen, " +
           std::to_string(bilanz.abgelaufen) + " abgelaufen.";
}

}  // namespace

Updatelauf::Updatelauf(Uhr& uhr, std::string programmordner, Empfaenger empfaenger)
    : uhr_(uhr), programmordner_(std::move(programmordner)), empfaenger_(std::move(empfaenger)) {}

Updatelauf::~Updatelauf() {
    abbruch_ = true;
    if (faden_.joinable()) faden_.join();
}

void Updatelauf::start() {
    faden_ = std::thread([this] {
        Updateergebnis ergebnis = aktualisiere();
        QMetaObject::invokeMethod(
            this, [this, ergebnis = std::move(ergebnis)] { empfaenger_.ende(ergebnis); },
            Qt::QueuedConnection);
    });
}

void Updatelauf::melde(const std::string& text, int prozent) {
    QMetaObject::invokeMethod(
        this, [this, text, prozent] { empfaenger_.stand(text, prozent); }, Qt::QueuedConnection);
}

Updateergebnis Updatelauf::aktualisiere() {
    UnterbrechbareUhr uhr(uhr_, abbruch_);
    const Konsolenports ports(uhr);
    Einstellungen einstellungen(ports.ports().dateien, programmordner_);
    std::optional<LiveUpdate> update;
    Updateergebnis ergebnis;
    try {
        update.emplace(ports.ports(), einstellungen, programmordner_, static_cast<Verlauf&>(*this));
        update->laufe();
        ergebnis.fertig = true;
        ergebnis.text = abschluss(update->bilanz());
    } catch (const Fehler& fehler) {
        ergebnis.text = abbruch_ ? "Das Live-Update ist abgebrochen worden." : fehler.beschreibung();
    } catch (const std::bad_alloc&) {
        ergebnis.text = "Der Arbeitsspeicher reicht nicht.";
    } catch (const std::exception& fehler) {
        ergebnis.text = std::string("Ein unerwarteter Fehler ist aufgetreten (") + fehler.what() + ").";
    }
    ergebnis.geschrieben = update && !update->bilanz().leer();
    return ergebnis;
}

}  // namespace wendel::skarvel
