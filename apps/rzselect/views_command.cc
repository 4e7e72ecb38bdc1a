// Copyright 2026 The Veltmark authors.

#include "rzselect/views_command.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <vector>

#include "core/date_time.h"
#include "core/error.h"
#include "core/text.h"
#include "engine/rzselect.h"
#include "platform/app_file.h"
#include "platform/script_engine.h"
#include "platform/trace_sink.h"
#include "rzselect/script_commands.h"
#include "rzselect/stopped_clock.h"
#include "script/hook_timeout.h"
#include "view/date_range.h"
#include "view/view_file.h"
#include "view/view_state.h"

namespace rz {
namespace {

// One line of the listing.
struct ViewLine {
  int32_t position = 0;
  ViewEntry entry;
  bool is_default = false;
  std::optional<Error> error;  // the view could not be loaded
  int32_t range_type = 0;
  int32_t from_type = 0;
  int32_t to_type = 0;
  int32_t forward_amount = 0;
  int32_t forward_units = 0;
  int32_t backward_amount = 0;
  int32_t backward_units = 0;
  std::string begin;
  std::string end;
};

// The date and time texts of record `record`, as stored.
std::string RecordText(AppFile& file, int32_t record) {
  file.GotoRecord(record);
  return file.Value(1).ToString() + " " + file.Value(2).ToString();
}

// A range counted in records ("100 Record(s) back" from the last record,
// or forward from the first) is taken by record number when the view
// runs, not by date: its begin and end are those of the records it takes.
void ShowRecordCountRange(AppFile& file, ViewLine& line) {
  const int32_t count = file.RecordCount();
  int32_t first = 0;
  int32_t last = 0;
  if (line.range_type == kRangeBackward && line.to_type == kTypeRecordBound &&
      line.backward_units == kUnitRecords) {
    last = count;
    first = std::max(1, last - line.backward_amount + 1);
  } else if (line.range_type == kRangeForward &&
             line.from_type == kTypeRecordBound &&
             line.forward_units == kUnitRecords) {
    first = 1;
    last = std::min(line.forward_amount, count);
  } else {
    return;
  }
  if (first > last) {
    line.begin = line.end = "";  // no record
    return;
  }
  line.begin = RecordText(file, first);
  line.end = RecordText(file, last);
}

// The file name of view `number` without its folder ("line4.V2").
std::string ViewFileName(AppFile& file, int32_t number) {
  const std::string path = ViewFilePath(file.BasePath(), number);
  return path.substr(path.find_last_of('/') + 1);
}

// "entry 2 (line4.V2)".
std::string EntryText(AppFile& file, int32_t position, const ViewEntry& entry) {
  return "entry " + std::to_string(position) + " (" +
         ViewFileName(file, entry.number) + ")";
}

// A view is loaded by its name, so two entries with the same name (in any
// case) cannot both be reached: both are marked with error 457 naming the
// two entries. nullopt when no other entry has the name of `position`.
std::optional<Error> DuplicateNameError(AppFile& file, int32_t position) {
  ViewCatalogue& views = file.Views();
  const ViewEntry entry = views.Item(position);
  for (int32_t other = 1; other <= views.Count(); ++other) {
    if (other == position) continue;
    const ViewEntry twin = views.Item(other);
    if (!EqualsIgnoreCase(twin.name, entry.name)) continue;
    const bool first = position < other;
    return Error::DuplicateName(
        entry.name,
        first ? EntryText(file, position, entry) : EntryText(file, other, twin),
        first ? EntryText(file, other, twin)
              : EntryText(file, position, entry));
  }
  return std::nullopt;
}

ViewLine LoadLine(RZselect& engine, int32_t position) {
  ViewCatalogue& views = engine.RZaccess()->Views();
  ViewLine line;
  line.position = position;
  line.entry = views.Item(position);
  line.is_default = views.DefaultView() == position;
  line.error = DuplicateNameError(*engine.RZaccess(), position);
  if (line.error) return line;
  try {
    engine.LoadView(line.entry.name);
  } catch (const Error& error) {
    line.error = error;
    return line;
  }
  line.range_type = engine.FilterRangeType();
  line.from_type = engine.FromType();
  line.to_type = engine.ToType();
  line.forward_amount = engine.ForwardAmount();
  line.forward_units = engine.ForwardUnits();
  line.backward_amount = engine.BackwardAmount();
  line.backward_units = engine.BackwardUnits();
  line.begin = engine.BegDateTime();
  line.end = engine.EndDateTime();
  ShowRecordCountRange(*engine.RZaccess(), line);
  return line;
}

std::string RangeKindText(int32_t kind) {
  switch (kind) {
    case kRangeBackward:
      return "backward";
    case kRangeForward:
      return "forward";
    default:
      return "from/to";
  }
}

template <size_t N>
std::string ListText(const std::array<std::string_view, N>& names,
                     int32_t index) {
  if (index < 0 || static_cast<size_t>(index) >= N) return "-";
  std::string text(names[static_cast<size_t>(index)]);
  // "Current  Day" and the like: the list pads with two blanks.
  for (size_t at; (at = text.find("  ")) != std::string::npos;) {
    text.erase(at, 1);
  }
  return text;
}

std::string AmountText(int32_t amount, int32_t units, std::string_view way) {
  return std::to_string(amount) + " " + ListText(kAmountUnitNames, units) +
         " " + std::string(way);
}

// The table's cells of one view: the kind decides which type and amount
// apply (backward: the To type and the amount back; forward: the From type
// and the amount forward; from/to: both types).
std::vector<std::string> TableCells(const ViewLine& line) {
  std::vector<std::string> cells = {line.is_default ? "*" : "",
                                    std::to_string(line.position),
                                    line.entry.name};
  if (line.error) {
    cells.push_back("error " + ErrorNumberText(line.error->Number()) + ": " +
                    line.error->Description() + LookedForText(*line.error));
    return cells;
  }
  const bool backward = line.range_type == kRangeBackward;
  const bool forward = line.range_type == kRangeForward;
  cells.push_back(RangeKindText(line.range_type));
  cells.push_back(backward ? "-" : ListText(kFromTypeNames, line.from_type));
  cells.push_back(forward ? "-" : ListText(kToTypeNames, line.to_type));
  cells.push_back(
      backward  ? AmountText(line.backward_amount, line.backward_units, "back")
      : forward ? AmountText(line.forward_amount, line.forward_units, "forward")
                : "-");
  cells.push_back(line.begin);
  cells.push_back(line.end);
  return cells;
}

void WriteTable(const std::vector<ViewLine>& lines, std::ostream& out) {
  std::vector<std::vector<std::string>> rows = {
      {"", "#", "View", "Range", "From", "To", "Amount", "Begin", "End"}};
  for (const ViewLine& line : lines) rows.push_back(TableCells(line));
  std::vector<size_t> widths(rows.front().size(), 0);
  for (const auto& row : rows) {
    for (size_t i = 0; i + 1 < row.size(); ++i) {
      widths[i] = std::max(widths[i], utf8::CharacterCount(row[i]));
    }
  }
  for (const auto& row : rows) {
    std::string text;
    for (size_t i = 0; i < row.size(); ++i) {
      text += row[i];
      if (i + 1 < row.size()) {
        text.append(widths[i] - utf8::CharacterCount(row[i]) + 2, ' ');
      }
    }
    text.erase(text.find_last_not_of(' ') + 1);
    out << text << "\n";
  }
}

void WriteJson(const std::vector<ViewLine>& lines, std::ostream& out) {
  using Json = nlohmann::ordered_json;
  Json views = Json::array();
  for (const ViewLine& line : lines) {
    Json view = {{"Position", line.position},
                 {"Name", line.entry.name},
                 {"Number", line.entry.number},
                 {"Default", line.is_default}};
    if (line.error) {
      view["Error"] = {{"Number", line.error->Number()},
                       {"Description", line.error->Description()}};
      if (!line.error->File().empty()) {
        view["Error"]["File"] = line.error->File();
      }
    } else {
      view["FilterRangeType"] = line.range_type;
      view["FromType"] = line.from_type;
      view["ToType"] = line.to_type;
      view["ForwardAmount"] = line.forward_amount;
      view["ForwardUnits"] = line.forward_units;
      view["BackwardAmount"] = line.backward_amount;
      view["BackwardUnits"] = line.backward_units;
      view["BegText"] = line.begin;
      view["EndText"] = line.end;
    }
    views.push_back(std::move(view));
  }
  out << views.dump(2, ' ', false, Json::error_handler_t::replace) << "\n";
}

bool IsOpen(RZselect& engine) {
  const std::shared_ptr<AppFile> file = engine.RZaccess();
  return file && file->ApplicationExists();
}

bool HasDefaultView(AppFile& file) {
  ViewCatalogue& views = file.Views();
  return views.DefaultView() >= 1 && views.DefaultView() <= views.Count();
}

}  // namespace

std::string ErrorNumberText(int32_t number) {
  if (number >= 0) return std::to_string(number);
  char text[16];
  std::snprintf(text, sizeof text, "0x%08X", static_cast<uint32_t>(number));
  return text;
}

std::string LookedForText(const Error& error) {
  if (error.File().empty()) return "";
  return "; file looked for: " + error.File();
}

void RunViews(Platform& platform, const ViewsOptions& options,
              std::ostream& out) {
  if (options.format != "table" && options.format != "json") {
    throw Error::InvalidArgument("--format " + options.format +
                                 " (table or json)");
  }
  std::shared_ptr<RZselect> engine =
      RZselect::Create(PlatformAsOf(platform, options.as_of));
  if (!options.hook_timeout.empty()) {
    engine->SetHookTimeout(
        HookTimeoutMilliseconds(options.hook_timeout, "", kHookTimeoutOption));
  }
  engine->SetFilename(options.template_path);
  std::vector<ViewLine> lines;
  std::optional<Error> initialize_error;
  try {
    engine->Initialize();
  } catch (const Error& error) {
    // With the application open, the default view's line shows the
    // failure below (a failed reset to the default view fails every view
    // the same way); without a default view to show it, it ends the
    // command.
    if (!IsOpen(*engine) || !HasDefaultView(*engine->RZaccess())) throw;
    initialize_error = error;
  }
  for (int32_t i = 1; i <= engine->RZaccess()->Views().Count(); ++i) {
    lines.push_back(LoadLine(*engine, i));
  }
  // A failure of Initialize that loading the default view does not meet
  // again (a bad setting of the application itself) ends the command.
  if (initialize_error &&
      std::none_of(lines.begin(), lines.end(), [](const ViewLine& line) {
        return line.is_default && line.error;
      })) {
    throw *initialize_error;
  }
  engine->ReleaseObject();
  if (options.format == "json") {
    WriteJson(lines, out);
  } else {
    WriteTable(lines, out);
  }
}

}  // namespace rz
