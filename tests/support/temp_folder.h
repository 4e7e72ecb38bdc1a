// Copyright 2026 The Veltmark authors.
//
// Test helper: a fresh private folder under /tmp, removed with everything
// in it when the helper goes. /tmp also keeps socket paths well under the
// length limit of a Unix socket address.

#ifndef RZ_SUPPORT_TEMP_FOLDER_H_
#define RZ_SUPPORT_TEMP_FOLDER_H_

#include <stdlib.h>

#include <filesystem>
#include <stdexcept>
#include <string>

namespace rz {

class TempFolder {
 public:
  TempFolder() {
    char pattern[] = "/tmp/rz-test-XXXXXX";
    if (mkdtemp(pattern) == nullptr) {
      throw std::runtime_error("mkdtemp failed");
    }
    path_ = pattern;
  }
  TempFolder(const TempFolder&) = delete;
  TempFolder& operator=(const TempFolder&) = delete;
  ~TempFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }

  // `name` inside the folder.
  std::string File(const std::string& name) const { return path_ + "/" + name; }

 private:
  std::string path_;
};

}  // namespace rz

#endif  // RZ_SUPPORT_TEMP_FOLDER_H_
