// Copyright 2026 The Veltmark authors.

#include <gtest/gtest.h>
#include <stdlib.h>

#include <filesystem>
#include <string>
#include <vector>

#include "appfile/app_template.h"
#include "appfile/template_sections.h"
#include "appfile/template_views.h"
#include "core/codec.h"
#include "core/error.h"
#include "platform/file_system.h"
#include "support/error_number.h"

namespace rz {
namespace {

// A folder of its own for each test, removed afterwards.
class TemplateFileTest : public ::testing::Test {
 protected:
  TemplateFileTest() {
    std::string pattern =
        (std::filesystem::temp_directory_path() / "rzt-XXXXXX").string();
    folder_ = ::mkdtemp(pattern.data());
  }
  ~TemplateFileTest() override { std::filesystem::remove_all(folder_); }

  std::string Path(const std::string& name) const {
    return JoinPath(folder_, name);
  }

  std::string folder_;
};

std::shared_ptr<FieldDefinition> Variable(const std::string& name,
                                          const std::string& type,
                                          int16_t length) {
  auto field = std::make_shared<FieldDefinition>();
  field->Set(FieldAttribute::kName, Variant(name));
  field->Set(FieldAttribute::kType, Variant(type));
  field->Set(FieldAttribute::kLength, Variant(length));
  return field;
}

// A template with every key the writer knows set to a value that is not
// its default, and unknown keys and sections to carry through.
AppTemplate FullTemplate() {
  AppTemplate app;
  app.version = Variant(5.0);
  app.title = "Line 4 \xC3\xA9 \xE2\x82\xAC";  // "é €"
  app.look_back = 250;
  app.shift_hours = 7.5;
  app.shift_start = "06:30";
  app.leading_variables = 3;
  app.special_variables = {4, 1, 5};
  app.file_settings = {Variant(3.0), Variant("profile a"), Variant(-0.25)};
  app.secured_functions = "EditView,DeleteView";
  app.queries = {"SELECT 1", "SELECT 2 = 2"};
  for (int i = 0; i < kHeaderItemCount; ++i) {
    // Texts, numbers and the empty text, in turn.
    switch (i % 3) {
      case 0:
        app.items[static_cast<size_t>(i)] =
            Variant("item " + std::to_string(i));
        break;
      case 1:
        app.items[static_cast<size_t>(i)] = Variant(i * 1.5);
        break;
      default:
        app.items[static_cast<size_t>(i)] = Variant("");
    }
  }
  app.rules = {
      {"A",
       "Beyond limits",
       {{"1 point, outside", "\"3 sigma\"", "", " pad ", "a,\"b\",c", "x"},
        {1, -2.5}}},
      {"B", "Run of 7", {{"t1", "t2", "t3", "t4", "t5", "t6"}, {7, 0}}},
  };
  app.views = {{"Daily", 1}, {"Shift, by line", 4}, {"Week", 2}};
  app.default_view = 2;

  app.variables = {Variable("Date", "T", 10), Variable("Time", "T", 8)};
  auto weight = Variable("Weight", "N", 8);
  weight->Set(FieldAttribute::kDecimals, Variant(int16_t{2}));
  weight->Set(FieldAttribute::kXref, Variant("007"));  // a text, not 7
  weight->Set(FieldAttribute::kSample, Variant(int16_t{5}));
  weight->Set(FieldAttribute::kReportType, Variant("V"));
  weight->Set(FieldAttribute::kUcase, Variant("N"));
  weight->Set(FieldAttribute::kRequired, Variant("Y"));
  weight->Set(FieldAttribute::kInput, Variant("scale=COM1"));
  weight->Set(FieldAttribute::kOutput, Variant(""));
  weight->Set(FieldAttribute::kLimitMethod, Variant(int16_t{1}));
  weight->Set(FieldAttribute::kTargetMethod, Variant(int16_t{2}));
  weight->Set(FieldAttribute::kMax, Variant(999.99));
  weight->Set(FieldAttribute::kMin, Variant(-99.0));
  weight->Set(FieldAttribute::kExtra, Variant(2.5));
  weight->Set(FieldAttribute::kPopup, Variant("Low,High"));
  weight->Set(FieldAttribute::kLookup, Variant(int16_t{3}));
  weight->Set(FieldAttribute::kCompData, Variant(int16_t{-1}));
  weight->Set(FieldAttribute::kKeyId, Variant(70000.0));  // beyond 16 bits
  weight->Set(FieldAttribute::kRange, Variant(int16_t{12}));
  weight->Set(FieldAttribute::kRelation, Variant("000111000"));
  weight->Set(FieldAttribute::kHelpFile, Variant("help\\weight.txt"));
  weight->Set(FieldAttribute::kPosition, Variant(int16_t{3}));
  weight->Set(FieldAttribute::kSpare, Variant(int16_t{0}));
  weight->Set(FieldAttribute::kRules, Variant("AB"));
  weight->Set(FieldAttribute::kAvg, Variant(int16_t{4}));
  weight->Set(FieldAttribute::kUnits, Variant("kg"));
  weight->Set(FieldAttribute::kCategory, Variant("Mass"));
  weight->Set(FieldAttribute::kCalc, Variant("@XBAR[V4..V6]"));
  weight->SetLimit(LimitKind::kUsl, {"F", 12.3456});
  weight->SetLimit(LimitKind::kUcl, {"F", -0.001});
  weight->SetLimit(LimitKind::kUwl, {"C", 0});
  weight->SetLimit(LimitKind::kTgt, {"F", 10});
  weight->SetLimit(LimitKind::kLwl, {"B", 0});
  weight->SetLimit(LimitKind::kLcl, {"C", 0});
  weight->SetLimit(LimitKind::kLsl, {"F", 1e-7});
  app.variables.push_back(weight);
  app.variables.push_back(Variable("Operator", "P", 12));

  app.leading_extra = {{"COMMENT", "written by hand"}};
  app.general_extra = {{"PLANT", "North"}};
  app.rules_extra = {{"COLOUR", "red"}};
  app.views_extra = {{"SORT", "name"}};
  app.field_extra = {{}, {}, {{"GAUGE", "G-17"}}, {}};
  app.extra_sections = {{"[PRINT]", {{"HEADER", "Line 4"}, {"COPIES", "2"}}}};
  return app;
}

void ExpectSameTemplate(const AppTemplate& read, const AppTemplate& written) {
  EXPECT_EQ(read.version, written.version);
  EXPECT_EQ(read.title, written.title);
  EXPECT_EQ(read.look_back, written.look_back);
  EXPECT_EQ(read.shift_hours, written.shift_hours);
  EXPECT_EQ(read.shift_start, written.shift_start);
  EXPECT_EQ(read.leading_variables, written.leading_variables);
  EXPECT_EQ(read.special_variables, written.special_variables);
  EXPECT_EQ(read.file_settings, written.file_settings);
  EXPECT_EQ(read.secured_functions, written.secured_functions);
  EXPECT_EQ(read.queries, written.queries);
  for (int i = 0; i < kHeaderItemCount; ++i) {
    EXPECT_EQ(read.items[static_cast<size_t>(i)],
              written.items[static_cast<size_t>(i)])
        << "ITEM" << i + 1;
  }
  EXPECT_EQ(read.rules, written.rules);
  EXPECT_EQ(read.views, written.views);
  EXPECT_EQ(read.default_view, written.default_view);
  ASSERT_EQ(read.variables.size(), written.variables.size());
  for (size_t i = 0; i < read.variables.size(); ++i) {
    EXPECT_TRUE(*read.variables[i] == *written.variables[i])
        << "variable " << i + 1;
  }
  EXPECT_EQ(read.leading_extra, written.leading_extra);
  EXPECT_EQ(read.general_extra, written.general_extra);
  EXPECT_EQ(read.rules_extra, written.rules_extra);
  EXPECT_EQ(read.views_extra, written.views_extra);
  EXPECT_EQ(read.field_extra, written.field_extra);
  ASSERT_EQ(read.extra_sections.size(), written.extra_sections.size());
  EXPECT_EQ(read.extra_sections[0].header, written.extra_sections[0].header);
  EXPECT_EQ(read.extra_sections[0].entries, written.extra_sections[0].entries);
}

TEST(AppTemplateTest, EveryKeySurvivesWriteAndRead) {
  const AppTemplate written = FullTemplate();
  const std::string text = FormatAppTemplate(written);
  const std::optional<AppTemplate> read = ParseAppTemplate(text, "t.rzt");
  ASSERT_TRUE(read.has_value());
  ExpectSameTemplate(*read, written);
  // Writing what was read gives the same text again.
  EXPECT_EQ(FormatAppTemplate(*read), text);
}

TEST(AppTemplateTest, WritesTheKnownLayout) {
  const std::string text = FormatAppTemplate(FullTemplate());
  // Every line ends in CR LF; sections stand apart; "=" in column 17.
  EXPECT_EQ(text.find('\n'), text.find("\r\n") + 1);
  EXPECT_NE(text.find("[GENERAL]\r\n   VERSION      = 5\r\n"),
            std::string::npos);
  EXPECT_NE(text.find("\r\n\r\n[RULES]\r\n"), std::string::npos);
  EXPECT_NE(text.find("   RULE         = A,Beyond limits,\"1 point, outside\","
                      "\"\"\"3 sigma\"\"\",,\" pad \",\"a,\"\"b\"\",c\",x,1,"
                      "-2.5\r\n"),
            std::string::npos);
  EXPECT_NE(text.find("   DEFAULT      = 2\r\n   VIEW         = 1,Daily\r\n"),
            std::string::npos);
  // The limits follow MAX; a fixed limit carries its value in full.
  EXPECT_NE(text.find("   MAX          = 999.99\r\n   USL          = "
                      "F12.3456\r\n   UCL          = F-0.001\r\n   UWL    "
                      "      = C\r\n"),
            std::string::npos);
  EXPECT_NE(text.find("   LSL          = F1E-07\r\n   MIN          = -99\r\n"),
            std::string::npos);
  EXPECT_NE(text.find("   OUTPUT       =\r\n"), std::string::npos);
}

TEST(AppTemplateTest, HeaderItemsComeBackAsNumbersOrTexts) {
  AppTemplate app = FullTemplate();
  app.items[0] = Variant(int16_t{7});  // an Integer is stored as its text
  app.items[1] = Variant("42");        // a text that reads as a number
  app.items[2] = Variant();            // never set: not written
  const std::optional<AppTemplate> read =
      ParseAppTemplate(FormatAppTemplate(app), "t.rzt");
  ASSERT_TRUE(read.has_value());
  EXPECT_EQ(read->items[0], Variant(7.0));
  EXPECT_EQ(read->items[1], Variant(42.0));
  EXPECT_TRUE(read->items[2].IsEmpty());
  EXPECT_EQ(HeaderItemSlot(*read, "item4"), app.items[3]);
  EXPECT_EQ(HeaderItemSlot(*read, "Version"), Variant(5.0));
  EXPECT_EQ(ErrorNumber([&] { HeaderItemSlot(*read, "ITEM19"); }), 5);
}

TEST_F(TemplateFileTest, Windows1252BytesSurviveTheFile) {
  const std::string path = Path("line4.rzt");
  AppTemplate app = FullTemplate();
  WriteTextFileAtomically(path, FormatAppTemplate(app));
  const std::string bytes = ReadBinaryFile(path);
  EXPECT_NE(bytes.find("Line 4 \xE9 \x80\r\n"), std::string::npos);
  const std::optional<AppTemplate> read = ReadAppTemplate(path);
  ASSERT_TRUE(read.has_value());
  EXPECT_EQ(read->title, app.title);
}

TEST_F(TemplateFileTest, ReadsAFileMadeByAWindowsInstallation) {
  // Hand-written bytes: lower-case keys, tabs, odd spacing, comments, a
  // Windows-1252 "é", keys in another order, a last line without CR LF.
  const std::string bytes =
      "; Line 4 template\r\n"
      "[general]\r\n"
      "title=Ligne \xE9tage 4\r\n"
      "Version  =   5.0   \r\n"
      "\tLookBack\t=\t-1\r\n"
      "ShiftHours = 8\r\n"
      "ShiftStart = 22:00\r\n"
      "\r\n"
      "[Rules]\r\n"
      "Rule = A , Outside limits , , , , , , , 1 , 0\r\n"
      "[Views]\r\n"
      "View = 3 , Night shift\r\n"
      "Default = 1\r\n"
      "[Field]\r\n"
      "Type = t\r\n"
      "Name = Date\r\n"
      "Length = 10\r\n"
      "[Field]\r\n"
      "name=Time\r\n"
      "type=T\r\n"
      "length=8\r\n"
      "[FIELD]\r\n"
      "NAME = Diameter \xE9\r\n"
      "TYPE = n\r\n"
      "LENGTH = 6\r\n"
      "DECIMALS = 2\r\n"
      "USL = f 12.5\r\n"
      "LSL = c\r\n"
      "TGT = F\r\n"
      "UCL = ";
  const std::string path = Path("line4.rzt");
  WriteBinaryFileAtomically(path, bytes);
  const std::optional<AppTemplate> read = ReadAppTemplate(path);
  ASSERT_TRUE(read.has_value());
  EXPECT_EQ(read->title, "Ligne \xC3\xA9tage 4");
  EXPECT_EQ(read->version, Variant(5.0));
  EXPECT_EQ(read->look_back, -1);
  EXPECT_EQ(read->shift_hours, 8);
  EXPECT_EQ(read->shift_start, "22:00");
  ASSERT_EQ(read->rules.size(), 1u);
  EXPECT_EQ(read->rules[0].key, "A");
  EXPECT_EQ(read->rules[0].name, "Outside limits");
  EXPECT_EQ(read->rules[0].attributes.numbers[0], 1);
  EXPECT_EQ(read->views, (std::vector<ViewEntry>{{"Night shift", 3}}));
  EXPECT_EQ(read->default_view, 1);
  ASSERT_EQ(read->variables.size(), 3u);
  const FieldDefinition& diameter = *read->variables[2];
  EXPECT_EQ(diameter.Name(), "Diameter \xC3\xA9");
  EXPECT_EQ(diameter.Get(FieldAttribute::kType), Variant("N"));
  EXPECT_EQ(diameter.Get(FieldAttribute::kLength), Variant(int16_t{6}));
  EXPECT_EQ(diameter.GetLimit(LimitKind::kUsl), (Limit{"F", 12.5}));
  EXPECT_EQ(diameter.GetLimit(LimitKind::kLsl), (Limit{"C", 0}));
  EXPECT_EQ(diameter.GetLimit(LimitKind::kTgt), (Limit{"F", 0}));
  EXPECT_EQ(diameter.GetLimit(LimitKind::kUcl), (Limit{"", 0}));  // last line
  EXPECT_EQ(read->variables[0]->TypeLetter(), "T");
}

TEST_F(TemplateFileTest, WhatIsNotAnApplication) {
  struct Row {
    std::string name;
    std::string bytes;
  };
  const Row rows[] = {
      {"empty", ""},
      {"no general section", "[FIELD]\r\nNAME = x\r\n"},
      {"general without version", "[GENERAL]\r\nTITLE = x\r\n"},
      {"version in another section", "[RULES]\r\nVERSION = 5\r\n"},
      // Broken variables do not matter when it is not an application.
      {"broken but no version", "[GENERAL]\r\n[FIELD]\r\nTYPE = Q\r\n"},
      {"one line without line breaks",
       "[GENERAL] VERSION = 5 [FIELD] NAME = x"},
  };
  for (const Row& row : rows) {
    const std::string path = Path(row.name + ".rzt");
    WriteBinaryFileAtomically(path, row.bytes);
    std::optional<AppTemplate> read;
    EXPECT_EQ(ErrorNumber([&] { read = ReadAppTemplate(path); }), 0)
        << row.name;
    EXPECT_FALSE(read.has_value()) << row.name;
  }
  EXPECT_FALSE(ReadAppTemplate(Path("missing.rzt")).has_value());
  EXPECT_FALSE(ReadAppTemplate(folder_).has_value());  // a folder
}

TEST(AppTemplateTest, CorruptTemplatesNameTheLine) {
  const std::string head =
      "[GENERAL]\r\nVERSION = 5\r\n"                           // lines 1-2
      "[FIELD]\r\nNAME = Date\r\nTYPE = T\r\nLENGTH = 10\r\n"  // lines 3-6
      "[FIELD]\r\nNAME = Time\r\nTYPE = T\r\nLENGTH = 8\r\n";  // lines 7-10
  struct Row {
    std::string tail;  // from line 11 on
    int line;
    std::string problem;
  };
  const Row rows[] = {
      {"[FIELD]\r\nTYPE = N\r\nLENGTH = 5\r\n", 11, "without NAME"},
      {"[FIELD]\r\nNAME = x\r\nLENGTH = 5\r\n", 11, "without TYPE"},
      {"[FIELD]\r\nNAME = x\r\nTYPE = N\r\n", 11, "without LENGTH"},
      {"[FIELD]\r\nNAME = x\r\nTYPE = Q\r\nLENGTH = 5\r\n", 13, "'Q'"},
      {"[FIELD]\r\nNAME = x\r\nTYPE = NN\r\nLENGTH = 5\r\n", 13, "'NN'"},
      {"[FIELD]\r\nNAME = x\r\nTYPE = N\r\nLENGTH = 0\r\n", 14, "LENGTH '0'"},
      {"[FIELD]\r\nNAME = x\r\nTYPE = N\r\nLENGTH = -3\r\n", 14, "positive"},
      {"[FIELD]\r\nNAME = x\r\nTYPE = N\r\nLENGTH = 5x\r\n", 14, "positive"},
      {"[FIELD]\r\nNAME = x\r\nTYPE = N\r\nLENGTH =\r\n", 14, "positive"},
      {"[RULES]\r\nRULE = A,x,1,2,3,4,5,6,7\r\n", 12, "found 9"},
      {"[RULES]\r\nRULE = A,x,1,2,3,4,5,6,7,8,9\r\n", 12, "found 11"},
      {"[RULES]\r\nRULE = A,\"x,1,2,3,4,5,6,7,8\r\n", 12, "not closed"},
      {"[RULES]\r\nRULE = A,\"x\"y,1,2,3,4,5,6,7,8\r\n", 12, "closing quote"},
      {"[RULES]\r\nRULE = A,x,1,2,3,4,5,6,seven,8\r\n", 12, "'seven'"},
      {"[RULES]\r\nRULE = AB,x,1,2,3,4,5,6,7,8\r\n", 12, "one letter"},
      {"[RULES]\r\nRULE = ,x,1,2,3,4,5,6,7,8\r\n", 12, "one letter"},
      {"[VIEWS]\r\nVIEW = Daily\r\n", 12, "'Daily'"},
      {"[VIEWS]\r\nVIEW = 0,Daily\r\n", 12, "above 0"},
      {"[VIEWS]\r\nVIEW = x1,Daily\r\n", 12, "above 0"},
      {"[GENERAL]\r\nLOOKBACK = 40000\r\n", 12, "LOOKBACK '40000'"},
      {"[GENERAL]\r\nSHIFTHOURS = 1e999\r\n", 12, "out of range"},
      {"[FIELD]\r\nNAME = x\r\nTYPE = N\r\nLENGTH = 5\r\nUSL = F1e999\r\n", 15,
       "out of range"},
      // The first problem is the one reported.
      {"[RULES]\r\nRULE = A\r\n[FIELD]\r\nTYPE = Z\r\n", 12, "RULE"},
  };
  for (const Row& row : rows) {
    try {
      ParseAppTemplate(head + row.tail, "/apps/line4.rzt");
      ADD_FAILURE() << "no error for " << row.tail;
    } catch (const Error& error) {
      EXPECT_EQ(error.Number(), 75) << row.tail;
      const std::string& text = error.Description();
      EXPECT_NE(text.find("/apps/line4.rzt"), std::string::npos) << text;
      EXPECT_NE(text.find("line " + std::to_string(row.line) + ":"),
                std::string::npos)
          << text;
      EXPECT_NE(text.find(row.problem), std::string::npos) << text;
    }
  }
}

TEST(AppTemplateTest, AnApplicationNeedsTheDateAndTimeVariables) {
  const std::string text =
      "[GENERAL]\r\nVERSION = 5\r\n[FIELD]\r\nNAME = Date\r\nTYPE = T\r\n"
      "LENGTH = 10\r\n";
  try {
    ParseAppTemplate(text, "one.rzt");
    ADD_FAILURE() << "no error";
  } catch (const Error& error) {
    EXPECT_EQ(error.Number(), 75);
    EXPECT_NE(error.Description().find("defines 1 variables"),
              std::string::npos);
  }
}

TEST(AppTemplateTest, ADefaultBeyondTheViewsMeansNone) {
  const std::string text =
      "[GENERAL]\r\nVERSION = 5\r\n[VIEWS]\r\nDEFAULT = 3\r\nVIEW = 1,a\r\n"
      "[FIELD]\r\nNAME = d\r\nTYPE = T\r\nLENGTH = 10\r\n"
      "[FIELD]\r\nNAME = t\r\nTYPE = T\r\nLENGTH = 8\r\n";
  const std::optional<AppTemplate> read = ParseAppTemplate(text, "x.rzt");
  ASSERT_TRUE(read.has_value());
  EXPECT_EQ(read->default_view, 0);
}

TEST(RuleValueTest, TextsWithCommasAndQuotesRoundTrip) {
  const std::vector<std::string> texts = {
      "",         ",",      "\"",
      "\"\"",     " lead",  "trail ",
      "a, \"b\"", "x\"y,z", "\xE2\x82\xAC,\xC3\xA9"};
  for (const std::string& text : texts) {
    Rule rule{"Z", text, {{text, "", text, "a", text, "b"}, {-1.25, 1e20}}};
    Rule read;
    std::string problem;
    ASSERT_TRUE(ParseRuleValue(FormatRuleValue(rule), read, problem))
        << "[" << text << "] " << problem;
    EXPECT_EQ(read, rule) << "[" << text << "]";
  }
}

TEST(RuleValueTest, ReadsHandWrittenSpacing) {
  Rule rule;
  std::string problem;
  ASSERT_TRUE(ParseRuleValue("B ,  \"a, b\"  , plain text ,,\"\",x,y,z,  2.5 ,",
                             rule, problem))
      << problem;
  EXPECT_EQ(rule.key, "B");
  EXPECT_EQ(rule.name, "a, b");
  EXPECT_EQ(rule.attributes.texts,
            (std::array<std::string, 6>{"plain text", "", "", "x", "y", "z"}));
  EXPECT_EQ(rule.attributes.numbers, (std::array<double, 2>{2.5, 0}));
}

TEST(ViewValueTest, NumberThenName) {
  struct Row {
    std::string value;
    bool ok;
    ViewEntry view;
  };
  const Row rows[] = {
      {"1,Daily", true, {"Daily", 1}},
      {" 12 , Two, commas ", true, {"Two, commas", 12}},
      {"2147483647,max", true, {"max", 2147483647}},
      {"7,", true, {"", 7}},
      {"2147483648,too big", false, {}},
      {"-1,x", false, {}},
      {"1.5,x", false, {}},
      {",x", false, {}},
      {"5", false, {}},
  };
  for (const Row& row : rows) {
    ViewEntry view;
    std::string problem;
    EXPECT_EQ(ParseViewValue(row.value, view, problem), row.ok) << row.value;
    if (row.ok) {
      EXPECT_EQ(view, row.view) << row.value;
    }
  }
}

// --- The catalogue's own rewrite ---

TEST(ReplaceViewCatalogueTest, ChangesOnlyTheCatalogueLines) {
  const std::string before =
      "; kept comment\r\n"
      "[GENERAL]\r\n"
      "  VERSION=5.0\r\n"
      "\r\n"
      "[VIEWS]\r\n"
      "  SORT = name\r\n"
      "DEFAULT = 1\r\n"
      "VIEW=1,Old one\r\n"
      "; comment inside\r\n"
      "VIEW=2,Old two\r\n"
      "\r\n"
      "[FIELD]\r\n"
      "NAME   =Date\r\n";
  const std::string after =
      ReplaceViewCatalogue(before, {{"New \xC3\xA9", 5}, {"Old one", 1}}, 2);
  EXPECT_EQ(after,
            "; kept comment\r\n"
            "[GENERAL]\r\n"
            "  VERSION=5.0\r\n"
            "\r\n"
            "[VIEWS]\r\n"
            "  SORT = name\r\n"
            "   DEFAULT      = 2\r\n"
            "   VIEW         = 5,New \xE9\r\n"
            "   VIEW         = 1,Old one\r\n"
            "; comment inside\r\n"
            "\r\n"
            "[FIELD]\r\n"
            "NAME   =Date\r\n");
}

TEST(ReplaceViewCatalogueTest, AddsASectionWhereNoneIs) {
  struct Row {
    std::string name;
    std::string before;
    std::string after;
  };
  const Row rows[] = {
      {"before the first field",
       "[GENERAL]\r\nVERSION = 5\r\n\r\n[FIELD]\r\nNAME = d\r\n",
       "[GENERAL]\r\nVERSION = 5\r\n\r\n[VIEWS]\r\n   DEFAULT      = 0\r\n"
       "   VIEW         = 1,a\r\n\r\n[FIELD]\r\nNAME = d\r\n"},
      {"at the end, last line without its end", "[GENERAL]\r\nVERSION = 5",
       "[GENERAL]\r\nVERSION = 5\r\n\r\n[VIEWS]\r\n   DEFAULT      = 0\r\n"
       "   VIEW         = 1,a\r\n"},
      {"lines ending in LF alone keep it", "[GENERAL]\nVERSION = 5\n",
       "[GENERAL]\nVERSION = 5\n\n[VIEWS]\n   DEFAULT      = 0\n"
       "   VIEW         = 1,a\n"},
      {"an empty header at the end gets its lines",
       "[GENERAL]\r\nVERSION = 5\r\n[VIEWS]",
       "[GENERAL]\r\nVERSION = 5\r\n[VIEWS]\r\n   DEFAULT      = 0\r\n"
       "   VIEW         = 1,a\r\n"},
      {"a second [VIEWS] section loses its catalogue lines",
       "[VIEWS]\r\nDEFAULT = 1\r\n[VIEWS]\r\nVIEW = 9,x\r\nKEEP = 1\r\n",
       "[VIEWS]\r\n   DEFAULT      = 0\r\n   VIEW         = 1,a\r\n"
       "[VIEWS]\r\nKEEP = 1\r\n"},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(ReplaceViewCatalogue(row.before, {{"a", 1}}, 0), row.after)
        << row.name;
  }
}

TEST(ReplaceViewCatalogueTest, AnEmptyCatalogueKeepsItsDefaultLine) {
  const std::string text = FormatAppTemplate(FullTemplate());
  const std::string after =
      ReplaceViewCatalogue(EncodeWindows1252(text), {}, 0);
  const std::optional<AppTemplate> read =
      ParseAppTemplate(DecodeWindows1252(after), "t.rzt");
  ASSERT_TRUE(read.has_value());
  EXPECT_TRUE(read->views.empty());
  EXPECT_EQ(read->default_view, 0);
  EXPECT_EQ(read->views_extra, FullTemplate().views_extra);
}

}  // namespace
}  // namespace rz
