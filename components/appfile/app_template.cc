// Copyright 2026 The Veltmark authors.

#include "appfile/app_template.h"

#include <sys/stat.h>

#include <cmath>
#include <limits>
#include <utility>

#include "appfile/template_sections.h"
#include "core/error.h"
#include "core/text.h"
#include "platform/file_system.h"

namespace rz {
namespace {

constexpr std::string_view kGeneral = "[GENERAL]";
constexpr std::string_view kRules = "[RULES]";
constexpr std::string_view kViews = "[VIEWS]";
constexpr std::string_view kField = "[FIELD]";
constexpr std::string_view kLineEnd = "\r\n";

enum class Section { kNone, kGeneral, kRules, kViews, kField, kOther };

// The reader's walk over one template text.
class TemplateReader {
 public:
  explicit TemplateReader(std::string_view path) : path_(path) {}

  std::optional<AppTemplate> Read(std::string_view text, std::string* why_not);

 private:
  // Notes the first problem with its line. It is raised at the end, and
  // only for a file that turns out to be an application.
  void Corrupt(const std::string& problem) {
    if (problem_.empty()) {
      problem_ = "line " + std::to_string(line_) + ": " + problem;
    }
  }

  void StartSection(const std::string& header);
  void ApplyKey(const IniLine& line);
  void ApplyGeneral(const IniLine& line);
  void ApplyRule(const IniLine& line);
  void ApplyView(const IniLine& line);
  void ApplyField(const IniLine& line);
  void FinishField();
  int16_t SmallNumber(const IniLine& line);
  double Number(const IniLine& line);

