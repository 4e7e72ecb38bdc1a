// Copyright 2026 The Veltmark authors.

#include "support/fake_repository.h"

#include <utility>

#include "core/dispatch.h"
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

Error NoRecord(int32_t record) {
  return Error::SubscriptOutOfRange("record " + std::to_string(record));
}

std::vector<StatisticEntry> DefaultStatistics() {
  return {{1, "Count", true},
          {2, "Average", true},
          {3, "Standard Deviation", true},
          {4, "Minimum", false},
          {5, "Maximum", false}};
}

}  // namespace

class FakeRepository::Lists {
 public:
  explicit Lists(FakeRepository& repository)
      : fields(repository), rules(repository), statistics(repository) {}

  class Fields : public RepositoryFieldList {
   public:
    explicit Fields(FakeRepository& repository) : repository_(repository) {}
    int32_t Count() const override {
      return static_cast<int32_t>(repository_.fields_.size());
    }
    std::shared_ptr<RepositoryField> Item(int32_t index) const override {
      return repository_.fields_[ListSlot(index, repository_.fields_.size())];
    }
    std::shared_ptr<RepositoryField> Add(std::string_view name,
                                         int16_t type_code, int16_t length,
                                         int16_t decimals,
                                         int16_t extra) override {
      auto field = std::make_shared<RepositoryField>(
          std::string(name), type_code, length, decimals, extra);
      repository_.fields_.push_back(field);
      for (auto& record : repository_.records_) record.emplace_back();
      return field;
    }

   private:
    FakeRepository& repository_;
  };

  class Rules : public RuleCatalogueList {
   public:
    explicit Rules(FakeRepository& repository) : repository_(repository) {}
    int32_t Count() const override {
      return static_cast<int32_t>(repository_.rules_.size());
    }
    std::shared_ptr<RuleEntry> Add(std::string_view key) override {
      if (key.empty()) throw Error::InvalidArgument("an empty rule key");
      if (Find(key)) {
        throw Error::InvalidArgument("rule key '" + std::string(key) +
                                     "' is already in the catalogue");
      }
      auto entry = std::make_shared<RuleEntry>();
      entry->key = std::string(key);
      repository_.rules_.push_back(entry);
      return entry;
    }
    std::shared_ptr<RuleEntry> Item(std::string_view key) const override {
      auto entry = Find(key);
      if (!entry) {
        throw Error::InvalidArgument("no rule has the key '" +
                                     std::string(key) + "'");
      }
      return entry;
    }
    std::shared_ptr<RuleEntry> ItemAt(int32_t position) const override {
      return repository_.rules_[ListSlot(position, repository_.rules_.size())];
    }

   private:
    std::shared_ptr<RuleEntry> Find(std::string_view key) const {
      for (const auto& entry : repository_.rules_) {
        if (EqualsIgnoreCase(entry->key, key)) return entry;
      }
      return nullptr;
    }

    FakeRepository& repository_;
  };

  class Statistics : public StatisticsCatalogueList {
   public:
    explicit Statistics(FakeRepository& repository) : repository_(repository) {}
    int32_t Count() const override {
      return static_cast<int32_t>(repository_.statistics_.size());
    }
    StatisticEntry Item(int32_t index) const override {
      return repository_
          .statistics_[ListSlot(index, repository_.statistics_.size())];
    }

   private:
    FakeRepository& repository_;
  };

  Fields fields;
  Rules rules;
  Statistics statistics;
};

FakeRepository::FakeRepository()
    : lists_(std::make_unique<Lists>(*this)),
      statistics_(DefaultStatistics()) {}

FakeRepository::~FakeRepository() = default;

void FakeRepository::SetStatisticsEntries(std::vector<StatisticEntry> entries) {
  statistics_ = std::move(entries);
}

void FakeRepository::ResetRepository() {
  ++reset_count_;
  fields_.clear();
  rules_.clear();
  records_.clear();
  source_records_.clear();
  title_.clear();
  for (int32_t& column : special_columns_) column = 0;
  leading_column_count_ = 0;
  file_setting1_ = 0;
  file_setting2_ = 0;
  file_setting3_ = 0;
}

Variant FakeRepository::Value(int32_t record, int32_t field) {
  return Cell(record, field);
}

void FakeRepository::SetValue(int32_t record, int32_t field,
                              const Variant& value) {
  Cell(record, field) = value;
}

void FakeRepository::DeleteRecord(int32_t record) {
  if (record < 1 || record > RecordCount()) throw NoRecord(record);
  const auto at = static_cast<std::ptrdiff_t>(record - 1);
  records_.erase(records_.begin() + at);
  source_records_.erase(source_records_.begin() + at);
}

void FakeRepository::SetSourceRecord(int32_t record, int32_t source) {
  if (record < 1) throw NoRecord(record);
  GrowTo(record);
  source_records_[static_cast<size_t>(record - 1)] = source;
}

int32_t FakeRepository::SourceRecord(int32_t record) const {
  if (record < 1 || record > RecordCount()) throw NoRecord(record);
  return source_records_[static_cast<size_t>(record - 1)];
}

