#include "jet/TableModule.h"

#include <sqlite3.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <exception>
#include <new>
#include <optional>
#include <span>
#include <vector>

#include "jet/sql/Errors.h"
#include "jet/sql/Translator.h"
#include "jet/storage/Bytes.h"
#include "jet/storage/IndexCursor.h"
#include "jet/storage/Table.h"

namespace wendel::jet {

using sql::JetType;

JetType jetTypeOf(ColumnType type) {
    switch (type) {
        case ColumnType::kBoolean: return JetType::Boolean;
        case ColumnType::kByte: return JetType::Byte;
        case ColumnType::kInteger: return JetType::Integer;
        case ColumnType::kLong: return JetType::Long;
        case ColumnType::kCurrency: return JetType::Currency;
        case ColumnType::kSingle: return JetType::Single;
        case ColumnType::kDouble: return JetType::Double;
        case ColumnType::kDate: return JetType::Date;
        case ColumnType::kBinary: return JetType::Binary;
        case ColumnType::kText: return JetType::Text;
        case ColumnType::kOle: return JetType::Ole;
        case ColumnType::kMemo: return JetType::Memo;
        case ColumnType::kGuid: return JetType::Guid;
        case ColumnType::kDecimal: return JetType::Decimal;
        case ColumnType::kUnknown: break;
    }
    return JetType::Null;
}

namespace {

// How a query walks the table. SQLite carries it from planning to running as text: each part one number.
struct Plan {
    enum Way { kScan = 0, kRowId = 1, kIndex = 2 };
    int index = 0;
    int equal = 0;  // leading columns that are compared with "="
    int low = 0;    // conditions that bound the column behind them from below
    int high = 0;   // and from above
    int backward = 0;

