// Copyright 2026 The Veltmark authors.
//
// The hand-made application of docs/formats.md opens: the test reads the
// template and the SQL straight out of the document, so the document stays
// true.

#include <gtest/gtest.h>
#include <sqlite3.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

#include "appfile/application_file.h"
#include "core/date_time.h"
#include "support/temp_folder.h"

#ifndef RZ_FORMATS_DOC
#error "RZ_FORMATS_DOC must name docs/formats.md"
#endif

namespace rz {
namespace {

// The first fenced block after the line `marker`.
std::string BlockAfter(const std::string& document, const std::string& marker) {
  const size_t at = document.find(marker);
  if (at == std::string::npos) return "";
  const size_t open = document.find("```", at);
  const size_t start = document.find('\n', open) + 1;
  const size_t close = document.find("\n```", start);
  return document.substr(start, close - start + 1);
}

std::string WithCrLf(const std::string& text) {
  std::string out;
  for (char c : text) {
    if (c == '\n') out += '\r';
    out += c;
  }
  return out;
}

TEST(HandMadeApplicationTest, TheDocumentedApplicationOpens) {
  std::ifstream doc(RZ_FORMATS_DOC);
  std::stringstream text;
  text << doc.rdbuf();
  const std::string template_text =
      BlockAfter(text.str(), "<!-- hand-made template -->");
  const std::string sql = BlockAfter(text.str(), "<!-- hand-made data -->");
  ASSERT_FALSE(template_text.empty());
  ASSERT_FALSE(sql.empty());

  TempFolder folder;
  const std::string base = folder.File("hand");
  std::ofstream(base + ".rzt", std::ios::binary) << WithCrLf(template_text);
  sqlite3* db = nullptr;
  ASSERT_EQ(sqlite3_open((base + ".rzd").c_str(), &db), SQLITE_OK);
  char* message = nullptr;
  const int rc = sqlite3_exec(db, sql.c_str(), nullptr, nullptr, &message);
  const std::string error = message ? message : "";
  sqlite3_free(message);
  sqlite3_close(db);
  ASSERT_EQ(rc, SQLITE_OK) << error;

  ApplicationFile app;
  app.SetOpenMode(kOpenExisting);
  app.OpenApplication(base + ".rzt");
  ASSERT_TRUE(app.ApplicationExists());
  EXPECT_EQ(app.AppTitle(), "Hand made");
  ASSERT_EQ(app.Variables().Count(), 4);
  EXPECT_EQ(app.Variables().Item(3)->GetLimit(LimitKind::kUsl),
            (Limit{"F", 506}));
  ASSERT_EQ(app.RecordCount(), 3);
  app.MoveLast();
  ASSERT_TRUE(app.ReadPrevious());
  EXPECT_EQ(app.Value(3), Variant(499.87));
  EXPECT_EQ(app.Value(4), Variant("K. Okafor"));
  EXPECT_EQ(app.Value(0),
            Variant::Date(DateSerial(2026, 1, 5) + TimeSerial(6, 20, 0)));
  app.GotoRecord(2);
  EXPECT_TRUE(app.Value(3).IsNull());
}

}  // namespace
}  // namespace rz
