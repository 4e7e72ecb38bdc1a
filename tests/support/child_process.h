// Copyright 2026 The Veltmark authors.
//
// Test helper: Child runs a program (the rzdebug viewer, the rzselect
// command) as a child process with its standard output and error sent to
// files, and kills and reaps it when the object goes, whatever the test
// did.

#ifndef RZ_SUPPORT_CHILD_PROCESS_H_
#define RZ_SUPPORT_CHILD_PROCESS_H_

#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <optional>
#include <string>
#include <thread>
#include <vector>

extern char** environ;

namespace rz {

// A child process with stdout and stderr sent to files; killed and reaped
// when the object goes, whatever the test did.
class Child {
 public:
  // `environment` adds "NAME=value" entries to this process's own.
  Child(const std::vector<std::string>& args, const std::string& stdout_path,
        const std::string& stderr_path,
        const std::vector<std::string>& environment = {}) {
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO,
                                     stdout_path.c_str(),
                                     O_WRONLY | O_CREAT | O_TRUNC, 0644);
    posix_spawn_file_actions_addopen(&actions, STDERR_FILENO,
                                     stderr_path.c_str(),
                                     O_WRONLY | O_CREAT | O_TRUNC, 0644);
    std::vector<char*> argv;
    for (const std::string& arg : args) {
      argv.push_back(const_cast<char*>(arg.c_str()));
    }
    argv.push_back(nullptr);
    std::vector<char*> envp;
    for (const std::string& entry : environment) {
      envp.push_back(const_cast<char*>(entry.c_str()));
    }
    for (char** entry = environ; *entry != nullptr; ++entry) {
      envp.push_back(*entry);
    }
    envp.push_back(nullptr);
    if (posix_spawn(&pid_, argv[0], &actions, nullptr, argv.data(),
                    envp.data()) != 0) {
      pid_ = -1;
    }
    posix_spawn_file_actions_destroy(&actions);
  }
  Child(const Child&) = delete;
  Child& operator=(const Child&) = delete;
  ~Child() {
    if (pid_ > 0) {
      kill(pid_, SIGKILL);
      waitpid(pid_, nullptr, 0);
    }
  }

  bool started() const { return pid_ > 0; }
  bool Running() { return pid_ > 0 && !WaitExit(std::chrono::milliseconds(0)); }
  void Signal(int signal_number) { kill(pid_, signal_number); }

  // The exit status (128 + signal when killed), or nullopt when the child is
  // still running after `timeout`.
  std::optional<int> WaitExit(std::chrono::milliseconds timeout) {
    if (status_) return status_;
    const auto deadline = std::chrono::steady_clock::now() + timeout;
    while (true) {
      int status = 0;
      if (waitpid(pid_, &status, WNOHANG) == pid_) {
        pid_ = -1;
        status_ =
            WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
        return status_;
      }
      if (std::chrono::steady_clock::now() >= deadline) return std::nullopt;
      std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
  }

 private:
  pid_t pid_ = -1;
  std::optional<int> status_;
};

}  // namespace rz

#endif  // RZ_SUPPORT_CHILD_PROCESS_H_