    static constexpr std::size_t kTextSize = 64;
    void write(char* out) const {
        std::snprintf(out, kTextSize, "%d %d %d %d %d", index, equal, low, high, backward);
    }
    static Plan read(const char* text) {
        Plan plan;
        std::sscanf(text, "%d %d %d %d %d", &plan.index, &plan.equal, &plan.low, &plan.high, &plan.backward);
        return plan;
    }
};

// SQLite reads the objects below through their first members.
struct VirtualTable : sqlite3_vtab {
    VirtualTable(ModuleContext& c, std::shared_ptr<const TableDef> d)
        : sqlite3_vtab(), context(c), definition(std::move(d)) {}
    ModuleContext& context;
    std::shared_ptr<const TableDef> definition;
};

struct Cursor : sqlite3_vtab_cursor {
    explicit Cursor(VirtualTable& t) : sqlite3_vtab_cursor(), table(t) {}
    VirtualTable& table;
    std::optional<TableScan> scan;
    Plan plan;  // of index
    std::optional<IndexCursor> index;
    RowView fetched;               // of index and row id
    const RowView* row = nullptr;  // null at the end
    std::string text;              // of the column just asked for
};

// Runs what may throw; SQLite gets an error code, the caller of the statement the Fehler.
template <class Work>
int guarded(ModuleContext& context, const Work& work) {
    try {
        work();
        return SQLITE_OK;
    } catch (const Fehler& failure) {
        context.failures.failure = failure;
        return SQLITE_ERROR;
    } catch (const std::bad_alloc&) {
        return SQLITE_NOMEM;
    } catch (const std::exception&) {
        return SQLITE_ERROR;
    }
}

// --- definition ---

std::string declaration(const TableDef& definition) {
    std::string sql = "CREATE TABLE x(";
    for (std::size_t i = 0; i < definition.columns.size(); ++i) {
        sql += (i ? ",c" : "c") + std::to_string(i);
        switch (definition.columns[i].type) {
            case ColumnType::kText:
            case ColumnType::kMemo: sql += std::string(" TEXT COLLATE ") + sql::kCollation; break;
            case ColumnType::kSingle:
            case ColumnType::kDouble:
            case ColumnType::kDate: sql += " REAL"; break;
            case ColumnType::kBoolean:
            case ColumnType::kByte:
            case ColumnType::kInteger:
            case ColumnType::kLong:
            case ColumnType::kCurrency: sql += " INTEGER"; break;
            default: break;  // as it comes
        }
    }
    return sql + ")";
}

int connect(sqlite3* connection, void* aux, int, const char* const*, sqlite3_vtab** out, char** error) {
    ModuleContext& context = *static_cast<ModuleContext*>(aux);
    if (!context.definition || context.definition->columns.empty()) {
        *error = sqlite3_mprintf("no columns");
        return SQLITE_ERROR;
    }
    return guarded(context, [&] {
        const std::string sql = declaration(*context.definition);
        if (sqlite3_declare_vtab(connection, sql.c_str()) != SQLITE_OK) {
            throw Fehler(sql::kTooComplex, "SQL", sqlite3_errmsg(connection));
        }
        *out = new VirtualTable(context, context.definition);
    });
}

// Of its own, and not connect itself: else the module would also be a table without a definition.
int create(sqlite3* connection, void* aux, int count, const char* const* arguments, sqlite3_vtab** out,
           char** error) {
    return connect(connection, aux, count, arguments, out, error);
}

int disconnect(sqlite3_vtab* table) {
    delete static_cast<VirtualTable*>(table);
    return SQLITE_OK;
}

// --- planning ---

// The constraints that one column has, as places in SQLite's list.
struct Bounds {
    int equal = -1;
    std::vector<int> low, high;
};

bool usableType(const Column& column) {
    switch (column.type) {
        case ColumnType::kBoolean:
        case ColumnType::kByte:
        case ColumnType::kInteger:
        case ColumnType::kLong:
        case ColumnType::kCurrency:
        case ColumnType::kSingle:
        case ColumnType::kDouble:
        case ColumnType::kDate:
        case ColumnType::kText: return true;
        default: return false;
    }
}

// Rows now: the definition was read when the session began, which may have filled the table since.
double rowCountOf(const VirtualTable& table) {
    File& file = table.context.file;
    const PagePtr page = file.page(table.definition->page);
    return std::max(10.0, static_cast<double>(loadU32(&(*page)[file.layout().defRowCount])));
}

Bounds boundsOf(sqlite3_index_info& info, const TableDef& definition, std::size_t column) {
    Bounds bounds;
    if (!usableType(definition.columns[column])) {
        return bounds;
    }
    for (int i = 0; i < info.nConstraint; ++i) {
        const auto& constraint = info.aConstraint[i];
        if (!constraint.usable || constraint.iColumn != static_cast<int>(column)) {
            continue;
        }
        if (definition.columns[column].isText() &&
            sqlite3_stricmp(sqlite3_vtab_collation(&info, i), sql::kCollation) != 0) {
            continue;
        }
        switch (constraint.op) {
            case SQLITE_INDEX_CONSTRAINT_EQ: bounds.equal = bounds.equal < 0 ? i : bounds.equal; break;
            case SQLITE_INDEX_CONSTRAINT_GT:
            case SQLITE_INDEX_CONSTRAINT_GE: bounds.low.push_back(i); break;
            case SQLITE_INDEX_CONSTRAINT_LT:
            case SQLITE_INDEX_CONSTRAINT_LE: bounds.high.push_back(i); break;
            default: break;
        }
    }
    return bounds;
}

// One way to answer a query, with what SQLite is to hand over for it.
struct Candidate {
    Plan plan;
    std::vector<int> constraints;  // in the order of the arguments
    double rows = 0;
    double cost = 0;
    bool ordered = false;
    bool unique = false;
};

// Does walking the index give the order that is asked for? Columns with a single value do not matter for it.
bool givesOrder(const sqlite3_index_info& info, const TableDef& definition, const Index& index, int equal,
                int& backward) {
    if (info.nOrderBy == 0) {
        return false;
    }
    auto column = static_cast<std::size_t>(equal);
    for (int i = 0; i < info.nOrderBy; ++i) {
        const int wanted = info.aOrderBy[i].iColumn;
        const bool fixed =
            std::any_of(index.columns.begin(), index.columns.begin() + equal,
                        [&](const IndexColumn& c) { return static_cast<int>(c.column) == wanted; });
        if (fixed) {
            continue;
        }
        if (column >= index.columns.size() || static_cast<int>(index.columns[column].column) != wanted ||
            definition.columns[index.columns[column].column].type == ColumnType::kBoolean) {
            return false;
        }
        const int reversed = (info.aOrderBy[i].desc != 0) != index.columns[column].descending;
        if (column == static_cast<std::size_t>(equal)) {
            backward = reversed;
        } else if (reversed != backward) {
            return false;
        }
        ++column;
    }
    return true;
}

// By how much bounds shrink a table. Both bounds from a row of another table are what a comparison of two
// moments becomes, and leave as little as an equality does.
double shrinking(sqlite3_index_info& info, const Bounds& bounds) {
    const auto joined = [&](const std::vector<int>& side) {
        return std::any_of(side.begin(), side.end(), [&](int place) {
            sqlite3_value* constant = nullptr;
            return sqlite3_vtab_rhs_value(&info, place, &constant) == SQLITE_NOTFOUND;
        });
    };
    if (joined(bounds.low) && joined(bounds.high)) {
        return 1000;
    }
    return (bounds.low.empty() ? 1 : 4) * (bounds.high.empty() ? 1 : 4);
}

std::optional<Candidate> candidateFor(sqlite3_index_info& info, const TableDef& definition, double rowCount,
                                      std::size_t number) {
    const Index& index = definition.indexes[number];
    if (!index.searchable || index.root == 0) {
        return std::nullopt;
    }
    Candidate result;
    result.plan.index = static_cast<int>(number);
    result.rows = rowCount;
    for (const IndexColumn& column : index.columns) {
        const Bounds bounds = boundsOf(info, definition, column.column);
        if (bounds.equal >= 0) {
            result.constraints.push_back(bounds.equal);
            ++result.plan.equal;
            result.rows = std::max(1.0, result.rows / 25);
            continue;
        }
        for (const std::vector<int>* side : {&bounds.low, &bounds.high}) {
            result.constraints.insert(result.constraints.end(), side->begin(), side->end());
        }
        result.plan.low = static_cast<int>(bounds.low.size());
        result.plan.high = static_cast<int>(bounds.high.size());
        result.rows = std::max(1.0, result.rows / shrinking(info, bounds));
        break;
    }
    result.unique = index.unique && result.plan.equal == static_cast<int>(index.columns.size());
    result.rows = result.unique ? 1 : result.rows;
    result.ordered = givesOrder(info, definition, index, result.plan.equal, result.plan.backward);
    if (result.constraints.empty() && (!result.ordered || index.ignoreNulls)) {
        return std::nullopt;
    }
    // A row by its place costs more than the next one of a page.
    result.cost = 5 + result.rows * 3;
    return result;
}

void usePlan(sqlite3_index_info& info, const Candidate& chosen) {
    for (std::size_t i = 0; i < chosen.constraints.size(); ++i) {
        // SQLite tests each condition again: the stretch of the index can be a little wider than asked for.
        info.aConstraintUsage[chosen.constraints[i]].argvIndex = static_cast<int>(i) + 1;
    }
    info.idxNum = Plan::kIndex;
    info.idxStr = static_cast<char*>(sqlite3_malloc(Plan::kTextSize));
    if (!info.idxStr) {
        throw std::bad_alloc();
    }
    chosen.plan.write(info.idxStr);
    info.needToFreeIdxStr = 1;
    info.estimatedCost = chosen.cost;
    info.estimatedRows = static_cast<sqlite3_int64>(chosen.rows);
    info.orderByConsumed = chosen.ordered;
    info.idxFlags = chosen.unique ? SQLITE_INDEX_SCAN_UNIQUE : 0;
}

int bestIndex(sqlite3_vtab* base, sqlite3_index_info* info) {
    VirtualTable& table = *static_cast<VirtualTable*>(base);
    const TableDef& definition = *table.definition;
    return guarded(table.context, [&] {
        info->idxNum = Plan::kScan;
        const double rowCount = rowCountOf(table);
        info->estimatedRows = static_cast<sqlite3_int64>(rowCount);
        info->estimatedCost = rowCount + 20;
        for (int i = 0; i < info->nConstraint; ++i) {
            const auto& constraint = info->aConstraint[i];
            if (constraint.usable && constraint.iColumn == -1 &&
                constraint.op == SQLITE_INDEX_CONSTRAINT_EQ) {
                info->aConstraintUsage[i].argvIndex = 1;
                info->idxNum = Plan::kRowId;
                info->estimatedRows = 1;
                info->estimatedCost = 2;
                info->idxFlags = SQLITE_INDEX_SCAN_UNIQUE;
                return;
            }
        }
        std::optional<Candidate> best;
        for (std::size_t i = 0; i < definition.indexes.size(); ++i) {
            auto candidate = candidateFor(*info, definition, rowCount, i);
            // Sorting costs SQLite about as much again as reading.
            const auto total = [](const Candidate& c) { return c.ordered ? c.cost : c.cost + c.rows; };
            if (candidate && (!best || total(*candidate) < total(*best))) {
                best = std::move(candidate);
            }
        }
        if (best && (!best->constraints.empty() || best->ordered)) {
            usePlan(*info, *best);
        }
    });
}

// --- walking ---

int open(sqlite3_vtab* base, sqlite3_vtab_cursor** out) {
    VirtualTable& table = *static_cast<VirtualTable*>(base);
    return guarded(table.context, [&] { *out = new Cursor(table); });
}

int close(sqlite3_vtab_cursor* base) {
    delete static_cast<Cursor*>(base);
    return SQLITE_OK;
}

// An argument as a key of this column; nothing for Null, which compares with nothing.
std::optional<KeyValue> keyValue(const Column& column, sqlite3_value* value) {
    switch (sqlite3_value_type(value)) {
        case SQLITE_INTEGER:
            if (column.type == ColumnType::kCurrency) {
                return KeyCurrency{sqlite3_value_int64(value)};
            }
            return sqlite3_value_int64(value);
        case SQLITE_FLOAT:
            if (column.type == ColumnType::kCurrency) {
                const double scaled = std::nearbyint(sqlite3_value_double(value));
                const double bounded = std::clamp(scaled, -9.2e18, 9.2e18);
                return KeyCurrency{static_cast<std::int64_t>(bounded)};
            }
            return sqlite3_value_double(value);
        case SQLITE_TEXT: {
            const auto* text = reinterpret_cast<const char*>(sqlite3_value_text(value));
            return std::string_view(text, static_cast<std::size_t>(sqlite3_value_bytes(value)));
        }
        default: return std::nullopt;
    }
}

bool isNumber(sqlite3_value* value) {
    const int type = sqlite3_value_type(value);
    return type == SQLITE_INTEGER || type == SQLITE_FLOAT;
}

// The narrowest of some bounds, as far as that is plain; any of them will do. Always inclusive: SQLite tests
// the conditions again.
std::optional<KeyLimit> limitOf(const Column& column, std::span<sqlite3_value*> bounds, bool lower) {
    if (bounds.empty()) {
        return std::nullopt;
    }
    sqlite3_value* chosen = bounds[0];
    for (sqlite3_value* bound : bounds.subspan(1)) {
        const double gain = sqlite3_value_double(bound) - sqlite3_value_double(chosen);
        if (isNumber(bound) && isNumber(chosen) && (lower ? gain > 0 : gain < 0)) {
            chosen = bound;
        }
    }
    return KeyLimit{*keyValue(column, chosen)};
}

// The stretch of the index that the arguments describe; nothing when one of them is Null.
std::optional<KeyRange> rangeOf(const TableDef& definition, const Plan& plan,
                                std::span<sqlite3_value*> values) {
    const Index& index = definition.indexes[static_cast<std::size_t>(plan.index)];
    const auto column = [&](std::size_t position) -> const Column& {
        return definition.columns[index.columns[position].column];
    };
    const auto equalCount = static_cast<std::size_t>(plan.equal);
    const auto lowCount = static_cast<std::size_t>(plan.low);
    for (std::size_t i = 0; i < values.size(); ++i) {
        if (!keyValue(column(std::min(i, equalCount)), values[i])) {
            return std::nullopt;
        }
    }
    std::vector<KeyValue> equal;
    for (std::size_t i = 0; i < equalCount; ++i) {
        equal.push_back(*keyValue(column(i), values[i]));
    }
    if (values.size() == equalCount) {
        return keyRange(definition, index, equal);
    }
    const Column& bounded = column(equalCount);
    return keyRange(definition, index, equal, limitOf(bounded, values.subspan(equalCount, lowCount), true),
                    limitOf(bounded, values.subspan(equalCount + lowCount), false));
}

void stepIndex(Cursor& cursor) {
    cursor.row = nullptr;
    while (cursor.index->next()) {
        if (fetchRow(cursor.table.context.file, *cursor.table.definition, cursor.index->rowId(),
                     cursor.fetched)) {
            cursor.row = &cursor.fetched;
            return;
        }
    }
}

int next(sqlite3_vtab_cursor* base) {
    Cursor& cursor = *static_cast<Cursor*>(base);
    return guarded(cursor.table.context, [&] {
        if (cursor.scan) {
            cursor.row = cursor.scan->next() ? &cursor.scan->row() : nullptr;
        } else if (cursor.index) {
            stepIndex(cursor);
        } else {
            cursor.row = nullptr;  // a single row by its place
        }
    });
}

int filter(sqlite3_vtab_cursor* base, int way, const char* planText, int count, sqlite3_value** values) {
    Cursor& cursor = *static_cast<Cursor*>(base);
    File& file = cursor.table.context.file;
    const TableDef& definition = *cursor.table.definition;
    return guarded(cursor.table.context, [&] {
        cursor.scan.reset();
        cursor.row = nullptr;
        if (way == Plan::kScan) {
            cursor.index.reset();
            cursor.scan.emplace(file, definition);
            cursor.row = cursor.scan->next() ? &cursor.scan->row() : nullptr;
            return;
        }
        if (way == Plan::kRowId) {
            cursor.index.reset();
            const bool found = sqlite3_value_type(values[0]) == SQLITE_INTEGER &&
                               fetchRow(file, definition, sqlite3_value_int64(values[0]), cursor.fetched);
            cursor.row = found ? &cursor.fetched : nullptr;
            return;
        }
        if (!cursor.index) {  // a cursor keeps its plan through all its look-ups
            cursor.plan = Plan::read(planText);
        }
        const Plan& plan = cursor.plan;
        const auto range = rangeOf(definition, plan, {values, static_cast<std::size_t>(count)});
        if (!range || range->empty) {
            return;
        }
        if (!cursor.index) {
            cursor.index.emplace(file, definition, definition.indexes[static_cast<std::size_t>(plan.index)]);
        }
        cursor.index->seek(
            *range, plan.backward ? IndexCursor::Direction::kBackward : IndexCursor::Direction::kForward);
        stepIndex(cursor);
    });
}

int eof(sqlite3_vtab_cursor* base) { return static_cast<Cursor*>(base)->row == nullptr; }

int rowId(sqlite3_vtab_cursor* base, sqlite3_int64* out) {
    *out = static_cast<Cursor*>(base)->row->id();
    return SQLITE_OK;
}

void resultOf(Cursor& cursor, std::size_t column, ColumnType type, sqlite3_context* context) {
    const RowView& row = *cursor.row;
    switch (type) {
        case ColumnType::kBoolean: sqlite3_result_int(context, row.asBool(column) ? -1 : 0); break;
        case ColumnType::kByte:
        case ColumnType::kInteger:
        case ColumnType::kLong: sqlite3_result_int(context, row.asInteger(column)); break;
        case ColumnType::kCurrency: sqlite3_result_int64(context, row.asCurrency(column)); break;
        case ColumnType::kSingle:
        case ColumnType::kDouble:
        case ColumnType::kDate: sqlite3_result_double(context, row.asDouble(column)); break;
        case ColumnType::kText:
        case ColumnType::kMemo:
            cursor.text.clear();
            row.appendText(column, cursor.text);
            sqlite3_result_text64(context, cursor.text.data(), cursor.text.size(), SQLITE_TRANSIENT,
                                  SQLITE_UTF8);
            break;
        case ColumnType::kBinary:
        case ColumnType::kOle:
            cursor.text.clear();
            row.appendBytes(column, cursor.text);
            sqlite3_result_blob64(context, cursor.text.data(), cursor.text.size(), SQLITE_TRANSIENT);
            break;
        case ColumnType::kGuid: {
            const std::string text = guidText(row.asGuid(column));
            sqlite3_result_text64(context, text.data(), text.size(), SQLITE_TRANSIENT, SQLITE_UTF8);
            break;
        }
        case ColumnType::kDecimal: {
            const std::string text = row.asDecimal(column).toText();
            sqlite3_result_text64(context, text.data(), text.size(), SQLITE_TRANSIENT, SQLITE_UTF8);
            break;
        }
        case ColumnType::kUnknown: break;
    }
}

int column(sqlite3_vtab_cursor* base, sqlite3_context* context, int number) {
    Cursor& cursor = *static_cast<Cursor*>(base);
    return guarded(cursor.table.context, [&] {
        const auto position = static_cast<std::size_t>(number);
        const ColumnType type = cursor.row->table().columns[position].type;
        if (type == ColumnType::kBoolean || !cursor.row->isNull(position)) {
            resultOf(cursor, position, type, context);
        }
    });
}

const sqlite3_module& tableModule() {
    static const sqlite3_module module = [] {
        sqlite3_module m{};
        m.xCreate = create;
        m.xConnect = connect;
        m.xBestIndex = bestIndex;
        m.xDisconnect = disconnect;
        m.xDestroy = disconnect;
        m.xOpen = open;
        m.xClose = close;
        m.xFilter = filter;
        m.xNext = next;
        m.xEof = eof;
        m.xColumn = column;
        m.xRowid = rowId;
        return m;
    }();
    return module;
}

}  // namespace

void registerTableModule(sqlite3* connection, ModuleContext& context) {
    sqlite3_create_module_v2(connection, kTableModule, &tableModule(), &context, nullptr);
}

}  // namespace wendel::jet
