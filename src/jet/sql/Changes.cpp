#include <algorithm>
#include <utility>

#include "jet/sql/Errors.h"
#include "jet/sql/StatementTranslator.h"

namespace wendel::jet::sql {
namespace {

std::optional<std::size_t> positionIn(const std::vector<SchemaColumn>& columns, std::string_view name) {
    const auto found = std::find_if(columns.begin(), columns.end(), [&](const SchemaColumn& column) {
        return gleichOhneGrossKlein(column.name, name);
    });
    if (found == columns.end()) {
        return std::nullopt;
    }
    return static_cast<std::size_t>(found - columns.begin());
}

// The columns that an Insert names.
std::vector<std::size_t> insertedColumns(const std::vector<std::string>& names, const SchemaTable& table) {
    std::vector<std::size_t> result;
    for (const std::string& name : names) {
        const auto position = positionIn(table.columns, name);
        if (!position) {
            throw sqlError(kUnknownInsertField, name);
        }
        if (std::find(result.begin(), result.end(), *position) != result.end()) {
            throw sqlError(kDoubleTarget, name);
        }
        result.push_back(*position);
    }
    return result;
}

std::vector<std::string> namesOf(const std::vector<SchemaColumn>& columns) {
    std::vector<std::string> names;
    for (const SchemaColumn& column : columns) {
        names.push_back(column.name);
    }
    return names;
}

}  // namespace

Change StatementTranslator::change(const Insert& insert) {
    const SchemaTable* table = schema_.table(insert.table);
    if (!table) {
        throw sqlError(kUnknownTarget, insert.table);
    }
    Change result = insert.select ? insertedSelect(insert, *table) : insertedValues(insert, *table);
    requireKnownNames();
    result.kind = Change::Kind::Insert;
    if (result.types.size() != result.targets[0].columns.size()) {
        throw sqlError(kNumberOfValues);
    }
    return result;
}

// Without a list of columns the names of the select's columns say where its values go.
Change StatementTranslator::insertedSelect(const Insert& insert, const SchemaTable& table) {
    SelectSql rows = select(*insert.select, nullptr, false);
    Change result;
    result.sql = std::move(rows.sql);
    for (const SchemaColumn& column : rows.columns) {
        result.types.push_back(column.type);
    }
    const std::vector<std::string> names = insert.columns.empty() ? namesOf(rows.columns) : insert.columns;
    result.targets.push_back({table.name, 0, insertedColumns(names, table)});
    return result;
}

Change StatementTranslator::insertedValues(const Insert& insert, const SchemaTable& table) {
    Change result;
    const std::vector<std::string> names = insert.columns.empty() ? namesOf(table.columns) : insert.columns;
    result.targets.push_back({table.name, 0, insertedColumns(names, table)});
    Context context;
    context.aggregatesAllowed = false;
    for (const ExprPtr& expr : insert.values) {
        const Item item{expr.get(), value(*expr, context), {}, {}};
        result.sql += (result.types.empty() ? "SELECT " : ",") + finished(item, false);
        result.types.push_back(item.value.type);
    }
    return result;
}

// The source and the column that a Set means; nothing for an unknown name.
std::optional<std::pair<std::size_t, std::size_t>> StatementTranslator::assigned(const ColumnRef& column,
                                                                                 const Context& context) {
    std::optional<std::pair<std::size_t, std::size_t>> found;
    for (std::size_t i = 0; i < context.scope.sources.size(); ++i) {
        const Source& source = context.scope.sources[i];
        const bool meant = column.table.empty() || gleichOhneGrossKlein(source.name, column.table);
        const auto position = meant ? positionIn(source.columns, column.column) : std::nullopt;
        if (position && found) {
            throw sqlError(kAmbiguousField, column.column);
        }
        if (position) {
            found.emplace(i, *position);
        }
    }
    return found;
}

// Those of one table together, in the order of the tables.
std::vector<StatementTranslator::Set> StatementTranslator::setsOf(const Update& update, Context& context) {
    std::vector<Set> sets;
    for (const Assignment& assignment : update.assignments) {
        const auto target = assigned(assignment.column, context);
        if (!target) {
            column(assignment.column, context);  // notes the unknown name
            continue;
        }
        if (!context.scope.sources[target->first].isTable) {
            throw sqlError(kNotUpdatable);
        }
        for (const Set& earlier : sets) {
            if (earlier.source == target->first && earlier.column == target->second) {
                throw sqlError(kDoubleTarget, assignment.column.column);
            }
        }
        sets.push_back({target->first, target->second, assignment.value.get()});
    }
    std::stable_sort(sets.begin(), sets.end(),
                     [](const Set& a, const Set& b) { return a.source < b.source; });
    return sets;
}

Change StatementTranslator::change(const Update& update) {
    Context context;
    for (const FromPtr& item : update.from) {
        collectSources(*item, context);
    }
    const std::vector<Set> sets = setsOf(update, context);
    Change result;
    result.kind = Change::Kind::Update;
    context.aggregatesAllowed = false;
    std::string sql;
    for (std::size_t i = 0; i < sets.size(); ++i) {
        const Source& source = context.scope.sources[sets[i].source];
        if (i == 0 || sets[i].source != sets[i - 1].source) {
            sql += (sql.empty() ? "SELECT " : ",") + source.alias + ".rowid";
            result.targets.push_back({source.table, result.types.size(), {}});
            result.types.push_back(JetType::Long);
        }
        const Item item{sets[i].value, value(*sets[i].value, context), {}, {}};
        sql += "," + finished(item, false);
        result.types.push_back(item.value.type);
        result.targets.back().columns.push_back(sets[i].column);
    }
    sql += fromAndWhere(update.from, update.where, context);
    requireKnownNames();
    result.sql = std::move(sql);
    return result;
}

Change StatementTranslator::change(const Delete& deletion) {
    Context context;
    for (const FromPtr& item : deletion.from) {
        collectSources(*item, context);
    }
    const auto& sources = context.scope.sources;
    const auto source = std::find_if(sources.begin(), sources.end(), [&](const Source& s) {
        return deletion.table.empty() || gleichOhneGrossKlein(s.name, deletion.table);
    });
    if (source == sources.end() || (deletion.table.empty() && sources.size() > 1)) {
        throw sqlError(kNothingToDelete);
    }
    if (!source->isTable) {
        throw sqlError(kNotUpdatable);
    }
    Change result;
    result.kind = Change::Kind::Delete;
    result.types = {JetType::Long};
    result.targets.push_back({source->table, 0, {}});
    result.sql = (sources.size() > 1 ? "SELECT DISTINCT " : "SELECT ") + source->alias + ".rowid" +
                 fromAndWhere(deletion.from, deletion.where, context);
    requireKnownNames();
    return result;
}

}  // namespace wendel::jet::sql
