// Copyright 2026 The Veltmark authors.

#include "view/ini_file.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <fstream>
#include <string>
#include <vector>

#include "core/error.h"
#include "platform/file_system.h"
#include "support/error_number.h"
#include "support/temp_folder.h"

namespace rz {
namespace {

const std::string kTestData = RZ_INI_TESTDATA;

struct Fields {
  std::string group, section, value;
  bool operator==(const Fields&) const = default;
};

std::ostream& operator<<(std::ostream& out, const Fields& f) {
  return out << "(" << f.group << "|" << f.section << "|" << f.value << ")";
}

std::vector<Fields> FieldsOf(INIfile& file) {
  std::vector<Fields> fields;
  for (const auto& line : file.INIlines()->Lines()) {
    fields.push_back({line->Group(), line->Section(), line->Value()});
  }
  return fields;
}

// Loads `bytes` as a file's content through a temporary file.
std::vector<Fields> LoadBytes(const std::string& bytes) {
  TempFolder folder;
  const std::string path = folder.File("doc.ini");
  WriteBinaryFileAtomically(path, bytes);
  INIfile file;
  file.LoadFile(path);
  return FieldsOf(file);
}

// Loads `bytes` and saves the document with the defaults; the saved bytes.
std::string LoadAndSave(const std::string& bytes) {
  TempFolder folder;
  WriteBinaryFileAtomically(folder.File("in.ini"), bytes);
  INIfile file;
  file.LoadFile(folder.File("in.ini"));
  EXPECT_TRUE(file.SaveFile(folder.File("out.ini")));
  return ReadBinaryFile(folder.File("out.ini"));
}

// --- Loading ---------------------------------------------------------------

TEST(INIfileLoadTest, ParsesHeadersKeysAndIgnoredLines) {
  const struct Case {
    const char* name;
    std::string bytes;
    std::vector<Fields> expected;
  } cases[] = {
      {"three lines",
       "[A]\r\nx=1\r\ny = a=b\r\n",
       {{"[A]", "", ""}, {"[A]", "X", "1"}, {"[A]", "Y", "a=b"}}},
      {"comment", "; note\r\n", {{"", "", ""}}},
      {"stray text", "hello world\r\n", {{"", "", ""}}},
      {"tabs are spaces", "KEY\t=\t5\r\n", {{"", "KEY", "5"}}},
      {"key before any header keeps no group",
       "k=v\r\n[G]\r\n",
       {{"", "K", "v"}, {"[G]", "", ""}}},
      {"header is upper-cased, brackets kept",
       "  [view 3]  \r\nname=x\r\n",
       {{"[VIEW 3]", "", ""}, {"[VIEW 3]", "NAME", "x"}}},
      {"blank lines", "\r\n  \r\n", {{"", "", ""}, {"", "", ""}}},
      {"empty value", "A=\r\n", {{"", "A", ""}}},
      {"empty key is no data", "=5\r\n", {{"", "", ""}}},
      {"latin-1 key is upper-cased",
       "caf\xe9=\xe9t\xe9\r\n",
       {{"", "CAF\xc3\x89", "\xc3\xa9t\xc3\xa9"}}},
      {"group changes at each header",
       "[A]\r\na=1\r\n[B]\r\nb=2\r\n",
       {{"[A]", "", ""},
        {"[A]", "A", "1"},
        {"[B]", "", ""},
        {"[B]", "B", "2"}}},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(LoadBytes(c.bytes), c.expected) << c.name;
  }
}

TEST(INIfileLoadTest, AcceptsEveryLineEndAndDropsAnUnendedLastLine) {
  const struct Case {
    const char* name;
    std::string bytes;
    std::vector<std::string> keys;  // Section of each loaded line
  } cases[] = {
      {"CR LF", "a=1\r\nb=2\r\n", {"A", "B"}},
      {"LF alone throughout", "a=1\nb=2\n", {"A", "B"}},
      {"LF alone, unended last line", "a=1\nb=2", {"A"}},
      {"CR alone ends nothing", "a=1\rb=2\r", {}},
      // A lone LF ends a line in any file; a lone CR is part of the line.
      {"lone LF inside a CR LF file", "a=1\nb=2\r\nc=3\r\n", {"A", "B", "C"}},
      {"CR LF, then LF alone", "[G]\r\na=1\nb=2\n", {"", "A", "B"}},
      {"lone CR inside a CR LF file", "a=1\rb=2\r\n", {"A"}},
      {"no final line end", "a=1\r\nb=2", {"A"}},
      {"only an unended line", "a=1", {}},
      {"empty file", "", {}},
      {"one empty line", "\r\n", {""}},
  };
  for (const Case& c : cases) {
    std::vector<std::string> keys;
    for (const Fields& f : LoadBytes(c.bytes)) keys.push_back(f.section);
    EXPECT_EQ(keys, c.keys) << c.name;
  }
}

TEST(INIfileLoadTest, MissingFileGivesAnEmptyDocumentWithoutError) {
  TempFolder folder;
  INIfile file;
  file.INIlines()->Add("[OLD]", "", "");
  EXPECT_EQ(ErrorNumber([&] { file.LoadFile(folder.File("none.ini")); }), 0);
  EXPECT_EQ(file.INIlines()->Count(), 0);
}

TEST(INIfileLoadTest, UnreadableFileRaisesAnErrorNamingIt) {
  TempFolder folder;
  const std::string path = folder.File("a_folder.ini");
  ASSERT_EQ(::mkdir(path.c_str(), 0755), 0);
  INIfile file;
  file.INIlines()->Add("[OLD]", "", "");
  try {
    file.LoadFile(path);
    FAIL() << "no error";
  } catch (const Error& error) {
    EXPECT_EQ(error.Number(), 75);
    EXPECT_NE(error.Description().find(path), std::string::npos);
    EXPECT_EQ(error.Source(), "INIfile.LoadFile");
  }
  EXPECT_EQ(file.INIlines()->Count(), 0);
}

TEST(INIfileLoadTest, ReloadingKeepsTheLentCollection) {
  TempFolder folder;
  WriteBinaryFileAtomically(folder.File("a.ini"), "a=1\r\nb=2\r\n");
  INIfile file;
  auto lines = file.INIlines();
  file.LoadFile(folder.File("a.ini"));
  EXPECT_EQ(file.INIlines(), lines);
  EXPECT_EQ(lines->Count(), 2);
}

// --- Saving ----------------------------------------------------------------

TEST(INIfileSaveTest, WritesTheEngineLayout) {
  const struct Case {
    const char* name;
    std::string in;
    std::string out;
  } cases[] = {
      {"three lines", "[A]\r\nx=1\r\ny = a=b\r\n",
       "[A]\r\n   X            = 1\r\n   Y            = a=b\r\n"},
      {"empty value has no space after =", "[A]\r\nk=\r\n",
       "[A]\r\n   K            =\r\n"},
      {"comment becomes an empty line", "; c\r\n[A]\r\n", "\r\n[A]\r\n"},
      {"unended last line is lost", "a=1\r\nb=2", "   A            = 1\r\n"},
      {"key of 13 characters fills the width", "abcdefghijklm=1\r\n",
       "   ABCDEFGHIJKLM= 1\r\n"},
      {"longer key is not cut", "abcdefghijklmnop=1\r\n",
       "   ABCDEFGHIJKLMNOP= 1\r\n"},
      {"non-ASCII key counts characters", "\xe9t\xe9=1\r\n",
       "   \xc9T\xc9          = 1\r\n"},
      {"empty file", "", ""},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(LoadAndSave(c.in), c.out) << c.name;
  }
}

TEST(INIfileSaveTest, LayoutFollowsLeadingSpacesAndEqualPos) {
  const struct Case {
    int32_t leading_spaces, equal_pos;
    const char* expected;
  } cases[] = {
      {0, 1, "KEY= 5\r\n"},
      {0, 0, "KEY= 5\r\n"},
      {0, 5, "KEY = 5\r\n"},
      {1, 6, " KEY = 5\r\n"},
      {2, 5, "  KEY= 5\r\n"},
      {-4, 1, "KEY= 5\r\n"},
      {3, 17, "   KEY          = 5\r\n"},
  };
  for (const Case& c : cases) {
    INIfile file;
    file.SetLeadingSpaces(c.leading_spaces);
    file.SetEqualPos(c.equal_pos);
    file.INIlines()->Add("", "KEY", "5");
    EXPECT_EQ(file.Render(), c.expected)
        << c.leading_spaces << "," << c.equal_pos;
  }
}

TEST(INIfileSaveTest, TrimsAndCasesTheFieldsOfAddedLines) {
  const struct Case {
    const char* name;
    Fields line;
    bool ucase;
    const char* expected;
  } cases[] = {
      {"key kept as given",
       {"[a]", " name ", " v "},
       false,
       "   name         = v\r\n"},
      {"key upper-cased on request",
       {"[a]", "name", "v"},
       true,
       "   NAME         = v\r\n"},
      {"header upper-cased and trimmed",
       {" [view] ", "", ""},
       false,
       "[VIEW]\r\n"},
      {"header with a value stays a header",
       {"[x]", "", "v"},
       false,
       "[X]\r\n"},
      {"value without key or group is dropped", {"", "", "v"}, false, "\r\n"},
      {"blank fields are empty", {"  ", "  ", "  "}, false, "\r\n"},
      {"value of spaces only is empty",
       {"", "K", "   "},
       false,
       "   K            =\r\n"},
  };
  for (const Case& c : cases) {
    INIfile file;
    file.SetUcaseSecton(c.ucase);
    file.INIlines()->Add(c.line.group, c.line.section, c.line.value);
    EXPECT_EQ(file.Render(), c.expected) << c.name;
  }
}

TEST(INIfileSaveTest, EncodesWindows1252AndMarksTheRest) {
  TempFolder folder;
  INIfile file;
  file.INIlines()->Add("", "K", "caf\xc3\xa9 \xe2\x82\xac \xe4\xb8\xad");
  ASSERT_TRUE(file.SaveFile(folder.File("out.ini")));
  EXPECT_EQ(ReadBinaryFile(folder.File("out.ini")),
            "   K            = caf\xe9 \x80 ?\r\n");
}

TEST(INIfileSaveTest, FailedSaveLeavesTheOldFileAndRaisesNothing) {
  TempFolder folder;
  // The name leaves no room for the temporary file's suffix, so the write
  // fails even for a user who may write everywhere.
  const std::string path = folder.File(std::string(250, 'v'));
  std::ofstream(path, std::ios::binary) << "old";
  INIfile file;
  file.INIlines()->Add("[NEW]", "", "");
  bool saved = true;
  EXPECT_EQ(ErrorNumber([&] { saved = file.SaveFile(path); }), 0);
  EXPECT_FALSE(saved);
  EXPECT_EQ(ReadBinaryFile(path), "old");
  EXPECT_EQ(file.INIlines()->Count(), 1);
}

TEST(INIfileSaveTest, ReadOnlyFolderKeepsTheOldFile) {
  if (::geteuid() == 0) GTEST_SKIP() << "permissions do not bind root";
  TempFolder folder;
  const std::string sub = folder.File("locked");
  ASSERT_EQ(::mkdir(sub.c_str(), 0755), 0);
  WriteBinaryFileAtomically(sub + "/a.ini", "old");
  ASSERT_EQ(::chmod(sub.c_str(), 0555), 0);
  INIfile file;
  file.INIlines()->Add("[NEW]", "", "");
  EXPECT_FALSE(file.SaveFile(sub + "/a.ini"));
  EXPECT_EQ(ReadBinaryFile(sub + "/a.ini"), "old");
  ::chmod(sub.c_str(), 0755);
}

// --- Golden files ----------------------------------------------------------

TEST(INIfileGoldenTest, EngineLayoutSurvivesLoadAndSaveByteForByte) {
  const std::string golden = ReadBinaryFile(kTestData + "/engine_layout.ini");
  EXPECT_EQ(LoadAndSave(golden), golden);
}

TEST(INIfileGoldenTest, FreeLayoutIsRewrittenInTheEngineLayout) {
  const std::string in = ReadBinaryFile(kTestData + "/free_layout.ini");
  const std::string expected =
      ReadBinaryFile(kTestData + "/free_layout.expected.ini");
  EXPECT_EQ(LoadAndSave(in), expected);
  // And the result is stable.
  EXPECT_EQ(LoadAndSave(expected), expected);
}

// --- The line collection ---------------------------------------------------

TEST(INIlinesTest, PositionsOutsideTheListFailAndChangeNothing) {
  INIlines lines;
  lines.Add("", "A", "1");
  lines.Add("", "B", "2");
  const Variant bad[] = {
      Variant(int32_t{0}), Variant(int32_t{3}), Variant(int32_t{-1}),
      Variant("x"),        Variant(),           Variant(1e12)};
  for (const Variant& index : bad) {
    EXPECT_EQ(ErrorNumber([&] { lines.Item(index); }), 5) << index.ToString();
    EXPECT_EQ(ErrorNumber([&] { lines.Remove(index); }), 5) << index.ToString();
    EXPECT_EQ(lines.Count(), 2);
  }
  EXPECT_EQ(lines.Item(Variant("2"))->Section(), "B");
  EXPECT_EQ(lines.Item(Variant(1.0))->Section(), "A");
}

TEST(INIlinesTest, AddRemoveAndEnumerateKeepOrderAndIdentity) {
  INIlines lines;
  auto a = lines.Add("", "A", "");
  auto b = lines.Add("", "B", "");
  auto c = lines.Add("", "C", "");
  EXPECT_EQ(lines.Item(int32_t{2}), b);
  lines.Remove(int32_t{2});
  ASSERT_EQ(lines.Count(), 2);
  EXPECT_EQ(lines.Item(int32_t{2}), c);
  const VariantArray items = lines.Enumerate();
  ASSERT_EQ(items.size(), 2u);
  EXPECT_EQ(items[0].ToObject(), a);
  EXPECT_EQ(items[1].ToObject(), c);
  lines.Clear();
  EXPECT_EQ(lines.Count(), 0);
}

TEST(INIlinesTest, PositionsReachBeyondSixteenBits) {
  INIlines lines;
  for (int i = 0; i < 40000; ++i) lines.Add("", std::to_string(i), "");
  EXPECT_EQ(lines.Count(), 40000);
  EXPECT_EQ(lines.Item(int32_t{40000})->Section(), "39999");
}

// --- Dispatch --------------------------------------------------------------

TEST(INIfileDispatchTest, MembersInDeclarationOrder) {
  EXPECT_EQ(INIline().MemberNames(),
            (std::vector<std::string>{"Group", "Section", "Value"}));
  EXPECT_EQ(INIlines().MemberNames(),
            (std::vector<std::string>{"Add", "Clear", "Item", "Count", "Remove",
                                      "NewEnum"}));
  EXPECT_EQ(INIfile().MemberNames(),
            (std::vector<std::string>{"INIlines", "UcaseSection", "UcaseSecton",
                                      "LeadingSpaces", "EqualPos", "LoadFile",
                                      "SaveFile"}));
}

TEST(INIfileDispatchTest, FlagIsReadAndWrittenUnderItsTwoNames) {
  auto file = std::make_shared<INIfile>();
  EXPECT_FALSE(file->Get("ucasesection").ToBool());
  file->Put("UCASESECTON", true);
  EXPECT_TRUE(file->UcaseSection());
  EXPECT_TRUE(file->Get("UcaseSection").ToBool());
  EXPECT_EQ(ErrorNumber([&] { file->Get("UcaseSecton"); }), 438);
  EXPECT_EQ(ErrorNumber([&] { file->Put("UcaseSection", false); }), 438);
  EXPECT_TRUE(file->UcaseSection());
}

TEST(INIfileDispatchTest, LayoutPropertiesHaveTheirDefaults) {
  auto file = std::make_shared<INIfile>();
  EXPECT_EQ(file->Get("leadingspaces").ToLong(), 3);
  EXPECT_EQ(file->Get("EQUALPOS").ToLong(), 17);
  file->Put("LeadingSpaces", int32_t{0});
  file->Put("EqualPos", "1");
  file->INIlines()->Add("", "K", "v");
  EXPECT_EQ(file->Render(), "K= v\r\n");
  EXPECT_EQ(ErrorNumber([&] { file->Put("EqualPos", "x"); }), 13);
}

TEST(INIfileDispatchTest, ScriptsLoadEditAndSave) {
  TempFolder folder;
  WriteBinaryFileAtomically(folder.File("a.ini"), "[A]\r\nx=1\r\n");
  auto file = std::make_shared<INIfile>();
  file->Call("loadfile", {Variant(folder.File("a.ini"))});
  auto lines = file->Get("INILINES").ToObject();
  EXPECT_EQ(lines->Get("count").ToLong(), 2);
  auto line = lines->Get("", {Variant(int32_t{2})}).ToObject();
  EXPECT_EQ(line->Get("section").ToString(), "X");
  EXPECT_EQ(line->Get("GROUP").ToString(), "[A]");
  line->Put("value", "7");
  auto added = lines->Call("add", {Variant("[A]"), Variant("y"), Variant(2.5)})
                   .ToObject();
  EXPECT_EQ(added->Get("Value").ToString(), "2.5");
  file->Call("SaveFile", {Variant(folder.File("a.ini"))});
  EXPECT_EQ(ReadBinaryFile(folder.File("a.ini")),
            "[A]\r\n   X            = 7\r\n   y            = 2.5\r\n");
  lines->Call("remove", {Variant(int32_t{1})});
  EXPECT_EQ(lines->Enumerate().size(), 2u);
  lines->Call("Clear");
  EXPECT_EQ(file->INIlines()->Count(), 0);
  EXPECT_EQ(ErrorNumber([&] { lines->Call("Item", {Variant(int32_t{1})}); }),
            5);
  EXPECT_EQ(ErrorNumber([&] { file->Call("SaveFile"); }), 450);
  EXPECT_EQ(ErrorNumber([&] { file->Get("NoSuchMember"); }), 438);
}

TEST(INIfileDispatchTest, LinesAreLentAndReplacedByReference) {
  auto file = std::make_shared<INIfile>();
  auto other = std::make_shared<INIlines>();
  other->Add("[O]", "", "");
  file->PutRef("INIlines", std::shared_ptr<Dispatch>(other));
  EXPECT_EQ(file->INIlines(), other);

  file->PutRef("INIlines", std::shared_ptr<Dispatch>());
  auto fresh = file->INIlines();
  EXPECT_NE(fresh, other);
  EXPECT_EQ(fresh->Count(), 0);
  EXPECT_EQ(file->INIlines(), fresh);

  EXPECT_EQ(ErrorNumber([&] {
              file->PutRef("INIlines", std::shared_ptr<Dispatch>(
                                           std::make_shared<INIline>()));
            }),
            13);
  EXPECT_EQ(ErrorNumber([&] { file->Put("INIlines", "text"); }), 13);
  EXPECT_EQ(file->INIlines(), fresh);
}

}  // namespace
}  // namespace rz
