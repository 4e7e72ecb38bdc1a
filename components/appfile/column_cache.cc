// Copyright 2026 The Veltmark authors.

#include "appfile/column_cache.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <string_view>
#include <unordered_map>

#include "platform/file_system.h"

namespace rz {
namespace {

static_assert(sizeof(size_t) == sizeof(uint64_t),
              "text ends are stored as 64-bit offsets");

// The header is a row of 64-bit words in this machine's byte order; the
// byte-order word tells a file from a machine of the other order.
constexpr uint64_t kMagic = 0x31534C4F435A5200;  // "\0RZCOLS1" read LE
constexpr uint64_t kByteOrder = 0x0102030405060708;
constexpr uint64_t kVersion = 3;
constexpr uint64_t kMaxVariables = 32767;
constexpr size_t kFixedWords = 20;  // with the fingerprint and a spare
constexpr uint64_t kHasGeneration = 1;
constexpr int kPartsPerVariable = 3;
// The kinds of a cell in the edge section.
constexpr uint64_t kNullCell = 0;
constexpr uint64_t kNumberCell = 1;
constexpr uint64_t kTextCell = 2;

size_t FlagWords(size_t variables) { return (variables + 7) / 8; }

size_t HeaderWords(size_t variables) {
  return kFixedWords + FlagWords(variables) +
         3 * ColumnCache::SectionCount(variables) + 1;
}

size_t NullWordCount(size_t records) { return (records + 63) / 64; }

uint64_t RoundUp8(uint64_t bytes) { return (bytes + 7) / 8 * 8; }

uint64_t Mix(uint64_t lane, uint64_t word) {
  lane = (lane ^ word) * 0x9E3779B97F4A7C15;
  return lane ^ (lane >> 31);
}

// Adds `count` blocks of 32 bytes, a 64-bit word to each lane in turn.
void AddBlocks(uint64_t* lanes, const unsigned char* p, size_t count) {
  for (size_t block = 0; block < count; ++block, p += 32) {
    for (int lane = 0; lane < 4; ++lane) {
      uint64_t word;
      std::memcpy(&word, p + 8 * lane, 8);
      lanes[lane] = Mix(lanes[lane], word);
    }
  }
}

void PutIdentity(const FileIdentity& identity, uint64_t* words) {
  words[0] = identity.exists ? 1 : 0;
  words[1] = identity.device;
  words[2] = identity.inode;
  words[3] = static_cast<uint64_t>(identity.size);
  words[4] = static_cast<uint64_t>(identity.modified_ns);
}

FileIdentity GetIdentity(const uint64_t* words) {
  FileIdentity identity;
  identity.exists = words[0] != 0;
  identity.device = words[1];
  identity.inode = words[2];
  identity.size = static_cast<int64_t>(words[3]);
  identity.modified_ns = static_cast<int64_t>(words[4]);
  return identity;
}

// Maps the pages of [data, data + bytes) in one call instead of a fault
// per page as they are first read (a hint: older kernels refuse it).
void PrefaultPages(const char* data, size_t bytes) {
#ifdef MADV_POPULATE_READ
  static const uintptr_t kPage = static_cast<uintptr_t>(sysconf(_SC_PAGESIZE));
  const uintptr_t begin = reinterpret_cast<uintptr_t>(data) / kPage * kPage;
  const uintptr_t end = reinterpret_cast<uintptr_t>(data) + bytes;
  if (end > begin) {
    madvise(reinterpret_cast<void*>(begin), end - begin, MADV_POPULATE_READ);
  }
#else
  (void)data;
  (void)bytes;
#endif
}

// The cells of record `index` (0-based) as `columns` hold them.
std::vector<CachedCell> CellsOf(const RecordColumns& columns, size_t index) {
  std::vector<CachedCell> cells(static_cast<size_t>(columns.VariableCount()));
  for (int k = 1; k <= columns.VariableCount(); ++k) {
    const RecordColumn& column = columns.Column(k);
    CachedCell& cell = cells[static_cast<size_t>(k - 1)];
    cell.is_null = column.IsNull(index);
    if (cell.is_null) continue;
    if (column.Numeric()) {
      cell.number = column.Number(index);
    } else {
      cell.text = std::string(column.Text(index));
    }
  }
  return cells;
}

// A text column's texts as the cache writes them (ColumnCache::Write).
struct TextLayout {
  bool coded = false;
  std::vector<uint32_t> codes;  // coded: each record's entry
  std::string entries;          // coded: the entry section
  std::vector<size_t> ends;     // plain, from a coded column: the ends
  std::string arena;            // and the texts
};

// Codes the texts of `column` when ColumnCache::KeepsCoded says so, in the
// order they first appear (a null cell as the empty text: the builder does
// the same, so both write the same bytes). A coded column kept plain gets
// its texts written out.
TextLayout LayOutTexts(const RecordColumn& column, size_t records) {
  TextLayout layout;
  std::unordered_map<std::string_view, uint32_t> ids;
  std::vector<size_t> entry_ends;
  std::string entry_arena;
  layout.codes.reserve(records);
  for (size_t i = 0; i < records && ids.size() <= ColumnCache::kMaxEntries;
       ++i) {
    const std::string_view text = column.Text(i);
    const auto [found, added] =
        ids.emplace(text, static_cast<uint32_t>(ids.size()));
    if (added) {
      entry_arena += text;
      entry_ends.push_back(entry_arena.size());
    }
    layout.codes.push_back(found->second);
  }
  layout.coded = layout.codes.size() == records &&
                 ColumnCache::KeepsCoded(records, ids.size());
  if (layout.coded) {
    layout.entries = ColumnCache::EntrySectionBytes(entry_ends, entry_arena);
    return layout;
  }
  layout.codes = std::vector<uint32_t>();
  if (column.Coded()) {
    for (size_t i = 0; i < records; ++i) {
      layout.arena += column.Text(i);
      layout.ends.push_back(layout.arena.size());
    }
  }
  return layout;
}

// Ends that never decrease and stop at `bytes`, the arena's length.
bool EndsFit(const ColumnBuffer<size_t>& ends, uint64_t bytes) {
  size_t previous = 0;
  for (size_t i = 0; i < ends.size(); ++i) {
    if (ends[i] < previous) return false;
    previous = ends[i];
  }
  return previous == bytes;
}

}  // namespace

std::string ColumnCache::EntrySectionBytes(const std::vector<size_t>& ends,
                                           std::string_view arena) {
  std::string bytes;
  const uint64_t count = ends.size();
  bytes.append(reinterpret_cast<const char*>(&count), sizeof count);
  bytes.append(reinterpret_cast<const char*>(ends.data()),
               ends.size() * sizeof(size_t));
  bytes += arena;
  return bytes;
}

uint64_t CacheChecksum(const void* data, size_t bytes) {
  CacheChecksummer checksum;
  checksum.Add(data, bytes);
  return checksum.Value();
}

void CacheChecksummer::Add(const void* data, size_t bytes) {
  const auto* p = static_cast<const unsigned char*>(data);
  total_bytes_ += bytes;
  if (pending_bytes_ > 0) {
    const size_t taken = std::min(bytes, kBlock - pending_bytes_);
    std::memcpy(pending_ + pending_bytes_, p, taken);
    pending_bytes_ += taken;
    p += taken;
    bytes -= taken;
    if (pending_bytes_ < kBlock) return;
    AddBlocks(lanes_, pending_, 1);
    pending_bytes_ = 0;
  }
  const size_t blocks = bytes / kBlock;
  AddBlocks(lanes_, p, blocks);
  p += blocks * kBlock;
  pending_bytes_ = bytes - blocks * kBlock;
  if (pending_bytes_ > 0) std::memcpy(pending_, p, pending_bytes_);
}

uint64_t CacheChecksummer::Value() const {
  // What is left of the last block: its whole words go to the first lane,
  // then the bytes after them as one word.
  uint64_t first = lanes_[0];
  const size_t words = pending_bytes_ / 8;
  for (size_t i = 0; i < words; ++i) {
    uint64_t word;
    std::memcpy(&word, pending_ + 8 * i, 8);
    first = Mix(first, word);
  }
  uint64_t rest = 0;
  std::memcpy(&rest, pending_ + 8 * words, pending_bytes_ % 8);
  uint64_t sum = Mix(first, rest);
  for (int lane = 1; lane < 4; ++lane) sum = Mix(sum, lanes_[lane]);
  return Mix(sum, total_bytes_);
}

void RecordFingerprinter::AddNull() { value_ = Mix(value_, Mix(0, 1)); }

void RecordFingerprinter::AddNumber(double number) {
  value_ = Mix(value_, CacheChecksum(&number, sizeof number));
}

void RecordFingerprinter::AddText(std::string_view text) {
  value_ = Mix(value_, CacheChecksum(text.data(), text.size()));
}

uint64_t RecordFingerprint(const RecordColumns& columns, size_t index) {
  RecordFingerprinter fingerprint;
  for (int k = 1; k <= columns.VariableCount(); ++k) {
    const RecordColumn& column = columns.Column(k);
    if (column.IsNull(index)) {
      fingerprint.AddNull();
    } else if (column.Numeric()) {
      fingerprint.AddNumber(column.Number(index));
    } else {
      fingerprint.AddText(column.Text(index));
    }
  }
  return fingerprint.Value();
}

bool WriteAllAt(int fd, const void* data, size_t bytes, uint64_t offset) {
  const char* from = static_cast<const char*>(data);
  while (bytes > 0) {
    const ssize_t written = pwrite(fd, from, bytes, static_cast<off_t>(offset));
    if (written < 0 && errno == EINTR) continue;
    if (written <= 0) return false;
    from += written;
    bytes -= static_cast<size_t>(written);
    offset += static_cast<uint64_t>(written);
  }
  return true;
}

size_t ColumnCache::SectionCount(size_t variables) {
  return 2 + kPartsPerVariable * variables;
}

size_t ColumnCache::SectionIndex(int variable, int part) {
  return 2 + kPartsPerVariable * static_cast<size_t>(variable - 1) +
         static_cast<size_t>(part);
}

std::string ColumnCache::EdgeSectionBytes(const std::vector<bool>& numeric,
                                          const std::vector<CachedCell>& first,
                                          const std::vector<CachedCell>& last) {
  // Per cell a word for its kind, a word for its number's bits or its
  // text's length, then the text padded to a whole word.
  std::string bytes;
  auto put_word = [&bytes](uint64_t word) {
    bytes.append(reinterpret_cast<const char*>(&word), sizeof word);
  };
  for (const std::vector<CachedCell>* record : {&first, &last}) {
    for (size_t k = 0; k < numeric.size(); ++k) {
      const CachedCell& cell = (*record)[k];
      if (cell.is_null) {
        put_word(kNullCell);
        put_word(0);
      } else if (numeric[k]) {
        uint64_t bits;
        std::memcpy(&bits, &cell.number, sizeof bits);
        put_word(kNumberCell);
        put_word(bits);
      } else {
        put_word(kTextCell);
        put_word(cell.text.size());
        bytes += cell.text;
        bytes.resize(RoundUp8(bytes.size()), '\0');
      }
    }
  }
  return bytes;
}

std::string ColumnCache::PathFor(const std::string& data_path) {
  constexpr std::string_view kDataExtension = ".rzd";
  if (data_path.size() > kDataExtension.size() &&
      data_path.ends_with(kDataExtension)) {
    return data_path.substr(0, data_path.size() - kDataExtension.size()) +
           ".rzc";
  }
  return data_path + ".rzc";
}

bool ColumnCache::Write(const std::string& path, const RecordColumns& columns,
                        const Origin& origin, const std::string& data_path) {
  const size_t records = columns.RecordCount();
  std::vector<bool> numeric;
  for (int k = 1; k <= columns.VariableCount(); ++k) {
    numeric.push_back(columns.Column(k).Numeric());
  }
  const std::string edges =
      records == 0 ? std::string()
                   : EdgeSectionBytes(numeric, CellsOf(columns, 0),
                                      CellsOf(columns, records - 1));
  std::vector<SectionSource> sections;
  auto add = [&sections](const void* data, size_t bytes) {
    sections.push_back({bytes, CacheChecksum(data, bytes),
                        [data, bytes](int fd, uint64_t offset) {
                          return WriteAllAt(fd, data, bytes, offset);
                        }});
  };
  std::vector<Kind> kinds;
  // The texts of each text column as written; they must live until the
  // sections are written.
  std::vector<TextLayout> layouts(numeric.size());
  add(columns.DateTimes().data(), records * sizeof(double));
  add(edges.data(), edges.size());
  for (int k = 1; k <= columns.VariableCount(); ++k) {
    const RecordColumn& column = columns.Column(k);
    add(column.Nulls().Words(), NullWordCount(records) * sizeof(uint64_t));
    if (column.Numeric()) {
      kinds.push_back(Kind::kNumber);
      add(column.Numbers(), records * sizeof(double));
      add(nullptr, 0);
      continue;
    }
    TextLayout& layout = layouts[static_cast<size_t>(k - 1)];
    layout = LayOutTexts(column, records);
    if (layout.coded) {
      kinds.push_back(Kind::kCodedText);
      add(layout.codes.data(), layout.codes.size() * sizeof(uint32_t));
      add(layout.entries.data(), layout.entries.size());
    } else if (!column.Coded()) {
      kinds.push_back(Kind::kText);
      add(column.TextEnds(), records * sizeof(size_t));
      add(column.TextArena().data(), column.TextArena().size());
    } else {
      kinds.push_back(Kind::kText);
      add(layout.ends.data(), layout.ends.size() * sizeof(size_t));
      add(layout.arena.data(), layout.arena.size());
    }
  }
  return WriteSections(path, kinds, records, columns.LastRecordNumber(), origin,
                       data_path, sections);
}

bool ColumnCache::WriteSections(const std::string& path,
                                const std::vector<Kind>& kinds, size_t records,
                                int64_t last_record_number,
                                const Origin& origin,
                                const std::string& data_path,
                                const std::vector<SectionSource>& sections) {
  const size_t variables = kinds.size();
  if (sections.size() != SectionCount(variables)) return false;
  // A temporary name that recovery removes if this process is killed.
  const std::string temp = TemporaryNameFor(path);
  const int fd =
      open(temp.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
  if (fd < 0) return false;
  struct stat data_info {};
  if (stat(data_path.c_str(), &data_info) != 0 ||
      fchmod(fd, data_info.st_mode & 0666) != 0) {
    close(fd);
    unlink(temp.c_str());
    return false;
  }
  std::vector<uint64_t> header(HeaderWords(variables), 0);
  header[0] = kMagic;
  header[1] = kByteOrder;
  header[2] = kVersion;
  header[3] = variables;
  header[4] = records;
  header[5] = static_cast<uint64_t>(last_record_number);
  header[6] = origin.edit_generation ? kHasGeneration : 0;
  header[7] = static_cast<uint64_t>(origin.edit_generation.value_or(0));
  PutIdentity(origin.stamp.file, &header[8]);
  PutIdentity(origin.stamp.wal, &header[13]);
  header[18] = origin.last_record_fingerprint;
  auto* flags = reinterpret_cast<unsigned char*>(&header[kFixedWords]);
  for (size_t k = 0; k < variables; ++k) {
    flags[k] = static_cast<unsigned char>(kinds[k]);
  }
  uint64_t* table = &header[kFixedWords + FlagWords(variables)];
  uint64_t offset = header.size() * sizeof(uint64_t);
  bool ok = true;
  for (size_t s = 0; s < sections.size() && ok; ++s) {
    table[3 * s] = offset;
    table[3 * s + 1] = sections[s].bytes;
    table[3 * s + 2] = sections[s].checksum;
    ok = sections[s].write(fd, offset);
    offset += RoundUp8(sections[s].bytes);
  }
  header.back() =
      CacheChecksum(header.data(), (header.size() - 1) * sizeof(uint64_t));
  ok = ok && WriteAllAt(fd, header.data(), header.size() * sizeof(uint64_t), 0);
  ok = close(fd) == 0 && ok;
  if (ok && rename(temp.c_str(), path.c_str()) == 0) return true;
  unlink(temp.c_str());
  return false;
}

std::unique_ptr<ColumnCache> ColumnCache::Open(
    const std::string& path, const std::vector<bool>& numeric) {
  const int fd = open(path.c_str(), O_RDONLY | O_CLOEXEC);
  if (fd < 0) return nullptr;
  struct stat info {};
  void* memory = MAP_FAILED;
  if (fstat(fd, &info) == 0 && S_ISREG(info.st_mode) && info.st_size > 0) {
    memory = mmap(nullptr, static_cast<size_t>(info.st_size), PROT_READ,
                  MAP_PRIVATE, fd, 0);
  }
  close(fd);  // the mapping stays
  if (memory == MAP_FAILED) return nullptr;
  std::unique_ptr<ColumnCache> cache(new ColumnCache(numeric));
  cache->file_size_ = static_cast<uint64_t>(info.st_size);
  cache->mapping_ = std::shared_ptr<const void>(
      memory, [size = cache->file_size_](const void* start) {
        munmap(const_cast<void*>(start), size);
      });
  if (!cache->ReadHeader()) return nullptr;
  return cache;
}

ColumnCache::ColumnCache(std::vector<bool> numeric)
    : numeric_(std::move(numeric)) {}

bool ColumnCache::ReadHeader() {
  const size_t variables = numeric_.size();
  if (variables > kMaxVariables) return false;
  const size_t header_words = HeaderWords(variables);
  const uint64_t header_bytes = header_words * sizeof(uint64_t);
  if (file_size_ < header_bytes) return false;
  std::vector<uint64_t> header(header_words);
  std::memcpy(header.data(), mapping_.get(), header_bytes);
  if (header[0] != kMagic || header[1] != kByteOrder || header[2] != kVersion ||
      header[3] != variables ||
      header.back() != CacheChecksum(header.data(), header_bytes - 8)) {
    return false;
  }
  const auto* flags =
      reinterpret_cast<const unsigned char*>(&header[kFixedWords]);
  kinds_.clear();
  for (size_t k = 0; k < variables; ++k) {
    const auto kind = static_cast<Kind>(flags[k]);
    if (flags[k] > static_cast<unsigned char>(Kind::kCodedText) ||
        (kind == Kind::kNumber) != numeric_[k]) {
      return false;
    }
    kinds_.push_back(kind);
  }
  record_count_ = header[4];
  last_record_number_ = static_cast<int64_t>(header[5]);
  if ((header[6] & kHasGeneration) != 0) {
    origin_.edit_generation = static_cast<int64_t>(header[7]);
  }
  origin_.stamp.file = GetIdentity(&header[8]);
  origin_.stamp.wal = GetIdentity(&header[13]);
  origin_.last_record_fingerprint = header[18];
  const uint64_t* table = &header[kFixedWords + FlagWords(variables)];
  sections_.resize(SectionCount(variables));
  for (size_t s = 0; s < sections_.size(); ++s) {
    Section& section = sections_[s];
    section = {table[3 * s], table[3 * s + 1], table[3 * s + 2]};
    if (section.offset < header_bytes || section.offset % 8 != 0 ||
        section.offset > file_size_ ||
        section.bytes > file_size_ - section.offset) {
      return false;  // truncated, or not written by Write
    }
  }
  return record_count_ < (uint64_t{1} << 40) &&
         sections_[kDateTimeSection].bytes == record_count_ * sizeof(double);
}

const char* ColumnCache::SectionData(const Section& section) const {
  const char* data = static_cast<const char*>(mapping_.get()) + section.offset;
  PrefaultPages(data, section.bytes);
  return CacheChecksum(data, section.bytes) == section.checksum ? data
                                                                : nullptr;
}

template <typename T>
ColumnBuffer<T> ColumnCache::Borrow(const Section& section,
                                    const char* data) const {
  return ColumnBuffer<T>(reinterpret_cast<const T*>(data),
                         section.bytes / sizeof(T), mapping_);
}

const ColumnCache::Section& ColumnCache::SectionOf(int variable,
                                                   int part) const {
  return sections_[SectionIndex(variable, part)];
}

const std::vector<CachedCell>* ColumnCache::EdgeRecord(bool last) const {
  if (!edges_read_) {
    edges_read_ = true;
    edges_usable_ = ReadEdgeRecords();
  }
  return edges_usable_ ? &edges_[last ? 1 : 0] : nullptr;
}

bool ColumnCache::ReadEdgeRecords() const {
  const Section& section = sections_[kEdgeSection];
  const char* data = record_count_ == 0 ? nullptr : SectionData(section);
  if (data == nullptr) return false;
  uint64_t at = 0;
  auto get_word = [&](uint64_t* word) {
    if (at > section.bytes || section.bytes - at < sizeof *word) return false;
    std::memcpy(word, data + at, sizeof *word);
    at += sizeof *word;
    return true;
  };
  for (std::vector<CachedCell>& record : edges_) {
    record.assign(numeric_.size(), CachedCell());
    for (size_t k = 0; k < numeric_.size(); ++k) {
      CachedCell& cell = record[k];
      uint64_t kind = 0;
      uint64_t payload = 0;
      if (!get_word(&kind) || !get_word(&payload)) return false;
      if (kind == kNullCell) continue;
      cell.is_null = false;
      if (kind == kNumberCell && numeric_[k]) {
        std::memcpy(&cell.number, &payload, sizeof payload);
      } else if (kind == kTextCell && !numeric_[k] &&
                 payload <= section.bytes - at) {
        cell.text.assign(data + at, payload);
        at += RoundUp8(payload);
      } else {
        return false;
      }
    }
  }
  return at == section.bytes;
}

std::optional<ColumnBuffer<double>> ColumnCache::ReadDateTimes() const {
  const Section& section = sections_[kDateTimeSection];
  if (section.bytes != record_count_ * sizeof(double)) return std::nullopt;
  const char* data = SectionData(section);
  if (data == nullptr) return std::nullopt;
  return Borrow<double>(section, data);
}

template <typename T>
ColumnBuffer<T> ColumnCache::Borrow(const char* data, size_t count) const {
  return ColumnBuffer<T>(reinterpret_cast<const T*>(data), count, mapping_);
}

std::optional<RecordColumn> ColumnCache::ReadColumn(int variable) const {
  const size_t index = static_cast<size_t>(variable - 1);
  const Section& nulls = SectionOf(variable, 0);
  const Section& values = SectionOf(variable, 1);
  const Section& arena = SectionOf(variable, 2);
  const size_t value_size =
      kinds_[index] == Kind::kCodedText ? sizeof(uint32_t) : sizeof(double);
  if (nulls.bytes != NullWordCount(record_count_) * sizeof(uint64_t) ||
      values.bytes != record_count_ * value_size) {
    return std::nullopt;
  }
  const char* null_data = SectionData(nulls);
  const char* value_data = SectionData(values);
  if (null_data == nullptr || value_data == nullptr) return std::nullopt;
  NullMask mask(Borrow<uint64_t>(nulls, null_data), record_count_);
  if (kinds_[index] == Kind::kNumber) {
    return RecordColumn(std::move(mask), Borrow<double>(values, value_data));
  }
  if (kinds_[index] == Kind::kCodedText) {
    return ReadCodedColumn(std::move(mask), values, value_data, arena);
  }
  ColumnBuffer<size_t> ends = Borrow<size_t>(values, value_data);
  // Text() slices the arena with these offsets: they must never decrease
  // nor pass its end, whatever the checksum says.
  if (!EndsFit(ends, arena.bytes)) return std::nullopt;
  const char* text_data = SectionData(arena);
  if (text_data == nullptr) return std::nullopt;
  return RecordColumn(std::move(mask), std::move(ends),
                      Borrow<char>(arena, text_data));
}

std::optional<RecordColumn> ColumnCache::ReadCodedColumn(
    NullMask nulls, const Section& codes, const char* code_data,
    const Section& entries) const {
  const char* entry_data = SectionData(entries);
  if (entry_data == nullptr || entries.bytes < sizeof(uint64_t)) {
    return std::nullopt;
  }
  uint64_t count = 0;
  std::memcpy(&count, entry_data, sizeof count);
  if (count > (entries.bytes - sizeof count) / sizeof(size_t)) {
    return std::nullopt;
  }
  const char* ends_data = entry_data + sizeof count;
  const char* text_data = ends_data + count * sizeof(size_t);
  const size_t text_bytes =
      entries.bytes - sizeof count - count * sizeof(size_t);
  ColumnBuffer<size_t> ends = Borrow<size_t>(ends_data, count);
  if (!EndsFit(ends, text_bytes)) return std::nullopt;
  ColumnBuffer<uint32_t> numbers = Borrow<uint32_t>(codes, code_data);
  // Every code must name an entry.
  uint32_t largest = 0;
  for (size_t i = 0; i < numbers.size(); ++i) {
    largest = std::max(largest, numbers[i]);
  }
  if (numbers.size() > 0 && largest >= count) return std::nullopt;
  return RecordColumn(std::move(nulls), std::move(numbers), std::move(ends),
                      Borrow<char>(text_data, text_bytes));
}

}  // namespace rz
