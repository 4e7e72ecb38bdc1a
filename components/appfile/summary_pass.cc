// Copyright 2026 The Veltmark authors.

#include "appfile/summary_pass.h"

#include <algorithm>
#include <cmath>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>

#include "appfile/record_columns.h"
#include "core/error.h"
#include "core/text.h"

namespace rz {
namespace {

constexpr int kGroupByValue = 3;

enum class KeyKind { kNone, kVariable, kTime };

struct PassKey {
  KeyKind kind = KeyKind::kNone;
  int variable = 0;
  IntervalKey interval = IntervalKey::kSpecific;
};

void CheckKeyVariable(const RecordColumns& columns, int variable,
                      std::string_view what) {
  if (variable < 1 || variable > columns.VariableCount()) {
    throw Error::SubscriptOutOfRange(
        std::string(what) + " variable " + std::to_string(variable) +
        " (the application has " + std::to_string(columns.VariableCount()) +
        " variables)");
  }
}

PassKey SortKeyOf(const RecordColumns& columns, const PassRequest& request) {
  if (request.sort_keys.empty()) return {};
  if (request.sort_keys.size() > 1) {
    throw Error::InvalidArgument("SortFile takes one sort key, not " +
                                 std::to_string(request.sort_keys.size()));
  }
  const auto [variable, kind] = request.sort_keys.front();
  if (kind != kGroupByValue) {
    throw Error::InvalidArgument("sort key kind " + std::to_string(kind) +
                                 " (only kind 3, group by value, is known)");
  }
  CheckKeyVariable(columns, variable, "sort key");
  return {KeyKind::kVariable, variable, IntervalKey::kSpecific};
}

PassKey SummaryKeyOf(const RecordColumns& columns, const PassRequest& request) {
  if (request.summary_keys.empty()) return {};
  if (request.summary_keys.size() > 1) {
    throw Error::InvalidArgument("SortFile takes one summary key, not " +
                                 std::to_string(request.summary_keys.size()));
  }
  const int32_t key = request.summary_keys.front();
  if (key > 0) {
    CheckKeyVariable(columns, key, "summary key");
    return {KeyKind::kVariable, key, IntervalKey::kSpecific};
  }
  if (key < static_cast<int32_t>(IntervalKey::kYear)) {
    throw Error::InvalidArgument("summary key " + std::to_string(key) +
                                 " (keys run from -9, Year, to 0, the "
                                 "specific interval, or name a variable)");
  }
  return {KeyKind::kTime, 0, static_cast<IntervalKey>(key)};
}

PassKey KeyOf(const RecordColumns& columns, const PassRequest& request) {
  PassKey key = request.summarize ? SummaryKeyOf(columns, request)
                                  : SortKeyOf(columns, request);
  // Only the time key's own settings are checked (IntervalGrid::For).
  if (key.kind == KeyKind::kTime)
    IntervalGrid::For(key.interval, request.settings);
  return key;
}

void AddGroup(SummaryPass& pass, int32_t begin, int32_t end,
              int64_t interval_start) {
  if (pass.groups.size() >= kMaxSummaryGroups) {
    throw Error::InvalidArgument(
        "the summary would have more than " +
        std::to_string(kMaxSummaryGroups) +
        " records; choose a longer interval or turn empty intervals off");
  }
  pass.groups.push_back({begin, end, interval_start});
}

// Fills pass.order with the selected records grouped by the value of
// `variable` (no-value group first) and adds one group per value.
void GroupByValue(const RecordColumns& columns, int variable,
                  SummaryPass& pass) {
  const RecordColumn& column = columns.Column(variable);
  RecordList& order = pass.order;
  order = pass.selected;
  if (column.Numeric()) {
    const auto values_begin = std::stable_partition(
        order.begin(), order.end(),
        [&](int32_t record) { return column.IsNull(record); });
    std::stable_sort(values_begin, order.end(), [&](int32_t a, int32_t b) {
      return column.Number(a) < column.Number(b);
    });
    size_t begin = 0;
    const size_t nulls = static_cast<size_t>(values_begin - order.begin());
    if (nulls > 0) AddGroup(pass, 0, static_cast<int32_t>(nulls), 0);
    begin = nulls;
    while (begin < order.size()) {
      size_t end = begin + 1;
      const double value = column.Number(order[begin]);
      while (end < order.size() && column.Number(order[end]) == value) ++end;
      AddGroup(pass, static_cast<int32_t>(begin), static_cast<int32_t>(end), 0);
      begin = end;
    }
    return;
  }

  // Texts: the column's folded codes (equal for texts equal trimmed and
  // without regard to case, blank and no value sharing one) ranked by
  // their text without regard to case (blank is rank 0, the no-value
  // group), then a stable counting sort by rank.
  const RecordList& codes = column.FoldedCodes();
  const std::vector<std::string>& texts = column.FoldedTexts();
  const int32_t blank = column.FoldedCodeOf("");
  std::vector<int32_t> by_text;
  for (int32_t code = 0; code < static_cast<int32_t>(texts.size()); ++code) {
    if (code != blank) by_text.push_back(code);
  }
  std::stable_sort(by_text.begin(), by_text.end(), [&](int32_t a, int32_t b) {
    return CompareIgnoreCase(texts[a], texts[b]) < 0;
  });
  std::vector<int32_t> rank_of_code(texts.size(), 0);
  for (size_t i = 0; i < by_text.size(); ++i) {
    rank_of_code[static_cast<size_t>(by_text[i])] = static_cast<int32_t>(i) + 1;
  }
  const size_t rank_count = by_text.size() + 1;
  auto rank_of = [&](int32_t record) {
    return static_cast<size_t>(
        rank_of_code[static_cast<size_t>(codes[static_cast<size_t>(record)])]);
  };
  std::vector<int32_t> starts(rank_count + 1, 0);
  for (int32_t record : pass.selected) ++starts[rank_of(record) + 1];
  for (size_t r = 1; r <= rank_count; ++r) starts[r] += starts[r - 1];
  std::vector<int32_t> fill(starts.begin(), starts.end() - 1);
  for (int32_t record : pass.selected) {
    order[static_cast<size_t>(fill[rank_of(record)]++)] = record;
  }
  for (size_t r = 0; r < rank_count; ++r) {
    if (starts[r] < starts[r + 1]) AddGroup(pass, starts[r], starts[r + 1], 0);
  }
}

// Places the records of `pass.selected` that have a date-time into the
// intervals of `grid`, appending them to pass.order and a group for each
// new interval. Returns false as soon as a record lies in an earlier
// interval than the one before it (the data are not in time order).
bool PlaceInOrder(const RecordColumns& columns, const IntervalGrid& grid,
                  SummaryPass& pass) {
  // Records mostly come in time order: the interval found for one record
  // usually holds the next one too. The serials from that of the interval's
  // first second to that of its last are surely inside it (SecondsFromSerial
  // never decreases), so such a record needs no conversion; any other is
  // placed exactly.
  double inside_from = 1;  // an empty range until the first interval
  double inside_to = 0;
  for (int32_t record : pass.selected) {
    const double date_time = columns.DateTime(static_cast<size_t>(record));
    if (std::isnan(date_time)) continue;
    if (!(date_time >= inside_from && date_time <= inside_to)) {
      const int64_t start = grid.StartOf(SecondsFromSerial(date_time));
      const bool first = pass.groups.empty();
      if (!first && start < pass.groups.back().interval_start) return false;
      inside_from = SerialFromSeconds(start);
      inside_to = SerialFromSeconds(grid.NextStart(start) - 1);
      if (first || start != pass.groups.back().interval_start) {
        const int32_t at = first ? 0 : pass.groups.back().end;
        AddGroup(pass, at, at, start);
      }
    }
    if (!pass.order_is_selected) pass.order.push_back(record);
    ++pass.groups.back().end;
  }
  return true;
}

// The general case: every record's interval, then a stable sort by it.
void PlaceByStableSort(const RecordColumns& columns, const IntervalGrid& grid,
                       SummaryPass& pass) {
  std::vector<std::pair<int64_t, int32_t>> keyed;
  keyed.reserve(pass.selected.size());
  for (int32_t record : pass.selected) {
    const double date_time = columns.DateTime(static_cast<size_t>(record));
    if (std::isnan(date_time)) continue;
    keyed.emplace_back(grid.StartOf(SecondsFromSerial(date_time)), record);
  }
  std::stable_sort(
      keyed.begin(), keyed.end(),
      [](const auto& a, const auto& b) { return a.first < b.first; });
  pass.order_is_selected = false;
  pass.order.clear();
  pass.groups.clear();
  for (const auto& [start, record] : keyed) {
    if (pass.groups.empty() || pass.groups.back().interval_start != start) {
      const auto at = static_cast<int32_t>(pass.order.size());
      AddGroup(pass, at, at, start);
    }
    pass.order.push_back(record);
    pass.groups.back().end = static_cast<int32_t>(pass.order.size());
  }
}

// Inserts the empty intervals between consecutive groups.
void AddEmptyIntervals(const IntervalGrid& grid, SummaryPass& pass) {
  std::vector<SummaryPassGroup> groups;
  groups.swap(pass.groups);
  for (const SummaryPassGroup& group : groups) {
    if (!pass.groups.empty()) {
      for (int64_t empty = grid.NextStart(pass.groups.back().interval_start);
           empty < group.interval_start; empty = grid.NextStart(empty)) {
        AddGroup(pass, group.begin, group.begin, empty);
      }
    }
    AddGroup(pass, group.begin, group.end, group.interval_start);
  }
}

void GroupByInterval(const RecordColumns& columns, IntervalKey key,
                     const PassRequest& request, SummaryPass& pass) {
  const IntervalGrid grid = IntervalGrid::For(key, request.settings);
  // Records in time order all have a date-time: grouped by time, they
  // stay where they are.
  pass.order_is_selected = columns.InTimeOrder();
  if (!pass.order_is_selected) pass.order.reserve(pass.selected.size());
  if (!PlaceInOrder(columns, grid, pass)) {
    PlaceByStableSort(columns, grid, pass);
  }
  if (request.null_intervals) AddEmptyIntervals(grid, pass);
}

}  // namespace

void CheckPassRequest(const RecordColumns& columns,
                      const PassRequest& request) {
  KeyOf(columns, request);
}

SummaryPass BuildSummaryPass(const RecordColumns& columns, RecordList selected,
                             const PassRequest& request) {
  const PassKey key = KeyOf(columns, request);
  SummaryPass pass;
  pass.selected = std::move(selected);
  switch (key.kind) {
    case KeyKind::kNone:
      pass.order_is_selected = true;
      if (!pass.selected.empty()) {
        AddGroup(pass, 0, static_cast<int32_t>(pass.selected.size()), 0);
      }
      break;
    case KeyKind::kVariable:
      GroupByValue(columns, key.variable, pass);
      break;
    case KeyKind::kTime:
      pass.time_keyed = true;
      GroupByInterval(columns, key.interval, request, pass);
      break;
  }
  return pass;
}

}  // namespace rz
