// Copyright 2026 The Veltmark authors.

#include "core/variant.h"

#include <gtest/gtest.h>

#include <cmath>
#include <new>
#include <string>

#include "core/dispatch.h"
#include "core/error.h"
#include "support/allocation_limit.h"
#include "support/error_number.h"

namespace rz {
namespace {

TEST(VariantTest, IntegerConversionsRoundHalvesToEven) {
  struct Case {
    Variant value;
    int32_t expected;
  } cases[] = {
      {0.5, 0},       {1.5, 2},        {2.5, 2},
      {-0.5, 0},      {-1.5, -2},      {-2.5, -2},
      {2.4999, 2},    {2.5001, 3},     {"3.5", 4},
      {" 4.5 ", 4},   {true, -1},      {false, 0},
      {Variant(), 0}, {int16_t{7}, 7}, {Variant::Date(2.5), 2},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(c.value.ToInteger(), c.expected) << c.value.ToString();
    EXPECT_EQ(c.value.ToLong(), c.expected) << c.value.ToString();
  }
}

TEST(VariantTest, IntegerConversionsCheckTheirRange) {
  struct Case {
    double value;
    int integer_error;  // of ToInteger
    int long_error;     // of ToLong
  } cases[] = {
      {32767, 0, 0},        {32767.5, 6, 0},       {-32768, 0, 0},
      {-32768.5, 0, 0},     {-32769, 6, 0},        {2147483647.0, 6, 0},
      {2147483647.5, 6, 6}, {-2147483648.5, 6, 0}, {-2147483649.0, 6, 6},
      {1e300, 6, 6},        {NAN, 6, 6},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(ErrorNumber([&] { Variant(c.value).ToInteger(); }),
              c.integer_error)
        << c.value;
    EXPECT_EQ(ErrorNumber([&] { Variant(c.value).ToLong(); }), c.long_error)
        << c.value;
  }
}

TEST(VariantTest, TextMustBeOneNumberWhereANumberIsRequired) {
  const char* bad[] = {"12.5abc", "abc", "", " ", "1,5", "--1", "1e"};
  for (const char* text : bad) {
    try {
      Variant(text).ToDouble();
      ADD_FAILURE() << "no error for '" << text << "'";
    } catch (const Error& error) {
      EXPECT_EQ(error.Number(), 13) << text;
      // The description names the value so the user can find it.
      EXPECT_NE(error.Description().find(std::string("'") + text + "'"),
                std::string::npos)
          << error.Description();
    }
  }
  EXPECT_DOUBLE_EQ(Variant(" -12.5e1 ").ToDouble(), -125);
}

TEST(VariantTest, NullAndEmpty) {
  EXPECT_EQ(ErrorNumber([] { Variant::Null().ToDouble(); }), 94);
  EXPECT_EQ(ErrorNumber([] { Variant::Null().ToString(); }), 94);
  EXPECT_EQ(ErrorNumber([] { Variant::Null().ToInteger(); }), 94);
  EXPECT_EQ(Variant().ToString(), "");
  EXPECT_EQ(Variant().ToDouble(), 0);
  EXPECT_FALSE(Variant().ToBool());
  EXPECT_TRUE(Variant().IsBlank());
  EXPECT_TRUE(Variant::Null().IsBlank());
  EXPECT_TRUE(Variant("").IsBlank());
  EXPECT_FALSE(Variant(" ").IsBlank());
  EXPECT_FALSE(Variant(0).IsBlank());
}

TEST(VariantTest, LeadingNumberReading) {
  struct Case {
    Variant value;
    double expected;
  } cases[] = {
      {Variant(), 0},    {Variant::Null(), 0},
      {"", 0},           {"12.5abc", 12.5},
      {"abc", 0},        {"  -3x", -3},
      {12.25, 12.25},    {true, -1},
      {int16_t{-4}, -4}, {Variant::Date(2.5), 2.5},
  };
  for (const Case& c : cases) {
    EXPECT_DOUBLE_EQ(LeadingNumberOf(c.value), c.expected);
  }
}

TEST(VariantTest, TextForms) {
  struct Case {
    Variant value;
    const char* expected;
  } cases[] = {
      {0.1, "0.1"},
      {0.1 + 0.2, "0.30000000000000004"},
      {12.0, "12"},
      {-3.5, "-3.5"},
      {true, "True"},
      {false, "False"},
      {int16_t{-7}, "-7"},
      {int32_t{100000}, "100000"},
      {Variant::Date(39000.5), "2006-10-10 12:00:00"},
      {Variant::Date(39000), "2006-10-10"},
      {Variant::Date(0.25), "06:00:00"},
      {Variant::Date(39000.99999999), "2006-10-11"},
  };
  for (const Case& c : cases) EXPECT_EQ(c.value.ToString(), c.expected);
}

TEST(VariantTest, BooleanAndDateConversions) {
  EXPECT_TRUE(Variant("true").ToBool());
  EXPECT_FALSE(Variant(" FALSE ").ToBool());
  EXPECT_TRUE(Variant("-2").ToBool());
  EXPECT_FALSE(Variant("0").ToBool());
  EXPECT_EQ(ErrorNumber([] { Variant("yes").ToBool(); }), 13);
  EXPECT_DOUBLE_EQ(Variant("2006-10-10 12:00:00").ToDate(), 39000.5);
  EXPECT_DOUBLE_EQ(Variant("39000.25").ToDate(), 39000.25);
  EXPECT_EQ(ErrorNumber([] { Variant("2006-13-01").ToDate(); }), 13);
}

TEST(VariantTest, CompareFollowsTheAutomationRules) {
  struct Case {
    Variant a, b;
    CompareMode mode;
    std::optional<int> expected;
  } cases[] = {
      {1, 2.5, CompareMode::kBinary, -1},
      {"10", 9, CompareMode::kBinary, 1},   // numeric text compares as a number
      {"abc", 9, CompareMode::kBinary, 1},  // a number sorts before text
      {9, "abc", CompareMode::kBinary, -1},
      {"10", "9", CompareMode::kBinary, -1},  // two texts compare as text
      {"abc", "ABC", CompareMode::kBinary, 1},
      {"abc", "ABC", CompareMode::kText, 0},
      {Variant(), 0, CompareMode::kBinary, 0},
      {Variant(), "", CompareMode::kBinary, 0},
      {Variant(), "a", CompareMode::kBinary, -1},
      {Variant::Null(), 1, CompareMode::kBinary, std::nullopt},
      {1, Variant::Null(), CompareMode::kBinary, std::nullopt},
      {true, 0, CompareMode::kBinary, -1},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(Compare(c.a, c.b, c.mode), c.expected)
        << (c.a.IsNull() ? "Null" : c.a.ToString()) << " vs "
        << (c.b.IsNull() ? "Null" : c.b.ToString());
  }
}

TEST(VariantTest, StrictEqualityAndTypeNames) {
  EXPECT_EQ(Variant(int16_t{1}), Variant(int16_t{1}));
  EXPECT_NE(Variant(int16_t{1}), Variant(int32_t{1}));
  EXPECT_NE(Variant(1.0), Variant::Date(1.0));
  EXPECT_EQ(Variant(VariantArray{1, "a"}), Variant(VariantArray{1, "a"}));
  EXPECT_EQ(Variant(int16_t{1}).TypeName(), "Integer");
  EXPECT_EQ(Variant(VariantArray{}).TypeName(), "Variant()");
  EXPECT_EQ(Variant(std::shared_ptr<Dispatch>()).TypeName(), "Nothing");
  EXPECT_EQ(
      ErrorNumber([] { Variant(std::shared_ptr<Dispatch>()).ToObject(); }), 91);
  EXPECT_EQ(ErrorNumber([] { Variant(3).ToObject(); }), 13);
  EXPECT_EQ(ErrorNumber([] { Variant(3).ToArray(); }), 13);
}

TEST(VariantTest, ArraysAreValues) {
  Variant a(VariantArray{1, 2});
  Variant b = a;
  b.MutableArray()[0] = 9;
  EXPECT_EQ(a.ToArray()[0], Variant(1));
  EXPECT_EQ(b.ToArray()[0], Variant(9));
}

// An array holding an array holding ... `depth` levels down to `innermost`.
Variant Nested(int depth, Variant innermost) {
  Variant value = std::move(innermost);
  for (int i = 0; i < depth; ++i) value = Variant(VariantArray{value});
  return value;
}

// Far deeper than any thread's stack could unwind recursively.
constexpr int kVeryDeep = 1000000;

TEST(VariantTest, DeeplyNestedArraysAreFreedWithoutRecursion) {
  {
    Variant deep = Nested(kVeryDeep, Variant("bottom"));
    deep = Variant();  // freed by assignment
  }
  {
    Variant deep = Nested(kVeryDeep, Variant(1));
    Variant holder(VariantArray{deep, deep});
    deep = Variant();
    // Two owners of the inner levels; the holder frees them at scope end.
  }
  {
    // A shared inner part outlives the outer levels.
    Variant inner = Nested(10, Variant("kept"));
    { Variant outer = Nested(kVeryDeep, inner); }
    const Variant* cell = &inner;
    for (int i = 0; i < 10; ++i) cell = &cell->ToArray()[0];
    EXPECT_EQ(*cell, Variant("kept"));
  }
}

TEST(VariantTest, EqualityOfDeeplyNestedArraysDoesNotRecurse) {
  const Variant a = Nested(kVeryDeep, Variant(1));
  EXPECT_EQ(a, Nested(kVeryDeep, Variant(1)));
  EXPECT_NE(a, Nested(kVeryDeep, Variant(2)));      // differs at the bottom
  EXPECT_NE(a, Nested(kVeryDeep - 1, Variant(1)));  // one level short
  EXPECT_EQ(a, a);
}

TEST(VariantTest, CopyOfADeepArrayDetachesOneLevelAtATime) {
  const Variant original = Nested(kVeryDeep, Variant(1));
  Variant copy = original;
  copy.MutableArray()[0] = Variant("changed");
  EXPECT_EQ(copy.ToArray()[0], Variant("changed"));
  EXPECT_TRUE(original.ToArray()[0].IsArray());
}

TEST(VariantTest, ACopyThatRunsOutOfMemoryLeavesBothSidesIntact) {
  const std::string text(1 << 20, 'x');
  const Variant source(text);
  Variant target(int32_t{5});
  Variant same_kind("short");
  {
    AllocationLimit limit(1 << 19);
    EXPECT_THROW(Variant copy(source), std::bad_alloc);
    EXPECT_THROW(target = source, std::bad_alloc);
    EXPECT_THROW(same_kind = source, std::bad_alloc);
    EXPECT_THROW(VariantArray(3, source), std::bad_alloc);
  }
  EXPECT_EQ(source, Variant(text));
  EXPECT_EQ(target, Variant(int32_t{5}));
  EXPECT_EQ(same_kind, Variant("short"));
  target = source;
  EXPECT_EQ(target, source);
}

}  // namespace
}  // namespace rz
