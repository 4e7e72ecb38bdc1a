// Copyright 2026 The Veltmark authors.

// Reading script files with includes (and refusing what a script may not
// read), joining the hook files, choosing the language, with CR LF and LF
// line ends.

#include "script/script_text.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

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
  // The file with its includes, the test folder being the one allowed.
  std::string Load(const std::string& path) {
    return LoadScriptText(path, {folder_.File("")});
  }
  // The error loading `path` raises ("" when none).
  Error LoadError(const std::string& path) {
    try {
      Load(path);
    } catch (const Error& error) {
      return error;
    }
    return Error(0, "");
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
    EXPECT_EQ(Load(Write("s.rzx", c.bytes)), c.text) << c.what;
  }
  EXPECT_EQ(Load(folder_.File("none.rzx")), "");
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
    EXPECT_EQ(Load(Write("main.rzx", c.bytes)), c.text) << c.what;
  }
}

TEST_F(ScriptTextTest, BrokenIncludesAreErrorsNamingTheFile) {
  const std::string unended = Write("unended.rzx", "a\r\n$INCLUDE lib.rzx");
  try {
    Load(unended);
    ADD_FAILURE() << "no error";
  } catch (const Error& error) {
    EXPECT_EQ(error.Number(), 5);
    EXPECT_NE(error.Description().find(unended), std::string::npos);
  }
  // A file including itself stops at the depth limit.
  const std::string loop = Write("loop.rzx", "x\r\n$INCLUDE loop.rzx\r\n");
  try {
    Load(loop);
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
  EXPECT_EQ(Load(folder_.File("n0.rzx")), "end\r\n");
}

TEST_F(ScriptTextTest, LineFeedsEndDirectivesLikeCrLf) {
  std::filesystem::create_directories(folder_.File("lib"));
  Write("lib/a.rzx", "a\n");
  Write("lib/b.rzx", "b\n$INCLUDE a.rzx\n");
  struct Case {
    const char* what;
    std::string bytes;
    std::string text;
  };
  const Case cases[] = {
      {"LF after the directive", "x\n$INCLUDE lib/a.rzx\ny\n", "x\na\ny\n"},
      {"nested with LF", "$INCLUDE lib/b.rzx\n", "b\na\n"},
      {"CR LF and LF mixed", "$INCLUDE lib/a.rzx\r\n$INCLUDE lib/a.rzx\n",
       "a\na\n"},
      {"blanks and CR after the name", "$INCLUDE lib/a.rzx  \r\nz\n", "a\nz\n"},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(Load(Write("main.rzx", c.bytes)), c.text) << c.what;
  }
  EXPECT_EQ(ChooseLanguage("// JScript\nfunction a() {}\n"), "JSCRIPT");
  EXPECT_EQ(ChooseLanguage("' VBScript\n' JSCRIPT\n"), "VBSCRIPT");
  EXPECT_EQ(ChooseLanguage("// jscript \r\n"), "JSCRIPT");
}

TEST_F(ScriptTextTest, NamesWithFoldersAreRelativeToTheIncludingFile) {
  std::filesystem::create_directories(folder_.File("app/lib"));
  Write("app/lib/a.rzx", "lib a\r\n");
  Write("app/main.rzx", "$INCLUDE lib/a.rzx\r\n$INCLUDE ./lib/a.rzx\r\n");
  // The working folder is elsewhere: the names must not be looked up there.
  EXPECT_EQ(Load(folder_.File("app/main.rzx")), "lib a\r\nlib a\r\n");
}

TEST_F(ScriptTextTest, IncludesOutsideTheAllowedFoldersAreRefused) {
  namespace fs = std::filesystem;
  TempFolder outside;
  std::ofstream(outside.File("secret.rzx")) << "SECRET-TEXT\r\n";
  fs::create_directories(folder_.File("lib"));
  fs::create_symlink(outside.File("secret.rzx"), folder_.File("link.rzx"));
  ASSERT_EQ(::mkfifo(folder_.File("pipe.rzx").c_str(), 0600), 0);
  // Oversize without writing 4 MiB: a sparse file one byte over the limit.
  Write("big.rzx", "");
  fs::resize_file(folder_.File("big.rzx"), kMaxScriptFileSize + 1);
  const std::string escape =
      "../" + fs::path(outside.File("")).parent_path().filename().string() +
      "/secret.rzx";
  struct Case {
    std::string name;
    std::string reason;
  };
  const Case cases[] = {
      {"/dev/zero", "may only be read from below"},
      {"/proc/self/environ", "may only be read from below"},
      {"pipe.rzx", "not a regular file"},
      {"link.rzx", "may only be read from below"},
      {"lib", "not a regular file"},
      {escape, "may only be read from below"},
      {"big.rzx", "larger than the script size limit of 4194304 bytes"},
  };
  for (const Case& c : cases) {
    const std::string main =
        Write("main.rzx", "a\r\n$INCLUDE " + c.name + "\r\nb\r\n");
    const Error error = LoadError(main);
    EXPECT_EQ(error.Number(), 70) << c.name;
    const std::string& text = error.Description();
    EXPECT_NE(text.find("'$INCLUDE " + c.name + "' in '" + main + "'"),
              std::string::npos)
        << text;
    EXPECT_NE(text.find(c.reason), std::string::npos) << text;
    EXPECT_EQ(text.find("SECRET"), std::string::npos) << text;
  }
  // The same file is fine when its folder is allowed.
  EXPECT_EQ(LoadScriptText(Write("main.rzx", "$INCLUDE link.rzx\r\n"),
                           {folder_.File(""), outside.File("")}),
            "SECRET-TEXT\r\n");
}

TEST_F(ScriptTextTest, TopLevelFilesFollowTheSameRules) {
  ASSERT_EQ(::mkfifo(folder_.File("pipe.rzx").c_str(), 0600), 0);
  EXPECT_EQ(LoadError(folder_.File("pipe.rzx")).Number(), 70);
  const std::string file = Write("ok.rzx", "ok\r\n");
  EXPECT_EQ(ErrorNumber([&] { LoadScriptText(file, {}); }), 70);
  // Includes adding up past the limit are refused too.
  const std::string third(kMaxScriptFileSize / 3 + 1, 'x');
  Write("third.rzx", third);
  const Error error = LoadError(
      Write("many.rzx",
            "$INCLUDE third.rzx\n$INCLUDE third.rzx\n$INCLUDE third.rzx\n"));
  EXPECT_EQ(error.Number(), 70);
  EXPECT_NE(error.Description().find("with its includes"), std::string::npos);
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
  EXPECT_EQ(ErrorNumber([] { ChooseLanguage("Sub A"); }), 5);  // no line end
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
