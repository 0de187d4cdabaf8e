// The windows of the tray menu over the real forms: building the tree, showing and painting it for the first
// time and again, opening a sub-menu; and what 1,000 openings leave behind in memory, with the tree kept and
// with a new one each time. A window without a screen (offscreen platform), no database.

#include <unistd.h>

#include <QApplication>
#include <QWidget>
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <fstream>
#include <functional>
#include <string>
#include <vector>

#include "desktop/Desktopmenues.h"
#include "traymenu/Menueinhalt.h"

namespace {

using namespace wendel;

constexpr int kLaeufe = 15, kOeffnungen = 1000;

double median(const std::function<void()>& arbeit) {
    std::vector<double> zeiten;
    for (int i = 0; i < kLaeufe; ++i) {
        const auto beginn = std::chrono::steady_clock::now();
        arbeit();
        zeiten.push_back(
            std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - beginn).count());
    }
    std::sort(zeiten.begin(), zeiten.end());
    return zeiten[zeiten.size() / 2];
}

long speicherKB() {
    std::ifstream datei("/proc/self/statm");
    long gesamt = 0, resident = 0;
    datei >> gesamt >> resident;
    return resident * (::sysconf(_SC_PAGESIZE) / 1024);
}

struct OhneWirkung final : Menueaktionen {
    void kurzzeitWecker(std::int16_t) override {}
    void wendelAnzeigen() override {}
    void hauptanwendung(const std::string&) override {}
    void beenden() override {}
    void nachErinnern() override {}
    bool kannImTVZeigen() override { return true; }
    void imTVZeigen(const std::string&) override {}
};

Sendungsliste liste(int anzahl) {
    Sendungsliste neu;
    for (int i = 0; i < anzahl; ++i) {
        cSendung sendung;
        sendung.Pos = i + 1;
        sendung.Titel = "Eine Sendung mit der Nummer " + std::to_string(i);
        sendung.Genre = "Spielfilm";
        sendung.SenderKennung = "zdf";
        sendung.Beginn = DateSerial(2012, 12, 24) + TimeSerial(20, 15, 0);
        sendung.Bewertung = static_cast<std::int16_t>(i % 6);
        neu.push_back(sendung);
    }
    return neu;
}

struct Menue {
    Menue() { sender.add(std::make_shared<cSender>(), "zdf"); }
    ~Menue() { ModulBrannikMenue::UnloadAllMenues(geladene); }

    void baue() {
        Menueinhalt::BuildTrayMenu(kontext, {lang, lang, lang, lang, "Fennow", 1040, &tipp});
        raeume();
    }
    void zeige() {
        geladene.obermenue()->ShowObermenue({700, 590});
        QApplication::processEvents();
    }
    void zeigeUntermenue() {
        geladene.obermenue()->waehlen(1);
        QApplication::processEvents();
    }
    void verbirg() {
        ModulBrannikMenue::HideAllMenues(geladene);
        QApplication::processEvents();
    }
    static void raeume() { QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete); }

    Desktopmenues desktop{""};
    OhneWirkung aktionen;
    Sendersammlung sender;
    Markierungslisten markierungen{.favoriten = ";3;", .erinnerungen = ";5;"};
    GeladeneMenues geladene;
    Menuekontext kontext{desktop, aktionen, geladene, sender, markierungen};
    Sendungsliste lang = liste(51);
    Tagestippfelder tipp{"Ein Fest", "Komödie", "ZDF", "20:15 Uhr", "", 77};
};

void oeffneOft(const char* was, Menue& menue, const std::function<void()>& vorher) {
    const auto runde = [&] {
        vorher();
        menue.zeige();
        menue.zeigeUntermenue();
        menue.verbirg();
    };
    for (int i = 0; i < kOeffnungen / 10; ++i)
        runde();
    const long anfangs = speicherKB();
    for (int i = 0; i < kOeffnungen; ++i)
        runde();
    std::printf("%d openings, %s: %+ld KB (%ld KB resident)\n", kOeffnungen, was, speicherKB() - anfangs,
                speicherKB());
}

}  // namespace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication anwendung(argc, argv);
    Menue menue;
    std::printf("build the tree: %.2f ms\n", median([&] { menue.baue(); }));
    std::printf("show and paint, new tree: %.2f ms (with building)\n", median([&] {
                    menue.baue();
                    menue.zeige();
                }));
    std::printf("show and paint again: %.2f ms\n", median([&] {
                    menue.verbirg();
                    menue.zeige();
                }));
    std::printf("and a sub-menu of 51 rows: %.2f ms\n", median([&] {
                    menue.verbirg();
                    menue.zeige();
                    menue.zeigeUntermenue();
                }));
    oeffneOft("same tree", menue, [] {});
    oeffneOft("new tree each time", menue, [&] { menue.baue(); });
}
