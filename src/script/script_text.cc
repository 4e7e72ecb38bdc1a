// Copyright 2026 The Veltmark authors.

#include "script/script_text.h"

#include <stdlib.h>
#include <sys/stat.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>

#include "core/codec.h"
#include "core/error.h"
#include "core/text.h"
#include "platform/file_system.h"

namespace rz {
namespace {

constexpr std::string_view kInclude = "$INCLUDE ";
constexpr std::string_view kOptionExplicit = "OPTION EXPLICIT";
constexpr char kEndOfFile = 26;

bool IsAbsolute(std::string_view name) {
  return name.front() == '/' || name.front() == '\\';
}

// The line from `text` without a CR before its LF.
std::string_view WithoutCarriageReturn(std::string_view line) {
  if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
  return line;
}

// The real path (links followed, no "." or ".."), or "" when it cannot be
// resolved.
std::string RealPath(const std::string& path) {
  if (path.empty()) return "";
  char* resolved = ::realpath(path.c_str(), nullptr);
  if (resolved == nullptr) return "";
  std::string real(resolved);
  std::free(resolved);
  return real;
}

bool IsBelow(const std::string& real, const std::string& root) {
  if (root == "/") return real.size() > 1;
  return real.size() > root.size() && real.compare(0, root.size(), root) == 0 &&
         real[root.size()] == '/';
}

std::string Quoted(std::string_view text) {
  return "'" + std::string(text) + "'";
}

// Reads script files and their includes from the allowed folders only.
class ScriptReader {
 public:
  explicit ScriptReader(const std::vector<std::string>& allowed_roots) {
    for (const std::string& root : allowed_roots) {
      std::string real = RealPath(NormalizePath(root));
      if (!real.empty()) roots_.push_back(std::move(real));
    }
  }

  // The text of `path` with its includes; `what` names it in refusals.
  std::string Load(const std::string& path, const std::string& what,
                   int depth) const;

 private:
  // Raises error 70 unless `path` is a regular file below a root and
  // within the size limit; answers its real path.
  std::string CheckAllowed(const std::string& path,
                           const std::string& what) const;
  std::string RootsText() const;
  std::string ResolveIncludes(std::string text, const std::string& path,
                              int depth) const;

