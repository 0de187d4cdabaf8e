// The live update step by step over one XMLTV file: the parser alone, our reader, with staging, into a new
// database, and twice more over the same one, unchanged and with every broadcast changed.
//   bench-skarvel FILE.xml    (bench/skarvel.py makes one of realistic size)

#include <expat.h>
#include <sys/resource.h>

#include <atomic>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <functional>
#include <memory>
#include <string>

#include "../apps/Konsolenports.h"
#include "../apps/quillon/Fernsehdatenbank.h"
#include "../apps/skarvel/Ablage.h"
#include "../apps/skarvel/LiveUpdate.h"
#include "../apps/skarvel/Quelle.h"
#include "Messung.h"
#include "desktop/LinuxUhr.h"
#include "desktop/Pfade.h"

namespace {

using namespace wendel;
using namespace wendel::skarvel;

void nurParsen(const std::string& pfad) {
    const std::unique_ptr<std::remove_pointer_t<XML_Parser>, decltype(&XML_ParserFree)> parser(
        XML_ParserCreate(nullptr), XML_ParserFree);
    std::ifstream datei(pfad, std::ios::binary);
    std::string stueck(128 * 1024, '\0');
    while (datei.read(stueck.data(), static_cast<std::streamsize>(stueck.size())) || datei.gcount() > 0)
        XML_Parse(parser.get(), stueck.data(), static_cast<int>(datei.gcount()), 0);
}

struct Niemand : XmltvEmpfaenger {
    void kanal(XmltvKanal) override {}
    void sendung(XmltvSendung) override {}
};
struct Stumm : Verlauf {
    void melde(const std::string&, int) override {}
    bool abgebrochen() override { return false; }
};

double prozessorzeit() {
    rusage verbrauch{};
    getrusage(RUSAGE_SELF, &verbrauch);
    const auto sekunden = [](const timeval& zeit) {
        return static_cast<double>(zeit.tv_sec) + static_cast<double>(zeit.tv_usec) / 1e6;
    };
    return sekunden(verbrauch.ru_utime) + sekunden(verbrauch.ru_stime);
}

// Another title for each broadcast.
void schreibeGeaendert(const std::string& von, const std::string& nach) {
    std::ifstream ein(von);
    std::ofstream aus(nach);
    for (std::string zeile; std::getline(ein, zeile);) {
        if (const auto titel = zeile.find("</title>"); titel != std::string::npos)
            zeile.insert(titel, " neu");
        aus << zeile << "\n";
    }
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 2) return std::fputs("bench-skarvel FILE.xml\n", stderr), 2;
    const std::string datei = std::filesystem::absolute(argv[1]).string();
    const bench::Folder folder;
    const std::string ordner = logischerPfad(std::filesystem::absolute(folder.file("")).string()) + "\\";
    LinuxUhr uhr;
    Konsolenports ports(uhr);
    Einstellungen einstellungen(ports.ports().dateien, ordner);
    if (!quillon::Fernsehdatenbank(ports.ports(), einstellungen, ordner).anlegen(ordner + "tvdaten.mdb"))
        return 1;
    std::string meldung;

    const auto update = [&](const std::string& quelle) {
        einstellungen.setzeEinstellung(einstellung::kXmltvQuelle, Variant::text(quelle));
        Stumm stumm;
        LiveUpdate lauf(ports.ports(), einstellungen, ordner, stumm);
        lauf.laufe();
        const Schreibbilanz& b = lauf.bilanz();
        meldung = std::to_string(b.neu) + " new, " + std::to_string(b.geaendert) + " changed, " +
                  std::to_string(b.entfallen) + " gone";
    };
    // Processor time is what a busy machine does not change; the time on the clock has the update's pauses,
    // too.
    double parsen = 0;
    const auto miss = [&](const char* was, const std::function<void()>& arbeit) {
        const double vorher = prozessorzeit();
        const double sekunden = bench::seconds(arbeit), gerechnet = prozessorzeit() - vorher;
        if (parsen == 0) parsen = gerechnet;
        rusage verbrauch{};
        getrusage(RUSAGE_SELF, &verbrauch);
        std::printf("%-28s %6.2f s, %6.2f of the processor: %5.1f x parsing, peak %ld MB  %s\n", was,
                    sekunden, gerechnet, gerechnet / parsen, verbrauch.ru_maxrss / 1024, meldung.c_str());
        std::fflush(stdout);
    };
    std::printf("%s, %.0f MB\n", datei.c_str(), static_cast<double>(std::filesystem::file_size(datei)) / 1e6);
    miss("parsing alone", [&] { nurParsen(datei); });
    miss("reader", [&] {
        Niemand niemand;
        liesDateien(datei, niemand, [](double) {});
    });
    miss("reader and staging", [&] {
        Ablage ablage;
        liesDateien(datei, ablage, [](double) {});
    });
    miss("update into a new database", [&] { update(datei); });
    miss("the same again", [&] { update(datei); });
    const std::string geaendert = folder.file("geaendert.xml");
    schreibeGeaendert(datei, geaendert);
    miss("every title changed", [&] { update(geaendert); });
    return 0;
}
