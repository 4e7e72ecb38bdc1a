// Copyright 2026 The Veltmark authors.
//
// Whole runs, as a user meets them: an application of 1,000,000 records
// (the shared bench data: 30 s apart, ten numbers, a line name out of four,
// an operator) and three views,
//   T1 detail of about 80 % of the records (one filter row), every
//      variable, written as CSV;
//   T2 summary by day, 7 statistics (count, sum, average, SD, minimum,
//      maximum, range) of the 10 numbers;
//   T3 the daily average of one number pivoted by the line.
// Cold: `rzselect run APP --view N --format csv -o FILE` as a new process
// (open, load, run, write) against the Debian sqlite3 command line doing
// the same query on the same data file with the same kind of output, each
// the best of three taken in turn (rzselect, sqlite3, rzselect, ...: a
// shared machine's slow moments fall on both), printed as a ratio
// rzselect/sqlite3. After appends: the same run on a copy of the
// application right after the sqlite3 command line appended 1,000 records,
// as a ratio to the cold run taken in turn with it. Warm: one engine
// in this process with the view loaded, Refresh twice; the second's time
// as a ratio to the first and to the sqlite3 figure. The line counts of
// both outputs are printed as a guard that both did the same work.
//
// The application is made once under the build folder (bench-data/run/,
// its data file a link to bench-data/load1m.rzd); delete it to make it
// again. Arguments are ignored (scripts/bench passes benchmark options).
// RZ_RUN_BENCH_SCALES=100000,10000000 adds the cold runs at those sizes
// (their data made once as bench-data/load<N>.rzd), each with its time per
// record, to show how the cost grows.
//
// DuckDB, when scripts/bench installed the @duckdb/node-api package under
// the build folder (duckdb/): the same records loaded once into DuckDB's
// own file (bench-data/run/run1m.duckdb) and each query run by
// duckdb_runs.mjs, cold (open, query, CSV written; node's own start not
// counted) and warm (the query again on the open connection), each the
// best of three, printed as rzselect/DuckDB.

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "bench_data.h"
#include "common/system_platform.h"
#include "engine/rzselect.h"
#include "platform/app_file.h"
#include "platform/headless_toolkit.h"
#include "platform/repository.h"
#include "view/result_field_types.h"
#include "view/view_state.h"
#include "view/where_types.h"

#ifndef RZSELECT_PATH
#error "RZSELECT_PATH must name the rzselect executable"
#endif
#ifndef RZ_BENCH_DUCKDB_DIR
#error "RZ_BENCH_DUCKDB_DIR must name the folder DuckDB is installed in"
#endif

extern char** environ;

