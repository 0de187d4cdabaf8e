#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <utility>

#include "jet/sql/Errors.h"
#include "jet/sql/LikePattern.h"
#include "jet/sql/StatementTranslator.h"

namespace wendel::jet::sql {
namespace {

constexpr double kHalfSecond = 0.5 / 86400.0;
constexpr std::size_t kMaxWritten = 64u << 20;  // a list of 60,000 keys takes half a megabyte a level

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

// Joined as a balanced tree: SQLite bounds the depth of an expression, the dialect not the number of keys.
std::string joined(const std::vector<std::string>& operands, std::size_t begin, std::size_t end,
                   const std::string& op) {
    if (end - begin == 1) {
        return operands[begin];
    }
    const std::size_t middle = begin + (end - begin + 1) / 2;
    return "(" + joined(operands, begin, middle, op) + op + joined(operands, middle, end, op) + ")";
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

}  // namespace

Value StatementTranslator::counted(Value v) {
    written_ += v.sql.size() + 1;
    if (written_ > kMaxWritten) {
        throw sqlError(kTooComplex);
    }
    return v;
}

Value StatementTranslator::value(const Expr& expr, Context& context) {
    if (isCondition(expr)) {
        Value result = truth(expr, context);
        if (result.type == JetType::Boolean) {
            result.sql = "(-(" + result.sql + "))";  // SQLite's 1 is this dialect's -1
            result.tightness = kAtom;
        }
        return result;
    }
    return counted(std::visit(
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
        expr.node));
}

std::string StatementTranslator::condition(const Expr& expr, Context& context) {
    const Value result = truth(expr, context);
    if (isText(result.type)) {
        throw sqlError(kTypeMismatch);
    }
    return "(" + number(result, kLoose) + ")";
}

Value StatementTranslator::truth(const Expr& expr, Context& context) {
    const auto boolean = [](std::string sql) { return Value{std::move(sql), JetType::Boolean, kLoose}; };
    const auto negatedIf = [&](bool negated, std::string sql) {
        return boolean(negated ? "NOT (" + sql + ")" : std::move(sql));
    };
    return counted(std::visit(
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
        expr.node));
}

Value StatementTranslator::literal(const WholeLiteral& node) {
    Value v{wholeText(node.value), JetType::Long, kAtom};
    if (std::abs(node.value) < INT64_MAX / 10000) {
        v.tenThousandths = node.value * 10000;
        v.dayNumber = static_cast<double>(node.value);
    }
    return v;
}

Value StatementTranslator::literal(const RealLiteral& node) {
    Value v{realText(node.value), JetType::Double, kAtom, false, false, node.tenThousandths};
    if (std::abs(node.value) < 1e9) {
        v.dayNumber = node.value;
    }
    return v;
}

Value StatementTranslator::moment(Datum moment) {
    const double days = moment.tageszahl();
    return Value{realText(days), JetType::Date, kAtom, false, false, {}, days};
}

// An unknown name is a parameter that nobody fills in; how many there are is reported at the end.
Value StatementTranslator::column(const ColumnRef& node, Context& context) {
    if (auto found = findColumn(node, context, false)) {
        return *found;
    }
    unknownNames_.insert(LCase(node.table.empty() ? node.column : node.table + "." + node.column));
    return Value{"NULL", JetType::Null, kAtom};
}

std::optional<Value> StatementTranslator::findColumn(const ColumnRef& node, const Context& context,
                                                     bool firstOfMany) {
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

Value StatementTranslator::unary(const Unary& node, Context& context) {
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

Value StatementTranslator::binary(const Binary& node, Context& context) {
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

Value StatementTranslator::sum(BinaryOp op, const Value& left, const Value& right) {
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

Value StatementTranslator::product(const Value& left, const Value& right) {
    const JetType type = arithmeticType(left.type, right.type);
    if (type == JetType::Currency && (isWhole(left.type) || isWhole(right.type)) &&
        (left.scaled || right.scaled)) {
        return Value{atom(left, kProduct) + "*" + atom(right), type, kProduct, true};
    }
    return Value{number(left, kProduct) + "*" + number(right), type, kProduct};
}

// Xor, Eqv and Imp.
Value StatementTranslator::logicOnBits(const Binary& node, Context& context) {
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

Value StatementTranslator::logic(const Logic& node, Context& context) {
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

std::string StatementTranslator::compare(CompareOp op, const Value& left, const Value& right) {
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

Value StatementTranslator::like(const LikeExpr& node, Context& context) {
    if (const TextLiteral* pattern = std::get_if<TextLiteral>(&node.pattern->node)) {
        LikePattern{pattern->value};  // a pattern that cannot be read is an error even where no row is asked
    }
    const std::string match =
        "j_like(" + text(value(*node.pattern, context)) + "," + text(value(*node.value, context)) + ")";
    return Value{node.negated ? "NOT " + match : match, JetType::Boolean, kLoose};
}

Value StatementTranslator::inList(const InList& node, Context& context) {
    const Value tested = value(*node.value, context);
    std::vector<Value> values;
    bool moments = isMoment(tested.type);
    bool currency = tested.type == JetType::Currency;
    if (!node.wholes.empty() && isText(tested.type)) {
        throw sqlError(kTypeMismatch);
    }
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
    const char* comma = "";
    for (const Value& item : values) {
        sql += comma + form(item);
        comma = ",";
    }
    const bool plain = !moments && !currency;
    for (const std::int64_t whole : node.wholes) {
        sql += comma;
        sql += plain ? wholeText(whole) : form(literal(WholeLiteral{whole}));
        comma = ",";
    }
    return Value{sql + ")", JetType::Boolean, kLoose};
}

Value StatementTranslator::inSelect(const InSelect& node, Context& context) {
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

Value StatementTranslator::scalar(const ScalarSelect& node, Context& context) {
    const SelectSql inner = select(*node.select, &context, true);
    if (inner.columns.size() != 1) {
        throw sqlError(kExpressionSyntax, "Select");
    }
    const JetType type = inner.columns[0].type;
    return Value{"(" + inner.sql + " LIMIT 1)", type, kAtom, type == JetType::Currency};
}

}  // namespace wendel::jet::sql
