// Copyright 2026 The Veltmark authors.

#include "repository/cell_store.h"

#include <sys/mman.h>

#include <algorithm>
#include <cstring>
#include <new>
#include <utility>

namespace rz {
namespace {

using Tag = Cell::Tag;

template <typename T>
void PutNumber(Cell& cell, Tag tag, T value) {
  static_assert(sizeof(T) <= Cell::kInlineTextCapacity);
  cell.tag = tag;
  cell.size = 0;
  std::memcpy(cell.payload, &value, sizeof value);
}

template <typename T>
T GetNumber(const Cell& cell) {
  T value;
  std::memcpy(&value, cell.payload, sizeof value);
  return value;
}

}  // namespace

template <typename T>
uint32_t CellStore::Arena<T>::Add(T value) {
  if (!free.empty()) {
    const uint32_t slot = free.back();
    free.pop_back();
    slots[slot] = std::move(value);
    return slot;
  }
  slots.push_back(std::move(value));
  return static_cast<uint32_t>(slots.size() - 1);
}

template <typename T>
void CellStore::Arena<T>::Release(uint32_t slot) {
  slots[slot] = T();  // frees a long text or drops the object reference now
  free.push_back(slot);
}

void CellStore::ChunkDeleter::operator()(Cell* cells) const {
  if (mapped_bytes == 0) {
    delete[] cells;
  } else {
    munmap(cells, mapped_bytes);
  }
}

CellStore::Chunk CellStore::NewChunk() const {
  // Every cell Empty: an Empty cell is all zero bytes.
  static_assert(static_cast<int>(Tag::kEmpty) == 0);
  constexpr size_t kMappedChunk = size_t{1} << 20;
  constexpr size_t kHugePage = size_t{2} << 20;
  const size_t cells =
      static_cast<size_t>(kChunkRecords) * static_cast<size_t>(field_count_);
  const size_t bytes = cells * sizeof(Cell);
  if (bytes < kMappedChunk) return Chunk(new Cell[cells](), ChunkDeleter{});
  const size_t mapped = (bytes + kHugePage - 1) / kHugePage * kHugePage;
  void* memory = mmap(nullptr, mapped, PROT_READ | PROT_WRITE,
                      MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  if (memory == MAP_FAILED) throw std::bad_alloc();
  madvise(memory, mapped, MADV_HUGEPAGE);  // a hint; refused is fine
  return Chunk(static_cast<Cell*>(memory), ChunkDeleter{mapped});
}

void CellStore::AddField() {
  const size_t old_width = static_cast<size_t>(field_count_);
  ++field_count_;
  for (Chunk& chunk : chunks_) {
    Chunk widened = NewChunk();
    for (size_t row = 0; row < static_cast<size_t>(kChunkRecords); ++row) {
      std::copy_n(chunk.get() + row * old_width, old_width,
                  widened.get() + row * (old_width + 1));
    }
    chunk = std::move(widened);
  }
}

void CellStore::GrowTo(int32_t record_count) {
  if (record_count <= record_count_) return;
  const size_t chunks_needed =
      (static_cast<size_t>(record_count) + kChunkRecords - 1) / kChunkRecords;
  while (chunks_.size() < chunks_needed) chunks_.push_back(NewChunk());
  record_count_ = record_count;
}

void CellStore::DeleteRecord(int32_t record) {
  const size_t width = static_cast<size_t>(field_count_);
  Cell* row = Row(record);
  for (size_t f = 0; f < width; ++f) ReleaseSlot(row[f]);
  for (int32_t r = record; r + 1 < record_count_; ++r) {
    std::copy_n(Row(r + 1), width, Row(r));
  }
  --record_count_;
  std::fill_n(Row(record_count_), width, Cell());
  const size_t chunks_used =
      (static_cast<size_t>(record_count_) + kChunkRecords - 1) / kChunkRecords;
  if (chunks_.size() > chunks_used + 1) chunks_.pop_back();
}

void CellStore::Clear() {
  chunks_.clear();
  record_count_ = 0;
  field_count_ = 0;
  texts_.Clear();
  boxed_.Clear();
}

std::optional<std::string_view> CellStore::TextAt(int32_t record,
                                                 int32_t field) const {
  const Cell& cell = Row(record)[field];
  if (cell.tag == Tag::kShortText) {
    return std::string_view(cell.payload, cell.size);
  }
  if (cell.tag == Tag::kLongText) {
    return std::string_view(texts_.slots[GetNumber<uint32_t>(cell)]);
  }
  return std::nullopt;
}

Variant CellStore::Get(int32_t record, int32_t field) const {
  const Cell& cell = Row(record)[field];
  switch (cell.tag) {
    case Tag::kEmpty:
      return Variant();
    case Tag::kNull:
      return Variant::Null();
    case Tag::kBoolean:
      return Variant(GetNumber<bool>(cell));
    case Tag::kInteger:
      return Variant(GetNumber<int16_t>(cell));
    case Tag::kLong:
      return Variant(GetNumber<int32_t>(cell));
    case Tag::kDouble:
      return Variant(GetNumber<double>(cell));
    case Tag::kDate:
      return Variant::Date(GetNumber<double>(cell));
    case Tag::kShortText:
      return Variant(std::string_view(cell.payload, cell.size));
    case Tag::kLongText:
      return Variant(texts_.slots[GetNumber<uint32_t>(cell)]);
    case Tag::kBoxed:
      return boxed_.slots[GetNumber<uint32_t>(cell)];
  }
  return Variant();
}

void CellStore::Set(int32_t record, int32_t field, const Variant& value) {
  Cell& cell = Row(record)[field];
  ReleaseSlot(cell);
  switch (value.Type()) {
    case VariantType::kEmpty:
      cell = Cell();
      return;
    case VariantType::kNull:
      cell = Cell();
      cell.tag = Tag::kNull;
      return;
    case VariantType::kBoolean:
      PutNumber(cell, Tag::kBoolean, value.ToBool());
      return;
    case VariantType::kInteger:
      PutNumber(cell, Tag::kInteger, value.ToInteger());
      return;
    case VariantType::kLong:
      PutNumber(cell, Tag::kLong, value.ToLong());
      return;
    case VariantType::kDouble:
      PutNumber(cell, Tag::kDouble, value.ToDouble());
      return;
    case VariantType::kDate:
      PutNumber(cell, Tag::kDate, value.ToDate());
      return;
    case VariantType::kString: {
      const std::string_view text = value.TextView();
      if (text.size() <= Cell::kInlineTextCapacity) {
        cell.tag = Tag::kShortText;
        cell.size = static_cast<uint8_t>(text.size());
        std::memcpy(cell.payload, text.data(), text.size());
      } else {
        PutNumber(cell, Tag::kLongText, texts_.Add(std::string(text)));
      }
      return;
    }
    case VariantType::kObject:
    case VariantType::kArray:
      PutNumber(cell, Tag::kBoxed, boxed_.Add(value));
      return;
  }
}

size_t CellStore::LiveArenaSlots() const {
  return texts_.Live() + boxed_.Live();
}

void CellStore::ReleaseSlot(const Cell& cell) {
  if (cell.tag == Tag::kLongText) {
    texts_.Release(GetNumber<uint32_t>(cell));
  } else if (cell.tag == Tag::kBoxed) {
    boxed_.Release(GetNumber<uint32_t>(cell));
  }
}

}  // namespace rz
