// Copyright 2026 The Veltmark authors.

#include "repository/repository_writers.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <nlohmann/json.hpp>
#include <optional>
#include <utility>
#include <set>
#include <string_view>

#include "core/date_time.h"
#include "core/dispatch.h"
#include "core/error.h"
#include "core/text.h"
#include "repository/result_repository.h"

namespace rz {
namespace {

using Json = nlohmann::ordered_json;

bool IsPlainNumber(const Variant& value) {
  switch (value.Type()) {
    case VariantType::kInteger:
    case VariantType::kLong:
    case VariantType::kDouble:
    case VariantType::kDate:
      return true;
    default:
      return false;
  }
}

std::string DoubleText(double value) {
  if (std::isnan(value)) return "NaN";
  if (std::isinf(value)) return value > 0 ? "Infinity" : "-Infinity";
  return ShortestNumberText(value);
}

// A serial through one of the date writers, or nothing when it lies
// outside the calendar.
std::optional<std::string> SerialText(double serial,
                                      std::string (*format)(double)) {
  if (!std::isfinite(serial)) return std::nullopt;
  try {
    return format(serial);
  } catch (const Error&) {
    return std::nullopt;
  }
}

// Field 1 or 2 written as the date or time of its number, when the option
// asks for it and the cell holds a serial of the calendar.
std::optional<std::string> DateTimeColumnText(const Variant& value,
                                              int32_t field,
                                              DateTimeColumns columns) {
  if (!columns.first_two_are_date_time || !IsPlainNumber(value)) {
    return std::nullopt;
  }
  if (field == 1) return SerialText(value.ToDouble(), FormatDate);
  if (field == 2) return SerialText(value.ToDouble(), FormatTime);
  return std::nullopt;
}

std::string StoredText(const Variant& value) {
  switch (value.Type()) {
    case VariantType::kEmpty:
    case VariantType::kNull:
      return "";
    case VariantType::kDouble:
      return DoubleText(value.ToDouble());
    case VariantType::kDate: {
      const double serial = value.ToDate();
      return SerialText(serial, FormatDateTime).value_or(DoubleText(serial));
    }
    case VariantType::kObject: {
      try {
        return "[" + std::string(value.ToObject()->ClassName()) + "]";
      } catch (const Error&) {
        return "[Nothing]";
      }
    }
    case VariantType::kArray: {
      std::string text;
      bool first = true;
      for (const Variant& item : value.ToArray()) {
        if (!first) text += "; ";
        text += StoredText(item);
        first = false;
      }
      return text;
    }
    default:
      return value.ToString();
  }
}

Json JsonValue(const Variant& value) {
  switch (value.Type()) {
    case VariantType::kEmpty:
    case VariantType::kNull:
      return nullptr;
    case VariantType::kBoolean:
      return value.ToBool();
    case VariantType::kInteger:
    case VariantType::kLong:
      return value.ToLong();
    case VariantType::kDouble:
      return value.ToDouble();
    case VariantType::kArray: {
      Json items = Json::array();
      for (const Variant& item : value.ToArray()) {
        items.push_back(JsonValue(item));
      }
      return items;
    }
    default:
      return StoredText(value);
  }
}

// A set of bytes as a table, so that testing a text costs one load a
// character (the library's find_first_of calls memchr once per
// character of the text).
using ByteSet = std::array<bool, 256>;

template <size_t N>
constexpr ByteSet MakeByteSet(const char (&bytes)[N]) {
  ByteSet set{};
  for (size_t i = 0; i + 1 < N; ++i) {
    set[static_cast<unsigned char>(bytes[i])] = true;
  }
  return set;
}

constexpr ByteSet kCsvQuoted = MakeByteSet(",\"\r\n");
constexpr ByteSet kEscaped = MakeByteSet("\t\n\r\\");

bool HoldsAnyOf(std::string_view text, const ByteSet& set) {
  for (const char c : text) {
    if (set[static_cast<unsigned char>(c)]) return true;
  }
  return false;
}

void PutCsvValue(std::string_view text, std::string& out) {
  if (!HoldsAnyOf(text, kCsvQuoted)) {
    out += text;
    return;
  }
  out += '"';
  for (char c : text) {
    if (c == '"') out += '"';
    out += c;
  }
  out += '"';
}

// Tab, line feed and CR as escapes; with `backslash`, "\" too; appended to
// `out`.
void AppendEscaped(std::string_view text, bool backslash, std::string& out) {
  if (!HoldsAnyOf(text, kEscaped)) {
    out += text;
    return;
  }
  for (char c : text) {
    switch (c) {
      case '\t':
        out += "\\t";
        break;
      case '\n':
        out += "\\n";
        break;
      case '\r':
        out += "\\r";
        break;
      case '\\':
        out += backslash ? "\\\\" : "\\";
        break;
      default:
        out += c;
    }
  }
}

std::string Escaped(std::string_view text, bool backslash) {
  std::string out;
  out.reserve(text.size());
  AppendEscaped(text, backslash, out);
  return out;
}

// A value as a table shows it: escaped, and right-aligned when it is a
// number or a text that is one number (a run stores formatted numbers as
// texts). Fields 1 and 2 written as date and time are texts.
struct TableCell {
  std::string text;
  bool right = false;
};

TableCell TableCellOf(const Variant& value, int32_t field,
                      DateTimeColumns columns) {
  if (auto text = DateTimeColumnText(value, field, columns)) {
    return {Escaped(*text, false), false};
  }
  TableCell cell{Escaped(StoredText(value), false), false};
  switch (value.Type()) {
    case VariantType::kInteger:
    case VariantType::kLong:
    case VariantType::kDouble:
      cell.right = true;
      break;
    case VariantType::kString:
      cell.right = IsNumericText(cell.text);
      break;
    default:
      break;
  }
  return cell;
}

struct TableColumn {
  size_t width = 0;
  bool numeric = true;
};

// Appends `text` padded to `width` characters on the left or the right.
void AppendPadded(std::string& line, std::string_view text, size_t width,
                  bool right) {
  const size_t length = utf8::CharacterCount(text);
  const size_t padding = width > length ? width - length : 0;
  if (right) line.append(padding, ' ');
  line += text;
  if (!right) line.append(padding, ' ');
}

void PutLine(std::ostream& out, std::string& line) {
  const size_t end = line.find_last_not_of(' ');
  line.resize(end == std::string::npos ? 0 : end + 1);
  out << line << '\n';
  line.clear();
}

}  // namespace

std::string CellText(const Variant& value, int32_t field,
                     DateTimeColumns columns) {
  if (auto text = DateTimeColumnText(value, field, columns)) return *text;
  return StoredText(value);
}

std::vector<std::string> JsonKeys(Repository& repository) {
  RepositoryFieldList& fields = repository.Fields();
  std::vector<std::string> keys;
  std::set<std::string> taken;
  for (int32_t f = 1; f <= fields.Count(); ++f) {
    const std::string name = fields.Item(f)->Name();
    std::string key = name;
    for (int n = 2; taken.count(key) > 0; ++n) {
      key = name + "#" + std::to_string(n);
    }
    taken.insert(key);
    keys.push_back(key);
  }
  return keys;
}

RecordWriter::RecordWriter(TextFormat format, std::ostream& out,
                           DateTimeColumns columns)
    : format_(format), out_(out), columns_(columns) {
  if (format == TextFormat::kTable) {
    throw Error::InvalidArgument(
        "a table needs every record before its first line; write it with "
        "WriteRecords");
  }
  buffer_.reserve(kBufferBytes + kBufferBytes / 4);
}

RecordWriter::~RecordWriter() { Flush(); }

void RecordWriter::Flush() {
  out_.write(buffer_.data(), static_cast<std::streamsize>(buffer_.size()));
  buffer_.clear();
}

ResultRepository* RecordWriter::AsResults(Repository& repository) {
  if (&repository != cast_from_) {
    cast_from_ = &repository;
    results_ = dynamic_cast<ResultRepository*>(&repository);
  }
  return results_;
}

void RecordWriter::Begin(Repository& repository) {
  field_count_ = repository.Fields().Count();
  records_written_ = 0;
  switch (format_) {
    case TextFormat::kCsv:
    case TextFormat::kTsv: {
      RepositoryFieldList& fields = repository.Fields();
      for (int32_t f = 1; f <= field_count_; ++f) {
        if (f > 1) buffer_ += Separator();
        PutValue(fields.Item(f)->Name());
      }
      buffer_ += '\n';
      break;
    }
    case TextFormat::kJson:
      buffer_ += '[';
      [[fallthrough]];
    case TextFormat::kJsonLines:
      keys_ = JsonKeys(repository);
      break;
    case TextFormat::kTable:
      break;
  }
}

void RecordWriter::Write(Repository& repository, int32_t record) {
  if (format_ == TextFormat::kCsv || format_ == TextFormat::kTsv) {
    ResultRepository* const results = AsResults(repository);
    for (int32_t f = 1; f <= field_count_; ++f) {
      if (f > 1) buffer_ += Separator();
      if (results != nullptr) {
        // Our own repository gives a text cell without a copy.
        if (const auto text = results->TextAt(record, f)) {
          PutValue(*text);
          continue;
        }
      }
      const Variant value = repository.Value(record, f);
      // A text is its own cell text: no copy.
      if (value.IsString()) {
        PutValue(value.TextView());
      } else {
        PutValue(CellText(value, f, columns_));
      }
    }
    buffer_ += '\n';
  } else {
    Json object = Json::object();
    for (int32_t f = 1; f <= field_count_; ++f) {
      const Variant value = repository.Value(record, f);
      const auto date_time = DateTimeColumnText(value, f, columns_);
      object[keys_[static_cast<size_t>(f - 1)]] =
          date_time ? Json(*date_time) : JsonValue(value);
    }
    if (format_ == TextFormat::kJson) {
      buffer_ += records_written_ == 0 ? "\n" : ",\n";
    }
    buffer_ += object.dump(-1, ' ', false, Json::error_handler_t::replace);
    if (format_ == TextFormat::kJsonLines) buffer_ += '\n';
  }
  ++records_written_;
  if (buffer_.size() >= kBufferBytes) Flush();
}

void RecordWriter::End() {
  if (format_ == TextFormat::kJson) {
    buffer_ += records_written_ == 0 ? "]\n" : "\n]\n";
  }
  Flush();
}

char RecordWriter::Separator() const {
  return format_ == TextFormat::kCsv ? ',' : '\t';
}

void RecordWriter::PutValue(std::string_view text) {
  if (format_ == TextFormat::kCsv) {
    PutCsvValue(text, buffer_);
  } else {
    AppendEscaped(text, true, buffer_);
  }
}

std::optional<TextFormat> TextFormatNamed(std::string_view name) {
  static constexpr std::pair<std::string_view, TextFormat> kNames[] = {
      {"csv", TextFormat::kCsv},     {"tsv", TextFormat::kTsv},
      {"json", TextFormat::kJson},   {"jsonl", TextFormat::kJsonLines},
      {"table", TextFormat::kTable},
  };
  for (const auto& [text, format] : kNames) {
    if (text == name) return format;
  }
  return std::nullopt;
}

void WriteRecords(TextFormat format, Repository& repository, std::ostream& out,
                  DateTimeColumns columns) {
  if (format == TextFormat::kTable) {
    WriteTable(repository, out, columns);
    return;
  }
  RecordWriter writer(format, out, columns);
  writer.Begin(repository);
  const int32_t record_count = repository.RecordCount();
  for (int32_t r = 1; r <= record_count; ++r) writer.Write(repository, r);
  writer.End();
}

void WriteCsv(Repository& repository, std::ostream& out,
              DateTimeColumns columns) {
  WriteRecords(TextFormat::kCsv, repository, out, columns);
}

void WriteTsv(Repository& repository, std::ostream& out,
              DateTimeColumns columns) {
  WriteRecords(TextFormat::kTsv, repository, out, columns);
}

void WriteJsonLines(Repository& repository, std::ostream& out,
                    DateTimeColumns columns) {
  WriteRecords(TextFormat::kJsonLines, repository, out, columns);
}

void WriteTable(Repository& repository, std::ostream& out,
                DateTimeColumns columns) {
  RepositoryFieldList& fields = repository.Fields();
  const int32_t field_count = fields.Count();
  const int32_t record_count = repository.RecordCount();
  if (field_count == 0) return;

  std::vector<std::string> names;
  std::vector<TableColumn> layout(static_cast<size_t>(field_count));
  for (int32_t f = 1; f <= field_count; ++f) {
    names.push_back(Escaped(fields.Item(f)->Name(), false));
    layout[static_cast<size_t>(f - 1)].width = utf8::CharacterCount(names.back());
  }
  // First pass: widths and which columns hold only numbers.
  for (int32_t r = 1; r <= record_count; ++r) {
    for (int32_t f = 1; f <= field_count; ++f) {
      const TableCell cell = TableCellOf(repository.Value(r, f), f, columns);
      TableColumn& column = layout[static_cast<size_t>(f - 1)];
      column.width = std::max(column.width, utf8::CharacterCount(cell.text));
      if (!cell.text.empty() && !cell.right) column.numeric = false;
    }
  }

  std::string line;
  for (int32_t f = 1; f <= field_count; ++f) {
    const TableColumn& column = layout[static_cast<size_t>(f - 1)];
    if (f > 1) line += "  ";
    AppendPadded(line, names[static_cast<size_t>(f - 1)], column.width,
                 column.numeric);
  }
  PutLine(out, line);
  for (int32_t f = 1; f <= field_count; ++f) {
    if (f > 1) line += "  ";
    line.append(layout[static_cast<size_t>(f - 1)].width, '-');
  }
  PutLine(out, line);
  for (int32_t r = 1; r <= record_count; ++r) {
    for (int32_t f = 1; f <= field_count; ++f) {
      const TableCell cell = TableCellOf(repository.Value(r, f), f, columns);
      if (f > 1) line += "  ";
      AppendPadded(line, cell.text, layout[static_cast<size_t>(f - 1)].width,
                   cell.right);
    }
    PutLine(out, line);
  }
}

}  // namespace rz
