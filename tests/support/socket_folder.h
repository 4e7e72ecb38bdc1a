// Copyright 2026 The Veltmark authors.
//
// Test helper: a fresh private folder under /tmp for trace sockets, removed
// with everything in it when the helper goes. /tmp keeps socket paths well
// under the length limit of a Unix socket address.

#ifndef RZ_SUPPORT_SOCKET_FOLDER_H_
#define RZ_SUPPORT_SOCKET_FOLDER_H_

#include <stdlib.h>

#include <filesystem>
#include <stdexcept>
#include <string>

namespace rz {

class SocketFolder {
 public:
  SocketFolder() {
    char pattern[] = "/tmp/rz-trace-test-XXXXXX";
    if (mkdtemp(pattern) == nullptr) {
      throw std::runtime_error("mkdtemp failed");
    }
    path_ = pattern;
  }
  SocketFolder(const SocketFolder&) = delete;
  SocketFolder& operator=(const SocketFolder&) = delete;
  ~SocketFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }

  // `name` inside the folder.
  std::string File(const std::string& name) const { return path_ + "/" + name; }

 private:
  std::string path_;
};

}  // namespace rz

#endif  // RZ_SUPPORT_SOCKET_FOLDER_H_
