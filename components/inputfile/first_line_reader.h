// Copyright 2026 The Veltmark authors.
//
// FirstLineReader is the input-file reader: it reads one filter value from
// a named file, the file's first line.
//
// Where: a name starting with "/" is absolute; any other name is relative
// to $VELTMARK_INPUT_DIR when that is set and not empty, else to the
// working folder. "\" and "/" both separate folders; blanks around the name
// are ignored.
//
// What: the bytes up to the first CR or LF (so CR LF, LF and a lone CR all
// end the line), or the whole file when it has no line end, decoded from
// Windows-1252 and trimmed of blanks (spaces and tabs) at both ends. An
// empty file is read successfully and gives the empty text.
//
// Failure: a file that cannot be opened or read (missing, a folder, no
// permission, an empty name) is tried again Retries() times, 100 ms apart,
// through the sleep function given to the constructor. When every attempt
// fails, ReadInputFile returns "" and Success() is false; unless Silent(),
// one message box titled "Input File" with the exclamation icon and OK,
// naming the file and the reason, is shown through the toolkit.
// ReadInputFile never throws for a file problem (only std::bad_alloc, or
// what the toolkit raises when it cannot show anything).
//
// The reader keeps a reference to the toolkit, which must outlive it. Not
// thread-safe.

#ifndef RZ_INPUTFILE_FIRST_LINE_READER_H_
#define RZ_INPUTFILE_FIRST_LINE_READER_H_

#include <chrono>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

#include "platform/input_file_reader.h"
#include "platform/toolkit.h"

namespace rz {

class FirstLineReader : public InputFileReader {
 public:
  using Sleeper = std::function<void(std::chrono::milliseconds)>;

  static constexpr std::chrono::milliseconds kRetryPause{100};

  // `sleep` waits between attempts; the default really sleeps.
  explicit FirstLineReader(Toolkit& toolkit, Sleeper sleep = RealSleep);

  bool Silent() const override { return silent_; }
  void SetSilent(bool value) override { silent_ = value; }
  int16_t Retries() const override { return retries_; }
  void SetRetries(int16_t value) override {
    retries_ = value < 0 ? int16_t{0} : value;
  }
  std::string ReadInputFile(std::string_view name) override;
  bool Success() const override { return success_; }

  // The path a name is read from (the rules above), "/" separated.
  static std::string ResolvePath(std::string_view name);

 private:
  static void RealSleep(std::chrono::milliseconds pause);

  Toolkit& toolkit_;
  Sleeper sleep_;
  bool silent_ = false;
  int16_t retries_ = 0;
  bool success_ = false;
};

}  // namespace rz

#endif  // RZ_INPUTFILE_FIRST_LINE_READER_H_
