#pragma once
// A recordset over a running query. It reads the first rows when it is opened, so that a small result holds
// no lock while its rows are worked on; records are added and changed one statement each.

#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "jet/Connection.h"
#include "jet/Conversion.h"
#include "platform/ports/Datenbankmaschine.h"

namespace wendel::jet {

class JetRecordset;

// The recordsets of one database that are still open: it counts them, and takes them along when it closes.
using OpenRecordsets = std::vector<JetRecordset*>;

enum class RecordsetKind { kReadOnly, kDynaset, kAppendOnly };

class JetRecordset : public Recordset {
  public:
    // Throws Fehler when the first rows cannot be read.
    JetRecordset(std::shared_ptr<Connection> connection, Query query, RecordsetKind kind,
                 std::shared_ptr<OpenRecordsets> open);
    ~JetRecordset() override { JetRecordset::close(); }
    JetRecordset(const JetRecordset&) = delete;
    JetRecordset& operator=(const JetRecordset&) = delete;

    bool eof() override;
    void moveNext() override;
    std::size_t feldnummer(const std::string& name) override;
    Variant feld(std::size_t nummer) override;
    void addNew() override;
    void edit() override;
    void setzeFeld(std::size_t nummer, const Variant& wert) override;
    void update() override;
    void close() override;

  private:
    enum class Record { kNone, kAdding, kEditing, kEdited };

    void requireOpen() const;
    void requireRow() const;
    const TableDef& requireTable() const;
    void readAhead();
    bool step();
    std::optional<std::size_t> tableColumn(std::size_t field) const;
    KeyValue current(std::size_t field) const;
    std::string imageOf(std::span<const KeyValue> valuesOfAllColumns) const;

    std::shared_ptr<Connection> connection_;  // empty when closed
    std::shared_ptr<OpenRecordsets> open_;
    Query query_;
    RecordsetKind kind_;
    PackedRows ahead_;
    std::vector<KeyValue> row_;  // of those read ahead: the cells, and the identity behind them
    bool fromAhead_ = true;
    bool eof_ = true;

    // The record that is being added or changed, one cell per column of the table.
    Record record_ = Record::kNone;
    CellBuffer cells_;
    RowId edited_ = 0;
    std::string seen_;  // what the record to be changed held
    std::vector<std::size_t> changed_;
    std::optional<std::size_t> counter_;      // the counting column
    std::optional<std::int32_t> nextNumber_;  // reserved ahead while records come in a row
    int added_ = 0;
};

}  // namespace wendel::jet
