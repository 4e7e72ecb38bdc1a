// Copyright 2026 The Veltmark authors.

#include "rzselect/csv_reader.h"

#include "core/codec.h"
#include "core/error.h"
#include "core/text.h"

namespace rz {
namespace {

constexpr std::string_view kUtf8Bom = "\xEF\xBB\xBF";

// Reads the records of one text; one object per ParseCsv call.
class CsvParser {
 public:
  CsvParser(std::string_view text, std::string_view file_name)
      : text_(text), file_name_(file_name) {}

  std::vector<CsvRecord> Parse() {
    while (pos_ < text_.size()) {
      if (!ParseField()) break;
    }
    if (!record_.fields.empty() || !field_.empty() || field_quoted_) {
      EndRecord();
    }
    return std::move(records_);
  }

 private:
  bool AtLineEnd() const {
    return pos_ < text_.size() && (text_[pos_] == '\n' || text_[pos_] == '\r');
  }

  // Steps over CR LF, LF or CR and counts the line.
  void SkipLineEnd() {
    if (text_[pos_] == '\r' && pos_ + 1 < text_.size() &&
        text_[pos_ + 1] == '\n') {
      ++pos_;
    }
    ++pos_;
    ++line_;
  }

  // Reads one field and what ends it (a comma, a line end or the end of
  // the text). Returns false at the end of the text.
  bool ParseField() {
    if (record_.fields.empty() && field_.empty() && !field_quoted_) {
      record_.line = line_;
    }
    if (text_[pos_] == '"') {
      ParseQuoted();
    } else {
      while (pos_ < text_.size() && text_[pos_] != ',' && !AtLineEnd()) {
        field_ += text_[pos_++];
      }
    }
    if (pos_ >= text_.size()) return false;
    if (text_[pos_] == ',') {
      ++pos_;
      record_.fields.push_back(std::move(field_));
      field_.clear();
      field_quoted_ = false;
      return true;
    }
    SkipLineEnd();
    EndRecord();
    return true;
  }

  void ParseQuoted() {
    const int64_t opened_on = line_;
    field_quoted_ = true;
    ++pos_;
    while (true) {
      if (pos_ >= text_.size()) {
        throw Error::MalformedLine(file_name_, opened_on,
                                   "a quoted field is never closed");
      }
      const char c = text_[pos_];
      if (c == '"') {
        if (pos_ + 1 < text_.size() && text_[pos_ + 1] == '"') {
          field_ += '"';
          pos_ += 2;
          continue;
        }
        ++pos_;
        break;
      }
      if (c == '\n' || (c == '\r' && (pos_ + 1 >= text_.size() ||
                                      text_[pos_ + 1] != '\n'))) {
        ++line_;
      }
      field_ += c;
      ++pos_;
    }
    if (pos_ < text_.size() && text_[pos_] != ',' && !AtLineEnd()) {
      throw Error::MalformedLine(
          file_name_, line_,
          "text after the closing quote of a field (a quote inside a quoted "
          "field is written \"\")");
    }
  }

  // Closes the current record; a blank line (one empty, unquoted field)
  // is no record.
  void EndRecord() {
    const bool blank =
        record_.fields.empty() && field_.empty() && !field_quoted_;
    record_.fields.push_back(std::move(field_));
    if (!blank) records_.push_back(std::move(record_));
    record_ = CsvRecord();
    field_.clear();
    field_quoted_ = false;
  }

  std::string_view text_;
  std::string_view file_name_;
  size_t pos_ = 0;
  int64_t line_ = 1;
  CsvRecord record_;
  std::string field_;
  bool field_quoted_ = false;
  std::vector<CsvRecord> records_;
};

}  // namespace

bool IsValidUtf8(std::string_view bytes) {
  size_t pos = 0;
  while (pos < bytes.size()) {
    if (utf8::IsInvalidByte(utf8::NextChar(bytes, &pos))) return false;
  }
  return true;
}

std::string DecodeCsvText(std::string_view bytes) {
  if (bytes.starts_with(kUtf8Bom)) bytes.remove_prefix(kUtf8Bom.size());
  if (IsValidUtf8(bytes)) return std::string(bytes);
  return DecodeWindows1252(bytes);
}

std::vector<CsvRecord> ParseCsv(std::string_view text,
                                std::string_view file_name) {
  return CsvParser(text, file_name).Parse();
}

}  // namespace rz
