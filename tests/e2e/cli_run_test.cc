// Copyright 2026 The Veltmark authors.
//
// `rzselect run` and `rzselect export` as a user runs them, on a small
// application imported from a CSV file and views written for each case.
// Every expected result below is worked out by hand from the eight records
// of kRecords (the day starts at 06:00, shifts are 8 hours), not by the
// code under test.

#include "e2e/cli_run.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "e2e/test_application.h"

#ifndef RZ_EXAMPLE_DIR
#error "RZ_EXAMPLE_DIR must name examples/line4"
#endif

namespace rz {
namespace {

// The application imported from kRecords with `views` in its catalogue
// (view i is cells.Vi).
class RunCommandTest : public ::testing::Test {
 protected:
  void MakeApplication(const std::vector<View>& views) {
    ASSERT_TRUE(MakeTestApplication(folder_, views));
  }

  std::string App() const { return folder_.File("cells.rzt"); }

  CliResult Run(const std::string& view, std::vector<std::string> extra = {}) {
    std::vector<std::string> args = {"run", App(),      "--view",
                                     view,  "--format", "csv"};
    args.insert(args.end(), extra.begin(), extra.end());
    return RunRzselect(args);
  }

  TempFolder folder_;
};

struct RunCase {
  const char* what;
  View view;
  std::string expected;
};

// Each case is one view run in store mode and written as CSV.
TEST_F(RunCommandTest, ViewsGiveTheResultsWorkedOutByHand) {
  const Column average = Numeric("Avg", 3, 9, 5, 2);
  const Column count = Numeric("N", 3, 2, 5, 0);
  const std::vector<RunCase> cases = {
      {"detail with a bracketed filter using Or and LIKE",
       {"Filtered",
        {kDate, kTime, Numeric("Weight", 3, 0, 2, 0), Text("Line", 4, 1)},
        {R"w("NONE","(",4,"=","A","")w", R"w("OR","",5,"LIKE","*a*",")")w",
         R"w("AND","",3,">","10","")w"}},
       "Date,Time,Weight,Line\n"
       "2024-03-01,14:00:00,14,C\n"
       "2024-03-02,06:00:00,11,A\n"
       "2024-03-04,10:00:00,15,A\n"},
      {"detail of a text cut to its field's length",
       {"Cut", {kDate, kTime, Text("Note", 5, 3)}, {}},
       "Date,Time,Note\n"
       "2024-03-01,06:00:00,\n"
       "2024-03-01,07:00:00,ok\n"
       "2024-03-01,08:30:00,\n"
       "2024-03-01,14:00:00,lat\n"
       "2024-03-02,06:00:00,\n"
       "2024-03-02,09:00:00,\n"
       "2024-03-04,10:00:00,che\n"
       "2024-03-04,23:00:00,\n"},
      {"summary by day (the day starts at 06:00)",
       {"Daily", {kDate, kTime, average, count}, {}, 5},
       "Date,Time,Avg,N\n"
       "2024-03-01,06:00:00,12.00,3\n"
       "2024-03-02,06:00:00,13.50,2\n"
       "2024-03-04,10:00:00,11.00,2\n"},
      {"summary by 8-hour shift",
       {"Shifts", {kDate, kTime, average, count}, {}, 6},
       "Date,Time,Avg,N\n"
       "2024-03-01,06:00:00,11.00,2\n"
       "2024-03-01,14:00:00,14.00,1\n"
       "2024-03-02,06:00:00,13.50,2\n"
       "2024-03-04,10:00:00,15.00,1\n"
       "2024-03-04,23:00:00,7.00,1\n"},
      // 12-hour blocks from the day start; the empty ones between the
      // first and the last are placed at their start and count nothing.
      {"summary by a specific interval with null intervals",
       {"Halves", {kDate, kTime, average, count}, {}, 10, "12:00:00", 1},
       "Date,Time,Avg,N\n"
       "2024-03-01,06:00:00,12.00,3\n"
       "2024-03-01,18:00:00,,0\n"
       "2024-03-02,06:00:00,13.50,2\n"
       "2024-03-02,18:00:00,,0\n"
       "2024-03-03,06:00:00,,0\n"
       "2024-03-03,18:00:00,,0\n"
       "2024-03-04,10:00:00,15.00,1\n"
       "2024-03-04,23:00:00,7.00,1\n"},
      {"summary by a text variable, the group without a value first",
       {"By line", {kDate, kTime, Text("Line", 4, 1), average, count}, {}, 14},
       "Date,Time,Line,Avg,N\n"
       "2024-03-01,08:30:00,,,0\n"
       "2024-03-01,06:00:00,A,12.00,3\n"
       "2024-03-01,07:00:00,B,11.67,3\n"
       "2024-03-01,14:00:00,C,14.00,1\n"},
      {"pivot without the empty pivot",
       {"Pivot", {kDate, kTime, Numeric("W_[*]", 3, 9, 5, 2, 4)}, {}, 5},
       "Date,Time,W_[A],W_[B],W_[C]\n"
       "2024-03-01,06:00:00,10.00,12.00,14.00\n"
       "2024-03-02,06:00:00,11.00,16.00,\n"
       "2024-03-04,10:00:00,15.00,7.00,\n"},
      {"pivot with the empty pivot",
       {"Pivot null",
        {kDate, kTime, Numeric("W_[*]", 3, 9, 5, 2, 4)},
        {},
        5,
        "00:00:00",
        0,
        1},
       "Date,Time,W_[NULL],W_[A],W_[B],W_[C]\n"
       "2024-03-01,06:00:00,,10.00,12.00,14.00\n"
       "2024-03-02,06:00:00,,11.00,16.00,\n"
       "2024-03-04,10:00:00,,15.00,7.00,\n"},
      {"exclude-empty drops Spare but keeps a field named Comments",
       {"Excluding",
        {kDate, kTime, Numeric("Weight", 3, 0, 2, 0), Text("Spare", 6, 1),
         Text("Comments", 6, 1)},
        {R"w("NONE","",4,"=","A","")w"},
        0,
        "00:00:00",
        0,
        0,
        1},
       "Date,Time,Weight,Comments\n"
       "2024-03-01,06:00:00,10,\n"
       "2024-03-02,06:00:00,11,\n"
       "2024-03-04,10:00:00,15,\n"},
      // The times between events are numbers, not formatted texts; the
      // record without a weight is no event and has no count.
      {"detail time between events in minutes and a count",
       {"Events",
        {kDate, kTime, Numeric("Gap", 3, 3, 8, 2), Numeric("Has", 3, 1, 1, 0)},
        {R"w("NONE","",1,"=","2024-03-01","")w"}},
       "Date,Time,Gap,Has\n"
       "2024-03-01,06:00:00,,1\n"
       "2024-03-01,07:00:00,60,1\n"
       "2024-03-01,08:30:00,,\n"
       "2024-03-01,14:00:00,420,1\n"},
  };
  std::vector<View> views;
  for (const RunCase& c : cases) views.push_back(c.view);
  MakeApplication(views);
  for (const RunCase& c : cases) {
    const CliResult run = Run(c.view.name);
    EXPECT_EQ(run.status, 0) << c.what << "\n" << run.err;
    EXPECT_EQ(run.out, c.expected) << c.what;
  }
}

TEST_F(RunCommandTest, RunTimeQuestionsAreAnsweredByParamOrStopTheCommand) {
  View asking{"Asking",
              {kDate, kTime, Text("Line", 4, 1)},
              {R"w("NONE","",4,"=","?","")w"}};
  MakeApplication({asking});
  const CliResult answered = Run("Asking", {"--param", "1=B"});
  EXPECT_EQ(answered.status, 0) << answered.err;
  EXPECT_EQ(answered.out,
            "Date,Time,Line\n"
            "2024-03-01,07:00:00,B\n"
            "2024-03-02,09:00:00,B\n"
            "2024-03-04,23:00:00,B\n");
  // No terminal to ask on: the command stops before reading, naming the
  // row and its question.
  const CliResult unanswered = Run("Asking");
  EXPECT_EQ(unanswered.status, 2);
  EXPECT_EQ(unanswered.out, "");
  EXPECT_NE(unanswered.err.find("filter row 1"), std::string::npos)
      << unanswered.err;
  EXPECT_NE(unanswered.err.find("Where  [Line]  Is Equal To"),
            std::string::npos)
      << unanswered.err;
  for (const char* bad : {"B", "x=B", "2=B", "0=B"}) {
    const CliResult run = Run("Asking", {"--param", bad});
    EXPECT_EQ(run.status, 2) << bad;
    EXPECT_NE(run.err.find("--param"), std::string::npos) << run.err;
  }
}

TEST_F(RunCommandTest, AnAtValueIsReadFromItsInputFile) {
  WriteFile(folder_.File("line.txt"), "C\r\n");
  View reading{
      "Reading",
      {kDate, kTime, Text("Line", 4, 1)},
      {"\"NONE\",\"\",4,\"=\",\"@" + folder_.File("line.txt") + "\",\"\""}};
  MakeApplication({reading});
  const CliResult run = Run("Reading");
  EXPECT_EQ(run.status, 0) << run.err;
  EXPECT_EQ(run.out, "Date,Time,Line\n2024-03-01,14:00:00,C\n");
}

TEST_F(RunCommandTest, ABeforeOpenHookAnsweringSkipreadLeavesOnlyTheFields) {
  View plain{"Plain", {kDate, kTime, Text("Line", 4, 1)}, {}};
  MakeApplication({plain});
  WriteFile(App() + ".rzx",
            "Function RZ_BeforeOpenView()\r\n"
            "  RZ_BeforeOpenView = \"skipread\"\r\n"
            "End Function\r\n");
  const CliResult skipped = Run("Plain");
  EXPECT_EQ(skipped.status, 0) << skipped.err;
  EXPECT_EQ(skipped.out, "Date,Time,Line\n");
  const CliResult unhooked = Run("Plain", {"--no-hooks"});
  EXPECT_EQ(unhooked.status, 0) << unhooked.err;
  EXPECT_EQ(std::count(unhooked.out.begin(), unhooked.out.end(), '\n'), 9);
}

// Without hooks that see the repository the command writes records as
// they come; a hook that does nothing keeps the finished repository (store
// mode) and must give the same text, in detail and summary views alike.
TEST_F(RunCommandTest, EventModeWritesTheSameRecordsAsStoreMode) {
  View daily{"Daily", {kDate, kTime, Numeric("Avg", 3, 9, 5, 2)}, {}, 5};
  View detail{"Detail",
              {kDate, kTime, Numeric("Weight", 3, 0, 5, 2), Text("Line", 4, 1),
               Text("Note", 5, 3)},
              {}};
  MakeApplication({daily, detail});
  std::vector<std::string> streamed;
  for (const char* view : {"1", "2"}) {
    for (const char* format : {"csv", "tsv", "json", "jsonl"}) {
      const CliResult run =
          RunRzselect({"run", App(), "--view", view, "--format", format});
      EXPECT_EQ(run.status, 0) << run.err;
      streamed.push_back(run.out);
    }
  }
  WriteFile(folder_.File("cells.rzt.rzx"),
            "Function RZ_AfterOpenView()\r\n  RZ_AfterOpenView = \"\"\r\n"
            "End Function\r\n");
  size_t k = 0;
  for (const char* view : {"1", "2"}) {
    for (const char* format : {"csv", "tsv", "json", "jsonl"}) {
      const CliResult stored =
          RunRzselect({"run", App(), "--view", view, "--format", format});
      const CliResult events = RunRzselect(
          {"run", App(), "--view", view, "--format", format, "--events"});
      EXPECT_EQ(stored.status, 0) << stored.err;
      EXPECT_EQ(stored.out, streamed[k]) << view << " " << format;
      EXPECT_EQ(events.out, streamed[k]) << view << " " << format;
      ++k;
    }
  }
  const CliResult table = Run("Daily", {"--events", "--format", "table"});
  EXPECT_EQ(table.status, 2);
}

// A hook that changes the delivered records is seen in the output: the
// command then writes the finished repository; --no-hooks writes the run's
// own records.
TEST_F(RunCommandTest, AHookThatChangesTheRecordsIsSeenInTheOutput) {
  View plain{"Plain", {kDate, kTime, Text("Line", 4, 1)}, {}};
  MakeApplication({plain});
  WriteFile(folder_.File("cells.rzt.rzx"),
            "Function RZ_AfterOpenView()\r\n  RZrep.Value(1, 3) = \"Z\"\r\n"
            "  RZ_AfterOpenView = \"\"\r\nEnd Function\r\n");
  const CliResult hooked = Run("Plain");
  EXPECT_EQ(hooked.status, 0) << hooked.err;
  EXPECT_NE(hooked.out.find("Date,Time,Line\n2024-03-01,06:00:00,Z\n"),
            std::string::npos)
      << hooked.out;
  const CliResult unhooked = Run("Plain", {"--no-hooks"});
  EXPECT_NE(unhooked.out.find("Date,Time,Line\n2024-03-01,06:00:00,A\n"),
            std::string::npos)
      << unhooked.out;
}

TEST_F(RunCommandTest, OutputFileIsReplacedOnlyByASuccessfulRun) {
  View daily{"Daily", {kDate, kTime, Numeric("Avg", 3, 9, 5, 2)}, {}, 5};
  MakeApplication({daily});
  const std::string target = folder_.File("out.csv");
  WriteFile(target, "old\n");
  const CliResult failed = Run("No such view", {"-o", target});
  EXPECT_EQ(failed.status, 1);
  EXPECT_EQ(ReadWholeFile(target), "old\n");
  const CliResult done = Run("Daily", {"-o", target});
  EXPECT_EQ(done.status, 0) << done.err;
  EXPECT_EQ(done.out, "");
  EXPECT_EQ(ReadWholeFile(target),
            "Date,Time,Avg\n"
            "2024-03-01,06:00:00,12.00\n"
            "2024-03-02,06:00:00,13.50\n"
            "2024-03-04,10:00:00,11.00\n");
  for (const auto& entry :
       std::filesystem::directory_iterator(folder_.File(""))) {
    EXPECT_EQ(entry.path().filename().string().find(".tmp-"), std::string::npos)
        << entry.path();
  }
}

// The exported application runs like any other: its default settings show
// every variable, so its run repeats the exported view's numbers.
TEST_F(RunCommandTest, AnExportedResultRunsAsAnApplication) {
  View daily{
      "Daily",
      {kDate, kTime, Numeric("Avg", 3, 9, 5, 2), Numeric("N", 3, 2, 5, 0)},
      {},
      5};
  MakeApplication({daily});
  const std::string exported = folder_.File("daily.rzt");
  const CliResult saved =
      RunRzselect({"export", App(), "--view", "Daily", "--to", exported});
  ASSERT_EQ(saved.status, 0) << saved.err;
  const CliResult again =
      RunRzselect({"export", App(), "--view", "Daily", "--to", exported});
  EXPECT_EQ(again.status, 1) << "an existing application is not replaced";
  const CliResult run = RunRzselect({"run", exported, "--format", "csv"});
  EXPECT_EQ(run.status, 0) << run.err;
  EXPECT_EQ(run.out,
            "Date,Time,Avg,N\n"
            "2024-03-01,06:00:00,12.00,3\n"
            "2024-03-02,06:00:00,13.50,2\n"
            "2024-03-04,10:00:00,11.00,2\n");
}

TEST_F(RunCommandTest, BadViewsAndOptionsEndWithNumberedErrors) {
  View missing{"Missing", {kDate, kTime, Numeric("Gone", 9, 0, 2, 0)}, {}};
  View unbalanced{
      "Unbalanced", {kDate, kTime}, {R"w("NONE","(",4,"=","A","")w"}};
  MakeApplication({missing, unbalanced});
  const CliResult gone = Run("Missing");
  EXPECT_EQ(gone.status, 1);
  EXPECT_NE(gone.err.find("error "), std::string::npos) << gone.err;
  const CliResult brackets = Run("Unbalanced");
  EXPECT_EQ(brackets.status, 1);
  EXPECT_NE(brackets.err.find("brackets"), std::string::npos) << brackets.err;
  const CliResult unknown = Run("Nothing like it");
  EXPECT_EQ(unknown.status, 1);
  EXPECT_NE(unknown.err.find("Nothing like it"), std::string::npos)
      << unknown.err;
  const CliResult as_of = Run("Missing", {"--as-of", "yesterday"});
  EXPECT_EQ(as_of.status, 1);
  EXPECT_NE(as_of.err.find("error 13"), std::string::npos) << as_of.err;
}

// The example application's four saved views all run; the first takes the
// last 100 records and the second has one line per day (the 500 records
// span four days that start at 06:00).
TEST(ExampleViewsTest, TheFourSavedViewsRun) {
  TempFolder folder;
  for (const auto& entry :
       std::filesystem::directory_iterator(RZ_EXAMPLE_DIR)) {
    std::filesystem::copy_file(entry.path(),
                               folder.File(entry.path().filename()));
  }
  const std::string app = folder.File("line4.rzt");
  auto lines = [](const std::string& text) {
    return std::count(text.begin(), text.end(), '\n');
  };
  const std::vector<std::vector<std::string>> runs = {
      {"--view", "1"},
      {"--view", "Daily averages by line"},
      {"--view", "3", "--as-of", "2026-01-12 12:00:00"},
      {"--view", "4", "--param", "1=A. Meyer"},
  };
  std::vector<long> counts;
  for (const std::vector<std::string>& options : runs) {
    std::vector<std::string> args = {"run", app, "--format", "csv"};
    args.insert(args.end(), options.begin(), options.end());
    const CliResult run = RunRzselect(args);
    EXPECT_EQ(run.status, 0) << options[1] << "\n" << run.err;
    counts.push_back(lines(run.out));
  }
  EXPECT_EQ(counts[0], 101);
  EXPECT_EQ(counts[1], 5);
  EXPECT_GT(counts[2], 2);
  EXPECT_GT(counts[3], 2);
  const CliResult default_view = RunRzselect({"run", app, "--format", "csv"});
  EXPECT_EQ(default_view.out,
            RunRzselect({"run", app, "--view", "1", "--format", "csv"}).out);
}

}  // namespace
}  // namespace rz
