// Thousands of random changes against a trivial model in memory: whatever the engine says it has done must be
// what a fresh reader, the whole-file check and another program's reader see.

#include <gtest/gtest.h>

#include <algorithm>
#include <deque>
#include <filesystem>
#include <functional>
#include <iostream>
#include <map>
#include <optional>

#include "jet/proof/Proof.h"
#include "jet/proof/Values.h"
#include "jet/storage/Compact.h"
#include "jet/storage/OwnFile.h"
#include "jet/storage/Table.h"
#include "jet/storage/TableWriter.h"
#include "support/Fehlernummer.h"

namespace wendel::jet::proof {
namespace {

constexpr unsigned kSeed = 20121224;
std::int64_t wholeOf(std::size_t n) { return static_cast<std::int64_t>(n); }

const std::vector<IndexSpec> kIndexes = {
    {.name = "PrimaryKey", .columns = {{"ID", false}}, .unique = true, .primary = true},
    {.name = "La", .columns = {{"La", false}}, .unique = true},
    {.name = "GaAb", .columns = {{"Ga", true}}, .ignoreNulls = true},
    {.name = "Da", .columns = {{"Da", false}}},
    {.name = "TxByAb", .columns = {{"Tx", false}, {"By", true}}},
    {.name = "TkAb", .columns = {{"Tk", true}, {"Ja", false}}},
    {.name = "Geld", .columns = {{"Geld", false}, {"Do", true}}},
    {.name = "Bin", .columns = {{"Bin", false}}},
    {.name = "Gu", .columns = {{"Gu", true}}},
    {.name = "Me", .columns = {{"Me", false}}}};

void createOwnFile(const std::string& path, Version version) {
    test::createFileWithTable(path, version, "Probe", test::everyType(version), kIndexes);
}

// Reads the table anew and says where it differs from the rows expected.
template <class Key, class KeyOf>
std::string difference(Database& database, const std::string& table, const std::map<Key, Row>& expected,
                       KeyOf keyOf) {
    const std::shared_ptr<const TableDef> definition = database.table(table);
    std::size_t found = 0;
    for (TableScan scan(database.file(), *definition); scan.next(); ++found) {
        const auto row = expected.find(keyOf(scan.row()));
        if (row == expected.end())
            return table + ": a row that is not expected, " + std::to_string(keyOf(scan.row()));
        const Row read = readRow(scan.row());
        for (std::size_t c = 0; c < row->second.size(); ++c) {
            if (read[c] != row->second[c])
                return table + " " + std::to_string(row->first) + "." + definition->columns[c].name + " is " +
                       read[c].shown() + " instead of " + row->second[c].shown();
        }
    }
    return found == expected.size()
               ? ""
               : table + ": " + std::to_string(expected.size() - found) + " rows missing";
}

// Where what another program reads differs, in the columns of which it is known to show the truth.
template <class Key>
std::string exportDifference(const std::string& path, const TableDef& table,
                             const std::map<Key, Row>& expected) {
    if (expected.empty()) return "";
    std::vector<bool> comparable(table.columns.size(), true);
    for (const auto& [key, row] : expected) {
        for (std::size_t c = 0; c < row.size(); ++c)
            comparable[c] = comparable[c] && row[c].exported().has_value();
    }
    const auto line = [&comparable](const auto& cell) {
        std::string text;
        for (std::size_t c = 0; c < comparable.size(); ++c)
            text += (comparable[c] ? cell(c) : "") + "|";
        return text;
    };
    std::multiset<std::string> wanted, found;
    for (const auto& [key, row] : expected)
        wanted.insert(line([&values = row](std::size_t c) { return *values[c].exported(); }));
    for (const std::vector<std::string>& cells : exported(path, table.name))
        found.insert(line([&cells](std::size_t c) { return c < cells.size() ? cells[c] : ""; }));
    if (wanted == found) return "";
    const auto other = std::mismatch(wanted.begin(), wanted.end(), found.begin(), found.end());
    return table.name + ": mdb-export shows " + (other.second == found.end() ? "too little" : *other.second) +
           " instead of " + (other.first == wanted.end() ? "nothing" : *other.first);
}

// The tables of one file, changed row by row through the storage layer; rows go by their identity.
class StorageModel {
  public:
    StorageModel(std::string path, std::vector<std::string> names, unsigned seed)
        : path_(std::move(path)), random_(seed), before_(findings(path_)) {
        reopen();
        for (const std::string& name : names)
            load(name);
    }

