// Copyright 2026 The Veltmark authors.

#include "appfile/application_writer.h"

#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdio>

#include "core/error.h"
#include "platform/file_system.h"

namespace rz {
namespace {

// The data file's companions that belong to it: an old journal must not be
// applied to the new file, so they move aside with it.
constexpr const char* kDataCompanions[] = {"", "-wal", "-shm"};

// A name beside `path` that no other writer in this or another process
// uses: path + tag + "-<pid>-<n>".
std::string UniqueSibling(const std::string& path, std::string_view tag) {
  static std::atomic<unsigned> counter{0};
  return path + std::string(tag) + "-" + std::to_string(::getpid()) + "-" +
         std::to_string(++counter);
}

// Renames `from` to `to`; raises the error naming `to` on failure.
void MoveFile(const std::string& from, const std::string& to) {
  if (std::rename(from.c_str(), to.c_str()) != 0) {
    throw FileWriteError(errno, to);
  }
}

}  // namespace

ApplicationWriter::ApplicationWriter(std::string template_path,
                                     std::string data_path,
                                     std::vector<bool> numeric)
    : template_path_(std::move(template_path)),
      data_path_(std::move(data_path)),
      data_temp_(UniqueSibling(data_path_, ".tmp")) {
  data_ = DataWriter::Create(data_temp_, std::move(numeric));
}

ApplicationWriter::~ApplicationWriter() {
  if (!committed_) RemoveTemporaries();
}

void ApplicationWriter::Append(const std::vector<Variant>& values) {
  data_->Append(values);
  ++records_;
}

void ApplicationWriter::Commit(const std::string& template_text) {
  try {
    data_->Commit();
    data_.reset();
    template_temp_ = UniqueSibling(template_path_, ".tmp");
    WriteTextFileAtomically(template_temp_, template_text);
    SetAsideExisting();
    MoveFile(data_temp_, data_path_);
    try {
      MoveFile(template_temp_, template_path_);
    } catch (...) {
      DeleteFileQuietly(data_path_);
      throw;
    }
  } catch (...) {
    PutBackExisting();
    RemoveTemporaries();
    committed_ = true;  // nothing is left to undo
    throw;
  }
  committed_ = true;
  for (const auto& [original, aside] : set_aside_) DeleteFileQuietly(aside);
}

void ApplicationWriter::SetAsideExisting() {
  const std::string aside = UniqueSibling(data_path_, ".old");
  for (const char* suffix : kDataCompanions) {
    const std::string original = data_path_ + suffix;
    if (!FileExists(original)) continue;
    MoveFile(original, aside + suffix);
    set_aside_.emplace_back(original, aside + suffix);
  }
}

void ApplicationWriter::PutBackExisting() {
  for (const auto& [original, aside] : set_aside_) {
    std::rename(aside.c_str(), original.c_str());
  }
  set_aside_.clear();
}

void ApplicationWriter::RemoveTemporaries() {
  data_.reset();  // an uncommitted data writer removes its own file
  for (const char* suffix : kDataCompanions) {
    DeleteFileQuietly(data_temp_ + suffix);
  }
  if (!template_temp_.empty()) DeleteFileQuietly(template_temp_);
}

}  // namespace rz
