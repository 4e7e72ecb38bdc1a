// Copyright 2026 The Veltmark authors.
//
// What the fuzz targets share for parsers that read from a path: one
// private folder per process (made on first use, removed with everything in
// it at exit), files written in it by plain writes (no temporary names, so
// each run reuses the same paths), and the split of one input into pieces.
// Failures to create the folder or to write a file abort the process: a
// fuzz run without its files would test nothing.

#ifndef RZ_FUZZ_FUZZ_FILES_H_
#define RZ_FUZZ_FUZZ_FILES_H_

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace rz::fuzz {

// The process's folder, without a final separator.
const std::string& Folder();

// `name` inside Folder(); folders on the way are made.
std::string PathIn(std::string_view name);

// Replaces the file at `path` with `bytes`.
void WriteFile(const std::string& path, std::string_view bytes);

// Removes the file at `path` when there is one.
void RemoveFile(const std::string& path);

// Copies the file `from` (outside the folder) to `to`.
void CopyFile(const std::string& from, const std::string& to);

// The input as text.
inline std::string_view AsText(const uint8_t* data, size_t size) {
  return {reinterpret_cast<const char*>(data), size};
}

// `text` cut at every `separator`: always at least one piece.
std::vector<std::string_view> SplitPieces(std::string_view text,
                                          char separator);

}  // namespace rz::fuzz

#endif  // RZ_FUZZ_FUZZ_FILES_H_