  std::string path_;
  std::string problem_;  // the first problem found, "" for none
  AppTemplate app_;
  Section section_ = Section::kNone;
  bool has_general_ = false;
  bool has_version_ = false;
  size_t line_ = 0;
  size_t field_line_ = 0;  // the header line of the open [FIELD] section
  bool field_has_name_ = false;
  bool field_has_type_ = false;
  bool field_has_length_ = false;
};

// Why a template text is not an application, judged before it is parsed:
// "" when it may be one.
std::string UnusableTemplateText(std::string_view text) {
  const size_t nul = text.find('\0');
  if (nul != std::string_view::npos) {
    return "binary data (a NUL byte at offset " + std::to_string(nul) + ")";
  }
  if (text.find_first_not_of(" \t\r\n") == std::string_view::npos) {
    return "the file is empty";
  }
  return "";
}

std::optional<AppTemplate> TemplateReader::Read(std::string_view text,
                                                std::string* why_not) {
  std::string unusable = UnusableTemplateText(text);
  if (!unusable.empty()) {
    if (why_not != nullptr) *why_not = std::move(unusable);
    return std::nullopt;
  }
  size_t start = 0;
  while (start < text.size()) {
    const size_t end = std::min(text.find('\n', start), text.size());
    ++line_;
    const IniLine line = ParseIniLine(text.substr(start, end - start));
    if (IsIniHeader(line)) {
      StartSection(line.key);
    } else if (!line.key.empty()) {
      ApplyKey(line);
    }
    start = end + 1;
  }
  StartSection("");  // closes the last [FIELD] section
  if (!has_version_) {
    if (why_not != nullptr) {
      *why_not = has_general_ ? "no VERSION key in its [GENERAL] section"
                              : "no [GENERAL] section";
    }
    return std::nullopt;
  }
  if (!problem_.empty()) throw Error::BadDataFile(path_, problem_);
  if (app_.variables.size() < 2) {
    throw Error::BadDataFile(
        path_, "the template defines " + std::to_string(app_.variables.size()) +
                   " variables; the date and the time variables are needed");
  }
  if (app_.default_view < 0 ||
      app_.default_view > static_cast<int32_t>(app_.views.size())) {
    app_.default_view = 0;  // a default left behind by a removed view
  }
  return std::move(app_);
}

void TemplateReader::StartSection(const std::string& header) {
  if (section_ == Section::kField) FinishField();
  if (header == kGeneral) {
    section_ = Section::kGeneral;
    has_general_ = true;
  } else if (header == kRules) {
    section_ = Section::kRules;
  } else if (header == kViews) {
    section_ = Section::kViews;
  } else if (header == kField) {
    section_ = Section::kField;
    app_.variables.push_back(std::make_shared<FieldDefinition>());
    app_.field_extra.emplace_back();
    field_line_ = line_;
    field_has_name_ = field_has_type_ = field_has_length_ = false;
  } else if (!header.empty()) {
    section_ = Section::kOther;
    app_.extra_sections.push_back({header, {}});
  }
}

void TemplateReader::FinishField() {
  const size_t here = line_;
  line_ = field_line_;
  if (!field_has_name_) Corrupt("a [FIELD] section without NAME");
  if (!field_has_type_) Corrupt("a [FIELD] section without TYPE");
  if (!field_has_length_) Corrupt("a [FIELD] section without LENGTH");
  line_ = here;
}

void TemplateReader::ApplyKey(const IniLine& line) {
  switch (section_) {
    case Section::kNone:
      app_.leading_extra.push_back(line);
      break;
    case Section::kGeneral:
      ApplyGeneral(line);
      break;
    case Section::kRules:
      ApplyRule(line);
      break;
    case Section::kViews:
      ApplyView(line);
      break;
    case Section::kField:
      ApplyField(line);
      break;
    case Section::kOther:
      app_.extra_sections.back().entries.push_back(line);
      break;
  }
}

void TemplateReader::ApplyGeneral(const IniLine& line) {
  const std::string& key = line.key;
  if (key == kHeaderVersion) {
    app_.version = Variant(Number(line));
    has_version_ = true;
  } else if (key == "TITLE") {
    app_.title = line.value;
  } else if (key == "LOOKBACK") {
    app_.look_back = SmallNumber(line);
  } else if (key == "SHIFTHOURS") {
    app_.shift_hours = Number(line);
  } else if (key == "SHIFTSTART") {
    app_.shift_start = line.value;
  } else if (key == "LEADINGVARS") {
    app_.leading_variables = SmallNumber(line);
  } else if (key == "SPECIALVAR1" || key == "SPECIALVAR2" ||
             key == "SPECIALVAR3") {
    app_.special_variables[static_cast<size_t>(key.back() - '1')] =
        SmallNumber(line);
  } else if (key == "FILESETTING1" || key == "FILESETTING2" ||
             key == "FILESETTING3") {
    app_.file_settings[static_cast<size_t>(key.back() - '1')] =
        ScalarFromStoredText(line.value);
  } else if (key == "SECURED") {
    app_.secured_functions = line.value;
  } else if (key == "QUERY1" || key == "QUERY2") {
    app_.queries[static_cast<size_t>(key.back() - '1')] = line.value;
  } else if (IsHeaderItemKey(key)) {
    HeaderItemSlot(app_, key) = ScalarFromStoredText(line.value);
  } else {
    app_.general_extra.push_back(line);
  }
}

void TemplateReader::ApplyRule(const IniLine& line) {
  if (line.key != "RULE") {
    app_.rules_extra.push_back(line);
    return;
  }
  Rule rule;
  std::string problem;
  if (ParseRuleValue(line.value, rule, problem)) {
    app_.rules.push_back(std::move(rule));
  } else {
    Corrupt(problem);
  }
}

void TemplateReader::ApplyView(const IniLine& line) {
  if (line.key == "DEFAULT") {
    app_.default_view = SmallNumber(line);
  } else if (line.key == "VIEW") {
    ViewEntry view;
    std::string problem;
    if (ParseViewValue(line.value, view, problem)) {
      app_.views.push_back(std::move(view));
    } else {
      Corrupt(problem);
    }
  } else {
    app_.views_extra.push_back(line);
  }
}

void TemplateReader::ApplyField(const IniLine& line) {
  bool known = false;
  std::string problem;
  if (!ApplyFieldKey(line, *app_.variables.back(), known, problem)) {
    Corrupt(problem);
  }
  if (!known) app_.field_extra.back().push_back(line);
  field_has_name_ = field_has_name_ || line.key == "NAME";
  field_has_type_ = field_has_type_ || line.key == "TYPE";
  field_has_length_ = field_has_length_ || line.key == "LENGTH";
}

double TemplateReader::Number(const IniLine& line) {
  try {
    return LeadingNumber(line.value);
  } catch (const Error&) {
    Corrupt(line.key + " '" + line.value + "' is out of range");
    return 0;
  }
}

int16_t TemplateReader::SmallNumber(const IniLine& line) {
  const double number = std::nearbyint(Number(line));
  if (number < std::numeric_limits<int16_t>::min() ||
      number > std::numeric_limits<int16_t>::max()) {
    Corrupt(line.key + " '" + line.value + "' is out of range");
    return 0;
  }
  return static_cast<int16_t>(number);
}

// --- Writing ---

class TemplateWriter {
 public:
  std::string Write(const AppTemplate& app);

 private:
  void Header(std::string_view header);
  void Key(std::string_view key, std::string_view value);
  void Keys(const std::vector<IniLine>& lines);
  void General(const AppTemplate& app);

