// Copyright 2026 The Veltmark authors.
//
// The output stages on the real components: the statistic codes of detail
// and summary mode (values worked out by hand from the record times), the
// store's growth, the repository's fields with their formats, rules,
// limits and rewritten references, the header items, and the export of a
// repository as an application.

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include "engine/rzselect.h"
#include "output/delivery.h"
#include "output/repository_export.h"
#include "output/result_column.h"
#include "output/run_progress.h"
#include "output/variable_setup.h"
#include "platform/app_file.h"
#include "platform/repository.h"
#include "platform/rzselect_events.h"
#include "support/component_platform.h"
#include "support/temp_folder.h"
#include "view/result_field_types.h"
#include "view/view_state.h"

namespace rz {
namespace {

class OutputTest : public ::testing::Test {
 protected:
  // One numeric variable 3 ("V") at the given times.
  void Open(const std::vector<std::vector<Variant>>& records) {
    MakeApplication(
        *platform_, App(),
        {{"Date", "T", 10, 0}, {"Time", "T", 8, 0}, {"V", "N", 5, 0}}, records);
    engine_ = RZselect::Create(platform_);
    engine_->SetFilename(App());
    engine_->SetDisplayPacifier(false);
    engine_->Initialize();
  }

  // Replaces the value column with one column per statistic code.
  void ShowStatistics(const std::vector<int16_t>& codes, int16_t length,
                      int16_t decimals) {
    ResultFieldTypes& fields = *engine_->ResultField();
    fields.Remove(3);
    for (int16_t code : codes) {
      auto field = fields.Add(0, 3, code, "S" + std::to_string(code));
      field->RZfield()->Set(FieldAttribute::kLength, Variant(length));
      field->RZfield()->Set(FieldAttribute::kDecimals, Variant(decimals));
    }
  }

  // The cells of fields 3.. of every record, as text ("" for the empty
  // text, numbers in their shortest form).
  std::vector<std::vector<std::string>> Cells() {
    std::vector<std::vector<std::string>> rows;
    for (int32_t r = 1; r <= repository_->RecordCount(); ++r) {
      std::vector<std::string> row;
      for (int32_t f = 3; f <= repository_->Fields().Count(); ++f) {
        row.push_back(repository_->Value(r, f).ToString());
      }
      rows.push_back(row);
    }
    return rows;
  }

  std::string App() const { return folder_.File("t.rzt"); }

  TempFolder folder_;
  std::shared_ptr<ComponentPlatform> platform_ =
      std::make_shared<ComponentPlatform>();
  std::shared_ptr<Repository> repository_ = platform_->CreateRepository();
  std::shared_ptr<RZselect> engine_;
};

using Rows = std::vector<std::vector<std::string>>;

// Codes 0 value, 1 count, 2..5 the time since the previous event in
// seconds, minutes, hours and days; a record without a value is no event.
TEST_F(OutputTest, DetailCodesCountTheTimeBetweenEvents) {
  Open({{"2024-03-01", "10:00:00", 1.0},
        {"2024-03-01", "10:01:30", 2.0},
        {"2024-03-01", "10:02:00", Variant::Null()},
        {"2024-03-01", "11:31:30", 3.0},
        {"2024-03-02", "23:31:30", 4.0}});
  ShowStatistics({0, 1, 2, 3, 4, 5, 6}, 8, 0);
  engine_->Refresh(repository_, false);
  EXPECT_EQ(Cells(), (Rows{{"1", "1", "", "", "", "", ""},
                           {"2", "1", "90", "1.5", "0.025", "0.001", ""},
                           {"", "", "", "", "", "", ""},
                           {"3", "1", "5400", "90", "1.5", "0.0625", ""},
                           {"4", "1", "129600", "2160", "36", "1.5", ""}}));
}

// The average time between events (90 s here) in seconds, minutes, hours
// and days; -1 is the first value and an unknown code leaves the cell empty.
TEST_F(OutputTest, SummaryCodesConvertTheAverageTimeBetweenEvents) {
  Open({{"2024-03-01", "06:00:00", 7.0},
        {"2024-03-01", "06:01:30", 8.0},
        {"2024-03-01", "06:03:00", 9.0}});
  ShowStatistics({22, 23, 24, 25, -1, 26, 2, 9}, 12, 6);
  engine_->SetSumBy(5);
  engine_->Refresh(repository_, false);
  EXPECT_EQ(Cells(), (Rows{{"90.000000", "1.500000", "0.025000", "0.001042",
                            "7.000000", "", "3.000000", "8.000000"}}));
}

TEST(DeliveryTest, TheStoreGrowsAheadInSteps) {
  const struct Case {
    int32_t existing;
    int32_t record;
    int32_t count_after;
  } cases[] = {
      {0, 1, 11},
      {10, 11, 21},
      {100, 101, 201},
      {110, 101, 110},
      {110, 111, 211},
      {1000, 1001, 1501},
      {10000, 10001, 11001},
  };
  ComponentPlatform platform;
  EventHandlerList events;
  for (const Case& c : cases) {
    std::shared_ptr<Repository> repository = platform.CreateRepository();
    repository->Fields().Add("A", 1, 10, 0, 0);
    if (c.existing > 0) repository->SetValue(c.existing, 1, Variant(""));
    Delivery delivery(*repository, false, events);
    delivery.SetCell(c.record, 1, Variant("x"));
    EXPECT_EQ(repository->RecordCount(), c.count_after) << c.record;
    delivery.Trim(c.record);
    EXPECT_EQ(repository->RecordCount(), c.record) << c.record;
  }
}

class VariableSetupTest : public ::testing::Test {
 protected:
  VariableSetupTest() {
    MakeApplication(platform_, folder_.File("v.rzt"),
                    {{"Date"}, {"Time"}, {"A", "N"}, {"B", "N"}, {"C", "N"}},
                    {});
    state_->AppFile = platform_.CreateAppFile();
    state_->AppFile->SetOpenMode(kOpenExisting);
    state_->AppFile->OpenApplication(folder_.File("v.rzt"));
    state_->DataSource = platform_.CreateRepository();
    for (const char* key : {"A", "C", "F"}) {
      state_->DataSource->RuleCatalogue().Add(key);
    }
    for (int16_t v = 1; v <= 5; ++v) AddColumn(v, 0);
  }

