// Copyright 2026 The Veltmark authors.
//
// The key tables the view file reader and writer share, so both name each
// key and its ViewState field exactly once. Internal to the view file code.
// Nothing here throws.

#ifndef RZ_VIEW_VIEW_FILE_KEYS_H_
#define RZ_VIEW_VIEW_FILE_KEYS_H_

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <variant>

#include "view/view_state.h"

namespace rz::view_file {

inline constexpr std::string_view kGeneral = "[GENERAL]";
inline constexpr std::string_view kRules = "[RULES]";
inline constexpr std::string_view kSelection = "[SELECTION]";
inline constexpr std::string_view kFiltering = "[FILTERING]";
inline constexpr std::string_view kOptions = "[OPTIONS]";
inline constexpr std::string_view kReport = "[REPORT]";
inline constexpr std::string_view kStatistics = "[STATISTICS]";
inline constexpr std::string_view kField = "[FIELD]";

// How a scalar value is written and read.
enum class ValueKind {
  kInteger,    // decimal text; leading number, 16 or 32 bits
  kDateTime,   // "yyyy-mm-dd hh:mm:ss"
  kTimeSpan,   // "hh:mm:ss", stored in days
  kDecimal,    // shortest decimal text; leading number
  kMultiLine,  // CR LF written as "|"
};

using FieldPointer =
    std::variant<int16_t ViewState::*, int32_t ViewState::*,
                 double ViewState::*, std::string ViewState::*>;

// One key of a section that maps to one ViewState field.
struct ScalarKey {
  std::string_view key;
  ValueKind kind;
  FieldPointer field;
};

// The keys of [SELECTION], [OPTIONS] (without SHIFTSTART, which is two
// fields) and [REPORT], in the order they are written.
std::span<const ScalarKey> SelectionKeys();
std::span<const ScalarKey> OptionsKeys();
std::span<const ScalarKey> ReportKeys();

// The key of [OPTIONS] holding PlusMinus and ShiftStart, written after
// SHIFTDURATION.
inline constexpr std::string_view kShiftStartKey = "SHIFTSTART";
inline constexpr std::string_view kShiftStartAfter = "SHIFTDURATION";

// The [SELECTION] keys written for a range kind (empty for an unknown one).
std::span<const std::string_view> SelectionKeysWritten(
    int32_t filter_range_type);

// The [FIELD] keys written for a type letter, NAME .. LENGTH included;
// empty for a letter that is not a field type.
std::span<const std::string_view> FieldKeysWritten(std::string_view type);

// The texts of a connective: 0 "NONE", 2 "OR", anything else "AND".
std::string_view AndOrText(int16_t and_or);

}  // namespace rz::view_file

#endif  // RZ_VIEW_VIEW_FILE_KEYS_H_
