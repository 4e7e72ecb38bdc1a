// Copyright 2026 The Veltmark authors.

#include "inputfile/first_line_reader.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <thread>
#include <utility>

#include "core/codec.h"
#include "platform/file_system.h"

namespace rz {
namespace {

// The outcome of one attempt: the first line's bytes, or why there are
// none.
struct Attempt {
  bool ok = false;
  std::string line;
  std::string reason;
};

std::string_view TrimBlanks(std::string_view text) {
  const size_t begin = text.find_first_not_of(" \t");
  if (begin == std::string_view::npos) return {};
  const size_t end = text.find_last_not_of(" \t");
  return text.substr(begin, end - begin + 1);
}

std::string ErrorText(int error) { return std::strerror(error); }

// Closes the descriptor when the attempt ends, whatever the way out.
class FileDescriptor {
 public:
  explicit FileDescriptor(int fd) : fd_(fd) {}
  FileDescriptor(const FileDescriptor&) = delete;
  FileDescriptor& operator=(const FileDescriptor&) = delete;
  ~FileDescriptor() {
    if (fd_ >= 0) ::close(fd_);
  }
  int get() const { return fd_; }

 private:
  int fd_;
};

// Reads up to the first CR or LF, in blocks, so a large file is not read
// whole for its first line.
Attempt ReadFirstLine(const std::string& path) {
  if (path.empty()) return {false, "", "no file name was given"};
  if (path.find('\0') != std::string::npos) {
    return {false, "", "the name is not a valid file name"};
  }
  FileDescriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC));
  if (file.get() < 0) return {false, "", ErrorText(errno)};
  struct stat status;
  if (::fstat(file.get(), &status) != 0) return {false, "", ErrorText(errno)};
  if (S_ISDIR(status.st_mode)) return {false, "", "it is a folder"};

  Attempt attempt;
  char block[4096];
  while (true) {
    const ssize_t count = ::read(file.get(), block, sizeof block);
    if (count < 0) {
      if (errno == EINTR) continue;
      return {false, "", ErrorText(errno)};
    }
    if (count == 0) break;
    const std::string_view data(block, static_cast<size_t>(count));
    const size_t end = data.find_first_of("\r\n");
    attempt.line.append(data.substr(0, end));
    if (end != std::string_view::npos) break;
  }
  attempt.ok = true;
  return attempt;
}

}  // namespace

FirstLineReader::FirstLineReader(Toolkit& toolkit, Sleeper sleep)
    : toolkit_(toolkit), sleep_(std::move(sleep)) {}

void FirstLineReader::RealSleep(std::chrono::milliseconds pause) {
  std::this_thread::sleep_for(pause);
}

std::string FirstLineReader::ResolvePath(std::string_view name) {
  const std::string path = NormalizePath(TrimBlanks(name));
  if (path.empty() || path.front() == '/') return path;
  const char* folder = std::getenv("VELTMARK_INPUT_DIR");
  if (folder == nullptr || *folder == '\0') return path;
  return JoinPath(NormalizePath(folder), path);
}

std::string FirstLineReader::ReadInputFile(std::string_view name) {
  const std::string path = ResolvePath(name);
  Attempt attempt = ReadFirstLine(path);
  for (int16_t retry = 0; !attempt.ok && retry < retries_; ++retry) {
    sleep_(kRetryPause);
    attempt = ReadFirstLine(path);
  }
  success_ = attempt.ok;
  if (!success_) {
    if (!silent_) {
      toolkit_.MessageBox("Input File",
                          "Cannot read the input file \"" + path +
                              "\": " + attempt.reason + ".",
                          MessageIcon::kExclamation, MessageButtons::kOk);
    }
    return "";
  }
  return std::string(TrimBlanks(DecodeWindows1252(attempt.line)));
}

}  // namespace rz
