// Copyright 2026 The Veltmark authors.

#include "core/format.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <iomanip>
#include <limits>
#include <random>
#include <string>

#include "core/date_time.h"
#include "core/error.h"
#include "support/error_number.h"

namespace rz {
namespace {

struct NumberRow {
  const char* mask;
  double value;
  const char* text;
};

void ExpectNumbers(const NumberRow* rows, size_t count) {
  for (size_t i = 0; i < count; ++i) {
    const NumberRow& row = rows[i];
    EXPECT_EQ(FormatMask::Compile(row.mask).FormatNumber(row.value), row.text)
        << row.value << " with '" << row.mask << "'";
  }
}

TEST(FormatTest, NumbersRoundHalfAwayFromZeroAtFifteenDigits) {
  const NumberRow rows[] = {
      {"0.00", 2.675, "2.68"},
      {"####0.00", 2.345, "2.35"},
      {"0.00", 1.005, "1.01"},
      {"####0.00", -0.005, "-0.01"},
      {"0.00", -0.004, "0.00"},
      {"0", 12.5, "13"},
      {"0", -12.5, "-13"},
      {"0", 0.4, "0"},
      {"0", 0.5, "1"},
      {"0.00", 0.125, "0.13"},
      {"0.0", 1.45, "1.5"},
      {"0", 2.5, "3"},
      {"0.00", 9.995, "10.00"},
      {"0.00", 0.999, "1.00"},
      {"0", 99.5, "100"},
      {"0", -0.4, "0"},
      {"0.00000000000000000", 0.1 + 0.2, "0.30000000000000000"},
      {"0", 123456789012345678.0, "123456789012346000"},
      {"0", 1e20, "100000000000000000000"},
      {"0.00", 1e-20, "0.00"},
      {"0.0", 0.05, "0.1"},
      {"0.0", 0.049999, "0.0"},
      {"0.000", 5e-4, "0.001"},
  };
  ExpectNumbers(rows, std::size(rows));
}

// The rule written out plainly: the number's text at 15 significant
// digits, rounded half away from zero at `decimals` places, by hand on the
// digits.
std::string FifteenDigitRounding(double value, int decimals) {
  char text[64];
  std::snprintf(text, sizeof text, "%.14e", std::fabs(value));
  std::string digits = std::string(1, text[0]) + std::string(text + 2, 14);
  const int point = std::atoi(std::strchr(text, 'e') + 1) + 1;
  // Digits as an integer scaled by 10^decimals, then rounded.
  std::string integer = digits;
  const int keep = std::max(point + decimals, 0);
  if (point + decimals < 0) digits = "0";  // below the last place: zero
  integer.resize(static_cast<size_t>(std::min(keep, 15)));
  while (static_cast<int>(integer.size()) < keep) integer += '0';
  if (keep < 15 && digits[static_cast<size_t>(keep)] >= '5') {
    int i = keep - 1;
    while (i >= 0 && integer[static_cast<size_t>(i)] == '9') {
      integer[static_cast<size_t>(i--)] = '0';
    }
    if (i < 0) {
      integer.insert(integer.begin(), '1');
    } else {
      ++integer[static_cast<size_t>(i)];
    }
  }
  while (static_cast<int>(integer.size()) <= decimals) integer.insert(0, "0");
  std::string result = integer.substr(0, integer.size() - decimals);
  if (decimals > 0) result += "." + integer.substr(integer.size() - decimals);
  const bool zero = integer.find_first_not_of('0') == std::string::npos;
  return (value < 0 && !zero ? "-" : "") + result;
}

TEST(FormatTest, RandomNumbersRoundAsTheirFifteenDigitText) {
  std::mt19937_64 random(20261124);
  std::uniform_real_distribution<double> magnitude(-12, 14);
  std::uniform_int_distribution<int> places(0, 6);
  for (int i = 0; i < 200000; ++i) {
    const int decimals = places(random);
    double value = std::pow(10.0, magnitude(random));
    if (i % 3 == 0) value = std::round(value * 1000) / 1000 + 0.0005;  // halves
    if (i % 2 == 0) value = -value;
    const std::string mask =
        decimals == 0 ? "0" : "0." + std::string(decimals, '0');
    ASSERT_EQ(FormatMask::Compile(mask).FormatNumber(value),
              FifteenDigitRounding(value, decimals))
        << std::setprecision(17) << value << " at " << decimals;
  }
}

// Masks of digit placeholders alone take a shorter way; a literal after
// them sends the same number the general way, which must agree.
TEST(FormatTest, PlainMasksWriteWhatTheGeneralWayWrites) {
  std::mt19937_64 random(7);
  std::uniform_real_distribution<double> magnitude(-8, 13);
  const char* const masks[] = {
      "0",  "#",     "##0.000",          ".00",        "#.00", "00000",
      "0.", "000.0", "#0.0000000000000", "#####0.0000"};
  for (const char* mask : masks) {
    const FormatMask plain = FormatMask::Compile(mask);
    const FormatMask general = FormatMask::Compile(std::string(mask) + "x");
    for (int i = 0; i < 20000; ++i) {
      double value = std::pow(10.0, magnitude(random));
      if (i % 4 == 0) value = std::round(value * 100) / 100 + 0.005;
      if (i % 5 == 0) value = std::round(value);
      if (i % 2 == 0) value = -value;
      if (i == 0) value = 0;
      if (i == 1) value = -0.0;
      ASSERT_EQ(plain.FormatNumber(value) + "x", general.FormatNumber(value))
          << mask << " " << std::setprecision(17) << value;
    }
  }
}

TEST(FormatTest, NumberPlaceholders) {
  const NumberRow rows[] = {
      {"####0.00", 1234567, "1234567.00"},  // The integer part is never cut.
      {".00", 0.5, ".50"},
      {"#.00", 0.5, ".50"},
      {"#0.00", 0.5, "0.50"},
      {".00", 12.5, "12.50"},
      {".00", -0.5, "-.50"},
      {"0.0#", 1.5, "1.5"},
      {"0.0#", 1.25, "1.25"},
      {"0.0#", 1.255, "1.26"},
      {"0.##", 5, "5."},
      {"0.#0", 1.5, "1.50"},
      {"0.#0", 1, "1.00"},
      {"#", 0, ""},
      {"#", 0.4, ""},
      {"00000", 42, "00042"},
      {"####0", 42, "42"},
      {"0", 0, "0"},
      {"0.00", 0, "0.00"},
      {"0.00", -0.0, "0.00"},
      {"0", 1.5e-300, "0"},
  };
  ExpectNumbers(rows, std::size(rows));
}

TEST(FormatTest, ThousandsGroupingAndLiterals) {
  const NumberRow rows[] = {
      {"#,##0.00", 1234567.891, "1,234,567.89"},
      {"#,##0", 999, "999"},
      {"#,##0", 1000, "1,000"},
      {"#,##0", -1234567, "-1,234,567"},
      {"#,##0", 0, "0"},
      {"#,#", 123456, "123,456"},
      {"0,000", 1, "0,001"},
      {"#,##0.00", 1e15, "1,000,000,000,000,000.00"},
      {"$#,##0.00", 1234.5, "$1,234.50"},
      {"$0", -5, "-$5"},
      {"0.00 kg", 2.5, "2.50 kg"},
      {"0,", 5, "5,"},  // No placeholder after it: a literal.
      {",0", 5, ",5"},
      {"00-00", 1234, "12-34"},
      {"0.00,", 1.5, "1.50,"},
      {"x", 12.6, "x13"},  // No placeholder: the number goes last.
      {"Total: 0%", 7, "Total: 7%"},
  };
  ExpectNumbers(rows, std::size(rows));
}

TEST(FormatTest, ExtremeValuesStillGiveDecimalText) {
  const std::string max_text =
      FormatMask::Compile("0").FormatNumber(std::numeric_limits<double>::max());
  EXPECT_EQ(max_text.size(), 309u);
  EXPECT_EQ(max_text.substr(0, 16), "1797693134862320");
  EXPECT_EQ(max_text.find_first_not_of('0', 15), std::string::npos);
  EXPECT_EQ(FormatMask::Compile("0.00").FormatNumber(
                std::numeric_limits<double>::denorm_min()),
            "0.00");
  EXPECT_EQ(FormatMask::Compile("0").FormatNumber(-1e300).size(), 302u);
}

TEST(FormatTest, EmptyMaskWritesShortestText) {
  const FormatMask mask = FormatMask::Compile("");
  EXPECT_FALSE(mask.IsDateMask());
  EXPECT_EQ(mask.Apply(0.1), "0.1");
  EXPECT_EQ(mask.Apply(1e20), "1E+20");
  EXPECT_EQ(mask.FormatNumber(-3), "-3");
  EXPECT_EQ(mask.FormatDate(39000.5), "2006-10-10 12:00:00");
}

TEST(FormatTest, DateMasks) {
  // 2006-10-10 (a Tuesday) 13:05:09.
  const double afternoon = DateSerial(2006, 10, 10) + TimeSerial(13, 5, 9);
  const double morning = DateSerial(2024, 2, 4) + TimeSerial(0, 7, 3);
  struct Row {
    const char* mask;
    double serial;
    const char* text;
  } rows[] = {
      {"yyyy-mm-dd", afternoon, "2006-10-10"},
      {"hh:mm:ss", afternoon, "13:05:09"},
      {"dd-mmm-yyyy", afternoon, "10-Oct-2006"},
      {"hh:mm:ss AMPM", afternoon, "01:05:09 PM"},
      {"hh:mm:ss AMPM", morning, "12:07:03 AM"},
      {"hh:mm:ss AMPM", DateSerial(2006, 1, 1) + 0.5, "12:00:00 PM"},
      {"dddd", afternoon, "Tuesday"},
      {"dddd", morning, "Sunday"},
      {"ddd d", morning, "Sun 4"},
      {"mmmm", afternoon, "October"},
      {"mmmm", morning, "February"},
      {"hh:mm", afternoon, "13:05"},
      {"yyyy-mm-dd hh:mm:ss", afternoon, "2006-10-10 13:05:09"},
      {"yyyy-mm-dd hh:mm:ss", 39000.99999999, "2006-10-11 00:00:00"},
      {"m/d/yy", morning, "2/4/24"},
      {"h:n:s", morning, "0:7:3"},
      {"mm:ss", afternoon, "05:09"},  // Minutes before seconds.
      {"hh mm", afternoon, "13 05"},  // Minutes after an hour.
      {"mm", afternoon, "10"},        // Month on its own.
      {"h:mm am/pm", afternoon, "1:05 pm"},
      {"h:mm Am/Pm", afternoon, "1:05 Pm"},
      {"h A/P", morning, "12 A"},
      {"h a/p", afternoon, "1 p"},
      {"YYYY-MM-DD", afternoon, "2006-10-10"},
      {"yyy", afternoon, "06y"},
      {"ddddd", afternoon, "Tuesday10"},
      {"Day d", afternoon, "10ay 10"},
      {"yyyy", kMinDateSerial, "0100"},
  };
  for (const Row& row : rows) {
    const FormatMask mask = FormatMask::Compile(row.mask);
    EXPECT_TRUE(mask.IsDateMask()) << row.mask;
    EXPECT_EQ(mask.FormatDate(row.serial), row.text) << row.mask;
    EXPECT_EQ(mask.Apply(row.serial), row.text) << row.mask;
  }
}

TEST(FormatTest, MaskKinds) {
  struct Row {
    const char* mask;
    bool date;
  } rows[] = {
      {"yyyy", true},    {"d", true},  {"hh:mm", true}, {"AMPM", true},
      {"0.00", false},   {"#", false}, {"", false},     {"abc", false},
      {"0 days", false},  // A "0" makes it a number mask.
      {"x.x", false},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(FormatMask::Compile(row.mask).IsDateMask(), row.date) << row.mask;
  }
  EXPECT_EQ(FormatMask::Compile("0 days").Apply(3), "3 days");
  EXPECT_EQ(FormatMask::Compile("yyyy").Apply(39000.5), "2006");
  EXPECT_EQ(FormatMask::Compile("0.00").Apply(39000.5), "39000.50");
}

TEST(FormatTest, MisuseAndUnrepresentableValuesRaiseErrors) {
  struct Row {
    const char* mask;
    bool as_date;
    double value;
    int number;
  } rows[] = {
      {"yyyy", false, 1, 5},
      {"0.00", true, 1, 5},
      {"0.00", false, std::numeric_limits<double>::quiet_NaN(), 6},
      {"", false, std::numeric_limits<double>::infinity(), 6},
      {"yyyy", true, kMaxDateSerial + 1, 6},
      {"hh", true, std::numeric_limits<double>::quiet_NaN(), 6},
  };
  for (const Row& row : rows) {
    const FormatMask mask = FormatMask::Compile(row.mask);
    try {
      if (row.as_date) {
        mask.FormatDate(row.value);
      } else {
        mask.FormatNumber(row.value);
      }
      ADD_FAILURE() << row.mask << ": no error";
    } catch (const Error& error) {
      EXPECT_EQ(error.Number(), row.number) << row.mask << ": " << error.what();
      if (row.number == 5) {
        EXPECT_NE(error.Description().find(row.mask), std::string::npos);
      }
    }
  }
}

TEST(FormatTest, VariantsGoThroughTheMaskByKind) {
  const FormatMask number = FormatMask::Compile("####0.00");
  const FormatMask date = FormatMask::Compile("yyyy-mm-dd");
  const FormatMask none = FormatMask::Compile("");
  struct Row {
    Variant value;
    const FormatMask* mask;
    const char* expected;
  } rows[] = {
      {Variant(), &number, ""},
      {Variant::Null(), &number, ""},
      {2.345, &number, "2.35"},
      {" 2.345 ", &number, "2.35"},     // numeric text is a number
      {"12.5abc", &number, "12.5abc"},  // other text is left alone
      {true, &number, "-1.00"},
      {int16_t{7}, &number, "7.00"},
      {Variant::Date(39000.5), &date, "2006-10-10"},
      {Variant::Date(39000.5), &number, "39000.50"},
      {Variant::Date(39000.5), &none, "2006-10-10 12:00:00"},
      {39000.5, &date, "2006-10-10"},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(Format(row.value, *row.mask), row.expected)
        << (row.value.IsNull() ? "Null" : row.value.ToString());
  }
  EXPECT_EQ(ErrorNumber([&] { Format(Variant(VariantArray{}), number); }), 13);
}

}  // namespace
}  // namespace rz
