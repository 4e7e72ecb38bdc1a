// Copyright 2026 The Veltmark authors.
//
// The view file: one saved view of an application, an INI-style text file
// (Windows-1252, written with CR LF; on reading a line ends at LF with or
// without its CR) named after the application's base path, ".V" and
// the view's number. LoadFromView reads it into a ViewState and its three
// lists; SaveFromView writes a ViewState back. They are the only reader and
// writer of the format and agree with each other.
//
// Layout: sections [GENERAL], [RULES], [SELECTION], [FILTERING] (only with
// at least one condition), [OPTIONS], [REPORT], [STATISTICS] and one
// [FIELD] per result column; key lines "   KEY" padded to column 16, "= "
// and the value. Reading accepts keys in any order within their section and
// ignores unknown sections and keys.
//
// Ownership: both work on the ViewState they are given and the AppFile it
// holds (which must be set and open). Loading needs two things that belong
// to the defaults code: the reset to the default view and the repository's
// statistics catalogue. They come in through ViewFileHooks.
//
// Errors (rz::Error):
//   - LoadFromView: 0x80040001 "Error - View '<name>' not found!" (source
//     "RZSelect", File() the path looked for: base path + ".V" + number)
//     when the file is missing, the state untouched; the file errors of
//     ReadBinaryFile; 75 naming the file, the state untouched, for a file
//     that holds no view: empty (blanks and line ends only), binary (a NUL
//     byte) or without a single header or key line; and for a line that
//     cannot be applied, the error's own number (6 overflow, 9 a 27th RULE
//     or a WHERE with too few fields, 13 a date-time that is not one, 91 a
//     [FIELD] key before any NAME) with a description starting
//     "<file>:<line>: <KEY>: " (6 "<file>: [FIELD] '<name>': LENGTH ..."
//     for a column too long for its range defaults). After such an error
//     the state holds the defaults and the lines read before the bad one,
//     and CurrentViewName keeps its old value: the view is not loaded.
//   - SaveFromView never throws for a file problem: it shows the message
//     "Error - Problem Saving View!" and returns false; the old file, if
//     any, is left intact (the new text is written to a temporary file and
//     renamed over it).
// Not thread-safe; used from the host's thread.

#ifndef RZ_VIEW_VIEW_FILE_H_
#define RZ_VIEW_VIEW_FILE_H_

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/repository.h"
#include "view/view_state.h"

namespace rz {

class AppFile;

// The pieces of the load that other code provides.
struct ViewFileHooks {
  // Resets the state to the default view before the file is applied
  // (the engine passes SetDefaults). Required: without it the load raises
  // error 91 before changing anything.
  std::function<void(ViewState&)> set_defaults;
  // The repository's statistics catalogue in its order. When unset, the
  // catalogue of a repository made by the state's platform is used.
  std::function<std::vector<StatisticEntry>()> statistics_catalogue;
  // The last step of a load, given the state once every key is applied:
  // checks the loaded view and completes its derived fields; returns false
  // when the check fails (the load then ends without its "Ended" trace).
  // When unset, the record range is resolved as a view load resolves it
  // (ResolveRangeOnLoad at the platform's current time).
  std::function<bool(ViewState&)> finish_load;
};

// Reads the file of the view `view_name` into `state` (see the file
// comment). REQUIRES: state.AppFile is set (else error 91).
void LoadFromView(ViewState& state, std::string_view view_name,
                  const ViewFileHooks& hooks);

// Writes the file of the view `view_name` below `base_path` from `state`,
// which is not changed. Returns true when the file was written.
// REQUIRES: state.AppFile is set.
bool SaveFromView(const ViewState& state, std::string_view view_name,
                  std::string_view base_path);

// --- The parts of the format, exposed for the engine and the tests ---

// The view number of `view_name` in the application's catalogue, after
// RefreshViews, ignoring case: the first match, or the last with
// `last_match`; 0 when none matches.
int32_t ViewNumber(AppFile& app_file, std::string_view view_name,
                   bool last_match);

// base_path + ".V" + number ("/data/LINE4", 3 -> "/data/LINE4.V3").
std::string ViewFilePath(std::string_view base_path, int32_t number);

// The whole text of the view file (UTF-8, CR LF line ends).
std::string ViewFileText(const ViewState& state, std::string_view view_name);

// Applies the text of a view file to `state`, which the caller has reset:
// every line, then the range defaults, CurrentViewName, the statistics
// completion, the rule letters and the range texts (not the finish step).
// `file_name` names the file in errors.
void ApplyViewFileText(ViewState& state, std::string_view text,
                       std::string_view view_name,
                       const std::vector<StatisticEntry>& catalogue,
                       std::string_view file_name);

// `value` rounded to decimals + 1 places (one place when decimals is 0 or
// less) by adding half a unit of the last place and cutting towards minus
// infinity, written with exactly that many places and never cut to a
// width: 12.3456 with 2 decimals -> "12.346", -2.25 with 0 -> "-2.2".
// REQUIRES: value is finite.
std::string FixedPointText(double value, int decimals);

// The MAX and MIN a numeric column gets when both are 0: a picture of
// `length` nines with a decimal point at place length - decimals (when
// decimals > 0; first when decimals >= length), MIN the same with a minus
// sign for the first place, or 0 when the picture starts with the point or
// is one place long. 6, 2 -> 999.99 and -99.99; 1, 0 -> 9 and 0.
struct RangeDefaults {
  double max = 0;
  double min = 0;
};
RangeDefaults RangeDefaultsFor(int length, int decimals);

// The RULES letters of a column rewritten for the application: `file_rules`
// are the rule names the file listed (letter A = the first) and
// `positions[k]` the 1-based position in the application of file rule
// k + 1 (0 when the application has no rule of that name). Letters without
// a match and every other character are dropped.
std::string RemapRuleLetters(std::string_view letters,
                             const std::vector<int>& positions);

}  // namespace rz

#endif  // RZ_VIEW_VIEW_FILE_H_
