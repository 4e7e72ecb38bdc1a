// Copyright 2026 The Veltmark authors.
//
// rzdebug, the trace viewer: listens on the trace socket and prints each
// record it receives as one line,
//   yyyy-mm-dd hh:mm:ss.mmm <TAB> component <TAB> writer <TAB> procedure
//   <TAB> message
// (local time of arrival; fields escaped as on the wire), flushing after
// each line, optionally appending the same lines to a file. Lines the
// engine's side sent that cannot be read are shown too, with the fault in
// the procedure column and the raw text as the message. Exits 0 after
// --count records or on SIGINT/SIGTERM, removing the socket; exits 1 when
// the socket cannot be made (another viewer listening included) or the
// output cannot be written; exits 2 on bad usage.

#include <signal.h>
#include <time.h>

#include <CLI/CLI.hpp>
#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <memory>
#include <string>
#include <string_view>

#include "core/error.h"
#include "trace/trace_server.h"
#include "trace/trace_socket_path.h"
#include "trace/trace_wire.h"

namespace rz {
namespace {

std::atomic<bool> stop_requested{false};

void OnStopSignal(int /*signal*/) { stop_requested.store(true); }

// SIGINT and SIGTERM end the listening loop (without SA_RESTART, so a wait
// in poll() is interrupted at once); SIGPIPE is ignored so a closed stdout
// shows as a write error.
void InstallSignalHandlers() {
  struct sigaction action {};
  action.sa_handler = OnStopSignal;
  sigemptyset(&action.sa_mask);
  sigaction(SIGINT, &action, nullptr);
  sigaction(SIGTERM, &action, nullptr);
  signal(SIGPIPE, SIG_IGN);
}

// The local time now as "yyyy-mm-dd hh:mm:ss.mmm".
std::string TimeStamp() {
  timespec now{};
  clock_gettime(CLOCK_REALTIME, &now);
  tm local{};
  localtime_r(&now.tv_sec, &local);
  char text[32];
  size_t length = strftime(text, sizeof text, "%Y-%m-%d %H:%M:%S", &local);
  std::snprintf(text + length, sizeof text - length, ".%03ld",
                now.tv_nsec / 1000000);
  return text;
}

std::string ViewerLine(std::string_view component, std::string_view writer,
                       std::string_view procedure, std::string_view message) {
  return TimeStamp() + '\t' + EscapeTraceField(component) + '\t' +
         EscapeTraceField(writer) + '\t' + EscapeTraceField(procedure) + '\t' +
         EscapeTraceField(message) + '\n';
}

// Writes viewer lines to stdout and, when open, the output file.
class Printer {
 public:
  bool OpenFile(const std::string& path) {
    file_.open(path, std::ios::out | std::ios::app | std::ios::binary);
    return file_.is_open();
  }

  // False once a destination can no longer be written.
  bool Print(const std::string& line) {
    std::cout << line << std::flush;
    if (file_.is_open()) file_ << line << std::flush;
    return std::cout.good() && (!file_.is_open() || file_.good());
  }

 private:
  std::ofstream file_;
};

struct Options {
  std::string socket_path;
  std::string output_path;
  long count = 0;  // 0: no limit
};

int RunViewer(const Options& options) {
  Printer printer;
  long printed = 0;
  bool write_failed = false;
  auto print = [&](const std::string& line) {
    if (!printer.Print(line)) {
      write_failed = true;
      stop_requested.store(true);
    }
  };
  auto on_record = [&](const TraceRecord& record) {
    if (stop_requested.load()) return;  // past --count in the same round
    print(ViewerLine(record.component, record.writer, record.procedure,
                     record.message));
    if (options.count > 0 && ++printed >= options.count) {
      stop_requested.store(true);
    }
  };
  auto on_fault = [&](TraceLineFault fault, std::string_view raw) {
    if (stop_requested.load()) return;
    print(ViewerLine("", "", "(" + std::string(TraceLineFaultText(fault)) + ")",
                     raw));
  };

  std::unique_ptr<TraceServer> server;
  try {
    server = TraceServer::Listen(options.socket_path, on_record, on_fault);
  } catch (const Error& error) {
    std::cerr << "rzdebug: cannot listen on " << options.socket_path << ": "
              << error.Description() << "\n";
    return 1;
  }
  if (!options.output_path.empty() && !printer.OpenFile(options.output_path)) {
    std::cerr << "rzdebug: cannot open output file " << options.output_path
              << "\n";
    return 1;
  }
  std::cerr << "rzdebug: listening on " << server->Path() << "\n";
  server->Run(stop_requested);
  if (write_failed) {
    std::cerr << "rzdebug: cannot write the trace lines\n";
    return 1;
  }
  return 0;
}

}  // namespace
}  // namespace rz

int main(int argc, char** argv) {
  rz::Options options;
  CLI::App app{"rzdebug - shows the trace records of running Veltmark engines"};
  app.set_version_flag("--version", "rzdebug " RZ_VERSION);
  app.add_option("--socket", options.socket_path,
                 "Unix socket to listen on (default: " +
                     rz::DefaultTraceSocketPath() + ")");
  app.add_option("--output", options.output_path,
                 "Also append the lines to this file");
  app.add_option("--count", options.count, "Exit after this many records")
      ->check(CLI::Validator(
          [](std::string& text) {
            char* end = nullptr;
            long value = std::strtol(text.c_str(), &end, 10);
            return (end != text.c_str() && *end == '\0' && value >= 1)
                       ? std::string()
                       : std::string("must be a whole number of at least 1");
          },
          "N>=1"));
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    // Help and version end with status 0, bad usage with 2.
    return app.exit(error) == 0 ? 0 : 2;
  }
  if (options.socket_path.empty()) {
    options.socket_path = rz::DefaultTraceSocketPath();
  }
  rz::InstallSignalHandlers();
  return rz::RunViewer(options);
}
