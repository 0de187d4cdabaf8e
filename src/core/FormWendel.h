#pragma once
// The main form: the list of entries, the tray icon and its tooltip, the control lines of the suite, the way
// out. Knows no toolkit: its window is a FormWendelView, the icon a TaskleistenSymbol. When something is due
// is WeckTimer's business, how the program comes up is that of Start.

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/FormWendelView.h"
#include "core/Laufend.h"
#include "core/Liveupdate.h"
#include "core/TaskbarIcon.h"
#include "core/Terminzeilen.h"
#include "platform/Ports.h"
#include "traymenu/EinfachesMenue.h"

namespace wendel {

class Aufzeichnungsablauf;
class Autostart;
class Datenbestand;
class FormAufzeichnungsverlauf;
class FormHinweis;
class FormTermin;
class ModulInterneKommunikation;
class Traymenue;

// What the window calls keys and mouse buttons.
inline constexpr int kTasteEingabe = 13, kTasteEntf = 46;
inline constexpr int kKnopfLinks = 1, kKnopfRechts = 2;

// The forms that the main form opens or asks.
struct Unterformen {
    FormHinweis& hinweis;
    FormTermin& termin;
    FormAufzeichnungsverlauf& verlauf;
};

// What goes on beside the reminders, and the entry that starts the program.
struct Ablaeufe {
    Aufzeichnungsablauf& aufzeichnungen;
    Liveupdate& liveupdate;
    Autostart& autostart;
};

class FormWendel : public Liveupdateanzeige {
  public:
    // All arguments outlive the form.
    FormWendel(const Ports& ports, Datenbestand& bestand, const Ablaeufe& ablaeufe, const Unterformen& formen,
               ModulInterneKommunikation& hauptanwendung, Traymenue& menue, FormWendelView& view);

    // --- what other programs and the system send ---

    // One line of another program of the suite; unknown ones are ignored. Acts at once, also while a tick
    // waits; while a recording script runs, all but "showwendel" are put off.
    void SteuerzeileEmpfangen(const std::string& text);
    // The window procedure. True when the message was taken; false leaves it to the previous procedure.
    bool fensterNachricht(std::uint32_t nachricht, std::uintptr_t wParam, std::uintptr_t lParam);
    // Whether the program's own window procedure stands in front of the previous one; start-up decides it
    // once.
    void setzeMausreaktion(bool an) { mausreaktion_ = an; }

    // --- what the user does in the window ---

    void fensterSchliessen();  // close box: hides, the program stays
    void cmdAusblenden_Click();
    void zeileGewaehlt(std::optional<std::size_t> zeile);  // from 0
    void ListViewTermineListe_Click();
    void ListViewTermineListe_DblClick();
    // The character Enter edits, the key Delete deletes. True when the key was taken.
    bool ListViewTermineListe_KeyPress(int zeichencode);
    bool ListViewTermineListe_KeyDown(int tastencode);
    // The right button asks for the popup menu; so does the keyboard's menu key.
    void ListViewTermineListe_MouseUp(int knopf);
    void mnuNeuTermin_Click();
    void mnuEditieren_Click();
    void mnuLöschen_Click();
    void mnuAufzeichnungen_Click();  // what became of the recordings
    // Ends the program. Asks before when a recording runs, when the appointments can't be stored, and whether
    // the system is to start the program again; put off if it has to ask. While the editor is open that comes
    // to the front instead: what was typed into it would be lost.
    void mnuBeenden_Click();
    // May show a box; put off.
    void LabelAnzLiveUpdateEinstellungenStartLink_Click();

    // --- the user's appointments ---

    // Of the selected row, from 1; 0 when there is none.
    std::int32_t GetSelektierterIndex() const;
    // Each opens the editor or asks its question and comes back when that is answered; timers and control
    // lines run meanwhile. While the editor is open they only bring it to the front. While something else is
    // under way that would have to wait for the answer (a tick in a long action, an access to the database,
    // the start, another question), the last one asked for is put off until that has ended. So are the other
    // operations here that say "put off", each once.
    void TerminNeu();
    void TerminBearbeiten();
    void TerminLoeschen();
    // A short-time alarm in so many minutes; below 0 counts as 0. Stored with the next minute.
    void KurzZeitWeckerAktivieren(std::int16_t minuten);
    // To be called by the view, from its event loop: does the first of what was put off, or keeps it if it
    // still has to.
    void VorgemerktesAusfuehren();
    // To be called after each tick: has the view call the above if something was put off and can be done now.
    void vorgemerktesAnstossen();
    // From here on the timer ticks and a modal window silences nothing.
    void setzeBereit() { bereit_ = true; }

    // --- operations of the program ---

    void zeigen();
    void zeigenUndNachVorn();
    void verstecken();

