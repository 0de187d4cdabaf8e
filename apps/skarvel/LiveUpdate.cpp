#include "LiveUpdate.h"

#include <algorithm>
#include <functional>
#include <span>
#include <utility>
#include <vector>

#include "Ablage.h"
#include "Quelle.h"
#include "desktop/Pfade.h"
#include "platform/Fehler.h"
#include "platform/Text.h"
#include "tvdb/ModulGrundbefehle.h"

namespace wendel::skarvel {
namespace {

constexpr std::size_t kErsteFavoriten = 12;
constexpr int kNachLesen = 20;  // per cent
constexpr std::int64_t kMeldungMs = 250, kMinuteMs = 60'000;

[[noreturn]] void misslungen(const std::string& text) {
    throw Fehler(fehlernummer::kEigener, "skarvel", text);
}

std::string sendungen(std::size_t anzahl) {
    return std::to_string(anzahl) + (anzahl == 1 ? " Sendung" : " Sendungen");
}

}  // namespace

// The staged guide, counted while it comes in.
class LiveUpdate::Fuellung : public XmltvEmpfaenger {
  public:
    void kanal(XmltvKanal kanal) override { ablage.kanal(std::move(kanal)); }
    void sendung(XmltvSendung sendung) override {
        ++gelesen;
        ablage.sendung(std::move(sendung));
    }

    Ablage ablage;
    std::size_t gelesen = 0;

    // Those with broadcasts; `plaetze` are their places in the staged guide.
    std::vector<XmltvKanal> kanaele;
    std::vector<std::size_t> plaetze;
    std::vector<std::string> kennungen;
    std::size_t anzahl = 0;