namespace rz::bench {
namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

constexpr int kLine = 13;         // "Line 1" .. "Line 4"
constexpr double kCut = 216.3;    // about the 20th percentile of N(250, 40)
constexpr int16_t kSumByDay = 5;  // the entry of the summarising list
constexpr int kRepeats = 3;

struct Shape {
  const char* name;
  const char* view;
  std::string sql;
};

std::string NumberColumns() {
  std::string text;
  for (int k = 3; k <= 2 + kNumbers; ++k) text += ", v" + std::to_string(k);
  return text;
}

std::string DailyStatistics() {
  std::string text;
  for (int k = 3; k <= 2 + kNumbers; ++k) {
    const std::string v = "v" + std::to_string(k);
    text += ", count(" + v + "), sum(" + v + "), avg(" + v + "), sqrt((sum(" +
            v + "*" + v + ") - sum(" + v + ")*sum(" + v + ")/count(" + v +
            "))/(count(" + v + ")-1)), min(" + v + "), max(" + v + "), max(" +
            v + ")-min(" + v + ")";
  }
  return text;
}

std::string DailyPivot() {
  std::string text;
  for (int line = 1; line <= 4; ++line) {
    text += ", avg(CASE WHEN v13 = 'Line " + std::to_string(line) +
            "' THEN v3 END)";
  }
  return text;
}

std::vector<Shape> Shapes() {
  return {
      {"T1 detail, 80 % of the records, CSV", "T1",
       "SELECT v1, v2" + NumberColumns() +
           ", v13, v14 FROM records WHERE v3 > 216.3 ORDER BY recno;"},
      {"T2 summary by day, 7 statistics x 10", "T2",
       "SELECT v1, min(v2)" + DailyStatistics() +
           " FROM records GROUP BY v1 ORDER BY v1;"},
      {"T3 daily average pivoted by line", "T3",
       "SELECT v1, min(v2)" + DailyPivot() +
           " FROM records GROUP BY v1 ORDER BY v1;"},
  };
}

void AddColumn(RZselect& engine, int16_t pivot, int16_t raw, int16_t statistic,
               const std::string& name) {
  AddVariableColumn(*engine.ResultField(),
                    *engine.RZaccess()->Variables().Item(raw), pivot, raw,
                    statistic, name, engine.SumBy() != 0);
}

void DailyStart(RZselect& engine) {
  engine.SetSumBy(kSumByDay);
  engine.ResultField()->Clear();
  AddColumn(engine, 0, 1, 0, "Date");
  AddColumn(engine, 0, 2, 0, "Time");
}

// The application around the shared data file of `records` records, with
// its three views (bench-data/run/ for 1,000,000, run<records>/ else).
std::string Application(const std::shared_ptr<Platform>& shared,
                        int records) {
  Platform& platform = *shared;
  const fs::path folder =
      fs::path(RZ_BENCH_DATA_DIR) /
      (records == kRecords ? "run" : "run" + std::to_string(records));
  const fs::path app = folder / "run1m.rzt";
  if (fs::exists(app)) return app.string();
  const std::string data = DataFile(records);
  fs::remove_all(folder);
  fs::create_directories(folder);
  {
    std::shared_ptr<AppFile> file = platform.CreateAppFile();
    file->SetAppTitle("Run benchmark");
    file->SetDefaultLookBack(-1);
    file->Variables().Add("Date", "T", 10, 0);
    file->Variables().Add("Time", "T", 8, 0);
    for (int k = 1; k <= kNumbers; ++k) {
      file->Variables().Add("M" + std::to_string(k), "N", 7, 3);
    }
    file->Variables().Add("Line", "T", 6, 0);
    file->Variables().Add("Operator", "T", 8, 0);
    file->SetOpenMode(kOpenCreateNew);
    file->OpenApplication(app.string());
    file->CloseApplication();
  }
  fs::remove(folder / "run1m.rzd");
  fs::create_hard_link(data, folder / "run1m.rzd");

  auto engine = RZselect::Create(shared);
  engine->SetFilename(app.string());
  engine->Initialize();
  ViewCatalogue& views = engine->RZaccess()->Views();
  for (const char* name : {"T1", "T2", "T3"}) {
    views.Add(name, views.Count() + 1);
  }
  views.Save();
  engine->Initialize();
  engine->Where()->Add(0, "", 3, ">", std::to_string(kCut), "");
  engine->SaveView("T1");
  engine->Initialize();
  DailyStart(*engine);
  const int16_t statistics[] = {2, 4, 9, 5, 12, 6, 21};
  for (int16_t k = 3; k <= 2 + kNumbers; ++k) {
    for (int16_t statistic : statistics) {
      AddColumn(*engine, 0, k, statistic,
                "M" + std::to_string(k - 2) + "_" + std::to_string(statistic));
    }
  }
  engine->SaveView("T2");
  engine->Initialize();
  DailyStart(*engine);
  AddColumn(*engine, kLine, 3, 9, "[*]_M1");
  engine->SaveView("T3");
  engine->ReleaseObject();
  return app.string();
}

// Runs a program with its standard output to `output`; its wall time in
// seconds, or a negative number when it failed.
double TimedRun(const std::vector<std::string>& args,
                const std::string& output = "/dev/null") {
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, output.c_str(),
                                   O_WRONLY | O_CREAT | O_TRUNC, 0644);
  std::vector<char*> argv;
  for (const std::string& arg : args)
    argv.push_back(const_cast<char*>(arg.c_str()));
  argv.push_back(nullptr);
  const Clock::time_point start = Clock::now();
  pid_t pid = 0;
  const int failed =
      posix_spawnp(&pid, argv[0], &actions, nullptr, argv.data(), environ);
  posix_spawn_file_actions_destroy(&actions);
  if (failed != 0) return -1;
  int status = 0;
  waitpid(pid, &status, 0);
  const double seconds =
      std::chrono::duration<double>(Clock::now() - start).count();
  return WIFEXITED(status) && WEXITSTATUS(status) == 0 ? seconds : -1;
}

