// Copyright 2026 The Veltmark authors.

#include "view/view_file.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "core/date_time.h"
#include "core/error.h"
#include "core/text.h"
#include "platform/file_system.h"
#include "platform/trace.h"
#include "support/error_number.h"
#include "support/fake_platform.h"
#include "support/temp_folder.h"

namespace rz {
namespace {

const std::string kGoldenFolder = RZ_VIEW_TESTDATA;

std::string Golden(const std::string& name) {
  return ReadBinaryFile(kGoldenFolder + "/" + name);
}

std::vector<StatisticEntry> Catalogue() {
  return {{1, "Count", true},
          {2, "Average", true},
          {3, "Standard deviation", false},
          {4, "Cpk", false}};
}

// Stands in for the reset to the default view: every field the reader may
// set gets a value no file below uses, so a key that is not applied shows.
void TestDefaults(ViewState& state) {
  state.FilterRangeType = 0;
  state.FromType = 14;
  state.ToType = 14;
  state.FromDateTime = 45000;
  state.ToDateTime = 45001;
  state.ForwardAmount = 1;
  state.ForwardUnits = 9;
  state.BackwardAmount = 10;
  state.BackwardUnits = 9;
  state.SumBy = 0;
  state.Interval = 0;
  state.NullIntervals = 0;
  state.NullPivots = 1;
  state.ShiftDuration = 8;
  state.ShiftStart = 0;
  state.PlusMinus = 1;
  state.WeekDays = 0;
  state.YearBegins = 1;
  state.ReturnScreen = 0;
  state.ExcludeEmpty = 0;
  state.ReportType = 0;
  state.ReportHeader = "%App_Title%\r\n%View_Name%";
  state.ReportFooter = "";
  state.ReportNumericOnly = 1;
  state.ReportIncludeDetails = 0;
  state.ReportIncludeColumns = 1;
  state.ReportIncludeStatistics = 1;
  state.ReportIncludeFilter = 0;
  state.ResultField->Clear();
  state.ResultField->Add(0, 1, 0, "Date");  // the reader must drop it
  state.Where->Clear();
  state.ReportStatistics->Clear();
}

void ExpectSameField(const FieldDefinition& a, const FieldDefinition& b,
                     const std::string& where) {
  for (int i = 0; i < kFieldAttributeCount; ++i) {
    const auto attribute = static_cast<FieldAttribute>(i);
    EXPECT_EQ(a.Text(attribute), b.Text(attribute))
        << where << " " << FieldDefinition::KeyOf(attribute);
  }
  for (int i = 0; i < kLimitCount; ++i) {
    const auto limit = static_cast<LimitKind>(i);
    EXPECT_EQ(a.GetLimit(limit), b.GetLimit(limit))
        << where << " " << FieldDefinition::KeyOf(limit);
  }
}

// Compares every part of a view that the file carries.
void ExpectSameView(const ViewState& a, const ViewState& b) {
#define RZ_EXPECT_FIELD(name) EXPECT_EQ(a.name, b.name) << #name
  RZ_EXPECT_FIELD(CurrentViewName);
  RZ_EXPECT_FIELD(FilterRangeType);
  RZ_EXPECT_FIELD(FromType);
  RZ_EXPECT_FIELD(ToType);
  RZ_EXPECT_FIELD(FromDateTime);
  RZ_EXPECT_FIELD(ToDateTime);
  RZ_EXPECT_FIELD(ForwardAmount);
  RZ_EXPECT_FIELD(ForwardUnits);
  RZ_EXPECT_FIELD(BackwardAmount);
  RZ_EXPECT_FIELD(BackwardUnits);
  RZ_EXPECT_FIELD(BegDate);
  RZ_EXPECT_FIELD(EndDate);
  RZ_EXPECT_FIELD(BegText);
  RZ_EXPECT_FIELD(EndText);
  RZ_EXPECT_FIELD(SumBy);
  RZ_EXPECT_FIELD(NullIntervals);
  RZ_EXPECT_FIELD(NullPivots);
  RZ_EXPECT_FIELD(ExcludeEmpty);
  RZ_EXPECT_FIELD(ShiftDuration);
  RZ_EXPECT_FIELD(PlusMinus);
  RZ_EXPECT_FIELD(WeekDays);
  RZ_EXPECT_FIELD(YearBegins);
  RZ_EXPECT_FIELD(ReturnScreen);
  RZ_EXPECT_FIELD(ReportType);
  RZ_EXPECT_FIELD(ReportHeader);
  RZ_EXPECT_FIELD(ReportFooter);
  RZ_EXPECT_FIELD(ReportNumericOnly);
  RZ_EXPECT_FIELD(ReportIncludeDetails);
  RZ_EXPECT_FIELD(ReportIncludeColumns);
  RZ_EXPECT_FIELD(ReportIncludeStatistics);
  RZ_EXPECT_FIELD(ReportIncludeFilter);
#undef RZ_EXPECT_FIELD
  // Times of day are stored in days; the file keeps whole seconds.
  EXPECT_NEAR(a.Interval, b.Interval, 1e-9);
  EXPECT_NEAR(a.ShiftStart, b.ShiftStart, 1e-9);
  ASSERT_EQ(a.Where->Count(), b.Where->Count());
  for (int32_t i = 0; i < a.Where->Count(); ++i) {
    const WhereType& x = *a.Where->Items()[i];
    const WhereType& y = *b.Where->Items()[i];
    EXPECT_EQ(x.AndOr(), y.AndOr()) << i;
    EXPECT_EQ(x.Par1(), y.Par1()) << i;
    EXPECT_EQ(x.Variable(), y.Variable()) << i;
    EXPECT_EQ(x.Condition(), y.Condition()) << i;
    EXPECT_EQ(x.Value(), y.Value()) << i;
    EXPECT_EQ(x.Par2(), y.Par2()) << i;
  }
  ASSERT_EQ(a.ReportStatistics->Count(), b.ReportStatistics->Count());
  for (int32_t i = 0; i < a.ReportStatistics->Count(); ++i) {
    const StatType& x = *a.ReportStatistics->Items()[i];
    const StatType& y = *b.ReportStatistics->Items()[i];
    EXPECT_EQ(x.Reference(), y.Reference()) << i;
    EXPECT_EQ(x.Description(), y.Description()) << i;
    EXPECT_EQ(x.Selected(), y.Selected()) << i;
  }
  ASSERT_EQ(a.ResultField->Count(), b.ResultField->Count());
  for (int32_t i = 0; i < a.ResultField->Count(); ++i) {
    ResultFieldType& x = *a.ResultField->Items()[i];
    ResultFieldType& y = *b.ResultField->Items()[i];
    EXPECT_EQ(x.RawField(), y.RawField()) << i;
    EXPECT_EQ(x.PivotField(), y.PivotField()) << i;
    EXPECT_EQ(x.Statistic(), y.Statistic()) << i;
    ExpectSameField(*x.RZfield(), *y.RZfield(), "column " + std::to_string(i));
  }
}

class ViewFileTest : public ::testing::Test {
 protected:
  ViewFileTest() : platform_(std::make_shared<FakePlatform>()) {
    app_path_ = folder_.File("line4.rzt");
    FakeApplication& app = platform_->AddApplication(app_path_);
    app.AddVariable("Date", "T", 10);
    app.AddVariable("Time", "T", 8);
    app.AddVariable("Weight", "N", 6, 2);
    app.AddVariable("Operator", "T", 12);
    app.AddVariable("Line", "P", 4);
    app.AddVariable("Temperature", "A", 5, 1);
    app.AddVariable("Yield", "C", 3);
    app.AddVariable("Gap", "R", 3, 5);
    app.AddVariable("Batch", "L", 10);
    app.rules = {{"A", "Beyond Limits", {}}, {"B", "Run of 7", {}}};
    // Tracing stays on for the thread once a sink was found at its first
    // trace, so every test here keeps one running.
    platform_->SetTraceSinkRunning(true);
    hooks_.set_defaults = TestDefaults;
    hooks_.statistics_catalogue = Catalogue;
    hooks_.finish_load = [this](ViewState&) {
      ++finish_calls_;
      return finish_result_;
    };
    state_ = OpenState();
  }

