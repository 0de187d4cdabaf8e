#include "jet/storage/Row.h"

#include <bit>
#include <utility>

#include "jet/storage/Bytes.h"
#include "jet/storage/LongValue.h"
#include "jet/storage/TextCoding.h"

namespace wendel::jet {

std::size_t fixedValueSize(const Column& column) {
    if (column.type == ColumnType::kBoolean) return 0;
    if (column.isLong()) return kLongValueReferenceSize;
    const std::size_t size = valueSize(column.type);
    return size != 0 ? size : column.length;
}

void RowView::assign(File& file, const TableDef& table, PagePtr page, std::size_t start, std::size_t length,
                     RowId id) {
    const std::size_t countSize = file.layout().rowCountSize;
    file_ = &file;
    table_ = &table;
    page_ = std::move(page);
    row_ = page_->data() + start;
    length_ = length;
    id_ = id;
    if (length_ < countSize + 1) file.throwDamaged("Zeile");
    columnCount_ = countSize == 2 ? loadU16(row_) : row_[0];
    const std::size_t maskSize = (columnCount_ + 7) / 8;
    if (length_ < countSize + maskSize) file.throwDamaged("Zeile");
    maskStart_ = length_ - maskSize;
    trailerStart_ = maskStart_;
    variableCount_ = 0;
    // A row from before the first variable column was added has no trailer for such values.
    if (table.firstVariableNumber >= columnCount_) return;
    if (file.version() == Version::kJet4) {
        locateVariableJet4();
    } else {
        locateVariableJet3();
    }
}

// Behind the values: the end of data, then the starts in reverse order, then their number, then the mask. So
// the start of value k, and for k = count the end of data, lies 2k bytes below that of value 0.
void RowView::locateVariableJet4() {
    if (maskStart_ < 4) file_->throwDamaged("Zeile");
    variableCount_ = loadU16(row_ + maskStart_ - 2);
    const std::size_t tableSize = 2 * (variableCount_ + 2);
    if (maskStart_ < tableSize + 2) file_->throwDamaged("Zeile");
    lastStart_ = maskStart_ - 4;
    trailerStart_ = maskStart_ - tableSize;
}

// As in Jet 4, but each start has only its low byte; a jump table in front of the number tells where the high
// byte goes up. Its last entry can stand for no column at all, which shows by the place of the starts.
void RowView::locateVariableJet3() {
    if (maskStart_ < 2) file_->throwDamaged("Zeile");
    const std::size_t countAt = maskStart_ - 1;
    variableCount_ = row_[countAt];
    std::size_t jumps = (length_ - 1) / 256;
    if (countAt < 1 + jumps + variableCount_ + 1) file_->throwDamaged("Zeile");
    const std::size_t firstStartAt = countAt - 1 - jumps;
    if ((firstStartAt - variableCount_) / 256 < jumps) --jumps;
    std::size_t used = 0;
    for (std::size_t k = 0; k <= variableCount_; ++k) {
        while (used < jumps && row_[countAt - 1 - used] == k)
            ++used;
        starts_[k] = static_cast<std::uint16_t>(row_[firstStartAt - k] + 256 * used);
    }
    trailerStart_ = firstStartAt - variableCount_;
}

std::size_t RowView::variableStart(std::size_t index) const {
    return file_->version() == Version::kJet4 ? loadU16(row_ + lastStart_ - 2 * index) : starts_[index];
}

bool RowView::present(const Column& column) const {
    if (column.number >= columnCount_) return false;
    return (row_[maskStart_ + column.number / 8u] >> (column.number % 8u) & 1) != 0;
}

std::span<const std::uint8_t> RowView::value(const Column& column) const {
    if (!column.fixed) {
        if (column.variableIndex >= variableCount_) return {};
        return variableValue(column.variableIndex);
    }
    const std::size_t from = file_->layout().rowCountSize + column.fixedOffset;
    const std::size_t size = fixedValueSize(column);
    if (from + size > trailerStart_) file_->throwDamaged("Zeile");
    return {row_ + from, size};
}

std::span<const std::uint8_t> RowView::fixedPart() const {
    const std::size_t from = file_->layout().rowCountSize;
    const bool hasVariablePart = table_->firstVariableNumber < columnCount_;
    const std::size_t to = hasVariablePart ? variableStart(0) : maskStart_;
    if (from > to || to > trailerStart_) file_->throwDamaged("Zeile");
    return {row_ + from, to - from};
}

std::span<const std::uint8_t> RowView::variableValue(std::size_t index) const {
    const std::size_t from = variableStart(index);
    const std::size_t to = variableStart(index + 1);
    if (from > to || to > trailerStart_) file_->throwDamaged("Zeile");
    return {row_ + from, to - from};
}

std::span<const std::uint8_t> RowView::storedValue(std::size_t column) const {
    return isNull(column) ? std::span<const std::uint8_t>() : value(table_->columns[column]);
}

std::span<const std::uint8_t> RowView::valueOfSize(const Column& column, std::size_t size) const {
    const std::span<const std::uint8_t> bytes = value(column);
    if (bytes.size() < size) file_->throwDamaged("Zeile");
    return bytes.first(size);
}

bool RowView::isNull(std::size_t column) const {
    const Column& c = table_->columns[column];
    if (c.type == ColumnType::kBoolean) return false;
    if (c.type == ColumnType::kUnknown || !present(c)) return true;
    return !c.fixed && c.variableIndex >= variableCount_;
}

bool RowView::asBool(std::size_t column) const { return present(table_->columns[column]); }

std::int32_t RowView::asInteger(std::size_t column) const {
    const Column& c = table_->columns[column];
    if (isNull(column)) return 0;
    switch (c.type) {
        case ColumnType::kByte: return valueOfSize(c, 1)[0];
        case ColumnType::kInteger: return static_cast<std::int16_t>(loadU16(valueOfSize(c, 2).data()));
        default: return static_cast<std::int32_t>(loadU32(valueOfSize(c, 4).data()));
    }
}

std::int64_t RowView::asCurrency(std::size_t column) const {
    if (isNull(column)) return 0;
    return static_cast<std::int64_t>(loadU64(valueOfSize(table_->columns[column], 8).data()));
}

double RowView::asDouble(std::size_t column) const {
    const Column& c = table_->columns[column];
    if (isNull(column)) return 0;
    if (c.type == ColumnType::kSingle) return std::bit_cast<float>(loadU32(valueOfSize(c, 4).data()));
    return std::bit_cast<double>(loadU64(valueOfSize(c, 8).data()));
}

Decimal RowView::asDecimal(std::size_t column) const {
    const Column& c = table_->columns[column];
    Decimal decimal;
    decimal.scale = c.scale;
    if (isNull(column)) return decimal;
    const std::span<const std::uint8_t> bytes = valueOfSize(c, kDecimalSize);
    decimal.negative = (bytes[0] & kDecimalNegative) != 0;
    for (std::size_t i = 0; i < decimal.magnitude.size(); ++i)
        decimal.magnitude[i] = loadU32(&bytes[1 + 4 * i]);
    return decimal;
}

Guid RowView::asGuid(std::size_t column) const {
    Guid guid{};
    if (isNull(column)) return guid;
    const std::span<const std::uint8_t> b = valueOfSize(table_->columns[column], guid.size());
    // The first three groups are stored as little-endian numbers.
    guid = {b[3], b[2], b[1],  b[0],  b[5],  b[4],  b[7],  b[6],
            b[8], b[9], b[10], b[11], b[12], b[13], b[14], b[15]};
    return guid;
}

void RowView::appendText(std::size_t column, std::string& out) const {
    const Column& c = table_->columns[column];
    if (isNull(column)) return;
    if (c.type == ColumnType::kMemo) {
        appendStoredText(file_->version(), loadLongValue(*file_, value(c)).bytes, out);
    } else if (c.fixed && file_->version() == Version::kJet4) {
        appendUtf16(value(c), out);
    } else {
        appendStoredText(file_->version(), value(c), out);
    }
}

void RowView::appendBytes(std::size_t column, std::string& out) const {
    const Column& c = table_->columns[column];
    if (isNull(column)) return;
    const auto append = [&out](std::span<const std::uint8_t> bytes) {
        out.append(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    };
    if (!c.isLong()) return append(value(c));
    append(loadLongValue(*file_, value(c)).bytes);
}

}  // namespace wendel::jet
