#pragma once
// The types that a column or an expression of the dialect can have, and how SQLite holds their values.
//
//   Boolean         INTEGER -1 or 0              Date      REAL, day number
//   Byte..Long      INTEGER                      DaySum    REAL, day number made by adding dates; a Double to
//   Currency        INTEGER, value x 10 000                the outside, but compared to the second
//   Single, Double  REAL                         Decimal   TEXT with its scale
//   Text, Memo      TEXT, UTF-8                  Guid      TEXT {UPPER CASE}
//   Binary, Ole     BLOB
//
// Null is the type of the literal Null and of expressions made of nothing else.

namespace wendel::jet::sql {

enum class JetType {
    Null,
    Boolean,
    Byte,
    Integer,
    Long,
    Currency,
    Single,
    Double,
    Date,
    DaySum,
    Text,
    Memo,
    Binary,
    Ole,
    Guid,
    Decimal,
};

inline bool isText(JetType t) { return t == JetType::Text || t == JetType::Memo; }
inline bool isMoment(JetType t) { return t == JetType::Date || t == JetType::DaySum; }
inline bool isWhole(JetType t) {
    return t == JetType::Boolean || t == JetType::Byte || t == JetType::Integer || t == JetType::Long;
}

}  // namespace wendel::jet::sql
