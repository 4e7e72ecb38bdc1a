// Copyright 2026 The Veltmark authors.

#include "platform/file_system.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <system_error>
#include <vector>

#include "core/codec.h"
#include "core/error.h"
#include "core/text.h"
#include "platform/trace.h"

namespace rz {
namespace {

constexpr std::string_view kDefaultSystemFolder = "/etc/veltmark";
constexpr std::string_view kSystemFolderVariable = "VELTMARK_SYSTEM_DIR";
constexpr std::string_view kProbeName = "dummy.$$$";
constexpr std::string_view kProbeLine = "$$$\r\n";

// A path the operating system can be asked about: not empty and without an
// embedded NUL (which would silently cut the name short).
bool IsUsablePath(std::string_view path) {
  return !path.empty() && path.find('\0') == std::string_view::npos;
}

// The error for a failed open or read of an existing-file path.
Error ReadError(int error_number, std::string_view path) {
  switch (error_number) {
    case ENOENT:
      return Error::FileNotFound(path);
    case ENOTDIR:
      return Error::PathNotFound(path);
    case EACCES:
    case EPERM:
      return Error::PermissionDenied(path);
    case ENAMETOOLONG:
      return Error::BadFileName(path);
    default:
      return Error::PathFileAccess(path);
  }
}

// Writes all of `bytes`; false with errno set on failure.
bool WriteAll(int fd, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t written = ::write(fd, bytes.data(), bytes.size());
    if (written < 0) {
      if (errno == EINTR) continue;
      return false;
    }
    bytes.remove_prefix(static_cast<size_t>(written));
  }
  return true;
}

// Creates or overwrites `file`, writes the probe line, closes and deletes
// it; true when every step succeeded. A file that was created is removed
// even when writing or closing it failed.
bool WriteAndDeleteProbe(const std::string& file) {
  const int fd =
      ::open(file.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
  if (fd < 0) return false;
  const bool written = WriteAll(fd, kProbeLine);
  const bool closed = ::close(fd) == 0;
  const bool deleted = ::unlink(file.c_str()) == 0;
  return written && closed && deleted;
}

// The part of a normalized path after its last "/".
size_t NameStart(std::string_view normalized) {
  const size_t slash = normalized.rfind('/');
  return slash == std::string_view::npos ? 0 : slash + 1;
}

// The position of the extension's "." in a normalized path, or npos.
size_t ExtensionStart(std::string_view normalized) {
  const size_t name_start = NameStart(normalized);
  const std::string_view name = normalized.substr(name_start);
  if (name == "." || name == "..") return std::string_view::npos;
  const size_t dot = name.rfind('.');
  if (dot == std::string_view::npos || dot == 0) return std::string_view::npos;
  return name_start + dot;
}

}  // namespace

std::string TemporaryNameFor(const std::string& path, std::string_view tag) {
  static std::atomic<unsigned> counter{0};
  return path + std::string(tag) + "-" + std::to_string(::getpid()) + "-" +
         std::to_string(++counter);
}

std::string NormalizePath(std::string_view path) {
  std::string normalized(path);
  for (char& ch : normalized) {
    if (ch == '\\') ch = '/';
  }
  return normalized;
}

bool FileExists(std::string_view path) {
  if (!IsUsablePath(path)) return false;
  struct stat info;
  return ::stat(NormalizePath(path).c_str(), &info) == 0;
}

bool FolerReadOnly(Platform& platform, std::string_view folder) {
  if (folder.empty()) return true;
  bool read_only = true;
  if (IsUsablePath(folder)) {
    std::string probe = NormalizePath(folder);
    if (probe.back() != '/') probe += '/';
    probe += kProbeName;
    read_only = !WriteAndDeleteProbe(probe);
  }
  Trace(platform, kWriterModule, "FolerReadOnly",
        read_only ? "Result=True" : "Result=False");
  return read_only;
}

Error FileReadError(int error_number, std::string_view path) {
  return ReadError(error_number, path);
}

std::string ReadBinaryFile(std::string_view path) {
  if (!IsUsablePath(path)) throw Error::BadFileName(path);
  const std::string normalized = NormalizePath(path);
  const int fd = ::open(normalized.c_str(), O_RDONLY | O_CLOEXEC);
  if (fd < 0) throw ReadError(errno, path);
  // Closes the file however the read ends (a failed reserve included).
  struct Closer {
    int fd;
    ~Closer() { ::close(fd); }
  } closer{fd};
  std::string bytes;
  struct stat info;
  if (::fstat(fd, &info) == 0 && info.st_size > 0) {
    bytes.reserve(static_cast<size_t>(info.st_size));
  }
  // Read to the end rather than trusting the size: a file may grow.
  char buffer[64 * 1024];
  while (true) {
    const ssize_t count = ::read(fd, buffer, sizeof buffer);
    if (count == 0) break;
    if (count < 0) {
      if (errno == EINTR) continue;
      throw ReadError(errno, path);
    }
    bytes.append(buffer, static_cast<size_t>(count));
  }
  return bytes;
}

std::string ReadTextFile(std::string_view path) {
  return DecodeWindows1252(ReadBinaryFile(path));
}

void WriteBinaryFileAtomically(std::string_view path, std::string_view bytes) {
  if (!IsUsablePath(path)) throw Error::BadFileName(path);
  const std::string target = NormalizePath(path);
  const std::string temporary = TemporaryNameFor(target);
  const int fd =
      ::open(temporary.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
  if (fd < 0) throw FileWriteError(errno, path);

  // A replaced file keeps its permission bits.
  struct stat old_info;
  if (::stat(target.c_str(), &old_info) == 0 && S_ISREG(old_info.st_mode)) {
    ::fchmod(fd, old_info.st_mode & 07777);
  }
  bool ok = WriteAll(fd, bytes) && ::fsync(fd) == 0;
  int error_number = ok ? 0 : errno;
  if (::close(fd) != 0 && ok) {
    ok = false;
    error_number = errno;
  }
  if (ok && ::rename(temporary.c_str(), target.c_str()) != 0) {
    ok = false;
    error_number = errno;
  }
  if (!ok) {
    ::unlink(temporary.c_str());
    throw FileWriteError(error_number, path);
  }
  FlushFolder(ParentFolder(target));
}

void WriteTextFileAtomically(std::string_view path,
                             std::string_view utf8_text) {
  WriteBinaryFileAtomically(path, EncodeWindows1252(utf8_text));
}

Error FileWriteError(int error_number, std::string_view path) {
  switch (error_number) {
    case ENOENT:
    case ENOTDIR:
      return Error::PathNotFound(path);
    case EACCES:
    case EPERM:
    case EROFS:
      return Error::PermissionDenied(path);
    case ENAMETOOLONG:
      return Error::BadFileName(path);
    default:
      return Error::PathFileAccess(path);
  }
}

void FlushFolder(std::string_view folder) {
  const std::string path = folder.empty() ? "." : NormalizePath(folder);
  const int fd = ::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (fd < 0) return;
  ::fsync(fd);
  ::close(fd);
}

bool DeleteFileQuietly(std::string_view path) {
  if (!IsUsablePath(path)) return false;
  return ::unlink(NormalizePath(path).c_str()) == 0;
}

void CopyFileAtomically(std::string_view from, std::string_view to) {
  WriteBinaryFileAtomically(to, ReadBinaryFile(from));
}

std::string SystemFolder() {
  const char* value = std::getenv(std::string(kSystemFolderVariable).c_str());
  std::string folder = value != nullptr && value[0] != '\0'
                           ? NormalizePath(value)
                           : std::string(kDefaultSystemFolder);
  if (folder.size() > 1 && folder.back() == '/') folder.pop_back();
  return folder;
}

std::string ComparablePath(std::string_view path) {
  std::error_code ignored;
  const std::filesystem::path absolute =
      std::filesystem::absolute(NormalizePath(path), ignored);
  return absolute.lexically_normal().string();
}

std::string ParentFolder(std::string_view path) {
  const std::string normalized = NormalizePath(path);
  return normalized.substr(0, NameStart(normalized));
}

std::string WithoutExtension(std::string_view path) {
  const std::string normalized = NormalizePath(path);
  const size_t dot = ExtensionStart(normalized);
  return dot == std::string::npos ? normalized : normalized.substr(0, dot);
}

std::string ExtensionOf(std::string_view path) {
  const std::string normalized = NormalizePath(path);
  const size_t dot = ExtensionStart(normalized);
  return dot == std::string::npos ? std::string() : normalized.substr(dot);
}

std::string JoinPath(std::string_view folder, std::string_view name) {
  std::string joined = NormalizePath(folder);
  if (!joined.empty() && joined.back() != '/') joined += '/';
  return joined + NormalizePath(name);
}

bool ExtensionEqualsIgnoreCase(std::string_view path,
                               std::string_view extension) {
  return EqualsIgnoreCase(ExtensionOf(path), extension);
}

std::optional<std::string> FindFileIgnoringExtensionCase(
    std::string_view path) {
  if (!IsUsablePath(path)) return std::nullopt;
  const std::string wanted = NormalizePath(path);
  if (FileExists(wanted)) return wanted;
  const std::string extension = ExtensionOf(wanted);
  if (extension.empty()) return std::nullopt;
  const std::string folder = ParentFolder(wanted);
  const std::string stem = wanted.substr(
      folder.size(), wanted.size() - folder.size() - extension.size());

  DIR* listing = ::opendir(folder.empty() ? "." : folder.c_str());
  if (listing == nullptr) return std::nullopt;
  std::optional<std::string> best;
  while (const dirent* entry = ::readdir(listing)) {
    const std::string_view name = entry->d_name;
    if (name.size() <= stem.size() || name.substr(0, stem.size()) != stem) {
      continue;
    }
    const std::string_view rest = name.substr(stem.size());
    if (ExtensionOf(name) != rest || !EqualsIgnoreCase(rest, extension)) {
      continue;
    }
    if (!best || name < *best) best = std::string(name);
  }
  ::closedir(listing);
  if (!best) return std::nullopt;
  return folder + *best;
}

}  // namespace rz
