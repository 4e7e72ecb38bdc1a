// Copyright 2026 The Veltmark authors.

#include "rzselect/csv_import.h"

#include <algorithm>
#include <charconv>
#include <set>

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

std::string TwoDigits(int value) {
  return std::string(1, static_cast<char>('0' + value / 10)) +
         static_cast<char>('0' + value % 10);
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

// Reads the records into the date, time and value columns, checking each.
class CsvImporter {
 public:
  CsvImporter(const std::vector<CsvRecord>& records, std::string_view file)
      : records_(records), file_(file) {}

  NewApplication Build(std::string_view title) {
    if (records_.empty()) {
      throw Error::MalformedLine(
          file_, 1, "the file is empty; a header row of names is expected");
    }
    header_ = records_[0].fields;
    const CsvRecord* first = records_.size() > 1 ? &records_[1] : nullptr;
    if (first != nullptr) CheckFieldCount(*first);
    std::optional<DateTimeColumns> columns =
        FindDateTimeColumns(header_, first);
    if (!columns) {
      throw Error::MalformedLine(
          file_, records_[0].line,
          "no date and time columns: name them Date and Time, or put the "
          "date and time (or one date-time column) first");
    }
    columns_ = *columns;
    for (int c = 0; c < static_cast<int>(header_.size()); ++c) {
      if (c != columns_.date && c != columns_.time && c != columns_.combined) {
        value_columns_.push_back(c);
      }
    }
    ReadRecords();
    return MakeApplication(title);
  }

 private:
  void CheckFieldCount(const CsvRecord& record) const {
    if (record.fields.size() == header_.size()) return;
    throw Error::MalformedLine(file_, record.line,
                               std::to_string(record.fields.size()) +
                                   " fields where the header has " +
                                   std::to_string(header_.size()));
  }

  std::string ColumnName(int column) const {
    return Quoted(Trim(header_[column]));
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
                              Quoted(value) + " in column " +
                                  ColumnName(column) + " is not " +
                                  std::string(expected));
  }

  void ReadDateTime(const CsvRecord& record) {
    if (columns_.combined >= 0) {
      const std::string value =
          NeedValue(record, columns_.combined, "the date and time");
      auto parts = ParseDateTimeText(value);
      if (!parts) {
        BadValue(record, columns_.combined, value,
                 "a date and time (yyyy-mm-dd hh:mm:ss)");
      }
      dates_.push_back(parts->first);
      times_.push_back(parts->second);
      return;
    }
    const std::string date = NeedValue(record, columns_.date, "the date");
    std::optional<std::string> date_text = ParseDateText(date);
    if (!date_text)
      BadValue(record, columns_.date, date, "a date (yyyy-mm-dd)");
    const std::string time = NeedValue(record, columns_.time, "the time");
    std::optional<std::string> time_text = ParseTimeText(time);
    if (!time_text) BadValue(record, columns_.time, time, "a time (hh:mm:ss)");
    dates_.push_back(*date_text);
    times_.push_back(*time_text);
  }

  void ReadRecords() {
    values_.assign(value_columns_.size(), {});
    for (size_t r = 1; r < records_.size(); ++r) {
      const CsvRecord& record = records_[r];
      CheckFieldCount(record);
      ReadDateTime(record);
      for (size_t v = 0; v < value_columns_.size(); ++v) {
        values_[v].push_back(Trim(record.fields[value_columns_[v]]));
      }
    }
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
    std::vector<ColumnShape> shapes;
    for (size_t v = 0; v < value_columns_.size(); ++v) {
      std::vector<std::string_view> views(values_[v].begin(), values_[v].end());
      shapes.push_back(InferColumnShape(views));
      application.variables.push_back(
          NewVariable(names.Take(header_[value_columns_[v]], value_columns_[v]),
                      shapes.back().type, shapes.back().length,
                      shapes.back().decimals, static_cast<int>(v) + 3, 0));
    }
    application.records.reserve(dates_.size());
    for (size_t r = 0; r < dates_.size(); ++r) {
      std::vector<Variant> record;
      record.reserve(value_columns_.size() + 2);
      record.emplace_back(dates_[r]);
      record.emplace_back(times_[r]);
      for (size_t v = 0; v < value_columns_.size(); ++v) {
        const std::string& text = values_[v][r];
        if (text.empty()) {
          record.push_back(Variant::Null());
        } else if (shapes[v].type == "N") {
          record.push_back(Variant(*ParsePlainNumber(text)));
        } else {
          record.push_back(Variant(text));
        }
      }
      application.records.push_back(std::move(record));
    }
    return application;
  }

  const std::vector<CsvRecord>& records_;
  std::string_view file_;
  std::vector<std::string> header_;
  DateTimeColumns columns_;
  std::vector<int> value_columns_;
  std::vector<std::string> dates_;
  std::vector<std::string> times_;
  std::vector<std::vector<std::string>> values_;  // per value column
};

}  // namespace

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
  bool any = false;
  bool numeric = true;
  bool negative = false;
  int64_t integer_digits = 1;
  int64_t decimals = 0;
  int64_t longest = 1;
  for (std::string_view value : values) {
    if (value.empty()) continue;
    any = true;
    longest = std::max(longest, CharacterCount(value));
    if (!numeric) continue;
    std::optional<NumberParts> parts = SplitPlainNumber(value);
    if (!parts || !ParsePlainNumber(value)) {
      numeric = false;
      continue;
    }
    negative = negative || parts->negative;
    integer_digits = std::max(integer_digits, parts->integer_digits);
    decimals = std::max(decimals, parts->decimals);
  }
  if (!any || !numeric) return ColumnShape{"T", ClampLength(longest), 0};
  const int64_t length =
      integer_digits + decimals + (negative ? 1 : 0) + (decimals > 0 ? 1 : 0);
  return ColumnShape{"N", ClampLength(length),
                     static_cast<int16_t>(std::min<int64_t>(decimals, 255))};
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
  const std::vector<std::string> parts = Split(text, ':');
  if (parts.size() != 2 && parts.size() != 3) return std::nullopt;
  if (parts[0].empty() || parts[0].size() > 2 || !AllDigits(parts[0])) {
    return std::nullopt;
  }
  for (size_t i = 1; i < parts.size(); ++i) {
    if (parts[i].size() != 2 || !AllDigits(parts[i])) return std::nullopt;
  }
  const int hour = std::stoi(parts[0]);
  const int minute = std::stoi(parts[1]);
  const int second = parts.size() == 3 ? std::stoi(parts[2]) : 0;
  if (hour > 23 || minute > 59 || second > 59) return std::nullopt;
  return TwoDigits(hour) + ":" + TwoDigits(minute) + ":" + TwoDigits(second);
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
  if (names.size() >= 2 && ParseDateText(value(0)) && ParseTimeText(value(1))) {
    return DateTimeColumns{0, 1, -1};
  }
  if (!names.empty() && ParseDateTimeText(value(0))) {
    return DateTimeColumns{-1, -1, 0};
  }
  return std::nullopt;
}

NewApplication ApplicationFromCsv(const std::vector<CsvRecord>& records,
                                  std::string_view file_name,
                                  std::string_view title) {
  return CsvImporter(records, file_name).Build(title);
}

}  // namespace rz