    void zaehle() {
        for (std::size_t i = 0; i < ablage.kanaele().size(); ++i) {
            const std::size_t hier = ablage.anzahl(i);
            if (hier == 0) continue;
            anzahl += hier;
            kanaele.push_back(ablage.kanaele()[i]);
            plaetze.push_back(i);
        }
    }
};

LiveUpdate::LiveUpdate(const Ports& ports, Einstellungen& einstellungen, const std::string& programmordner,
                       Verlauf& verlauf)
    : ports_(ports),
      einstellungen_(einstellungen),
      konfiguration_(liesKonfiguration(einstellungen, programmordner)),
      verlauf_(verlauf) {
    werte_.programmdatei = "skarvel.exe";
    werte_.programmordner = programmordner;
    werte_.datenbankdatei = konfiguration_.datenbank;
}

void LiveUpdate::laufe() {
    melde("Sender werden gelesen ..", 0, true);
    if (!ports_.dateien.existiert(werte_.datenbankdatei))
        misslungen("Die Datenbank \"" + ports_.dateien.pfadAnzeige(werte_.datenbankdatei) +
                   "\" gibt es nicht. \"quillon --anlegen\" legt eine leere an.");
    Fuellung fuellung;
    lies(fuellung);
    fuellung.zaehle();
    if (fuellung.anzahl == 0) misslungen("Die Quelle enthält keine Sendungen.");
    schreibe(fuellung);
}

void LiveUpdate::lies(Fuellung& fuellung) {
    const std::int64_t seit = ports_.uhr.laufzeitMs();
    const auto fortschritt = [&](double anteil) {
        pruefeAbbruch();
        const std::int64_t minuten = (ports_.uhr.laufzeitMs() - seit) / kMinuteMs;
        // A new text each minute, also of a command that is silent: who hears nothing for long gives up.
        if (!konfiguration_.xmltvBefehl.empty() && minuten > 0)
            melde("Der Befehl läuft seit " + std::to_string(minuten) +
                      (minuten == 1 ? " Minute, " : " Minuten, ") + sendungen(fuellung.gelesen) +
                      " gelesen ..",
                  0, false);
        else if (fuellung.gelesen > 0)
            melde("Sendungen werden gelesen .. " + std::to_string(fuellung.gelesen),
                  static_cast<int>(anteil * kNachLesen), false);
    };
    if (!konfiguration_.xmltvBefehl.empty())
        liesBefehl(konfiguration_.xmltvBefehl, fuellung, fortschritt);
    else if (!konfiguration_.xmltvQuelle.empty())
        liesDateien(nativerPfad(konfiguration_.xmltvQuelle), fuellung, fortschritt);
    else
        misslungen("Es ist keine Quelle eingestellt: weder eine XMLTV-Datei noch ein Befehl.");
}

void LiveUpdate::schreibe(Fuellung& fuellung) {
    ModulDatenbankzugriff zugriff(ports_, einstellungen_, werte_);
    Guideschreiber schreiber(ports_, zugriff, [this] { pruefeAbbruch(); });
    try {
        schreibeGuide(schreiber, fuellung);
    } catch (...) {
        bilanz_ = schreiber.bilanz();
        throw;
    }
    bilanz_ = schreiber.bilanz();
}

void LiveUpdate::schreibeGuide(Guideschreiber& schreiber, Fuellung& fuellung) {
    melde("Sender werden eingetragen ..", kNachLesen, true);
    const auto breiten = Spaltenbreiten::ausDatenbank(nativerPfad(werte_.datenbankdatei));
    const std::vector<Senderzeile> vorhandene = schreiber.liesSender();
    const Senderplan plan = senderplan(fuellung.kanaele, vorhandene, breiten);
    const bool ohneFavorit = std::none_of(vorhandene.begin(), vorhandene.end(),
                                          [](const Senderzeile& zeile) { return zeile.favorit; });
    const bool erstesMal = ohneFavorit && schreiber.istErstesMal();
    schreiber.schreibeSender(plan);
    if (erstesMal)
        schreiber.setzeFavoriten(
            std::span(plan.kennungen).first(std::min(kErsteFavoriten, plan.kennungen.size())));

    melde("Alte Sendungen werden gelöscht ..", kNachLesen, true);
    schreiber.loescheAbgelaufene(grenze());
    fuellung.kennungen = plan.kennungen;
    schreibeKanaele(schreiber, fuellung, breiten);
}

void LiveUpdate::schreibeKanaele(Guideschreiber& schreiber, Fuellung& fuellung,
                                 const Spaltenbreiten& breiten) {
    std::size_t fertig = 0;
    for (std::size_t i = 0; i < fuellung.plaetze.size(); ++i) {
        Sendeablauf ablauf = sendeablauf(fuellung.ablage.sendungenVon(fuellung.plaetze[i]));
        fertig += ablauf.sendungen.size();
        // They would be the first to go the next time.
        std::erase_if(ablauf.sendungen, [&](const cSendung& sendung) { return sendung.Ende < grenze(); });
        for (cSendung& sendung : ablauf.sendungen) {
            sendung.SenderKennung = fuellung.kennungen[i];
            breiten.passeEin(sendung);
        }
        schreiber.schreibeSendungen(fuellung.kennungen[i], std::move(ablauf));
        const auto prozent = kNachLesen + static_cast<int>((100 - kNachLesen) * fertig /
                                                           std::max<std::size_t>(fuellung.anzahl, 1));
        melde(sendungen(fertig) + ", " + std::to_string(prozent) + " %", prozent, false);
    }
}

Datum LiveUpdate::grenze() const {
    return DateAdd(Einheit::Tag, -konfiguration_.loeschtage, ports_.uhr.jetzt().datumsteil());
}

void LiveUpdate::pruefeAbbruch() {
    if (verlauf_.abgebrochen()) misslungen("Das Live-Update ist abgebrochen worden.");
}

// Not for each row: everybody who listens is woken by it.
void LiveUpdate::melde(const std::string& text, int prozent, bool sofort) {
    const std::int64_t jetzt = ports_.uhr.laufzeitMs();
    if (!sofort && jetzt - gemeldet_ < kMeldungMs) return;
    gemeldet_ = jetzt;
    verlauf_.melde(text, prozent);
}

}  // namespace wendel::skarvel
