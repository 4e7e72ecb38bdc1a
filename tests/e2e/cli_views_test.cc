// Copyright 2026 The Veltmark authors.
//
// `rzselect views` on the example application kept in examples/line4 (a
// copy, so the tree stays as it is), through the real application-file
// component: the four saved views with the ranges they resolve to.

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "e2e/cli_run.h"

#ifndef RZ_EXAMPLE_DIR
#error "RZ_EXAMPLE_DIR must name examples/line4"
#endif

namespace rz {
namespace {

TEST(CliViewsTest, ListsTheExampleViewsWithTheirRanges) {
  TempFolder folder;
  for (const char* name : {"line4.rzt", "line4.rzd", "line4.V1", "line4.V2",
                           "line4.V3", "line4.V4"}) {
    std::filesystem::copy_file(std::string(RZ_EXAMPLE_DIR) + "/" + name,
                               folder.File(name));
  }
  const CliResult run = RunRzselect(
      {"views", folder.File("line4.rzt"), "--as-of", "2026-01-12 12:00:00"});
  ASSERT_EQ(run.status, 0) << run.err;
  EXPECT_EQ(run.err, "");
  // The example's 500 records run from 2026-01-05 06:00:00 to 2026-01-08
  // 21:56:28; on Monday the 12th the previous week (from Sunday 06:00) is
  // the 4th 06:00 to the 11th 05:59:59.
  for (const char* expected :
       {"*  1  Last 100 records", "100 Record(s) back",
        "2  Daily averages by line", "2026-01-05 06:00:00  2026-01-08 21:56:28",
        "Previous week by shift", "2026-01-04 06:00:00  2026-01-11 05:59:59",
        "4  Operator query"}) {
    EXPECT_NE(run.out.find(expected), std::string::npos) << expected << "\n"
                                                         << run.out;
  }

  const CliResult bad = RunRzselect({"views", folder.File("none.rzt")});
  EXPECT_EQ(bad.status, 1);
  EXPECT_NE(bad.err.find("error 53"), std::string::npos) << bad.err;
}

}  // namespace
}  // namespace rz
