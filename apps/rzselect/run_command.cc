// Copyright 2026 The Veltmark authors.

#include "rzselect/run_command.h"

#include <unistd.h>

#include <cerrno>
#include <charconv>
#include <cstdio>
#include <fstream>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "core/error.h"
#include "core/text.h"
#include "engine/rzselect.h"
#include "platform/app_file.h"
#include "platform/application_replace.h"
#include "platform/file_system.h"
#include "platform/repository.h"
#include "platform/rzselect_events.h"
#include "repository/repository_writers.h"
#include "run/filter_parameters.h"
#include "rzselect/script_commands.h"
#include "rzselect/stopped_clock.h"
#include "script/hook_timeout.h"
#include "view/view_state.h"
#include "view/where_types.h"

namespace rz {
namespace {

constexpr std::string_view kAskAtRunTime = "?";

std::optional<int32_t> WholeNumber(std::string_view text) {
  int32_t number = 0;
  const char* end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, number);
  if (text.empty() || error != std::errc() || stop != end) return std::nullopt;
  return number;
}

// The catalogue name of the view `text` names: a view's name (without
// regard to case) first, then a position in the catalogue.
std::string ViewNamed(AppFile& file, const std::string& text) {
  ViewCatalogue& views = file.Views();
  for (int32_t i = 1; i <= views.Count(); ++i) {
    const ViewEntry entry = views.Item(i);
    if (EqualsIgnoreCase(entry.name, text)) return entry.name;
  }
  const std::optional<int32_t> position = WholeNumber(text);
  if (position && *position >= 1 && *position <= views.Count()) {
    return views.Item(*position).name;
  }
  throw Error::ViewNotFound(text);
}

// Opens the application; a default view that cannot be loaded does not
// stop a run of another view.
void OpenApplication(RZselect& engine, const ViewRunOptions& options) {
  try {
    engine.Initialize(!options.no_hooks);
  } catch (const Error&) {
    const std::shared_ptr<AppFile> file = engine.RZaccess();
    if (options.view.empty() || !file || !file->ApplicationExists()) throw;
  }
}

std::string ViewLabel(const ViewState& state) {
  return state.CurrentViewName.empty() ? "the default settings"
                                       : "view '" + state.CurrentViewName + "'";
}

// Fills PromptValues from "ROW=VALUE" answers; an empty VALUE is "NULL",
// as an empty answer in the dialog is.
void AnswerParameters(ViewState& state,
                      const std::vector<std::string>& params) {
  WhereTypes& where = *state.Where;
  const int32_t rows = where.Count();
  state.PromptValues.resize(static_cast<size_t>(rows));
  for (const std::string& param : params) {
    const size_t equals = param.find('=');
    const std::string prefix = "--param " + param + ": ";
    if (equals == std::string::npos) {
      throw UsageError(prefix + "expected ROW=VALUE");
    }
    const std::optional<int32_t> row =
        WholeNumber(std::string_view(param).substr(0, equals));
    if (!row) {
      throw UsageError(prefix + "ROW must be the number of a filter row");
    }
    if (*row < 1 || *row > rows) {
      throw UsageError(prefix + ViewLabel(state) + " has " +
                       std::to_string(rows) + " filter row" +
                       (rows == 1 ? "" : "s"));
    }
    const std::string& value = where.Item(*row)->Value();
    if (value != kAskAtRunTime) {
      throw UsageError(prefix + "filter row " + std::to_string(*row) +
                       " does not ask for a value (its value is '" + value +
                       "')");
    }
    const std::string answer = param.substr(equals + 1);
    state.PromptValues[static_cast<size_t>(*row - 1)] =
        answer.empty() ? "NULL" : answer;
  }
}

// Without a person to ask, a question left open stops the command before
// any record is read.
void RequireAnswers(ViewState& state) {
  WhereTypes& where = *state.Where;
  for (int32_t row = 1; row <= where.Count(); ++row) {
    if (where.Item(row)->Value() != kAskAtRunTime) continue;
    if (!state.PromptValues[static_cast<size_t>(row - 1)].empty()) continue;
    const std::string number = std::to_string(row);
    throw UsageError("filter row " + number + " of " + ViewLabel(state) +
                     " asks for a value at run time:\n" +
                     PromptMessage(state, row) + "\nanswer it with --param " +
                     number + "=VALUE");
  }
}

// The output file, written under a temporary name beside it and renamed
// into place by Commit; removed when the command fails before.
class OutputFile {
 public:
  explicit OutputFile(const std::string& path)
      : path_(path), temporary_(TemporaryNameFor(path)) {
    DeleteAbandonedTemporaries(path_);  // of runs that were killed
    stream_.open(temporary_, std::ios::binary | std::ios::trunc);
    if (!stream_) throw FileWriteError(errno, path_);
  }
  ~OutputFile() {
    if (!committed_) {
      stream_.close();
      std::remove(temporary_.c_str());
    }
  }
  OutputFile(const OutputFile&) = delete;
  OutputFile& operator=(const OutputFile&) = delete;

  std::ostream& Stream() { return stream_; }

  void Commit() {
    stream_.close();
    if (!stream_) throw FileWriteError(EIO, path_);
    if (std::rename(temporary_.c_str(), path_.c_str()) != 0) {
      throw FileWriteError(errno, path_);
    }
    committed_ = true;
  }

