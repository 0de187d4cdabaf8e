#pragma once
// All rows and indexes of a database as text: to compare two files, and one file before and after.

#include <map>
#include <set>
#include <string>
#include <vector>

#include "jet/storage/Catalog.h"
#include "jet/storage/TableWriter.h"

namespace wendel::jet::test {

using Rows = std::multiset<std::string>;

// A value as text: texts in quotes, bytes in hex digits, money in ten-thousandths.
std::string shown(const Cell& cell);

// The user tables by name, each row as its cells between bars; long values only where asked for.
std::map<std::string, Rows> allRows(const std::string& path, bool longValues = true);

// Each index of the user tables as "table.index(columns) flags", and each tree checked against its rows.
std::set<std::string> checkedIndexes(const std::string& path);

// What the command prints; stderr is dropped.
std::string outputOf(const std::string& command);
// The rows of a table as mdb-export shows them, cell by cell.
std::vector<std::vector<std::string>> exported(const std::string& path, const std::string& table);

}  // namespace wendel::jet::test
