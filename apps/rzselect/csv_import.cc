// Copyright 2026 The Veltmark authors.

#include "rzselect/csv_import.h"

#include <algorithm>
#include <charconv>
#include <memory>
#include <set>
#include <utility>

#include "core/codec.h"
#include "core/date_time.h"
#include "core/error.h"
#include "core/text.h"

namespace rz {
namespace {

constexpr int kMaxLength = 32767;

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

bool AllDigits(std::string_view text) {
  return !text.empty() && std::all_of(text.begin(), text.end(), IsDigit);
}

int16_t ClampLength(int64_t length) {
  return static_cast<int16_t>(std::clamp<int64_t>(length, 1, kMaxLength));
}

int64_t CharacterCount(std::string_view text) {
  int64_t count = 0;
  for (size_t pos = 0; pos < text.size(); ++count) utf8::NextChar(text, &pos);
  return count;
}

// The number of digits before and after the point of a plain number.
struct NumberParts {
  bool negative = false;
  int64_t integer_digits = 0;
  int64_t decimals = 0;
};

std::optional<NumberParts> SplitPlainNumber(std::string_view text) {
  NumberParts parts;
  if (!text.empty() && (text[0] == '-' || text[0] == '+')) {
    parts.negative = text[0] == '-';
    text.remove_prefix(1);
  }
  const size_t point = text.find('.');
  const std::string_view whole = text.substr(0, point);
  const std::string_view fraction = point == std::string_view::npos
                                        ? std::string_view()
                                        : text.substr(point + 1);
  if (!whole.empty() && !AllDigits(whole)) return std::nullopt;
  if (!fraction.empty() && !AllDigits(fraction)) return std::nullopt;
  if (whole.empty() && fraction.empty()) return std::nullopt;
  parts.integer_digits = std::max<int64_t>(1, whole.size());
  parts.decimals = static_cast<int64_t>(fraction.size());
  return parts;
}

const std::set<std::string>& CombinedNames() {
  static const std::set<std::string> kNames = {"DATETIME",  "DATE TIME",
                                               "DATE/TIME", "DATE_TIME",
                                               "TIMESTAMP", "TIME STAMP"};
  return kNames;
}

int FindName(const std::vector<std::string>& names, std::string_view wanted) {
  for (size_t i = 0; i < names.size(); ++i) {
    if (names[i] == wanted) return static_cast<int>(i);
  }
  return -1;
}

// The variable names: trimmed, "Column N" for an empty one, " (n)" added
// to a name already taken (without regard to case).
class NameBook {
 public:
  std::string Take(std::string_view raw, int column) {
    std::string name = Trim(raw);
    if (name.empty()) name = "Column " + std::to_string(column + 1);
    std::string candidate = name;
    for (int n = 2; taken_.contains(UpperCase(candidate)); ++n) {
      candidate = name + " (" + std::to_string(n) + ")";
    }
    taken_.insert(UpperCase(candidate));
    return candidate;
  }

 private:
  std::set<std::string> taken_;
};

std::string Quoted(std::string_view text) {
  return "'" + std::string(text) + "'";
}

// The records of a vector, for ApplicationFromCsv.
class VectorSource : public CsvRecordSource {
 public:
  explicit VectorSource(const std::vector<CsvRecord>& records)
      : records_(records) {}
  void Restart() override { next_ = 0; }
  bool Next(CsvRecord* record) override {
    if (next_ >= records_.size()) return false;
    *record = records_[next_++];
    return true;
  }

 private:
  const std::vector<CsvRecord>& records_;
  size_t next_ = 0;
};

// Reads the records twice: once to check each and work out the variables
// (Build), then, as the writer asks, to turn each into its values
// (NextValues).
class CsvImporter {
 public:
  CsvImporter(CsvRecordSource& source, std::string_view file,
              const DateTimeChoice& choice)
      : source_(source), file_(file), choice_(choice) {}