// The best time of each of several programs, run in turn `kRepeats` times
// (a, b, a, b, ...) so that a shared machine's slow moments fall on both
// alike; negative for a program that failed. `before` runs before each
// round (untimed) and may fail the round.
std::vector<double> BestInTurn(
    const std::vector<std::vector<std::string>>& programs,
    const std::function<bool()>& before = [] { return true; }) {
  std::vector<double> best(programs.size(), -1);
  for (int i = 0; i < kRepeats; ++i) {
    if (!before()) return std::vector<double>(programs.size(), -1);
    for (size_t p = 0; p < programs.size(); ++p) {
      const double seconds = TimedRun(programs[p]);
      if (seconds < 0) {
        best[p] = -1;
        return best;
      }
      if (best[p] < 0 || seconds < best[p]) best[p] = seconds;
    }
  }
  return best;
}

long Lines(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return std::count(std::istreambuf_iterator<char>(file),
                    std::istreambuf_iterator<char>(), '\n');
}

// Refreshes of one engine: the first and the second, in seconds.
std::pair<double, double> WarmRefreshes(std::shared_ptr<Platform> platform,
                                        const std::string& app,
                                        const std::string& view) {
  auto engine = RZselect::Create(platform);
  engine->SetFilename(app);
  engine->SetDisplayPacifier(false);
  engine->Initialize();
  engine->LoadView(view);
  std::shared_ptr<Repository> repository = platform->CreateRepository();
  double times[2];
  for (double& time : times) {
    const Clock::time_point start = Clock::now();
    engine->Refresh(repository, false);
    time = std::chrono::duration<double>(Clock::now() - start).count();
  }
  engine->ReleaseObject();
  return {times[0], times[1]};
}

// A copy of the application whose data file takes appends, with its column
// cache made: bench-data/run-append/ (made again on every run).
std::string AppendableCopy(const std::string& app) {
  const fs::path from = fs::path(app).parent_path();
  const fs::path folder = fs::path(RZ_BENCH_DATA_DIR) / "run-append";
  fs::remove_all(folder);
  fs::create_directories(folder);
  for (const char* name : {"run1m.rzt", "run1m.V1", "run1m.V2", "run1m.V3",
                           "run1m.rzd"}) {
    fs::copy_file(from / name, folder / name);
  }
  const std::string copy = (folder / "run1m.rzt").string();
  TimedRun({RZSELECT_PATH, "views", copy});  // makes the column cache
  return copy;
}

// Appends 1,000 records after the last, on day `day` of 2030, as another
// program would.
bool AppendRecords(const std::string& data, int day) {
  char sql[1024];
  std::snprintf(
      sql, sizeof sql,
      "WITH RECURSIVE n(i) AS (SELECT 0 UNION ALL SELECT i + 1 FROM n "
      "WHERE i < 999) INSERT INTO records(v1, v2, v3, v4, v5, v6, v7, v8, "
      "v9, v10, v11, v12, v13, v14) SELECT '2030-01-%02d', "
      "printf('%%02d:%%02d:%%02d', i / 3600, i / 60 %% 60, i %% 60), "
      "250 + i %% 7, 251, 252, 253, 254, 255, 256, 257, 258, 259, "
      "'Line ' || (1 + i %% 4), 'Ann' FROM n",
      day);
  return TimedRun({"sqlite3", "-bail", data, sql}) >= 0;
}

// The best cold run of a view of `app` by rzselect and of its query by the
// sqlite3 command line, each writing its CSV beside the application
// ("out_rz.csv", "out_sql.csv"); negative for a run that failed.
struct ColdTimes {
  double rz = -1;
  double sql = -1;
};

ColdTimes ColdRuns(const std::string& app, const Shape& shape) {
  const fs::path folder = fs::path(app).parent_path();
  const std::string data = (folder / "run1m.rzd").string();
  const std::string out = (folder / "out").string();
  const std::vector<double> best = BestInTurn(
      {{RZSELECT_PATH, "run", app, "--view", shape.view, "--format", "csv",
        "-o", out + "_rz.csv", "--quiet"},
       {"sqlite3", "-bail", "-cmd", ".headers on", "-cmd", ".mode csv", "-cmd",
        ".output " + out + "_sql.csv", data, shape.sql}});
  return {best[0], best[1]};
}