    // Rebuilds the rows and the live-update label. The window hears of it only when a text has changed.
    void Ausfüllen();
    // Builds the tooltip of the nearest entry and hands it to the icon.
    void TaskBarIconAktualisieren();
    // Both.
    void auffrischen();
    // Gives the icon picture and tooltip; a record equal to the last one is not sent again.
    void TaskbarUpdateIcon(std::string_view tipp);
    void iconHinzufuegen();  // with the tip "Lomrick"

    // What to refresh after the broadcasts' data have changed.
    void RefreshTVDaten();

    // Builds the tray menu, so that it is there at once when it is asked for.
    void menueAufbauen();
    // Its entries for a host that shows plain menus only; with frisch what is stale of them is read before.
    std::vector<EinfacherEintrag> einfachesMenue(bool frisch);
    void menuebefehlAusfuehren(const Menuebefehl& befehl);
    // A command text for the main application, which may take half a minute to answer; put off, also while it
    // has not answered the one before.
    void hauptanwendungRufen(const std::string& befehlstext);
    // The channel in the TV application, unless a recording has it; put off.
    void imTVZeigen(const std::string& senderkennung);
    // The main application was told to mark a broadcast. Reads the marks; put off like that.
    void nachErinnern();

    // What the live update tells, from inside a tick and from its link.
    void liveupdateStatusGeaendert() override { statusZeigen(); }
    void liveupdateIconAuffrischen() override { TaskBarIconAktualisieren(); }
    void liveupdateBeendet(bool neueDaten) override;

    // Has the system start the program at log-on; put off, as it may show a box.
    void autostarteintragSetzen();

    // A new entry of the user's (a snoozed notice): appended, shown in the list, stored.
    void terminHinzufuegen(const TerminZeiger& termin);

    // Stores changed appointments, unloads the windows, takes the icon away; with mitFrage only when the
    // close question says so. Does no harm when nothing was loaded yet or when called twice.
    void ExitProgram(bool mitFrage);
    bool beendet() const { return beendet_; }

    // The guard of the tick's long actions.
    bool beschaeftigt() const { return beschaeftigt_; }
    // Set as long as the result lives; put back as it was.
    [[nodiscard]] Laufend beschaeftigen() { return Laufend(beschaeftigt_); }

    // From here on ExitProgram has appointments to take care of; set by start-up.
    void setzeGeladen() { geladen_ = true; }

  private:
    struct Vorgemerktes {
        std::string was;  // takes the place of an earlier one of that name
        std::function<void()> tun;
    };

    void markierungenNachlesen();
    void terminupdate();
    void refreshKonfig();
    void konfigNeuLesen();
    void createTermin();
    void zeilenZeigen(std::vector<Terminzeile> zeilen, Terminliste termine);
    void menuezustandZeigen();
    void statusZeigen();
    void liveUpdateZeigen();
    TerminZeiger nachbar() const;
    void vormerken(const std::string& was, std::function<void()> tun);
    bool aktionMoeglich(void (FormWendel::*aktion)());
    bool wuerdeAufhalten() const;
    bool fragen(const std::string& text, int stil, const std::string& titel);
    bool trotzdemBeenden(const std::string& frage, const std::string& titel);
    std::string speicherfrage();
    bool autostartKlaeren();
    void wechselAnbieten(Terminart art);
    void nachTerminaenderung();
    void speicherfehlerMelden();
    void iconDoppelklick();
    void iconRechtsklick();
    std::string tooltip() const;
    IconDatensatz datensatz(std::string_view tipp);

    const Ports& ports_;
    Datenbestand& bestand_;
    Aufzeichnungsablauf& aufzeichnungen_;
    Liveupdate& liveupdate_;
    Autostart& autostart_;
    FormHinweis& hinweis_;
    FormTermin& termin_;
    FormAufzeichnungsverlauf& verlauf_;
    ModulInterneKommunikation& hauptanwendung_;
    Traymenue& menue_;
    FormWendelView& view_;

    std::vector<Terminzeile> zeilen_;
    Terminliste zeilentermine_;
    // The selected row and its record, which may have left the list until the next Ausfüllen.
    std::optional<std::size_t> auswahl_;
    TerminZeiger auswahltermin_;
    std::optional<bool> menuezustand_;
    std::string statustext_;
    std::vector<Vorgemerktes> vorgemerkt_;
    std::optional<std::string> liveUpdateText_;
    std::optional<IconDatensatz> icon_;
    bool mausreaktion_ = false;
    bool geladen_ = false;
    bool beendet_ = false;
    bool beschaeftigt_ = false;
    bool konfigLaeuft_ = false;
    bool konfigVeraltet_ = false;
    bool bereit_ = false;
    bool menueOeffnet_ = false;
    bool frageOffen_ = false;
    bool ruftHauptanwendung_ = false;
    bool speicherfehlerGemeldet_ = false;
    bool speicherfehlerZuMelden_ = false;
};

}  // namespace wendel
