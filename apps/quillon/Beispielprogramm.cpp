#include "Beispielprogramm.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <span>
#include <string_view>
#include <utility>

#include "Beispieltexte.h"
#include "Sendeplan.h"
#include "platform/Text.h"
#include "platform/Zahlen.h"
#include "tvdb/Optionen.h"

namespace wendel::quillon {

namespace {

constexpr std::int64_t kSekundenJeTag = 86400;
constexpr std::int16_t kTagestipp = 4;
constexpr int kErinnerungVorher = 10;  // minutes
// Whatever the channel has shown within so many days is a repeat.
constexpr std::int64_t kWiederholungstage = 7;

// What the guide calls each kind, and what its broadcasts are like.
struct Rubrikart {
    Rubrik rubrik;
    std::string_view kategorie;
    bool gespielt;  // has actors and a director
    bool moderiert;
    bool live;
};
constexpr auto kRubrikarten = std::to_array<Rubrikart>({
    {Rubrik::Nachrichten, "Information", false, true, true},
    {Rubrik::Fruehstueck, "Information", false, true, true},
    {Rubrik::Magazin, "Information", false, true, false},
    {Rubrik::Ratgeber, "Information", false, true, false},
    {Rubrik::Talk, "Unterhaltung", false, true, false},
    {Rubrik::Quiz, "Unterhaltung", false, true, false},
    {Rubrik::Show, "Unterhaltung", false, true, true},
    {Rubrik::Krimiserie, "Serie", true, false, false},
    {Rubrik::Familienserie, "Serie", true, false, false},
    {Rubrik::Comedy, "Serie", true, false, false},
    {Rubrik::Film, "Spielfilm", true, false, false},
    {Rubrik::Doku, "Information", false, false, false},
    {Rubrik::Natur, "Information", false, false, false},
    {Rubrik::Reportage, "Information", false, false, false},
    {Rubrik::Kinder, "Kinder", false, false, false},
    {Rubrik::Sportmagazin, "Sport", false, true, false},
    {Rubrik::Sportlive, "Sport", false, true, true},
    {Rubrik::Konzert, "Kultur", false, false, false},
    {Rubrik::Buehne, "Kultur", true, false, false},
    {Rubrik::Kurz, "Information", false, false, false},
    {Rubrik::Nacht, "Unterhaltung", false, false, false},
});

const Rubrikart& artVon(Rubrik rubrik) {
    return *std::find_if(kRubrikarten.begin(), kRubrikarten.end(),
                         [&](const Rubrikart& art) { return art.rubrik == rubrik; });
}

// Draws from tables; the same start draws the same.
class Ziehung {
  public:
    explicit Ziehung(std::uint64_t anfang) : stand_(anfang) {}

    std::uint64_t zahl(std::uint64_t unter) { return (stand_ = streuwert(stand_, 1)) % unter; }
    bool jedesSoundsovielte(std::uint64_t n) { return zahl(n) == 0; }
    template <class T>
    const T& aus(std::span<const T> tabelle) {
        return tabelle[zahl(tabelle.size())];
    }
    std::string name() { return std::string(aus(vornamen())) + " " + std::string(aus(nachnamen())); }

