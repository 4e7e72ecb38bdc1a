// Copyright 2026 The Veltmark authors.
//
// Repository is the result store the engine fills on a run (the host's
// `DataSource`): fields that carry a variable's definition, records of
// Variant cells numbered from 1, header items, the catalogue of rules the
// fields refer to and the catalogue of statistics a report can list. The
// component (components/repository) and the test fake implement it; the
// engine includes only this header.
//
// RepositoryField and RuleEntry are plain data shared by reference
// (std::shared_ptr): a field handed out by Fields() keeps its identity
// until ResetRepository(). The lists returned by reference belong to the
// Repository and live as long as it does.
//
// Errors are rz::Error: a list position outside 1..Count() and an unknown
// rule key raise error 5; a record number below 1 and a field number
// outside 1..Fields().Count() raise error 9. Reading or writing a cell of a
// record past the end is not an error: the store grows to that record (new
// cells hold Empty). Not thread-safe.
//
// Scripts reach a repository as "RZrep": the component's Invoke and
// MemberNames (left pure here) must expose the members below under their
// names as written (ResetRepository, RecordCount, Value(record, field) as
// a property with two arguments, DeleteRecord, SetSourceRecord, Title,
// SpecialColumn1..3, LeadingColumnCount, FileSetting1..3, DateFormat,
// TimeFormat, Fields, RuleCatalogue, StatisticsCatalogue), names compared
// without regard to case.

#ifndef RZ_PLATFORM_REPOSITORY_H_
#define RZ_PLATFORM_REPOSITORY_H_

#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "core/dispatch.h"
#include "core/variant.h"
#include "platform/app_file.h"
#include "platform/field_definition.h"

namespace rz {

// One rule of the repository's catalogue: its one-letter key, the rule's
// eight attributes copied from the application, and an ordinal (the engine
// gives rule i of n the ordinal n - i + 1).
struct RuleEntry {
  std::string key;
  RuleAttributes attributes;
  int32_t ordinal = 0;
  bool operator==(const RuleEntry&) const = default;
};

// One statistic a report can list: its reference number, its description
// and whether a report lists it unless told otherwise.
struct StatisticEntry {
  int16_t reference = 0;
  std::string description;
  bool selected = false;
  bool operator==(const StatisticEntry&) const = default;
};

// A limit of a repository field: method code (0 blank, 1 calculated,
// 2 fixed; see field_format.h) and value.
struct RepositoryLimit {
  int16_t method = 0;
  double value = 0;
  bool operator==(const RepositoryLimit&) const = default;
};

// One field of the result: the definition of the variable behind a result
// column plus what the result adds (display format, raw variable number,
// visibility, limits as codes, attached rules).
//
// Every attribute of a variable definition is reachable by its key
// (FieldAttribute): NAME, TYPE, LENGTH and DECIMALS are the typed values
// given to Add (TYPE reads the type code, not a letter); RULES reads the
// keys of the attached rules joined in order and cannot be written (attach
// rules with AddRule); every other attribute is held as set. The seven
// limits live in Limits(), not among the attributes.
//
// Dispatch ("RepositoryField"): every attribute key as a property ("NAME",
// "#AVG", ...), plus FieldType, Format, RawField, Visible, and
// LimitMethod(limit) / LimitValue(limit) indexed by "USL".."LSL" or 1..7.
// LimitMethod without the limit argument is the LIMITMETHOD attribute (the
// two names differ only in case).
// RULES is read-only (438 on write); a wrong argument count raises 450, an
// unknown limit 5.
class RepositoryField : public Dispatch {
 public:
  RepositoryField(std::string name, int16_t field_type, int16_t length,
                  int16_t decimals, int16_t extra);

  const std::string& Name() const { return name_; }
  void SetName(std::string value) { name_ = std::move(value); }
  // Type code: 0 none/date/time, 1 T, 2 P, 3 L, 4 N, 5 A, 6 R, 7 C.
  int16_t FieldType() const { return field_type_; }
  void SetFieldType(int16_t value) { field_type_ = value; }
  int16_t Length() const { return length_; }
  void SetLength(int16_t value) { length_ = value; }
  int16_t Decimals() const { return decimals_; }
  void SetDecimals(int16_t value) { decimals_ = value; }
  // The fifth number given to Add, kept as given (the engine passes 0).
  int16_t Extra() const { return extra_; }

  // An attribute by key, as described above. SetAttribute converts the
  // typed ones (error 13 or 6 when the value does not fit a 16-bit number)
  // and raises error 5 for RULES.
  Variant Attribute(FieldAttribute attribute) const;
  void SetAttribute(FieldAttribute attribute, Variant value);
  // UNITS as text ("" when missing).
  std::string Units() const;

  // The display format of the field's values ("yyyy-mm-dd", "0.00", ...).
  const std::string& Format() const { return format_; }
  void SetFormat(std::string value) { format_ = std::move(value); }
  // The application variable the column shows.
  int16_t RawField() const { return raw_field_; }
  void SetRawField(int16_t value) { raw_field_ = value; }
  // True for a new field; a variable whose REQUIRED is "H" is hidden.
  bool Visible() const { return visible_; }
  void SetVisible(bool value) { visible_ = value; }

  // USL, UCL, UWL, TGT, LWL, LCL, LSL, indexed by LimitKind; method 0 and
  // value 0 for a new field.
  std::array<RepositoryLimit, kLimitCount>& Limits() { return limits_; }
  const std::array<RepositoryLimit, kLimitCount>& Limits() const {
    return limits_;
  }
  RepositoryLimit& Limit(LimitKind kind) {
    return limits_[static_cast<size_t>(kind)];
  }
  const RepositoryLimit& Limit(LimitKind kind) const {
    return limits_[static_cast<size_t>(kind)];
  }