 private:
  std::string path_;
  std::string temporary_;
  std::ofstream stream_;
  bool committed_ = false;
};

// Writes each record as the run in event mode hands it over (record 1 is
// the working record).
class StreamingOutput : public RZselectEvents {
 public:
  StreamingOutput(TextFormat format, std::ostream& out, Repository& repository)
      : writer_(format, out, DateTimeColumns{true}), repository_(repository) {}

  void OpenDataSource(bool& Cancel) override {
    (void)Cancel;
    Begin();
  }
  void WriteDataSource(bool& Cancel) override {
    (void)Cancel;
    writer_.Write(repository_, 1);
  }
  // The header alone when no record came (a hook skipped the reading).
  void Finish() {
    Begin();
    writer_.End();
  }

 private:
  void Begin() {
    if (begun_) return;
    writer_.Begin(repository_);
    begun_ = true;
  }

  RecordWriter writer_;
  Repository& repository_;
  bool begun_ = false;
};

// The hooks a run calls with its repository: one of them may read or
// change the records the run delivered.
constexpr std::string_view kRepositoryHooks[] = {
    "RZ_AfterOpenFile", "RZ_BeforeOpenView", "RZ_AfterOpenView"};

// True when no hook of the application will see the run's repository
// (hooks are off, or the hook files define none of kRepositoryHooks): the
// command is then its only reader, and writing each record as the run
// delivers it (event mode) gives the same text as writing the finished
// repository, without holding every record in memory.
bool OnlyThisCommandReadsTheResult(RZselect& engine, bool hooks_run) {
  if (!hooks_run) return true;
  const Variant modules = engine.GetScriptModules();
  const VariantArray& names = modules.ToArray();
  for (size_t i = 1; i < names.size(); ++i) {
    for (std::string_view hook : kRepositoryHooks) {
      if (EqualsIgnoreCase(names[i].ToString(), hook)) return false;
    }
  }
  return true;
}

void WriteResult(RZselect& engine,
                 const std::shared_ptr<Repository>& repository,
                 TextFormat format, bool events, std::ostream& out) {
  if (!events) {
    engine.Refresh(repository, false);
    WriteRecords(format, *repository, out, DateTimeColumns{true});
    return;
  }
  StreamingOutput streaming(format, out, *repository);
  engine.AddEventHandler(&streaming);
  try {
    engine.Refresh(repository, true);
  } catch (...) {
    engine.RemoveEventHandler(&streaming);
    throw;
  }
  engine.RemoveEventHandler(&streaming);
  streaming.Finish();
}

}  // namespace

std::shared_ptr<RZselect> PrepareViewRun(std::shared_ptr<Platform> platform,
                                         const ViewRunOptions& options) {
  std::shared_ptr<RZselect> engine =
      RZselect::Create(PlatformAsOf(*platform, options.as_of));
  if (!options.hook_timeout.empty()) {
    engine->SetHookTimeout(
        HookTimeoutMilliseconds(options.hook_timeout, "", kHookTimeoutOption));
  }
  engine->SetFilename(options.template_path);
  OpenApplication(*engine, options);
  if (!options.view.empty()) {
    engine->LoadView(ViewNamed(*engine->RZaccess(), options.view));
  }
  AnswerParameters(engine->State(), options.params);
  if (!options.interactive) RequireAnswers(engine->State());
  return engine;
}

void RunViewCommand(Platform& platform, const RunOptions& options,
                    std::ostream& out) {
  const std::optional<TextFormat> format = TextFormatNamed(options.format);
  if (!format) {
    throw UsageError("--format " + options.format +
                     ": one of table, csv, tsv, json, jsonl");
  }
  if (options.events && *format == TextFormat::kTable) {
    throw UsageError(
        "--events writes records as they come; the table needs them all "
        "first: choose csv, tsv, json or jsonl");
  }
  std::shared_ptr<Platform> base(&platform, [](Platform*) {});
  std::shared_ptr<RZselect> engine = PrepareViewRun(base, options);
  std::shared_ptr<Repository> repository = platform.CreateRepository();
  const bool events = options.events || (*format != TextFormat::kTable &&
                                         OnlyThisCommandReadsTheResult(
                                             *engine, !options.no_hooks));
  if (options.output.empty()) {
    WriteResult(*engine, repository, *format, events, out);
  } else {
    OutputFile file(options.output);
    WriteResult(*engine, repository, *format, events, file.Stream());
    file.Commit();
  }
  engine->ReleaseObject();
}

void RunExportCommand(Platform& platform, const ExportOptions& options,
                      std::ostream& out) {
  if (!options.force && FileExists(options.target)) {
    throw Error::FileAlreadyExists(options.target);
  }
  std::shared_ptr<Platform> base(&platform, [](Platform*) {});
  std::shared_ptr<RZselect> engine;
  std::shared_ptr<Repository> repository = platform.CreateRepository();
  {
    // The source is held for reading while it is read; the export then
    // writes without the hold, which would keep a replacement in the same
    // folder waiting on this very process.
    const ApplicationReadLock reading(options.template_path);
    engine = PrepareViewRun(base, options);
    engine->Refresh(repository, false);
  }
  engine->SaveRepository(repository, options.target);
  engine->ReleaseObject();
  out << "wrote " << options.target << " (" << repository->RecordCount()
      << " records, " << repository->Fields().Count() << " variables)\n";
}

}  // namespace rz
