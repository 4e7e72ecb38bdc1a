// Copyright 2026 The Veltmark authors.

#include "trace/trace_wire.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <optional>
#include <string>

namespace rz {
namespace {

TEST(TraceWireTest, EscapesEachSpecialCharacterAsItsOwnPair) {
  EXPECT_EQ(EncodeTraceLine("a\tb", "c\\", "", "x\ny\rz"),
            "a\\tb\tc\\\\\t\tx\\ny\\rz\n");
  EXPECT_EQ(EscapeTraceField("\\t"), "\\\\t");
}

TEST(TraceWireTest, RoundTripsAnyFieldText) {
  const TraceRecord cases[] = {
      {"rzselect", "RZselectClass", "Initialize", "Started"},
      {"", "", "", ""},
      {"tab\there", "lf\nhere", "cr\rhere", "crlf\r\n"},
      {"\\", "\\\\", "\\t", "ends with backslash\\"},
      {"\t\t", "\n\n\n", "\\n", "\\\n"},
      {"Grüße", "測定値", "Überprüfung", "ViewName=Mañana – 5 °C"},
      {std::string("nul\0inside", 10), "\xff\xfe", "\x01\x7f", " lead "},
      {"x", "y", "z", std::string(70000, 'm')},
  };
  for (const TraceRecord& row : cases) {
    const std::string line =
        EncodeTraceLine(row.component, row.writer, row.procedure, row.message);
    SCOPED_TRACE(line);
    EXPECT_EQ(std::count(line.begin(), line.end(), '\t'), 3);
    EXPECT_EQ(std::count(line.begin(), line.end(), '\n'), 1);
    EXPECT_EQ(line.back(), '\n');
    EXPECT_EQ(line.find('\r'), std::string::npos);
    std::optional<TraceRecord> decoded = DecodeTraceLine(line);
    ASSERT_TRUE(decoded.has_value());
    EXPECT_EQ(*decoded, row);
  }
}

TEST(TraceWireTest, DecodesALineWithOrWithoutItsLineFeed) {
  const TraceRecord expected{"a", "b\tc", "", "d"};
  EXPECT_EQ(DecodeTraceLine("a\tb\\tc\t\td"), expected);
  EXPECT_EQ(DecodeTraceLine("a\tb\\tc\t\td\n"), expected);
  // A raw carriage return is kept: only tab, line feed and backslash matter
  // for the framing.
  EXPECT_EQ(DecodeTraceLine("a\tb\tc\td\r")->message, "d\r");
}

TEST(TraceWireTest, RejectsMalformedLines) {
  struct Case {
    const char* what;
    std::string line;
  } cases[] = {
      {"empty", ""},
      {"one field", "only"},
      {"three fields", "a\tb\tc"},
      {"three fields and a line feed", "a\tb\tc\n"},
      {"five fields", "a\tb\tc\td\te"},
      {"five empty fields", "\t\t\t\t"},
      {"dangling backslash", "a\tb\tc\td\\"},
      {"dangling backslash in the first field", "a\\\tb\tc\td"},
      {"unknown escape", "a\tb\tc\td\\x"},
      {"escaped quote", "a\t\\\"\tc\td"},
      {"escape of a digit", "a\tb\t\\0\td"},
      {"two line feeds", "a\tb\tc\td\n\n"},
      {"raw line feed inside", "a\tb\nc\tc\td"},
  };
  for (const Case& row : cases) {
    EXPECT_FALSE(DecodeTraceLine(row.line).has_value()) << row.what;
  }
}

TEST(TraceWireTest, FourEmptyFieldsAreARecord) {
  EXPECT_EQ(DecodeTraceLine("\t\t\t"), (TraceRecord{"", "", "", ""}));
}

}  // namespace
}  // namespace rz
