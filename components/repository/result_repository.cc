// Copyright 2026 The Veltmark authors.

#include "repository/result_repository.h"

#include <utility>

#include "core/dispatch.h"
#include "core/error.h"

namespace rz {
namespace {

Error NoRecord(int32_t record) {
  return Error::SubscriptOutOfRange("record " + std::to_string(record));
}

}  // namespace

ResultRepository::ResultRepository() = default;

void ResultRepository::ResetRepository() {
  cells_.Clear();
  source_records_.clear();
  fields_.Clear();
  rules_.Clear();
  title_.clear();
  for (int32_t& column : special_columns_) column = 0;
  leading_column_count_ = 0;
  file_setting1_ = 0;
  file_setting2_ = 0;
  file_setting3_ = 0;
}

Variant ResultRepository::Value(int32_t record, int32_t field) {
  PrepareCell(record, field);
  return cells_.Get(record - 1, field - 1);
}

std::optional<std::string_view> ResultRepository::TextAt(int32_t record,
                                                        int32_t field) {
  PrepareCell(record, field);
  return cells_.TextAt(record - 1, field - 1);
}

void ResultRepository::SetValue(int32_t record, int32_t field,
                                const Variant& value) {
  PrepareCell(record, field);
  cells_.Set(record - 1, field - 1, value);
}

void ResultRepository::DeleteRecord(int32_t record) {
  if (record < 1 || record > RecordCount()) throw NoRecord(record);
  cells_.DeleteRecord(record - 1);
  source_records_.erase(source_records_.begin() +
                        static_cast<std::ptrdiff_t>(record - 1));
}

void ResultRepository::SetSourceRecord(int32_t record, int32_t source) {
  if (record < 1) throw NoRecord(record);
  GrowTo(record);
  source_records_[static_cast<size_t>(record - 1)] = source;
}

int32_t ResultRepository::SourceRecord(int32_t record) const {
  if (record < 1 || record > RecordCount()) throw NoRecord(record);
  return source_records_[static_cast<size_t>(record - 1)];
}

void ResultRepository::PrepareCell(int32_t record, int32_t field) {
  if (record < 1) throw NoRecord(record);
  if (field < 1 || field > cells_.FieldCount()) {
    throw Error::SubscriptOutOfRange("field " + std::to_string(field));
  }
  GrowTo(record);
}

void ResultRepository::GrowTo(int32_t record) {
  if (record <= RecordCount()) return;
  cells_.GrowTo(record);
  source_records_.resize(static_cast<size_t>(record), 0);
}

Variant ResultRepository::ListObject(Dispatch& list) {
  // Shares ownership of this repository when it has an owner, so a script
  // may keep the list after dropping the repository.
  return Variant(std::shared_ptr<Dispatch>(weak_from_this().lock(), &list));
}

const DispatchTable<ResultRepository>& ResultRepository::Members() {
  using Table = DispatchTable<ResultRepository>;
  using Self = ResultRepository;
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
            "SourceRecord",
            [](Self& r, DispatchArgs& a) -> Variant {
              return r.SourceRecord(a[0].ToLong());
            },
            nullptr, 1)
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
        .Property(
            "TimeFormat",
            [](Self& r, DispatchArgs&) -> Variant { return r.TimeFormat(); })
        .Property("Fields",
                  [](Self& r, DispatchArgs&) -> Variant {
                    return r.ListObject(r.fields_);
                  })
        .Property("RuleCatalogue",
                  [](Self& r, DispatchArgs&) -> Variant {
                    return r.ListObject(r.rules_);
                  })
        .Property("StatisticsCatalogue", [](Self& r, DispatchArgs&) -> Variant {
          return r.ListObject(r.statistics_);
        });
    return t;
  }();
  return table;
}

Variant ResultRepository::Invoke(std::string_view name, InvokeKind kind,
                                 DispatchArgs& args) {
  return Members().Invoke(*this, name, kind, args);
}

std::vector<std::string> ResultRepository::MemberNames() const {
  return Members().Names();
}

}  // namespace rz