  NewApplication Build(std::string_view title) {
    source_.Restart();
    CsvRecord header;
    if (!source_.Next(&header)) {
      throw Error::MalformedLine(
          file_, 1, "the file is empty; a header row of names is expected");
    }
    header_ = header.fields;
    header_line_ = header.line;
    for (const std::string& name : header_) NoteText(name);
    CsvRecord first;
    const bool has_first = source_.Next(&first);
    if (has_first) CheckFieldCount(first);
    std::optional<DateTimeColumns> columns =
        choice_.Empty()
            ? FindDateTimeColumns(header_, has_first ? &first : nullptr)
            : ChosenDateTimeColumns(header_, choice_, file_, header_line_);
    if (!columns) {
      throw Error::MalformedLine(
          file_, header_line_,
          "no date and time columns: name them Date and Time (or DateTime), "
          "give a date and a time (or one date-time) in the first record, "
          "or choose them with --date-column and --time-column (or "
          "--datetime-column)");
    }
    columns_ = *columns;
    for (int c = 0; c < static_cast<int>(header_.size()); ++c) {
      if (c != columns_.date && c != columns_.time && c != columns_.combined) {
        value_columns_.push_back(c);
      }
    }
    shapes_.assign(value_columns_.size(), ColumnShapeAccumulator());
    if (has_first) Survey(first);
    CsvRecord record;
    while (source_.Next(&record)) Survey(record);
    if (windows_1252_) {
      for (std::string& name : header_) name = DecodeWindows1252(name);
    }
    return MakeApplication(title);
  }

  // The values of the next record (date text, time text, then one per
  // value column); false after the last.
  bool NextValues(std::vector<Variant>* values) {
    if (!reading_) {
      source_.Restart();
      CsvRecord header;
      source_.Next(&header);
      reading_ = true;
    }
    if (!source_.Next(&record_)) return false;
    if (windows_1252_) {
      for (std::string& field : record_.fields) {
        field = DecodeWindows1252(field);
      }
    }
    CheckFieldCount(record_);
    const auto [date, time] = ReadDateTime(record_);
    values->clear();
    values->emplace_back(date);
    values->emplace_back(time);
    for (size_t v = 0; v < value_columns_.size(); ++v) {
      const std::string_view text =
          TrimSpaces(record_.fields[value_columns_[v]]);
      if (text.empty()) {
        values->push_back(Variant::Null());
      } else if (numeric_[v]) {
        values->emplace_back(*ParsePlainNumber(text));
      } else {
        values->emplace_back(text);
      }
    }
    return true;
  }

 private:
  void CheckFieldCount(const CsvRecord& record) const {
    if (record.fields.size() == header_.size()) return;
    throw Error::MalformedLine(file_, record.line,
                               std::to_string(record.fields.size()) +
                                   " fields where the header has " +
                                   std::to_string(header_.size()));
  }

  void Survey(const CsvRecord& record) {
    CheckFieldCount(record);
    ReadDateTime(record);
    for (size_t v = 0; v < value_columns_.size(); ++v) {
      const std::string& field = record.fields[value_columns_[v]];
      NoteText(field);
      shapes_[v].Add(TrimSpaces(field));
    }
  }

  // The file is read as UTF-8 unless some text is not UTF-8; then every
  // byte is a Windows-1252 character (what spreadsheets on Windows write).
  void NoteText(std::string_view text) {
    if (!windows_1252_ && !IsValidUtf8(text)) windows_1252_ = true;
  }

  // A text of the file as UTF-8, for a message.
  static std::string Shown(std::string_view text) {
    return IsValidUtf8(text) ? std::string(text) : DecodeWindows1252(text);
  }

  std::string ColumnName(int column) const {
    return Quoted(Shown(Trim(header_[column])));
  }