    // Some statements' worth of changes, each kept or taken back as a whole.
    void run(int statements) {
        for (int n = 0; n < statements; ++n) {
            growing_ = oneIn(random_, 60) ? !growing_ : growing_;
            Table& table = tables_[below(random_, tables_.size())];
            std::optional<File::Writing> writing(std::in_place, database_->file());
            const int number = fehlernummerVon([&] {
                for (std::size_t changes = 1 + below(random_, 6); changes > 0; --changes)
                    change(table);
                if (oneIn(random_, 12)) throw Fehler(kTakenBack, "", "");
                writing->commit(Durability::kSoon);
                ++kept_;
            });
            writing.reset();
            if (number != 0) takeBack(table, number);
            undo_.clear();
        }
    }

    void verify() {
        for (Table& table : tables_)
            table.writer.reset();
        database_.reset();
        EXPECT_EQ(newFindings(path_, before_), "");
        reopen();
        const File::Reading reading(database_->file());
        for (const Table& table : tables_) {
            EXPECT_EQ(
                difference(*database_, table.name, table.rows, [](const RowView& row) { return row.id(); }),
                "");
            if (!haveMdbtools() || table.abandonedRows) continue;
            EXPECT_EQ(exportDifference(path_, *database_->table(table.name), table.rows), "");
        }
    }

    // A compacted copy holds the same rows, is sound whatever the file was, and no larger.
    void verifyCompacted() const {
        const std::string compacted = path_ + ".kompakt";
        compactDatabaseFile(path_, compacted);
        EXPECT_EQ(newFindings(compacted), "");
        EXPECT_LE(std::filesystem::file_size(compacted), std::filesystem::file_size(path_));
        Database database(compacted, Access::kReadOnly);
        for (const Table& table : tables_) {
            std::multiset<std::string> expected, found;
            for (const auto& [id, row] : table.rows)
                expected.insert(joined(row));
            const auto definition = database.table(table.name);
            for (TableScan scan(database.file(), *definition); scan.next();)
                found.insert(joined(readRow(scan.row())));
            EXPECT_EQ(found, expected) << table.name;
        }
    }

    std::string counts() const {
        std::string text = std::to_string(kept_) + " statements kept";
        for (const auto& [number, count] : refused_)
            text += ", " + std::to_string(count) + " x " + std::to_string(number);
        return text;
    }
    int refused(int number) const { return refused_.contains(number) ? refused_.at(number) : 0; }
    static constexpr int kTakenBack = -1;

  private:
    struct Table {
        std::string name;
        std::map<RowId, Row> rows{};
        std::set<std::size_t> inUnique{};  // columns
        std::int32_t lastNumber = 0;
        bool abandonedRows = false;  // of which mdb-export makes rows
        std::unique_ptr<TableWriter> writer{};
    };

    static std::string joined(const Row& row) {
        std::string text;
        for (const Value& value : row)
            text += value.shown() + "\t";
        return text;
    }

    void reopen() { database_.emplace(path_, Access::kReadWrite, 256 * 1024); }

    void load(const std::string& name) {
        Table table{.name = name};
        const std::shared_ptr<const TableDef> definition = database_->table(name);
        for (TableScan scan(database_->file(), *definition); scan.next();)
            table.rows[scan.row().id()] = readRow(scan.row());
        for (const Index& index : definition->indexes)
            for (const IndexColumn& column : index.columns)
                if (index.unique || index.required) table.inUnique.insert(column.column);
        table.lastNumber = static_cast<std::int32_t>(definition->lastAutonumber);
        for (const std::string& finding : before_)
            table.abandonedRows |= finding.starts_with(name + ": verlassene Zeile");
        tables_.push_back(std::move(table));
    }

    TableWriter& writer(Table& table) {
        if (!table.writer)
            table.writer = std::make_unique<TableWriter>(database_->file(), database_->table(table.name));
        return *table.writer;
    }

    void change(Table& table) {
        const std::size_t kind = below(random_, 10);
        if (table.rows.empty() || kind < (growing_ ? 5u : 2u)) return insert(table);
        auto row = table.rows.lower_bound(static_cast<RowId>(
            table.rows.begin()->first +
            static_cast<RowId>(random_() % static_cast<std::uint64_t>(table.rows.rbegin()->first -
                                                                      table.rows.begin()->first + 1))));
        kind < (growing_ ? 9u : 5u) ? update(table, row) : remove(table, row);
    }

