// Appends the 25,000 broadcasts of tvdaten-gross.mdb with invented details through the recordset objects, as
// the guide's update does, beside prepared inserts of native SQLite into the same tables with the same
// indexes. Aim: at most three times SQLite's time.  anhaengen [tvdaten-gross.mdb]
//
// Ours: each update() is a statement of its own that a killed process does not lose (a power cut may take the
// last ones). The nearest of SQLite's modes is autocommit with a write-ahead log and synchronous=normal; one
// single transaction for everything is measured as well.

#include "Messung.h"
#include "jet/JetDatenbankmaschinen.h"
#include "jet/storage/Schema.h"
#include "support/Fakes.h"

namespace {

using namespace wendel;
using namespace wendel::jet;

struct Broadcast {
    std::vector<Variant> fields;  // without Pos
    std::string description, cast, page;
};

Variant variantOf(const RowView& row, std::size_t column) {
    if (row.isNull(column)) return Variant::null();
    std::string text;
    switch (row.table().columns[column].type) {
        case ColumnType::kText:
        case ColumnType::kMemo: row.appendText(column, text); return Variant::text(text);
        case ColumnType::kBoolean: return Variant::boolesch(row.asBool(column));
        case ColumnType::kDate: return Variant::datumRoh(row.asDouble(column));
        default: return Variant::integer(static_cast<std::int16_t>(row.asInteger(column)));
    }
}

std::vector<Broadcast> readGuide(Database& database) {
    std::vector<Broadcast> all;
    const auto table = database.table("Sendungen");
    for (TableScan scan(database.file(), *table); scan.next();) {
        Broadcast broadcast;
        for (std::size_t c = 1; c < table->columns.size(); ++c)
            broadcast.fields.push_back(variantOf(scan.row(), c));
        const std::size_t n = all.size();
        for (std::size_t words = 0; words < 10 + n % 70; ++words)
            broadcast.description +=
                (words * n) % 7 == 0 ? "Geschichte über Käpt'n Blaubär. " : "und so weiter ";
        broadcast.cast = "Ada Beispiel, Ole Muster, Käthe Probe";
        broadcast.page = "sendung" + std::to_string(n) + ".htm";
        all.push_back(std::move(broadcast));
    }
    return all;
}

void createLike(Database& from, const std::string& path) {
    createDatabaseFile(path, Version::kJet4);
    for (const char* name : {"Sendungen", "SendungenDetails"}) {
        const auto table = from.table(name);
        std::vector<ColumnSpec> columns;
        for (const Column& column : table->columns)
            columns.push_back(
                {.name = column.name,
                 .type = column.type,
                 .size = static_cast<std::uint16_t>(column.isText() ? column.length / 2 : column.length),
                 .autonumber = column.autonumber,
                 .compressible = column.compressible});
        std::vector<IndexSpec> indexes;
        for (const Index& index : table->indexes) {
            IndexSpec spec{
                .name = index.name, .columns = {}, .unique = index.unique, .primary = index.primary};
            for (const IndexColumn& part : index.columns)
                spec.columns.emplace_back(table->columns[part.column].name, part.descending);
            indexes.push_back(std::move(spec));
        }
        Database database(path, Access::kReadWrite);
        File::Writing writing(database.file());
        createTable(database, name, columns, indexes);
        writing.commit(Durability::kSoon);
    }
}

void appendOurs(const std::string& path, const std::vector<Broadcast>& guide) {
    FakeUhr clock;
    JetDatenbankmaschinen machines(clock, [](const std::string& p) { return p; });
    const auto database = machines.direkt()->openDatabase(path);
    const auto broadcasts = database->openRecordset("Select * from Sendungen", kDynaset, kAppendOnly);
    const auto details = database->openRecordset("Select * from SendungenDetails", kDynaset, kAppendOnly);
    for (const Broadcast& broadcast : guide) {
        broadcasts->addNew();
        const Variant pos = broadcasts->feld(0);
        for (std::size_t c = 0; c < broadcast.fields.size(); ++c)
            broadcasts->setzeFeld(c + 1, broadcast.fields[c]);
        broadcasts->update();
        details->addNew();
        details->setzeFeld(0, pos);
        details->setzeFeld(1, Variant::text(broadcast.description));
        details->setzeFeld(2, Variant::text(broadcast.cast));
        details->setzeFeld(3, Variant::text(broadcast.page));
        details->update();
    }
}

void bindVariant(sqlite3_stmt* statement, int place, const Variant& value) {
    if (value.istNull()) {
        sqlite3_bind_null(statement, place);
    } else if (const auto* text = std::get_if<std::string>(&value.wert())) {
        sqlite3_bind_text(statement, place, text->data(), static_cast<int>(text->size()), SQLITE_TRANSIENT);
    } else if (const auto* day = std::get_if<Variant::Tageszahl>(&value.wert())) {
        sqlite3_bind_double(statement, place, day->tage);
    } else {
        sqlite3_bind_int(statement, place, value.alsLong());
    }
}

void appendSqlite(bench::Sqlite& sqlite, Database& like, const std::vector<Broadcast>& guide) {
    sqlite3_stmt* broadcasts = sqlite.prepare(bench::insertStatement(*like.table("Sendungen")));
    sqlite3_stmt* details = sqlite.prepare(bench::insertStatement(*like.table("SendungenDetails")));
    int pos = 0;
    for (const Broadcast& broadcast : guide) {
        sqlite3_bind_null(broadcasts, 1);
        for (std::size_t c = 0; c < broadcast.fields.size(); ++c)
            bindVariant(broadcasts, static_cast<int>(c) + 2, broadcast.fields[c]);
        sqlite.step(broadcasts);
        sqlite3_bind_int(details, 1, ++pos);
        bindVariant(details, 2, Variant::text(broadcast.description));
        bindVariant(details, 3, Variant::text(broadcast.cast));
        bindVariant(details, 4, Variant::text(broadcast.page));
        sqlite.step(details);
    }
}

}  // namespace

int main(int argc, char** argv) {
    const bench::Folder folder;
    Database source(bench::guidePath(argc, argv), Access::kReadOnly);
    const std::vector<Broadcast> guide = readGuide(source);
    std::vector<double> ours, autocommit, transaction;
    for (int run = 0; run < 5; ++run) {
        const std::string name = folder.file(std::to_string(run));
        createLike(source, name + ".mdb");
        ours.push_back(bench::seconds([&] { appendOurs(name + ".mdb", guide); }));
        for (const bool single : {false, true}) {
            auto sqlite = std::make_unique<bench::Sqlite>(name + (single ? "-eine.db" : "-jede.db"));
            sqlite->run("pragma journal_mode=wal; pragma synchronous=normal;");
            bench::createTable(*sqlite, *source.table("Sendungen"));
            bench::createTable(*sqlite, *source.table("SendungenDetails"));
            (single ? transaction : autocommit).push_back(bench::seconds([&] {
                if (single) sqlite->run("begin");
                appendSqlite(*sqlite, source, guide);
                if (single) sqlite->run("commit");
                sqlite.reset();  // with the checkpoint, as ours
            }));
        }
    }
    std::printf("%zu broadcasts with details appended and closed; median of %zu:\n", guide.size(),
                ours.size());
    bench::report("beside autocommit (WAL, synchronous=normal)", bench::median(ours),
                  bench::median(autocommit), "aim 3");
    bench::report("beside one transaction", bench::median(ours), bench::median(transaction),
                  "for comparison");
    return 0;
}
