// Copyright 2026 The Veltmark authors.
//
// Loading an application's data is the first thing every run does.
//
// load/1M: a data file of 1,000,000 records (date, time, ten numbers, two
// texts, a few missing values). The baseline is the least any loader must
// do: one sqlite3 scan into std::vector<double> and std::vector<std::string>
// columns. The candidate is DataStore::Open, which also builds the null
// masks and every record's date-time.
//
// append/1k: with the store loaded, another connection appends 1,000
// records and the store refreshes. The baseline is a full DataStore::Open
// of the same file, so the ratio is the share of a full load that an
// append costs; the counter pct_of_open reports the same share in percent,
// against the full loads made within the append benchmark itself.
//
// The data file is made once and kept in the build folder
// (bench-data/load1m.rzd); delete it to make it again.

#include <benchmark/benchmark.h>
#include <sqlite3.h>
#include <time.h>

#include <filesystem>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

#include "appfile/data_store.h"
#include "bench_data.h"
#include "ratio_reporter.h"

namespace {

namespace fs = std::filesystem;

using rz::bench::DataFile;
using rz::bench::kNumbers;
using rz::bench::kRecords;
using rz::bench::kVariables;
using rz::bench::Numeric;
using rz::bench::Record;

constexpr int kAppended = 1000;

std::string SelectSql() {
  std::string sql = "SELECT recno";
  for (int k = 1; k <= kVariables; ++k) sql += ", v" + std::to_string(k);
  return sql + " FROM records ORDER BY recno";
}

struct PlainColumns {
  std::vector<std::vector<double>> numbers;
  std::vector<std::vector<std::string>> texts;
};

PlainColumns PlainScan(const std::string& path) {
  sqlite3* db = nullptr;
  if (sqlite3_open_v2(path.c_str(), &db,
                      SQLITE_OPEN_READONLY | SQLITE_OPEN_NOMUTEX,
                      nullptr) != SQLITE_OK) {
    throw std::runtime_error("cannot open " + path);
  }
  sqlite3_stmt* statement = nullptr;
  const std::string sql = SelectSql();
  sqlite3_prepare_v2(db, sql.c_str(), -1, &statement, nullptr);
  const std::vector<bool> numeric = Numeric();
  PlainColumns columns;
  columns.numbers.resize(kNumbers);
  columns.texts.resize(kVariables - kNumbers);
  while (sqlite3_step(statement) == SQLITE_ROW) {
    size_t number = 0;
    size_t text = 0;
    for (int k = 1; k <= kVariables; ++k) {
      if (numeric[k - 1]) {
        columns.numbers[number++].push_back(
            sqlite3_column_double(statement, k));
      } else {
        const auto* bytes = sqlite3_column_text(statement, k);
        columns.texts[text++].emplace_back(
            bytes ? reinterpret_cast<const char*>(bytes) : "",
            static_cast<size_t>(sqlite3_column_bytes(statement, k)));
      }
    }
  }
  sqlite3_finalize(statement);
  sqlite3_close(db);
  return columns;
}

void LoadBaseline(benchmark::State& state) {
  const std::string path = DataFile();
  for (auto _ : state) {
    PlainColumns columns = PlainScan(path);
    benchmark::DoNotOptimize(columns);
  }
}
BENCHMARK(LoadBaseline)->Name("load/baseline")->Unit(benchmark::kMillisecond);

void LoadCandidate(benchmark::State& state) {
  const std::string path = DataFile();
  for (auto _ : state) {
    auto store = rz::DataStore::Open(path, Numeric());
    if (store->RecordCount() != kRecords) state.SkipWithError("wrong count");
    benchmark::DoNotOptimize(store);
  }
}
BENCHMARK(LoadCandidate)->Name("load/candidate")->Unit(benchmark::kMillisecond);

void AppendBaseline(benchmark::State& state) {
  const std::string path = DataFile();
  for (auto _ : state) {
    auto store = rz::DataStore::Open(path, Numeric());
    benchmark::DoNotOptimize(store);
  }
}
BENCHMARK(AppendBaseline)
    ->Name("append/baseline")
    ->Unit(benchmark::kMillisecond);

double CpuSeconds() {
  timespec now{};
  clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
  return static_cast<double>(now.tv_sec) + now.tv_nsec / 1e9;
}

void Exec(sqlite3* db, const std::string& sql) {
  if (sqlite3_exec(db, sql.c_str(), nullptr, nullptr, nullptr) != SQLITE_OK) {
    throw std::runtime_error(sql + ": " + sqlite3_errmsg(db));
  }
}

// Appends kAppended records, the first being record `first` (0-based).
void AppendRecords(sqlite3* db, int first) {
  std::mt19937_64 random(7);
  std::string sql = "INSERT INTO records(v1";
  for (int k = 2; k <= kVariables; ++k) sql += ", v" + std::to_string(k);
  sql += ") VALUES(?";
  for (int k = 2; k <= kVariables; ++k) sql += ", ?";
  sql += ")";
  sqlite3_stmt* insert = nullptr;
  sqlite3_prepare_v2(db, sql.c_str(), -1, &insert, nullptr);
  Exec(db, "BEGIN");
  for (int i = first; i < first + kAppended; ++i) {
    const std::vector<rz::Variant> values = Record(i, random);
    for (int k = 1; k <= kVariables; ++k) {
      const rz::Variant& value = values[k - 1];
      if (value.IsNull()) {
        sqlite3_bind_null(insert, k);
      } else if (value.IsString()) {
        const std::string text = value.ToString();
        sqlite3_bind_text(insert, k, text.c_str(), -1, SQLITE_TRANSIENT);
      } else {
        sqlite3_bind_double(insert, k, value.ToDouble());
      }
    }
    sqlite3_step(insert);
    sqlite3_reset(insert);
  }
  Exec(db, "COMMIT");
  sqlite3_finalize(insert);
}

// The pristine data file copied to a work file, loaded, and a host
// connection on it.
class AppendSetup {
 public:
  explicit AppendSetup(const fs::path& pristine)
      : pristine_(pristine),
        work_(pristine.parent_path() / "append-work.rzd") {}
  ~AppendSetup() { Close(); }

