// Copyright 2026 The Veltmark authors.

#include "repository/repository_lists.h"

#include <utility>

#include "core/error.h"
#include "core/text.h"

namespace rz {
namespace {

size_t ListSlot(int32_t index, size_t count) {
  if (index < 1 || static_cast<size_t>(index) > count) {
    throw Error::InvalidArgument("position " + std::to_string(index) +
                                 " is outside 1.." + std::to_string(count));
  }
  return static_cast<size_t>(index - 1);
}

// A rule of the catalogue as scripts see it. Shares the entry, so a change
// made through it is seen by the catalogue and the other way round.
class RuleEntryObject : public Dispatch {
 public:
  explicit RuleEntryObject(std::shared_ptr<RuleEntry> entry)
      : entry_(std::move(entry)) {}

  std::string_view ClassName() const override { return "RuleEntry"; }
  Variant Invoke(std::string_view name, InvokeKind kind,
                 DispatchArgs& args) override {
    return Table().Invoke(*this, name, kind, args);
  }
  std::vector<std::string> MemberNames() const override {
    return Table().Names();
  }

 private:
  using Self = RuleEntryObject;

  std::string& Text(const Variant& number) {
    const int32_t n = number.ToLong();
    if (n < 1 || n > static_cast<int32_t>(entry_->attributes.texts.size())) {
      throw Error::SubscriptOutOfRange("rule text " + std::to_string(n));
    }
    return entry_->attributes.texts[static_cast<size_t>(n - 1)];
  }
  double& Number(const Variant& number) {
    const int32_t n = number.ToLong();
    if (n < 1 || n > static_cast<int32_t>(entry_->attributes.numbers.size())) {
      throw Error::SubscriptOutOfRange("rule number " + std::to_string(n));
    }
    return entry_->attributes.numbers[static_cast<size_t>(n - 1)];
  }

  static const DispatchTable<Self>& Table() {
    static const DispatchTable<Self> table = [] {
      DispatchTable<Self> t;
      t.Property(
           "Key",
           [](Self& e, DispatchArgs&) -> Variant { return e.entry_->key; })
          .Property(
              "Ordinal",
              [](Self& e, DispatchArgs&) -> Variant {
                return e.entry_->ordinal;
              },
              [](Self& e, const Variant& v, DispatchArgs&) {
                e.entry_->ordinal = v.ToLong();
              })
          .Property(
              "Text",
              [](Self& e, DispatchArgs& a) -> Variant { return e.Text(a[0]); },
              [](Self& e, const Variant& v, DispatchArgs& a) {
                std::string value = v.ToString();
                e.Text(a[0]) = std::move(value);
              },
              1)
          .Property(
              "Number",
              [](Self& e, DispatchArgs& a) -> Variant {
                return e.Number(a[0]);
              },
              [](Self& e, const Variant& v, DispatchArgs& a) {
                const double value = v.ToDouble();
                e.Number(a[0]) = value;
              },
              1);
      return t;
    }();
    return table;
  }

  std::shared_ptr<RuleEntry> entry_;
};

// A statistic of the catalogue as scripts see it: a read-only copy.
class StatisticEntryObject : public Dispatch {
 public:
  explicit StatisticEntryObject(StatisticEntry entry)
      : entry_(std::move(entry)) {}

  std::string_view ClassName() const override { return "StatisticEntry"; }
  Variant Invoke(std::string_view name, InvokeKind kind,
                 DispatchArgs& args) override {
    return Table().Invoke(*this, name, kind, args);
  }
  std::vector<std::string> MemberNames() const override {
    return Table().Names();
  }

 private:
  using Self = StatisticEntryObject;

