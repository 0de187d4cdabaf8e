#include "jet/sql/Translator.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <map>
#include <optional>
#include <set>

#include "jet/sql/Errors.h"
#include "jet/sql/LikePattern.h"
#include "platform/Text.h"

namespace wendel::jet::sql {
namespace {

constexpr double kHalfSecond = 0.5 / 86400.0;

// How tightly the outermost operator of a piece of SQL binds; a piece is bracketed where a tighter one is
// needed.
enum Tightness { kAtom, kProduct, kSum, kLoose };

// A piece of SQLite SQL and what is known of it.
struct Value {
    std::string sql;
    JetType type = JetType::Null;
    Tightness tightness = kLoose;
    bool scaled = false;  // Currency as whole ten thousandths
    bool tableColumn =
        false;  // a bare column of a table, where SQLite can use an index and knows the collation
    std::optional<std::int64_t> tenThousandths{};  // of a number literal
    std::optional<double> dayNumber{};             // of a literal that can be compared with a moment
};

std::string atom(const Value& v, Tightness atMost = kAtom) {
    return v.tightness <= atMost ? v.sql : "(" + v.sql + ")";
}

std::string realText(double value) {
    std::array<char, 40> buffer;
    const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value).ptr;
    std::string text(buffer.data(), end);
    if (text.find_first_of(".en") == std::string::npos) {
        text += ".0";
    }
    return value < 0 ? "(" + text + ")" : text;
}

std::string wholeText(std::int64_t value) {
    if (value == INT64_MIN) {
        return "(-9223372036854775807-1)";  // SQLite reads the digits before the sign
    }
    return value < 0 ? "(" + std::to_string(value) + ")" : std::to_string(value);
}

std::string quotedText(std::string_view text) {
    if (text.find('\0') != std::string_view::npos) {
        static constexpr std::string_view kHex = "0123456789abcdef";
        std::string hex;
        for (const char c : text) {
            hex += kHex[static_cast<unsigned char>(c) >> 4];
            hex += kHex[static_cast<unsigned char>(c) & 15];
        }
        return "CAST(x'" + hex + "' AS TEXT)";  // a statement's text ends at a NUL
    }
    return "'" + ersetzt(text, "'", "''") + "'";
}

std::string quotedName(std::string_view name) { return "\"" + ersetzt(name, "\"", "\"\"") + "\""; }

// What a function makes of its arguments: n number, d moment, t text, x as it is.
struct FunctionRule {
    std::string_view name;
    std::string_view arguments;  // optional ones behind "|"
    std::string_view sqlName;
    JetType result;
    bool keepsType = false;  // the result has the type of the first argument
};

constexpr std::array kFunctions{
    FunctionRule{"dateadd", "tnd", "j_dateadd", JetType::Date},
    FunctionRule{"datediff", "tdd", "j_datediff", JetType::Long},
    FunctionRule{"datepart", "td", "j_datepart", JetType::Integer},
    FunctionRule{"year", "d", "j_year", JetType::Integer},
    FunctionRule{"month", "d", "j_month", JetType::Integer},
    FunctionRule{"day", "d", "j_day", JetType::Integer},
    FunctionRule{"hour", "d", "j_hour", JetType::Integer},
    FunctionRule{"minute", "d", "j_minute", JetType::Integer},
    FunctionRule{"second", "d", "j_second", JetType::Integer},
    FunctionRule{"weekday", "d|n", "j_weekday", JetType::Integer},
    FunctionRule{"dateserial", "nnn", "j_dateserial", JetType::Date},
    FunctionRule{"timeserial", "nnn", "j_timeserial", JetType::Date},
    FunctionRule{"datevalue", "d", "j_datevalue", JetType::Date},
    FunctionRule{"timevalue", "d", "j_timevalue", JetType::Date},
    FunctionRule{"val", "t", "j_val", JetType::Double},
    FunctionRule{"len", "t", "j_len", JetType::Long},
    FunctionRule{"left", "tn", "j_left", JetType::Text},
    FunctionRule{"right", "tn", "j_right", JetType::Text},
    FunctionRule{"mid", "tn|n", "j_mid", JetType::Text},
    FunctionRule{"ucase", "t", "j_ucase", JetType::Text},
    FunctionRule{"lcase", "t", "j_lcase", JetType::Text},
    FunctionRule{"trim", "t", "j_trim", JetType::Text},
    FunctionRule{"ltrim", "t", "j_ltrim", JetType::Text},
    FunctionRule{"rtrim", "t", "j_rtrim", JetType::Text},
    FunctionRule{"cstr", "t", "j_text", JetType::Text},
    FunctionRule{"int", "n", "j_int", JetType::Double, true},
    FunctionRule{"fix", "n", "j_fix", JetType::Double, true},
    FunctionRule{"abs", "n", "abs", JetType::Double, true},
    FunctionRule{"sgn", "n", "sign", JetType::Integer},
    FunctionRule{"round", "n|n", "j_round", JetType::Double, true},
    FunctionRule{"cint", "n", "j_clng", JetType::Integer},
    FunctionRule{"clng", "n", "j_clng", JetType::Long},
    FunctionRule{"cdbl", "n", "j_cdbl", JetType::Double},
    FunctionRule{"csng", "n", "j_cdbl", JetType::Single},
    FunctionRule{"ccur", "n", "j_cdbl", JetType::Currency},
    FunctionRule{"cdate", "d", "j_cdbl", JetType::Date},
};

std::string lowered(std::string_view text) { return LCase(text); }

bool isAggregate(std::string_view name) {
    const std::string lower = lowered(name);
    return lower == "count" || lower == "sum" || lower == "avg" || lower == "min" || lower == "max";
}

// A table in the From clause as its columns are reached.
struct Source {
    std::string name;   // as statements call it
    std::string alias;  // in the SQL
    std::vector<SchemaColumn> columns;
    bool isTable = false;
    std::string sql;  // what stands in the From clause for it
};
struct Scope {
    const Scope* outer = nullptr;
    std::vector<Source> sources;
};

// One select as SQL, its columns named c0, c1, ...
struct SelectSql {
    std::string sql;
    std::vector<SchemaColumn> columns;
};

class Translator {
  public:
    Translator(Schema& schema, Datum jetzt) : schema_(schema), jetzt_(jetzt) {}

