// The maintenance of 500 marks, 50 of them recurring, over the 25,000 broadcasts of tvdaten-gross.mdb, beside
// the same statements in SQLite's words on native SQLite with the same indexes. Aim: at most twice SQLite's
// time.
//   pflege [tvdaten-gross.mdb]
//
// The run is the program's own (Markierungspflege); what it sends is noted on the way. Two runs are measured:
// the first has new broadcasts to mark, the second finds everything done. Each statement of SQLite commits by
// itself with a write-ahead log and synchronous=full, as Execute of ours is on the disk when it returns.

#include <regex>

#include "Messung.h"
#include "jet/JetDatenbankmaschinen.h"
#include "support/Fakes.h"
#include "tvdb/Markierungspflege.h"
#include "tvdb/ModulDatenbankzugriff.h"
#include "tvdb/ModulGrundbefehle.h"

namespace {

using namespace wendel;

const Datum kNow = DateSerial(2012, 12, 19) + TimeSerial(20, 0, 0);
constexpr const char* kUser = "PC-BENCH";

// Passes everything on and notes the statements.
class NotingDatabase : public Datenbank {
  public:
    NotingDatabase(std::unique_ptr<Datenbank> inner, std::vector<std::string>& notes)
        : inner_(std::move(inner)), notes_(notes) {}
    std::string name() override { return inner_->name(); }
    std::unique_ptr<Recordset> openRecordset(const std::string& sql, std::optional<int> typ,
                                             std::optional<int> optionen) override {
        notes_.push_back(sql);
        return inner_->openRecordset(sql, typ, optionen);
    }
    void execute(const std::string& sql, int optionen) override {
        notes_.push_back(sql);
        inner_->execute(sql, optionen);
    }
    int recordsetsCount() override { return inner_->recordsetsCount(); }
    void close() override { inner_->close(); }

  private:
    std::unique_ptr<Datenbank> inner_;
    std::vector<std::string>& notes_;
};

class NotingMachines : public Datenbankmaschinen, public Datenbankmaschine {
  public:
    explicit NotingMachines(Datenbankmaschinen& inner) : inner_(inner) {}
    std::unique_ptr<Datenbankmaschine> direkt() override {
        return std::make_unique<NotingMachines>(inner_, notes);
    }
    std::unique_ptr<Datenbankmaschine> nachProgrammkennung(const std::string&) override { return direkt(); }
    std::unique_ptr<Datenbank> openDatabase(const std::string& path) override {
        return std::make_unique<NotingDatabase>(inner_.direkt()->openDatabase(path), *shared_);
    }
    void repairDatabase(const std::string&) override {}
    void compactDatabase(const std::string&, const std::string&) override {}
    NotingMachines(Datenbankmaschinen& inner, std::vector<std::string>& shared)
        : inner_(inner), shared_(&shared) {}

    std::vector<std::string> notes;

