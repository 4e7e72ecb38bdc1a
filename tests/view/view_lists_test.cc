// Copyright 2026 The Veltmark authors.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "core/error.h"
#include "support/error_number.h"
#include "view/result_field_types.h"
#include "view/stat_types.h"
#include "view/view_state.h"
#include "view/where_types.h"

namespace rz {
namespace {

std::string Names(const ResultFieldTypes& list) {
  std::string names;
  for (const auto& item : list.Items()) names += item->RZfield()->Name();
  return names;
}

ResultFieldTypes ListOf(const std::string& names) {
  ResultFieldTypes list;
  for (char name : names) list.Add(0, 1, 0, std::string(1, name));
  return list;
}

TEST(ResultFieldTypesTest, SwapMovesTheHigherItemBeforeTheLower) {
  struct Case {
    int32_t index1, index2;
    const char* expected;
  } cases[] = {
      {2, 1, "BACD"}, {1, 2, "BACD"}, {1, 3, "CABD"}, {3, 1, "CABD"},
      {2, 2, "ABCD"}, {1, 4, "DABC"}, {3, 4, "ABDC"},
  };
  for (const Case& c : cases) {
    ResultFieldTypes list = ListOf("ABCD");
    list.Swap(c.index1, c.index2);
    EXPECT_EQ(Names(list), c.expected) << c.index1 << "," << c.index2;
  }
}

TEST(ResultFieldTypesTest, SwapOutsideTheListFailsAndChangesNothing) {
  const std::pair<int32_t, int32_t> bad[] = {{0, 1}, {1, 5}, {-1, 2}, {5, 5}};
  for (auto [a, b] : bad) {
    ResultFieldTypes list = ListOf("ABCD");
    EXPECT_EQ(ErrorNumber([&] { list.Swap(a, b); }), 5) << a << "," << b;
    EXPECT_EQ(Names(list), "ABCD");
  }
}

TEST(ResultFieldTypesTest, AddGivesANewNumericDefinition) {
  ResultFieldTypes list([] { return 3; });
  auto column = list.Add(0, 5, 0, "Weight");
  EXPECT_EQ(column->RawField(), 5);
  EXPECT_EQ(column->PivotField(), 0);
  EXPECT_EQ(column->Statistic(), 0);
  const FieldDefinition& field = *column->RZfield();
  EXPECT_EQ(field.Name(), "Weight");
  EXPECT_EQ(field.TypeLetter(), "N");
  EXPECT_EQ(field.Length(), 8);
  EXPECT_EQ(field.Decimals(), 0);
  EXPECT_EQ(field.Text(FieldAttribute::kRules), "ABC");
  EXPECT_EQ(field.GetLimit(LimitKind::kUsl).method, "C");
  EXPECT_EQ(list.Count(), 1);
}

TEST(ResultFieldTypesTest, AddWithoutAnApplicationNamesNoRules) {
  ResultFieldTypes list;
  EXPECT_EQ(list.Add(0, 1, 0, "x")->RZfield()->Text(FieldAttribute::kRules),
            "");
}

TEST(ResultFieldTypeTest, RZfieldIsCreatedOnceOnFirstRead) {
  ResultFieldType column;
  auto first = column.RZfield();
  ASSERT_NE(first, nullptr);
  EXPECT_EQ(column.RZfield(), first);
  auto replacement = std::make_shared<FieldDefinition>();
  column.SetRZfield(replacement);
  EXPECT_EQ(column.RZfield(), replacement);
  // Through Dispatch: a Set by reference replaces, a non-field is refused.
  auto other = std::make_shared<FieldDefinition>();
  column.PutRef("rzfield", std::shared_ptr<Dispatch>(other));
  EXPECT_EQ(column.Get("RZfield").ToObject(), other);
  EXPECT_EQ(ErrorNumber([&] {
              column.PutRef("RZfield", std::shared_ptr<Dispatch>(
                                           std::make_shared<StatTypes>()));
            }),
            13);
  EXPECT_EQ(column.RZfield(), other);
}

TEST(ListItemTest, PositionsByNumberOrNumericText) {
  WhereTypes list;
  list.Add(0, "", 1, "=", "a", "");
  list.Add(1, "(", 2, "<", "b", ")");
  list.Add(2, "", 3, ">", "c", "");
  struct Case {
    Variant index;
    const char* expected_value;  // nullptr: error 5
  } cases[] = {
      {int16_t{2}, "b"},    {int32_t{3}, "c"},
      {"2", "b"},           {" 1 ", "a"},
      {2.0, "b"},           {1.5, "b"},
      {2.5, "b"},           {0, nullptr},
      {4, nullptr},         {-1, nullptr},
      {"abc", nullptr},     {"", nullptr},
      {Variant(), nullptr}, {Variant::Null(), nullptr},
      {40000, nullptr},
  };
  for (const Case& c : cases) {
    const std::string row = c.index.IsNull() ? "Null" : c.index.ToString();
    if (c.expected_value == nullptr) {
      EXPECT_EQ(ErrorNumber([&] { list.Item(c.index); }), 5) << row;
    } else {
      EXPECT_EQ(list.Item(c.index)->Value(), c.expected_value) << row;
    }
  }
}

TEST(ListItemTest, RemoveMovesLaterItemsUpAndRefusesBadPositions) {
  StatTypes list;
  list.Add(1, "Average", true);
  list.Add(2, "Range", false);
  list.Add(3, "Cpk", true);
  EXPECT_EQ(ErrorNumber([&] { list.Remove(4); }), 5);
  EXPECT_EQ(list.Count(), 3);
  list.Remove(2);
  ASSERT_EQ(list.Count(), 2);
  EXPECT_EQ(list.Item(2)->Description(), "Cpk");
  list.Clear();
  EXPECT_EQ(list.Count(), 0);
  EXPECT_EQ(ErrorNumber([&] { list.Item(1); }), 5);
}

TEST(WhereTypesTest, AddStoresSixValuesAndRefusesAnOversizedConnective) {
  WhereTypes list;
  auto row = list.Add(2, "(", 3, "LIKE", "A*", ")");
  EXPECT_EQ(row->AndOr(), 2);
  EXPECT_EQ(row->Par1(), "(");
  EXPECT_EQ(row->Variable(), 3);
  EXPECT_EQ(row->Condition(), "LIKE");
  EXPECT_EQ(row->Value(), "A*");
  EXPECT_EQ(row->Par2(), ")");
  EXPECT_EQ(ErrorNumber([&] { list.Add(70000, "", 1, "=", "", ""); }), 6);
  EXPECT_EQ(list.Count(), 1);
}

TEST(ListDispatchTest, DefaultMemberCountAndEnumeration) {
  auto list = std::make_shared<WhereTypes>();
  list->Call("Add", {1, "", int16_t{4}, "=", "12.5", ""});
  list->Call("add", {2, "", int16_t{5}, "<>", "NULL", ""});
  EXPECT_EQ(list->Get("COUNT"), Variant(int32_t{2}));
  // Where(2).Value: the empty name is Item.
  EXPECT_EQ(list->Get("", {2}).ToObject()->Get("Value"), Variant("NULL"));
  const VariantArray items = list->Enumerate();
  ASSERT_EQ(items.size(), 2u);
  EXPECT_EQ(items[0].ToObject()->Get("Variable"), Variant(int16_t{4}));
  EXPECT_EQ(list->Call("NewEnum").ToArray().size(), 2u);
}

TEST(ListDispatchTest, ItemPropertiesConvertOrRaiseBeforeStoring) {
  WhereType row;
  row.Put("variable", "7");
  EXPECT_EQ(row.Variable(), 7);
  EXPECT_EQ(ErrorNumber([&] { row.Put("Variable", "7x"); }), 13);
  EXPECT_EQ(ErrorNumber([&] { row.Put("Variable", 1e6); }), 6);
  EXPECT_EQ(ErrorNumber([&] { row.Put("Variable", Variant::Null()); }), 94);
  EXPECT_EQ(row.Variable(), 7);
  EXPECT_EQ(ErrorNumber([&] { row.Get("Nope"); }), 438);
  EXPECT_EQ(ErrorNumber([&] { row.Put("AndOr", 1, {2}); }), 450);

  StatType stat;
  stat.Put("Selected", "True");
  EXPECT_TRUE(stat.Selected());
  stat.Put("Selected", 0);
  EXPECT_FALSE(stat.Selected());
}

TEST(ListDispatchTest, MemberNamesFollowTheInterfaceOrder) {
  EXPECT_EQ(WhereType().MemberNames(),
            (std::vector<std::string>{"Par2", "Value", "Condition", "Variable",
                                      "Par1", "AndOr"}));
  EXPECT_EQ(ResultFieldTypes().MemberNames(),
            (std::vector<std::string>{"Clear", "Add", "Swap", "Item", "Count",
                                      "Remove", "NewEnum"}));
  EXPECT_EQ(StatTypes().MemberNames(),
            (std::vector<std::string>{"Clear", "Add", "Item", "Count", "Remove",
                                      "NewEnum"}));
}

TEST(ViewStateTest, RangeTextFollowsTheSpecificDates) {
  auto state = NewViewState(nullptr);
  state->FromDateTime = 45000.25;
  state->ToDateTime = 45001.0 - 1.0 / 86400;
  SetRangeText(*state);
  EXPECT_EQ(state->BegDate, 45000.25);
  EXPECT_EQ(state->BegText, "2023-03-15 06:00:00");
  EXPECT_EQ(state->EndText, "2023-03-15 23:59:59");
}

TEST(ViewStateTest, ANewRecordHasItsStartingValues) {
  auto state = NewViewState(nullptr);
  EXPECT_TRUE(state->DisplayPacifier);
  EXPECT_EQ(state->RunCaption, "Run");
  EXPECT_EQ(state->RunTooltip, "Execute the current View");
  for (auto* list : {state->ResultField.get(), state->WorkFields.get()}) {
    EXPECT_EQ(list->Count(), 0);
  }
  EXPECT_NE(state->Where, state->WorkWhere);
  EXPECT_EQ(ApplicationRuleCount(*state), 0);
}

}  // namespace
}  // namespace rz
