// Copyright 2026 The Veltmark authors.
//
// The text of user scripts: reading a script file with its "$INCLUDE "
// directives, joining the three hook files, and choosing the language.
//
// Script files are plain text (".rzx") in Windows-1252, the code page of
// every text file of the system; a last character of
// code 26 (end of file) is dropped, and a file of one character or less
// counts as empty. A missing file contributes nothing and is no error.
//
// Includes: the first "$INCLUDE " (capitals, one blank) anywhere in the
// text, up to the next CR LF, names a file; a name without a folder
// separator ("/" or "\") is looked up in the including file's folder. The
// directive and its CR LF are replaced by that file's text (itself with
// its includes resolved), so text before the directive continues with the
// included text. A missing file includes nothing.
//
// Errors (rz::Error, reported by the script host as loading errors): 5 for
// a directive without a CR LF after it (naming the file), and 5 for
// includes nested more than kMaxIncludeDepth deep (naming the file where
// the limit was reached: includes that loop end there); ChooseLanguage
// raises 5 for a text without any CR LF. Reading errors of a file that
// exists but cannot be read propagate (70/75 naming the path).

#ifndef RZ_SCRIPT_SCRIPT_TEXT_H_
#define RZ_SCRIPT_SCRIPT_TEXT_H_

#include <string>
#include <string_view>

namespace rz {

inline constexpr int kMaxIncludeDepth = 16;

// The hook and security script file names.
inline constexpr std::string_view kHookScriptName = "RZscript.rzx";
inline constexpr std::string_view kSecurityScriptName = "rzsecure.rzx";
inline constexpr std::string_view kScriptExtension = ".rzx";

// The text of the script file at `path` with its includes resolved.
std::string LoadScriptText(std::string_view path);

// Where the three hook files are.
struct HookScriptFiles {
  std::string system_folder;       // without its final separator
  std::string application_folder;  // ending with its separator
  std::string filename;            // the application file's path
};

// The hook script: the system folder's "RZscript.rzx", the application
// folder's "RZscript.rzx" and Filename + ".rzx", joined in this order.
// In the second and third a first "OPTION EXPLICIT" (any case) becomes a
// comment (an apostrophe is put before it), so only the first file's
// statement stands.
std::string JoinHookScript(const HookScriptFiles& files);

// "JSCRIPT" when the text's first line (up to the first CR LF), upper-
// cased, contains "JSCRIPT"; "VBSCRIPT" otherwise. Error 5 for a text
// without any CR LF.
std::string ChooseLanguage(std::string_view text);

// Line `line` (1-based, lines counted by line feeds) of `text` without its
// line end; "" when the text has no such line.
std::string ScriptLine(std::string_view text, int32_t line);

}  // namespace rz

#endif  // RZ_SCRIPT_SCRIPT_TEXT_H_
