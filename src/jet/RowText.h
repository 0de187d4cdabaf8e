#pragma once
// The rows of a query as lines of text, for command-line tools: cells separated by TAB, in a form from which
// each value can be read back. Independent of the locale.
//
//   Null \N; in texts \\ \t \r \n \0 for backslash, TAB, CR, LF and NUL; yes/no -1 or 0;
//   dates yyyy-mm-dd hh:mm:ss; Single with 9, Double with 17 significant digits; currency with four decimals;
//   binary as lower-case hex; GUID {UPPER CASE}.

#include <string>

#include "jet/Connection.h"

namespace wendel::jet {

// The names of the columns, and a line end.
void appendHeaderLine(const Query& query, std::string& out);
// The current row, and a line end.
void appendRowLine(const Query& query, std::string& out);

}  // namespace wendel::jet
