// Copyright 2026 The Veltmark authors.
//
// Test helper for whole runs: a small application imported from a CSV text
// with the real rzselect (cells.rzt and cells.rzd in a folder), and views
// written for a test into its catalogue (view i is cells.Vi). Every view
// reads the whole file; the day starts at 06:00 and shifts are 8 hours.

#ifndef RZ_E2E_TEST_APPLICATION_H_
#define RZ_E2E_TEST_APPLICATION_H_

#include <fstream>
#include <string>
#include <utility>
#include <vector>

#include "e2e/cli_run.h"

namespace rz {

// Variables: 1 Date, 2 Time, 3 Weight (N, length 2), 4 Line (T, length 1),
// 5 Note (T, length 5), 6 Spare (T, length 1; a value in the last record
// only).
inline constexpr const char* kRecords =
    "Date,Time,Weight,Line,Note,Spare\n"
    "2024-03-01,06:00:00,10,A,,\n"
    "2024-03-01,07:00:00,12,B,ok,\n"
    "2024-03-01,08:30:00,,,,\n"
    "2024-03-01,14:00:00,14,C,late,\n"
    "2024-03-02,06:00:00,11,A,,\n"
    "2024-03-02,09:00:00,16,B,,\n"
    "2024-03-04,10:00:00,15,A,check,\n"
    "2024-03-04,23:00:00,7,B,,x\n";

struct Column {
  std::string name;
  int raw = 0;
  int statistic = 0;
  int pivot = 0;
  std::string type = "T";
  int length = 10;
  int decimals = 0;
};

struct View {
  std::string name;
  std::vector<Column> columns;
  std::vector<std::string> where;  // WHERE values as the file holds them
  int sum_by = 0;
  std::string interval = "00:00:00";
  int null_intervals = 0;
  int null_pivots = 0;
  int exclude_empty = 0;
};

inline const Column kDate{"Date", 1, 0, 0, "T", 10, 0};
inline const Column kTime{"Time", 2, 0, 0, "T", 8, 0};

inline Column Numeric(std::string name, int raw, int statistic, int length,
                      int decimals, int pivot = 0) {
  return Column{std::move(name), raw, statistic, pivot, "N", length, decimals};
}

inline Column Text(std::string name, int raw, int length) {
  return Column{std::move(name), raw, 0, 0, "T", length, 0};
}

inline std::string ViewFileText(const View& view) {
  std::string text =
      "[GENERAL]\r\n   VERSION      = 5.0\r\n   TITLE        = " + view.name +
      "\r\n\r\n[SELECTION]\r\n   FILTERTYPE   = 0\r\n   FROMTYPE     = 14\r\n"
      "   TOTYPE       = 14\r\n\r\n[FILTERING]\r\n";
  for (const std::string& row : view.where) {
    text += "   WHERE        = " + row + "\r\n";
  }
  text += "\r\n[OPTIONS]\r\n   SUMMARIZEDBY = " + std::to_string(view.sum_by) +
          "\r\n   INTERVAL     = " + view.interval +
          "\r\n   NULLINTERVALS= " + std::to_string(view.null_intervals) +
          "\r\n   NULLPIVOTS   = " + std::to_string(view.null_pivots) +
          "\r\n   SHIFTDURATION= 8\r\n   SHIFTSTART   = +06:00:00\r\n"
          "   WEEKSTART    = 0\r\n   YEARSTART    = 1\r\n"
          "   EXCLUDEEMPTY = " +
          std::to_string(view.exclude_empty) + "\r\n";
  for (const Column& column : view.columns) {
    text += "\r\n[FIELD]\r\n   NAME         = " + column.name +
            "\r\n   RAWFIELD     = " + std::to_string(column.raw) +
            "\r\n   PIVOTFIELD   = " + std::to_string(column.pivot) +
            "\r\n   STATISTIC    = " + std::to_string(column.statistic) +
            "\r\n   TYPE         = " + column.type +
            "\r\n   LENGTH       = " + std::to_string(column.length) +
            "\r\n   DECIMALS     = " + std::to_string(column.decimals) +
            "\r\n   REQUIRED     = N\r\n   UNITS        =\r\n";
  }
  return text;
}

inline void WriteFile(const std::string& path, const std::string& text) {
  std::ofstream(path, std::ios::binary) << text;
}

inline std::string TestApplicationPath(const TempFolder& folder) {
  return folder.File("cells.rzt");
}

// Imports kRecords into `folder` and puts `views` in the catalogue; false
// (with a test failure) when the import fails.
inline bool MakeTestApplication(const TempFolder& folder,
                                const std::vector<View>& views) {
  WriteFile(folder.File("cells.csv"), kRecords);
  const std::string app = TestApplicationPath(folder);
  const CliResult import =
      RunRzselect({"import", folder.File("cells.csv"), "--to", app});
  EXPECT_EQ(import.status, 0) << import.err;
  if (import.status != 0) return false;
  std::string catalogue = "[VIEWS]\r\n   DEFAULT      = 0\r\n";
  for (size_t i = 0; i < views.size(); ++i) {
    const std::string number = std::to_string(i + 1);
    catalogue += "   VIEW         = " + number + "," + views[i].name + "\r\n";
    WriteFile(folder.File("cells.V" + number), ViewFileText(views[i]));
  }
  std::string text = ReadWholeFile(app);
  const std::string empty = "[VIEWS]\r\n   DEFAULT      = 0\r\n";
  const size_t at = text.find(empty);
  EXPECT_NE(at, std::string::npos) << "no empty catalogue in " << app;
  if (at == std::string::npos) return false;
  text.replace(at, empty.size(), catalogue);
  WriteFile(app, text);
  return true;
}

}  // namespace rz

#endif  // RZ_E2E_TEST_APPLICATION_H_
