#pragma once
// The engine's error numbers and German descriptions, each in one place.

#include <string>
#include <string_view>

#include "platform/Fehler.h"

namespace wendel::jet::sql {

inline constexpr int kNoEdit = 3020;
inline constexpr int kNoCurrentRow = 3021;
inline constexpr int kReadOnly = 3027;
inline constexpr int kLocked = 3050;
inline constexpr int kTooFewParameters = 3061;
inline constexpr int kDoubleTarget = 3063;
inline constexpr int kSelectNotExecutable = 3065;
inline constexpr int kNotUpdatable = 3073;
inline constexpr int kExpressionSyntax = 3075;
inline constexpr int kUnknownTable = 3078;
inline constexpr int kAmbiguousField = 3079;
inline constexpr int kUnknownFunction = 3085;
inline constexpr int kOrderByDistinct = 3093;
inline constexpr int kAggregateInWhere = 3096;
inline constexpr int kNotAggregated = 3122;
inline constexpr int kUnknownInsertField = 3127;
inline constexpr int kNothingToDelete = 3128;
inline constexpr int kNoStatement = 3129;
inline constexpr int kFromSyntax = 3131;
inline constexpr int kGroupBySyntax = 3132;
inline constexpr int kHavingSyntax = 3133;
inline constexpr int kInsertSyntax = 3134;
inline constexpr int kJoinSyntax = 3135;
inline constexpr int kOrderBySyntax = 3138;
inline constexpr int kSelectSyntax = 3141;
inline constexpr int kTextAfterEnd = 3142;
inline constexpr int kUpdateSyntax = 3144;
inline constexpr int kFieldReadOnly = 3164;
inline constexpr int kUnknownTarget = 3192;
inline constexpr int kRecordChanged = 3197;
inline constexpr int kInvalidOperation = 3219;
inline constexpr int kUnknownField = 3265;
inline constexpr int kConstraintSyntax = 3289;
inline constexpr int kCreateTableSyntax = 3290;
inline constexpr int kCreateIndexSyntax = 3291;
inline constexpr int kFieldSyntax = 3292;
inline constexpr int kDropSyntax = 3295;
inline constexpr int kNumberOfValues = 3346;
inline constexpr int kTooComplex = 3360;
inline constexpr int kClosed = 3420;
inline constexpr int kConversion = 3421;
inline constexpr int kTypeMismatch = 3464;
inline constexpr int kPattern = 93;
inline constexpr int kDivisionByZero = 11;

// The Fehler for a number above; detail fills the place that the description leaves for a name or a text.
Fehler sqlError(int number, std::string_view detail = {});

}  // namespace wendel::jet::sql