  private:
    std::uint64_t stand_;
};

// The number-th of the rows that fit; null when none does.
template <class T, class Bedingung>
const T* passende(std::span<const T> tabelle, std::uint64_t nummer, Bedingung bedingung) {
    std::vector<const T*> alle;
    for (const T& zeile : tabelle) {
        if (bedingung(zeile)) alle.push_back(&zeile);
    }
    return alle.empty() ? nullptr : alle[nummer % alle.size()];
}

std::string ziffern(std::int64_t zahl, std::size_t stellen) {
    std::string text = std::to_string(zahl);
    return text.size() < stellen ? std::string(stellen - text.size(), '0') + text : text;
}

// Eight or nine digits in groups.
std::string showviewnummer(Ziehung& ziehung) {
    const auto zahl = static_cast<std::int64_t>(ziehung.zahl(99'000'000) + 1'000'000);
    const std::string text = std::to_string(zahl);
    const std::size_t vorn = text.size() - 6;
    return text.substr(0, vorn) + "-" + text.substr(vorn, 3) + "-" + text.substr(vorn + 3);
}

// Fills one broadcast. What depends on the content alone is drawn with the content's number, so that a repeat
// has the same cast and the same rating.
class Sendungsbau {
  public:
    Sendungsbau(const Beispielsender& sender, std::size_t sendernummer, const Ausstrahlung& ausstrahlung,
                Datum tagesanfang, const cSendung& vorlage)
        : sendung_(vorlage),
          sender_(sender),
          gezeigt_(ausstrahlung),
          werk_(*ausstrahlung.werk),
          art_(artVon(werk_.rubrik)),
          werkziehung_(streuwert(werk_.titel)),
          inhaltziehung_(ausstrahlung.inhalt) {
        sendung_.SenderKennung = sender.kennung;
        sendung_.Beginn = tagesanfang.plusSekunden(std::int64_t{ausstrahlung.beginn} * 60);
        sendung_.Ende = sendung_.Beginn.plusSekunden(std::int64_t{ausstrahlung.minuten} * 60);
        sendung_.Dauer = std::to_string(ausstrahlung.minuten);
        teile_ = zerlegt(sendung_.Beginn);
        terminziehung_ =
            Ziehung(streuwert(sendernummer, static_cast<std::uint64_t>(sendung_.Beginn.sekunden())));
        // By its place in the guide.
        sendung_.SendungID = "S" + ziffern(teile_.jahr % 100, 2) + ziffern(teile_.monat, 2) +
                             ziffern(teile_.tag, 2) +
                             ziffern(static_cast<std::int64_t>(sendernummer) + 1, 2) +
                             ziffern(teile_.stunde, 2) + ziffern(teile_.minute, 2);
    }

    cSendung baue() {
        titel();
        leute();
        herkunft();
        texte();
        bewertung();
        aufnahmenummern();
        kennzeichen();
        return std::move(sendung_);
    }

  private:
    bool istFilm() const { return werk_.rubrik == Rubrik::Film; }
    int jahr() const {
        // A film is not newer than the guide, whatever clock the guide is made with.
        if (werk_.jahr > 0) return std::min(werk_.jahr, teile_.jahr - 1);
        return art_.live || art_.moderiert || werk_.rubrik == Rubrik::Kurz ? 0 : teile_.jahr - 1;
    }
    bool vonJahr(int erstes) const { return jahr() == 0 || jahr() >= erstes; }

    void titel() {
        sendung_.Titel = werk_.titel.empty() ? sender_.nachrichten : werk_.titel;
        if (werk_.rubrik == Rubrik::Sportlive) {
            const auto erste = inhaltziehung_.zahl(mannschaften().size());
            const auto weitere = 1 + inhaltziehung_.zahl(mannschaften().size() - 1);
            sendung_.Titel += ": " + std::string(mannschaften()[erste]) + " – " +
                              std::string(mannschaften()[(erste + weitere) % mannschaften().size()]);
        }
        sendung_.Originaltitel = werk_.originaltitel;
        sendung_.InhaltID = "I" + ziffern(static_cast<std::int64_t>(gezeigt_.inhalt % 100'000'000), 8);
        sendung_.Genre = werk_.genre;
        sendung_.Kategorietext = art_.kategorie;
    }

    void leute() {
        if (art_.moderiert)
            sendung_.setzeDarsteller("Moderation: " + werkziehung_.name());
        else
            sendung_.setzeDarsteller("");
        if (!art_.gespielt) return;
        sendung_.Regie = werkziehung_.name();
        std::string besetzung;
        std::set<std::string_view> vergeben;
        for (auto anzahl = 4 + werkziehung_.zahl(6); anzahl > 0; --anzahl) {
            const std::string name = werkziehung_.name();
            const std::string_view rolle = werkziehung_.aus(rollen());
            if (!vergeben.insert(rolle).second) continue;
            // The first two.
            if (vergeben.size() <= 2) hauptrollen_ += (hauptrollen_.empty() ? "" : " und ") + name;
            if (!besetzung.empty()) besetzung += ", ";
            besetzung += name + " (" + std::string(rolle) + ")";
        }
        sendung_.setzeDarsteller(besetzung);
    }

