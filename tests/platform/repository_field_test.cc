// Copyright 2026 The Veltmark authors.

#include <gtest/gtest.h>

#include <functional>
#include <string>

#include "platform/repository.h"
#include "support/error_number.h"

namespace rz {
namespace {

RuleEntry EntryWithKey(const char* key) {
  RuleEntry entry;
  entry.key = key;
  return entry;
}

TEST(RepositoryFieldTest, TypedAttributesReadTheValuesGivenToAdd) {
  RepositoryField field("Weight", 4, 8, 2, 0);
  EXPECT_EQ(field.Attribute(FieldAttribute::kName), Variant("Weight"));
  EXPECT_EQ(field.Attribute(FieldAttribute::kType), Variant(int16_t{4}));
  EXPECT_EQ(field.Attribute(FieldAttribute::kLength), Variant(int16_t{8}));
  EXPECT_EQ(field.Attribute(FieldAttribute::kDecimals), Variant(int16_t{2}));

  field.SetAttribute(FieldAttribute::kLength, "12");
  field.SetAttribute(FieldAttribute::kType, 7.0);
  EXPECT_EQ(field.Length(), 12);
  EXPECT_EQ(field.FieldType(), 7);
  EXPECT_EQ(ErrorNumber(
                [&] { field.SetAttribute(FieldAttribute::kDecimals, 40000); }),
            6);
  EXPECT_EQ(ErrorNumber(
                [&] { field.SetAttribute(FieldAttribute::kDecimals, "two"); }),
            13);
  EXPECT_EQ(field.Decimals(), 2);  // a failed write changes nothing
}

TEST(RepositoryFieldTest, OtherAttributesAreHeldAsSet) {
  RepositoryField field("x", 1, 10, 0, 0);
  EXPECT_TRUE(field.Attribute(FieldAttribute::kXref).IsEmpty());
  field.SetAttribute(FieldAttribute::kMax, 99.5);
  field.SetAttribute(FieldAttribute::kPopup, Variant::Null());
  field.SetAttribute(FieldAttribute::kUnits, "Time TIME[hh:mm]");
  EXPECT_EQ(field.Attribute(FieldAttribute::kMax), Variant(99.5));
  EXPECT_TRUE(field.Attribute(FieldAttribute::kPopup).IsNull());
  EXPECT_EQ(field.Units(), "Time TIME[hh:mm]");
  field.SetAttribute(FieldAttribute::kUnits, Variant::Null());
  EXPECT_EQ(field.Units(), "");
}

TEST(RepositoryFieldTest, RulesAreAttachedInOrderAndReadAsKeys) {
  RepositoryField field("x", 4, 10, 0, 0);
  EXPECT_EQ(field.Attribute(FieldAttribute::kRules), Variant(""));
  field.AddRule(EntryWithKey("A"));
  field.AddRule(EntryWithKey("C"));
  field.AddRule(EntryWithKey("F"));
  field.AddRule(EntryWithKey("A"));
  EXPECT_EQ(field.RuleKeys(), "ACFA");
  EXPECT_EQ(field.Attribute(FieldAttribute::kRules), Variant("ACFA"));
  EXPECT_EQ(
      ErrorNumber([&] { field.SetAttribute(FieldAttribute::kRules, "B"); }), 5);
  EXPECT_EQ(field.RuleKeys(), "ACFA");
}

TEST(RepositoryFieldTest, NewFieldIsVisibleWithBlankLimits) {
  RepositoryField field("x", 4, 10, 0, 3);
  EXPECT_TRUE(field.Visible());
  EXPECT_EQ(field.Extra(), 3);
  for (const RepositoryLimit& limit : field.Limits()) {
    EXPECT_EQ(limit, RepositoryLimit{});
  }
  field.Limit(LimitKind::kLsl) = {2, 1.5};
  EXPECT_EQ(field.Limits()[kLimitCount - 1], (RepositoryLimit{2, 1.5}));
}

TEST(RepositoryFieldDispatchTest, MembersByNameWithoutRegardToCase) {
  RepositoryField field("Weight", 4, 8, 2, 0);
  EXPECT_EQ(field.Get("name"), Variant("Weight"));
  EXPECT_EQ(field.Get("fieldtype"), Variant(int16_t{4}));
  EXPECT_EQ(field.Get("TYPE"), Variant(int16_t{4}));
  field.Put("format", "0.00");
  field.Put("RAWFIELD", 5);
  field.Put("visible", false);
  field.Put("#avg", 3);
  field.Put("calc", "@POP[V5,V6]");
  EXPECT_EQ(field.Format(), "0.00");
  EXPECT_EQ(field.RawField(), 5);
  EXPECT_FALSE(field.Visible());
  EXPECT_EQ(field.Get("#AVG"), Variant(int32_t{3}));
  EXPECT_EQ(field.Get("CALC"), Variant("@POP[V5,V6]"));
}

TEST(RepositoryFieldDispatchTest, LimitsByKeyOrPositionBesideTheAttribute) {
  RepositoryField field("x", 4, 8, 2, 0);
  field.Put("LimitMethod", 2, {Variant("usl")});
  field.Put("LimitValue", 10.5, {Variant(int32_t{1})});
  field.Put("LimitValue", -1.0, {Variant("LSL")});
  field.Put("LimitMethod", "F");  // no limit argument: the attribute
  EXPECT_EQ(field.Limit(LimitKind::kUsl), (RepositoryLimit{2, 10.5}));
  EXPECT_EQ(field.Limit(LimitKind::kLsl).value, -1.0);
  EXPECT_EQ(field.Get("LimitMethod", {Variant(int32_t{1})}),
            Variant(int16_t{2}));
  EXPECT_EQ(field.Get("LIMITMETHOD"), Variant("F"));
  EXPECT_EQ(field.Get("limitvalue", {Variant(int32_t{7})}), Variant(-1.0));
}

TEST(RepositoryFieldDispatchTest, ErrorsCarryTheirNumbers) {
  RepositoryField field("x", 4, 8, 2, 0);
  struct Row {
    const char* what;
    std::function<void()> action;
    int32_t number;
  };
  const Row rows[] = {
      {"unknown member", [&] { field.Get("Colour"); }, 438},
      {"RULES is read-only", [&] { field.Put("RULES", "A"); }, 438},
      {"attribute with an index", [&] { field.Get("NAME", {Variant(1)}); },
       450},
      {"LimitValue without limit", [&] { field.Get("LimitValue"); }, 450},
      {"limit position 8", [&] { field.Get("LimitValue", {Variant(8)}); }, 5},
      {"limit position 0 put",
       [&] { field.Put("LimitMethod", 1, {Variant(0)}); }, 5},
      {"unknown limit key", [&] { field.Get("LimitMethod", {Variant("X")}); },
       5},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(ErrorNumber(row.action), row.number) << row.what;
  }
}

}  // namespace
}  // namespace rz
