#pragma once
// Text of the dialect to tree, by recursive descent. Knows the grammar and nothing of tables; names are
// looked up by the translator.

#include <string_view>

#include "jet/sql/Ast.h"

namespace wendel::jet::sql {

// The statement, with or without its ";". Throws Fehler with the engine's number: 3075 for an expression,
// 3131, 3132, 3133, 3135, 3138, 3141 for the clauses, 3134, 3144, 3128 for Insert, Update and Delete, 3289 to
// 3292 and 3295 for definitions, 3129 for what begins no statement, 3142 for text behind the end, 3360 for
// more nesting than anyone writes.
Statement parse(std::string_view text);

}  // namespace wendel::jet::sql