    void herkunft() {
        if (jahr() == 0) return;
        sendung_.Herstellungsland = werk_.land;
        sendung_.Herstellungsjahr = std::to_string(jahr());
    }

    void texte() {
        std::string lang(werk_.text);
        sendung_.Kurzbeschreibung = lang;
        lang += zusatz(werk_.genre) + zusatz("");
        if (istFilm()) {
            sendung_.Kurzbeschreibung = std::string(werk_.genre) + " von " + sendung_.Regie + ", " +
                                        std::string(werk_.land) + " " + sendung_.Herstellungsjahr;
        } else if (const Folge* folge = folgeDesWerks()) {
            sendung_.Kurzbeschreibung =
                "Folge " + std::to_string(gezeigt_.folge) + ": " + std::string(folge->titel);
            lang = std::string(folge->inhalt) + "\r\n\r\n" + lang;
        } else if (const Thema* thema = themaDesWerks()) {
            sendung_.Kurzbeschreibung = "Thema: " + std::string(thema->text);
            lang += weitereThemen(*thema);
        }
        if (art_.gespielt)
            lang += "\r\n\r\nIn den Hauptrollen: " + hauptrollen_ + ". Regie: " + sendung_.Regie + ".";
        if (gezeigt_.wiederholung) lang += "\r\n\r\nWiederholung";
        sendung_.setzeBeschreibung(lang);
        sendung_.setzeHTMLSeite("");
    }

    // One after the other, each series from another start.
    std::uint64_t folgennummer() const {
        return streuwert(werk_.titel) % 1000 + static_cast<std::uint64_t>(gezeigt_.folge);
    }

    const Folge* folgeDesWerks() const {
        return passende(folgen(), folgennummer(),
                        [&](const Folge& folge) { return folge.rubrik == werk_.rubrik; });
    }

    const Thema* themaDesWerks(std::uint64_t weiter = 0) const {
        const auto vonGenre = [&](std::string_view genre) {
            return passende(themen(), folgennummer() + weiter, [&](const Thema& thema) {
                return thema.rubrik == werk_.rubrik && thema.genre == genre;
            });
        };
        const Thema* eigenes = vonGenre(werk_.genre);
        return eigenes ? eigenes : vonGenre("");
    }

    std::string weitereThemen(const Thema& erstes) const {
        std::string liste = "\r\n\r\nUnsere Themen:\r\n- " + std::string(erstes.text);
        for (const std::uint64_t weiter : {1U, 2U})
            liste += "\r\n- " + std::string(themaDesWerks(weiter)->text);
        return liste;
    }

    // Begins with a blank; "" where there is none.
    std::string zusatz(std::string_view genre) {
        const Zusatz* satz = passende(zusaetze(), werkziehung_.zahl(1000), [&](const Zusatz& z) {
            return z.rubrik == werk_.rubrik && z.genre == genre;
        });
        return satz ? " " + std::string(satz->text) : std::string();
    }

    void bewertung() {
        sendung_.FSK = static_cast<std::int16_t>(werk_.fsk);
        if (!istFilm() && werk_.rubrik != Rubrik::Doku && werk_.rubrik != Rubrik::Natur) return;
        sendung_.Bewertung = static_cast<std::int16_t>((istFilm() ? 1 : 0) + werkziehung_.zahl(3));
        sendung_.Keywords = stichwort() + ";" + stichwort();
        if (!istFilm()) return;
        sendung_.Kurzkritik = werkziehung_.aus(kurzkritiken());
        sendung_.Bewertungen = "Humor=" + punkte(werk_.genre == "Komödie") +
                               ";Spannung=" + punkte(werk_.genre == "Krimi" || werk_.genre == "Thriller") +
                               ";Anspruch=" + punkte(werk_.genre == "Drama");
    }
    std::string punkte(bool staerke) {
        return std::to_string(staerke ? 2 + werkziehung_.zahl(2) : werkziehung_.zahl(3));
    }
    std::string stichwort() { return std::string(werkziehung_.aus(stichworte())); }

