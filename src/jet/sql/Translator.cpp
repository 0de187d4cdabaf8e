#include <algorithm>
#include <map>
#include <utility>

#include "jet/sql/Errors.h"
#include "jet/sql/StatementTranslator.h"

namespace wendel::jet::sql {

Translation StatementTranslator::translated(const Select& whole) {
    const bool plain = !whole.distinct && whole.groupBy.empty() && !whole.having && whole.from.size() == 1;
    identityWanted_ = plain && std::holds_alternative<TableName>(whole.from[0]->node);
    SelectSql result = select(whole, nullptr, false);
    requireKnownNames();
    Translation translation{
        std::move(result.sql), {}, std::move(result.table), std::move(result.tableColumns)};
    for (const SchemaColumn& column : result.columns) {
        const JetType type = column.type == JetType::DaySum ? JetType::Double : column.type;
        translation.columns.push_back({column.name, type});
    }
    return translation;
}

// An unknown name is a parameter that nobody fills in.
void StatementTranslator::requireKnownNames() const {
    if (!unknownNames_.empty()) {
        throw sqlError(kTooFewParameters, std::to_string(unknownNames_.size()));
    }
}

SelectSql StatementTranslator::select(const Select& select, const Context* outer, bool inner) {
    const bool identityWanted = std::exchange(identityWanted_, false);
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
    if (identityWanted && !context.hasAggregate) {
        const Source& source = context.scope.sources[0];
        sql += "," + source.alias + ".rowid";
        result.table = source.table;
        for (const Item& item : selected) {
            result.tableColumns.push_back(columnOf(source, item.value));
        }
    }
    sql += fromAndWhere(select.from, select.where, context);
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

// The column of the table that a value is, if it is one as it stands.
std::optional<std::size_t> StatementTranslator::columnOf(const Source& source, const Value& value) {
    for (std::size_t i = 0; value.tableColumn && i < source.columns.size(); ++i) {
        if (value.sql == source.alias + ".c" + std::to_string(i)) {
            return i;
        }
    }
    return std::nullopt;
}

// With the sources that collectSources has found.
std::string StatementTranslator::fromAndWhere(const std::vector<FromPtr>& tables, const ExprPtr& where,
                                              Context& context) {
    context.aggregatesAllowed = false;
    std::string sql;
    std::size_t source = 0;
    for (std::size_t i = 0; i < tables.size(); ++i) {
        sql += i ? "," : " FROM ";
        sql += i ? bracketedJoin(*tables[i], context, source) : from(*tables[i], context, source);
    }
    if (where) {
        sql += " WHERE " + condition(*where, context);
    }
    return sql;
}

// The sources are taken in the order in which collectSources found them.
std::string StatementTranslator::from(const FromItem& item, Context& context, std::size_t& source) {
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

std::string StatementTranslator::bracketedJoin(const FromItem& item, Context& context, std::size_t& source) {
    const std::string sql = from(item, context, source);
    return std::holds_alternative<Join>(item.node) ? "(" + sql + ")" : sql;
}

void StatementTranslator::collectSources(const FromItem& item, Context& context) {
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
        source.table = table->name;
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

std::vector<StatementTranslator::Item> StatementTranslator::items(const Select& select, Context& context) {
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

void StatementTranslator::addStar(const Source& source, std::vector<Item>& items) {
    for (std::size_t i = 0; i < source.columns.size(); ++i) {
        const SchemaColumn& column = source.columns[i];
        Value value{source.alias + ".c" + std::to_string(i), column.type, kAtom,
                    column.type == JetType::Currency, source.isTable};
        items.push_back({nullptr, std::move(value), column.name, source.name + "." + column.name});
    }
}

// Columns of the same name from two tables are told apart by their tables' names.
void StatementTranslator::nameItems(std::vector<Item>& items) {
    std::map<std::string, int> uses;
    for (const Item& item : items) {
        ++uses[LCase(item.name)];
    }
    for (Item& item : items) {
        if (!item.qualifiedName.empty() && uses[LCase(item.name)] > 1) {
            item.name = item.qualifiedName;
        }
    }
}

// A column of the result: currency always as whole ten thousandths. The collation matters where SQLite
// compares the column again: for Distinct, and outside of a derived table.
std::string StatementTranslator::finished(const Item& item, bool keepCollation) {
    if (item.value.type == JetType::Currency && !item.value.scaled) {
        return "j_tenthousandths(" + item.value.sql + ")";
    }
    return keepCollation ? collated(item.value) : item.value.sql;
}

std::string StatementTranslator::orderBy(const Select& select, const std::vector<Item>& items,
                                         Context& context) {
    std::string sql;
    for (const OrderItem& order : select.orderBy) {
        sql += (sql.empty() ? " ORDER BY " : ",") + orderTerm(order, select, items, context) +
               (order.descending ? " DESC" : "");
    }
    return sql;
}

std::string StatementTranslator::orderTerm(const OrderItem& order, const Select& select,
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
void StatementTranslator::checkGrouping(const Select& select, Context& context) {
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

void StatementTranslator::checkGrouped(const Expr& expr, const std::set<std::string>& groups,
                                       Context& context) {
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

Translation translate(const Select& select, Schema& schema, Datum jetzt) {
    return StatementTranslator(schema, jetzt).translated(select);
}

Change translate(const Insert& insert, Schema& schema, Datum jetzt) {
    return StatementTranslator(schema, jetzt).change(insert);
}

Change translate(const Update& update, Schema& schema, Datum jetzt) {
    return StatementTranslator(schema, jetzt).change(update);
}

Change translate(const Delete& deletion, Schema& schema, Datum jetzt) {
    return StatementTranslator(schema, jetzt).change(deletion);
}

}  // namespace wendel::jet::sql
