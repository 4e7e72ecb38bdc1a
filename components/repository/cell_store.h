// Copyright 2026 The Veltmark authors.
//
// CellStore holds the records of a result repository: a table of cells, one
// row per record and one column per field. Rows are kept in chunks of
// kChunkRecords records, each one allocation of whole rows: a run writes
// cells record by record in order, and growing the store only adds chunks,
// so no cell is ever copied to a larger buffer. A chunk of a megabyte or
// more comes straight from the kernel, zeroed, in huge pages where the
// system offers them: a run of a million records then neither clears its
// cells nor takes a page fault every 4 KiB.
//
// A Cell is 16 bytes and needs no heap allocation for the values a run
// writes: Empty, Null, Boolean, Integer, Long, Double, Date and texts of up
// to 14 bytes sit inside the cell. A longer text, an object or an array is
// kept in a side arena and the cell holds its slot number; slots freed by an
// overwrite or a deleted record are reused, so a store rewritten in place
// (event mode rewrites record 1 for every output record) does not grow.
//
// Every Variant written reads back equal, bit for bit for doubles (-0.0 and
// NaN included). Positions given to Get, Set and DeleteRecord are 0-based
// and must be in range (the repository checks them and raises its errors);
// nothing here throws except std::bad_alloc. Not thread-safe.

#ifndef RZ_REPOSITORY_CELL_STORE_H_
#define RZ_REPOSITORY_CELL_STORE_H_

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "core/variant.h"

namespace rz {

// One cell: a tag, the length of an inline text and 14 bytes of payload
// (a number, the text itself, or the slot of a value kept in an arena).
struct Cell {
  enum class Tag : uint8_t {
    kEmpty,
    kNull,
    kBoolean,
    kInteger,
    kLong,
    kDouble,
    kDate,
    kShortText,  // payload: the text's bytes, `size` of them
    kLongText,   // payload: slot in the text arena
    kBoxed,      // payload: slot in the arena of objects and arrays
  };
  static constexpr size_t kInlineTextCapacity = 14;

  Tag tag = Tag::kEmpty;
  uint8_t size = 0;
  char payload[kInlineTextCapacity] = {};
};
static_assert(sizeof(Cell) == 16, "a cell must stay 16 bytes");

class CellStore {
 public:
  static constexpr int32_t kChunkRecords = 8192;

  int32_t RecordCount() const { return record_count_; }
  int32_t FieldCount() const { return field_count_; }

  // Appends a field: every existing record gets an Empty cell for it.
  void AddField();
  // Extends the store to `record_count` records of Empty cells; does
  // nothing when it already holds that many.
  void GrowTo(int32_t record_count);
  // Removes one record; later records move up.
  void DeleteRecord(int32_t record);
  // No records and no fields.
  void Clear();

  Variant Get(int32_t record, int32_t field) const;
  // The cell's text when it holds one (no copy: valid until the cell
  // changes); nullopt for any other value.
  std::optional<std::string_view> TextAt(int32_t record, int32_t field) const;
  void Set(int32_t record, int32_t field, const Variant& value);

  // How many arena slots hold a value now (for tests of slot reuse).
  size_t LiveArenaSlots() const;

 private:
  // Values that do not fit in a cell, with a list of free slots.
  template <typename T>
  struct Arena {
    std::vector<T> slots;
    std::vector<uint32_t> free;

    uint32_t Add(T value);
    void Release(uint32_t slot);
    void Clear() {
      slots.clear();
      free.clear();
    }
    size_t Live() const { return slots.size() - free.size(); }
  };

  // Frees a chunk the way NewChunk made it: `mapped_bytes` from the
  // kernel, or with delete[] when 0.
  struct ChunkDeleter {
    size_t mapped_bytes = 0;
    void operator()(Cell* cells) const;
  };
  using Chunk = std::unique_ptr<Cell[], ChunkDeleter>;

  // The first cell of a record's row.
  Cell* Row(int32_t record) const {
    return chunks_[static_cast<size_t>(record / kChunkRecords)].get() +
           static_cast<size_t>(record % kChunkRecords) *
               static_cast<size_t>(field_count_);
  }
  Chunk NewChunk() const;
  // Gives back the arena slot a cell holds, if any.
  void ReleaseSlot(const Cell& cell);

  // Rows past RecordCount() hold Empty cells. At most one whole chunk past
  // the last record is kept (a run trims its reserve and may grow again).
  std::vector<Chunk> chunks_;
  int32_t record_count_ = 0;
  int32_t field_count_ = 0;
  Arena<std::string> texts_;
  Arena<Variant> boxed_;
};

}  // namespace rz

#endif  // RZ_REPOSITORY_CELL_STORE_H_