RepositoryFieldList& FakeRepository::Fields() { return lists_->fields; }

RuleCatalogueList& FakeRepository::RuleCatalogue() { return lists_->rules; }

const StatisticsCatalogueList& FakeRepository::StatisticsCatalogue() const {
  return lists_->statistics;
}

Variant& FakeRepository::Cell(int32_t record, int32_t field) {
  if (record < 1) throw NoRecord(record);
  if (field < 1 || static_cast<size_t>(field) > fields_.size()) {
    throw Error::SubscriptOutOfRange("field " + std::to_string(field));
  }
  GrowTo(record);
  return records_[static_cast<size_t>(record - 1)]
                 [static_cast<size_t>(field - 1)];
}

void FakeRepository::GrowTo(int32_t record) {
  if (record <= RecordCount()) return;
  ++growth_count_;
  records_.resize(static_cast<size_t>(record),
                  std::vector<Variant>(fields_.size()));
  source_records_.resize(static_cast<size_t>(record), 0);
}

Variant FakeRepository::Invoke(std::string_view name, InvokeKind kind,
                               DispatchArgs& args) {
  using Table = DispatchTable<FakeRepository>;
  using Self = FakeRepository;
  static const Table table = [] {
    Table t;
    t.Method("ResetRepository",
             [](Self& r, DispatchArgs&) {
               r.ResetRepository();
               return Variant();
             })
        .Property(
            "RecordCount",
            [](Self& r, DispatchArgs&) -> Variant { return r.RecordCount(); })
        .Property(
            "Value",
            [](Self& r, DispatchArgs& a) -> Variant {
              return r.Value(a[0].ToLong(), a[1].ToLong());
            },
            [](Self& r, const Variant& v, DispatchArgs& a) {
              r.SetValue(a[0].ToLong(), a[1].ToLong(), v);
            },
            2)
        .Method(
            "DeleteRecord",
            [](Self& r, DispatchArgs& a) {
              r.DeleteRecord(a[0].ToLong());
              return Variant();
            },
            1, 1)
        .Method(
            "SetSourceRecord",
            [](Self& r, DispatchArgs& a) {
              r.SetSourceRecord(a[0].ToLong(), a[1].ToLong());
              return Variant();
            },
            2, 2)
        .Property(
            "Title",
            [](Self& r, DispatchArgs&) -> Variant { return r.Title(); },
            [](Self& r, const Variant& v, DispatchArgs&) {
              r.SetTitle(v.ToString());
            })
        .Property(
            "SpecialColumn1",
            [](Self& r, DispatchArgs&) -> Variant {
              return r.SpecialColumn1();
            },
            [](Self& r, const Variant& v, DispatchArgs&) {
              r.SetSpecialColumn1(v.ToLong());
            })
        .Property(
            "SpecialColumn2",
            [](Self& r, DispatchArgs&) -> Variant {
              return r.SpecialColumn2();
            },
            [](Self& r, const Variant& v, DispatchArgs&) {
              r.SetSpecialColumn2(v.ToLong());
            })
        .Property(
            "SpecialColumn3",
            [](Self& r, DispatchArgs&) -> Variant {
              return r.SpecialColumn3();
            },
            [](Self& r, const Variant& v, DispatchArgs&) {
              r.SetSpecialColumn3(v.ToLong());
            })
        .Property(
            "LeadingColumnCount",
            [](Self& r, DispatchArgs&) -> Variant {
              return r.LeadingColumnCount();
            },
            [](Self& r, const Variant& v, DispatchArgs&) {
              r.SetLeadingColumnCount(v.ToLong());
            })
        .Property(
            "FileSetting1",
            [](Self& r, DispatchArgs&) -> Variant { return r.FileSetting1(); },
            [](Self& r, const Variant& v, DispatchArgs&) {
              r.SetFileSetting1(v.ToLong());
            })
        .Property(
            "FileSetting2",
            [](Self& r, DispatchArgs&) -> Variant { return r.FileSetting2(); },
            [](Self& r, const Variant& v, DispatchArgs&) {
              r.SetFileSetting2(v.ToLong());
            })
        .Property(
            "FileSetting3",
            [](Self& r, DispatchArgs&) -> Variant { return r.FileSetting3(); },
            [](Self& r, const Variant& v, DispatchArgs&) {
              r.SetFileSetting3(v.ToDouble());
            })
        .Property(
            "DateFormat",
            [](Self& r, DispatchArgs&) -> Variant { return r.DateFormat(); })
        .Property("TimeFormat", [](Self& r, DispatchArgs&) -> Variant {
          return r.TimeFormat();
        });
    return t;
  }();
  return table.Invoke(*this, name, kind, args);
}

std::vector<std::string> FakeRepository::MemberNames() const {
  return {"ResetRepository",    "RecordCount",     "Value",
          "DeleteRecord",       "SetSourceRecord", "Title",
          "SpecialColumn1",     "SpecialColumn2",  "SpecialColumn3",
          "LeadingColumnCount", "FileSetting1",    "FileSetting2",
          "FileSetting3",       "DateFormat",      "TimeFormat"};
}

}  // namespace rz
