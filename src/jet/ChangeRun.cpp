#include "jet/ChangeRun.h"

#include <sqlite3.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "jet/Conversion.h"
#include "jet/PackedRows.h"
#include "jet/RowReading.h"
#include "jet/sql/Errors.h"
#include "jet/storage/Schema.h"

namespace wendel::jet {
namespace {

using sql::Change;
using sql::sqlError;

// All rows first: a statement must not meet what it writes.
PackedRows collected(Session& session, const Change& change) {
    const PreparedStatement statement = session.prepare(change.sql);
    PackedRows rows;
    while (session.step(statement.get())) {
        packRow(statement.get(), change.types.size(), rows);
    }
    return rows;
}

// Applies what a row has for one of the tables.
class TargetWriter {
  public:
    TargetWriter(Session& session, const Change& change, const Change::Target& target)
        : kind_(change.kind),
          target_(target),
          types_(change.types),
          table_(session.database().table(target.table)),
          writer_(session.writer(table_)),
          cells_(kind_ == Change::Kind::Insert ? table_->columns.size() : target.columns.size()) {
        if (kind_ == Change::Kind::Update) {
            for (const std::size_t column : target.columns) {
                if (table_->columns[column].autonumber) {
                    throw sqlError(sql::kFieldReadOnly, table_->columns[column].name);
                }
            }
        }
    }

    // Whether a row was changed.
    bool apply(const std::vector<KeyValue>& row) {
        if (kind_ == Change::Kind::Insert) {
            for (std::size_t i = 0; i < target_.columns.size(); ++i) {
                set(target_.columns[i], target_.columns[i], row, target_.first + i);
            }
            writer_.insert(cells_.cells());
            return true;
        }
        const auto* id = std::get_if<std::int64_t>(&row[target_.first]);
        if (!id) {
            return false;  // a join has found no row of this table
        }
        if (kind_ == Change::Kind::Delete) {
            writer_.remove(*id);
            return true;
        }
        for (std::size_t i = 0; i < target_.columns.size(); ++i) {
            set(i, target_.columns[i], row, target_.first + 1 + i);
        }
        writer_.update(*id, target_.columns, cells_.cells());
        return true;
    }

  private:
    void set(std::size_t place, std::size_t column, const std::vector<KeyValue>& row, std::size_t value) {
        cells_.set(place, table_->columns[column], given(row[value], types_[value]), sql::kTypeMismatch);
    }

    Change::Kind kind_;
    const Change::Target& target_;
    const std::vector<sql::JetType>& types_;
    std::shared_ptr<const TableDef> table_;
    TableWriter& writer_;
    CellBuffer cells_;
};

std::int64_t runRows(Session& session, const Change& change) {
    PackedRows rows = collected(session, change);
    std::vector<std::unique_ptr<TargetWriter>> writers;
    for (const Change::Target& target : change.targets) {
        writers.push_back(std::make_unique<TargetWriter>(session, change, target));
    }
    std::vector<KeyValue> row(change.types.size());
    std::int64_t changed = 0;
    while (rows.next(row)) {
        bool any = false;
        for (const auto& writer : writers) {
            any = writer->apply(row) || any;
        }
        changed += any ? 1 : 0;
    }
    return changed;
}

// --- definitions ---

ColumnType storedType(sql::ColumnKind kind) {
    switch (kind) {
        case sql::ColumnKind::YesNo: return ColumnType::kBoolean;
        case sql::ColumnKind::Byte: return ColumnType::kByte;
        case sql::ColumnKind::Short: return ColumnType::kInteger;
        case sql::ColumnKind::Counter:
        case sql::ColumnKind::Long: return ColumnType::kLong;
        case sql::ColumnKind::Currency: return ColumnType::kCurrency;
        case sql::ColumnKind::Single: return ColumnType::kSingle;
        case sql::ColumnKind::Double: return ColumnType::kDouble;
        case sql::ColumnKind::DateTime: return ColumnType::kDate;
        case sql::ColumnKind::Text: return ColumnType::kText;
        case sql::ColumnKind::Memo: return ColumnType::kMemo;
        case sql::ColumnKind::Binary: return ColumnType::kBinary;
        case sql::ColumnKind::LongBinary: return ColumnType::kOle;
        case sql::ColumnKind::Guid: return ColumnType::kGuid;
        case sql::ColumnKind::Decimal: break;
    }
    return ColumnType::kDecimal;
}

ColumnSpec columnSpec(const sql::ColumnDefinition& column) {
    ColumnSpec spec;
    spec.name = column.name;
    spec.type = storedType(column.kind);
    spec.autonumber = column.kind == sql::ColumnKind::Counter;
    spec.compressible = spec.type == ColumnType::kText || spec.type == ColumnType::kMemo;
    if (column.kind == sql::ColumnKind::Decimal) {
        spec.precision = static_cast<std::uint8_t>(column.size);
        spec.scale = static_cast<std::uint8_t>(column.scale);
    } else {
        spec.size = static_cast<std::uint16_t>(column.size);
    }
    return spec;
}

IndexSpec indexSpec(const sql::IndexDefinition& index) {
    IndexSpec spec;
    spec.name = index.name;
    for (const sql::IndexField& field : index.fields) {
        spec.columns.emplace_back(field.column, field.descending);
    }
    spec.unique = index.unique;
    spec.primary = index.primary;
    spec.required = index.required;
    spec.ignoreNulls = index.ignoreNulls;
    return spec;
}

// "Not Null" is kept by an index that asks for values; a column without one takes Null all the same.
void define(Database& database, const sql::CreateTable& definition) {
    std::vector<ColumnSpec> columns;
    std::vector<IndexSpec> indexes;
    for (const sql::ColumnDefinition& column : definition.columns) {
        columns.push_back(columnSpec(column));
    }
    for (const sql::IndexDefinition& index : definition.indexes) {
        indexes.push_back(indexSpec(index));
        for (const sql::ColumnDefinition& column : definition.columns) {
            const bool alone = index.fields.size() == 1 && index.fields[0].column == column.name;
            indexes.back().required = indexes.back().required || (alone && column.notNull);
        }
    }
    createTable(database, definition.table, columns, indexes);
}

void define(Database& database, const sql::CreateIndex& definition) {
    createIndex(database, definition.table, indexSpec(definition.index));
}
void define(Database& database, const sql::DropTable& definition) { dropTable(database, definition.table); }
void define(Database& database, const sql::DropIndex& definition) {
    dropIndex(database, definition.table, definition.index);
}

std::int64_t run(Session&, const sql::SelectPtr&, Datum) { throw sqlError(sql::kSelectNotExecutable); }

template <class Node>
std::int64_t run(Session& session, const Node& node, Datum jetzt) {
    if constexpr (requires { sql::translate(node, session, jetzt); }) {
        return runRows(session, sql::translate(node, session, jetzt));
    } else {
        session.noteChangedDefinitions();
        define(session.database(), node);
        return 0;
    }
}

}  // namespace

std::int64_t runChange(Session& session, const sql::Statement& statement, Datum jetzt) {
    return std::visit([&](const auto& node) { return run(session, node, jetzt); }, statement.node);
}

}  // namespace wendel::jet