    Translation statement(const Statement& statement);

  private:
    struct Item {
        const Expr* expr;  // null for a column of a star
        Value value;
        std::string name;
        std::string qualifiedName;  // of a column without alias
    };

    // The select whose expressions are being written.
    struct Context {
        Scope scope;
        bool aggregatesAllowed = true;
        bool insideAggregate = false;
        bool hasAggregate = false;
    };

    // inner: the result is compared again outside, and its columns keep their collation.
    SelectSql select(const Select& select, const Context* outer, bool inner);
    std::string from(const FromItem& item, Context& context, std::size_t& source);
    std::string bracketedJoin(const FromItem& item, Context& context, std::size_t& source);
    void collectSources(const FromItem& item, Context& context);
    std::vector<Item> items(const Select& select, Context& context);
    void addStar(const Source& source, std::vector<Item>& items);
    static void nameItems(std::vector<Item>& items);
    std::string orderBy(const Select& select, const std::vector<Item>& items, Context& context);
    std::string orderTerm(const OrderItem& order, const Select& select, const std::vector<Item>& items,
                          Context& context);
    void checkGrouping(const Select& select, Context& context);
    void checkGrouped(const Expr& expr, const std::set<std::string>& groups, Context& context);
    static std::string finished(const Item& item, bool keepCollation);

    Value value(const Expr& expr, Context& context);
    std::string condition(const Expr& expr, Context& context);
    // A condition as SQLite's truth value, or (type not Boolean) a number as it is.
    Value truth(const Expr& expr, Context& context);

    Value literal(const WholeLiteral& node);
    Value literal(const RealLiteral& node);
    Value moment(Datum moment);
    Value column(const ColumnRef& node, Context& context);
    std::optional<Value> findColumn(const ColumnRef& node, const Context& context, bool firstOfMany);
    Value unary(const Unary& node, Context& context);
    Value binary(const Binary& node, Context& context);
    Value sum(BinaryOp op, const Value& left, const Value& right);
    Value product(const Value& left, const Value& right);
    Value logicOnBits(const Binary& node, Context& context);
    Value logic(const Logic& node, Context& context);
    Value like(const LikeExpr& node, Context& context);
    Value inList(const InList& node, Context& context);
    Value inSelect(const InSelect& node, Context& context);
    Value call(const Call& node, Context& context);
    Value aggregate(const Call& node, Context& context);
    Value iif(const Call& node, Context& context);
    Value nz(const Call& node, Context& context);
    Value inStr(const Call& node, Context& context);
    Value format(const Call& node, Context& context);
    Value scalar(const ScalarSelect& node, Context& context);

    std::string compare(CompareOp op, const Value& left, const Value& right);

    static std::string number(const Value& v, Tightness atMost = kAtom);
    static std::string text(const Value& v);
    static std::string momentNumber(const Value& v);
    static std::string seconds(const Value& v);
    static std::optional<std::string> scaledForm(const Value& v);
    static std::string collated(const Value& v);
    static Value merged(const Value& left, const Value& right, std::string& leftSql, std::string& rightSql);
    static JetType arithmeticType(JetType left, JetType right);

