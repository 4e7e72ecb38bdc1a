// Copyright 2026 The Veltmark authors.

#include "script/script_text.h"

#include <cstdint>

#include "core/error.h"
#include "core/text.h"
#include "platform/file_system.h"

namespace rz {
namespace {

constexpr std::string_view kInclude = "$INCLUDE ";
constexpr std::string_view kLineEnd = "\r\n";
constexpr std::string_view kOptionExplicit = "OPTION EXPLICIT";
constexpr char kEndOfFile = 26;

bool HasFolder(std::string_view name) {
  return name.find('/') != std::string_view::npos ||
         name.find('\\') != std::string_view::npos;
}

std::string ReadScriptFile(std::string_view path) {
  std::string text = ReadTextFile(path);
  if (text.size() <= 1) return "";
  if (text.back() == kEndOfFile) text.pop_back();
  return text;
}

std::string LoadAtDepth(std::string_view path, int depth) {
  if (!FileExists(path)) return "";
  if (depth > kMaxIncludeDepth) {
    throw Error::InvalidArgument("includes nested more than " +
                                 std::to_string(kMaxIncludeDepth) +
                                 " deep at " + std::string(path));
  }
  const std::string folder = ParentFolder(path);
  std::string text = ReadScriptFile(path);
  for (size_t at; (at = text.find(kInclude)) != std::string::npos;) {
    const size_t end = text.find(kLineEnd, at);
    if (end == std::string::npos) {
      throw Error::InvalidArgument("the include in " + std::string(path) +
                                   " has no line end after it");
    }
    const std::string name = Trim(std::string_view(text).substr(
        at + kInclude.size(), end - at - kInclude.size()));
    const std::string included =
        name.empty()
            ? ""
            : LoadAtDepth(HasFolder(name) ? name : folder + name, depth + 1);
    text.replace(at, end + kLineEnd.size() - at, included);
  }
  return text;
}

// Turns the file's first OPTION EXPLICIT into a comment.
void DisableOptionExplicit(std::string& text) {
  const size_t at = UpperCase(text).find(kOptionExplicit);
  if (at != std::string::npos) text.insert(at, "'");
}

}  // namespace

std::string LoadScriptText(std::string_view path) {
  return LoadAtDepth(NormalizePath(path), 0);
}

std::string JoinHookScript(const HookScriptFiles& files) {
  std::string joined = LoadScriptText(
      JoinPath(files.system_folder, std::string(kHookScriptName)));
  for (const std::string& path :
       {files.application_folder + std::string(kHookScriptName),
        files.filename + std::string(kScriptExtension)}) {
    std::string text = LoadScriptText(path);
    if (text.empty()) continue;
    DisableOptionExplicit(text);
    joined += text;
  }
  return joined;
}

std::string ChooseLanguage(std::string_view text) {
  const size_t end = text.find(kLineEnd);
  if (end == std::string_view::npos) {
    throw Error::InvalidArgument(
        "the script's language cannot be told: its text has no line end");
  }
  const std::string first = UpperCase(Trim(text.substr(0, end)));
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