  std::vector<std::string> roots_;
};

std::string ScriptReader::RootsText() const {
  if (roots_.empty()) return "no folder";
  std::string text;
  for (const std::string& root : roots_) {
    text += (text.empty() ? "" : " or ") + root;
  }
  return text;
}

std::string ScriptReader::CheckAllowed(const std::string& path,
                                       const std::string& what) const {
  const std::string real = RealPath(path);
  if (real.empty()) {
    throw Error::ScriptFileRefused(what, "its path cannot be resolved");
  }
  const bool inside =
      std::any_of(roots_.begin(), roots_.end(),
                  [&](const std::string& root) { return IsBelow(real, root); });
  if (!inside) {
    throw Error::ScriptFileRefused(
        what, "scripts may only be read from below " + RootsText());
  }
  struct stat info;
  if (::stat(real.c_str(), &info) != 0 || !S_ISREG(info.st_mode)) {
    throw Error::ScriptFileRefused(what, "not a regular file");
  }
  if (info.st_size > kMaxScriptFileSize) {
    throw Error::ScriptFileRefused(
        what, "larger than the script size limit of " +
                  std::to_string(kMaxScriptFileSize) + " bytes");
  }
  return real;
}

// The file's text; `what` names it when it has grown past the size limit
// since it was looked at.
std::string ReadScriptFile(const std::string& path, const std::string& what) {
  std::string bytes = ReadBinaryFile(path);
  if (bytes.size() > static_cast<size_t>(kMaxScriptFileSize)) {
    throw Error::ScriptFileRefused(what, "larger than the script size limit");
  }
  if (bytes.size() <= 1) return "";
  if (bytes.back() == kEndOfFile) bytes.pop_back();
  return DecodeWindows1252(bytes);
}

std::string ScriptReader::Load(const std::string& path, const std::string& what,
                               int depth) const {
  if (!FileExists(path)) return "";
  if (depth > kMaxIncludeDepth) {
    throw Error::InvalidArgument("includes nested more than " +
                                 std::to_string(kMaxIncludeDepth) +
                                 " deep at " + path);
  }
  const std::string real = CheckAllowed(path, what);
  return ResolveIncludes(ReadScriptFile(real, what), path, depth);
}

std::string ScriptReader::ResolveIncludes(std::string text,
                                          const std::string& path,
                                          int depth) const {
  const std::string folder = ParentFolder(path);
  for (size_t at; (at = text.find(kInclude)) != std::string::npos;) {
    const size_t end = text.find('\n', at);
    if (end == std::string::npos) {
      throw Error::InvalidArgument("the include in " + path +
                                   " has no line end after it");
    }
    const std::string name = Trim(WithoutCarriageReturn(
        std::string_view(text).substr(at, end - at).substr(kInclude.size())));
    std::string included;
    if (!name.empty()) {
      const std::string target =
          IsAbsolute(name) ? NormalizePath(name) : folder + NormalizePath(name);
      included = Load(
          target, Quoted(std::string(kInclude) + name) + " in " + Quoted(path),
          depth + 1);
    }
    text.replace(at, end + 1 - at, included);
    if (text.size() > static_cast<size_t>(kMaxScriptFileSize)) {
      throw Error::ScriptFileRefused(
          Quoted(path),
          "with its includes larger than the script size "
          "limit of " +
              std::to_string(kMaxScriptFileSize) + " bytes");
    }
  }
  return text;
}

// Turns the file's first OPTION EXPLICIT into a comment.
void DisableOptionExplicit(std::string& text) {
  const size_t at = UpperCase(text).find(kOptionExplicit);
  if (at != std::string::npos) text.insert(at, "'");
}

}  // namespace

std::string LoadScriptText(std::string_view path,
                           const std::vector<std::string>& allowed_roots) {
  const std::string normalized = NormalizePath(path);
  return ScriptReader(allowed_roots)
      .Load(normalized, "script file " + Quoted(normalized), 0);
}

std::vector<std::string> HookScriptRoots(const HookScriptFiles& files) {
  return {files.application_folder, files.system_folder};
}

std::string JoinHookScript(const HookScriptFiles& files) {
  const std::vector<std::string> roots = HookScriptRoots(files);
  std::string joined = LoadScriptText(
      JoinPath(files.system_folder, std::string(kHookScriptName)), roots);
  for (const std::string& path :
       {files.application_folder + std::string(kHookScriptName),
        files.filename + std::string(kScriptExtension)}) {
    std::string text = LoadScriptText(path, roots);
    if (text.empty()) continue;
    DisableOptionExplicit(text);
    joined += text;
  }
  return joined;
}

std::string ChooseLanguage(std::string_view text) {
  const size_t end = text.find('\n');
  if (end == std::string_view::npos) {
    throw Error::InvalidArgument(
        "the script's language cannot be told: its text has no line end");
  }
  const std::string first =
      UpperCase(Trim(WithoutCarriageReturn(text.substr(0, end))));
  return first.find("JSCRIPT") != std::string::npos ? "JSCRIPT" : "VBSCRIPT";
}

std::string ScriptLine(std::string_view text, int32_t line) {
  if (line < 1) return "";
  size_t start = 0;
  for (int32_t i = 1; i < line; ++i) {
    const size_t end = text.find('\n', start);
    if (end == std::string_view::npos) return "";
    start = end + 1;
  }
  size_t end = text.find('\n', start);
  if (end == std::string_view::npos) end = text.size();
  std::string_view result = text.substr(start, end - start);
  if (!result.empty() && result.back() == '\r') result.remove_suffix(1);
  return std::string(result);
}

}  // namespace rz
