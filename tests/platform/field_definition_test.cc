// Copyright 2026 The Veltmark authors.

#include "platform/field_definition.h"

#include <gtest/gtest.h>

#include <memory>
#include <set>
#include <string>

#include "core/text.h"
#include "support/error_number.h"

namespace rz {
namespace {

TEST(FieldDefinitionKeysTest, EveryAttributeKeyLeadsBackToItsAttribute) {
  std::set<std::string> seen;
  for (int i = 0; i < kFieldAttributeCount; ++i) {
    const auto attribute = static_cast<FieldAttribute>(i);
    const std::string key(FieldDefinition::KeyOf(attribute));
    EXPECT_FALSE(key.empty()) << i;
    EXPECT_TRUE(seen.insert(key).second) << "duplicate key " << key;
    EXPECT_EQ(FieldDefinition::AttributeForKey(key), attribute) << key;
    EXPECT_EQ(FieldDefinition::AttributeForKey(LowerCase(key)), attribute)
        << key;
    EXPECT_EQ(FieldDefinition::LimitForKey(key), std::nullopt) << key;
  }
}

TEST(FieldDefinitionKeysTest, EveryLimitKeyLeadsBackToItsLimit) {
  const char* const expected[kLimitCount] = {"USL", "UCL", "UWL", "TGT",
                                             "LWL", "LCL", "LSL"};
  for (int i = 0; i < kLimitCount; ++i) {
    const auto limit = static_cast<LimitKind>(i);
    EXPECT_EQ(FieldDefinition::KeyOf(limit), expected[i]);
    EXPECT_EQ(FieldDefinition::LimitForKey(expected[i]), limit);
    EXPECT_EQ(FieldDefinition::LimitForKey(LowerCase(expected[i])), limit);
    EXPECT_EQ(FieldDefinition::AttributeForKey(expected[i]), std::nullopt);
  }
}

TEST(FieldDefinitionKeysTest, UnknownKeysFindNothing) {
  for (const char* key : {"", "NAM", "NAMES", " NAME", "AVG", "#AV", "US"}) {
    EXPECT_EQ(FieldDefinition::AttributeForKey(key), std::nullopt) << key;
    EXPECT_EQ(FieldDefinition::LimitForKey(key), std::nullopt) << key;
  }
}

TEST(FieldDefinitionTest, TypedReadersAreLenient) {
  FieldDefinition field;
  EXPECT_EQ(field.Name(), "");
  EXPECT_EQ(field.Length(), 0);
  field.Set(FieldAttribute::kType, "n");
  field.Set(FieldAttribute::kLength, "12abc");
  field.Set(FieldAttribute::kDecimals, 1e9);
  field.Set(FieldAttribute::kUnits, Variant::Null());
  EXPECT_EQ(field.TypeLetter(), "N");
  EXPECT_EQ(field.Length(), 12);
  EXPECT_EQ(field.Decimals(), 32767);
  EXPECT_EQ(field.Text(FieldAttribute::kUnits), "");
  field.Set(FieldAttribute::kDecimals, -1e9);
  EXPECT_EQ(field.Decimals(), -32768);
}

TEST(FieldDefinitionTest, CopyFromKeepsIdentityAndCopiesEverything) {
  auto target = std::make_shared<FieldDefinition>();
  const FieldDefinition* identity = target.get();
  FieldDefinition source;
  source.Set(FieldAttribute::kName, "Weight");
  source.Set(FieldAttribute::kCalc, "@XBAR[V4..V6]");
  source.SetLimit(LimitKind::kLsl, {"F", 9.5});

  target->CopyFrom(source);

  EXPECT_EQ(target.get(), identity);
  EXPECT_TRUE(*target == source);
  EXPECT_EQ(target->GetLimit(LimitKind::kLsl), (Limit{"F", 9.5}));
  // A copy, not a share: later changes of the source stay there.
  source.Set(FieldAttribute::kName, "Height");
  source.SetLimit(LimitKind::kLsl, {"B", 0});
  EXPECT_EQ(target->Name(), "Weight");
  EXPECT_EQ(target->GetLimit(LimitKind::kLsl).method, "F");
}

// FieldDefinition's own Get(FieldAttribute) hides Dispatch::Get; the tests
// reach the late-bound members through the Dispatch base.
TEST(FieldDefinitionDispatchTest, AttributesByKeyWithoutRegardToCase) {
  FieldDefinition definition;
  Dispatch& field = definition;
  field.Put("name", "Weight");
  field.Put("#avg", 5);
  EXPECT_EQ(definition.Name(), "Weight");
  EXPECT_EQ(field.Get("NAME"), Variant("Weight"));
  EXPECT_EQ(field.Get("#AVG"), Variant(int32_t{5}));
  EXPECT_EQ(field.Get(FieldDefinition::KeyOf(FieldAttribute::kAvg)),
            Variant(int32_t{5}));
}

TEST(FieldDefinitionDispatchTest, LimitsByKeyOrPosition) {
  FieldDefinition definition;
  Dispatch& field = definition;
  field.Put("LimitMethod", "F", {Variant("USL")});
  field.Put("LimitValue", 12.5, {Variant(int32_t{7})});
  EXPECT_EQ(definition.GetLimit(LimitKind::kUsl).method, "F");
  EXPECT_EQ(definition.GetLimit(LimitKind::kLsl).value, 12.5);
  EXPECT_EQ(field.Get("LimitMethod", {Variant("usl")}), Variant("F"));
  EXPECT_EQ(field.Get("LimitValue", {Variant(int32_t{7})}), Variant(12.5));
  EXPECT_EQ(field.Get("LimitValue", {Variant("LSL")}), Variant(12.5));
}

TEST(FieldDefinitionDispatchTest, LimitMethodWithoutLimitIsTheAttribute) {
  FieldDefinition definition;
  Dispatch& field = definition;
  field.Put("LIMITMETHOD", "C");
  EXPECT_EQ(field.Get(FieldDefinition::KeyOf(FieldAttribute::kLimitMethod)),
            Variant("C"));
  // The indexed form does not touch the attribute.
  field.Put("LimitMethod", "F", {Variant("TGT")});
  EXPECT_EQ(field.Get("LIMITMETHOD"), Variant("C"));
}

TEST(FieldDefinitionDispatchTest, ErrorsCarryTheirNumbers) {
  FieldDefinition definition;
  Dispatch& field = definition;
  struct Row {
    const char* what;
    std::function<void()> action;
    int32_t number;
  };
  const Row rows[] = {
      {"unknown member", [&] { field.Get("Colour"); }, 438},
      {"unknown member put", [&] { field.Put("Colour", 1); }, 438},
      {"attribute with an index", [&] { field.Get("NAME", {Variant(1)}); },
       450},
      {"limit without index", [&] { field.Get("LimitValue"); }, 450},
      {"unknown limit key", [&] { field.Get("LimitValue", {Variant("XYZ")}); },
       5},
      {"limit position 0", [&] { field.Get("LimitValue", {Variant(0)}); }, 5},
      {"limit position 8", [&] { field.Get("LimitValue", {Variant(8)}); }, 5},
      {"limit position 8 put",
       [&] { field.Put("LimitValue", 1.0, {Variant(8)}); }, 5},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(ErrorNumber(row.action), row.number) << row.what;
  }
}

}  // namespace
}  // namespace rz