  private:
    Datenbankmaschinen& inner_;
    std::vector<std::string>* shared_ = &notes;
};

// The program's statements in SQLite's words: dates as day numbers, patterns with %, Yes/No as -1 and 0.
std::string inSqlite(std::string sql) {
    if (sql.find("right join") != std::string::npos)
        return "update Markierungen set Pos=0 where not exists (select 1 from Sendungen where "
               "Sendungen.Pos=Markierungen.Pos)";
    sql = bench::datesAsNumbers(sql);
    const auto replaceAll = [&](const char* pattern, const char* with) {
        sql = std::regex_replace(sql, std::regex(pattern, std::regex::icase), with);
    };
    replaceAll("Dateadd\\('n',val\\(Dauer\\),Datum\\+Uhrzeit\\)", "(Datum+Uhrzeit+cast(Dauer as real)/1440)");
    replaceAll("\\bdate\\(\\)", "41262");
    replaceAll("'\\*(Wiederkehrend=1)\\*'", "'%$1%'");
    replaceAll("(like '(?:[^']|'')*)\\*'", "$1%'");
    replaceAll("\\btrue\\b", "-1");
    replaceAll("\\bfalse\\b", "0");
    return sql;
}

// 450 marks of single broadcasts and 50 that recur, over all channels and days.
void addMarks(Datenbank& database) {
    using namespace ModulGrundbefehle;
    for (int n = 0; n < 500; ++n) {
        const auto rs = database.openRecordset(
            "Select * from Sendungen Where Pos=" + std::to_string(1 + n * 50), kSnapshot, kForwardOnly);
        const Datum start = rs->feld("Beginn").alsDatum();
        const bool recurring = n % 10 == 0;
        const std::string options = recurring ? "Wiederkehrend=1;SenderEgal=0;Erinnerungszeit=201212172000"
                                              : "Erinnerungszeit=201212172000";
        database.execute(
            "Insert Into Markierungen "
            "(User,Pos,Sendung,Senderkennung,Datum,Uhrzeit,Dauer,Favorit,Erinnerung,Optionen,"
            "Aufzeichnung,SendungID,InhaltID,Aktualisierung,KzAusblenden) Values ('" +
                std::string(kUser) + "'," + std::to_string(1 + n * 50) + "," +
                SqlText(rs->feld("Titel").alsText()) + "," + SqlText(rs->feld("SenderKennung").alsText()) +
                "," + SqlDatumZeit(start.datumsteil()) + "," + SqlDatumZeit(start.uhrzeitteil()) + ",'" +
                rs->feld("Dauer").alsText() + "',true,-1,'" + options + "',0,'S','I',0,0)",
            kFailOnError);
    }
}

struct Times {
    std::vector<double> ours[2], theirs[2];
};

void measure(const std::string& prepared, const bench::Folder& folder, int run, Times& times) {
    const std::string path = folder.file(std::to_string(run) + ".mdb");
    std::filesystem::copy_file(prepared, path);
    bench::Sqlite sqlite(path + ".db");
    sqlite.run("pragma journal_mode=wal; pragma synchronous=full; pragma cache_size=-1024;");
    {
        jet::Database database(path, jet::Access::kReadOnly);
        for (const char* table : {"Sendungen", "Markierungen"})
            bench::copyTable(database, table, sqlite);
    }
    FakePorts fakes;
    fakes.uhr.stelle(kNow);
    jet::JetDatenbankmaschinen machines(fakes.uhr, [](const std::string& p) { return p; });
    NotingMachines noting(machines);
    const Ports some = fakes.ports();
    const Ports ports{some.uhr,     some.dateien,    some.meldungen, some.fenster, some.klang, some.prozesse,
                      some.starter, some.automation, some.symbol,    some.rechner, noting};
    Prozesswerte values;
    values.datenbankdatei = path;
    Einstellungen settings(fakes.dateien, "\\wendel\\");
    ModulDatenbankzugriff access(ports, settings, values);
    for (std::size_t part = 0; part < 2; ++part) {
        noting.notes.clear();
        Markierungslisten lists;
        times.ours[part].push_back(
            bench::seconds([&] { Markierungspflege(access, kUser, 7).laufen(kNow, lists); }));
        std::vector<std::string> statements;
        for (const std::string& sql : noting.notes)
            statements.push_back(inSqlite(sql));
        times.theirs[part].push_back(bench::seconds([&] {
            for (const std::string& sql : statements)
                sqlite.readAll(sql);
        }));
        if (run == 0) std::printf("  run %zu: %zu statements\n", part + 1, statements.size());
    }
    jet::Database after(path, jet::Access::kReadOnly);
    std::size_t marks = 0;
    for (jet::TableScan scan(after.file(), *after.table("Markierungen")); scan.next();)
        ++marks;
    bench::require(static_cast<int>(marks) == sqlite.readAll("select * from Markierungen"),
                   "the two end with different marks");
    if (run == 0) std::printf("  %zu marks at the end of both\n", marks);
}

}  // namespace

int main(int argc, char** argv) {
    const std::string guide = bench::guidePath(argc, argv);
    const bench::Folder folder;
    const std::string prepared = folder.file("vorbereitet.mdb");
    std::filesystem::copy_file(guide, prepared);
    std::filesystem::permissions(prepared, std::filesystem::perms::owner_all);
    {
        FakeUhr clock;
        jet::JetDatenbankmaschinen machines(clock, [](const std::string& p) { return p; });
        addMarks(*machines.direkt()->openDatabase(prepared));
    }
    Times times;
    std::printf("maintenance of 500 marks, 50 recurring, over %s; median of 5:\n", guide.c_str());
    for (int run = 0; run < 5; ++run)
        measure(prepared, folder, run, times);
    bench::report("first run, with new broadcasts", bench::median(times.ours[0]),
                  bench::median(times.theirs[0]), "aim 2");
    bench::report("second run, everything done", bench::median(times.ours[1]), bench::median(times.theirs[1]),
                  "aim 2");
    return 0;
}