    Value valueFor(const Table& table, const Column& column, std::size_t position) {
        return randomValue(random_, column, database_->file().version(), table.inUnique.contains(position));
    }

    void insert(Table& table) {
        const TableDef& definition = *database_->table(table.name);
        Row row;
        std::optional<std::size_t> counting;
        for (std::size_t c = 0; c < definition.columns.size(); ++c) {
            const Column& column = definition.columns[c];
            row.push_back(valueFor(table, column, c));
            if (column.autonumber && column.type == ColumnType::kLong) {
                counting = c;
                row[c].data = std::monostate();
                if (oneIn(random_, 20)) row[c].data = table.lastNumber + wholeOf(1 + below(random_, 50));
            } else if (column.autonumber && row[c].isNull()) {
                row[c] = randomValue(random_, column, database_->file().version(), true);
                if (row[c].isNull()) row[c].data = Guid{1};
            }
        }
        std::vector<Cell> cells;
        for (const Value& value : row)
            cells.push_back(value.cell());
        const RowId id = writer(table).insert(cells);
        if (counting) {
            const std::int64_t expected = row[*counting].isNull()
                                              ? std::int64_t{table.lastNumber} + 1
                                              : std::get<std::int64_t>(row[*counting].data);
            EXPECT_EQ(writer(table).lastAutonumber(), expected);
            row[*counting].data = expected;
            table.lastNumber = static_cast<std::int32_t>(std::max<std::int64_t>(table.lastNumber, expected));
        }
        EXPECT_FALSE(table.rows.contains(id)) << "the place of a row that lives, " << id;
        undo_.emplace_back(id, std::nullopt);
        table.rows[id] = std::move(row);
    }

    void update(Table& table, std::map<RowId, Row>::iterator row) {
        const TableDef& definition = *database_->table(table.name);
        Row changed = row->second;
        std::vector<std::size_t> columns;
        std::vector<Cell> cells;
        for (std::size_t n = 1 + below(random_, 3); n > 0; --n) {
            const std::size_t c = below(random_, definition.columns.size());
            if (definition.columns[c].autonumber || std::count(columns.begin(), columns.end(), c) != 0)
                continue;
            columns.push_back(c);
            changed[c] = valueFor(table, definition.columns[c], c);
        }
        for (const std::size_t c : columns)
            cells.push_back(changed[c].cell());
        writer(table).update(row->first, columns, cells);
        undo_.emplace_back(row->first, std::move(row->second));
        row->second = std::move(changed);
    }

    void remove(Table& table, std::map<RowId, Row>::iterator row) {
        writer(table).remove(row->first);
        undo_.emplace_back(row->first, std::move(row->second));
        table.rows.erase(row);
    }

    void takeBack(Table& table, int number) {
        ++refused_[number];
        for (; !undo_.empty(); undo_.pop_back()) {
            auto& [id, old] = undo_.back();
            old ? void(table.rows[id] = std::move(*old)) : void(table.rows.erase(id));
        }
        table.lastNumber = static_cast<std::int32_t>(
            loadTableDef(database_->file(), database_->table(table.name)->page, "")->lastAutonumber);
        writer(table).forget();
    }