    void aufnahmenummern() {
        if (sender_.vps) sendung_.VPS = Format(sendung_.Beginn, "hh:nn");
        if (gezeigt_.minuten < 15) return;
        sendung_.Showview = showviewnummer(terminziehung_);
        if (sender_.vps) sendung_.ShowviewVPS = showviewnummer(terminziehung_);
    }

    void kennzeichen() {
        sendung_.KzWiederholung = gezeigt_.wiederholung;
        sendung_.KzLive = art_.live && !gezeigt_.wiederholung;
        const bool vielGesehen = gezeigt_.beginn >= 17 * 60 && gezeigt_.beginn < 24 * 60;
        sendung_.KzFilm = istFilm();
        sendung_.Kz16zu9 = vonJahr(1998);
        sendung_.KzHDTV = vonJahr(2009);
        sendung_.KzStereo = vonJahr(1982);
        sendung_.KzSchwarzweis = jahr() > 0 && jahr() < 1958;
        sendung_.KzDolby = istFilm() && vonJahr(1977) && !vonJahr(2000);
        sendung_.KzDolbySurround = sendung_.KzDolby && jahr() >= 1985;
        sendung_.KzDolbyDigital = istFilm() && vonJahr(2000);
        sendung_.KzTelefon = werk_.rubrik == Rubrik::Quiz;
        sendung_.KzUncoded = sender_.frei;
        sendung_.KzUntertitel = sender_.vps && (vielGesehen || terminziehung_.jedesSoundsovielte(3));
        sendung_.KzZweikanalton = istFilm() && !werk_.originaltitel.empty() && !sender_.frei;
        sendung_.KzAudiodescription =
            sender_.vps && vielGesehen && art_.gespielt && inhaltziehung_.jedesSoundsovielte(2);
    }

    cSendung sendung_;
    const Beispielsender& sender_;
    const Ausstrahlung& gezeigt_;
    const Werk& werk_;
    const Rubrikart& art_;
    Ziehung werkziehung_;
    Ziehung inhaltziehung_;
    Ziehung terminziehung_{0};
    Datumsteile teile_{};
    std::string hauptrollen_;
};

void haengeSenderAn(std::vector<cSendung>& sendungen, std::size_t nummer, std::int64_t ersterTag,
                    const cSendung& vorlage) {
    const Beispielsender& sender = beispielsender()[nummer];
    Sendeplan plan(nummer);
    std::map<std::uint64_t, std::int64_t> zuletzt;  // day on which a content was shown last
    // Also before the first day: what is a repeat on a day must not depend on when the guide is made.
    for (std::int64_t tag = ersterTag - kWiederholungstage; tag < ersterTag + kBeispieltage; ++tag) {
        const Datum tagesanfang = Datum::ausSekunden(tag * kSekundenJeTag);
        for (Ausstrahlung& ausstrahlung : plan.tag(tag)) {
            const auto [frueher, erstmals] = zuletzt.try_emplace(ausstrahlung.inhalt, tag);
            if (!erstmals && tag - std::exchange(frueher->second, tag) <= kWiederholungstage)
                ausstrahlung.wiederholung = true;
            if (tag < ersterTag) continue;
            sendungen.push_back(Sendungsbau(sender, nummer, ausstrahlung, tagesanfang, vorlage).baue());
        }
    }
}

// --- tips: the best of each day, on a favourite channel ---

bool istFavorit(const std::string& kennung) {
    return std::any_of(beispielsender().begin(), beispielsender().end(), [&](const Beispielsender& sender) {
        return sender.kennung == kennung && sender.favorit;
    });
}

bool istAbends(const cSendung& sendung) {
    const Datumsteile teile = zerlegt(sendung.Beginn);
    return teile.stunde == 20 && teile.minute == 15;
}

// The tip query takes the first row of its day, so there is one row only.
void waehleTipps(std::vector<cSendung>& sendungen, std::int64_t ersterTag) {
    std::set<std::string> titel;
    for (std::int64_t tag = ersterTag; tag < ersterTag + kBeispieltage; ++tag) {
        std::vector<cSendung*> filme;
        for (cSendung& sendung : sendungen) {
            if (sendung.Datum().sekunden() == tag * kSekundenJeTag && sendung.KzFilm && istAbends(sendung) &&
                istFavorit(sendung.SenderKennung))
                filme.push_back(&sendung);
        }
        if (filme.empty()) continue;
        // What has not been a tip yet goes first.
        const auto neue = std::stable_partition(
            filme.begin(), filme.end(), [&](const cSendung* film) { return !titel.contains(film->Titel); });
        if (neue != filme.begin()) filme.erase(neue, filme.end());
        cSendung& tipp = *filme[static_cast<std::size_t>(tag) % filme.size()];
        titel.insert(tipp.Titel);
        tipp.Bewertung = kTagestipp;
        tipp.setzeBeschreibung(tipp.Beschreibung() + "\r\n\r\n" +
                               std::string(tipptexte()[static_cast<std::size_t>(tag) % tipptexte().size()]));
    }
}

// --- marks ---

std::string optionen(Datum erinnerung, bool wiederkehrend) {
    std::string text = Optionen::SetOption("", "Erinnerungszeit", Format(erinnerung, "yyyymmddhhnn"));
    text = Optionen::SetOption(text, "Wiederkehrend", wiederkehrend ? "1" : "0");
    if (!wiederkehrend) return text;
    return Optionen::SetOption(Optionen::SetOption(text, "SenderEgal", "0"), "OhneWiederholung", "1");
}

class Markenwahl {
  public:
    Markenwahl(Beispielprogramm& programm, Datum jetzt) : programm_(programm), jetzt_(jetzt) {}

