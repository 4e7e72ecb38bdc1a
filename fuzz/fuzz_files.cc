// Copyright 2026 The Veltmark authors.

#include "fuzz_files.h"

#include <stdlib.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <system_error>

namespace rz::fuzz {
namespace {

[[noreturn]] void Fail(const std::string& what) {
  std::fprintf(stderr, "fuzz set-up failed: %s\n", what.c_str());
  std::abort();
}

void RemoveFolder() {
  std::error_code ignored;
  std::filesystem::remove_all(Folder(), ignored);
}

std::string MakeFolder() {
  char pattern[] = "/tmp/rz-fuzz-XXXXXX";
  if (mkdtemp(pattern) == nullptr) Fail("mkdtemp");
  return pattern;
}

}  // namespace

const std::string& Folder() {
  static const std::string* const folder = [] {
    auto* made = new std::string(MakeFolder());
    std::atexit(RemoveFolder);
    return made;
  }();
  return *folder;
}

std::string PathIn(std::string_view name) {
  const std::filesystem::path path =
      std::filesystem::path(Folder()) / std::string(name);
  std::error_code error;
  std::filesystem::create_directories(path.parent_path(), error);
  if (error) Fail("mkdir " + path.parent_path().string());
  return path.string();
}

void WriteFile(const std::string& path, std::string_view bytes) {
  std::ofstream out(path, std::ios::binary | std::ios::trunc);
  out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  if (!out) Fail("write " + path);
}

void RemoveFile(const std::string& path) {
  std::error_code ignored;
  std::filesystem::remove(path, ignored);
}

void CopyFile(const std::string& from, const std::string& to) {
  std::error_code error;
  std::filesystem::copy_file(
      from, to, std::filesystem::copy_options::overwrite_existing, error);
  if (error) Fail("copy " + from + " to " + to);
}

std::vector<std::string_view> SplitPieces(std::string_view text,
                                          char separator) {
  std::vector<std::string_view> pieces;
  size_t start = 0;
  for (size_t end; (end = text.find(separator, start)) != text.npos;
       start = end + 1) {
    pieces.push_back(text.substr(start, end - start));
  }
  pieces.push_back(text.substr(start));
  return pieces;
}

}  // namespace rz::fuzz
