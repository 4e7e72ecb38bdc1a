// Copyright 2026 The Veltmark authors.
//
// rz::Error is the one exception type of the engine and its components. It
// carries the system's error number, a description and the source that
// raised it, as a host or a script sees them. Every number and message is
// made by one named factory below, so each is written exactly once.
//
// Numbers follow the automation conventions users of the product know:
// 5 invalid argument, 6 overflow, 9 subscript out of range, 13 type
// mismatch, 52/53/70/75/76 file problems, 91 object not set, 94 invalid
// use of Null, 438 member not supported; plus the system's own numbers 53
// (application missing), 81 (no open application) and 0x80040001 (view
// file missing).
//
// An error about a file whose description is fixed by the system (a view
// or an application that does not exist) carries the file apart from its
// description (File()), so a command line can print the file looked for
// after the system's own text.

#ifndef RZ_CORE_ERROR_H_
#define RZ_CORE_ERROR_H_

#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>

namespace rz {

class Error : public std::runtime_error {
 public:
  // The first user-defined error number; raised for a missing view file.
  static constexpr int32_t kViewNotFound = static_cast<int32_t>(0x80040001);

  Error(int32_t number, std::string description, std::string source = "");

  int32_t Number() const { return number_; }
  const std::string& Description() const { return description_; }
  const std::string& Source() const { return source_; }

  // The file the error is about when the description does not name it;
  // "" otherwise.
  const std::string& File() const { return file_; }

  // Returns a copy whose source is `source` when this one has none.
  Error WithSource(std::string_view source) const;
  // Returns a copy that carries `path` as its File().
  Error WithFile(std::string_view path) const;

  // Automation errors.
  static Error InvalidArgument(std::string_view detail);      // 5
  static Error Overflow(std::string_view value);              // 6
  static Error SubscriptOutOfRange(std::string_view detail);  // 9
  static Error TypeMismatch(std::string_view value);          // 13
  static Error ObjectNotSet(std::string_view what);           // 91
  static Error InvalidUseOfNull();                            // 94
  static Error MemberNotSupported(std::string_view member);   // 438
  static Error WrongArgumentCount(std::string_view member);   // 450
  // Memory ran out (std::bad_alloc met where it must not escape).
  static Error OutOfMemory();  // 7
  // A failure of the program itself that no input should cause: `what`
  // is the failure's own text.
  static Error Internal(std::string_view what);  // 51

  // A value of the wrong kind for `target` ("variable 3").
  static Error TypeMismatchFor(std::string_view value,
                               std::string_view target);  // 13

  // File errors; each names the path.
  static Error BadFileName(std::string_view path);       // 52
  static Error FileNotFound(std::string_view path);      // 53
  static Error PermissionDenied(std::string_view path);  // 70
  static Error PathFileAccess(std::string_view path);    // 75
  static Error PathNotFound(std::string_view path);      // 76
  // A permission problem with `path` that `detail` explains ("the folder
  // cannot be written").
  static Error PermissionDeniedFor(std::string_view path,
                                   std::string_view detail);  // 70
  // The file at `path` exists but is not what it must be (not a data file,
  // columns that do not match); `detail` says what is wrong.
  static Error BadDataFile(std::string_view path,
                           std::string_view detail);  // 75
  // Another running program already listens on the socket at `path`.
  static Error SocketInUse(std::string_view path);  // 70
  // A file that must not be replaced exists at `path`.
  static Error FileAlreadyExists(std::string_view path);  // 58

  // A line of a data file the user gave that cannot be used; the
  // description reads "file:line: problem", as compilers name a place.
  // MalformedLine: the line is not a record (fields, quotes); BadLineValue:
  // a value in it is of the wrong kind (a date that is not one).
  static Error MalformedLine(std::string_view file, int64_t line,
                             std::string_view problem);  // 5
  static Error BadLineValue(std::string_view file, int64_t line,
                            std::string_view problem);  // 13
  // A record of a data file whose value cannot be used: "file: record N:
  // problem".
  static Error BadRecordValue(std::string_view file, int64_t record,
                              std::string_view problem);  // 13
  // A table that would need more columns than the database allows: names
  // the file, the columns asked for and the limit.
  static Error TooManyColumns(std::string_view path, int64_t columns,
                              int64_t limit);  // 6
  // Two entries of a list that must have distinct names; `first` and
  // `second` say which entries they are.
  static Error DuplicateName(std::string_view name, std::string_view first,
                             std::string_view second);  // 457

  // The engine's own errors.
  static Error ApplicationMissing();  // 53
  // A file at the application's path that is not an application; `cause`
  // says why ("no [GENERAL] section").
  static Error NotAnApplication(std::string_view path,
                                std::string_view cause);  // 53
  static Error NoApplication(std::string_view method);    // 81
  static Error ViewNotFound(std::string_view view_name);  // 0x80040001
  static Error NotAvailableYet(std::string_view method,
                               std::string_view what);  // 5
  // A filter condition list whose brackets do not pair up.
  static Error FilterBracketsUnbalanced();  // 5

  // Scripting. A script file or include a script may not read: `what`
  // names the file or the directive and where it stands, `reason` why.
  static Error ScriptFileRefused(std::string_view what,
                                 std::string_view reason);  // 70
  // A script calling a member with a path outside its application.
  static Error RefusedToScripts(std::string_view member,
                                std::string_view path);  // 70
  // A setting of `file` (or an option, when `file` is "") that is not what
  // it must be: "FILE: KEY 'value' is not EXPECTED".
  static Error BadSetting(std::string_view file, std::string_view key,
                          std::string_view value,
                          std::string_view expected);  // 5

 private:
  int32_t number_;
  std::string description_;
  std::string source_;
  std::string file_;
};

}  // namespace rz

#endif  // RZ_CORE_ERROR_H_
