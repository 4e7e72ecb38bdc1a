// Copyright 2026 The Veltmark authors.
//
// ErrorNumber runs an action and returns the number of the rz::Error it
// raised, or 0 when it raised none (other exceptions pass through), so a
// test can write EXPECT_EQ(ErrorNumber([&] { list.Item(0); }), 5).

#ifndef RZ_SUPPORT_ERROR_NUMBER_H_
#define RZ_SUPPORT_ERROR_NUMBER_H_

#include <cstdint>
#include <functional>

#include "core/error.h"

namespace rz {

inline int32_t ErrorNumber(const std::function<void()>& action) {
  try {
    action();
  } catch (const Error& error) {
    return error.Number();
  }
  return 0;
}

}  // namespace rz

#endif  // RZ_SUPPORT_ERROR_NUMBER_H_