  // Attaches a copy of a rule of the catalogue; the same rule may be
  // attached twice.
  void AddRule(const RuleEntry& rule) { rules_.push_back(rule); }
  // The attached rules in the order they were attached.
  const std::vector<RuleEntry>& Rules() const { return rules_; }
  // Their keys joined in that order ("ACF").
  std::string RuleKeys() const;

  std::string_view ClassName() const override { return "RepositoryField"; }
  Variant Invoke(std::string_view name, InvokeKind kind,
                 DispatchArgs& args) override;
  std::vector<std::string> MemberNames() const override;

 private:
  struct PlainMember;
  static const PlainMember kPlainMembers[];
  static const PlainMember* FindPlainMember(std::string_view name);

  Variant GetMember(std::string_view name, DispatchArgs& args);
  void PutMember(std::string_view name, DispatchArgs& args);

  std::string name_;
  int16_t field_type_;
  int16_t length_;
  int16_t decimals_;
  int16_t extra_;
  std::array<Variant, kFieldAttributeCount> attributes_;
  std::string format_;
  int16_t raw_field_ = 0;
  bool visible_ = true;
  std::array<RepositoryLimit, kLimitCount> limits_{};
  std::vector<RuleEntry> rules_;
};

// The fields in column order.
class RepositoryFieldList {
 public:
  virtual ~RepositoryFieldList() = default;
  virtual int32_t Count() const = 0;
  // Field `index` (1-based); error 5 outside 1..Count().
  virtual std::shared_ptr<RepositoryField> Item(int32_t index) const = 0;
  // Appends a field and returns it. Records that exist get an Empty cell
  // for it.
  virtual std::shared_ptr<RepositoryField> Add(std::string_view name,
                                               int16_t type_code,
                                               int16_t length, int16_t decimals,
                                               int16_t extra) = 0;
};

// The rules the fields refer to, in the order they were added, found by
// their key without regard to case.
class RuleCatalogueList {
 public:
  virtual ~RuleCatalogueList() = default;
  virtual int32_t Count() const = 0;
  // Adds an entry under `key` (its attributes empty, ordinal 0) and returns
  // it for the caller to fill. Error 5 when the key is empty or already
  // present.
  virtual std::shared_ptr<RuleEntry> Add(std::string_view key) = 0;
  // The entry under `key`; error 5 when there is none.
  virtual std::shared_ptr<RuleEntry> Item(std::string_view key) const = 0;
  // The entry at `position` (1-based); error 5 outside 1..Count().
  virtual std::shared_ptr<RuleEntry> ItemAt(int32_t position) const = 0;
};

// The statistics a report can list, in their fixed order.
class StatisticsCatalogueList {
 public:
  virtual ~StatisticsCatalogueList() = default;
  virtual int32_t Count() const = 0;
  // Entry `index` (1-based); error 5 outside 1..Count().
  virtual StatisticEntry Item(int32_t index) const = 0;
};

class Repository : public Dispatch {
 public:
  // Back to a new repository: no fields, no records, no rules, header
  // items empty and 0. The statistics catalogue and the formats stay.
  virtual void ResetRepository() = 0;

  virtual int32_t RecordCount() const = 0;
  // The cell (record, field). A record past the end grows the store to it
  // (so RecordCount() becomes `record`). Error 9 for record < 1 or a field
  // outside 1..Fields().Count().
  virtual Variant Value(int32_t record, int32_t field) = 0;
  // Writes a cell, growing the store like Value.
  virtual void SetValue(int32_t record, int32_t field,
                        const Variant& value) = 0;
  // Removes a record; later records move up. Error 9 outside
  // 1..RecordCount().
  virtual void DeleteRecord(int32_t record) = 0;
  // The data record a result record came from (0 = a summary record),
  // growing the store like Value; error 9 for record < 1.
  virtual void SetSourceRecord(int32_t record, int32_t source) = 0;
  // 0 when never set; error 9 outside 1..RecordCount().
  virtual int32_t SourceRecord(int32_t record) const = 0;

  // Header items; their meaning belongs to the host.
  virtual std::string Title() const = 0;
  virtual void SetTitle(std::string_view value) = 0;
  virtual int32_t SpecialColumn1() const = 0;
  virtual void SetSpecialColumn1(int32_t value) = 0;
  virtual int32_t SpecialColumn2() const = 0;
  virtual void SetSpecialColumn2(int32_t value) = 0;
  virtual int32_t SpecialColumn3() const = 0;
  virtual void SetSpecialColumn3(int32_t value) = 0;
  virtual int32_t LeadingColumnCount() const = 0;
  virtual void SetLeadingColumnCount(int32_t value) = 0;
  virtual int32_t FileSetting1() const = 0;
  virtual void SetFileSetting1(int32_t value) = 0;
  virtual int32_t FileSetting2() const = 0;
  virtual void SetFileSetting2(int32_t value) = 0;
  virtual double FileSetting3() const = 0;
  virtual void SetFileSetting3(double value) = 0;

  // The display formats of the date and time fields: "yyyy-mm-dd" and
  // "hh:mm:ss".
  virtual std::string DateFormat() const = 0;
  virtual std::string TimeFormat() const = 0;

  virtual RepositoryFieldList& Fields() = 0;
  virtual RuleCatalogueList& RuleCatalogue() = 0;
  virtual const StatisticsCatalogueList& StatisticsCatalogue() const = 0;
};

}  // namespace rz

#endif  // RZ_PLATFORM_REPOSITORY_H_
