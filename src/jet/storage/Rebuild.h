#pragma once
// Copies a database, table by table and row by row, into a new file with the four system tables: what
// compacting and repair have in common. The caller says which rows there are and puts the new file in its
// place.

#include <cstdint>
#include <map>
#include <memory>
#include <set>
#include <span>
#include <string>
#include <vector>

#include "jet/storage/File.h"
#include "jet/storage/IndexBuild.h"
#include "jet/storage/KeyEncoder.h"
#include "jet/storage/PageAllocator.h"
#include "jet/storage/TableDef.h"
#include "jet/storage/TableDefWriter.h"

namespace wendel::jet {

class TableBuilder;
class TableWriter;

struct RebuildTable {
    std::shared_ptr<const TableDef> definition;
    std::vector<RowId> rows;  // homes, in any order
};

struct RebuildSource {
    File& file;
    RebuildTable objects, access, queries, relations;  // a definition may be missing: nothing to copy
    std::vector<RebuildTable> tables;                  // all others
};

class Rebuild {
  public:
    enum class Damage {
        kRefuse,    // what cannot be copied exactly ends the whole with its Fehler
        kPassOver,  // it is left out: rows, a value (Null instead), an index
    };

    // The target is what writeEmptyDatabase (NewFile.h) made, with the source's header. Both must outlive
    // this.
    Rebuild(const RebuildSource& source, File& target, Damage damage);
    ~Rebuild();

    // Fills the target. Throws Fehler 3026, 3050 and 3051 when it cannot be written. With kRefuse also 3049
    // for damage, 3022, 3058 and 3314 for an index whose rows break its rules.
    void run();

    // False when something was passed over, or the source has design objects of the Access program, which are
    // never copied.
    bool complete() const { return complete_; }

  private:
    using CellFilter = bool (Rebuild::*)(const TableDef& table, std::vector<Cell>& cells);

    template <class Step>
    bool attempt(Step step);

    void makeTables();
    void makeTable(const TableDef& table, std::uint32_t page);
    void copyIndexes(const TableDef& table, const DefinitionParts& old, TableBuilder& builder);
    void copyRows(const RebuildTable& table, std::uint32_t page);
    void insertRows(const TableDef& table, std::span<const RowId> rows, TableWriter& writer);
    void insertSalvaged(const TableDef& table, RowId id, TableWriter& writer);
    std::vector<RowId> inKeyOrder(const RebuildTable& table);
    bool readRow(const TableDef& table, RowId id, RowValues& values);
    bool readSoundColumns(const TableDef& table, const RowView& row, RowValues& values);
    void keepCounter(const RebuildTable& table, std::uint32_t page);
    void buildIndexes(std::uint32_t page);
    void relax(const TableDef& table, const Index& index, IndexFaults faults);

    void copySystemRows(const RebuildTable& table, std::uint32_t page, CellFilter filter);
    bool takeObject(const TableDef& table, std::vector<Cell>& cells);
    bool takeAccess(const TableDef& table, std::vector<Cell>& cells);
    bool takeRow(const TableDef& table, std::vector<Cell>& cells);
    void addMissingObjects();
    void addMissingAccess();

    const RebuildSource& source_;
    File& target_;
    Damage damage_;
    bool complete_ = true;
    std::shared_ptr<PageAllocator> allocator_;
    std::map<std::uint32_t, std::uint32_t> pages_;      // definitions: in the source -> in the target
    std::set<std::uint32_t> made_;                      // tables of the source that are in the target
    std::map<std::uint32_t, std::uint32_t> objectIds_;  // in the source -> in the target
};

}  // namespace wendel::jet