  std::shared_ptr<FieldDefinition> AddColumn(int16_t variable,
                                             int16_t statistic) {
    auto field = state_->ResultField->Add(0, variable, statistic,
                                          "F" + std::to_string(variable));
    ResultColumn column;
    column.FieldIndex = static_cast<int16_t>(state_->ResultField->Count());
    column.SourceVariable = variable;
    column.Statistic = statistic;
    column.ColumnName = field->RZfield()->Name();
    columns_.push_back(column);
    return field->RZfield();
  }

  RepositoryField& Field(int32_t k) {
    return *state_->DataSource->Fields().Item(k);
  }

  TempFolder folder_;
  ComponentPlatform platform_;
  std::shared_ptr<ViewState> state_ =
      NewViewState(std::shared_ptr<Platform>(&platform_, [](Platform*) {}));
  ResultLayout columns_;
};

TEST_F(VariableSetupTest, FieldsCarryTheDefinitionAndItsFormats) {
  FieldDefinition& a = *state_->ResultField->Item(3)->RZfield();
  a.Set(FieldAttribute::kUnits, Variant("Time TIME[hh:mm]"));
  a.Set(FieldAttribute::kRules, Variant("ACF"));
  a.Set(FieldAttribute::kMax, Variant(""));
  a.Set(FieldAttribute::kRequired, Variant("H"));
  a.SetLimit(LimitKind::kUsl, Limit{"f", 10});
  a.SetLimit(LimitKind::kLsl, Limit{"Q", 1});
  FieldDefinition& b = *state_->ResultField->Item(4)->RZfield();
  b.Set(FieldAttribute::kDecimals, Variant(int16_t{2}));
  SetupVariables(*state_, columns_);
  EXPECT_EQ(Field(1).Format(), "yyyy-mm-dd");
  EXPECT_EQ(columns_[0].DisplayFormat, "yyyy-mm-dd");
  EXPECT_EQ(columns_[1].DisplayFormat, "hh:mm:ss");
  EXPECT_EQ(Field(3).FieldType(), 0);  // TIME[ in the units
  EXPECT_EQ(Field(3).Format(), "hh:mm");
  EXPECT_EQ(Field(3).RuleKeys(), "ACF");
  EXPECT_FALSE(Field(3).Visible());
  EXPECT_EQ(Field(3).Limit(LimitKind::kUsl).method, 2);
  EXPECT_EQ(Field(3).Limit(LimitKind::kUsl).value, 10);
  EXPECT_EQ(Field(3).Limit(LimitKind::kLsl).method, 0);
  EXPECT_EQ(Field(3).Attribute(FieldAttribute::kMax).ToDouble(), 0);
  EXPECT_EQ(Field(3).RawField(), 3);
  EXPECT_EQ(Field(4).FieldType(), 4);
  EXPECT_EQ(columns_[3].DisplayFormat, "####0.00");
  EXPECT_TRUE(Field(4).Visible());
}

// Variables 3, 4, 5 are shown in columns 3, 4, 5 with statistic 0; a
// reference list is rewritten to the columns, or emptied.
TEST_F(VariableSetupTest, ReferencesMoveToTheColumnsThatShowThem) {
  const struct Case {
    const char* calc;
    const char* rewritten;
  } cases[] = {
      {"@XBAR[V3..V5]", "@XBAR[V3..V5]"},
      {"@pop[V4,V5]", "@POP[V4,V5]"},
      {"@POP[V3,V9,V4]", "@POP[V4]"},  // V9 is not shown
      {"=V3*2", "=V3*2"},              // no list: left alone
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.calc);
    state_->DataSource->ResetRepository();
    for (const char* key : {"A", "C", "F"}) {
      state_->DataSource->RuleCatalogue().Add(key);
    }
    state_->ResultField->Item(5)->RZfield()->Set(FieldAttribute::kCalc,
                                                 Variant(c.calc));
    SetupVariables(*state_, columns_);
    ReconcileReferences(*state_, columns_);
    EXPECT_EQ(Field(5).Attribute(FieldAttribute::kCalc).ToString(),
              c.rewritten);
  }
  // Variable 4 shown with another statistic than the field's own.
  columns_[3].Statistic = 1;
  state_->DataSource->ResetRepository();
  for (const char* key : {"A", "C", "F"}) {
    state_->DataSource->RuleCatalogue().Add(key);
  }
  state_->ResultField->Item(5)->RZfield()->Set(FieldAttribute::kCalc,
                                               Variant("@POP[V3,V4]"));
  SetupVariables(*state_, columns_);
  ReconcileReferences(*state_, columns_);
  EXPECT_EQ(Field(5).Attribute(FieldAttribute::kCalc).ToString(), "");
}

TEST_F(VariableSetupTest, HeaderItemsFollowTheModeAndTheLayout) {
  SetupVariables(*state_, columns_);
  state_->SumBy = 0;
  FillRepositoryHeader(*state_, columns_);
  Repository& repository = *state_->DataSource;
  EXPECT_EQ(repository.Title(), "Test line");
  // The component's defaults: special variables 0, leading variables 2.
  EXPECT_EQ(repository.LeadingColumnCount(), 2);
  state_->SumBy = 5;
  FillRepositoryHeader(*state_, columns_);
  EXPECT_EQ(repository.SpecialColumn1(), 1);
  EXPECT_EQ(repository.SpecialColumn2(), 2);
  EXPECT_EQ(repository.SpecialColumn3(), 0);
}

class NoProgress : public RunProgress {
 public:
  void SetLabel(std::string_view) override {}
  void SetMessage(std::string_view text) override { last_message = text; }
  void SetTotal(int32_t) override {}
  void SetPosition(int32_t) override {}
  void YieldToUser() override {}
  std::string last_message;
};

TEST_F(VariableSetupTest, AnExportedRepositoryReadsBackAsAnApplication) {
  std::shared_ptr<Repository> shared_source = platform_.CreateRepository();
  Repository& source = *shared_source;
  source.SetTitle("Exported");
  source.Fields().Add("Date", 0, 10, 0, 0);
  source.Fields().Add("Time", 0, 8, 0, 0);
  source.Fields().Add("Weight", 4, 6, 2, 0);
  source.Fields().Add("Raw", 0, 5, 0, 0);
  source.SetValue(1, 1, Variant(39000.5));
  source.SetValue(1, 2, Variant(39000.5));
  source.SetValue(1, 3, Variant("12.50"));
  source.SetValue(1, 4, Variant("ab"));
  source.SetValue(2, 1, Variant(39001.25));
  source.SetValue(2, 2, Variant(39001.25));
  source.SetValue(2, 3, Variant(""));
  NoProgress progress;
  const std::string path = folder_.File("out.rzt");
  ExportRepository(*state_, source, path, progress);
  EXPECT_EQ(progress.last_message,
            path + "\r\nSaving Veltmark Data - Record 2");

  std::shared_ptr<AppFile> file = platform_.CreateAppFile();
  file->SetOpenMode(kOpenExisting);
  file->OpenApplication(path);
  ASSERT_TRUE(file->ApplicationExists());
  EXPECT_EQ(file->AppTitle(), "Exported");
  ASSERT_EQ(file->Variables().Count(), 4);
  EXPECT_EQ(file->Variables().Item(1)->TypeLetter(), "T");
  EXPECT_EQ(file->Variables().Item(1)->Length(), 8);
  EXPECT_EQ(file->Variables().Item(3)->TypeLetter(), "N");
  EXPECT_EQ(file->Variables().Item(4)->TypeLetter(), "T");  // type code 0
  ASSERT_EQ(file->RecordCount(), 2);
  file->GotoRecord(1);
  EXPECT_EQ(file->Value(1).ToString(), "2006-10-10");
  EXPECT_EQ(file->Value(2).ToString(), "12:00:00");
  EXPECT_EQ(file->Value(3).ToDouble(), 12.5);
  EXPECT_EQ(file->Value(4).ToString(), "ab");
  file->GotoRecord(2);
  EXPECT_EQ(file->Value(2).ToString(), "06:00:00");
  EXPECT_TRUE(file->Value(3).IsNull());
}

}  // namespace
}  // namespace rz
