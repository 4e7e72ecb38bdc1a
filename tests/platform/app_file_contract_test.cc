// Copyright 2026 The Veltmark authors.
//
// The fake application file the engine's tests use and the real component
// must agree wherever the fake claims to behave: each writes the same small
// application through the AppFile interface and reopens it, and the same
// questions asked of both (navigation, values, ranges, distinct values,
// the detail sort pass, the errors) must give the same transcript.

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "core/error.h"
#include "platform/app_file.h"
#include "support/component_platform.h"
#include "support/fake_platform.h"
#include "support/temp_folder.h"

namespace rz {
namespace {

// One line of a transcript: what was asked and what came back.
std::string Outcome(const std::function<std::string()>& ask) {
  try {
    return ask();
  } catch (const Error& error) {
    return "error " + std::to_string(error.Number());
  }
}

std::string Text(const Variant& value) {
  if (value.IsNull()) return "Null";
  return std::string(value.TypeName()) + " " + value.ToString();
}

std::vector<std::string> Transcript(Platform& platform,
                                    const std::string& path) {
  {
    std::shared_ptr<AppFile> file = platform.CreateAppFile();
    file->SetAppTitle("Contract");
    file->Variables().Add("Date", "T", 10, 0);
    file->Variables().Add("Time", "T", 8, 0);
    file->Variables().Add("Weight", "N", 5, 1);
    file->Variables().Add("Line", "T", 4, 0);
    file->SetOpenMode(kOpenCreateNew);
    file->OpenApplication(path);
    const std::vector<std::vector<Variant>> records = {
        {"2024-03-01", "06:00:00", 10.5, "B"},
        {"2024-03-01", "07:30:00", Variant::Null(), "A"},
        {"2024-03-02", "06:00:00", 9.0, Variant::Null()},
        {"2024-03-02", "08:00:00", 11.0, "b"}};
    for (const auto& record : records) {
      file->AddRecord();
      for (size_t k = 0; k < record.size(); ++k) {
        file->SetValue(static_cast<int16_t>(k + 1), record[k]);
      }
      file->SaveRecord(0);
    }
    file->CloseApplication();
  }
  std::shared_ptr<AppFile> file = platform.CreateAppFile();
  file->SetOpenMode(kOpenExisting);
  file->OpenApplication(path);
  std::vector<std::string> lines;
  auto ask = [&](const std::string& what, std::function<std::string()> f) {
    lines.push_back(what + " -> " + Outcome(f));
  };
  ask("ClassName", [&] { return std::string(file->ClassName()); });
  ask("AppTitle", [&] { return file->AppTitle(); });
  ask("RecordCount", [&] { return std::to_string(file->RecordCount()); });
  ask("Variables", [&] { return std::to_string(file->Variables().Count()); });
  ask("Value before a record", [&] { return Text(file->Value(3)); });
  file->MoveFirst();
  for (int step = 0; step < 5; ++step) {
    ask("ReadNext", [&] {
      if (!file->ReadNext()) return std::string("false");
      return Text(file->Value(0)) + " | " + Text(file->Value(3)) + " | " +
             Text(file->Value(4));
    });
  }
  file->MoveLast();
  ask("ReadPrevious",
      [&] { return file->ReadPrevious() ? Text(file->Value(1)) : "false"; });
  ask("GotoRecord 0", [&] {
    file->GotoRecord(0);
    return std::string("ok");
  });
  ask("GotoRecord 5", [&] {
    file->GotoRecord(5);
    return std::string("ok");
  });
  ask("Value 9", [&] {
    file->GotoRecord(1);
    return Text(file->Value(9));
  });
  ask("DistinctValues 4", [&] {
    std::string text;
    for (const Variant& value : file->DistinctValues(4))
      text += Text(value) + ";";
    return text;
  });
  ask("FindDateRange", [&] {
    bool found = false;
    file->FindDateRange("2024-03-01 07:00:00", "2024-03-02 06:00:00", found);
    return std::string(found ? "found " : "none ") +
           std::to_string(file->RangeFirstRecord()) + ".." +
           std::to_string(file->RangeLastRecord());
  });
  ask("SortFile by Line", [&] {
    file->SetSummarize(false);
    file->SortKeys().Reset();
    file->SortKeys().Add(4, 3);
    file->SortFile();
    std::string text;
    for (int32_t g = 1; g <= file->SummaryCursor().Count(); ++g) {
      file->GotoRecord(file->SummaryCursor().Item(g).record);
      text += Text(file->Value(4)) + ";";
    }
    return text;
  });
  return lines;
}

TEST(AppFileContractTest, TheFakeAnswersLikeTheRealComponent) {
  TempFolder folder;
  ComponentPlatform real;
  FakePlatform fake;
  const std::vector<std::string> expected =
      Transcript(real, folder.File("contract.rzt"));
  const std::vector<std::string> actual =
      Transcript(fake, folder.File("contract.rzt"));
  ASSERT_EQ(actual.size(), expected.size());
  for (size_t i = 0; i < expected.size(); ++i) {
    EXPECT_EQ(actual[i], expected[i]) << "line " << i;
  }
}

}  // namespace
}  // namespace rz
