// Copyright 2026 The Veltmark authors.

#include "platform/list_rows.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>

namespace rz {
namespace {

constexpr int32_t kMax = std::numeric_limits<int32_t>::max();
constexpr int32_t kMin = std::numeric_limits<int32_t>::min();
constexpr double kInf = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

TEST(ListRowsTest, LastVisibleRow) {
  struct Row {
    double row_height;
    double client_height;
    int32_t top_row;
    int32_t last_row;
  };
  const Row rows[] = {
      {15, 150, 1, 10},  // exactly 10 rows
      {15, 150, 0, 9},
      {15, 150, -5, 4},
      {10, 104, 5, 14},     // 10.4 rows -> 10
      {10, 106, 5, 15},     // 10.6 rows -> 11
      {10, 115, 0, 11},     // 11.5 -> 12 (even)
      {10, 125, 0, 11},     // 12.5 -> 12 (even)
      {10, 5, 3, 2},        // half a row: 0.5 -> 0
      {10, 15, 3, 4},       // 1.5 -> 2
      {20, 5, 3, 2},        // a quarter row -> none
      {12.75, 204, 7, 22},  // fractional heights: 16 rows
      // Nothing measurable: no row fits, the row before the top.
      {0, 100, 5, 4},
      {-1, 100, 5, 4},
      {10, 0, 5, 4},
      {10, -50, 5, 4},
      {kNaN, 100, 5, 4},
      {10, kNaN, 5, 4},
      {kInf, 100, 5, 4},
      {10, kInf, 5, 4},
      // The ends of the 32-bit range saturate.
      {1e-300, 1e300, 0, kMax},
      {10, 100, kMax, kMax},
      {10, 100, kMax - 9, kMax},
      {10, 100, kMax - 10, kMax - 1},
      {0, 100, kMin, kMin},
      {10, 100, kMin, kMin + 9},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(LastVisibleRow(row.row_height, row.client_height, row.top_row),
              row.last_row)
        << "row height " << row.row_height << ", client height "
        << row.client_height << ", top row " << row.top_row;
  }
}

}  // namespace
}  // namespace rz