  // Returns the CPU seconds the full load took.
  double Restore() {
    Close();
    fs::copy_file(pristine_, work_);
    const double start = CpuSeconds();
    store_ = rz::DataStore::Open(work_.string(), Numeric());
    const double seconds = CpuSeconds() - start;
    sqlite3_open_v2(work_.c_str(), &host_, SQLITE_OPEN_READWRITE, nullptr);
    next_record_ = kRecords;
    return seconds;
  }

  // The timed step: the host appends, the store refreshes.
  bool AppendAndRefresh() {
    AppendRecords(host_, next_record_);
    next_record_ += kAppended;
    return store_->Refresh() && store_->RecordCount() == next_record_;
  }

 private:
  void Close() {
    sqlite3_close(host_);
    host_ = nullptr;
    store_.reset();
    for (const char* suffix : {"", "-wal", "-shm"}) {
      fs::remove(work_.string() + suffix);
    }
  }

  fs::path pristine_;
  fs::path work_;
  std::unique_ptr<rz::DataStore> store_;
  sqlite3* host_ = nullptr;
  int next_record_ = 0;
};

// Restoring means a full load (about 200 times an append), so the work
// file is restored every kRestoreEvery iterations rather than every one;
// in between it grows by at most 5%, within the room the store keeps for
// appends.
constexpr int kRestoreEvery = 50;

void AppendCandidate(benchmark::State& state) {
  AppendSetup setup(DataFile());
  double open_seconds = 0;
  double append_seconds = 0;
  int loads = 0;
  int iteration = 0;
  for (auto _ : state) {
    if (iteration++ % kRestoreEvery == 0) {
      state.PauseTiming();
      open_seconds += setup.Restore();
      ++loads;
      state.ResumeTiming();
    }
    const double start = CpuSeconds();
    const bool read = setup.AppendAndRefresh();
    append_seconds += CpuSeconds() - start;
    if (!read) state.SkipWithError("the appended records were not read");
  }
  state.counters["pct_of_open"] =
      100 * (append_seconds / iteration) / (open_seconds / loads);
}
BENCHMARK(AppendCandidate)
    ->Name("append/candidate")
    ->Unit(benchmark::kMillisecond);

}  // namespace

int main(int argc, char** argv) { return rz::RunWithRatios(argc, argv); }
