// Copyright 2026 The Veltmark authors.

#include "rzselect/commands.h"

#include <filesystem>
#include <functional>
#include <iterator>
#include <system_error>

#include "core/error.h"
#include "core/text.h"
#include "platform/app_file.h"
#include "platform/application_replace.h"
#include "platform/file_system.h"
#include "platform/mapped_file.h"
#include "rzselect/csv_import.h"
#include "rzselect/csv_reader.h"
#include "rzselect/new_application.h"
#include "rzselect/sample_views.h"

namespace rz {
namespace {

void MakeFolder(const std::string& folder) {
  std::error_code error;
  std::filesystem::create_directories(folder, error);
  if (!error) return;
  if (error == std::errc::permission_denied) {
    throw Error::PermissionDenied(folder);
  }
  throw Error::PathNotFound(folder);
}

// The file's last part without its extension ("data/run 4.csv" -> "run 4").
std::string FileTitle(std::string_view path) {
  const std::string base = WithoutExtension(NormalizePath(path));
  return base.substr(base.find_last_of('/') + 1);
}

void Report(std::ostream& out, std::string_view template_path,
            const NewApplication& application, const WrittenRecords& written) {
  out << "Wrote " << template_path << " and " << WithoutExtension(template_path)
      << ".rzd: " << application.variables.size() << " variables, "
      << written.count << " records";
  if (written.count > 0) {
    const auto& first = written.first;
    const auto& last = written.last;
    out << " from " << first[0].ToString() << " " << first[1].ToString()
        << " to " << last[0].ToString() << " " << last[1].ToString();
  }
  out << "\n";
}

// Writes the new application into the staging folder of `replacement`
// through `write` (given the staged template path). An error that names a
// staged file names the file the user asked for instead: the staging
// folder is the program's own business.
void WriteStaged(const ApplicationReplacement& replacement,
                 std::string_view template_path,
                 const std::function<void(const std::string&)>& write) {
  const std::string staged = replacement.StagedTemplatePath();
  try {
    write(staged);
  } catch (const Error& error) {
    const std::string staged_folder = ParentFolder(staged);
    const std::string folder = ParentFolder(template_path);
    Error named(error.Number(),
                Replace(error.Description(), staged_folder, folder),
                error.Source());
    throw error.File().empty()
        ? named
        : named.WithFile(Replace(error.File(), staged_folder, folder));
  }
}

}  // namespace

void RunSample(Platform& platform, const SampleOptions& options,
               std::ostream& out) {
  const std::string template_path = JoinPath(NormalizePath(options.folder),
                                             std::string(kSampleName) + ".rzt");
  RecoverApplication(template_path);
  if (!options.force) RefuseExistingApplication(template_path);
  MakeFolder(options.folder);
  ApplicationReplacement replacement(template_path);
  const NewApplication application =
      StreamSample(options.records, options.seed);
  WrittenRecords written;
  WriteStaged(replacement, template_path, [&](const std::string& staged) {
    std::shared_ptr<AppFile> file = platform.CreateAppFile();
    written = WriteNewApplication(*file, application, staged, false);
    // The engine holds its platform by shared pointer; this one outlives
    // it.
    WriteSampleViews(std::shared_ptr<Platform>(&platform, [](Platform*) {}),
                     staged);
  });
  replacement.Commit();
  Report(out, template_path, application, written);
  out << "Wrote " << std::size(kSampleViewNames) << " views ("
      << WithoutExtension(template_path) << ".V1 .. .V"
      << std::size(kSampleViewNames) << "); the default is \""
      << kSampleViewNames[0] << "\"\n";
}

namespace {

// Gives back the pages of the mapped file behind the reader every 16 MiB.
class ReleasingCsvSource : public CsvTextSource {
 public:
  ReleasingCsvSource(std::string_view text, std::string_view file_name,
                     MappedFile& file)
      : CsvTextSource(text, file_name),
        file_(file),
        offset_(static_cast<size_t>(text.data() - file.Bytes().data())) {}
  bool Next(CsvRecord* record) override {
    const bool found = CsvTextSource::Next(record);
    if (Position() >= released_ + kStep) {
      released_ = Position();
      file_.ReleaseBefore(offset_ + released_);
    }
    return found;
  }
  void Restart() override {
    CsvTextSource::Restart();
    released_ = 0;
  }

 private:
  static constexpr size_t kStep = size_t{16} << 20;
  MappedFile& file_;
  size_t offset_;
  size_t released_ = 0;
};

}  // namespace

void RunImport(Platform& platform, const ImportOptions& options,
               std::ostream& out) {
  const std::string template_path = NormalizePath(options.template_path);
  RecoverApplication(template_path);
  if (!options.force) RefuseExistingApplication(template_path);
  const std::string folder = ParentFolder(template_path);
  if (!folder.empty() && !FileExists(folder)) {
    throw Error::PathNotFound(folder);
  }
  // The file is read twice, never held: the check of every record, then
  // the records as they are written.
  MappedFile csv(options.csv_path);
  ReleasingCsvSource source(WithoutUtf8Bom(csv.Bytes()), options.csv_path,
                            csv);
  const std::string title =
      options.title.empty() ? FileTitle(options.csv_path) : options.title;
  const DateTimeChoice choice{options.date_column, options.time_column,
                              options.datetime_column};
  const NewApplication application =
      ApplicationFromCsv(source, options.csv_path, title, choice);
  ApplicationReplacement replacement(template_path);
  WrittenRecords written;
  WriteStaged(replacement, template_path, [&](const std::string& staged) {
    std::shared_ptr<AppFile> file = platform.CreateAppFile();
    written = WriteNewApplication(*file, application, staged, false);
  });
  replacement.Commit();
  Report(out, template_path, application, written);
}

}  // namespace rz