  std::string text_;
};

std::string TemplateWriter::Write(const AppTemplate& app) {
  Keys(app.leading_extra);
  General(app);
  Header(kRules);
  for (const Rule& rule : app.rules) Key("RULE", FormatRuleValue(rule));
  Keys(app.rules_extra);
  Header(kViews);
  Key("DEFAULT", std::to_string(app.default_view));
  for (const ViewEntry& view : app.views) Key("VIEW", FormatViewValue(view));
  Keys(app.views_extra);
  for (const ExtraSection& section : app.extra_sections) {
    Header(section.header);
    Keys(section.entries);
  }
  for (size_t i = 0; i < app.variables.size(); ++i) {
    Header(kField);
    Keys(FieldKeyLines(*app.variables[i]));
    if (i < app.field_extra.size()) Keys(app.field_extra[i]);
  }
  return std::move(text_);
}

void TemplateWriter::General(const AppTemplate& app) {
  Header(kGeneral);
  Key(kHeaderVersion, app.version.IsEmpty()
                          ? ShortestNumberText(kTemplateVersion)
                          : StoredText(app.version));
  Key("TITLE", StoredText(Variant(app.title)));
  Key("LOOKBACK", std::to_string(app.look_back));
  Key("SHIFTHOURS", StoredText(Variant(app.shift_hours)));
  Key("SHIFTSTART", StoredText(Variant(app.shift_start)));
  Key("LEADINGVARS", std::to_string(app.leading_variables));
  for (size_t i = 0; i < 3; ++i) {
    Key("SPECIALVAR" + std::to_string(i + 1),
        std::to_string(app.special_variables[i]));
  }
  for (size_t i = 0; i < 3; ++i) {
    if (app.file_settings[i].IsEmpty()) continue;
    Key("FILESETTING" + std::to_string(i + 1),
        StoredText(app.file_settings[i]));
  }
  Key("SECURED", StoredText(Variant(app.secured_functions)));
  Key("QUERY1", StoredText(Variant(app.queries[0])));
  Key("QUERY2", StoredText(Variant(app.queries[1])));
  for (int i = 0; i < kHeaderItemCount; ++i) {
    const Variant& item = app.items[static_cast<size_t>(i)];
    if (!item.IsEmpty()) Key(HeaderItemKey(i + 1), StoredText(item));
  }
  Keys(app.general_extra);
}

void TemplateWriter::Header(std::string_view header) {
  if (!text_.empty()) text_ += kLineEnd;
  text_ += header;
  text_ += kLineEnd;
}

void TemplateWriter::Key(std::string_view key, std::string_view value) {
  text_ += FormatIniKeyLine(key, value);
  text_ += kLineEnd;
}

void TemplateWriter::Keys(const std::vector<IniLine>& lines) {
  for (const IniLine& line : lines) Key(line.key, StoredText(line.value));
}

// 0 for "VERSION", n for "ITEMn"; error 5 for any other key.
size_t HeaderItemPosition(std::string_view key) {
  if (!IsHeaderItemKey(key)) {
    throw Error::InvalidArgument("header item " + std::string(key));
  }
  if (SameMemberName(key, kHeaderVersion)) return 0;
  return static_cast<size_t>(std::stoi(std::string(key.substr(4))));
}

bool IsRegularFile(const std::string& path) {
  struct stat info {};
  return ::stat(path.c_str(), &info) == 0 && S_ISREG(info.st_mode);
}

}  // namespace

Variant& HeaderItemSlot(AppTemplate& app, std::string_view key) {
  const size_t position = HeaderItemPosition(key);
  return position == 0 ? app.version : app.items[position - 1];
}

const Variant& HeaderItemSlot(const AppTemplate& app, std::string_view key) {
  const size_t position = HeaderItemPosition(key);
  return position == 0 ? app.version : app.items[position - 1];
}

std::optional<AppTemplate> ReadAppTemplate(const std::string& path,
                                           std::string* why_not) {
  if (!IsRegularFile(path)) {
    if (why_not != nullptr) {
      *why_not =
          FileExists(path) ? "not a regular file" : "the file does not exist";
    }
    return std::nullopt;
  }
  return ParseAppTemplate(ReadTextFile(path), path, why_not);
}

std::optional<AppTemplate> ParseAppTemplate(std::string_view text,
                                            std::string_view path,
                                            std::string* why_not) {
  return TemplateReader(path).Read(text, why_not);
}

std::string FormatAppTemplate(const AppTemplate& app) {
  return TemplateWriter().Write(app);
}

std::string StoredText(const Variant& value) {
  if (value.IsEmpty() || value.IsNull() || value.IsObject() ||
      value.IsArray()) {
    return "";
  }
  std::string text = value.ToString();
  for (char& c : text) {
    if (c == '\r' || c == '\n' || c == '\t') c = ' ';
  }
  return text;
}

Variant ScalarFromStoredText(std::string_view text) {
  if (IsNumericText(text)) return Variant(LeadingNumber(text));
  return Variant(text);
}

}  // namespace rz