    std::string path_;
    Random random_;
    std::set<std::string> before_;
    std::optional<Database> database_;
    std::deque<Table> tables_;
    std::vector<std::pair<RowId, std::optional<Row>>> undo_;
    bool growing_ = true;
    int kept_ = 0;
    std::map<int, int> refused_;
};

struct StorageCase {
    const char* name;
    const char* file;  // nullptr: one of our own
    std::vector<std::string> tables;
    Version version = Version::kJet4;
};

class StorageChanges : public testing::TestWithParam<StorageCase> {};

TEST_P(StorageChanges, AgreeWithTheModel) {
    const StorageCase& scenario = GetParam();
    const test::TemporaryCopy copy;
    if (scenario.file == nullptr) {
        createOwnFile(copy.path(), scenario.version);
    } else if (test::haveData()) {
        copy.write(test::readFile(test::dataPath(scenario.file)));
    } else {
        GTEST_SKIP() << "no example files at " << test::dataPath("");
    }
    const unsigned seed = static_cast<unsigned>(setting("WENDEL_SEED", kSeed));
    SCOPED_TRACE("WENDEL_SEED=" + std::to_string(seed));
    StorageModel model(copy.path(), scenario.tables, seed);
    for (int round = 0; round < 3 * setting("WENDEL_ROUNDS", 1) && !HasFailure(); ++round) {
        model.run(150);
        model.verify();
    }
    model.verifyCompacted();
    std::cout << model.counts() << "\n";
    for (const int damaged : {3049, 3050, 3051, 3260})
        EXPECT_EQ(model.refused(damaged), 0) << damaged;
}

INSTANTIATE_TEST_SUITE_P(
    Files, StorageChanges,
    testing::Values(
        StorageCase{"OwnJet4", nullptr, {"Probe"}},
        StorageCase{"OwnJet3", nullptr, {"Probe"}, Version::kJet3},
        StorageCase{
            "Guide", "tvdaten-klein.mdb", {"Sendungen", "SendungenDetails", "Markierungen", "Sender"}},
        StorageCase{"EveryFeature",
                    "typen.mdb",
                    {"AlleTypen", "Leer", "Geloescht", "Ueberlauf", "VieleSpalten", "Praefix", "Zeichen",
                     "IndexAuf", "IndexAb", "MehrSpalten", "NullIndex", "Memos", "SpalteNeu", "NurFest",
                     "Eigenschaften", "GuidAuto", "Namen mit Leerzeichen & Ümläut"}},
        StorageCase{"MovedRows", "echte/overflowV2000.mdb", {"Table1"}},
        StorageCase{"Access97", "echte/common2V1997.mdb", {"MSP_PROJECTS"}}),
    [](const auto& scenario) { return scenario.param.name; });

// One table through the dialect and through recordsets; rows go by their number.
class StatementModel {
  public:
    StatementModel(std::string path, unsigned seed) : path_(std::move(path)), random_(seed) {
        Database database(path_, Access::kReadOnly);
        definition_ = database.table("Probe");
        version_ = database.file().version();
        open();
    }

    void run(int statements) {
        for (int n = 0; n < statements; ++n) {
            growing_ = oneIn(random_, 50) ? !growing_ : growing_;
            const std::size_t kind = below(random_, 20);
            const auto step = [&] {
                if (rows_.empty() || kind < (growing_ ? 9u : 3u))
                    return oneIn(random_, 2) ? insert() : addNew();
                if (kind < (growing_ ? 17u : 12u)) return oneIn(random_, 3) ? edit() : updateRange();
                removeRange();
            };
            ++counts_[fehlernummerVon(step)];
            if (oneIn(random_, 40)) open();
        }
    }

    void verify() {
        database_.reset();
        EXPECT_EQ(newFindings(path_), "");
        Database reader(path_, Access::kReadOnly);
        const auto number = [](const RowView& row) { return row.asInteger(0); };
        EXPECT_EQ(difference(reader, "Probe", rows_, number), "");
        if (haveMdbtools()) {
            EXPECT_EQ(exportDifference(path_, *definition_, rows_), "");
        }
        open();
    }

    const std::map<int, int>& counts() const { return counts_; }

  private:
    void open() {
        database_.reset();
        database_ = engine_.open(path_);
    }

    Value valueOf(std::size_t column) {
        return randomValue(random_, definition_->columns[column], version_, column == 4);
    }

    // Whether a unique column has this value in a row outside [low, high].
    bool taken(const Value& value, std::int32_t low, std::int32_t high) const {
        return !value.isNull() && std::any_of(rows_.begin(), rows_.end(), [&](const auto& row) {
            return (row.first < low || row.first > high) && row.second[4] == value;
        });
    }

    void expectDuplicate(bool duplicate, const std::string& statement, const std::function<void()>& work) {
        const int number = fehlernummerVon(work);
        EXPECT_EQ(number, duplicate ? 3022 : 0) << statement.substr(0, 1000);
        if (number != 0) throw Fehler(number, "", "");
    }

    // A column that is left out, or that no literal exists for, is Null.
    void insert() {
        Row row;
        std::string columns, values;
        for (std::size_t c = 0; c < definition_->columns.size(); ++c) {
            row.push_back(valueOf(c));
            const std::optional<std::string> literal = row[c].literal();
            if (c == 0 || oneIn(random_, 5) || !literal) {
                row[c].data = std::monostate();
                if (definition_->columns[c].type == ColumnType::kBoolean) row[c].data = std::int64_t{0};
                continue;
            }
            columns += (columns.empty() ? "[" : ",[") + definition_->columns[c].name + "]";
            values += (values.empty() ? "" : ",") + *literal;
        }
        const std::string sql = "Insert Into Probe (" + columns + ") Values (" + values + ")";
        expectDuplicate(taken(row[4], 1, 0), sql, [&] { database_->execute(sql, kFailOnError); });
        add(std::move(row), ++last_);
    }

