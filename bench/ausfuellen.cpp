// The list of entries with 10, 1,000 and 10,000 of them: the first fill, the rebuild of every minute, and
// what the user does in it, each with the painting that follows; beside it how much slower than with a tenth
// or a hundredth of the entries. A window without a screen (offscreen platform), fakes behind the other
// ports.

#include <QAbstractItemView>
#include <QApplication>
#include <QKeyEvent>
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "core/Programm.h"
#include "core/Terminzeilen.h"
#include "desktop/FormWendelFenster.h"

namespace {

using namespace wendel;

constexpr int kLaeufe = 15;

double millisekunden(const std::function<void()>& arbeit) {
    const auto beginn = std::chrono::steady_clock::now();
    arbeit();
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - beginn).count();
}

double median(const std::function<void()>& arbeit) {
    std::vector<double> zeiten;
    for (int i = 0; i < kLaeufe; ++i)
        zeiten.push_back(millisekunden(arbeit));
    std::sort(zeiten.begin(), zeiten.end());
    return zeiten[zeiten.size() / 2];
}

// One a minute: the time left of the next hour's changes with every minute, that of the others at times.
std::vector<GespeicherterTermin> termine(int anzahl) {
    std::vector<GespeicherterTermin> alle;
    for (int i = 0; i < anzahl; ++i)
        alle.push_back({DateAdd(Einheit::Minute, 5 + i, um(20, 0)), "Eintrag Nummer " + std::to_string(i),
                        static_cast<std::int16_t>(i % 4), i % 10 != 9});
    return alle;
}

void male() { QApplication::processEvents(); }

using Messwerte = std::map<std::string, double>;  // milliseconds

void misstErstesFuellen(Programm& welt, Messwerte& werte) {
    Terminliste eigene;
    for (const GespeicherterTermin& t : welt.gespeicherteTermine())
        eigene.push_back(std::make_shared<cTermin>(cTermin{.WeckZeit = t.weckZeit,
                                                           .WeckText = t.weckText,
                                                           .Intervall = t.intervall,
                                                           .Aktiv = t.aktiv,
                                                           .GefeuertFuer = {},
                                                           .Sendungsbeginn = {},
                                                           .Fensterende = {},
                                                           .Sendung = {}}));
    werte["1 first fill, window shown"] = median([&] {
        FormWendelFenster fenster{QString()};
        std::vector<Terminzeile> zeilen;
        for (const TerminZeiger& termin : zeilenreihenfolge(eigene, {}, {}))
            zeilen.push_back(terminzeile(*termin, welt.jetzt()));
        fenster.setzeZeilen(zeilen, std::nullopt);
        fenster.zeigen();
        male();
    });
}

Messwerte misst(int anzahl) {
    Programm welt;
    welt.setzeTermine(termine(anzahl));
    FakeHinweisView hinweis(welt.ports.aufrufe);
    FakeTerminView editor;
    FormWendelFenster fenster{QString()};
    Anwendung anwendung(
        welt.ports.ports(),
        Systemdienste{welt.ports.registrierung, welt.ports.einwahl, welt.ports.statusverbindung},
        Ansichten{fenster, hinweis, editor, welt.aufzeichnungsHinweis, welt.aufzeichnungsskript,
                  welt.verlauf},
        welt.menues, {"wendel", "/m", kTestordner, [] { return true; }});
    fenster.setzeForm(anwendung.formWendel());
    anwendung.starten();
    fenster.zeigen();
    male();
    auto& liste = *fenster.findChild<QAbstractItemView*>("ListViewTermineListe");
    const auto taste = [&](int code, const QString& text = {}) {
        QKeyEvent ereignis(QEvent::KeyPress, code, Qt::NoModifier, text);
        QApplication::sendEvent(&liste, &ereignis);
        male();
    };

    Messwerte werte;
    misstErstesFuellen(welt, werte);
    const auto naechsteMinute = [&] {
        welt.ports.uhr.vor(60);
        anwendung.formWendel().Ausfüllen();
    };
    werte["2 rebuild by the minute"] = median([&] { naechsteMinute(), male(); });
    werte["3 rebuild, nothing changed"] = median([&] { anwendung.formWendel().Ausfüllen(), male(); });
    werte["4 keys End and Home"] = median([&] { taste(Qt::Key_End), taste(Qt::Key_Home); });
    werte["5 key PageDown"] = median([&] { taste(Qt::Key_PageDown); });
    taste(Qt::Key_Home);
    werte["6 search by typing, no match"] = median([&] { taste(Qt::Key_Q, "q"); });
    return werte;
}

// Below a hundredth of a millisecond there is nothing to compare with.
std::string wachstum(double vorher, double nachher) {
    char text[32];
    std::snprintf(text, sizeof text, "x %.1f", nachher / vorher);
    return vorher < 0.01 ? "-" : text;
}

}  // namespace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication::setQuitOnLastWindowClosed(false);
    const QApplication anwendung(argc, argv);
    const int anzahlen[] = {10, 1'000, 10'000};
    std::vector<Messwerte> alle;
    for (const int anzahl : anzahlen)
        alle.push_back(misst(anzahl));
    std::printf("%-28s %8s %8s %8s   growth\n", "milliseconds, median of 15", "10", "1,000", "10,000");
    for (const auto& [name, zehn] : alle[0]) {
        const double tausend = alle[1][name], zehntausend = alle[2][name];
        std::printf("%-28s %8.2f %8.2f %8.2f   %s, %s\n", name.c_str() + 2, zehn, tausend, zehntausend,
                    wachstum(zehn, tausend).c_str(), wachstum(tausend, zehntausend).c_str());
    }
    return 0;
}