  std::string NeedValue(const CsvRecord& record, int column,
                        std::string_view what) const {
    std::string value = Trim(record.fields[column]);
    if (value.empty()) {
      throw Error::BadLineValue(file_, record.line,
                                std::string(what) + " in column " +
                                    ColumnName(column) + " is missing");
    }
    return value;
  }

  [[noreturn]] void BadValue(const CsvRecord& record, int column,
                             std::string_view value,
                             std::string_view expected) const {
    throw Error::BadLineValue(file_, record.line,
                              Quoted(Shown(value)) + " in column " +
                                  ColumnName(column) + " is not " +
                                  std::string(expected));
  }

  // The record's date and time texts, checked.
  std::pair<std::string, std::string> ReadDateTime(
      const CsvRecord& record) const {
    if (columns_.combined >= 0) {
      const std::string value =
          NeedValue(record, columns_.combined, "the date and time");
      auto parts = ParseDateTimeText(value);
      if (!parts) {
        BadValue(record, columns_.combined, value,
                 "a date and time (yyyy-mm-dd hh:mm:ss)");
      }
      return *parts;
    }
    const std::string date = NeedValue(record, columns_.date, "the date");
    std::optional<std::string> date_text = ParseDateText(date);
    if (!date_text)
      BadValue(record, columns_.date, date, "a date (yyyy-mm-dd)");
    const std::string time = NeedValue(record, columns_.time, "the time");
    std::optional<std::string> time_text = ParseTimeText(time);
    if (!time_text) BadValue(record, columns_.time, time, "a time (hh:mm:ss)");
    return {*date_text, *time_text};
  }

  NewApplication MakeApplication(std::string_view title) {
    NewApplication application;
    application.title = std::string(title);
    NameBook names;
    const bool combined = columns_.combined >= 0;
    application.variables.push_back(NewVariable(
        names.Take(combined ? "Date" : header_[columns_.date], columns_.date),
        "T", 10, 0, 1, 0));
    application.variables.push_back(NewVariable(
        names.Take(combined ? "Time" : header_[columns_.time], columns_.time),
        "T", 8, 0, 2, 0));
    for (size_t v = 0; v < value_columns_.size(); ++v) {
      const ColumnShape shape = shapes_[v].Shape(windows_1252_);
      numeric_.push_back(shape.type == "N");
      application.variables.push_back(NewVariable(
          names.Take(header_[value_columns_[v]], value_columns_[v]), shape.type,
          shape.length, shape.decimals, static_cast<int>(v) + 3, 0));
    }
    return application;
  }

