// Copyright 2026 The Veltmark authors.

#include "appfile/template_views.h"

#include <optional>

#include "appfile/template_sections.h"
#include "core/codec.h"
#include "core/ini_line.h"

namespace rz {
namespace {

constexpr std::string_view kViews = "[VIEWS]";
constexpr std::string_view kField = "[FIELD]";

// One line of the file: its bytes without the line end, and the line end
// ("\n" with the CR, if any, kept in `text`; "" for a last line without).
struct RawLine {
  std::string text;
  std::string end;
};

std::vector<RawLine> SplitLines(std::string_view bytes) {
  std::vector<RawLine> lines;
  size_t start = 0;
  while (start < bytes.size()) {
    const size_t newline = bytes.find('\n', start);
    if (newline == std::string_view::npos) {
      lines.push_back({std::string(bytes.substr(start)), ""});
      break;
    }
    lines.push_back({std::string(bytes.substr(start, newline - start)), "\n"});
    start = newline + 1;
  }
  return lines;
}

IniLine Parse(const RawLine& line) {
  return ParseIniLine(DecodeWindows1252(line.text));
}

// True when the file's lines end in CR LF (or it has no line end yet).
bool EndsWithCrLf(const std::vector<RawLine>& lines) {
  for (const RawLine& line : lines) {
    if (line.end.empty()) break;
    return !line.text.empty() && line.text.back() == '\r';
  }
  return true;
}

// A new line of the file with the file's line end.
RawLine NewLine(std::string text, bool crlf) {
  if (crlf) text.push_back('\r');
  return {std::move(text), "\n"};
}

std::vector<RawLine> CatalogueLines(const std::vector<ViewEntry>& views,
                                    int32_t default_view, bool crlf) {
  std::vector<RawLine> lines;
  auto add = [&](std::string_view key, const std::string& value) {
    lines.push_back(
        NewLine(EncodeWindows1252(FormatIniKeyLine(key, value)), crlf));
  };
  add("DEFAULT", std::to_string(default_view));
  for (const ViewEntry& view : views) add("VIEW", FormatViewValue(view));
  return lines;
}

// Makes sure the line before position `at` ends, so lines inserted there
// start on a line of their own.
void EndLineBefore(std::vector<RawLine>& lines, size_t at, bool crlf) {
  if (at == 0 || !lines[at - 1].end.empty()) return;
  lines[at - 1] = NewLine(std::move(lines[at - 1].text), crlf);
}

// Adds a whole [VIEWS] section to a template that has none.
void InsertSection(std::vector<RawLine>& lines, std::vector<RawLine> block,
                   bool crlf) {
  size_t at = lines.size();
  for (size_t i = 0; i < lines.size(); ++i) {
    if (Parse(lines[i]).key == kField) {
      at = i;
      break;
    }
  }
  const RawLine blank = NewLine("", crlf);
  block.insert(block.begin(), NewLine(std::string(kViews), crlf));
  if (at < lines.size()) {
    block.push_back(blank);  // keeps the [FIELD] header apart
  } else if (!lines.empty()) {
    block.insert(block.begin(), blank);
  }
  EndLineBefore(lines, at, crlf);
  lines.insert(lines.begin() + static_cast<std::ptrdiff_t>(at), block.begin(),
               block.end());
}

}  // namespace

std::string ReplaceViewCatalogue(std::string_view bytes,
                                 const std::vector<ViewEntry>& views,
                                 int32_t default_view) {
  std::vector<RawLine> lines = SplitLines(bytes);
  const bool crlf = EndsWithCrLf(lines);
  std::vector<RawLine> kept;
  std::optional<size_t> after_header;   // in `kept`: after the first header
  std::optional<size_t> first_removed;  // where its first catalogue line was
  int views_sections = 0;
  bool in_views = false;
  for (RawLine& line : lines) {
    const IniLine parsed = Parse(line);
    if (IsIniHeader(parsed)) {
      in_views = parsed.key == kViews;
      kept.push_back(std::move(line));
      if (in_views && ++views_sections == 1) after_header = kept.size();
      continue;
    }
    if (in_views && (parsed.key == "DEFAULT" || parsed.key == "VIEW")) {
      if (views_sections == 1 && !first_removed) first_removed = kept.size();
      continue;
    }
    kept.push_back(std::move(line));
  }
  const std::optional<size_t> insert_at =
      first_removed ? first_removed : after_header;
  std::vector<RawLine> block = CatalogueLines(views, default_view, crlf);
  if (insert_at) {
    EndLineBefore(kept, *insert_at, crlf);
    kept.insert(kept.begin() + static_cast<std::ptrdiff_t>(*insert_at),
                block.begin(), block.end());
  } else {
    InsertSection(kept, std::move(block), crlf);
  }
  std::string result;
  for (const RawLine& line : kept) {
    result.append(line.text);
    result.append(line.end);
  }
  return result;
}

}  // namespace rz
