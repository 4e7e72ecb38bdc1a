// Copyright 2026 The Veltmark authors.

#include "appfile/column_cache_builder.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <limits>
#include <utility>

namespace rz {
namespace {

constexpr size_t kAllBuffers = size_t{8} << 20;
constexpr size_t kLargestBuffer = size_t{64} << 10;
constexpr size_t kSmallestBuffer = size_t{4} << 10;

// The sections of the variable with 0-based index `index`.
size_t NullsSection(size_t index) {
  return ColumnCache::SectionIndex(static_cast<int>(index + 1), 0);
}
size_t ValuesSection(size_t index) { return NullsSection(index) + 1; }
size_t ArenaSection(size_t index) { return NullsSection(index) + 2; }

}  // namespace

ColumnCacheBuilder::ColumnCacheBuilder(std::string spool_path,
                                       std::vector<bool> numeric)
    : spool_path_(std::move(spool_path)),
      numeric_(std::move(numeric)),
      cells_(numeric_.size()),
      sections_(ColumnCache::SectionCount(numeric_.size())),
      code_sections_(numeric_.size()),
      states_(numeric_.size()) {
  buffer_limit_ =
      std::clamp(kAllBuffers / (sections_.size() + code_sections_.size()),
                 kSmallestBuffer, kLargestBuffer);
  spool_fd_ =
      open(spool_path_.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
}

ColumnCacheBuilder::~ColumnCacheBuilder() { GiveUp(); }

void ColumnCacheBuilder::SetNull(int variable) {
  CachedCell& cell = cells_[static_cast<size_t>(variable - 1)];
  cell.is_null = true;
  cell.text.clear();
  cells_pending_ = true;
}

void ColumnCacheBuilder::SetNumber(int variable, double number) {
  // The data file keeps no NaN (SQLite stores it as NULL) and no negative
  // zero (a whole number goes to the disk as an integer).
  if (std::isnan(number)) return SetNull(variable);
  CachedCell& cell = cells_[static_cast<size_t>(variable - 1)];
  cell.is_null = false;
  cell.number = number == 0 ? 0.0 : number;
  cells_pending_ = true;
}

void ColumnCacheBuilder::SetText(int variable, std::string_view text) {
  CachedCell& cell = cells_[static_cast<size_t>(variable - 1)];
  cell.is_null = false;
  cell.text.assign(text);
  cells_pending_ = true;
}

void ColumnCacheBuilder::EndRecord() {
  cells_pending_ = false;
  if (!Usable()) return;
  const uint64_t bit = records_ % 64;
  for (size_t k = 0; k < numeric_.size(); ++k) {
    const CachedCell& cell = cells_[k];
    ColumnState& state = states_[k];
    if (cell.is_null) state.null_word |= uint64_t{1} << bit;
    if (numeric_[k]) {
      const double number = cell.is_null ? 0.0 : cell.number;
      Put(sections_[ValuesSection(k)], &number, sizeof number);
    } else {
      if (!cell.is_null) {
        Put(sections_[ArenaSection(k)], cell.text.data(), cell.text.size());
        state.text_end += cell.text.size();
      }
      Put(sections_[ValuesSection(k)], &state.text_end, sizeof state.text_end);
      PutCode(k, cell);
    }
    if (bit == 63) {
      Put(sections_[NullsSection(k)], &state.null_word, sizeof state.null_word);
      state.null_word = 0;
    }
  }
  const double date_time = RecordDateTimeOfCells();
  Put(sections_[ColumnCache::kDateTimeSection], &date_time, sizeof date_time);
  if (records_ == 0) first_cells_ = cells_;
  ++records_;
}

double ColumnCacheBuilder::RecordDateTimeOfCells() const {
  // As RecordColumns works it out: from the texts of variables 1 and 2
  // (a null cell is empty text), none when either is numeric.
  if (numeric_.size() < 2 || numeric_[0] || numeric_[1]) {
    return std::numeric_limits<double>::quiet_NaN();
  }
  return RecordDateTime(cells_[0].text, cells_[1].text);
}

void ColumnCacheBuilder::PutCode(size_t index, const CachedCell& cell) {
  // As ColumnCache::Write codes a column: entries in the order they first
  // appear, a null cell as the empty text.
  ColumnState& state = states_[index];
  if (state.too_many_entries) return;
  const std::string_view text =
      cell.is_null ? std::string_view() : std::string_view(cell.text);
  // Records often repeat the text before (a date): no lookup then.
  if (state.last_code < state.entry_ends.size()) {
    const size_t begin =
        state.last_code == 0 ? 0 : state.entry_ends[state.last_code - 1];
    const std::string_view last(state.entry_arena.data() + begin,
                                state.entry_ends[state.last_code] - begin);
    if (last == text) {
      Put(code_sections_[index], &state.last_code, sizeof state.last_code);
      return;
    }
  }
  auto found = state.entry_ids.find(text);
  if (found == state.entry_ids.end()) {
    if (state.entry_ids.size() == ColumnCache::kMaxEntries) {
      // Kept as texts: the entries are no longer needed.
      state.too_many_entries = true;
      state.entry_ids = {};
      state.entry_ends = {};
      state.entry_arena = {};
      code_sections_[index] = Section();
      return;
    }
    found = state.entry_ids
                .emplace(std::string(text),
                         static_cast<uint32_t>(state.entry_ids.size()))
                .first;
    state.entry_arena += text;
    state.entry_ends.push_back(state.entry_arena.size());
  }
  state.last_code = found->second;
  Put(code_sections_[index], &state.last_code, sizeof state.last_code);
}

void ColumnCacheBuilder::Put(Section& section, const void* data, size_t bytes) {
  section.buffer.append(static_cast<const char*>(data), bytes);
  section.bytes += bytes;
  if (section.buffer.size() >= buffer_limit_) Spool(section);
}

void ColumnCacheBuilder::Spool(Section& section) {
  if (!Usable() || section.buffer.empty()) return;
  if (!WriteAllAt(spool_fd_, section.buffer.data(), section.buffer.size(),
                  spool_bytes_)) {
    GiveUp();
    return;
  }
  section.checksum.Add(section.buffer.data(), section.buffer.size());
  section.chunks.emplace_back(spool_bytes_, section.buffer.size());
  spool_bytes_ += section.buffer.size();
  section.buffer.clear();
}

void ColumnCacheBuilder::GiveUp() {
  if (spool_fd_ < 0) return;
  close(spool_fd_);
  unlink(spool_path_.c_str());
  spool_fd_ = -1;
  for (std::vector<Section>* sections : {&sections_, &code_sections_}) {
    for (Section& section : *sections) {
      section.buffer = std::string();
      section.chunks.clear();
    }
  }
}

bool ColumnCacheBuilder::Finish(const std::string& path,
                                const DataFileStamp& stamp,
                                const std::string& data_path) {
  // A record set but not ended (its insert failed) leaves the last stored
  // record's cells unknown, and with them the cache's fingerprint.
  if (!Usable() || records_ == 0 || cells_pending_) {
    GiveUp();
    return false;
  }
  if (records_ % 64 != 0) {
    for (size_t k = 0; k < numeric_.size(); ++k) {
      Put(sections_[NullsSection(k)], &states_[k].null_word, sizeof(uint64_t));
    }
  }
  for (Section& section : sections_) Spool(section);
  for (Section& section : code_sections_) Spool(section);
  if (!Usable()) return false;

  RecordFingerprinter last;
  for (size_t k = 0; k < numeric_.size(); ++k) {
    const CachedCell& cell = cells_[k];
    if (cell.is_null) {
      last.AddNull();
    } else if (numeric_[k]) {
      last.AddNumber(cell.number);
    } else {
      last.AddText(cell.text);
    }
  }
  const std::string edges =
      ColumnCache::EdgeSectionBytes(numeric_, first_cells_, cells_);
  auto spooled = [this](const Section& section) {
    return ColumnCache::SectionSource{
        section.bytes, section.checksum.Value(),
        [this, &section](int fd, uint64_t offset) {
          return CopySection(section, fd, offset);
        }};
  };
  auto in_memory = [](const std::string& bytes) {
    return ColumnCache::SectionSource{
        bytes.size(), CacheChecksum(bytes.data(), bytes.size()),
        [&bytes](int fd, uint64_t offset) {
          return WriteAllAt(fd, bytes.data(), bytes.size(), offset);
        }};
  };
  std::vector<ColumnCache::SectionSource> sources;
  for (const Section& section : sections_) sources.push_back(spooled(section));
  sources[ColumnCache::kEdgeSection] = in_memory(edges);
  std::vector<ColumnCache::Kind> kinds;
  std::vector<std::string> entries(numeric_.size());
  for (size_t k = 0; k < numeric_.size(); ++k) {
    const ColumnState& state = states_[k];
    if (numeric_[k]) {
      kinds.push_back(ColumnCache::Kind::kNumber);
    } else if (state.too_many_entries ||
               !ColumnCache::KeepsCoded(records_, state.entry_ends.size())) {
      kinds.push_back(ColumnCache::Kind::kText);
    } else {
      kinds.push_back(ColumnCache::Kind::kCodedText);
      entries[k] =
          ColumnCache::EntrySectionBytes(state.entry_ends, state.entry_arena);
      sources[ValuesSection(k)] = spooled(code_sections_[k]);
      sources[ArenaSection(k)] = in_memory(entries[k]);
    }
  }
  const ColumnCache::Origin origin{stamp, 0, last.Value()};
  const bool written = ColumnCache::WriteSections(
      path, kinds, records_, static_cast<int64_t>(records_), origin, data_path,
      sources);
  GiveUp();  // the spool is no longer needed
  return written;
}

bool ColumnCacheBuilder::CopySection(const Section& section, int fd,
                                     uint64_t offset) const {
  std::string block;
  for (const auto& [from, bytes] : section.chunks) {
    off64_t in = static_cast<off64_t>(from);
    off64_t out = static_cast<off64_t>(offset);
    size_t left = bytes;
    while (left > 0) {
      const ssize_t copied = copy_file_range(spool_fd_, &in, fd, &out, left, 0);
      if (copied < 0 && errno == EINTR) continue;
      if (copied <= 0) break;  // not offered here: copy by hand below
      left -= static_cast<size_t>(copied);
    }
    if (left > 0) {
      block.resize(left);
      if (pread(spool_fd_, block.data(), left, in) !=
              static_cast<ssize_t>(left) ||
          !WriteAllAt(fd, block.data(), left, static_cast<uint64_t>(out))) {
        return false;
      }
    }
    offset += bytes;
  }
  return true;
}

}  // namespace rz
