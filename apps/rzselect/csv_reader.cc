// Copyright 2026 The Veltmark authors.

#include "rzselect/csv_reader.h"

#include <algorithm>
#include <array>

#include "core/codec.h"
#include "core/error.h"
#include "core/text.h"

namespace rz {
namespace {

constexpr std::string_view kUtf8Bom = "\xEF\xBB\xBF";

// Beyond these a file is not a table of measurements, and holding the
// field or the record would only exhaust the memory.
constexpr size_t kMaxFieldBytes = size_t{16} << 20;
constexpr size_t kMaxFields = 32767;

// The bytes that end an unquoted field.
constexpr std::array<bool, 256> kFieldEnds = [] {
  std::array<bool, 256> ends{};
  ends[static_cast<unsigned char>(',')] = true;
  ends[static_cast<unsigned char>('\n')] = true;
  ends[static_cast<unsigned char>('\r')] = true;
  return ends;
}();

}  // namespace

CsvParser::CsvParser(std::string_view text, std::string_view file_name)
    : text_(text), file_name_(file_name) {}

bool CsvParser::Next(CsvRecord* record) {
  while (!record_ready_ && pos_ < text_.size()) {
    if (!ParseField()) break;
  }
  if (!record_ready_ && pos_ >= text_.size() &&
      (!record_.fields.empty() || !field_.empty() || field_quoted_)) {
    EndRecord();
  }
  if (!record_ready_) return false;
  record_ready_ = false;
  std::swap(*record, record_);
  record_.fields.clear();
  return true;
}

bool CsvParser::AtLineEnd() const {
  return pos_ < text_.size() && (text_[pos_] == '\n' || text_[pos_] == '\r');
}

void CsvParser::SkipLineEnd() {
  if (text_[pos_] == '\r' && pos_ + 1 < text_.size() &&
      text_[pos_ + 1] == '\n') {
    ++pos_;
  }
  ++pos_;
  ++line_;
}

bool CsvParser::ParseField() {
  if (record_.fields.empty() && field_.empty() && !field_quoted_) {
    record_.line = line_;
  }
  if (text_[pos_] == '"') {
    ParseQuoted();
  } else {
    // To the next comma or line end, a byte table test a character.
    const size_t begin = pos_;
    const size_t end = std::min(text_.size(), begin + kMaxFieldBytes + 1);
    while (pos_ < end && !kFieldEnds[static_cast<unsigned char>(text_[pos_])]) {
      ++pos_;
    }
    if (pos_ - begin > kMaxFieldBytes) FieldTooLong(line_);
    field_.append(text_.substr(begin, pos_ - begin));
  }
  if (pos_ >= text_.size()) return false;
  if (text_[pos_] == ',') {
    ++pos_;
    if (record_.fields.size() + 1 >= kMaxFields) {
      throw Error::MalformedLine(
          file_name_, record_.line,
          "more than " + std::to_string(kMaxFields) + " fields in a record");
    }
    record_.fields.push_back(std::move(field_));
    field_.clear();
    field_quoted_ = false;
    return true;
  }
  SkipLineEnd();
  EndRecord();
  return true;
}

void CsvParser::ParseQuoted() {
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
    if (c == '\n' ||
        (c == '\r' && (pos_ + 1 >= text_.size() || text_[pos_ + 1] != '\n'))) {
      ++line_;
    }
    field_ += c;
    ++pos_;
    if (field_.size() > kMaxFieldBytes) FieldTooLong(opened_on);
  }
  if (pos_ < text_.size() && text_[pos_] != ',' && !AtLineEnd()) {
    throw Error::MalformedLine(
        file_name_, line_,
        "text after the closing quote of a field (a quote inside a quoted "
        "field is written \"\")");
  }
}

void CsvParser::FieldTooLong(int64_t line) const {
  throw Error::MalformedLine(file_name_, line,
                             "a field longer than " +
                                 std::to_string(kMaxFieldBytes >> 20) +
                                 " MiB: not a CSV file of records?");
}

void CsvParser::EndRecord() {
  const bool blank = record_.fields.empty() && field_.empty() && !field_quoted_;
  record_.fields.push_back(std::move(field_));
  field_.clear();
  field_quoted_ = false;
  if (blank) {
    record_.fields.clear();
  } else {
    record_ready_ = true;
  }
}

bool IsValidUtf8(std::string_view bytes) {
  size_t pos = 0;
  // Plain ASCII, the usual case, a byte at a time without decoding.
  while (pos < bytes.size() && static_cast<unsigned char>(bytes[pos]) < 0x80) {
    ++pos;
  }
  while (pos < bytes.size()) {
    if (utf8::IsInvalidByte(utf8::NextChar(bytes, &pos))) return false;
  }
  return true;
}

std::string DecodeCsvText(std::string_view bytes) {
  bytes = WithoutUtf8Bom(bytes);
  if (IsValidUtf8(bytes)) return std::string(bytes);
  return DecodeWindows1252(bytes);
}

std::string_view WithoutUtf8Bom(std::string_view bytes) {
  if (bytes.starts_with(kUtf8Bom)) bytes.remove_prefix(kUtf8Bom.size());
  return bytes;
}

std::vector<CsvRecord> ParseCsv(std::string_view text,
                                std::string_view file_name) {
  CsvParser parser(text, file_name);
  std::vector<CsvRecord> records;
  CsvRecord record;
  while (parser.Next(&record)) records.push_back(record);
  return records;
}

}  // namespace rz