// DuckDB's figures for one query: the best cold and warm runs in seconds,
// negative when DuckDB is not installed or a run failed.
struct DuckDbTimes {
  double cold = -1;
  double warm = -1;
};

const fs::path kDuckDbFolder = RZ_BENCH_DUCKDB_DIR;

bool DuckDbInstalled() {
  return fs::exists(kDuckDbFolder / "duckdb_runs.mjs") &&
         fs::exists(kDuckDbFolder / "node_modules/@duckdb/node-api");
}

std::vector<std::string> DuckDbCommand(const std::string& verb) {
  return {"node", (kDuckDbFolder / "duckdb_runs.mjs").string(), verb};
}

// DuckDB's own file holding the records of `data` (made once beside it,
// through a CSV file the sqlite3 command line writes); empty on failure.
std::string DuckDbFile(const std::string& data) {
  const fs::path folder = fs::path(data).parent_path();
  const fs::path file = folder / "run1m.duckdb";
  if (fs::exists(file)) return file.string();
  const std::string csv = (folder / "records.csv").string();
  const bool made =
      TimedRun({"sqlite3", "-bail", "-csv", "-header", data,
                "SELECT * FROM records ORDER BY recno;"},
               csv) >= 0;
  std::vector<std::string> load = DuckDbCommand("load");
  load.push_back(file.string() + ".tmp");
  load.push_back(csv);
  const bool loaded = made && TimedRun(load) >= 0;
  fs::remove(csv);
  if (!loaded) return "";
  fs::rename(file.string() + ".tmp", file);
  return file.string();
}

DuckDbTimes DuckDbRuns(const std::string& db, const std::string& sql,
                       const std::string& out) {
  const std::string report = out + ".times";
  std::vector<std::string> run = DuckDbCommand("run");
  run.insert(run.end(), {db, out, sql});
  DuckDbTimes best;
  for (int i = 0; i < kRepeats; ++i) {
    DuckDbTimes times;
    std::ifstream text;
    if (TimedRun(run, report) >= 0) text.open(report);
    std::string cold_word, warm_word;
    if (!(text >> cold_word >> times.cold >> warm_word >> times.warm)) {
      return {};
    }
    if (best.cold < 0 || times.cold < best.cold) best.cold = times.cold;
    if (best.warm < 0 || times.warm < best.warm) best.warm = times.warm;
  }
  return best;
}

// The cold runs of an application of `records` records, with the time per
// record.
int RunScale(const std::shared_ptr<Platform>& platform, int records) {
  const std::string app = Application(platform, records);
  std::printf("%-40s %10s %10s %8s %18s\n", "cold runs, other sizes",
              "rzselect", "sqlite3", "ratio", "rzselect/record");
  int failures = 0;
  for (const Shape& shape : Shapes()) {
    const auto [rz, sql] = ColdRuns(app, shape);
    if (rz < 0 || sql < 0) {
      std::printf("%-40s failed\n", shape.name);
      ++failures;
      continue;
    }
    char label[64];
    std::snprintf(label, sizeof label, "%s at %d records", shape.view, records);
    std::printf("%-40s %9.3fs %9.3fs %8.2f %14.3f us\n", label, rz, sql,
                rz / sql, rz / records * 1e6);
  }
  return failures;
}

// Other sizes: RZ_RUN_BENCH_SCALES=100000,10000000 (the 1,000,000-record
// runs always run first).
std::vector<int> OtherScales() {
  std::vector<int> scales;
  const char* text = std::getenv("RZ_RUN_BENCH_SCALES");
  if (text == nullptr) return scales;
  std::string list = text;
  size_t begin = 0;
  while (begin < list.size()) {
    size_t end = list.find(',', begin);
    if (end == std::string::npos) end = list.size();
    const int value = std::atoi(list.substr(begin, end - begin).c_str());
    if (value > 0 && value != kRecords) scales.push_back(value);
    begin = end + 1;
  }
  return scales;
}