  std::shared_ptr<ViewState> OpenState() {
    auto state = NewViewState(platform_);
    std::shared_ptr<AppFile> file = platform_->CreateAppFile();
    file->SetOpenMode(kOpenExisting);
    file->OpenApplication(app_path_);
    state->AppFile = file;
    return state;
  }

  void SetViews(std::vector<ViewEntry> views) {
    platform_->Disk()[app_path_].views = std::move(views);
  }

  std::string Base() const { return folder_.File("line4"); }

  // Puts `bytes` where view `number` lives and loads it as `name`.
  void LoadText(const std::string& bytes, const std::string& name = "V",
                int32_t number = 1) {
    SetViews({{name, number}});
    WriteBinaryFileAtomically(ViewFilePath(Base(), number), bytes);
    LoadFromView(*state_, name, hooks_);
  }

  // A file made of these lines, each ended by CR LF.
  static std::string Lines(const std::vector<std::string>& lines) {
    std::string text;
    for (const std::string& line : lines) text += line + "\r\n";
    return text;
  }

  std::string SavedText(const ViewState& state, const std::string& name) {
    const std::string base = folder_.File("out");
    SetViews({{name, 1}});
    EXPECT_TRUE(SaveFromView(state, name, base));
    return ReadBinaryFile(ViewFilePath(base, 1));
  }

  const FieldDefinition& Column(int index) {
    return *state_->ResultField->Items().at(index)->RZfield();
  }

