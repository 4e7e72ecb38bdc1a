// Copyright 2026 The Veltmark authors.
//
// InputFileReader reads one value from a named input file, for filter
// values that begin with "@". The engine creates one reader per value
// (Platform::CreateInputFileReader), sets Silent and Retries, calls
// ReadInputFile and then asks Success.
//
// A file that cannot be read is never an error: ReadInputFile returns the
// empty text and Success() is false. The component decides where a name is
// looked up and what the value of a file is (components/inputfile: an
// absolute name or one relative to $VELTMARK_INPUT_DIR; the first line,
// trimmed). Not thread-safe.

#ifndef RZ_PLATFORM_INPUT_FILE_READER_H_
#define RZ_PLATFORM_INPUT_FILE_READER_H_

#include <cstdint>
#include <string>
#include <string_view>

namespace rz {

class InputFileReader {
 public:
  virtual ~InputFileReader() = default;

  // When false (the default), a file that cannot be read is reported to the
  // user through the toolkit; when true nothing is shown.
  virtual bool Silent() const = 0;
  virtual void SetSilent(bool value) = 0;

  // Further attempts on a file that cannot be opened at once (0 = try
  // once); negative values count as 0.
  virtual int16_t Retries() const = 0;
  virtual void SetRetries(int16_t value) = 0;

  // The value held in the file `name`; the empty text when it cannot be
  // read. Never throws for a missing or unreadable file.
  virtual std::string ReadInputFile(std::string_view name) = 0;

  // Whether the last ReadInputFile read its file (false before the first).
  virtual bool Success() const = 0;
};

}  // namespace rz

#endif  // RZ_PLATFORM_INPUT_FILE_READER_H_
