// Copyright 2026 The Veltmark authors.

// Reading script files with includes, joining the hook files, choosing the
// language.

#include "script/script_text.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "core/error.h"
#include "support/error_number.h"
#include "support/temp_folder.h"

namespace rz {
namespace {

class ScriptTextTest : public ::testing::Test {
 protected:
  std::string Write(const std::string& name, const std::string& bytes) {
    const std::string path = folder_.File(name);
    std::ofstream(path, std::ios::binary) << bytes;
    return path;
  }

  TempFolder folder_;
};

TEST_F(ScriptTextTest, ReadsAFileDroppingAFinalEndOfFileCharacter) {
  struct Case {
    const char* what;
    std::string bytes;
    std::string text;
  };
  const Case cases[] = {
      {"plain", "a\r\nb\r\n", "a\r\nb\r\n"},
      {"end-of-file mark", "a\r\n\x1a", "a\r\n"},
      {"mark inside stays",
       "a\x1a"
       "b",
       "a\x1a"
       "b"},
      {"one character is empty", "x", ""},
      {"only the mark is empty", "\x1a", ""},
      {"empty", "", ""},
      {"Windows-1252", "caf\xe9\r\n", "caf\xc3\xa9\r\n"},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(LoadScriptText(Write("s.rzx", c.bytes)), c.text) << c.what;
  }
  EXPECT_EQ(LoadScriptText(folder_.File("none.rzx")), "");
}

TEST_F(ScriptTextTest, IncludesAreReplacedByTheFilesText) {
  Write("lib.rzx", "Function Lib = \"lib\"\r\n");
  std::filesystem::create_directories(folder_.File("sub"));
  Write("sub/inner.rzx", "inner\r\n$INCLUDE deeper.rzx\r\n");
  Write("sub/deeper.rzx", "deeper\r\n");
  struct Case {
    const char* what;
    std::string bytes;
    std::string text;
  };
  const Case cases[] = {
      {"plain name, own folder", "a\r\n$INCLUDE lib.rzx\r\nb\r\n",
       "a\r\nFunction Lib = \"lib\"\r\nb\r\n"},
      {"text before the directive continues", "x = 1 $INCLUDE lib.rzx  \r\n",
       "x = 1 Function Lib = \"lib\"\r\n"},
      {"nested, relative to the including file",
       "$INCLUDE " + folder_.File("sub/inner.rzx") + "\r\n",
       "inner\r\ndeeper\r\n"},
      {"missing file includes nothing", "a\r\n$INCLUDE none.rzx\r\nb\r\n",
       "a\r\nb\r\n"},
      {"lower case is no directive", "$include lib.rzx\r\n",
       "$include lib.rzx\r\n"},
      {"two directives", "$INCLUDE lib.rzx\r\n$INCLUDE lib.rzx\r\n",
       "Function Lib = \"lib\"\r\nFunction Lib = \"lib\"\r\n"},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(LoadScriptText(Write("main.rzx", c.bytes)), c.text) << c.what;
  }
}

TEST_F(ScriptTextTest, BrokenIncludesAreErrorsNamingTheFile) {
  const std::string unended = Write("unended.rzx", "a\r\n$INCLUDE lib.rzx");
  try {
    LoadScriptText(unended);
    ADD_FAILURE() << "no error";
  } catch (const Error& error) {
    EXPECT_EQ(error.Number(), 5);
    EXPECT_NE(error.Description().find(unended), std::string::npos);
  }
  // A file including itself stops at the depth limit.
  const std::string loop = Write("loop.rzx", "x\r\n$INCLUDE loop.rzx\r\n");
  try {
    LoadScriptText(loop);
    ADD_FAILURE() << "no error";
  } catch (const Error& error) {
    EXPECT_EQ(error.Number(), 5);
    EXPECT_NE(error.Description().find("16"), std::string::npos);
    EXPECT_NE(error.Description().find("loop.rzx"), std::string::npos);
  }
  // Exactly 16 levels load.
  for (int i = 0; i < 16; ++i) {
    Write("n" + std::to_string(i) + ".rzx",
          "$INCLUDE n" + std::to_string(i + 1) + ".rzx\r\n");
  }
  Write("n16.rzx", "end\r\n");
  EXPECT_EQ(LoadScriptText(folder_.File("n0.rzx")), "end\r\n");
}

TEST_F(ScriptTextTest, TheHookFilesJoinWithOneOptionExplicit) {
  std::filesystem::create_directories(folder_.File("system"));
  std::filesystem::create_directories(folder_.File("app"));
  Write("system/RZscript.rzx", "Option Explicit\r\nsystem\r\n");
  Write("app/RZscript.rzx", "option explicit\r\napp\r\n");
  Write("app/line4.rzt.rzx", "  OPTION EXPLICIT\r\nown\r\n");
  HookScriptFiles files{folder_.File("system"), folder_.File("app/"),
                        folder_.File("app/line4.rzt")};
  EXPECT_EQ(JoinHookScript(files),
            "Option Explicit\r\nsystem\r\n'option explicit\r\napp\r\n"
            "  'OPTION EXPLICIT\r\nown\r\n");
  files.system_folder = folder_.File("nowhere");
  EXPECT_EQ(JoinHookScript(files),
            "'option explicit\r\napp\r\n  'OPTION EXPLICIT\r\nown\r\n");
}

TEST_F(ScriptTextTest, TheFirstLineChoosesTheLanguage) {
  struct Case {
    const char* text;
    const char* language;
  };
  const Case cases[] = {
      {"// JScript hooks\r\nfunction a() {}\r\n", "JSCRIPT"},
      {"' not jscript at all\r\nSub A\r\n", "JSCRIPT"},  // only the word
      {"Sub A\r\n' JSCRIPT\r\n", "VBSCRIPT"},            // first line only
      {"\r\n", "VBSCRIPT"},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(ChooseLanguage(c.text), c.language) << c.text;
  }
  EXPECT_EQ(ErrorNumber([] { ChooseLanguage("Sub A\nEnd Sub\n"); }), 5);
}

TEST_F(ScriptTextTest, ScriptLinesCountLineFeeds) {
  const std::string text = "one\r\ntwo\nthree";
  EXPECT_EQ(ScriptLine(text, 1), "one");
  EXPECT_EQ(ScriptLine(text, 2), "two");
  EXPECT_EQ(ScriptLine(text, 3), "three");
  EXPECT_EQ(ScriptLine(text, 4), "");
  EXPECT_EQ(ScriptLine(text, 0), "");
}

}  // namespace
}  // namespace rz