int Main() {
  HeadlessToolkit toolkit;
  auto platform = std::make_shared<SystemPlatform>(toolkit);
  const std::string app = Application(platform, kRecords);
  const std::string out = (fs::path(app).parent_path() / "out").string();
  std::printf("%-40s %10s %10s %8s %18s\n", "case (1,000,000 records)",
              "rzselect", "sqlite3", "ratio", "lines rz/sqlite3");
  int failures = 0;
  std::string duckdb;
  if (DuckDbInstalled()) {
    duckdb = DuckDbFile((fs::path(app).parent_path() / "run1m.rzd").string());
    if (duckdb.empty()) {
      std::printf("DuckDB: its file could not be made; no comparison\n");
      ++failures;
    }
  } else {
    std::printf("DuckDB: not installed under %s (scripts/bench installs "
                "it); no comparison\n",
                kDuckDbFolder.c_str());
  }
  for (const Shape& shape : Shapes()) {
    const std::string rz_out = out + "_rz.csv";
    const std::string sql_out = out + "_sql.csv";
    const auto [rz, sql] = ColdRuns(app, shape);
    if (rz < 0 || sql < 0) {
      std::printf("%-40s failed (rzselect %s, sqlite3 %s)\n", shape.name,
                  rz < 0 ? "failed" : "ok", sql < 0 ? "failed" : "ok");
      ++failures;
      continue;
    }
    std::printf("%-40s %9.3fs %9.3fs %8.2f %8ld/%-8ld %.3f us/record\n",
                shape.name, rz, sql, rz / sql, Lines(rz_out), Lines(sql_out),
                rz / kRecords * 1e6);
    DuckDbTimes duck;
    if (!duckdb.empty()) {
      const std::string duck_out = out + "_duckdb.csv";
      duck = DuckDbRuns(duckdb, shape.sql, duck_out);
      if (duck.cold < 0) {
        std::printf("%-40s failed\n", "  DuckDB");
        ++failures;
      } else {
        std::printf("%-40s %9.3fs %9.3fs %8.2f %8ld/%-8ld (rzselect / "
                    "DuckDB cold)\n",
                    ("  DuckDB " + std::string(shape.view)).c_str(), rz,
                    duck.cold, rz / duck.cold, Lines(rz_out),
                    Lines(duck_out));
      }
    }
    if (shape.view != std::string("T1")) {
      const auto [first, second] = WarmRefreshes(platform, app, shape.view);
      std::printf(
          "%-40s %9.3fs %9.3fs %8.2f  (second Refresh / first; "
          "/ sqlite3: %.3f)\n",
          ("  warm " + std::string(shape.view)).c_str(), second, first,
          second / first, second / sql);
      if (duck.warm > 0) {
        std::printf("%-40s %9.3fs %9.3fs %8.2f  (rzselect / DuckDB, both "
                    "warm)\n",
                    ("  warm " + std::string(shape.view) + " vs DuckDB")
                        .c_str(),
                    second, duck.warm, second / duck.warm);
      }
    }
  }
  // The first run after another program appended 1,000 records, as a
  // ratio to a cold run of the unchanged application taken in turn with
  // it: each round appends another 1,000 first.
  const std::string copy = AppendableCopy(app);
  const std::string copy_data =
      (fs::path(copy).parent_path() / "run1m.rzd").string();
  int day = 1;
  for (const Shape& shape : Shapes()) {
    const auto run_of = [&](const std::string& application) {
      return std::vector<std::string>{
          RZSELECT_PATH, "run",   application, "--view",         shape.view,
          "--format",    "csv",   "-o",        out + "_rz.csv", "--quiet"};
    };
    const std::vector<double> best =
        BestInTurn({run_of(app), run_of(copy)},
                   [&] { return AppendRecords(copy_data, day++); });
    if (best[0] < 0 || best[1] < 0) {
      std::printf("%-40s failed\n", shape.name);
      ++failures;
      continue;
    }
    std::printf("%-40s %9.3fs %9.3fs %8.2f  (first run after 1,000 "
                "appended / cold)\n",
                ("  " + std::string(shape.view) + " after appends").c_str(),
                best[1], best[0], best[1] / best[0]);
  }
  for (int records : OtherScales()) failures += RunScale(platform, records);
  return failures == 0 ? 0 : 1;
}

}  // namespace
}  // namespace rz::bench

int main() { return rz::bench::Main(); }
