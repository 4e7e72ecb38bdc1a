// Copyright 2026 The Veltmark authors.
//
// Pure conversion helpers for variable definitions and result fields: type
// letters and limit-method letters to codes and back, the lenient numeric
// coercion of attribute values, number display masks, the width and
// decimals of a result column per statistic, the defaults of a new
// variable definition, and the @POP[...]/@XBAR[...] reference lists.
//
// They live in src/platform rather than with the run's output code because
// the application-file and repository components need the type letters and
// the numeric classification too, and components may depend on core and
// platform only.
//
// Nothing here keeps state. Errors: StatisticFieldSize and
// ExpandReferenceList raise Error::Overflow (6) when a number leaves the
// 16-bit range, as the system's Integer arithmetic does, and the reference
// list helpers raise it for a number beyond the double range ("V1e999"), as
// the leading-number reading does; InitVariableDefaults raises
// Error::InvalidArgument (5) for more rules than rule letters exist.
// Everything else never throws (beyond std::bad_alloc).

#ifndef RZ_PLATFORM_FIELD_FORMAT_H_
#define RZ_PLATFORM_FIELD_FORMAT_H_

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "core/variant.h"
#include "platform/field_definition.h"

namespace rz {

// Variable type letters, compared without regard to case: "T" 1, "P" 2,
// "L" 3, "N" 4, "A" 5, "R" 6, "C" 7; anything else (also "" and "NN") 0.
int16_t TypeCode(std::string_view letter);

// The letter of a type code: 0 and 1 give "T", 2..7 "P", "L", "N", "A",
// "R", "C"; any other code the empty text.
std::string TypeLetter(int16_t code);

// True for the numeric types N, A, R and C (any case).
bool IsNumericType(std::string_view letter);

// Limit method letters (any case): "B" 0, "C" 1, "F" 2; anything else 0.
int16_t LimitMethodCode(std::string_view letter);

// The letter of a limit method code, compared in its decimal text form:
// "0" gives "B", "1" "C", "2" "F", anything else the empty text. So the
// Double 2.0 gives "F", 2.5 and the text "2.0" give "". Null, objects and
// arrays have no text form here and give "".
std::string LimitMethodLetter(const Variant& code);

// The value as a number when it is not Empty, not the empty text, not Null
// and numeric; 0 otherwise. Numbers, Booleans (true is -1) and Dates (their
// day count) are numeric; a text is numeric only when the whole of it is
// one number (IsNumericText: " 3.25 " reads 3.25, "12,5x" gives 0).
// Objects and arrays give 0.
double ToNumber(const Variant& value);

// The display mask of a numeric field (type codes 4..7); the empty text
// for every other type. With decimals > 0: "#" repeated
// length - decimals - 2 times (when positive), "0" when
// length - decimals - 1 > 0, ".", and "0" repeated decimals times
// (8, 2 -> "####0.00"; 3, 2 -> ".00"). Otherwise (decimals 0 or negative):
// "#" repeated length - 1 times when length > 1, then "0" (5 -> "####0";
// 1, 0 and negative lengths -> "0").
std::string BuildNumberMask(int16_t type_code, int16_t length,
                            int16_t decimals);

// Replaces `length` and `decimals` (the variable's own) with the width and
// decimals of a result column showing `statistic`, per the summary-mode
// list (codes 0..25) or the detail-mode list (codes 0..5); unknown codes
// give 0 and 0. Raises Error::Overflow, leaving both unchanged, when a
// result does not fit in 16 bits.
void StatisticFieldSize(bool summary_mode, int16_t statistic, int16_t& length,
                        int16_t& decimals);

// Sets the defaults of a new variable definition whose NAME, TYPE, LENGTH
// and DECIMALS the caller has set (those four, #AVG, UNITS, CATEGORY and
// CALC are left alone): the texts XREF, INPUT, OUTPUT, POPUP, HELPFILE
// empty; REPORTTYPE "V"; UCASE and REQUIRED "N"; every limit method "C"
// value 0; RELATION twelve groups of "000"; RULES one letter per rule of
// the application ("A" for rule 1, character code 64 + rule number); every
// other number 0 (MAX and MIN as Double, the codes as Integer). Raises
// Error::InvalidArgument for more than 191 rules (no character code past
// 255 exists).
void InitVariableDefaults(FieldDefinition& definition, int rule_count);

// The items of an "@POP[...]" or "@XBAR[...]" reference list (prefix in any
// case, closing "]" required), in order, with each range item "Va..Vb"
// expanded to "Va", ..., "Vb" (none when b < a). Any other text gives an
// empty list. Non-range items are kept as written.
//
// Range items are read by character position with the leading-number
// rule: a is the number between the item's first character and the first
// "..", b the number after the "..", skipping the one character that
// follows it. So "V3..V" gives nothing (b = 0), "Vx..V2" gives V0, V1, V2,
// and "V2...V4" gives nothing (b reads "V4" as 0). Fractions round to the
// nearest whole number, halves to even. Raises Error::Overflow when a or b
// is outside -32768..32767 (or beyond the double range, as the leading
// number reading does).
std::vector<std::string> ExpandReferenceList(std::string_view list);

// The number an item refers to: the leading number of the text after its
// first character, rounded to a whole number, halves to even ("V12" 12,
// "v3x" 3, "V" and "" 0).
double ReferenceNumber(std::string_view item);

// Sorts items ascending by ReferenceNumber with repeated bubble passes
// from the end towards the start until a pass swaps nothing; items with
// equal numbers keep their order.
void SortReferenceList(std::vector<std::string>& items);

// The shortest form of a reference list: its items expanded, sorted, and
// each run of consecutive numbers written as "Va" (one), "Va,Vb" (two) or
// "Va..Vb" (three or more), runs joined by ",", inside "@POP[...]" when
// the upper-cased input contains "@POP[", else "@XBAR[...]". An input with
// no items is returned unchanged.
// "@POP[V7,V3,V4,V5,V9,V10]" -> "@POP[V3..V5,V7,V9,V10]".
std::string CompressReferenceList(std::string_view list);

}  // namespace rz

#endif  // RZ_PLATFORM_FIELD_FORMAT_H_
