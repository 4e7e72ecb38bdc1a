// Copyright 2026 The Veltmark authors.

#include "trace/trace_wire.h"

#include <array>
#include <cstddef>

namespace rz {
namespace {

constexpr char kFieldSeparator = '\t';
constexpr size_t kFieldCount = 4;

// Appends `field` escaped to `out`.
void AppendEscaped(std::string_view field, std::string& out) {
  for (char c : field) {
    switch (c) {
      case '\\':
        out += "\\\\";
        break;
      case '\t':
        out += "\\t";
        break;
      case '\n':
        out += "\\n";
        break;
      case '\r':
        out += "\\r";
        break;
      default:
        out += c;
    }
  }
}

// The character an escape letter stands for, or nullopt for an unknown one.
std::optional<char> Unescaped(char letter) {
  switch (letter) {
    case '\\':
      return '\\';
    case 't':
      return '\t';
    case 'n':
      return '\n';
    case 'r':
      return '\r';
    default:
      return std::nullopt;
  }
}

// Decodes one field (no separators inside); nullopt on a bad escape.
std::optional<std::string> UnescapeField(std::string_view field) {
  std::string out;
  out.reserve(field.size());
  for (size_t i = 0; i < field.size(); ++i) {
    if (field[i] != '\\') {
      out += field[i];
      continue;
    }
    if (++i == field.size()) return std::nullopt;
    std::optional<char> c = Unescaped(field[i]);
    if (!c) return std::nullopt;
    out += *c;
  }
  return out;
}

}  // namespace

std::string EscapeTraceField(std::string_view field) {
  std::string out;
  out.reserve(field.size());
  AppendEscaped(field, out);
  return out;
}

std::string EncodeTraceLine(std::string_view component, std::string_view writer,
                            std::string_view procedure,
                            std::string_view message) {
  std::string line;
  line.reserve(component.size() + writer.size() + procedure.size() +
               message.size() + kFieldCount);
  AppendEscaped(component, line);
  line += kFieldSeparator;
  AppendEscaped(writer, line);
  line += kFieldSeparator;
  AppendEscaped(procedure, line);
  line += kFieldSeparator;
  AppendEscaped(message, line);
  line += '\n';
  return line;
}

std::optional<TraceRecord> DecodeTraceLine(std::string_view line) {
  if (!line.empty() && line.back() == '\n') line.remove_suffix(1);
  if (line.find('\n') != std::string_view::npos) return std::nullopt;
  // Escaped fields hold no raw tab, so splitting on tabs is exact.
  std::array<std::string_view, kFieldCount> raw;
  size_t count = 0;
  size_t start = 0;
  while (true) {
    size_t tab = line.find(kFieldSeparator, start);
    if (count == kFieldCount) return std::nullopt;
    raw[count++] = line.substr(start, tab == std::string_view::npos
                                          ? std::string_view::npos
                                          : tab - start);
    if (tab == std::string_view::npos) break;
    start = tab + 1;
  }
  if (count != kFieldCount) return std::nullopt;
  std::array<std::string, kFieldCount> fields;
  for (size_t i = 0; i < kFieldCount; ++i) {
    std::optional<std::string> field = UnescapeField(raw[i]);
    if (!field) return std::nullopt;
    fields[i] = std::move(*field);
  }
  return TraceRecord{std::move(fields[0]), std::move(fields[1]),
                     std::move(fields[2]), std::move(fields[3])};
}

}  // namespace rz
