// Copyright 2026 The Veltmark authors.
//
// Writers of a repository's records as text: CSV, TSV, a JSON array of
// objects, JSON lines and an aligned table for a terminal. Each writes a
// header of field names (JSON: the keys) and then one line per record,
// 1..RecordCount(), with "\n" line ends, to the stream it is given.
// RecordWriter writes records one at a time as a run in event mode hands
// them over (every format but the table, which needs all records for its
// widths). They read only cells that
// exist, so they never grow the store; the repository is taken by
// non-const reference only because Repository's cell reader is non-const.
//
// Cells are written as stored (a run has already formatted them):
//   - Empty and Null: the empty text (JSON: null);
//   - Boolean: "True"/"False" (JSON: true/false);
//   - Integer, Long: decimal (JSON: numbers);
//   - Double: its shortest round-trip text ("0.1", "1E+15"); NaN and the
//     infinities as "NaN", "Infinity", "-Infinity" (JSON: numbers; null for
//     the non-finite ones, which JSON cannot hold);
//   - Date: "yyyy-mm-dd hh:mm:ss" (out of the calendar's range: its number);
//   - text: as is (JSON: strings; bytes that are not UTF-8 become U+FFFD);
//   - an object: its class name in brackets ("[RuleEntry]", "[Nothing]");
//     an array: its items' texts joined by "; " (JSON: an array).
//
// DateTimeColumns: a run stores the record's date-time as a number in both
// fields 1 and 2. With first_two_are_date_time, a number in field 1 is
// written as its date "yyyy-mm-dd" and a number in field 2 as its time
// "hh:mm:ss"; other cells of those fields (texts, blanks, serials outside
// the calendar) are written as stored.
//
// CSV (RFC 4180): a value holding a comma, a double quote, CR or LF is
// enclosed in double quotes with its quotes doubled. TSV: tab, line feed,
// carriage return and backslash in a value are written "\t", "\n", "\r"
// and "\\". JSON lines: duplicate field names keep every value: the second
// "Weight" is keyed "Weight#2", the third "Weight#3" (skipping a key that
// is already taken). Table: columns two blanks apart, each as wide as its
// widest value in characters (code points; wide East Asian characters
// count one); numbers right-aligned, texts left-aligned; a column whose
// values are all numbers (or blank) has its name right-aligned too; a rule
// line of "-" under the names; tab, line feed and CR in a value shown as
// "\t", "\n", "\r"; no blanks at line ends.
//
// Errors: whatever the repository raises; nothing else (a failed stream is
// the caller's to check).

#ifndef RZ_REPOSITORY_REPOSITORY_WRITERS_H_
#define RZ_REPOSITORY_REPOSITORY_WRITERS_H_

#include <cstdint>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

#include "platform/repository.h"

namespace rz {

class ResultRepository;

struct DateTimeColumns {
  bool first_two_are_date_time = false;
};

enum class TextFormat { kCsv, kTsv, kJson, kJsonLines, kTable };

// "csv", "tsv", "json", "jsonl", "table"; nullopt for any other name.
std::optional<TextFormat> TextFormatNamed(std::string_view name);

// Writes records one at a time: Begin (the header, from the fields as they
// are then), Write for each record in order, End. Error 5 from the
// constructor for the table. The text is collected in a buffer and handed
// to `out` in blocks of about 64 KiB, by End and by the destructor (a
// writer left before End hands over what it has).
class RecordWriter {
 public:
  RecordWriter(TextFormat format, std::ostream& out, DateTimeColumns columns);
  ~RecordWriter();
  RecordWriter(const RecordWriter&) = delete;
  RecordWriter& operator=(const RecordWriter&) = delete;

  void Begin(Repository& repository);
  void Write(Repository& repository, int32_t record);
  void End();

 private:
  static constexpr size_t kBufferBytes = 64 * 1024;

  char Separator() const;
  void PutValue(std::string_view text);
  ResultRepository* AsResults(Repository& repository);
  void Flush();

  TextFormat format_;
  std::ostream& out_;
  std::string buffer_;
  DateTimeColumns columns_;
  int32_t field_count_ = 0;
  int64_t records_written_ = 0;
  std::vector<std::string> keys_;
  // The last repository written from, and it as our own (or null).
  Repository* cast_from_ = nullptr;
  ResultRepository* results_ = nullptr;
};

// Every record of `repository` in `format`.
void WriteRecords(TextFormat format, Repository& repository, std::ostream& out,
                  DateTimeColumns columns = {});

void WriteCsv(Repository& repository, std::ostream& out,
              DateTimeColumns columns = {});
void WriteTsv(Repository& repository, std::ostream& out,
              DateTimeColumns columns = {});
void WriteJsonLines(Repository& repository, std::ostream& out,
                    DateTimeColumns columns = {});
void WriteTable(Repository& repository, std::ostream& out,
                DateTimeColumns columns = {});

// The text a writer puts in a CSV, TSV or table cell for the value of field
// `field` (1-based), before quoting or escaping.
std::string CellText(const Variant& value, int32_t field,
                     DateTimeColumns columns = {});

// The JSON keys of the fields, duplicates made unique as described above.
std::vector<std::string> JsonKeys(Repository& repository);

}  // namespace rz

#endif  // RZ_REPOSITORY_REPOSITORY_WRITERS_H_