    void addNew() {
        const auto rs = database_->openRecordset("Select * from Probe", kDynaset, kAppendOnly);
        rs->addNew();
        const std::int32_t id = rs->feld("ID").alsLong();
        EXPECT_GT(id, last_) << "a number given out twice";
        last_ = id;
        Row row(1, Value{ColumnType::kLong});
        for (std::size_t c = 1; c < definition_->columns.size(); ++c) {
            row.push_back(valueOf(c));
            rs->setzeFeld(c, row[c].variant());
        }
        expectDuplicate(taken(row[4], 1, 0), "AddNew", [&] { rs->update(); });
        add(std::move(row), id);
    }

    void add(Row row, std::int32_t id) {
        row[0].data = std::int64_t{id};
        rows_[id] = std::move(row);
    }

    void edit() {
        auto row = rows_.lower_bound(
            static_cast<std::int32_t>(1 + below(random_, static_cast<std::size_t>(rows_.rbegin()->first))));
        const auto rs = database_->openRecordset("Select * from Probe Where ID=" + std::to_string(row->first),
                                                 kDynaset, {});
        rs->edit();
        Row changed = row->second;
        for (std::size_t n = 1 + below(random_, 4); n > 0; --n) {
            const std::size_t c = 1 + below(random_, definition_->columns.size() - 1);
            changed[c] = valueOf(c);
            rs->setzeFeld(c, changed[c].variant());
        }
        expectDuplicate(taken(changed[4], row->first, row->first), "Edit", [&] { rs->update(); });
        row->second = std::move(changed);
    }

    struct Range {
        std::map<std::int32_t, Row>::iterator first, end;
        std::string where;
    };
    Range range() {
        const auto first = rows_.lower_bound(
            static_cast<std::int32_t>(1 + below(random_, static_cast<std::size_t>(rows_.rbegin()->first))));
        auto end = first;
        for (std::size_t n = 1 + below(random_, oneIn(random_, 4) ? 30 : 3); n > 0 && end != rows_.end(); --n)
            ++end;
        return {first, end,
                " Where ID between " + std::to_string(first->first) + " and " +
                    std::to_string(std::prev(end)->first)};
    }

    void updateRange() {
        const Range range_ = range();
        const std::size_t c = 1 + below(random_, definition_->columns.size() - 1);
        const Value value = valueOf(c);
        if (!value.literal()) return;
        const bool several = std::next(range_.first) != range_.end;
        const bool duplicate =
            c == 4 && !value.isNull() && (several || taken(value, range_.first->first, range_.first->first));
        const std::string sql =
            "Update Probe Set [" + definition_->columns[c].name + "]=" + *value.literal() + range_.where;
        expectDuplicate(duplicate, sql, [&] { database_->execute(sql, kFailOnError); });
        for (auto row = range_.first; row != range_.end; ++row)
            row->second[c] = value;
    }

    void removeRange() {
        const Range range_ = range();
        database_->execute("Delete from Probe" + range_.where, kFailOnError);
        rows_.erase(range_.first, range_.end);
    }

    std::string path_;
    Random random_;
    Engine engine_;
    std::unique_ptr<Datenbank> database_;
    std::shared_ptr<const TableDef> definition_;
    Version version_;
    std::map<std::int32_t, Row> rows_;
    std::int32_t last_ = 0;
    bool growing_ = true;
    std::map<int, int> counts_;
};

class StatementChanges : public testing::TestWithParam<Version> {};

TEST_P(StatementChanges, AgreeWithTheModel) {
    const test::TemporaryCopy copy;
    createOwnFile(copy.path(), GetParam());
    const unsigned seed = static_cast<unsigned>(setting("WENDEL_SEED", kSeed));
    SCOPED_TRACE("WENDEL_SEED=" + std::to_string(seed));
    StatementModel model(copy.path(), seed);
    for (int round = 0; round < 3 * setting("WENDEL_ROUNDS", 1) && !HasFailure(); ++round) {
        model.run(250);
        model.verify();
    }
    for (const auto& [number, count] : model.counts())
        EXPECT_TRUE(number == 0 || number == 3022) << count << " x " << number;
}

INSTANTIATE_TEST_SUITE_P(Versions, StatementChanges, testing::Values(Version::kJet4, Version::kJet3),
                         [](const auto& version) {
                             return version.param == Version::kJet4 ? "Jet4" : "Jet3";
                         });

}  // namespace
}  // namespace wendel::jet::proof
