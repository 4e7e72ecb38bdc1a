// Copyright 2026 The Veltmark authors.

#include "appfile/application_writer.h"

#include <unistd.h>

#include <cerrno>
#include <cstdio>

#include "appfile/column_cache.h"
#include "appfile/data_file_stamp.h"
#include "core/error.h"
#include "platform/file_system.h"

namespace rz {
namespace {

// The data file's companions that belong to it: an old journal must not be
// applied to the new file, so they move aside with it.
constexpr const char* kDataCompanions[] = {"", "-wal", "-shm"};

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
      data_temp_(TemporaryNameFor(data_path_)),
      cache_(std::make_unique<ColumnCacheBuilder>(
          TemporaryNameFor(ColumnCache::PathFor(data_path_)), numeric)) {
  data_ = DataWriter::Create(data_temp_, std::move(numeric), cache_.get());
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
    template_temp_ = TemporaryNameFor(template_path_);
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
  FinishCache();
}

void ApplicationWriter::FinishCache() {
  // Without a cache of its own the new data file must not keep one made
  // from another file under the same name.
  const std::string cache_path = ColumnCache::PathFor(data_path_);
  if (!cache_->Finish(cache_path, TakeDataFileStamp(data_path_), data_path_)) {
    DeleteFileQuietly(cache_path);
  }
  cache_.reset();
}

void ApplicationWriter::SetAsideExisting() {
  const std::string aside = TemporaryNameFor(data_path_, ".old");
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
  data_.reset();   // an uncommitted data writer removes its own file
  cache_.reset();  // and the builder its spool
  for (const char* suffix : kDataCompanions) {
    DeleteFileQuietly(data_temp_ + suffix);
  }
  if (!template_temp_.empty()) DeleteFileQuietly(template_temp_);
}

}  // namespace rz