    void waehle() {
        markiere(
            frueheste(5, [](const cSendung& s) { return s.Genre != "Nachrichten" && s.Dauer.size() > 1; }),
            true, false);
        markiere(frueheste(30, [](const cSendung& s) { return s.Bewertung == kTagestipp; }), true, false);
        markiere(
            frueheste(30, [](const cSendung& s) { return s.Genre == "Telenovela" && !s.KzWiederholung; }),
            true, true);
        markiere(
            frueheste(24 * 60,
                      [](const cSendung& s) { return s.Kategorietext == "Unterhaltung" && istAbends(s); }),
            false, false);
    }

  private:
    // The next broadcast on a favourite channel that begins in so many minutes or later.
    template <class Bedingung>
    std::optional<std::size_t> frueheste(int inMinuten, Bedingung bedingung) const {
        const Datum ab = jetzt_.plusSekunden(std::int64_t{inMinuten} * 60);
        std::optional<std::size_t> beste;
        for (std::size_t i = 0; i < programm_.sendungen.size(); ++i) {
            const cSendung& sendung = programm_.sendungen[i];
            if (sendung.Beginn < ab || !istFavorit(sendung.SenderKennung) || !bedingung(sendung)) continue;
            if (!beste || sendung.Beginn < programm_.sendungen[*beste].Beginn) beste = i;
        }
        return beste;
    }

    void markiere(std::optional<std::size_t> nummer, bool erinnerung, bool wiederkehrend) {
        const auto gleich = [&](const Beispielmarke& marke) { return marke.sendung == nummer; };
        if (!nummer || std::any_of(programm_.marken.begin(), programm_.marken.end(), gleich)) return;
        cSendung& sendung = programm_.sendungen[*nummer];
        sendung.KzInFavoritenliste = true;
        // Not before the program has had the time to come up.
        const Datum fruehestens = jetzt_.aufMinute().plusSekunden(2 * 60);
        const Datum moment = std::max(fruehestens, sendung.Beginn.plusSekunden(-kErinnerungVorher * 60));
        programm_.marken.push_back({*nummer, erinnerung, optionen(moment, wiederkehrend)});
    }

    Beispielprogramm& programm_;
    Datum jetzt_;
};

}  // namespace

Beispielprogramm beispielprogramm(Datum jetzt, const cSendung& vorlage) {
    const std::int64_t gestern = jetzt.datumsteil().sekunden() / kSekundenJeTag - 1;
    Beispielprogramm programm;
    for (std::size_t nummer = 0; nummer < beispielsender().size(); ++nummer)
        haengeSenderAn(programm.sendungen, nummer, gestern, vorlage);
    waehleTipps(programm.sendungen, gestern);
    Markenwahl(programm, jetzt).waehle();
    return programm;
}

}  // namespace wendel::quillon