  CsvRecordSource& source_;
  std::string_view file_;
  DateTimeChoice choice_;
  std::vector<std::string> header_;
  int64_t header_line_ = 1;
  DateTimeColumns columns_;
  std::vector<int> value_columns_;
  std::vector<ColumnShapeAccumulator> shapes_;
  std::vector<bool> numeric_;  // per value column
  bool reading_ = false;
  bool windows_1252_ = false;
  CsvRecord record_;
};

}  // namespace

CsvTextSource::CsvTextSource(std::string_view text, std::string_view file_name)
    : text_(text), file_name_(file_name) {}

void CsvTextSource::Restart() {
  parser_ = std::make_unique<CsvParser>(text_, file_name_);
}

bool CsvTextSource::Next(CsvRecord* record) {
  if (!parser_) Restart();
  return parser_->Next(record);
}

void ColumnShapeAccumulator::Add(std::string_view value) {
  if (value.empty()) return;
  any_ = true;
  const auto bytes = static_cast<int64_t>(value.size());
  // A text has no more characters than bytes: only a long one is counted.
  if (bytes > longest_) longest_ = std::max(longest_, CharacterCount(value));
  longest_bytes_ = std::max(longest_bytes_, bytes);
  if (!numeric_) return;
  std::optional<NumberParts> parts = SplitPlainNumber(value);
  // Up to 300 digits before and after the point a plain number lies
  // within the double range; only a longer one needs reading to tell.
  const bool in_range =
      parts && ((parts->integer_digits <= 300 && parts->decimals <= 300) ||
                ParsePlainNumber(value));
  if (!in_range) {
    numeric_ = false;
    return;
  }
  negative_ = negative_ || parts->negative;
  integer_digits_ = std::max(integer_digits_, parts->integer_digits);
  decimals_ = std::max(decimals_, parts->decimals);
}

ColumnShape ColumnShapeAccumulator::Shape(bool windows_1252) const {
  if (!any_ || !numeric_) {
    return ColumnShape{
        "T", ClampLength(windows_1252 ? longest_bytes_ : longest_), 0};
  }
  const int64_t length = integer_digits_ + decimals_ + (negative_ ? 1 : 0) +
                         (decimals_ > 0 ? 1 : 0);
  return ColumnShape{"N", ClampLength(length),
                     static_cast<int16_t>(std::min<int64_t>(decimals_, 255))};
}

std::optional<double> ParsePlainNumber(std::string_view text) {
  if (!SplitPlainNumber(text)) return std::nullopt;
  if (text[0] == '+') text.remove_prefix(1);
  double value = 0;
  const auto [end, error] =
      std::from_chars(text.data(), text.data() + text.size(), value);
  if (error != std::errc() || end != text.data() + text.size()) {
    return std::nullopt;
  }
  return value == 0 ? 0.0 : value;  // no negative zero
}

ColumnShape InferColumnShape(const std::vector<std::string_view>& values) {
  ColumnShapeAccumulator shape;
  for (std::string_view value : values) shape.Add(value);
  return shape.Shape();
}

std::optional<std::string> ParseDateText(std::string_view text) {
  if (text.size() != 10 || text[4] != '-' || text[7] != '-') {
    return std::nullopt;
  }
  if (!AllDigits(text.substr(0, 4)) || !AllDigits(text.substr(5, 2)) ||
      !AllDigits(text.substr(8, 2)) || !ParseDateTime(text)) {
    return std::nullopt;
  }
  return std::string(text);
}

std::optional<std::string> ParseTimeText(std::string_view text) {
  // h:mm, hh:mm, h:mm:ss or hh:mm:ss.
  const size_t first_colon = text.find(':');
  if (first_colon != 1 && first_colon != 2) return std::nullopt;
  const std::string_view hour_text = text.substr(0, first_colon);
  const std::string_view rest = text.substr(first_colon + 1);
  if (rest.size() != 2 && !(rest.size() == 5 && rest[2] == ':')) {
    return std::nullopt;
  }
  const std::string_view minute_text = rest.substr(0, 2);
  const std::string_view second_text =
      rest.size() == 5 ? rest.substr(3, 2) : std::string_view("00");
  if (!AllDigits(hour_text) || !AllDigits(minute_text) ||
      !AllDigits(second_text)) {
    return std::nullopt;
  }
  auto number = [](std::string_view digits) {
    int value = 0;
    for (char c : digits) value = value * 10 + (c - '0');
    return value;
  };
  const int hour = number(hour_text);
  const int minute = number(minute_text);
  const int second = number(second_text);
  if (hour > 23 || minute > 59 || second > 59) return std::nullopt;
  std::string canonical = "00:00:00";
  for (const auto& [at, value] :
       {std::pair{0, hour}, {3, minute}, {6, second}}) {
    canonical[at] = static_cast<char>('0' + value / 10);
    canonical[at + 1] = static_cast<char>('0' + value % 10);
  }
  return canonical;
}

std::optional<std::pair<std::string, std::string>> ParseDateTimeText(
    std::string_view text) {
  if (text.size() < 12 || (text[10] != ' ' && text[10] != 'T')) {
    return std::nullopt;
  }
  std::optional<std::string> date = ParseDateText(text.substr(0, 10));
  std::optional<std::string> time = ParseTimeText(Trim(text.substr(11)));
  if (!date || !time) return std::nullopt;
  return std::make_pair(*date, *time);
}

std::optional<DateTimeColumns> FindDateTimeColumns(
    const std::vector<std::string>& header, const CsvRecord* first_record) {
  std::vector<std::string> names;
  for (const std::string& name : header) names.push_back(UpperCase(Trim(name)));
  const int date = FindName(names, "DATE");
  const int time = FindName(names, "TIME");
  if (date >= 0 && time >= 0) return DateTimeColumns{date, time, -1};
  for (size_t c = 0; c < names.size(); ++c) {
    if (CombinedNames().contains(names[c])) {
      return DateTimeColumns{-1, -1, static_cast<int>(c)};
    }
  }
  if (first_record == nullptr) return std::nullopt;
  const std::vector<std::string>& first = first_record->fields;
  auto value = [&](int column) -> std::string {
    return column < static_cast<int>(first.size()) ? Trim(first[column]) : "";
  };
  if (date >= 0 && ParseDateTimeText(value(date))) {
    return DateTimeColumns{-1, -1, date};
  }
  // By content: the first column holding a date and the first holding a
  // time, wherever they are; else the first holding both.
  const int count = static_cast<int>(names.size());
  int date_column = -1;
  int time_column = -1;
  for (int c = 0; c < count; ++c) {
    if (date_column < 0 && ParseDateText(value(c))) date_column = c;
    if (time_column < 0 && ParseTimeText(value(c))) time_column = c;
  }
  if (date_column >= 0 && time_column >= 0) {
    return DateTimeColumns{date_column, time_column, -1};
  }
  for (int c = 0; c < count; ++c) {
    if (ParseDateTimeText(value(c))) return DateTimeColumns{-1, -1, c};
  }
  return std::nullopt;
}

DateTimeColumns ChosenDateTimeColumns(const std::vector<std::string>& header,
                                      const DateTimeChoice& choice,
                                      std::string_view file_name,
                                      int64_t header_line) {
  auto column_of = [&](const std::string& wanted, std::string_view option) {
    const std::string name = UpperCase(Trim(wanted));
    for (size_t c = 0; c < header.size(); ++c) {
      if (UpperCase(Trim(header[c])) == name) return static_cast<int>(c);
    }
    int number = 0;
    const auto [end, error] =
        std::from_chars(wanted.data(), wanted.data() + wanted.size(), number);
    if (error == std::errc() && end == wanted.data() + wanted.size() &&
        number >= 1 && number <= static_cast<int>(header.size())) {
      return number - 1;
    }
    throw Error::MalformedLine(file_name, header_line,
                               std::string(option) + " " + Quoted(wanted) +
                                   ": no column of that name or number");
  };
  if (!choice.combined.empty()) {
    return DateTimeColumns{-1, -1,
                           column_of(choice.combined, "--datetime-column")};
  }
  const int date = column_of(choice.date, "--date-column");
  const int time = column_of(choice.time, "--time-column");
  if (date == time) {
    throw Error::MalformedLine(file_name, header_line,
                               "the date and the time must be two columns");
  }
  return DateTimeColumns{date, time, -1};
}

NewApplication ApplicationFromCsv(CsvRecordSource& source,
                                  std::string_view file_name,
                                  std::string_view title,
                                  const DateTimeChoice& choice) {
  auto importer = std::make_shared<CsvImporter>(source, file_name, choice);
  NewApplication application = importer->Build(title);
  application.record_source = [importer](std::vector<Variant>* values) {
    return importer->NextValues(values);
  };
  return application;
}

NewApplication ApplicationFromCsv(const std::vector<CsvRecord>& records,
                                  std::string_view file_name,
                                  std::string_view title) {
  VectorSource source(records);
  NewApplication application =
      ApplicationFromCsv(source, file_name, title, DateTimeChoice());
  std::vector<Variant> values;
  while (application.record_source(&values)) {
    application.records.push_back(values);
  }
  application.record_source = nullptr;
  return application;
}

}  // namespace rz
