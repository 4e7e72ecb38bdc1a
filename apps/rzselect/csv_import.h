// Copyright 2026 The Veltmark authors.
//
// Turns the records of a CSV file (csv_reader.h) into a new application:
//
// Date and time. Every record needs a date and a time of day. They are
// found, in this order of preference:
//   1. a column named "Date" and a column named "Time" (names trimmed,
//      compared without regard to case);
//   2. one column holding both: named "DateTime", "Date Time", "Date/Time",
//      "Date_Time", "Timestamp" or "Time Stamp", or named "Date" while no
//      column is named "Time" and its first value holds a time too;
//   3. by the first record's values: the first column holding a date and
//      the first holding a time, wherever they are;
//   4. the first column whose value in the first record is a date and time.
// Or the user chooses them (DateTimeChoice: a name or a 1-based number).
// Dates are "yyyy-mm-dd"; times "hh:mm" or "hh:mm:ss" (the hour may have
// one digit); a combined value is "yyyy-mm-dd hh:mm[:ss]" or
// "yyyy-mm-ddThh:mm[:ss]". They become variables 1 (date text) and 2 (time
// text "hh:mm:ss"); the other columns follow in file order.
//
// Types. A column whose non-empty values are all plain decimal numbers
// (optional sign, digits, optional point and digits; no exponent, no
// thousands separators) becomes type N: DECIMALS the most digits seen after
// the point, LENGTH the widest integer part + DECIMALS + 1 for a sign when a
// value is negative + 1 for the point when DECIMALS > 0. Every other column
// (also one without any value) is type T with LENGTH the longest value in
// characters (at least 1). Values are trimmed of spaces; an empty value is
// a missing one (Null). Names are trimmed; an empty name becomes
// "Column N" (N its 1-based column) and a repeated one gets " (2)", " (3)".
//
// Errors, each naming the file and the line (Error::MalformedLine, 5, or
// Error::BadLineValue, 13): no header row; a record with another number of
// fields than the header; no date and time columns; a date or time that
// does not read as one. Nothing is built when any record fails.

#ifndef RZ_APPS_RZSELECT_CSV_IMPORT_H_
#define RZ_APPS_RZSELECT_CSV_IMPORT_H_

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "rzselect/csv_reader.h"
#include "rzselect/new_application.h"

namespace rz {

// What a column's values make of it.
struct ColumnShape {
  std::string type;  // "N" or "T"
  int16_t length = 1;
  int16_t decimals = 0;
  bool operator==(const ColumnShape&) const = default;
};

// The shape of a column from its values, given one at a time (empty ones
// are ignored).
class ColumnShapeAccumulator {
 public:
  void Add(std::string_view value);
  // With `windows_1252` a text's length is its byte count (each byte one
  // character), else its UTF-8 characters.
  ColumnShape Shape(bool windows_1252 = false) const;

 private:
  bool any_ = false;
  bool numeric_ = true;
  bool negative_ = false;
  int64_t integer_digits_ = 1;
  int64_t decimals_ = 0;
  int64_t longest_ = 1;
  int64_t longest_bytes_ = 1;
};

// The shape of a column from its values (empty ones are ignored).
ColumnShape InferColumnShape(const std::vector<std::string_view>& values);

// A plain decimal number as described above, or nullopt.
std::optional<double> ParsePlainNumber(std::string_view text);

// "yyyy-mm-dd" (a real date) to the same text, or nullopt.
std::optional<std::string> ParseDateText(std::string_view text);
// "hh:mm" or "hh:mm:ss" (hour of one or two digits) to "hh:mm:ss".
std::optional<std::string> ParseTimeText(std::string_view text);
// "yyyy-mm-dd hh:mm[:ss]" or with "T" between: the date and time texts.
std::optional<std::pair<std::string, std::string>> ParseDateTimeText(
    std::string_view text);

// Where the date and time come from: two columns (date, time) or one
// column holding both (combined); 0-based column numbers.
struct DateTimeColumns {
  int date = -1;
  int time = -1;
  int combined = -1;
  bool operator==(const DateTimeColumns&) const = default;
};

// The columns the user chose for the date and time: by name (trimmed,
// without regard to case) or by 1-based number; `combined` alone, or
// `date` and `time` together.
struct DateTimeChoice {
  std::string date;
  std::string time;
  std::string combined;
  bool Empty() const {
    return date.empty() && time.empty() && combined.empty();
  }
};

// The chosen columns of `header`; Error::MalformedLine naming the file and
// the header's line for a column the header does not have, or the same
// column for the date and the time.
DateTimeColumns ChosenDateTimeColumns(const std::vector<std::string>& header,
                                      const DateTimeChoice& choice,
                                      std::string_view file_name,
                                      int64_t header_line);

// Finds the date and time columns by the rules above from the header and
// the first record (null when the file has no records).
std::optional<DateTimeColumns> FindDateTimeColumns(
    const std::vector<std::string>& header, const CsvRecord* first_record);

// The records of a CSV file from the start, each time Restart is called.
class CsvRecordSource {
 public:
  virtual ~CsvRecordSource() = default;
  virtual void Restart() = 0;
  // The next record; false after the last. Raises the reader's errors.
  virtual bool Next(CsvRecord* record) = 0;
};

// The records of a CSV file's bytes as CsvParser reads them (without a
// byte-order mark; UTF-8 or Windows-1252, ApplicationFromCsv tells which).
// `text` must outlive the source.
class CsvTextSource : public CsvRecordSource {
 public:
  CsvTextSource(std::string_view text, std::string_view file_name);
  void Restart() override;
  bool Next(CsvRecord* record) override;
  // How far the current reading has come, in bytes of the text.
  size_t Position() const { return parser_ ? parser_->Position() : 0; }

 private:
  std::string_view text_;
  std::string file_name_;
  std::unique_ptr<CsvParser> parser_;
};

// Builds the application titled `title` from the records of `file_name`
// (the first record is the header), reading them once to check every
// record and work out the variables. Texts are UTF-8 unless one of them is
// not; then every text of the file is read as Windows-1252. The records are not held: the
// application's record_source reads `source` again as the writer asks for
// them, so `source` must outlive the application.
NewApplication ApplicationFromCsv(CsvRecordSource& source,
                                  std::string_view file_name,
                                  std::string_view title,
                                  const DateTimeChoice& choice);

// The same from records in memory, with every record in `records`.
NewApplication ApplicationFromCsv(const std::vector<CsvRecord>& records,
                                  std::string_view file_name,
                                  std::string_view title);

}  // namespace rz

#endif  // RZ_APPS_RZSELECT_CSV_IMPORT_H_
