// Copyright 2026 The Veltmark authors.
//
// Test helpers that run part of a test in a forked child process: to let
// it be killed half-way (RunForked with a crash point in its environment),
// or to run it as a user who may read a folder but not write it
// (RunWithoutWriteAccess). The child's result is its exit status; GoogleTest
// assertions inside the child do not reach the parent, so bodies return a
// status (0 for success) and print what went wrong on standard error.

#ifndef RZ_SUPPORT_FORKED_H_
#define RZ_SUPPORT_FORKED_H_

#include <grp.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <exception>
#include <functional>
#include <string>

namespace rz {

// The exit status of a child ended by a signal: 128 + the signal number.
inline int StatusOf(int wait_status) {
  if (WIFEXITED(wait_status)) return WEXITSTATUS(wait_status);
  if (WIFSIGNALED(wait_status)) return 128 + WTERMSIG(wait_status);
  return -1;
}

// Runs `body` in a child process, the environment variable `name` set to
// `value` there when `name` is not empty, and waits for it. Returns the
// body's result, 128 + N when signal N ended the child, 99 when the body
// threw.
inline int RunForked(const std::function<int()>& body,
                     const std::string& name = "",
                     const std::string& value = "") {
  std::fflush(nullptr);
  const pid_t pid = ::fork();
  if (pid == 0) {
    if (!name.empty()) ::setenv(name.c_str(), value.c_str(), 1);
    int code = 99;
    try {
      code = body();
    } catch (const std::exception& error) {
      std::fprintf(stderr, "child: %s\n", error.what());
    }
    std::fflush(nullptr);
    ::_exit(code);
  }
  int status = 0;
  ::waitpid(pid, &status, 0);
  return StatusOf(status);
}

// What RunWithoutWriteAccess found.
struct UnprivilegedRun {
  std::string skip_reason;  // not empty: the run could not be made
  int status = -1;          // the body's result otherwise
};

inline constexpr uid_t kNobody = 65534;

// Runs `body` in a child process that may not write `folder`: when the
// test runs as root the child first becomes the user and group 65534
// ("nobody"), since root writes anywhere; otherwise the caller's own user
// is used and the caller makes the folder read-only (chmod 0555). The
// folder and the path to it must be readable and traversable by that
// user. When the child cannot switch users or can still write the folder,
// skip_reason says why.
inline UnprivilegedRun RunWithoutWriteAccess(const std::string& folder,
                                             const std::function<int()>& body) {
  constexpr int kCannotSwitch = 124;
  constexpr int kStillWritable = 125;
  const int status = RunForked([&] {
    if (::geteuid() == 0 &&
        (::setgroups(0, nullptr) != 0 || ::setgid(kNobody) != 0 ||
         ::setuid(kNobody) != 0)) {
      return kCannotSwitch;
    }
    if (::access(folder.c_str(), W_OK) == 0) return kStillWritable;
    return body();
  });
  UnprivilegedRun run;
  if (status == kCannotSwitch) {
    run.skip_reason = "cannot switch to the unprivileged user 65534 here";
  } else if (status == kStillWritable) {
    run.skip_reason = "the folder stays writable for this user (" + folder +
                      "), so a read-only folder cannot be tested";
  } else {
    run.status = status;
  }
  return run;
}

// Opens `folder` to reading and traversing by other users (a temporary
// folder is private to its maker).
inline void MakeTraversable(const std::string& folder) {
  ::chmod(folder.c_str(), 0755);
}

}  // namespace rz

#endif  // RZ_SUPPORT_FORKED_H_
