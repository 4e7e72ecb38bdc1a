// Copyright 2026 The Veltmark authors.

#include "core/ini_line.h"

#include "core/text.h"

namespace rz {

IniLine ParseIniLine(std::string_view line) {
  std::string text(line);
  for (char& c : text) {
    if (c == '\t' || c == '\r' || c == '\n') c = ' ';
  }
  text = Trim(text);
  if (text.empty()) return {};
  if (text.front() == '[') return {UpperCase(text), ""};
  const size_t equal = text.find('=');
  if (equal == std::string::npos) return {};
  return {UpperCase(RTrim(std::string_view(text).substr(0, equal))),
          Trim(std::string_view(text).substr(equal + 1))};
}

std::vector<std::string_view> SplitIniLines(std::string_view text) {
  std::vector<std::string_view> lines;
  size_t start = 0;
  for (size_t end; (end = text.find('\n', start)) != std::string_view::npos;
       start = end + 1) {
    std::string_view line = text.substr(start, end - start);
    if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
    lines.push_back(line);
  }
  return lines;
}

std::string FormatIniKeyLine(std::string_view key, std::string_view value,
                             int leading_spaces, int equal_pos) {
  std::string line(leading_spaces > 0 ? static_cast<size_t>(leading_spaces) : 0,
                   ' ');
  line += key;
  const size_t width =
      static_cast<size_t>(leading_spaces > 0 ? leading_spaces : 0) +
      utf8::CharacterCount(key);
  if (equal_pos > 1 && width < static_cast<size_t>(equal_pos - 1)) {
    line.append(static_cast<size_t>(equal_pos - 1) - width, ' ');
  }
  if (value.empty()) return line + "=";
  line += "= ";
  line += value;
  return line;
}

}  // namespace rz