  static const DispatchTable<Self>& Table() {
    static const DispatchTable<Self> table = [] {
      DispatchTable<Self> t;
      t.Property(
           "Reference",
           [](Self& e, DispatchArgs&) -> Variant { return e.entry_.reference; })
          .Property("Description",
                    [](Self& e, DispatchArgs&) -> Variant {
                      return e.entry_.description;
                    })
          .Property("Selected", [](Self& e, DispatchArgs&) -> Variant {
            return e.entry_.selected;
          });
      return t;
    }();
    return table;
  }

  StatisticEntry entry_;
};

Variant RuleObject(std::shared_ptr<RuleEntry> entry) {
  return Variant(std::shared_ptr<Dispatch>(
      std::make_shared<RuleEntryObject>(std::move(entry))));
}

Variant StatisticObject(StatisticEntry entry) {
  return Variant(std::shared_ptr<Dispatch>(
      std::make_shared<StatisticEntryObject>(std::move(entry))));
}

}  // namespace

const std::vector<StatisticEntry>& ReportableStatistics() {
  // ORDER: catalogue order is the order a new view lists the statistics.
  static const std::vector<StatisticEntry> statistics = {
      {1, "Count", true},
      {2, "Average", true},
      {3, "Std Deviation", true},
      {4, "Sigma Within", true},
      {5, "Minimum", true},
      {6, "Maximum", true},
      {7, "Range", true},
      {8, "Sum", false},
      {9, "Cp", true},
      {10, "Cpk", true},
      {11, "CR", false},
      {12, "Target", false},
      {13, "Target Deviation", false},
      {14, "Z Target", false},
      {15, "Coefficient of Variation", false},
      {16, "% Out of Spec (observed)", true},
      {17, "PPM Out of Spec (observed)", false},
      {18, "% Out of Spec (expected)", false},
      {19, "PPM Out of Spec (expected)", false},
      {20, "Calculated USL", false},
      {21, "Calculated UCL", false},
      {22, "Calculated LCL", false},
      {23, "Calculated LSL", false},
      {24, "First Value", false},
      {25, "Last Value", false},
      {26, "Avg Time Between Events", false},
  };
  return statistics;
}

// RepositoryFields.

std::shared_ptr<RepositoryField> RepositoryFields::Item(int32_t index) const {
  return fields_[ListSlot(index, fields_.size())];
}

std::shared_ptr<RepositoryField> RepositoryFields::Add(std::string_view name,
                                                       int16_t type_code,
                                                       int16_t length,
                                                       int16_t decimals,
                                                       int16_t extra) {
  auto field = std::make_shared<RepositoryField>(std::string(name), type_code,
                                                 length, decimals, extra);
  fields_.push_back(field);
  cells_.AddField();
  return field;
}

const DispatchTable<RepositoryFields>& RepositoryFields::Members() {
  using Self = RepositoryFields;
  static const DispatchTable<Self> table = [] {
    DispatchTable<Self> t;
    t.Property("Count",
               [](Self& l, DispatchArgs&) -> Variant { return l.Count(); })
        .Method(
            "Item",
            [](Self& l, DispatchArgs& a) -> Variant {
              return std::shared_ptr<Dispatch>(l.Item(a[0].ToLong()));
            },
            1, 1)
        .Method(
            "Add",
            [](Self& l, DispatchArgs& a) -> Variant {
              return std::shared_ptr<Dispatch>(
                  l.Add(a[0].ToString(), a[1].ToInteger(), a[2].ToInteger(),
                        a[3].ToInteger(),
                        a.size() > 4 ? a[4].ToInteger() : int16_t{0}));
            },
            4, 5)
        .Default("Item");
    return t;
  }();
  return table;
}

Variant RepositoryFields::Invoke(std::string_view name, InvokeKind kind,
                                 DispatchArgs& args) {
  return Members().Invoke(*this, name, kind, args);
}

std::vector<std::string> RepositoryFields::MemberNames() const {
  return Members().Names();
}

VariantArray RepositoryFields::Enumerate() {
  VariantArray items;
  for (const auto& field : fields_) {
    items.emplace_back(std::shared_ptr<Dispatch>(field));
  }
  return items;
}

// RepositoryRules.

std::shared_ptr<RuleEntry> RepositoryRules::Add(std::string_view key) {
  if (key.empty()) throw Error::InvalidArgument("an empty rule key");
  if (Find(key)) {
    throw Error::InvalidArgument("rule key '" + std::string(key) +
                                 "' is already in the catalogue");
  }
  auto entry = std::make_shared<RuleEntry>();
  entry->key = std::string(key);
  rules_.push_back(entry);
  return entry;
}

std::shared_ptr<RuleEntry> RepositoryRules::Item(std::string_view key) const {
  auto entry = Find(key);
  if (!entry) {
    throw Error::InvalidArgument("no rule has the key '" + std::string(key) +
                                 "'");
  }
  return entry;
}

std::shared_ptr<RuleEntry> RepositoryRules::ItemAt(int32_t position) const {
  return rules_[ListSlot(position, rules_.size())];
}

std::shared_ptr<RuleEntry> RepositoryRules::Find(std::string_view key) const {
  for (const auto& entry : rules_) {
    if (EqualsIgnoreCase(entry->key, key)) return entry;
  }
  return nullptr;
}

const DispatchTable<RepositoryRules>& RepositoryRules::Members() {
  using Self = RepositoryRules;
  static const DispatchTable<Self> table = [] {
    DispatchTable<Self> t;
    t.Property("Count",
               [](Self& l, DispatchArgs&) -> Variant { return l.Count(); })
        .Method(
            "Item",
            [](Self& l, DispatchArgs& a) -> Variant {
              if (a[0].IsString()) return RuleObject(l.Item(a[0].ToString()));
              return RuleObject(l.ItemAt(a[0].ToLong()));
            },
            1, 1)
        .Method(
            "Add",
            [](Self& l, DispatchArgs& a) -> Variant {
              return RuleObject(l.Add(a[0].ToString()));
            },
            1, 1)
        .Default("Item");
    return t;
  }();
  return table;
}

Variant RepositoryRules::Invoke(std::string_view name, InvokeKind kind,
                                DispatchArgs& args) {
  return Members().Invoke(*this, name, kind, args);
}

std::vector<std::string> RepositoryRules::MemberNames() const {
  return Members().Names();
}

VariantArray RepositoryRules::Enumerate() {
  VariantArray items;
  for (const auto& entry : rules_) items.push_back(RuleObject(entry));
  return items;
}

// RepositoryStatistics.

int32_t RepositoryStatistics::Count() const {
  return static_cast<int32_t>(ReportableStatistics().size());
}

StatisticEntry RepositoryStatistics::Item(int32_t index) const {
  const std::vector<StatisticEntry>& statistics = ReportableStatistics();
  return statistics[ListSlot(index, statistics.size())];
}

const DispatchTable<RepositoryStatistics>& RepositoryStatistics::Members() {
  using Self = RepositoryStatistics;
  static const DispatchTable<Self> table = [] {
    DispatchTable<Self> t;
    t.Property("Count",
               [](Self& l, DispatchArgs&) -> Variant { return l.Count(); })
        .Method(
            "Item",
            [](Self& l, DispatchArgs& a) -> Variant {
              return StatisticObject(l.Item(a[0].ToLong()));
            },
            1, 1)
        .Default("Item");
    return t;
  }();
  return table;
}

Variant RepositoryStatistics::Invoke(std::string_view name, InvokeKind kind,
                                     DispatchArgs& args) {
  return Members().Invoke(*this, name, kind, args);
}

std::vector<std::string> RepositoryStatistics::MemberNames() const {
  return Members().Names();
}

VariantArray RepositoryStatistics::Enumerate() {
  VariantArray items;
  for (const StatisticEntry& entry : ReportableStatistics()) {
    items.push_back(StatisticObject(entry));
  }
  return items;
}

}  // namespace rz
