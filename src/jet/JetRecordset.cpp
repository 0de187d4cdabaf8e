#include "jet/JetRecordset.h"

#include <algorithm>
#include <utility>

#include "jet/TableModule.h"
#include "jet/sql/Errors.h"
#include "platform/Text.h"

namespace wendel::jet {
namespace {

using sql::JetType;
using sql::sqlError;

constexpr std::size_t kReadAheadBytes = 1 << 20;
// Whoever has added so many records goes on: a number reserved together with each saves a third of the time,
// and at the end one remains unused.
constexpr int kManyRecords = 10;

std::size_t columnsOf(const Query& query) { return query.table() ? query.table()->columns.size() : 0; }

std::optional<std::size_t> counterOf(const TableDef* table) {
    for (std::size_t i = 0; table && i < table->columns.size(); ++i) {
        if (table->columns[i].autonumber && table->columns[i].type == ColumnType::kLong) {
            return i;
        }
    }
    return std::nullopt;
}

}  // namespace

JetRecordset::JetRecordset(std::shared_ptr<Connection> connection, Query query, RecordsetKind kind,
                           std::shared_ptr<OpenRecordsets> open)
    : connection_(std::move(connection)),
      open_(std::move(open)),
      query_(std::move(query)),
      kind_(kind),
      row_(query_.columns().size() + (query_.table() ? 1 : 0)),
      cells_(columnsOf(query_)),
      counter_(counterOf(query_.table().get())) {
    if (kind_ == RecordsetKind::kAppendOnly) {
        query_.stop();
    } else {
        readAhead();
        eof_ = !step();
    }
    open_->push_back(this);
}

void JetRecordset::readAhead() {
    while (ahead_.bytes() < kReadAheadBytes && query_.step()) {
        query_.pack(ahead_);
    }
}

bool JetRecordset::step() {
    fromAhead_ = fromAhead_ && ahead_.next(row_);
    if (fromAhead_) {
        return true;
    }
    ahead_ = PackedRows();
    return query_.step();
}

void JetRecordset::requireOpen() const {
    if (!connection_) {
        throw sqlError(sql::kClosed);
    }
}

void JetRecordset::requireRow() const {
    requireOpen();
    if (eof_) {
        throw sqlError(sql::kNoCurrentRow);
    }
}

const TableDef& JetRecordset::requireTable() const {
    requireOpen();
    if (kind_ == RecordsetKind::kReadOnly || !query_.table()) {
        throw sqlError(sql::kReadOnly);
    }
    return *query_.table();
}

bool JetRecordset::eof() {
    requireOpen();
    return eof_;
}

void JetRecordset::moveNext() {
    requireRow();
    record_ = Record::kNone;
    eof_ = true;  // also when the step fails
    eof_ = !step();
}

std::size_t JetRecordset::feldnummer(const std::string& name) {
    requireOpen();
    const auto& columns = query_.columns();
    const auto found = std::find_if(columns.begin(), columns.end(), [&](const Query::Column& column) {
        return gleichOhneGrossKlein(column.name, name);
    });
    if (found == columns.end()) {
        throw sqlError(sql::kUnknownField);
    }
    return static_cast<std::size_t>(found - columns.begin());
}

std::optional<std::size_t> JetRecordset::tableColumn(std::size_t field) const {
    return query_.table() ? query_.tableColumns()[field] : std::nullopt;
}

KeyValue JetRecordset::current(std::size_t field) const {
    return fromAhead_ ? row_[field] : query_.value(field);
}

Variant JetRecordset::feld(std::size_t nummer) {
    requireOpen();
    if (nummer >= query_.columns().size()) {
        throw sqlError(sql::kUnknownField);
    }
    const JetType type = query_.columns()[nummer].type;
    const auto column = tableColumn(nummer);
    if (record_ != Record::kNone && column) {
        const KeyValue& cell = cells_.cells()[*column];
        const bool unset = std::holds_alternative<std::monostate>(cell);
        return unset && type == JetType::Boolean ? Variant::boolesch(false) : variantOf(cell, type);
    }
    if (record_ == Record::kAdding) {
        return Variant::null();  // an expression over what is not there yet
    }
    requireRow();
    return variantOf(current(nummer), type);
}

void JetRecordset::addNew() {
    const TableDef& table = requireTable();
    record_ = Record::kNone;
    cells_.clear();
    if (counter_) {
        const std::int32_t number = nextNumber_ ? *nextNumber_ : connection_->reserveAutonumber(table);
        nextNumber_.reset();
        cells_.set(*counter_, table.columns[*counter_], {std::int64_t{number}}, sql::kConversion);
    }
    record_ = Record::kAdding;
}

// What tells one record from another, by the columns that this recordset has.
std::string JetRecordset::imageOf(std::span<const KeyValue> valuesOfAllColumns) const {
    std::string image;
    for (std::size_t field = 0; field < query_.columns().size(); ++field) {
        const auto column = tableColumn(field);
        if (column) {
            appendKey(query_.table()->columns[*column], false, valuesOfAllColumns[*column], image);
        }
    }
    return image;
}

void JetRecordset::edit() {
    const TableDef& table = requireTable();
    requireRow();
    if (record_ != Record::kEdited) {
        cells_.clear();
        for (std::size_t field = 0; field < query_.columns().size(); ++field) {
            if (const auto column = tableColumn(field)) {
                cells_.set(*column, table.columns[*column],
                           given(current(field), jetTypeOf(table.columns[*column].type)), sql::kConversion);
            }
        }
        const KeyValue id = current(query_.columns().size());
        edited_ = std::get<std::int64_t>(id);
    }
    seen_ = imageOf(cells_.cells());
    changed_.clear();
    record_ = Record::kEditing;
}

void JetRecordset::setzeFeld(std::size_t nummer, const Variant& wert) {
    const TableDef& table = requireTable();
    if (nummer >= query_.columns().size()) {
        throw sqlError(sql::kUnknownField);
    }
    if (record_ != Record::kAdding && record_ != Record::kEditing) {
        throw sqlError(sql::kNoEdit);
    }
    const auto position = tableColumn(nummer);
    if (!position || (record_ == Record::kEditing && table.columns[*position].autonumber)) {
        throw sqlError(sql::kFieldReadOnly, query_.columns()[nummer].name);
    }
    cells_.set(*position, table.columns[*position], given(wert), sql::kConversion);
    if (record_ == Record::kEditing &&
        std::find(changed_.begin(), changed_.end(), *position) == changed_.end()) {
        changed_.push_back(*position);
    }
}

void JetRecordset::update() {
    const TableDef& table = requireTable();
    if (record_ == Record::kAdding) {
        nextNumber_ = connection_->insertRow(table, cells_.cells(), counter_ && added_ >= kManyRecords);
        ++added_;
        record_ = Record::kNone;
    } else if (record_ == Record::kEditing) {
        std::vector<KeyValue> values;
        for (const std::size_t column : changed_) {
            values.push_back(cells_.cells()[column]);
        }
        const auto asSeen = [this](std::span<const KeyValue> now) { return imageOf(now) == seen_; };
        connection_->updateRow(table, edited_, asSeen, changed_, values);
        record_ = Record::kEdited;  // the fields show the new values from now on
    } else {
        throw sqlError(sql::kNoEdit);
    }
}

void JetRecordset::close() {
    if (!connection_) {
        return;
    }
    query_.stop();
    ahead_ = PackedRows();
    if (added_ > 0) {
        connection_->checkpoint();
    }
    connection_.reset();
    std::erase(*open_, this);
}

}  // namespace wendel::jet
