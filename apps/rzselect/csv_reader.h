// Copyright 2026 The Veltmark authors.
//
// The CSV reader of `rzselect import`: comma-separated records with a header
// row of names, quoted as RFC 4180 says (a field in double quotes may hold
// commas, line breaks and doubled quotes ""), records ended by CR LF, LF or
// a lone CR, the last one with or without a line end.
//
// Text: a UTF-8 byte-order mark is dropped; a file that is valid UTF-8 is
// taken as it is, any other file is read as Windows-1252 (what spreadsheet
// programs on Windows write), so every byte means something.
//
// Lines: every record carries the number of the physical line it starts on
// (1-based, counting the header and the lines inside quoted fields), so a
// problem is reported where an editor shows it. Blank lines are skipped;
// they still count. A trailing comma makes a last empty field.
//
// Errors: ParseCsv raises Error::MalformedLine ("FILE:LINE: ...", error 5)
// for a quote that is never closed (at the line it opened on), for text
// after a closing quote, for a field longer than 16 MiB and for a record
// of more than 32,767 fields. It does not compare field counts; the importer
// does, since it knows the header. Nothing else throws.

#ifndef RZ_APPS_RZSELECT_CSV_READER_H_
#define RZ_APPS_RZSELECT_CSV_READER_H_

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace rz {

struct CsvRecord {
  int64_t line = 0;  // the physical line the record starts on
  std::vector<std::string> fields;
  bool operator==(const CsvRecord&) const = default;
};

// True when `bytes` is well-formed UTF-8 (no stray continuation bytes,
// truncated, overlong or surrogate sequences, nothing above U+10FFFF).
bool IsValidUtf8(std::string_view bytes);

// The file's bytes as UTF-8 text: without a leading UTF-8 byte-order mark,
// decoded from Windows-1252 when they are not valid UTF-8.
std::string DecodeCsvText(std::string_view bytes);

// `bytes` without a leading UTF-8 byte-order mark.
std::string_view WithoutUtf8Bom(std::string_view bytes);

// Reads the records of a text one at a time (the header is the first
// record), so a file of any size needs memory for one record only.
// `file_name` names the file in error messages; `text` must outlive the
// parser.
class CsvParser {
 public:
  CsvParser(std::string_view text, std::string_view file_name);

  // The next record into `record` (its fields replaced); false at the end.
  bool Next(CsvRecord* record);
  // How far the text has been read, in bytes.
  size_t Position() const { return pos_; }

 private:
  bool AtLineEnd() const;
  // Steps over CR LF, LF or CR and counts the line.
  void SkipLineEnd();
  // Reads one field and what ends it (a comma, a line end or the end of
  // the text). Returns false at the end of the text.
  bool ParseField();
  void ParseQuoted();
  [[noreturn]] void FieldTooLong(int64_t line) const;
  // Closes the current record; a blank line (one empty, unquoted field)
  // is no record.
  void EndRecord();

  std::string_view text_;
  std::string_view file_name_;
  size_t pos_ = 0;
  int64_t line_ = 1;
  CsvRecord record_;
  std::string field_;
  bool field_quoted_ = false;
  bool record_ready_ = false;
};

// Splits UTF-8 text into records of fields (the header is the first
// record). `file_name` names the file in error messages.
std::vector<CsvRecord> ParseCsv(std::string_view text,
                                std::string_view file_name);

}  // namespace rz

#endif  // RZ_APPS_RZSELECT_CSV_READER_H_
