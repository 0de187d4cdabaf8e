#include <array>
#include <optional>
#include <utility>

#include "jet/sql/StatementParser.h"
#include "platform/Text.h"

namespace wendel::jet::sql {
namespace {

constexpr int kLongestText = 255;

struct TypeName {
    std::string_view name;
    ColumnKind kind;
};
constexpr std::array kTypeNames{
    TypeName{"counter", ColumnKind::Counter},
    TypeName{"autoincrement", ColumnKind::Counter},
    TypeName{"identity", ColumnKind::Counter},
    TypeName{"yesno", ColumnKind::YesNo},
    TypeName{"bit", ColumnKind::YesNo},
    TypeName{"boolean", ColumnKind::YesNo},
    TypeName{"logical", ColumnKind::YesNo},
    TypeName{"byte", ColumnKind::Byte},
    TypeName{"tinyint", ColumnKind::Byte},
    TypeName{"short", ColumnKind::Short},
    TypeName{"smallint", ColumnKind::Short},
    TypeName{"long", ColumnKind::Long},
    TypeName{"integer", ColumnKind::Long},
    TypeName{"int", ColumnKind::Long},
    TypeName{"currency", ColumnKind::Currency},
    TypeName{"money", ColumnKind::Currency},
    TypeName{"single", ColumnKind::Single},
    TypeName{"real", ColumnKind::Single},
    TypeName{"double", ColumnKind::Double},
    TypeName{"float", ColumnKind::Double},
    TypeName{"number", ColumnKind::Double},
    TypeName{"datetime", ColumnKind::DateTime},
    TypeName{"date", ColumnKind::DateTime},
    TypeName{"time", ColumnKind::DateTime},
    TypeName{"timestamp", ColumnKind::DateTime},
    TypeName{"text", ColumnKind::Text},
    TypeName{"char", ColumnKind::Text},
    TypeName{"varchar", ColumnKind::Text},
    TypeName{"string", ColumnKind::Text},
    TypeName{"memo", ColumnKind::Memo},
    TypeName{"longtext", ColumnKind::Memo},
    TypeName{"note", ColumnKind::Memo},
    TypeName{"binary", ColumnKind::Binary},
    TypeName{"varbinary", ColumnKind::Binary},
    TypeName{"oleobject", ColumnKind::LongBinary},
    TypeName{"longbinary", ColumnKind::LongBinary},
    TypeName{"general", ColumnKind::LongBinary},
    TypeName{"guid", ColumnKind::Guid},
    TypeName{"uniqueidentifier", ColumnKind::Guid},
    TypeName{"decimal", ColumnKind::Decimal},
    TypeName{"numeric", ColumnKind::Decimal},
    TypeName{"dec", ColumnKind::Decimal},
};

// What a definition leaves out, and the most it may say.
struct Size {
    int usual, most;
};
std::optional<Size> sizeOf(ColumnKind kind) {
    switch (kind) {
        case ColumnKind::Text: return Size{kLongestText, kLongestText};
        case ColumnKind::Binary: return Size{kLongestText, 510};
        case ColumnKind::Decimal: return Size{18, 28};
        default: return std::nullopt;
    }
}

}  // namespace

// --- rows ---

Insert Parser::insertStatement() {
    take();
    expectKeyword("into", kInsertSyntax);
    Insert result;
    result.table = name(kInsertSyntax);
    if (takeSymbol("(")) {
        result.columns = names(kInsertSyntax);
    }
    if (peek().isKeyword("select")) {
        result.select = select();
        return result;
    }
    expectKeyword("values", kInsertSyntax);
    expectSymbol("(", kInsertSyntax);
    do {
        result.values.push_back(expression());
    } while (takeSymbol(","));
    expectSymbol(")", kInsertSyntax);
    return result;
}

Update Parser::updateStatement() {
    take();
    Update result;
    if (!isName(peek()) && !peek().isSymbol("(")) {
        throw sqlError(kUpdateSyntax);
    }
    result.from = fromClause();
    expectKeyword("set", kUpdateSyntax);
    do {
        Assignment assignment;
        assignment.column.column = name(kUpdateSyntax);
        if (takeSymbol(".") || takeSymbol("!")) {
            assignment.column.table = std::exchange(assignment.column.column, name(kUpdateSyntax));
        }
        expectSymbol("=", kUpdateSyntax);
        assignment.value = expression();
        result.assignments.push_back(std::move(assignment));
    } while (takeSymbol(","));
    if (takeKeyword("where")) {
        result.where = expression();
        if (peek().kind != TokenKind::End && !peek().isSymbol(";")) {
            expressionError();
        }
    }
    return result;
}

Delete Parser::deleteStatement() {
    take();
    Delete result;
    if (!takeSymbol("*") && isName(peek())) {
        result.table = take().text;
        expectSymbol(".", kFromSyntax);
        expectSymbol("*", kFromSyntax);
    }
    expectKeyword("from", kNothingToDelete);
    result.from = fromClause();
    if (takeKeyword("where")) {
        result.where = expression();
        if (peek().kind != TokenKind::End && !peek().isSymbol(";")) {
            expressionError();
        }
    }
    return result;
}

// --- definitions ---

Statement Parser::createStatement() {
    take();
    if (takeKeyword("table")) {
        return {createTable()};
    }
    const bool unique = takeKeyword("unique");
    expectKeyword("index", unique ? kCreateIndexSyntax : kCreateTableSyntax);
    return {createIndex(unique)};
}

CreateTable Parser::createTable() {
    CreateTable result;
    result.table = name(kCreateTableSyntax);
    expectSymbol("(", kCreateTableSyntax);
    do {
        tableElement(result);
    } while (takeSymbol(","));
    expectSymbol(")", kFieldSyntax);
    return result;
}

void Parser::tableElement(CreateTable& table) {
    const bool constraint = peek().isKeyword("constraint") ||
                            (peek().isKeyword("primary") && peek(1).isKeyword("key")) ||
                            (peek().isKeyword("unique") && peek(1).isSymbol("("));
    if (constraint) {
        tableConstraint(table);
    } else {
        columnDefinition(table);
    }
}

void Parser::columnDefinition(CreateTable& table) {
    ColumnDefinition column;
    column.name = name(kFieldSyntax);
    const std::string typeName = LCase(name(kFieldSyntax));
    const auto type = std::find_if(kTypeNames.begin(), kTypeNames.end(),
                                   [&](const TypeName& t) { return t.name == typeName; });
    if (type == kTypeNames.end()) {
        throw sqlError(kFieldSyntax);
    }
    column.kind = type->kind;
    const std::optional<Size> size = sizeOf(column.kind);
    column.size = size ? size->usual : 0;
    if (size && takeSymbol("(")) {
        column.size = number(kFieldSyntax);
        if (column.kind == ColumnKind::Decimal && takeSymbol(",")) {
            column.scale = number(kFieldSyntax);
        }
        if (column.size < 1 || column.size > size->most || column.scale > column.size) {
            throw sqlError(kFieldSyntax);
        }
        expectSymbol(")", kFieldSyntax);
    }
    columnConstraints(table, column);
    table.columns.push_back(std::move(column));
}

void Parser::columnConstraints(CreateTable& table, ColumnDefinition& column) {
    for (;;) {
        IndexDefinition index;
        index.fields.push_back({column.name});
        const bool named = takeKeyword("constraint");
        if (named) {
            index.name = name(kConstraintSyntax);
        }
        if (takeKeyword("not")) {
            expectKeyword("null", kFieldSyntax);
            column.notNull = true;
        } else if (takeKeyword("primary")) {
            expectKeyword("key", kConstraintSyntax);
            index.primary = index.unique = index.required = true;
            index.name = index.name.empty() ? "PrimaryKey" : index.name;
            table.indexes.push_back(std::move(index));
        } else if (takeKeyword("unique")) {
            index.unique = true;
            index.name = index.name.empty() ? column.name : index.name;
            table.indexes.push_back(std::move(index));
        } else if (named) {
            throw sqlError(kConstraintSyntax);
        } else if (!takeKeyword("null")) {
            return;
        }
    }
}

void Parser::tableConstraint(CreateTable& table) {
    IndexDefinition index;
    if (takeKeyword("constraint")) {
        index.name = name(kConstraintSyntax);
    }
    if (takeKeyword("primary")) {
        expectKeyword("key", kConstraintSyntax);
        index.primary = index.unique = index.required = true;
    } else {
        expectKeyword("unique", kConstraintSyntax);
        index.unique = true;
    }
    index.fields = indexFields(kConstraintSyntax);
    if (index.name.empty()) {
        index.name = index.primary ? "PrimaryKey" : index.fields.front().column;
    }
    table.indexes.push_back(std::move(index));
}

CreateIndex Parser::createIndex(bool unique) {
    CreateIndex result;
    result.index.unique = unique;
    result.index.name = name(kCreateIndexSyntax);
    expectKeyword("on", kCreateIndexSyntax);
    result.table = name(kCreateIndexSyntax);
    result.index.fields = indexFields(kCreateIndexSyntax);
    if (!takeKeyword("with")) {
        return result;
    }
    if (takeKeyword("primary")) {
        result.index.primary = result.index.unique = result.index.required = true;
    } else if (takeKeyword("disallow")) {
        expectKeyword("null", kCreateIndexSyntax);
        result.index.required = true;
    } else {
        expectKeyword("ignore", kCreateIndexSyntax);
        expectKeyword("null", kCreateIndexSyntax);
        result.index.ignoreNulls = true;
    }
    return result;
}

std::vector<IndexField> Parser::indexFields(int error) {
    expectSymbol("(", error);
    std::vector<IndexField> result;
    do {
        IndexField field{name(error)};
        field.descending = takeKeyword("desc");
        if (!field.descending) {
            takeKeyword("asc");
        }
        result.push_back(std::move(field));
    } while (takeSymbol(","));
    expectSymbol(")", error);
    return result;
}

Statement Parser::dropStatement() {
    take();
    if (takeKeyword("table")) {
        return {DropTable{name(kDropSyntax)}};
    }
    expectKeyword("index", kDropSyntax);
    DropIndex result;
    result.index = name(kDropSyntax);
    expectKeyword("on", kDropSyntax);
    result.table = name(kDropSyntax);
    return {std::move(result)};
}

// --- parts ---

std::string Parser::name(int error) {
    if (!isName(peek())) {
        throw sqlError(error);
    }
    return take().text;
}

// The rest of a list in brackets.
std::vector<std::string> Parser::names(int error) {
    std::vector<std::string> result;
    do {
        result.push_back(name(error));
    } while (takeSymbol(","));
    expectSymbol(")", error);
    return result;
}

int Parser::number(int error) {
    if (peek().kind != TokenKind::Whole || peek().whole < 0 || peek().whole > INT16_MAX) {
        throw sqlError(error);
    }
    return static_cast<int>(take().whole);
}

}  // namespace wendel::jet::sql
