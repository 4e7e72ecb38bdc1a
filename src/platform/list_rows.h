// Copyright 2026 The Veltmark authors.
//
// LastVisibleRow: the index of the last row a list box shows, from the
// height of one row, the height of its client area and the index of its top
// row. The wizard's list pages use it to keep the selected row in view.
// Never throws.

#ifndef RZ_PLATFORM_LIST_ROWS_H_
#define RZ_PLATFORM_LIST_ROWS_H_

#include <cmath>
#include <cstdint>
#include <limits>

namespace rz {

// top_row + the number of rows that fit - 1, where the rows that fit are
// client_height / row_height rounded to the nearest whole number, halves to
// even (2.5 rows -> 2, 3.5 -> 4). When nothing can be measured (a row
// height or client height of 0 or less, or not a finite number) no row
// fits and the result is top_row - 1, the row before the top: a caller
// walking rows top_row..result then walks none. The result saturates at
// the ends of the 32-bit range.
inline int32_t LastVisibleRow(double row_height, double client_height,
                              int32_t top_row) {
  double rows = 0;
  if (row_height > 0 && client_height > 0 && std::isfinite(row_height) &&
      std::isfinite(client_height)) {
    rows = std::nearbyint(client_height / row_height);
  }
  const double last = static_cast<double>(top_row) + rows - 1;
  constexpr double kLowest = std::numeric_limits<int32_t>::min();
  constexpr double kHighest = std::numeric_limits<int32_t>::max();
  if (!(last < kHighest)) return std::numeric_limits<int32_t>::max();
  if (last < kLowest) return std::numeric_limits<int32_t>::min();
  return static_cast<int32_t>(last);
}

}  // namespace rz

#endif  // RZ_PLATFORM_LIST_ROWS_H_