  TempFolder folder_;
  std::shared_ptr<FakePlatform> platform_;
  std::string app_path_;
  ViewFileHooks hooks_;
  int finish_calls_ = 0;
  bool finish_result_ = true;
  std::shared_ptr<ViewState> state_;
};

// Hand-made files in the layout the writer produces, one per field type.
struct GoldenCase {
  const char* file;
  const char* title;
};
constexpr GoldenCase kGoldenCases[] = {
    {"type_t.view", "Operators"},    {"type_p.view", "Lines"},
    {"type_n.view", "Fill weights"}, {"type_a.view", "Daily averages"},
    {"type_c.view", "Yield"},        {"type_r.view", "Gaps"},
    {"type_l.view", "Batches"},
};

TEST_F(ViewFileTest, GoldenFilesReadAndWriteBackByteForByte) {
  for (const GoldenCase& golden : kGoldenCases) {
    const std::string bytes = Golden(golden.file);
    LoadText(bytes, golden.title);
    EXPECT_EQ(state_->CurrentViewName, golden.title) << golden.file;
    EXPECT_EQ(state_->ResultField->Count(), 1) << golden.file;
    EXPECT_EQ(SavedText(*state_, golden.title), bytes) << golden.file;
  }
}

TEST_F(ViewFileTest, LoadSaveLoadKeepsTheView) {
  for (const GoldenCase& golden : kGoldenCases) {
    LoadText(Golden(golden.file), golden.title);
    const std::string saved = SavedText(*state_, golden.title);
    std::shared_ptr<ViewState> again = OpenState();
    SetViews({{golden.title, 2}});
    WriteBinaryFileAtomically(ViewFilePath(Base(), 2), saved);
    LoadFromView(*again, golden.title, hooks_);
    SCOPED_TRACE(golden.file);
    ExpectSameView(*state_, *again);
  }
}

TEST_F(ViewFileTest, RoundTripDropsUnknownStatisticsAndFillsRanges) {
  LoadText(Golden("type_n.view"), "Fill weights");
  state_->ReportStatistics->Add(9, "Not in the catalogue", true);
  FieldDefinition& field = *state_->ResultField->Items()[0]->RZfield();
  field.Set(FieldAttribute::kMax, Variant(0.0));
  field.Set(FieldAttribute::kMin, Variant(0.0));
  const std::string saved = SavedText(*state_, "Fill weights");
  EXPECT_NE(saved.find("STATISTIC    = 9,1"), std::string::npos);
  std::shared_ptr<ViewState> again = OpenState();
  SetViews({{"Fill weights", 2}});
  WriteBinaryFileAtomically(ViewFilePath(Base(), 2), saved);
  LoadFromView(*again, "Fill weights", hooks_);
  // The two differences a round trip makes; the rest stays the same.
  state_->ReportStatistics->Remove(Variant(int32_t{5}));
  field.Set(FieldAttribute::kMax, Variant(999.99));
  field.Set(FieldAttribute::kMin, Variant(-99.99));
  ExpectSameView(*state_, *again);
}

TEST_F(ViewFileTest, GoldenNumericViewReadsEveryKey) {
  LoadText(Golden("type_n.view"), "Fill weights");
  const ViewState& s = *state_;
  EXPECT_EQ(s.FilterRangeType, -1);
  EXPECT_EQ(s.ToType, 14);
  EXPECT_EQ(FormatDateTime(s.ToDateTime), "2024-03-01 06:00:00");
  EXPECT_EQ(s.EndText, "2024-03-01 06:00:00");
  EXPECT_EQ(s.BackwardAmount, 100);
  EXPECT_EQ(s.FromType, 14);  // not in the file: keeps the default
  EXPECT_EQ(s.SumBy, -5);
  EXPECT_EQ(FormatTime(s.Interval), "00:15:00");
  EXPECT_EQ(s.ShiftDuration, 7.5);
  EXPECT_EQ(s.PlusMinus, -1);
  EXPECT_NEAR(s.ShiftStart * 24, 6.5, 1e-9);
  EXPECT_EQ(s.YearBegins, 4);
  EXPECT_EQ(s.ReportFooter, "Checked by\r\nQA");
  EXPECT_EQ(s.ReportHeader, "%App_Title%\r\n%View_Name%");
  ASSERT_EQ(s.Where->Count(), 2);
  EXPECT_EQ(s.Where->Items()[1]->AndOr(), 2);
  EXPECT_EQ(s.Where->Items()[1]->Value(), "A*");
  ASSERT_EQ(s.ReportStatistics->Count(), 4);
  EXPECT_EQ(s.ReportStatistics->Items()[0]->Reference(), 2);
  EXPECT_EQ(s.ReportStatistics->Items()[0]->Description(), "Average");
  EXPECT_FALSE(s.ReportStatistics->Items()[1]->Selected());
  const ResultFieldType& column = *s.ResultField->Items()[0];
  EXPECT_EQ(column.RawField(), 3);
  const FieldDefinition& field = Column(0);
  EXPECT_EQ(field.Number(FieldAttribute::kMax), 999.99);
  EXPECT_EQ(field.Number(FieldAttribute::kMin), -99.99);
  EXPECT_EQ(field.GetLimit(LimitKind::kUsl), (Limit{"F", 12.346}));
  EXPECT_EQ(field.GetLimit(LimitKind::kLsl), (Limit{"F", -7.25}));
  EXPECT_EQ(field.GetLimit(LimitKind::kUwl), (Limit{"B", 0}));
  EXPECT_EQ(field.Text(FieldAttribute::kRules), "AB");
  EXPECT_EQ(field.Text(FieldAttribute::kUnits), "g");
  EXPECT_EQ(finish_calls_, 1);
}

TEST_F(ViewFileTest, WindowsCharactersAreDecoded) {
  LoadText(Golden("type_a.view"), "Daily averages");
  EXPECT_EQ(Column(0).Text(FieldAttribute::kUnits),
            "\xC2\xB0"
            "C");
}

// --- Edge cases of the format ---

TEST_F(ViewFileTest, EmptyWhereWritesNoFilteringSection) {
  LoadText(Golden("type_t.view"), "Operators");
  EXPECT_EQ(SavedText(*state_, "Operators").find("[FILTERING]"),
            std::string::npos);
  state_->Where->Add(0, "", 4, "=", "x", "");
  EXPECT_NE(SavedText(*state_, "Operators").find("[FILTERING]\r\n   WHERE"),
            std::string::npos);
}

TEST_F(ViewFileTest, WhereOnNumericVariableKeepsTheNumber) {
  LoadText(Lines({"[FILTERING]", "WHERE = \"OR\",\"(\",3,\"=\",\"12.50\",\"\"",
                  "WHERE = \"AND\",\"\",3,\"<\",\" 7x \",\"\"",
                  "WHERE = \"x\",\"\",3,\"=\",\"?\",\"\"",
                  "WHERE = \"NONE\",\"\",3,\"=\",\"NULL\",\"\"",
                  "WHERE = \"NONE\",\"\",4,\"=\",\"12.50\",\"\"",
                  "WHERE = \"NONE\",\"\",0,\"=\",\"2024-01-01\",\")\""}));
  struct Expected {
    int16_t and_or;
    const char* par1;
    int16_t variable;
    const char* condition;
    const char* value;
    const char* par2;
  };
  const Expected rows[] = {
      {2, "(", 3, "=", "12.5", ""},       {1, "", 3, "<", "7", ""},
      {1, "", 3, "=", "?", ""},            // asks at run time
      {0, "", 3, "=", "NULL", ""},         // no value
      {0, "", 4, "=", "12.50", ""},        // text variable: as written
      {0, "", 0, "=", "2024-01-01", ")"},  // the record's date-time
  };
  ASSERT_EQ(state_->Where->Count(), 6);
  for (size_t i = 0; i < std::size(rows); ++i) {
    const WhereType& where = *state_->Where->Items()[i];
    EXPECT_EQ(where.AndOr(), rows[i].and_or) << i;
    EXPECT_EQ(where.Par1(), rows[i].par1) << i;
    EXPECT_EQ(where.Variable(), rows[i].variable) << i;
    EXPECT_EQ(where.Condition(), rows[i].condition) << i;
    EXPECT_EQ(where.Value(), rows[i].value) << i;
    EXPECT_EQ(where.Par2(), rows[i].par2) << i;
  }
}

TEST_F(ViewFileTest, WhereValueWrittenTrimmedOnlyWhenNumeric) {
  state_->Where->Add(2, "(", 3, ">", " 12.5 ", "");
  state_->Where->Add(1, "", 4, "LIKE", "a b", ")");
  const std::string text = SavedText(*state_, "V");
  EXPECT_NE(text.find("   WHERE        = \"OR\",\"(\",3,\">\",\"12.5\",\"\"\r\n"
                      "   WHERE        = \"AND\",\"\",4,\"LIKE\",\"a b\","
                      "\")\"\r\n"),
            std::string::npos)
      << text;
}

TEST_F(ViewFileTest, ShiftStartSignsReadAndWrite) {
  struct Row {
    const char* value;
    int16_t plus_minus;
    double hours;
    const char* written;
  };
  const Row rows[] = {
      {"-06:30:00", -1, 6.5, "-06:30:00"},
      {"+22:00:00", 1, 22, "+22:00:00"},
      {"01:15:30", 1, 1.2583333333, "+01:15:30"},
      {"", 1, 0, "+00:00:00"},
  };
  for (const Row& row : rows) {
    LoadText(Lines({"[OPTIONS]", std::string("SHIFTSTART = ") + row.value}));
    EXPECT_EQ(state_->PlusMinus, row.plus_minus) << row.value;
    EXPECT_NEAR(state_->ShiftStart * 24, row.hours, 1e-6) << row.value;
    EXPECT_NE(SavedText(*state_, "V")
                  .find(std::string("SHIFTSTART   = ") + row.written + "\r\n"),
              std::string::npos)
        << row.value;
  }
}

TEST_F(ViewFileTest, FixedLimitWrittenWithOneMoreDecimal) {
  auto column = state_->ResultField->Add(0, 3, 0, "Weight");
  FieldDefinition& field = *column->RZfield();
  field.Set(FieldAttribute::kLength, Variant(int16_t{6}));
  field.Set(FieldAttribute::kDecimals, Variant(int16_t{2}));
  field.SetLimit(LimitKind::kUsl, {"F", 12.3456});
  field.SetLimit(LimitKind::kLsl, {"C", 5});
  field.Set(FieldAttribute::kMax, Variant(1e7));  // wider than the picture
  const std::string text = SavedText(*state_, "V");
  EXPECT_NE(text.find("   USL          = F12.346\r\n"), std::string::npos);
  EXPECT_NE(text.find("   LSL          = C\r\n"), std::string::npos);
  EXPECT_NE(text.find("   MAX          = 10000000.000\r\n"), std::string::npos);
  EXPECT_NE(text.find("   MIN          = 0.000\r\n"), std::string::npos);
}

TEST_F(ViewFileTest, NumericColumnsWithoutRangeGetRangeDefaults) {
  LoadText(
      Lines({"[FIELD]",  "NAME = A", "TYPE = N", "LENGTH = 1", "DECIMALS = 0",
             "[FIELD]",  "NAME = B", "TYPE = c", "LENGTH = 6", "DECIMALS = 2",
             "[FIELD]",  "NAME = C", "TYPE = N", "LENGTH = 6", "DECIMALS = 2",
             "MIN = -1", "[FIELD]",  "NAME = D", "TYPE = T",   "LENGTH = 6"}));
  ASSERT_EQ(state_->ResultField->Count(), 4);
  EXPECT_EQ(Column(0).Number(FieldAttribute::kMax), 9);
  EXPECT_EQ(Column(0).Number(FieldAttribute::kMin), 0);
  EXPECT_EQ(Column(1).Text(FieldAttribute::kType), "C");  // upper-cased
  EXPECT_EQ(Column(1).Number(FieldAttribute::kMax), 999.99);
  EXPECT_EQ(Column(1).Number(FieldAttribute::kMin), -99.99);
  EXPECT_EQ(Column(2).Number(FieldAttribute::kMax), 0);  // MIN was set
  EXPECT_EQ(Column(3).Number(FieldAttribute::kMax), 0);  // not numeric
}

TEST_F(ViewFileTest, LastLineWithoutLineEndIsLost) {
  LoadText(Lines({"[OPTIONS]", "SUMMARIZEDBY = 3"}) + "WEEKSTART = 4");
  EXPECT_EQ(state_->SumBy, 3);
  EXPECT_EQ(state_->WeekDays, 0);
}

TEST_F(ViewFileTest, LfLineEndsReadLikeCrLf) {
  const std::string crlf = Lines(
      {"[OPTIONS]", "SUMMARIZEDBY = 3", "[FIELD]", "NAME = W", "TYPE = N"});
  const struct Case {
    const char* name;
    std::string bytes;
  } cases[] = {
      {"LF alone", Replace(crlf, "\r\n", "\n")},
      {"mixed",
       "[OPTIONS]\r\nSUMMARIZEDBY = 3\n[FIELD]\nNAME = W\r\n"
       "TYPE = N\n"},
  };
  for (const Case& c : cases) {
    state_->SumBy = 0;
    LoadText(c.bytes);
    EXPECT_EQ(state_->SumBy, 3) << c.name;
    ASSERT_EQ(state_->ResultField->Count(), 1) << c.name;
    EXPECT_EQ(Column(0).TypeLetter(), "N") << c.name;
  }
}

TEST_F(ViewFileTest, AFileThatHoldsNoViewIsRefusedBeforeTheReset) {
  const struct Case {
    const char* name;
    std::string bytes;
    std::string cause;
  } cases[] = {
      {"empty", "", "the view file is empty"},
      {"spaces and line ends", " \r\n\t\n", "the view file is empty"},
      {"NUL byte", std::string("[OPTIONS]\r\nA\0B=1\r\n", 17),
       "not a view file: binary data (a NUL byte at offset 12)"},
      {"no key or header", "hello\r\nworld\r\n",
       "not a view file: no line is a [SECTION] header or a KEY = value "
       "line"},
  };
  for (const Case& c : cases) {
    state_->SumBy = 42;
    state_->CurrentViewName = "Before";
    SetViews({{"V", 1}});
    const std::string path = ViewFilePath(Base(), 1);
    WriteBinaryFileAtomically(path, c.bytes);
    try {
      LoadFromView(*state_, "V", hooks_);
      ADD_FAILURE() << "no error for " << c.name;
    } catch (const Error& error) {
      EXPECT_EQ(error.Number(), 75) << c.name;
      EXPECT_EQ(error.Description(),
                "Path/File access error: '" + path + "': " + c.cause)
          << c.name;
    }
    EXPECT_EQ(state_->SumBy, 42) << c.name;  // not reset
    EXPECT_EQ(state_->CurrentViewName, "Before") << c.name;
  }
}

TEST_F(ViewFileTest, UnknownViewNameLooksForViewZero) {
  SetViews({{"Other", 5}});
  WriteBinaryFileAtomically(Base() + ".V0",
                            Lines({"[OPTIONS]", "YEARSTART=7"}));
  LoadFromView(*state_, "Nameless", hooks_);
  EXPECT_EQ(state_->YearBegins, 7);
  EXPECT_EQ(state_->CurrentViewName, "Nameless");
}

TEST_F(ViewFileTest, ViewNumberMatchesNamesIgnoringCase) {
  SetViews({{"Daily", 4}, {"DAILY", 9}, {"Weekly", 2}});
  EXPECT_EQ(ViewNumber(*state_->AppFile, "daily", false), 4);
  EXPECT_EQ(ViewNumber(*state_->AppFile, "daily", true), 9);
  EXPECT_EQ(ViewNumber(*state_->AppFile, "weekly", true), 2);
  EXPECT_EQ(ViewNumber(*state_->AppFile, "monthly", false), 0);
  EXPECT_EQ(ViewFilePath("/data/LINE4", 3), "/data/LINE4.V3");
}

TEST_F(ViewFileTest, ReaderFindsLowerCaseExtensionAndWriterKeepsIt) {
  SetViews({{"V", 3}});
  WriteBinaryFileAtomically(Base() + ".v3",
                            Lines({"[OPTIONS]", "YEARSTART=5"}));
  LoadFromView(*state_, "V", hooks_);
  EXPECT_EQ(state_->YearBegins, 5);
  ASSERT_TRUE(SaveFromView(*state_, "V", Base()));
  EXPECT_FALSE(FileExists(Base() + ".V3"));  // no stale twin beside it
  EXPECT_NE(ReadBinaryFile(Base() + ".v3").find("YEARSTART    = 5"),
            std::string::npos);
}

TEST_F(ViewFileTest, MissingViewRaisesAndLeavesTheStateAlone) {
  SetViews({{"Gone", 8}});
  state_->SumBy = 42;
  state_->CurrentViewName = "Before";
  try {
    LoadFromView(*state_, "Gone", hooks_);
    FAIL() << "no error";
  } catch (const Error& error) {
    EXPECT_EQ(error.Number(), Error::kViewNotFound);
    EXPECT_EQ(error.Description(), "Error - View 'Gone' not found!");
    EXPECT_EQ(error.Source(), "RZSelect");
    EXPECT_EQ(error.File(), Base() + ".V8");
  }
  EXPECT_EQ(state_->SumBy, 42);
  EXPECT_EQ(state_->CurrentViewName, "Before");
}

TEST_F(ViewFileTest, StatisticsAreCompletedFromTheCatalogue) {
  LoadText(Lines({"[STATISTICS]", "STATISTIC = 3,1", "STATISTIC = 9,1",
                  "STATISTIC = 1", "STATISTIC = 1,0"}));
  struct Row {
    int16_t reference;
    bool selected;
  };
  // 9 is not in the catalogue and "1" has no comma: both ignored. 2 and 4
  // come after, in catalogue order, with their default selection.
  const Row rows[] = {{3, true}, {1, false}, {2, true}, {4, false}};
  ASSERT_EQ(state_->ReportStatistics->Count(), 4);
  for (size_t i = 0; i < std::size(rows); ++i) {
    EXPECT_EQ(state_->ReportStatistics->Items()[i]->Reference(),
              rows[i].reference)
        << i;
    EXPECT_EQ(state_->ReportStatistics->Items()[i]->Selected(),
              rows[i].selected)
        << i;
  }
}

TEST_F(ViewFileTest, RuleLettersFollowTheApplicationsRules) {
  LoadText(Lines({"[RULES]", "RULE = run of 7", "RULE = Unknown rule",
                  "RULE = Beyond Limits", "[FIELD]", "NAME = W", "TYPE = N",
                  "RULES = ABCDx"}));
  // File A = "run of 7" = application B; B has no match; C = application A.
  EXPECT_EQ(Column(0).Text(FieldAttribute::kRules), "BA");
}

TEST_F(ViewFileTest, SelectionWritesOnlyTheKeysOfItsRangeKind) {
  struct Row {
    int32_t kind;
    const char* keys;
  };
  const Row rows[] = {
      {0, "FILTERTYPE FROMTYPE FROMDATETIME TOTYPE TODATETIME "},
      {1, "FILTERTYPE FROMTYPE FROMDATETIME FWDAMOUNT FWDUNITS "},
      {-1, "FILTERTYPE TOTYPE TODATETIME BWDAMOUNT BWDUNITS "},
      {7, ""},
  };
  for (const Row& row : rows) {
    state_->FilterRangeType = row.kind;
    const std::string text = SavedText(*state_, "V");
    const size_t begin = text.find("[SELECTION]\r\n") + 13;
    const size_t end = text.find("\r\n\r\n", begin - 2);
    std::string keys;
    for (size_t at = begin; at < end; at = text.find("\r\n", at) + 2) {
      keys += text.substr(at + 3, text.find(' ', at + 3) - at - 3) + " ";
    }
    EXPECT_EQ(keys, row.keys) << row.kind;
  }
}

TEST_F(ViewFileTest, FieldOfUnknownTypeIsOnlyAHeaderAndIsLost) {
  auto column = state_->ResultField->Add(0, 3, 0, "Odd");
  column->RZfield()->Set(FieldAttribute::kType, Variant("X"));
  const std::string text = SavedText(*state_, "Odd");
  EXPECT_EQ(text.substr(text.size() - 9), "[FIELD]\r\n");
  SetViews({{"Odd", 1}});
  WriteBinaryFileAtomically(ViewFilePath(Base(), 1), text);
  LoadFromView(*state_, "Odd", hooks_);
  EXPECT_EQ(state_->ResultField->Count(), 0);
}

TEST_F(ViewFileTest, TracesNameTheProcedures) {
  LoadText(Golden("type_t.view"), "Operators");
  SaveFromView(*state_, "Operators", folder_.File("out"));
  std::vector<std::string> seen;
  for (const auto& record : platform_->TraceRecords()) {
    if (record[1] == kWriterModule) seen.push_back(record[2] + ":" + record[3]);
  }
  const std::vector<std::string> expected = {
      "LoadFromView:ViewName=Operators", "LoadFromView:Ended",
      "SaveFromView:ViewName=Operators",
      "SaveFromView:Filename=" + folder_.File("out"), "SaveFromView:Ended"};
  EXPECT_EQ(seen, expected);
}

TEST_F(ViewFileTest, FailedCheckEndsWithoutTheEndedTrace) {
  finish_result_ = false;
  LoadText(Golden("type_t.view"), "Operators");
  EXPECT_EQ(finish_calls_, 1);
  EXPECT_EQ(platform_->TraceRecords().back()[3], "ViewName=Operators");
}

TEST_F(ViewFileTest, DefaultFinishResolvesTheRecordRange) {
  hooks_.finish_load = nullptr;
  LoadText(Lines({"[SELECTION]", "FILTERTYPE = 0", "FROMTYPE = 15",
                  "FROMDATETIME = 2024-01-01 08:00:00", "TOTYPE = 15",
                  "TODATETIME = 2024-01-02 08:00:00"}));
  EXPECT_EQ(state_->BegText, "2024-01-01 08:00:00");
  EXPECT_EQ(state_->EndText, "2024-01-02 08:00:00");
}

TEST_F(ViewFileTest, SaveThatCannotWriteShowsTheMessage) {
  EXPECT_FALSE(SaveFromView(*state_, "V", folder_.File("missing/line4")));
  const auto& log = platform_->Headless().Log();
  ASSERT_EQ(log.size(), 1u);
  EXPECT_EQ(log[0].title, "Save View");
  EXPECT_EQ(log[0].text, "Error - Problem Saving View!");
  EXPECT_EQ(log[0].icon, MessageIcon::kExclamation);
}

// --- Bad input ---

TEST_F(ViewFileTest, LenientlyReadInput) {
  LoadText(Lines({"junk line",       "[GENERAL]",       "VERSION = 9",
                  "TITLE = other",   "[MYSTERY]",       "SUMMARIZEDBY = 9",
                  "[OPTIONS]",       "FILTERTYPE = 1",  "SUMMARIZEDBY = 3.5x",
                  "WEEKSTART = abc", "YEARSTART = 2.5", "SHIFTDURATION =",
                  "NEWKEY = 5",      "[FIELD]",         "COLOR = red",
                  "NAME = First",    "TYPE = T",        "[FIELD]",
                  "LENGTH = 44",     "NAME = Second",   "TYPE = T",
                  "USL = f 1.5x"}));
  EXPECT_EQ(state_->CurrentViewName, "V");  // TITLE is not read
  EXPECT_EQ(state_->FilterRangeType, 0);    // outside its section
  EXPECT_EQ(state_->SumBy, 4);              // 3.5 rounds to even
  EXPECT_EQ(state_->WeekDays, 0);
  EXPECT_EQ(state_->YearBegins, 2);
  EXPECT_EQ(state_->ShiftDuration, 0);
  ASSERT_EQ(state_->ResultField->Count(), 2);
  // A key before the NAME of its section belongs to the column before.
  EXPECT_EQ(Column(0).Number(FieldAttribute::kLength), 44);
  EXPECT_EQ(Column(1).GetLimit(LimitKind::kUsl), (Limit{"F", 1.5}));
}

TEST_F(ViewFileTest, BadLinesRaiseNumberedErrorsNamingFileAndLine) {
  std::vector<std::string> many_rules = {"[RULES]"};
  for (int i = 1; i <= 27; ++i)
    many_rules.push_back("RULE = r" + std::to_string(i));
  struct Row {
    std::vector<std::string> lines;
    int32_t number;
    int line;
  };
  const Row rows[] = {
      {many_rules, 9, 28},
      {{"[FILTERING]", "WHERE = \"AND\",\"\",3,\"=\",\"1\""}, 9, 2},
      {{"[FIELD]", "TYPE = N"}, 91, 2},
      {{"[SELECTION]", "", "FROMDATETIME = 2024-13-01"}, 13, 3},
      {{"[FIELD]", "NAME = A", "RAWFIELD = 40000"}, 6, 3},
      {{"[SELECTION]", "FILTERTYPE = 1e999"}, 6, 2},
      {{"[OPTIONS]", "WEEKSTART = 70000"}, 6, 2},
      {{"[SELECTION]", "BWDAMOUNT = 2147483648"}, 6, 2},
  };
  for (const Row& row : rows) {
    state_->CurrentViewName = "Before";
    SetViews({{"V", 1}});
    const std::string path = ViewFilePath(Base(), 1);
    WriteBinaryFileAtomically(path, Lines(row.lines));
    try {
      LoadFromView(*state_, "V", hooks_);
      ADD_FAILURE() << "no error for " << row.lines.back();
    } catch (const Error& error) {
      EXPECT_EQ(error.Number(), row.number) << row.lines.back();
      // The place: file, line and the key of a key line.
      const std::string key =
          row.lines.back().substr(0, row.lines.back().find(" = "));
      EXPECT_EQ(
          error.Description().rfind(
              path + ":" + std::to_string(row.line) + ": " + key + ": ", 0),
          0u)
          << error.Description();
    }
    EXPECT_EQ(state_->CurrentViewName, "Before") << row.lines.back();
  }
}

TEST_F(ViewFileTest, RulesReadBeforeTheErrorStay) {
  std::vector<std::string> lines = {"[OPTIONS]", "YEARSTART = 3", "[RULES]"};
  for (int i = 1; i <= 27; ++i) lines.push_back("RULE = r");
  SetViews({{"V", 1}});
  WriteBinaryFileAtomically(ViewFilePath(Base(), 1), Lines(lines));
  EXPECT_EQ(ErrorNumber([&] { LoadFromView(*state_, "V", hooks_); }), 9);
  EXPECT_EQ(state_->YearBegins, 3);
}

// --- Number pictures ---

TEST(FixedPointTextTest, RoundsHalfUpAndNeverCuts) {
  struct Row {
    double value;
    int decimals;
    const char* text;
  };
  const Row rows[] = {
      {2.25, 0, "2.3"},
      {-2.25, 0, "-2.2"},
      {12.3456, 2, "12.346"},
      {0, 0, "0.0"},
      {-0.04, 0, "0.0"},
      {-0.05, 0, "0.0"},
      {0.05, 0, "0.1"},
      {9.99, 0, "10.0"},
      {-9.96, 0, "-10.0"},
      {1.0005, 2, "1.001"},
      {-1.0005, 2, "-1.000"},
      {-1.00051, 2, "-1.001"},
      {1e20, 0, "100000000000000000000.0"},
      {123456.7, 2, "123456.700"},
      {0.0025, 5, "0.002500"},
      {7, -3, "7.0"},
      {0.1, 1, "0.10"},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(FixedPointText(row.value, row.decimals), row.text)
        << row.value << " " << row.decimals;
  }
}

TEST(RangeDefaultsTest, PictureOfNines) {
  struct Row {
    int length;
    int decimals;
    double max;
    double min;
  };
  const Row rows[] = {
      {6, 2, 999.99, -99.99}, {1, 0, 9, 0},    {4, 0, 9999, -999},
      {5, 1, 999.9, -99.9},   {3, 2, 0.99, 0}, {3, 5, 0.99, 0},
      {2, 1, 0.9, 0},         {1, 3, 0, 0},    {0, 0, 0, 0},
      {-2, 0, 0, 0},          {2, 0, 99, -9},
  };
  for (const Row& row : rows) {
    const RangeDefaults range = RangeDefaultsFor(row.length, row.decimals);
    EXPECT_EQ(range.max, row.max) << row.length << "," << row.decimals;
    EXPECT_EQ(range.min, row.min) << row.length << "," << row.decimals;
  }
}

TEST(RemapRuleLettersTest, KeepsOnlyMatchedRuleLetters) {
  struct Row {
    const char* letters;
    std::vector<int> positions;
    const char* result;
  };
  const Row rows[] = {
      {"AB", {1, 2}, "AB"},    {"AB", {2, 1}, "BA"}, {"ABC", {3, 0}, "C"},
      {"a-B", {1, 1}, "A"},    {"", {1}, ""},        {"Z", {1}, ""},
      {"AAB", {4, 26}, "DDZ"},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(RemapRuleLetters(row.letters, row.positions), row.result)
        << row.letters;
  }
}

}  // namespace
}  // namespace rz
