// Copyright 2026 The Veltmark authors.

#include "platform/field_format.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include "core/error.h"
#include "core/variant.h"
#include "platform/field_definition.h"

namespace rz {
namespace {

using Items = std::vector<std::string>;

TEST(FieldFormatTest, TypeCodeAndNumericClass) {
  struct Row {
    const char* letter;
    int16_t code;
    bool numeric;
  };
  const Row rows[] = {
      {"T", 1, false},        {"t", 1, false},  {"P", 2, false},
      {"l", 3, false},        {"N", 4, true},   {"n", 4, true},
      {"A", 5, true},         {"r", 6, true},   {"C", 7, true},
      {"c", 7, true},         {"X", 0, false},  {"", 0, false},
      {"NN", 0, false},       {" N", 0, false}, {"N ", 0, false},
      {"\xC3\x91", 0, false},  // "Ñ" is no type letter
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(std::string("letter \"") + row.letter + "\"");
    EXPECT_EQ(TypeCode(row.letter), row.code);
    EXPECT_EQ(IsNumericType(row.letter), row.numeric);
  }
}

TEST(FieldFormatTest, TypeLetter) {
  struct Row {
    int16_t code;
    const char* letter;
  };
  const Row rows[] = {{0, "T"}, {1, "T"}, {2, "P"},    {3, "L"},
                      {4, "N"}, {5, "A"}, {6, "R"},    {7, "C"},
                      {8, ""},  {-1, ""}, {32767, ""}, {-32768, ""}};
  for (const Row& row : rows) {
    EXPECT_EQ(TypeLetter(row.code), row.letter) << "code " << row.code;
  }
  for (int16_t code = 1; code <= 7; ++code) {
    EXPECT_EQ(TypeCode(TypeLetter(code)), code);
  }
}

TEST(FieldFormatTest, LimitMethodCode) {
  struct Row {
    const char* letter;
    int16_t code;
  };
  const Row rows[] = {{"B", 0}, {"b", 0}, {"C", 1}, {"c", 1},  {"F", 2},
                      {"f", 2}, {"X", 0}, {"", 0},  {"CF", 0}, {"F ", 0}};
  for (const Row& row : rows) {
    EXPECT_EQ(LimitMethodCode(row.letter), row.code)
        << "letter \"" << row.letter << "\"";
  }
}

TEST(FieldFormatTest, LimitMethodLetterComparesDecimalText) {
  struct Row {
    const char* context;
    Variant code;
    const char* letter;
  };
  const Row rows[] = {
      {"Integer 0", Variant(int16_t{0}), "B"},
      {"Integer 1", Variant(int16_t{1}), "C"},
      {"Integer 2", Variant(int16_t{2}), "F"},
      {"Long 1", Variant(int32_t{1}), "C"},
      {"Integer 3", Variant(int16_t{3}), ""},
      {"Integer -1", Variant(int16_t{-1}), ""},
      {"Double 2.0", Variant(2.0), "F"},
      {"Double -0.0", Variant(-0.0), "B"},
      {"Double 2.5", Variant(2.5), ""},
      {"Double 1e-20", Variant(1e-20), ""},
      {"text 2", Variant("2"), "F"},
      {"text 2.0", Variant("2.0"), ""},
      {"text blank 2", Variant(" 2"), ""},
      {"text 02", Variant("02"), ""},
      {"text F", Variant("F"), ""},
      {"Empty", Variant(), ""},
      {"Null", Variant::Null(), ""},
      {"Boolean false", Variant(false), ""},
      {"Date 2", Variant::Date(2), ""},
      {"array", Variant(VariantArray{Variant(int16_t{1})}), ""},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(LimitMethodLetter(row.code), row.letter) << row.context;
  }
}

TEST(FieldFormatTest, ToNumberTakesOnlyWhollyNumericValues) {
  struct Row {
    const char* context;
    Variant value;
    double expected;
  };
  const Row rows[] = {
      {"Empty", Variant(), 0},
      {"empty text", Variant(""), 0},
      {"Null", Variant::Null(), 0},
      {"12,5x", Variant("12,5x"), 0},
      {"leading number only", Variant("12.5abc"), 0},
      {"letters", Variant("abc"), 0},
      {"blank text", Variant("   "), 0},
      {"3.25", Variant("3.25"), 3.25},
      {"blanks around", Variant(" 3.25 "), 3.25},
      {"exponent", Variant("1e3"), 1000},
      {"negative text", Variant("-0.5"), -0.5},
      {"beyond the double range", Variant("1e999"), 0},
      {"Integer", Variant(int16_t{7}), 7},
      {"Long", Variant(int32_t{-70000}), -70000},
      {"Double", Variant(-2.5), -2.5},
      {"Boolean true", Variant(true), -1},
      {"Boolean false", Variant(false), 0},
      {"Date", Variant::Date(39000.5), 39000.5},
      {"object",
       Variant(std::static_pointer_cast<Dispatch>(
           std::make_shared<FieldDefinition>())),
       0},
      {"array", Variant(VariantArray{Variant(int16_t{1})}), 0},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(ToNumber(row.value), row.expected) << row.context;
  }
}

TEST(FieldFormatTest, BuildNumberMask) {
  struct Row {
    int16_t type;
    int16_t length;
    int16_t decimals;
    const char* mask;
  };
  const Row rows[] = {
      {4, 8, 2, "####0.00"},
      {4, 5, 2, "#0.00"},
      {4, 4, 2, "0.00"},  // no "#": length - decimals - 2 is 0
      {4, 3, 2, ".00"},   // no "0" either
      {4, 2, 2, ".00"},   // decimals = length
      {4, 1, 2, ".00"},   // decimals > length
      {4, 3, 5, ".00000"},
      {4, 3, 1, "0.0"},
      {4, 2, 1, ".0"},
      {4, 1, 1, ".0"},
      {4, -2, 2, ".00"},  // negative length
      {4, 5, 0, "####0"},
      {4, 2, 0, "#0"},
      {4, 1, 0, "0"},
      {4, 0, 0, "0"},
      {4, -3, 0, "0"},
      {4, 5, -1, "####0"},  // negative decimals read as none
      {5, 6, 1, "###0.0"},
      {6, 3, 0, "##0"},
      {7, 8, 2, "####0.00"},
      {1, 8, 2, ""},  // T
      {1, 1, 0, ""},
      {1, 100, 0, ""},
      {2, 8, 2, ""},
      {3, 8, 2, ""},
      {0, 8, 2, ""},
      {8, 8, 2, ""},
      {-1, 8, 2, ""},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(BuildNumberMask(row.type, row.length, row.decimals), row.mask)
        << "type " << row.type << " length " << row.length << " decimals "
        << row.decimals;
  }
  EXPECT_EQ(BuildNumberMask(4, 32767, 0).size(), 32767u);
}

struct SizeRow {
  bool summary;
  int16_t statistic;
  int16_t length;
  int16_t decimals;
  int16_t want_length;
  int16_t want_decimals;
};

std::ostream& operator<<(std::ostream& out, const SizeRow& row) {
  return out << (row.summary ? "summary" : "detail") << " statistic "
             << row.statistic << " length " << row.length << " decimals "
             << row.decimals;
}

void ExpectSize(const SizeRow& row) {
  int16_t length = row.length;
  int16_t decimals = row.decimals;
  StatisticFieldSize(row.summary, row.statistic, length, decimals);
  EXPECT_EQ(length, row.want_length) << row;
  EXPECT_EQ(decimals, row.want_decimals) << row;
}

TEST(FieldFormatTest, StatisticFieldSizeSummaryEveryCode) {
  // Own length 6, decimals 2; the expected size of every code -1..26.
  const SizeRow rows[] = {
      {true, -1, 6, 2, 0, 0}, {true, 0, 6, 2, 6, 2},     {true, 1, 6, 2, 6, 2},
      {true, 2, 6, 2, 8, 0},  {true, 3, 6, 2, 7, 3},     {true, 4, 6, 2, 11, 2},
      {true, 5, 6, 2, 8, 3},  {true, 6, 6, 2, 6, 2},     {true, 7, 6, 2, 7, 3},
      {true, 8, 6, 2, 7, 3},  {true, 9, 6, 2, 7, 3},     {true, 10, 6, 2, 7, 3},
      {true, 11, 6, 2, 7, 3}, {true, 12, 6, 2, 6, 2},    {true, 13, 6, 2, 7, 3},
      {true, 14, 6, 2, 7, 0}, {true, 15, 6, 2, 7, 3},    {true, 16, 6, 2, 7, 0},
      {true, 17, 6, 2, 7, 2}, {true, 18, 6, 2, 7, 1},    {true, 19, 6, 2, 7, 2},
      {true, 20, 6, 2, 8, 3}, {true, 21, 6, 2, 6, 2},    {true, 22, 6, 2, 8, 0},
      {true, 23, 6, 2, 9, 2}, {true, 24, 6, 2, 9, 4},    {true, 25, 6, 2, 9, 4},
      {true, 26, 6, 2, 0, 0}, {true, 32767, 6, 2, 0, 0},
  };
  for (const SizeRow& row : rows) ExpectSize(row);
}

TEST(FieldFormatTest, StatisticFieldSizeSummaryWithoutDecimals) {
  const SizeRow rows[] = {
      // Tdev, calculated limits and average gain a whole digit and one
      // decimal when the variable has no decimals.
      {true, 3, 6, 0, 8, 1},
      {true, 7, 6, 0, 8, 1},
      {true, 8, 6, 0, 8, 1},
      {true, 9, 6, 0, 8, 1},
      {true, 10, 6, 0, 8, 1},
      {true, 11, 6, 0, 8, 1},
      {true, 9, 6, 2, 7, 3},
      {true, 4, 6, 0, 11, 0},  // sum keeps D
      {true, 5, 6, 0, 8, 1},   // SD: D + 1 anyway
      {true, 0, 6, 0, 6, 0},
      // Negative and zero lengths and decimals are plain arithmetic.
      {true, 9, 0, 0, 2, 1},
      {true, 9, -3, 0, -1, 1},
      {true, 9, 6, -1, 7, 0},
      {true, 4, -3, 0, 2, 0},
      {true, 5, -3, -2, -1, -1},
      {true, 21, -3, -2, -3, -2},
      // The largest sizes that still fit.
      {true, 4, 32762, 7, 32767, 7},
      {true, 9, 32765, 0, 32767, 1},
      {true, 3, 5, 32766, 6, 32767},
  };
  for (const SizeRow& row : rows) ExpectSize(row);
}

TEST(FieldFormatTest, StatisticFieldSizeDetailEveryCode) {
  const SizeRow rows[] = {
      {false, -1, 6, 2, 0, 0},
      {false, 0, 6, 2, 6, 2},
      {false, 0, 6, 0, 6, 0},
      {false, 1, 6, 2, 8, 0},
      {false, 2, 6, 2, 8, 0},
      {false, 3, 6, 2, 9, 2},
      {false, 4, 6, 2, 9, 4},
      {false, 5, 6, 2, 9, 4},
      {false, 6, 6, 2, 0, 0},
      // Summary-only codes mean nothing in detail mode.
      {false, 9, 6, 0, 0, 0},
      {false, 25, 6, 2, 0, 0},
      {false, 26, 6, 2, 0, 0},
      {false, 0, -4, -1, -4, -1},
  };
  for (const SizeRow& row : rows) ExpectSize(row);
}

TEST(FieldFormatTest, StatisticFieldSizeOverflowLeavesBothUnchanged) {
  const SizeRow rows[] = {
      {true, 4, 32763, 2, 32763, 2},  // L + 5
      {true, 5, 32766, 2, 32766, 2},  // L + 2
      {true, 9, 32766, 0, 32766, 0},  // L + 2 when D = 0
      {true, 3, 6, 32767, 6, 32767},  // D + 1
      {true, 5, 6, 32767, 6, 32767},
  };
  for (const SizeRow& row : rows) {
    int16_t length = row.length;
    int16_t decimals = row.decimals;
    try {
      StatisticFieldSize(row.summary, row.statistic, length, decimals);
      ADD_FAILURE() << "no error for " << row;
    } catch (const Error& error) {
      EXPECT_EQ(error.Number(), 6) << row;
    }
    EXPECT_EQ(length, row.want_length) << row;
    EXPECT_EQ(decimals, row.want_decimals) << row;
  }
}

TEST(FieldFormatTest, InitVariableDefaultsSetsEverythingButTheCallersFour) {
  FieldDefinition field;
  field.Set(FieldAttribute::kName, "Width");
  field.Set(FieldAttribute::kType, "N");
  field.Set(FieldAttribute::kLength, int16_t{8});
  field.Set(FieldAttribute::kDecimals, int16_t{3});
  // Leftovers that the defaults must overwrite, and attributes they must
  // leave alone.
  for (int i = 4; i < kFieldAttributeCount; ++i) {
    field.Set(static_cast<FieldAttribute>(i), "stale");
  }
  for (int i = 0; i < kLimitCount; ++i) {
    field.SetLimit(static_cast<LimitKind>(i), Limit{"F", 9.5});
  }

  InitVariableDefaults(field, 3);

  struct Row {
    FieldAttribute attribute;
    const char* text;
  };
  const Row rows[] = {
      {FieldAttribute::kName, "Width"},
      {FieldAttribute::kType, "N"},
      {FieldAttribute::kLength, "8"},
      {FieldAttribute::kDecimals, "3"},
      {FieldAttribute::kXref, ""},
      {FieldAttribute::kSample, "0"},
      {FieldAttribute::kReportType, "V"},
      {FieldAttribute::kUcase, "N"},
      {FieldAttribute::kRequired, "N"},
      {FieldAttribute::kInput, ""},
      {FieldAttribute::kOutput, ""},
      {FieldAttribute::kLimitMethod, "0"},
      {FieldAttribute::kTargetMethod, "0"},
      {FieldAttribute::kMax, "0"},
      {FieldAttribute::kMin, "0"},
      {FieldAttribute::kExtra, "0"},
      {FieldAttribute::kPopup, ""},
      {FieldAttribute::kLookup, "0"},
      {FieldAttribute::kCompData, "0"},
      {FieldAttribute::kKeyId, "0"},
      {FieldAttribute::kRange, "0"},
      {FieldAttribute::kRelation,
       "000,000,000,000,000,000,000,000,000,000,000,000"},
      {FieldAttribute::kHelpFile, ""},
      {FieldAttribute::kPosition, "0"},
      {FieldAttribute::kSpare, "0"},
      {FieldAttribute::kRules, "ABC"},
      {FieldAttribute::kAvg, "stale"},
      {FieldAttribute::kUnits, "stale"},
      {FieldAttribute::kCategory, "stale"},
      {FieldAttribute::kCalc, "stale"},
  };
  for (const Row& row : rows) {
    const Variant& value = field.Get(row.attribute);
    SCOPED_TRACE(FieldDefinition::KeyOf(row.attribute));
    EXPECT_FALSE(value.IsEmpty()) << "a default is a value, not Empty";
    EXPECT_EQ(value.ToString(), row.text);
  }
  EXPECT_TRUE(field.Get(FieldAttribute::kXref).IsString());
  EXPECT_TRUE(field.Get(FieldAttribute::kMax).IsNumber());
  for (int i = 0; i < kLimitCount; ++i) {
    const auto limit = static_cast<LimitKind>(i);
    EXPECT_EQ(field.GetLimit(limit), (Limit{"C", 0}))
        << FieldDefinition::KeyOf(limit);
  }
}

TEST(FieldFormatTest, InitVariableDefaultsRuleLetters) {
  struct Row {
    int rule_count;
    std::string rules;
  };
  const Row rows[] = {
      {0, ""},
      {-2, ""},
      {1, "A"},
      {2, "AB"},
      {26, "ABCDEFGHIJKLMNOPQRSTUVWXYZ"},
      {28, "ABCDEFGHIJKLMNOPQRSTUVWXYZ[\\"},  // past "Z": codes 91, 92
  };
  for (const Row& row : rows) {
    FieldDefinition field;
    InitVariableDefaults(field, row.rule_count);
    EXPECT_EQ(field.Get(FieldAttribute::kRules).ToString(), row.rules)
        << row.rule_count << " rules";
  }

  // Rule 191 is character code 255, "ÿ" in Windows-1252; rule 64 (code
  // 128) is the euro sign.
  FieldDefinition field;
  InitVariableDefaults(field, 191);
  const std::string rules = field.Get(FieldAttribute::kRules).ToString();
  EXPECT_EQ(rules.substr(rules.size() - 2), "\xC3\xBF");
  EXPECT_NE(rules.find("\xE2\x82\xAC"), std::string::npos);
  try {
    InitVariableDefaults(field, 192);
    ADD_FAILURE() << "no character code past 255";
  } catch (const Error& error) {
    EXPECT_EQ(error.Number(), 5);
  }
}

TEST(FieldFormatTest, ExpandReferenceList) {
  struct Row {
    const char* list;
    Items items;
  };
  const Row rows[] = {
      {"@XBAR[V2..V4,V8]", {"V2", "V3", "V4", "V8"}},
      {"@POP[V5]", {"V5"}},
      {"V5", {}},
      {"", {}},
      {"@POP[]", {}},
      {"@XBAR[]", {}},
      {"@POP[", {}},
      {"@POP[V1", {}},  // no closing bracket
      {"@XBAR]", {}},
      {"x@POP[V1]", {}},     // the prefix must start the text
      {"@pop[v5]", {"v5"}},  // single items are kept as written
      {"@Xbar[v2..v3]", {"V2", "V3"}},
      {"@POP[V7,V3]", {"V7", "V3"}},  // order kept
      {"@POP[V4..V2]", {}},           // b < a
      {"@POP[V3..V3]", {"V3"}},
      {"@POP[V-1..V1]", {"V-1", "V0", "V1"}},
      {"@POP[V 2..V 4]", {"V2", "V3", "V4"}},  // blanks before numbers
      {"@POP[V1..V&H3]", {"V1", "V2", "V3"}},  // leading-number rule
      // Corners read by character position.
      {"@POP[V3..V]", {}},                   // b reads nothing: 0
      {"@POP[Vx..V2]", {"V0", "V1", "V2"}},  // a reads nothing: 0
      {"@POP[V2..Vx]", {}},
      {"@POP[V2...V4]", {}},               // b reads "V4": 0
      {"@POP[..V2]", {"V0", "V1", "V2"}},  // no first character number
      {"@POP[V..V]", {"V0"}},
      {"@POP[V2..]", {}},
      {"@POP[V1.5..V3]", {"V2", "V3"}},  // 1.5 rounds to 2
      {"@POP[V2.5..V3]", {"V2", "V3"}},  // 2.5 rounds to 2 (even)
      {"@POP[V1,,V2]", {"V1", "", "V2"}},
      {"@POP[V1, V2]", {"V1", " V2"}},
      {"@POP[V1]]", {"V1]"}},
      {"@POP[,]", {"", ""}},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(ExpandReferenceList(row.list), row.items) << row.list;
  }
}

TEST(FieldFormatTest, ExpandReferenceListLimits) {
  const Items wide = ExpandReferenceList("@POP[V-32768..V32767]");
  ASSERT_EQ(wide.size(), 65536u);
  EXPECT_EQ(wide.front(), "V-32768");
  EXPECT_EQ(wide.back(), "V32767");

  const char* overflowing[] = {
      "@POP[V1..V32768]",   "@POP[V-32769..V1]", "@POP[V1..V1e9]",
      "@XBAR[V1..V1e999]",   // beyond the double range
      "@POP[V1..V32767.5]",  // rounds to 32768
  };
  for (const char* list : overflowing) {
    try {
      ExpandReferenceList(list);
      ADD_FAILURE() << "no error for " << list;
    } catch (const Error& error) {
      EXPECT_EQ(error.Number(), 6) << list;
    }
  }
}

TEST(FieldFormatTest, ReferenceNumber) {
  struct Row {
    const char* item;
    double number;
  };
  const Row rows[] = {
      {"V12", 12},
      {"v3x", 3},
      {"V", 0},
      {"", 0},
      {"X7", 7},
      {"V2.5", 2},
      {"V3.5", 4},
      {"V-4", -4},
      {"V-0.4", 0},
      {"VV3", 0},
      {"\xC3\x84"
       "5",
       5},  // the first character may be two bytes long
  };
  for (const Row& row : rows) {
    EXPECT_EQ(ReferenceNumber(row.item), row.number) << row.item;
  }
}

TEST(FieldFormatTest, SortReferenceList) {
  struct Row {
    Items items;
    Items sorted;
  };
  const Row rows[] = {
      {{}, {}},
      {{"V4"}, {"V4"}},
      {{"V10", "V9", "V1"}, {"V1", "V9", "V10"}},  // by number, not text
      {{"V5", "V4", "V3", "V2", "V1"}, {"V1", "V2", "V3", "V4", "V5"}},
      {{"V1", "V2", "V3"}, {"V1", "V2", "V3"}},
      // Equal numbers keep their order.
      {{"V3", "v3", "V1", "X3"}, {"V1", "V3", "v3", "X3"}},
      {{"X2", "V2", "V1", "v2"}, {"V1", "X2", "V2", "v2"}},
      {{"V2", "", "V-1"}, {"V-1", "", "V2"}},
  };
  for (const Row& row : rows) {
    Items items = row.items;
    SortReferenceList(items);
    EXPECT_EQ(items, row.sorted) << ::testing::PrintToString(row.items);
  }
}

TEST(FieldFormatTest, CompressReferenceList) {
  struct Row {
    const char* list;
    const char* compressed;
  };
  const Row rows[] = {
      {"@POP[V7,V3,V4,V5,V9,V10]", "@POP[V3..V5,V7,V9,V10]"},
      {"@XBAR[V2,V3]", "@XBAR[V2,V3]"},  // a run of two stays two items
      {"@XBAR[V2..V4,V8]", "@XBAR[V2..V4,V8]"},
      {"@XBAR[V2..V3]", "@XBAR[V2,V3]"},
      {"@xbar[v4,v2,v3]", "@XBAR[V2..V4]"},
      {"@pop[V1]", "@POP[V1]"},
      {"@POP[V1,V2,V3,V5,V6,V8,V9,V10,V11]", "@POP[V1..V3,V5,V6,V8..V11]"},
      {"@POP[V-1,V0,V1]", "@POP[V-1..V1]"},
      {"@POP[X2,V1,V3]", "@POP[V1..V3]"},
      {"@POP[V3,V3,V4]", "@POP[V3,V3,V4]"},  // a repeat breaks the run
      {"@POP[V1,,V2]", "@POP[V0..V2]"},      // the empty item reads 0
      // Past 2^53 adding 1 changes nothing; equal numbers still break runs.
      {"@POP[V1e20,V1e20,V1e20]", "@POP[V1E+20,V1E+20,V1E+20]"},
      {"@POP[V9..V1,V4]", "@POP[V4]"},  // the empty range adds nothing
      // Nothing to compress: the text comes back unchanged.
      {"V5", "V5"},
      {"", ""},
      {"@POP[]", "@POP[]"},
      {"@pop[]", "@pop[]"},
      {"@POP[V4..V2]", "@POP[V4..V2]"},
      {"@POP[V1", "@POP[V1"},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(CompressReferenceList(row.list), row.compressed) << row.list;
  }
}

}  // namespace
}  // namespace rz
