// How much memory a scan and an update of every row take in a file of 500 MB: the page cache has a stated
// size, whatever the file's. The file is made here (a minute or so).  rohscan-gross [MEGABYTES]

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include "Messung.h"
#include "jet/JetDatenbankmaschinen.h"
#include "jet/storage/Schema.h"
#include "jet/storage/TableWriter.h"
#include "support/Fakes.h"

namespace {

using namespace wendel;
using namespace wendel::jet;

void fill(const std::string& path, std::size_t megabytes) {
    createDatabaseFile(path, Version::kJet4);
    Database database(path, Access::kReadWrite);
    {
        std::vector<ColumnSpec> columns = {{.name = "ID", .type = ColumnType::kLong, .autonumber = true},
                                           {.name = "N", .type = ColumnType::kLong}};
        for (int c = 0; c < 3; ++c)
            columns.push_back({.name = "T" + std::to_string(c), .type = ColumnType::kText, .size = 255});
        const IndexSpec key{.name = "PrimaryKey", .columns = {{"ID", false}}, .primary = true};
        File::Writing writing(database.file());
        createTable(database, "Gross", columns, std::span(&key, 1));
        writing.commit(Durability::kSoon);
    }
    Database filled(path, Access::kReadWrite);
    TableWriter writer(filled.file(), filled.table("Gross"));
    const std::string text(255, 'x');
    for (std::int64_t row = 0; filled.file().pageCount() < megabytes * 256;) {
        File::Writing writing(filled.file());
        for (int n = 0; n < 1000; ++n, ++row)
            writer.insert(std::vector<Cell>{std::monostate(), row, std::string_view(text),
                                            std::string_view(text), std::string_view(text)});
        writing.commit(Durability::kSoon);
        if (filled.file().pageCount() % 64 == 0) filled.file().checkpoint();
    }
}

// In a process of its own: its peak is that of this work alone.
void measure(const char* what, const std::function<void()>& work) {
    std::fflush(stdout);  // or the child would print it again
    const pid_t child = ::fork();
    if (child == 0) {
        const double time = bench::seconds(work);
        rusage usage{};
        ::getrusage(RUSAGE_SELF, &usage);
        std::printf("  %-34s %6.1f s, peak memory %6.1f MB\n", what, time,
                    static_cast<double>(usage.ru_maxrss) / 1024);
        std::fflush(stdout);
        ::_exit(0);
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    bench::require(status == 0, what);
}

}  // namespace

int main(int argc, char** argv) {
    const bench::Folder folder;
    const std::string path = folder.file("gross.mdb");
    const std::size_t megabytes = argc > 1 ? static_cast<std::size_t>(std::atoi(argv[1])) : 500;
    measure("making it", [&] { fill(path, megabytes); });
    std::printf("%.0f MB:\n", static_cast<double>(std::filesystem::file_size(path)) / 1048576);
    FakeUhr clock;
    JetDatenbankmaschinen machines(clock, [](const std::string& p) { return p; });
    measure("a process that does nothing", [] {});
    measure("storage layer: scan", [&] {
        Database database(path, Access::kReadOnly);
        std::string text;
        for (TableScan scan(database.file(), *database.table("Gross")); scan.next(); text.clear())
            scan.row().appendText(2, text);
    });
    measure("Select Sum(N)", [&] {
        const auto database = machines.direkt()->openDatabase(path);
        database->openRecordset("Select Sum(N) from Gross", kSnapshot, kForwardOnly)->feld(0);
    });
    measure("Update of every row", [&] {
        const auto database = machines.direkt()->openDatabase(path);
        database->execute("Update Gross Set N=N+1", kFailOnError);
    });
    measure("Update of a hundredth of the rows", [&] {
        const auto database = machines.direkt()->openDatabase(path);
        database->execute("Update Gross Set N=N+1 Where ID between 1000 and 4000", kFailOnError);
    });
    return 0;
}
