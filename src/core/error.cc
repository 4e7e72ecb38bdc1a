// Copyright 2026 The Veltmark authors.

#include "core/error.h"

#include <utility>

namespace rz {
namespace {

std::string WhatText(int32_t number, const std::string& description,
                     const std::string& source) {
  std::string text = "error " + std::to_string(number) + ": " + description;
  if (!source.empty()) text += " (" + source + ")";
  return text;
}

std::string Quoted(std::string_view text) {
  std::string quoted;
  quoted.reserve(text.size() + 2);
  quoted.push_back('\'');
  quoted.append(text);
  quoted.push_back('\'');
  return quoted;
}

}  // namespace

Error::Error(int32_t number, std::string description, std::string source)
    : std::runtime_error(WhatText(number, description, source)),
      number_(number),
      description_(std::move(description)),
      source_(std::move(source)) {}

Error Error::WithSource(std::string_view source) const {
  if (!source_.empty()) return *this;
  Error copy(number_, description_, std::string(source));
  copy.file_ = file_;
  return copy;
}

Error Error::WithFile(std::string_view path) const {
  Error copy = *this;
  copy.file_ = std::string(path);
  return copy;
}

Error Error::InvalidArgument(std::string_view detail) {
  return Error(5, "Invalid procedure call or argument: " + std::string(detail));
}

Error Error::Overflow(std::string_view value) {
  return Error(6, "Overflow: " + Quoted(value));
}

Error Error::SubscriptOutOfRange(std::string_view detail) {
  return Error(9, "Subscript out of range: " + std::string(detail));
}

Error Error::TypeMismatch(std::string_view value) {
  return Error(13, "Type mismatch: " + Quoted(value));
}

Error Error::TypeMismatchFor(std::string_view value, std::string_view target) {
  return Error(
      13, "Type mismatch: " + Quoted(value) + " for " + std::string(target));
}

Error Error::ObjectNotSet(std::string_view what) {
  return Error(91, "Object variable not set: " + std::string(what));
}

Error Error::InvalidUseOfNull() { return Error(94, "Invalid use of Null"); }

Error Error::MemberNotSupported(std::string_view member) {
  return Error(
      438, "Object doesn't support this property or method: " + Quoted(member));
}

Error Error::OutOfMemory() { return Error(7, "Out of memory"); }

Error Error::Internal(std::string_view what) {
  return Error(51, "Internal error: " + std::string(what));
}

Error Error::WrongArgumentCount(std::string_view member) {
  return Error(450,
               "Wrong number of arguments or invalid property assignment: " +
                   Quoted(member));
}

Error Error::BadFileName(std::string_view path) {
  return Error(52, "Bad file name or number: " + Quoted(path));
}

Error Error::FileNotFound(std::string_view path) {
  return Error(53, "File not found: " + Quoted(path));
}

Error Error::PermissionDenied(std::string_view path) {
  return Error(70, "Permission denied: " + Quoted(path));
}

Error Error::PermissionDeniedFor(std::string_view path,
                                 std::string_view detail) {
  return Error(
      70, "Permission denied: " + Quoted(path) + ": " + std::string(detail));
}

Error Error::PathFileAccess(std::string_view path) {
  return Error(75, "Path/File access error: " + Quoted(path));
}

Error Error::PathNotFound(std::string_view path) {
  return Error(76, "Path not found: " + Quoted(path));
}

Error Error::BadDataFile(std::string_view path, std::string_view detail) {
  return Error(75, "Path/File access error: " + Quoted(path) + ": " +
                       std::string(detail));
}

Error Error::SocketInUse(std::string_view path) {
  return Error(70, "Another program is already listening on " + Quoted(path));
}

Error Error::FileAlreadyExists(std::string_view path) {
  return Error(58, "File already exists: " + Quoted(path));
}

Error Error::MalformedLine(std::string_view file, int64_t line,
                           std::string_view problem) {
  return Error(5, std::string(file) + ":" + std::to_string(line) + ": " +
                      std::string(problem));
}

Error Error::BadLineValue(std::string_view file, int64_t line,
                          std::string_view problem) {
  return Error(13, std::string(file) + ":" + std::to_string(line) + ": " +
                       std::string(problem));
}

Error Error::BadRecordValue(std::string_view file, int64_t record,
                            std::string_view problem) {
  return Error(13, std::string(file) + ": record " + std::to_string(record) +
                       ": " + std::string(problem));
}

Error Error::TooManyColumns(std::string_view path, int64_t columns,
                            int64_t limit) {
  return Error(6, "Overflow: " + Quoted(path) + ": " + std::to_string(columns) +
                      " columns needed (one per variable and the record "
                      "number), more than the limit of " +
                      std::to_string(limit) + " columns per table");
}

Error Error::DuplicateName(std::string_view name, std::string_view first,
                           std::string_view second) {
  return Error(457,
               "This key is already associated with an element of "
               "this collection: " +
                   Quoted(name) + " names both " + std::string(first) +
                   " and " + std::string(second));
}

Error Error::NotAnApplication(std::string_view path, std::string_view cause) {
  return Error(53,
               "not a Veltmark application: " + std::string(path) + ": " +
                   std::string(cause),
               "RZSelect.Initialize");
}

Error Error::ApplicationMissing() {
  return Error(53, "The Veltmark Application specified does not exist",
               "RZSelect.Initialize");
}

Error Error::NoApplication(std::string_view method) {
  return Error(81, "No Veltmark Application is open - call Initialize first",
               "RZSelect." + std::string(method));
}

Error Error::ViewNotFound(std::string_view view_name) {
  return Error(kViewNotFound,
               "Error - View '" + std::string(view_name) + "' not found!",
               "RZSelect");
}

Error Error::NotAvailableYet(std::string_view method, std::string_view what) {
  return Error(5,
               std::string(method) + " is not available yet: " +
                   std::string(what) + " is not built in this version",
               "RZSelect." + std::string(method));
}

Error Error::FilterBracketsUnbalanced() {
  return Error(5, "Filter brackets do not balance");
}

Error Error::ScriptFileRefused(std::string_view what, std::string_view reason) {
  return Error(70, "Permission denied: " + std::string(what) + ": " +
                       std::string(reason));
}

Error Error::RefusedToScripts(std::string_view member, std::string_view path) {
  return Error(70, "Permission denied: " + Quoted(path) +
                       " is not the script's own application (" +
                       std::string(member) + " from a script)");
}

Error Error::BadSetting(std::string_view file, std::string_view key,
                        std::string_view value, std::string_view expected) {
  std::string text = file.empty() ? "" : std::string(file) + ": ";
  return Error(5, text + std::string(key) + " " + Quoted(value) + " is not " +
                      std::string(expected));
}

}  // namespace rz
