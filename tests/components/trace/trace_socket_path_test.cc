// Copyright 2026 The Veltmark authors.

#include "trace/trace_socket_path.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <optional>
#include <string>

namespace rz {
namespace {

// Sets (or with nullopt unsets) an environment variable for the scope.
class ScopedEnvironment {
 public:
  ScopedEnvironment(const char* name, std::optional<std::string> value)
      : name_(name) {
    if (const char* old = std::getenv(name)) old_ = old;
    Apply(value);
  }
  ~ScopedEnvironment() { Apply(old_); }

 private:
  void Apply(const std::optional<std::string>& value) {
    if (value) {
      setenv(name_, value->c_str(), 1);
    } else {
      unsetenv(name_);
    }
  }

  const char* name_;
  std::optional<std::string> old_;
};

TEST(TraceSocketPathTest, ChoosesTheFirstSetPlace) {
  const std::string uid_path =
      "/tmp/veltmark-trace-" + std::to_string(getuid()) + ".sock";
  struct Case {
    std::optional<std::string> trace_socket;
    std::optional<std::string> runtime_dir;
    std::string expected;
  } cases[] = {
      {"/srv/t.sock", "/run/user/7", "/srv/t.sock"},
      {"/srv/t.sock", std::nullopt, "/srv/t.sock"},
      {std::nullopt, "/run/user/7", "/run/user/7/veltmark-trace.sock"},
      {std::nullopt, "/run/user/7/", "/run/user/7/veltmark-trace.sock"},
      {"", "/run/user/7", "/run/user/7/veltmark-trace.sock"},
      {std::nullopt, std::nullopt, uid_path},
      {"", "", uid_path},
  };
  for (const Case& row : cases) {
    ScopedEnvironment socket("VELTMARK_TRACE_SOCKET", row.trace_socket);
    ScopedEnvironment runtime("XDG_RUNTIME_DIR", row.runtime_dir);
    EXPECT_EQ(DefaultTraceSocketPath(), row.expected)
        << row.trace_socket.value_or("(unset)") << " / "
        << row.runtime_dir.value_or("(unset)");
  }
}

}  // namespace
}  // namespace rz
