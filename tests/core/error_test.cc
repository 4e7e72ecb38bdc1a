// Copyright 2026 The Veltmark authors.

#include "core/error.h"

#include <gtest/gtest.h>

namespace rz {
namespace {

TEST(ErrorTest, FactoriesCarryNumberDescriptionAndSource) {
  struct Case {
    Error error;
    int32_t number;
    const char* description;
    const char* source;
  } cases[] = {
      {Error::ApplicationMissing(), 53,
       "The Veltmark Application specified does not exist",
       "RZSelect.Initialize"},
      {Error::ViewNotFound("Daily"), -2147221503,
       "Error - View 'Daily' not found!", "RZSelect"},
      {Error::TypeMismatch("abc"), 13, "Type mismatch: 'abc'", ""},
      {Error::NoApplication("Show"), 81,
       "No Veltmark Application is open - call Initialize first",
       "RZSelect.Show"},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(c.error.Number(), c.number) << c.description;
    EXPECT_EQ(c.error.Description(), c.description);
    EXPECT_EQ(c.error.Source(), c.source) << c.description;
  }
}

TEST(ErrorTest, WhatNamesNumberDescriptionAndSource) {
  EXPECT_STREQ(Error::ViewNotFound("X").what(),
               "error -2147221503: Error - View 'X' not found! (RZSelect)");
  EXPECT_STREQ(Error::InvalidUseOfNull().what(),
               "error 94: Invalid use of Null");
}

TEST(ErrorTest, WithSourceKeepsAnExistingSource) {
  EXPECT_EQ(Error::TypeMismatch("x").WithSource("Here").Source(), "Here");
  EXPECT_EQ(Error::ApplicationMissing().WithSource("Here").Source(),
            "RZSelect.Initialize");
}

}  // namespace
}  // namespace rz
