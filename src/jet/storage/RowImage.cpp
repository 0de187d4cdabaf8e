#include "jet/storage/RowImage.h"

#include <algorithm>

#include "jet/storage/Bytes.h"
#include "jet/storage/WriteErrors.h"

namespace wendel::jet {
namespace {

// What one byte tells in a Jet 3 row; Jet 4 keeps to it as well.
constexpr std::size_t kMaxColumns = 255;
constexpr std::uint8_t kNoJump = 0xFF;

std::size_t columnCountOf(const TableDef& table) {
    std::size_t count = table.maxColumns;
    for (const Column& column : table.columns)
        count = std::max<std::size_t>(count, column.number + 1u);
    return count;
}

}  // namespace

RowImage::RowImage(const File& file, const TableDef& table)
    : file_(file), newColumnCount_(columnCountOf(table)), newVariableCount_(table.variableColumns) {
    for (const Column& column : table.columns) {
        if (!column.fixed) {
            newVariableCount_ = std::max<std::size_t>(newVariableCount_, column.variableIndex + 1u);
        } else if (column.type != ColumnType::kBoolean) {
            newFixedSize_ = std::max(newFixedSize_, column.fixedOffset + fixedValueSize(column));
        }
    }
    const bool possible = newColumnCount_ <= kMaxColumns && newVariableCount_ <= kMaxColumns &&
                          newFixedSize_ < file.layout().maxRowSize;
    if (!possible) file.throwDamaged("Tabellendefinition");
    clear();
}

void RowImage::clear() {
    columnCount_ = newColumnCount_;
    mask_.assign((columnCount_ + 7) / 8, 0);
    fixed_.assign(newFixedSize_, 0);
    variable_.assign(newVariableCount_, {});
    values_.clear();
}

void RowImage::load(const RowView& row) {
    clear();
    if (row.columnCount() > kMaxColumns || row.variableCount() > kMaxColumns) file_.throwDamaged("Zeile");
    columnCount_ = std::max(columnCount_, row.columnCount());
    mask_.resize((columnCount_ + 7) / 8);
    const std::span<const std::uint8_t> mask = row.mask();
    std::copy(mask.begin(), mask.end(), mask_.begin());
    // The bits behind the row's own columns belong to columns that it does not have.
    if (row.columnCount() % 8 != 0) {
        mask_[row.columnCount() / 8] &= static_cast<std::uint8_t>((1u << (row.columnCount() % 8)) - 1);
    }
    // Without variable columns the fixed part of older rows has no end of its own.
    const std::span<const std::uint8_t> fixed = row.fixedPart();
    if (row.variableCount() > 0) fixed_.resize(std::max(fixed_.size(), fixed.size()));
    std::copy_n(fixed.begin(), std::min(fixed.size(), fixed_.size()), fixed_.begin());
    variable_.resize(std::max(variable_.size(), row.variableCount()));
    for (std::size_t i = 0; i < row.variableCount(); ++i) {
        const std::span<const std::uint8_t> value = row.variableValue(i);
        variable_[i] = {values_.size(), value.size()};
        values_.insert(values_.end(), value.begin(), value.end());
    }
}

void RowImage::setPresent(const Column& column, bool present) {
    const auto bit = static_cast<std::uint8_t>(1u << (column.number % 8));
    std::uint8_t& byte = mask_[column.number / 8u];
    byte = static_cast<std::uint8_t>(present ? byte | bit : byte & ~bit);
}

void RowImage::setNull(const Column& column) {
    setPresent(column, false);
    if (!column.fixed) variable_[column.variableIndex] = {};
}

void RowImage::setBoolean(const Column& column, bool value) { setPresent(column, value); }

void RowImage::set(const Column& column, std::string_view bytes) {
    setPresent(column, true);
    if (column.fixed) {
        std::copy(bytes.begin(), bytes.end(), fixed_.begin() + column.fixedOffset);
        return;
    }
    variable_[column.variableIndex] = {values_.size(), bytes.size()};
    values_.insert(values_.end(), bytes.begin(), bytes.end());
}

std::size_t RowImage::sizeOfValues() const {
    std::size_t size = 0;
    for (const Value& value : variable_)
        size += value.size;
    return size;
}

std::span<const std::uint8_t> RowImage::encode() {
    const Layout& layout = file_.layout();
    // A reference and the frame of the row come on top of this; a longer row is not worth building.
    if (fixed_.size() + sizeOfValues() > layout.maxRowSize) throwWriteError(jetfehler::kRowTooLarge);
    row_.clear();
    row_.push_back(static_cast<std::uint8_t>(columnCount_));
    row_.resize(layout.rowCountSize);
    row_.insert(row_.end(), fixed_.begin(), fixed_.end());
    starts_.clear();
    for (const Value& value : variable_) {
        starts_.push_back(row_.size());
        const auto from = values_.begin() + static_cast<std::ptrdiff_t>(value.offset);
        row_.insert(row_.end(), from, from + static_cast<std::ptrdiff_t>(value.size));
    }
    starts_.push_back(row_.size());
    if (!variable_.empty()) {
        if (file_.version() == Version::kJet4) {
            encodeJet4();
        } else {
            encodeJet3();
        }
    }
    row_.insert(row_.end(), mask_.begin(), mask_.end());
    if (row_.size() > layout.maxRowSize) throwWriteError(jetfehler::kRowTooLarge);
    return row_;
}

// End of data, starts from the last to the first, their number.
void RowImage::encodeJet4() {
    std::size_t at = row_.size();
    row_.resize(at + 2 * (starts_.size() + 1));
    for (std::size_t i = starts_.size(); i-- > 0; at += 2)
        storeU16(&row_[at], static_cast<std::uint16_t>(starts_[i]));
    storeU16(&row_[at], static_cast<std::uint16_t>(variable_.size()));
}

// The same with one byte for each, and in front of the number a table of jumps, last one first: each names
// the first start whose high byte is greater by one. There is one for each 256 bytes of the row, whether or
// not a start lies behind them.
void RowImage::encodeJet3() {
    const std::size_t without = row_.size() + starts_.size() + 1 + mask_.size();
    std::size_t jumps = 0;
    while ((without + jumps - 1) / 256 > jumps)
        ++jumps;
    for (std::size_t i = starts_.size(); i-- > 0;)
        row_.push_back(static_cast<std::uint8_t>(starts_[i]));
    for (std::size_t j = jumps; j > 0; --j) {
        const auto first =
            std::find_if(starts_.begin(), starts_.end(), [j](auto start) { return start >= 256 * j; });
        const auto index = static_cast<std::uint8_t>(first - starts_.begin());
        row_.push_back(first == starts_.end() ? kNoJump : index);
    }
    row_.push_back(static_cast<std::uint8_t>(variable_.size()));
}

}  // namespace wendel::jet
