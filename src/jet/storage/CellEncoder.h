#pragma once
// Single values on their way into a row: made into what the column holds, and then into the bytes of their
// stored form. Where these bytes go is the business of RowImage and LongValueWriter.

#include <string>

#include "jet/storage/File.h"
#include "jet/storage/KeyEncoder.h"
#include "jet/storage/TableDef.h"

namespace wendel::jet {

// The value as it reads back later, by which index keys have to be made: Singles and Decimals rounded to what
// the column holds (Decimals halves to even), texts in the column's repertoire; Yes/No is -1 or 0, also for
// Null. Texts that are not the cell's own lie in `buffer`, which must be empty. Throws Fehler 3163 for texts
// and bytes that are too long, 3349 for numbers outside the range (dates: years 100 to 9999), 3421 for values
// of another kind than the column's (what becomes of those: Conversion.h).
KeyValue columnValue(const File& file, const Column& column, const KeyValue& cell, std::string& buffer);

// Appends the stored bytes of a value that columnValue() gave; nothing for Null and Yes/No, which are told by
// the row's mask. For Memo and OLE this is the long value itself.
void appendValue(const File& file, const Column& column, const KeyValue& value, std::string& out);

}  // namespace wendel::jet
