// Copyright 2026 The Veltmark authors.
//
// AppTemplate is the model of an application's template file (line4.rzt):
// the header, the rules, the view catalogue and one definition per
// variable. ReadAppTemplate/ParseAppTemplate read it, FormatAppTemplate
// writes it; docs/formats.md describes the file.
//
// The file is Windows-1252 text in INI lines (core/ini_line.h) with CR LF
// line ends; LF alone is accepted on reading. Sections: [GENERAL], [RULES],
// [VIEWS], then one [FIELD] per variable. Keys and sections the reader
// does not know are kept in the model and written back by the writer.
//
// Reading types: the template holds text, so values come back as the kind
// the key stores: header numbers and limits as numbers, texts as String;
// the header items ITEM1..ITEM18 and FILESETTING1..3, whose kind is not
// fixed, come back as a Double when their text is a number and as a String
// otherwise; a key that is absent leaves the item Empty.
//
// Errors: ReadAppTemplate raises the read errors of file_system.h for a
// file that exists but cannot be read, and error 75 (Error::BadDataFile)
// naming the file, the line and what is wrong for a template that is an
// application but is corrupt: a [FIELD] section without NAME, a TYPE that
// is not one of T P L N A R C, a LENGTH that is not a positive number, a
// RULE line without its ten fields, a quoted rule text that is not closed,
// a rule number that is not a number, a VIEW line that is not
// "number,name", a number out of the range of its key, fewer than the two
// variables every record has (date and time).

#ifndef RZ_APPFILE_APP_TEMPLATE_H_
#define RZ_APPFILE_APP_TEMPLATE_H_

#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/ini_line.h"
#include "core/variant.h"
#include "platform/app_file.h"
#include "platform/field_definition.h"

namespace rz {

// The format version a new template is written with.
inline constexpr double kTemplateVersion = 5.0;

// A section the reader did not know, with its key lines in order.
struct ExtraSection {
  std::string header;  // as parsed: "[NAME]" in upper case
  std::vector<IniLine> entries;
};

struct AppTemplate {
  // [GENERAL]. `version` and `items` are Empty until set; the writer
  // writes kTemplateVersion for an Empty version.
  Variant version;
  std::string title;
  int16_t look_back = -1;
  double shift_hours = 0;
  std::string shift_start = "00:00";
  int16_t leading_variables = 2;
  std::array<int16_t, 3> special_variables{};
  std::array<Variant, 3> file_settings;
  std::string secured_functions;
  std::array<std::string, 2> queries;
  std::array<Variant, kHeaderItemCount> items;  // ITEM1..ITEM18

  std::vector<Rule> rules;
  std::vector<ViewEntry> views;
  int32_t default_view = 0;
  std::vector<std::shared_ptr<FieldDefinition>> variables;

  // What the reader did not know, in file order, for the writer.
  std::vector<IniLine> leading_extra;  // key lines before the first section
  std::vector<IniLine> general_extra;
  std::vector<IniLine> rules_extra;
  std::vector<IniLine> views_extra;
  std::vector<std::vector<IniLine>> field_extra;  // one list per variable
  std::vector<ExtraSection> extra_sections;
};

// The slot of a header item key ("VERSION", "ITEM1".."ITEM18", any case);
// error 5 for any other key.
Variant& HeaderItemSlot(AppTemplate& app, std::string_view key);
const Variant& HeaderItemSlot(const AppTemplate& app, std::string_view key);

// Reads the template at `path`. nullopt when nothing is there, when it is
// not a regular file, or when it is not an application (no [GENERAL]
// section with a VERSION); `why_not`, when given, then receives the cause
// as a user reads it: "the file does not exist", "not a regular file",
// "the file is empty", "binary data (a NUL byte at offset N)", "no
// [GENERAL] section", "no VERSION key in its [GENERAL] section". Errors as
// in the file comment.
std::optional<AppTemplate> ReadAppTemplate(const std::string& path,
                                           std::string* why_not = nullptr);

// The same for template text already decoded to UTF-8; `path` names the
// file in errors.
std::optional<AppTemplate> ParseAppTemplate(std::string_view text,
                                            std::string_view path,
                                            std::string* why_not = nullptr);

// The template as UTF-8 text with CR LF line ends, ready for
// WriteTextFileAtomically.
std::string FormatAppTemplate(const AppTemplate& app);

// The text a header item or attribute value is stored as: numbers in their
// shortest form, texts as they are with line breaks turned into spaces
// (the file is line-based), Empty, Null, objects and arrays as "".
std::string StoredText(const Variant& value);

// The value a header item's stored text stands for: a Double when the text
// is a number, else the text.
Variant ScalarFromStoredText(std::string_view text);

}  // namespace rz

#endif  // RZ_APPFILE_APP_TEMPLATE_H_