    Schema& schema_;
    Datum jetzt_;
    int aliases_ = 0;
    std::set<std::string> unknownNames_;
};

// --- conversions of finished pieces ---

std::string Translator::number(const Value& v, Tightness atMost) {
    switch (v.type) {
        case JetType::Text:
        case JetType::Memo: return "j_val(" + v.sql + ")";
        case JetType::Decimal: return "CAST(" + v.sql + " AS REAL)";
        case JetType::Binary:
        case JetType::Ole:
        case JetType::Guid: throw sqlError(kTypeMismatch);
        case JetType::Currency:
            if (v.scaled) {
                return "(" + atom(v, kProduct) + "/10000.0)";
            }
            break;
        default: break;
    }
    return atom(v, atMost);
}

std::string Translator::text(const Value& v) {
    if (isText(v.type) || v.type == JetType::Guid || v.type == JetType::Decimal || v.type == JetType::Null) {
        return v.sql;
    }
    if (isMoment(v.type)) {
        return "j_datetext(" + v.sql + ")";
    }
    return "j_text(" + number(v, kLoose) + ")";
}

std::string Translator::momentNumber(const Value& v) {
    return isText(v.type) ? "j_cdate(" + v.sql + ")" : number(v, kLoose);
}

std::string Translator::seconds(const Value& v) {
    if (v.dayNumber) {
        return wholeText(std::llround(*v.dayNumber * 86400.0));
    }
    return "j_sec(" + number(v, kLoose) + ")";
}

// The value as whole ten thousandths, where nothing is lost.
std::optional<std::string> Translator::scaledForm(const Value& v) {
    if (v.type == JetType::Currency && v.scaled) {
        return atom(v);
    }
    if (v.tenThousandths) {
        return wholeText(*v.tenThousandths);
    }
    if (isWhole(v.type)) {
        return "(" + atom(v, kProduct) + "*10000)";
    }
    return std::nullopt;
}

// Text that SQLite compares as the database does, also where no column stands.
std::string Translator::collated(const Value& v) {
    return v.tableColumn || !isText(v.type) ? atom(v) : atom(v) + " COLLATE " + kCollation;
}

JetType Translator::arithmeticType(JetType left, JetType right) {
    const auto either = [&](JetType t) { return left == t || right == t; };
    if (left == JetType::Null || right == JetType::Null) {
        return left == JetType::Null ? right : left;
    }
    if (isWhole(left) && isWhole(right)) {
        return JetType::Long;
    }
    if (either(JetType::Currency) && (left == right || isWhole(left) || isWhole(right))) {
        return JetType::Currency;
    }
    if (either(JetType::Single) && !either(JetType::Long) &&
        (left == right || isWhole(left) || isWhole(right))) {
        return JetType::Single;
    }
    return JetType::Double;
}

// --- statement, select, clauses ---

Translation Translator::statement(const Statement& statement) {
    const SelectSql result = select(*std::get<SelectPtr>(statement.node), nullptr, false);
    if (!unknownNames_.empty()) {
        throw sqlError(kTooFewParameters, std::to_string(unknownNames_.size()));
    }
    Translation translation{result.sql, {}};
    for (const SchemaColumn& column : result.columns) {
        const JetType type = column.type == JetType::DaySum ? JetType::Double : column.type;
        translation.columns.push_back({column.name, type});
    }
    return translation;
}

SelectSql Translator::select(const Select& select, const Context* outer, bool inner) {
    Context context;
    context.scope.outer = outer ? &outer->scope : nullptr;
    for (const FromPtr& item : select.from) {
        collectSources(*item, context);
    }
    const std::vector<Item> selected = items(select, context);
    std::string sql = select.distinct ? "SELECT DISTINCT " : "SELECT ";
    SelectSql result;
    for (std::size_t i = 0; i < selected.size(); ++i) {
        sql += (i ? "," : "") + finished(selected[i], select.distinct || inner) + " AS c" + std::to_string(i);
        result.columns.push_back({selected[i].name, selected[i].value.type});
    }
    context.aggregatesAllowed = false;
    std::size_t source = 0;
    for (std::size_t i = 0; i < select.from.size(); ++i) {
        sql += i ? "," : " FROM ";
        sql += i ? bracketedJoin(*select.from[i], context, source) : from(*select.from[i], context, source);
    }
    if (select.where) {
        sql += " WHERE " + condition(*select.where, context);
    }
    for (std::size_t i = 0; i < select.groupBy.size(); ++i) {
        sql += (i ? "," : " GROUP BY ") + collated(value(*select.groupBy[i], context));
    }
    context.aggregatesAllowed = true;
    if (select.having) {
        sql += " HAVING " + condition(*select.having, context);
    }
    sql += orderBy(select, selected, context);
    if (context.hasAggregate || !select.groupBy.empty() || select.having) {
        checkGrouping(select, context);
    }
    result.sql = std::move(sql);
    return result;
}

// The sources are taken in the order in which collectSources found them.
std::string Translator::from(const FromItem& item, Context& context, std::size_t& source) {
    const Join* join = std::get_if<Join>(&item.node);
    if (!join) {
        return context.scope.sources[source++].sql;
    }
    std::string first, second;
    if (join->kind == JoinKind::Right) {
        second = bracketedJoin(*join->left, context, source);
        first = from(*join->right, context, source);
    } else {
        first = from(*join->left, context, source);
        second = bracketedJoin(*join->right, context, source);
    }
    return first + (join->kind == JoinKind::Inner ? " JOIN " : " LEFT JOIN ") + second + " ON " +
           condition(*join->on, context);
}

std::string Translator::bracketedJoin(const FromItem& item, Context& context, std::size_t& source) {
    const std::string sql = from(item, context, source);
    return std::holds_alternative<Join>(item.node) ? "(" + sql + ")" : sql;
}

void Translator::collectSources(const FromItem& item, Context& context) {
    if (const Join* join = std::get_if<Join>(&item.node)) {
        collectSources(*join->left, context);
        collectSources(*join->right, context);
        return;
    }
    Source source;
    source.alias = "s" + std::to_string(aliases_++);
    if (const TableName* name = std::get_if<TableName>(&item.node)) {
        const SchemaTable* table = schema_.table(name->name);
        if (!table) {
            throw sqlError(kUnknownTable, name->name);
        }
        source.name = name->alias.empty() ? name->name : name->alias;
        source.columns = table->columns;
        source.isTable = true;
        source.sql = quotedName(table->sqlName) + " AS " + source.alias;
    } else {
        const DerivedTable& derived = std::get<DerivedTable>(item.node);
        SelectSql inner = select(*derived.select, nullptr, true);
        source.name = derived.alias;
        source.columns = std::move(inner.columns);
        source.sql = "(" + inner.sql + ") AS " + source.alias;
    }
    context.scope.sources.push_back(std::move(source));
}

std::vector<Translator::Item> Translator::items(const Select& select, Context& context) {
    std::vector<Item> result;
    for (const SelectItem& item : select.items) {
        if (item.value) {
            Item made{item.value.get(), value(*item.value, context), item.alias, {}};
            if (const ColumnRef* ref = std::get_if<ColumnRef>(&item.value->node); ref && item.alias.empty()) {
                made.name = ref->column;
                for (const Source& source : context.scope.sources) {
                    if (made.value.sql.starts_with(source.alias + ".")) {
                        made.qualifiedName = source.name + "." + ref->column;
                    }
                }
            } else if (item.alias.empty()) {
                made.name = "Expr" + std::to_string(1000 + result.size());
            }
            result.push_back(std::move(made));
            continue;
        }
        bool found = false;
        for (const Source& source : context.scope.sources) {
            if (item.starTable.empty() || gleichOhneGrossKlein(source.name, item.starTable)) {
                addStar(source, result);
                found = true;
            }
        }
        if (!found) {
            throw item.starTable.empty() ? sqlError(kSelectSyntax) : sqlError(kUnknownTable, item.starTable);
        }
    }
    nameItems(result);
    return result;
}

void Translator::addStar(const Source& source, std::vector<Item>& items) {
    for (std::size_t i = 0; i < source.columns.size(); ++i) {
        const SchemaColumn& column = source.columns[i];
        Value value{source.alias + ".c" + std::to_string(i), column.type, kAtom,
                    column.type == JetType::Currency, source.isTable};
        items.push_back({nullptr, std::move(value), column.name, source.name + "." + column.name});
    }
}

// Columns of the same name from two tables are told apart by their tables' names.
void Translator::nameItems(std::vector<Item>& items) {
    std::map<std::string, int> uses;
    for (const Item& item : items) {
        ++uses[lowered(item.name)];
    }
    for (Item& item : items) {
        if (!item.qualifiedName.empty() && uses[lowered(item.name)] > 1) {
            item.name = item.qualifiedName;
        }
    }
}

// A column of the result: currency always as whole ten thousandths. The collation matters where SQLite
// compares the column again: for Distinct, and outside of a derived table.
std::string Translator::finished(const Item& item, bool keepCollation) {
    if (item.value.type == JetType::Currency && !item.value.scaled) {
        return "j_tenthousandths(" + item.value.sql + ")";
    }
    return keepCollation ? collated(item.value) : item.value.sql;
}

std::string Translator::orderBy(const Select& select, const std::vector<Item>& items, Context& context) {
    std::string sql;
    for (const OrderItem& order : select.orderBy) {
        sql += (sql.empty() ? " ORDER BY " : ",") + orderTerm(order, select, items, context) +
               (order.descending ? " DESC" : "");
    }
    return sql;
}

std::string Translator::orderTerm(const OrderItem& order, const Select& select,
                                  const std::vector<Item>& items, Context& context) {
    const auto byItem = [&](std::size_t i) {
        const std::string name = "c" + std::to_string(i);
        return isText(items[i].value.type) ? name + " COLLATE " + kCollation : name;
    };
    if (const WholeLiteral* position = std::get_if<WholeLiteral>(&order.value->node)) {
        if (position->value < 1 || position->value > static_cast<std::int64_t>(items.size())) {
            throw sqlError(kOrderBySyntax);
        }
        return byItem(static_cast<std::size_t>(position->value - 1));
    }
    Value term;
    const ColumnRef* ref = std::get_if<ColumnRef>(&order.value->node);
    std::optional<Value> found = ref ? findColumn(*ref, context, true) : std::nullopt;
    if (ref && !found && ref->table.empty()) {
        for (std::size_t i = 0; i < items.size(); ++i) {
            if (gleichOhneGrossKlein(items[i].name, ref->column)) {
                return byItem(i);
            }
        }
    }
    term = found ? *found : value(*order.value, context);
    const bool selected =
        std::any_of(items.begin(), items.end(), [&](const Item& item) { return item.value.sql == term.sql; });
    if (select.distinct && !selected) {
        throw sqlError(kOrderByDistinct, ref ? ref->column : "Ausdruck");
    }
    return term.type == JetType::Decimal ? number(term) : collated(term);
}

// Every column outside of an aggregate must be one of the groups, or part of an expression that is.
void Translator::checkGrouping(const Select& select, Context& context) {
    std::set<std::string> groups;
    for (const ExprPtr& group : select.groupBy) {
        groups.insert(value(*group, context).sql);
    }
    for (const SelectItem& item : select.items) {
        if (!item.value) {
            throw sqlError(kNotAggregated, "*");
        }
        checkGrouped(*item.value, groups, context);
    }
    if (select.having) {
        checkGrouped(*select.having, groups, context);
    }
    for (const OrderItem& order : select.orderBy) {
        const ColumnRef* ref = std::get_if<ColumnRef>(&order.value->node);
        if (!ref || findColumn(*ref, context, true)) {
            checkGrouped(*order.value, groups, context);
        }
    }
}

void Translator::checkGrouped(const Expr& expr, const std::set<std::string>& groups, Context& context) {
    const auto check = [&](const ExprPtr& e) { checkGrouped(*e, groups, context); };
    if (const ColumnRef* ref = std::get_if<ColumnRef>(&expr.node)) {
        const auto found = findColumn(*ref, context, true);
        if (found && !groups.contains(found->sql)) {
            throw sqlError(kNotAggregated, ref->column);
        }
    } else if (const Call* function = std::get_if<Call>(&expr.node)) {
        if (!isAggregate(function->name) && !groups.contains(value(expr, context).sql)) {
            std::for_each(function->arguments.begin(), function->arguments.end(), check);
        }
    } else if (const Binary* operation = std::get_if<Binary>(&expr.node)) {
        if (!groups.contains(value(expr, context).sql)) {
            check(operation->left);
            check(operation->right);
        }
    } else if (const Unary* sign = std::get_if<Unary>(&expr.node)) {
        if (!groups.contains(value(expr, context).sql)) {
            check(sign->operand);
        }
    } else if (const Compare* comparison = std::get_if<Compare>(&expr.node)) {
        check(comparison->left);
        check(comparison->right);
    } else if (const Logic* chain = std::get_if<Logic>(&expr.node)) {
        std::for_each(chain->operands.begin(), chain->operands.end(), check);
    } else if (const Between* range = std::get_if<Between>(&expr.node)) {
        check(range->value);
        check(range->low);
        check(range->high);
    } else if (const InList* list = std::get_if<InList>(&expr.node)) {
        check(list->value);
    } else if (const IsNull* test = std::get_if<IsNull>(&expr.node)) {
        check(test->value);
    } else if (const LikeExpr* match = std::get_if<LikeExpr>(&expr.node)) {
        check(match->value);
    }
}

// --- expressions ---

template <class... Cases>
struct Overloaded : Cases... {
    using Cases::operator()...;
};
template <class... Cases>
Overloaded(Cases...) -> Overloaded<Cases...>;

bool isCondition(const Expr& expr) {
    if (const Unary* unary = std::get_if<Unary>(&expr.node)) {
        return unary->op == UnaryOp::Not;
    }
    if (const Binary* binary = std::get_if<Binary>(&expr.node)) {
        return binary->op == BinaryOp::Xor || binary->op == BinaryOp::Eqv || binary->op == BinaryOp::Imp;
    }
    return std::holds_alternative<Compare>(expr.node) || std::holds_alternative<Logic>(expr.node) ||
           std::holds_alternative<Between>(expr.node) || std::holds_alternative<InList>(expr.node) ||
           std::holds_alternative<InSelect>(expr.node) || std::holds_alternative<Exists>(expr.node) ||
           std::holds_alternative<IsNull>(expr.node) || std::holds_alternative<LikeExpr>(expr.node);
}

Value Translator::value(const Expr& expr, Context& context) {
    if (isCondition(expr)) {
        Value result = truth(expr, context);
        if (result.type == JetType::Boolean) {
            result.sql = "(-(" + result.sql + "))";  // SQLite's 1 is this dialect's -1
            result.tightness = kAtom;
        }
        return result;
    }
    return std::visit(
        Overloaded{
            [&](const NullLiteral&) {
                return Value{"NULL", JetType::Null, kAtom};
            },
            [&](const BoolLiteral& n) {
                Value v{n.value ? "(-1)" : "0", JetType::Boolean, kAtom};
                v.tenThousandths = n.value ? -10000 : 0;
                return v;
            },
            [&](const WholeLiteral& n) { return literal(n); },
            [&](const RealLiteral& n) { return literal(n); },
            [&](const TextLiteral& n) {
                return Value{quotedText(n.value), JetType::Text, kAtom};
            },
            [&](const DateLiteral& n) { return moment(n.value); },
            [&](const ColumnRef& n) { return column(n, context); },
            [&](const Unary& n) { return unary(n, context); },
            [&](const Binary& n) { return binary(n, context); },
            [&](const Call& n) { return call(n, context); },
            [&](const ScalarSelect& n) { return scalar(n, context); },
            [&](const auto&) -> Value { throw sqlError(kTooComplex); },  // conditions, handled above
        },
        expr.node);
}

std::string Translator::condition(const Expr& expr, Context& context) {
    const Value result = truth(expr, context);
    if (isText(result.type)) {
        throw sqlError(kTypeMismatch);
    }
    return "(" + number(result, kLoose) + ")";
}

Value Translator::truth(const Expr& expr, Context& context) {
    const auto boolean = [](std::string sql) { return Value{std::move(sql), JetType::Boolean, kLoose}; };
    const auto negatedIf = [&](bool negated, std::string sql) {
        return boolean(negated ? "NOT (" + sql + ")" : std::move(sql));
    };
    return std::visit(
        Overloaded{
            [&](const Compare& n) {
                return boolean(compare(n.op, value(*n.left, context), value(*n.right, context)));
            },
            [&](const Logic& n) { return logic(n, context); },
            [&](const Unary& n) { return n.op == UnaryOp::Not ? unary(n, context) : value(expr, context); },
            [&](const Binary& n) {
                return isCondition(expr) ? logicOnBits(n, context) : value(expr, context);
            },
            [&](const Between& n) {
                const Value v = value(*n.value, context);
                return negatedIf(n.negated, compare(CompareOp::GreaterEqual, v, value(*n.low, context)) +
                                                " AND " +
                                                compare(CompareOp::LessEqual, v, value(*n.high, context)));
            },
            [&](const InList& n) { return inList(n, context); },
            [&](const InSelect& n) { return inSelect(n, context); },
            [&](const Exists& n) {
                return boolean("EXISTS (" + select(*n.select, &context, true).sql + ")");
            },
            [&](const IsNull& n) {
                return boolean(atom(value(*n.value, context)) + (n.negated ? " IS NOT NULL" : " IS NULL"));
            },
            [&](const LikeExpr& n) { return like(n, context); },
            [&](const auto&) { return value(expr, context); },
        },
        expr.node);
}

Value Translator::literal(const WholeLiteral& node) {
    Value v{wholeText(node.value), JetType::Long, kAtom};
    if (std::abs(node.value) < INT64_MAX / 10000) {
        v.tenThousandths = node.value * 10000;
        v.dayNumber = static_cast<double>(node.value);
    }
    return v;
}

Value Translator::literal(const RealLiteral& node) {
    Value v{realText(node.value), JetType::Double, kAtom, false, false, node.tenThousandths};
    if (std::abs(node.value) < 1e9) {
        v.dayNumber = node.value;
    }
    return v;
}

Value Translator::moment(Datum moment) {
    const double days = moment.tageszahl();
    return Value{realText(days), JetType::Date, kAtom, false, false, {}, days};
}

// An unknown name is a parameter that nobody fills in; how many there are is reported at the end.
Value Translator::column(const ColumnRef& node, Context& context) {
    if (auto found = findColumn(node, context, false)) {
        return *found;
    }
    unknownNames_.insert(lowered(node.table.empty() ? node.column : node.table + "." + node.column));
    return Value{"NULL", JetType::Null, kAtom};
}

std::optional<Value> Translator::findColumn(const ColumnRef& node, const Context& context, bool firstOfMany) {
    for (const Scope* scope = &context.scope; scope; scope = scope->outer) {
        std::optional<Value> found;
        for (const Source& source : scope->sources) {
            if (!node.table.empty() && !gleichOhneGrossKlein(source.name, node.table)) {
                continue;
            }
            for (std::size_t i = 0; i < source.columns.size(); ++i) {
                if (!gleichOhneGrossKlein(source.columns[i].name, node.column)) {
                    continue;
                }
                if (found && !firstOfMany) {
                    throw sqlError(kAmbiguousField, node.column);
                }
                if (!found) {
                    const JetType type = source.columns[i].type;
                    found = Value{source.alias + ".c" + std::to_string(i), type, kAtom,
                                  type == JetType::Currency, source.isTable};
                }
            }
        }
        if (found) {
            return found;
        }
    }
    return std::nullopt;
}

Value Translator::unary(const Unary& node, Context& context) {
    if (node.op == UnaryOp::Not) {
        const Value operand = truth(*node.operand, context);
        if (operand.type == JetType::Boolean || operand.type == JetType::Null) {
            return Value{"NOT (" + operand.sql + ")", JetType::Boolean, kLoose};
        }
        return Value{"~j_clng(" + number(operand, kLoose) + ")", JetType::Long, kLoose};
    }
    Value operand = value(*node.operand, context);
    if (node.op == UnaryOp::Plus) {
        return operand;
    }
    Value result{"(-" + (operand.scaled ? atom(operand) : number(operand)) + ")", operand.type, kAtom,
                 operand.scaled};
    if (operand.tenThousandths) {
        result.tenThousandths = -*operand.tenThousandths;
    }
    if (operand.dayNumber) {
        result.dayNumber = -*operand.dayNumber;
    }
    if (isText(operand.type) || operand.type == JetType::Decimal) {
        result.type = JetType::Double;
    } else if (operand.type == JetType::Boolean) {
        result.type = JetType::Integer;
    }
    return result;
}

Value Translator::binary(const Binary& node, Context& context) {
    const Value left = value(*node.left, context);
    const Value right = value(*node.right, context);
    const auto function = [&](const char* name, JetType type) {
        return Value{std::string(name) + "(" + number(left, kLoose) + "," + number(right, kLoose) + ")",
                     type,
                     kAtom,
                     false,
                     false,
                     {},
                     {}};
    };
    switch (node.op) {
        case BinaryOp::Add:
        case BinaryOp::Subtract: return sum(node.op, left, right);
        case BinaryOp::Multiply: return product(left, right);
        case BinaryOp::Divide: return function("j_div", JetType::Double);
        case BinaryOp::IntDivide: return function("j_idiv", JetType::Long);
        case BinaryOp::Mod: return function("j_mod", JetType::Long);
        case BinaryOp::Power: return function("j_pow", JetType::Double);
        case BinaryOp::Concat:
            return Value{"j_concat(" + text(left) + "," + text(right) + ")", JetType::Text, kAtom};
        default: return logicOnBits(node, context);
    }
}

Value Translator::sum(BinaryOp op, const Value& left, const Value& right) {
    const bool add = op == BinaryOp::Add;
    if (add && isText(left.type) && isText(right.type)) {
        return Value{atom(left) + "||" + atom(right), JetType::Text, kLoose};
    }
    JetType type = arithmeticType(left.type, right.type);
    if (isMoment(left.type) && isMoment(right.type)) {
        type = add ? JetType::DaySum : JetType::Double;
    } else if (isMoment(left.type)) {
        type = left.type;
    } else if (add && isMoment(right.type)) {
        type = right.type;
    }
    const char* sign = add ? "+" : "-";
    if (type == JetType::Currency) {
        const auto a = scaledForm(left);
        const auto b = scaledForm(right);
        if (a && b) {
            return Value{*a + sign + *b, type, kSum, true};
        }
    }
    return Value{number(left, kSum) + sign + number(right, kProduct), type, kSum};
}

Value Translator::product(const Value& left, const Value& right) {
    const JetType type = arithmeticType(left.type, right.type);
    if (type == JetType::Currency && (isWhole(left.type) || isWhole(right.type)) &&
        (left.scaled || right.scaled)) {
        return Value{atom(left, kProduct) + "*" + atom(right), type, kProduct, true};
    }
    return Value{number(left, kProduct) + "*" + number(right), type, kProduct};
}

// Xor, Eqv and Imp.
Value Translator::logicOnBits(const Binary& node, Context& context) {
    const std::string left = "(" + condition(*node.left, context) + "<>0)";
    const std::string right = "(" + condition(*node.right, context) + "<>0)";
    std::string sql;
    switch (node.op) {
        case BinaryOp::Xor: sql = left + "<>" + right; break;
        case BinaryOp::Eqv: sql = left + "=" + right; break;
        default: sql = "NOT " + left + " OR " + right; break;
    }
    return Value{std::move(sql), JetType::Boolean, kLoose};
}

// Joined as a balanced tree: SQLite bounds the depth of an expression, the dialect not the number of keys.
std::string joined(const std::vector<std::string>& operands, std::size_t begin, std::size_t end,
                   const std::string& op) {
    if (end - begin == 1) {
        return operands[begin];
    }
    const std::size_t middle = begin + (end - begin + 1) / 2;
    return "(" + joined(operands, begin, middle, op) + op + joined(operands, middle, end, op) + ")";
}

Value Translator::logic(const Logic& node, Context& context) {
    const bool isAnd = node.op == LogicOp::And;
    std::vector<std::string> operands;
    bool onBits = true;
    for (const ExprPtr& operand : node.operands) {
        const Value v = truth(*operand, context);
        if (isText(v.type)) {
            throw sqlError(kTypeMismatch);
        }
        onBits = onBits && v.type != JetType::Boolean && v.type != JetType::Null;
        operands.push_back("(" + number(v, kLoose) + ")");
    }
    if (onBits) {  // numbers on both sides: bit by bit
        for (std::string& operand : operands) {
            operand = "j_clng" + operand;
        }
        return Value{joined(operands, 0, operands.size(), isAnd ? "&" : "|"), JetType::Long, kAtom};
    }
    return Value{joined(operands, 0, operands.size(), isAnd ? " AND " : " OR "), JetType::Boolean, kAtom};
}

CompareOp mirrored(CompareOp op) {
    switch (op) {
        case CompareOp::Less: return CompareOp::Greater;
        case CompareOp::LessEqual: return CompareOp::GreaterEqual;
        case CompareOp::Greater: return CompareOp::Less;
        case CompareOp::GreaterEqual: return CompareOp::LessEqual;
        default: return op;
    }
}

const char* symbol(CompareOp op) {
    switch (op) {
        case CompareOp::Equal: return "=";
        case CompareOp::NotEqual: return "<>";
        case CompareOp::Less: return "<";
        case CompareOp::LessEqual: return "<=";
        case CompareOp::Greater: return ">";
        default: return ">=";
    }
}

// A stored moment against a limit, both to the nearest second: low and high are the limit's second, exclusive
// at its end. Written with the bare column, so that an index on it can be used.
std::string compareWithinSecond(CompareOp op, const std::string& column, const std::string& low,
                                const std::string& high) {
    switch (op) {
        case CompareOp::Equal: return "(" + column + ">=" + low + " AND " + column + "<" + high + ")";
        case CompareOp::NotEqual: return "(" + column + "<" + low + " OR " + column + ">=" + high + ")";
        case CompareOp::Less: return column + "<" + low;
        case CompareOp::LessEqual: return column + "<" + high;
        case CompareOp::Greater: return column + ">=" + high;
        default: return column + ">=" + low;
    }
}

std::string Translator::compare(CompareOp op, const Value& left, const Value& right) {
    const bool texts = isText(left.type) || isText(right.type);
    const bool moments = isMoment(left.type) || isMoment(right.type);
    if (left.type == JetType::Null || right.type == JetType::Null) {
        return atom(left) + symbol(op) + atom(right);
    }
    if (left.type == JetType::Guid || right.type == JetType::Guid) {
        return text(left) + symbol(op) + text(right) + " COLLATE NOCASE";
    }
    if (texts) {
        if (!isText(left.type) || !isText(right.type)) {
            throw sqlError(kTypeMismatch);
        }
        return collated(left) + symbol(op) + atom(right);
    }
    if (moments) {
        if (left.tableColumn && right.dayNumber) {
            return compareWithinSecond(op, left.sql, realText(*right.dayNumber - kHalfSecond),
                                       realText(*right.dayNumber + kHalfSecond));
        }
        if (right.tableColumn && left.dayNumber) {
            return compare(mirrored(op), right, left);
        }
        if (left.tableColumn && isMoment(right.type)) {
            const std::string half = realText(kHalfSecond);
            return compareWithinSecond(op, left.sql, atom(right) + "-" + half, atom(right) + "+" + half);
        }
        return seconds(left) + symbol(op) + seconds(right);
    }
    if (left.type == JetType::Currency || right.type == JetType::Currency) {
        const auto a = scaledForm(left);
        const auto b = scaledForm(right);
        if (a && b) {
            return *a + symbol(op) + *b;
        }
    }
    if (left.type == JetType::Binary || left.type == JetType::Ole) {
        return atom(left) + symbol(op) + atom(right);
    }
    return number(left) + symbol(op) + number(right);
}

Value Translator::like(const LikeExpr& node, Context& context) {
    if (const TextLiteral* pattern = std::get_if<TextLiteral>(&node.pattern->node)) {
        LikePattern{pattern->value};  // a pattern that cannot be read is an error even where no row is asked
    }
    const std::string match =
        "j_like(" + text(value(*node.pattern, context)) + "," + text(value(*node.value, context)) + ")";
    return Value{node.negated ? "NOT " + match : match, JetType::Boolean, kLoose};
}

Value Translator::inList(const InList& node, Context& context) {
    const Value tested = value(*node.value, context);
    std::vector<Value> values;
    bool moments = isMoment(tested.type);
    bool currency = tested.type == JetType::Currency;
    for (const ExprPtr& item : node.items) {
        values.push_back(value(*item, context));
        const JetType type = values.back().type;
        if (tested.type != JetType::Null && type != JetType::Null && isText(tested.type) != isText(type) &&
            tested.type != JetType::Guid) {
            throw sqlError(kTypeMismatch);
        }
        moments = moments || isMoment(type);
        currency = currency && (type == JetType::Null || scaledForm(values.back()));
    }
    const auto form = [&](const Value& v) {
        if (v.type == JetType::Null || isText(v.type) || v.type == JetType::Guid) {
            return atom(v);
        }
        return moments ? seconds(v) : currency ? *scaledForm(v) : number(v, kLoose);
    };
    std::string sql = isText(tested.type)            ? collated(tested)
                      : tested.type == JetType::Guid ? atom(tested) + " COLLATE NOCASE"
                                                     : form(tested);
    sql += node.negated ? " NOT IN (" : " IN (";
    for (std::size_t i = 0; i < values.size(); ++i) {
        sql += (i ? "," : "") + form(values[i]);
    }
    return Value{sql + ")", JetType::Boolean, kLoose};
}

Value Translator::inSelect(const InSelect& node, Context& context) {
    const Value tested = value(*node.value, context);
    const SelectSql inner = select(*node.select, &context, true);
    if (inner.columns.size() != 1) {
        throw sqlError(kExpressionSyntax, "In");
    }
    Value found{"c0", inner.columns[0].type, kAtom, inner.columns[0].type == JetType::Currency};
    if (tested.type != JetType::Null && found.type != JetType::Null &&
        isText(tested.type) != isText(found.type)) {
        throw sqlError(kTypeMismatch);
    }
    std::string left = collated(tested);
    std::string right = inner.sql;
    if (!isText(tested.type) && tested.type != JetType::Guid) {
        const bool moments = isMoment(tested.type) || isMoment(found.type);
        left = moments ? seconds(tested) : number(tested, kAtom);
        right = "SELECT " + (moments ? seconds(found) : number(found, kLoose)) + " FROM (" + inner.sql + ")";
    }
    return Value{left + (node.negated ? " NOT IN (" : " IN (") + right + ")", JetType::Boolean, kLoose};
}

Value Translator::scalar(const ScalarSelect& node, Context& context) {
    const SelectSql inner = select(*node.select, &context, true);
    if (inner.columns.size() != 1) {
        throw sqlError(kExpressionSyntax, "Select");
    }
    const JetType type = inner.columns[0].type;
    return Value{"(" + inner.sql + " LIMIT 1)", type, kAtom, type == JetType::Currency};
}

// --- functions ---

[[noreturn]] void wrongArguments(const Call& node) { throw sqlError(kExpressionSyntax, node.name + "(...)"); }

Value Translator::call(const Call& node, Context& context) {
    const std::string name = lowered(node.name);
    if (isAggregate(name)) {
        return aggregate(node, context);
    }
    if (node.star) {
        wrongArguments(node);
    }
    if (name == "now" || name == "date" || name == "time") {
        if (!node.arguments.empty()) {
            wrongArguments(node);
        }
        return moment(name == "now" ? jetzt_ : name == "date" ? jetzt_.datumsteil() : jetzt_.uhrzeitteil());
    }
    if (name == "iif") return iif(node, context);
    if (name == "nz") return nz(node, context);
    if (name == "instr") return inStr(node, context);
    if (name == "format") return format(node, context);
    if (name == "isnull" && node.arguments.size() == 1) {
        return Value{"(-(" + atom(value(*node.arguments[0], context)) + " IS NULL))", JetType::Boolean,
                     kAtom};
    }
    const auto rule = std::find_if(kFunctions.begin(), kFunctions.end(),
                                   [&](const FunctionRule& r) { return r.name == name; });
    if (rule == kFunctions.end()) {
        throw sqlError(kUnknownFunction, node.name);
    }
    const std::size_t required = std::min(rule->arguments.find('|'), rule->arguments.size());
    const std::string kinds = ersetzt(rule->arguments, "|", "");
    if (node.arguments.size() < required || node.arguments.size() > kinds.size()) {
        wrongArguments(node);
    }
    std::string sql = std::string(rule->sqlName) + "(";
    JetType type = rule->result;
    for (std::size_t i = 0; i < node.arguments.size(); ++i) {
        const Value argument = value(*node.arguments[i], context);
        sql += i ? "," : "";
        sql += kinds[i] == 't'   ? text(argument)
               : kinds[i] == 'd' ? momentNumber(argument)
                                 : number(argument, kLoose);
        if (i == 0 && rule->keepsType && !isText(argument.type) && argument.type != JetType::Decimal) {
            type = argument.type;
        }
    }
    return Value{sql + ")", type, kAtom};
}

Value Translator::aggregate(const Call& node, Context& context) {
    if (!context.aggregatesAllowed || context.insideAggregate) {
        throw sqlError(kAggregateInWhere, node.name);
    }
    context.hasAggregate = true;
    const std::string name = lowered(node.name);
    if (node.star && name == "count") {
        return Value{"count(*)", JetType::Long, kAtom};
    }
    if (node.star || node.arguments.size() != 1) {
        wrongArguments(node);
    }
    context.insideAggregate = true;
    const Value argument = value(*node.arguments[0], context);
    context.insideAggregate = false;
    if (name == "count") {
        return Value{"count(" + argument.sql + ")", JetType::Long, kAtom};
    }
    if (name == "min" || name == "max") {
        const bool decimal = argument.type == JetType::Decimal;
        return Value{name + "(" + (decimal ? number(argument) : collated(argument)) + ")",
                     decimal ? JetType::Double : argument.type, kAtom, argument.scaled};
    }
    if (isText(argument.type) || argument.type == JetType::Guid) {
        throw sqlError(kTypeMismatch);
    }
    if (name == "sum" && argument.scaled) {
        return Value{"sum(" + argument.sql + ")", JetType::Currency, kAtom, true};
    }
    const JetType type = argument.type == JetType::Currency        ? JetType::Currency
                         : name == "sum" && isWhole(argument.type) ? JetType::Long
                                                                   : JetType::Double;
    return Value{name + "(" + number(argument, kLoose) + ")", type, kAtom};
}

// Two values that become one column: the type that holds both, and both in that type's form.
Value Translator::merged(const Value& left, const Value& right, std::string& leftSql, std::string& rightSql) {
    Value result;
    result.tightness = kAtom;
    leftSql = left.sql;
    rightSql = right.sql;
    if (left.type == right.type || left.type == JetType::Null || right.type == JetType::Null) {
        result.type = left.type == JetType::Null ? right.type : left.type;
        result.scaled = left.scaled || right.scaled;
    } else if (isText(left.type) || isText(right.type)) {
        result.type = JetType::Text;
        leftSql = text(left);
        rightSql = text(right);
        return result;
    } else {
        result.type = isMoment(left.type) && isMoment(right.type) ? JetType::DaySum
                                                                  : arithmeticType(left.type, right.type);
    }
    if (result.type == JetType::Currency && !(left.scaled && right.scaled)) {
        result.scaled = false;
        leftSql = number(left, kLoose);
        rightSql = number(right, kLoose);
    } else if (left.type != right.type && left.type != JetType::Null && right.type != JetType::Null) {
        leftSql = number(left, kLoose);
        rightSql = number(right, kLoose);
    }
    return result;
}

Value Translator::iif(const Call& node, Context& context) {
    if (node.arguments.size() != 3) {
        wrongArguments(node);
    }
    std::string yes, no;
    Value result = merged(value(*node.arguments[1], context), value(*node.arguments[2], context), yes, no);
    result.sql =
        "CASE WHEN " + condition(*node.arguments[0], context) + " THEN " + yes + " ELSE " + no + " END";
    result.tightness = kLoose;
    return result;
}

// Without a second argument Null becomes "", or 0 where the value is a number.
Value Translator::nz(const Call& node, Context& context) {
    if (node.arguments.empty() || node.arguments.size() > 2) {
        wrongArguments(node);
    }
    const Value tested = value(*node.arguments[0], context);
    const bool textual = isText(tested.type) || tested.type == JetType::Null;
    const Value empty =
        textual ? Value{"''", JetType::Text, kAtom} : Value{"0", tested.type, kAtom, tested.scaled};
    const Value other = node.arguments.size() == 2 ? value(*node.arguments[1], context) : empty;
    std::string first, second;
    Value result = merged(tested, other, first, second);
    result.sql = "coalesce(" + first + "," + second + ")";
    return result;
}

Value Translator::inStr(const Call& node, Context& context) {
    const std::size_t count = node.arguments.size();
    if (count != 2 && count != 3) {
        wrongArguments(node);
    }
    const std::string start = count == 3 ? number(value(*node.arguments[0], context), kLoose) : "1";
    return Value{"j_instr(" + start + "," + text(value(*node.arguments[count - 2], context)) + "," +
                     text(value(*node.arguments[count - 1], context)) + ")",
                 JetType::Long, kAtom};
}

Value Translator::format(const Call& node, Context& context) {
    if (node.arguments.empty() || node.arguments.size() > 2) {
        wrongArguments(node);
    }
    const Value formatted = value(*node.arguments[0], context);
    const std::string pattern =
        node.arguments.size() == 2 ? text(value(*node.arguments[1], context)) : std::string("''");
    const char* kind = isMoment(formatted.type) ? "'d'" : isText(formatted.type) ? "'t'" : "'n'";
    const std::string sql =
        isText(formatted.type) || formatted.type == JetType::Null ? formatted.sql : number(formatted, kLoose);
    return Value{"j_format(" + sql + "," + pattern + "," + kind + ")", JetType::Text, kAtom};
}

}  // namespace

Translation translate(const Statement& statement, Schema& schema, Datum jetzt) {
    return Translator(schema, jetzt).statement(statement);
}

}  // namespace wendel::jet::sql
