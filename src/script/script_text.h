// Copyright 2026 The Veltmark authors.
//
// The text of user scripts: reading a script file with its "$INCLUDE "
// directives, joining the three hook files, and choosing the language.
//
// Script files are plain text (".rzx") in Windows-1252, the code page of
// every text file of the system; a last character of
// code 26 (end of file) is dropped, and a file of one character or less
// counts as empty. A missing file contributes nothing and is no error.
// Lines end in CR LF or in a lone LF (files edited on Linux).
//
// Includes: the first "$INCLUDE " (capitals, one blank) anywhere in the
// text, up to the end of its line, names a file; a relative name (with or
// without folders) is taken relative to the including file's folder, never
// the working folder. The directive and its line end are replaced by that
// file's text (itself with its includes resolved), so text before the
// directive continues with the included text. A missing file includes
// nothing.
//
// Scripts reach only what the site put in place: every file read here (the
// top-level file and each include) must, with its symbolic links followed,
// be a regular file below one of the allowed root folders, and be at most
// kMaxScriptFileSize bytes (checked before it is read); the text with its
// includes must stay within kMaxScriptFileSize too. Anything else (a
// device, /proc, a FIFO, a folder, a link or "../" leading out of the
// roots, an oversize file) is refused with error 70 naming the directive
// and the including file (or the top-level file), never quoting what the
// refused file holds.
//
// Errors (rz::Error, reported by the script host as loading errors): the
// refusals above (70); 5 for a directive without a line end after it
// (naming the file), and 5 for includes nested more than kMaxIncludeDepth
// deep (naming the file where the limit was reached: includes that loop
// end there); ChooseLanguage raises 5 for a text without any line end.
// Reading errors of a file that exists but cannot be read propagate (70/75
// naming the path).

#ifndef RZ_SCRIPT_SCRIPT_TEXT_H_
#define RZ_SCRIPT_SCRIPT_TEXT_H_

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace rz {

inline constexpr int kMaxIncludeDepth = 16;
// The largest script file (and script text with its includes) in bytes.
inline constexpr int64_t kMaxScriptFileSize = 4 * 1024 * 1024;

// The hook and security script file names.
inline constexpr std::string_view kHookScriptName = "RZscript.rzx";
inline constexpr std::string_view kSecurityScriptName = "rzsecure.rzx";
inline constexpr std::string_view kScriptExtension = ".rzx";

// The text of the script file at `path` with its includes resolved. The
// file and its includes must lie below one of `allowed_roots` (folders;
// their own links are followed too); an empty list allows nothing.
std::string LoadScriptText(std::string_view path,
                           const std::vector<std::string>& allowed_roots);

// Where the three hook files are.
struct HookScriptFiles {
  std::string system_folder;       // without its final separator
  std::string application_folder;  // ending with its separator
  std::string filename;            // the application file's path
};

// The folders the hook script's files may come from: the application
// folder and the system folder.
std::vector<std::string> HookScriptRoots(const HookScriptFiles& files);

// The hook script: the system folder's "RZscript.rzx", the application
// folder's "RZscript.rzx" and Filename + ".rzx", joined in this order,
// each read with HookScriptRoots.
// In the second and third a first "OPTION EXPLICIT" (any case) becomes a
// comment (an apostrophe is put before it), so only the first file's
// statement stands.
std::string JoinHookScript(const HookScriptFiles& files);

// "JSCRIPT" when the text's first line (up to the first line end, CR LF
// or LF), upper-cased, contains "JSCRIPT"; "VBSCRIPT" otherwise. Error 5
// for a text without any line end.
std::string ChooseLanguage(std::string_view text);

// Line `line` (1-based, lines counted by line feeds) of `text` without its
// line end; "" when the text has no such line.
std::string ScriptLine(std::string_view text, int32_t line);

}  // namespace rz

#endif  // RZ_SCRIPT_SCRIPT_TEXT_H_
