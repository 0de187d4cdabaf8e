#pragma once
// The tree of one statement as the parser makes it: names as they were written, nothing resolved yet.
// Every node is owned by its parent. Depth is bounded by the parser, so that walking may recurse.

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "platform/Datum.h"

namespace wendel::jet::sql {

struct Expr;
struct Select;
using ExprPtr = std::unique_ptr<Expr>;
using SelectPtr = std::unique_ptr<Select>;

struct NullLiteral {};
struct BoolLiteral {
    bool value;
};
struct WholeLiteral {
    std::int64_t value;
};
struct RealLiteral {
    double value;
    // The value x 10 000 where the literal has at most four decimals: comparisons with currency stay exact.
    std::optional<std::int64_t> tenThousandths;
};
struct TextLiteral {
    std::string value;
};
struct DateLiteral {
    Datum value;
};

struct ColumnRef {
    std::string table;  // empty when the name stands alone
    std::string column;
};

enum class UnaryOp { Minus, Plus, Not };
struct Unary {
    UnaryOp op;
    ExprPtr operand;
};

enum class BinaryOp { Add, Subtract, Multiply, Divide, IntDivide, Mod, Power, Concat, Xor, Eqv, Imp };
struct Binary {
    BinaryOp op;
    ExprPtr left, right;
};

enum class CompareOp { Equal, NotEqual, Less, LessEqual, Greater, GreaterEqual };
struct Compare {
    CompareOp op;
    ExprPtr left, right;
};

// A run of "and" or of "or" is one node: generated conditions can have thousands of operands.
enum class LogicOp { And, Or };
struct Logic {
    LogicOp op;
    std::vector<ExprPtr> operands;
};

struct Between {
    bool negated;
    ExprPtr value, low, high;
};
struct InList {
    bool negated;
    ExprPtr value;
    std::vector<ExprPtr> items;
    std::vector<std::int64_t> wholes{};  // the items that are whole numbers: there can be tens of thousands
};
struct InSelect {
    bool negated;
    ExprPtr value;
    SelectPtr select;
};
struct Exists {
    SelectPtr select;
};
struct ScalarSelect {
    SelectPtr select;
};
struct IsNull {
    bool negated;
    ExprPtr value;
};
struct LikeExpr {
    bool negated;
    ExprPtr value, pattern;
};
struct Call {
    std::string name;
    bool star = false;  // Count(*)
    std::vector<ExprPtr> arguments;
};

struct Expr {
    std::variant<NullLiteral, BoolLiteral, WholeLiteral, RealLiteral, TextLiteral, DateLiteral, ColumnRef,
                 Unary, Binary, Compare, Logic, Between, InList, InSelect, Exists, ScalarSelect, IsNull,
                 LikeExpr, Call>
        node;
    int depth = 1;  // levels of the tree from here down, without those of selects inside
};

struct TableName {
    std::string name;
    std::string alias;  // empty: the table's own name
};
struct DerivedTable {
    SelectPtr select;
    std::string alias;
};
struct FromItem;
using FromPtr = std::unique_ptr<FromItem>;
enum class JoinKind { Inner, Left, Right };
struct Join {
    JoinKind kind;
    FromPtr left, right;
    ExprPtr on;
};
struct FromItem {
    std::variant<TableName, DerivedTable, Join> node;
};

// "*" has no expression and no table, "t.*" a table only.
struct SelectItem {
    ExprPtr value;
    std::string starTable;
    std::string alias;
};
struct OrderItem {
    ExprPtr value;
    bool descending = false;
};
struct Select {
    bool distinct = false;
    std::vector<SelectItem> items;
    std::vector<FromPtr> from;  // separated by commas; empty for a Select without From
    ExprPtr where;
    std::vector<ExprPtr> groupBy;
    ExprPtr having;
    std::vector<OrderItem> orderBy;
};

struct Insert {
    std::string table;
    std::vector<std::string> columns;  // empty: all of the table, or those named as the select's
    std::vector<ExprPtr> values;       // of one row; empty where there is a select
    SelectPtr select;
};
struct Assignment {
    ColumnRef column;
    ExprPtr value;
};
struct Update {
    std::vector<FromPtr> from;
    std::vector<Assignment> assignments;
    ExprPtr where;
};
struct Delete {
    std::string table;  // the one whose rows go, where "t.*" names it
    std::vector<FromPtr> from;
    ExprPtr where;
};

// The column types by the names that definitions have for them. Counter is a Long that counts.
enum class ColumnKind {
    Counter,
    YesNo,
    Byte,
    Short,
    Long,
    Currency,
    Single,
    Double,
    DateTime,
    Text,
    Memo,
    Binary,
    LongBinary,
    Guid,
    Decimal
};
struct ColumnDefinition {
    std::string name;
    ColumnKind kind = ColumnKind::Text;
    int size = 0;  // characters or bytes; precision of a Decimal
    int scale = 0;
    bool notNull = false;
};
struct IndexField {
    std::string column;
    bool descending = false;
};
struct IndexDefinition {
    std::string name;
    std::vector<IndexField> fields;
    bool unique = false, primary = false, required = false, ignoreNulls = false;
};
struct CreateTable {
    std::string table;
    std::vector<ColumnDefinition> columns;
    std::vector<IndexDefinition> indexes;
};
struct CreateIndex {
    std::string table;
    IndexDefinition index;
};
struct DropTable {
    std::string table;
};
struct DropIndex {
    std::string index, table;
};

struct Statement {
    std::variant<SelectPtr, Insert, Update, Delete, CreateTable, CreateIndex, DropTable, DropIndex> node;
};

}  // namespace wendel::jet::sql
