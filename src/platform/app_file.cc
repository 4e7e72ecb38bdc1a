// Copyright 2026 The Veltmark authors.

#include "platform/app_file.h"

#include "core/error.h"
#include "core/text.h"

namespace rz {
namespace {

constexpr std::string_view kHeaderItemPrefix = "ITEM";

// ORDER: as StatisticValue.
constexpr std::string_view kStatisticNames[kStatisticValueCount] = {
    "Count",   "Tdev",    "Sum",        "SD",        "Maximum", "CalcUSL",
    "CalcUCL", "Average", "CalcLCL",    "CalcLSL",   "Minimum", "CR",
    "TZ",      "CPK",     "CV",         "Range",     "OOOLpct", "OOOLppm",
    "COOLpct", "COOLppm", "FirstValue", "LastValue", "AvgTBE"};

// The number written after the prefix: plain decimal digits without a
// leading zero; -1 for anything else.
int PositionAfterPrefix(std::string_view digits) {
  if (digits.empty() || digits.size() > 2 || digits[0] == '0') return -1;
  int value = 0;
  for (char c : digits) {
    if (c < '0' || c > '9') return -1;
    value = value * 10 + (c - '0');
  }
  return value;
}

}  // namespace

std::string HeaderItemKey(int position) {
  if (position < 1 || position > kHeaderItemCount) {
    throw Error::InvalidArgument("header item " + std::to_string(position));
  }
  return std::string(kHeaderItemPrefix) + std::to_string(position);
}

bool IsHeaderItemKey(std::string_view key) {
  if (SameMemberName(key, kHeaderVersion)) return true;
  if (key.size() <= kHeaderItemPrefix.size()) return false;
  if (!SameMemberName(key.substr(0, kHeaderItemPrefix.size()),
                      kHeaderItemPrefix)) {
    return false;
  }
  const int position =
      PositionAfterPrefix(key.substr(kHeaderItemPrefix.size()));
  return position >= 1 && position <= kHeaderItemCount;
}

std::string_view StatisticValueName(StatisticValue value) {
  return kStatisticNames[static_cast<int>(value)];
}

std::optional<StatisticValue> StatisticValueForName(std::string_view name) {
  for (int i = 0; i < kStatisticValueCount; ++i) {
    if (SameMemberName(kStatisticNames[i], name)) {
      return static_cast<StatisticValue>(i);
    }
  }
  return std::nullopt;
}

void AppendNewRule(std::vector<Rule>& rules, const Rule& rule) {
  if (utf8::CharacterCount(rule.key) != 1) {
    throw Error::InvalidArgument("the key of a rule must be one letter, "
                                 "found '" + rule.key + "'");
  }
  for (const Rule& existing : rules) {
    if (EqualsIgnoreCase(existing.key, rule.key)) {
      throw Error::InvalidArgument("rule key '" + rule.key +
                                   "' is already used");
    }
  }
  rules.push_back(rule);
}

bool AppFile::SameStructure(AppFile& other) {
  VariableList& mine = Variables();
  VariableList& theirs = other.Variables();
  if (mine.Count() != theirs.Count()) return false;
  for (int32_t i = 1; i <= mine.Count(); ++i) {
    if (mine.Item(i)->TypeLetter() != theirs.Item(i)->TypeLetter()) {
      return false;
    }
  }
  return true;
}

}  // namespace rz
