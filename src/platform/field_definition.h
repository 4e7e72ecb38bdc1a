// Copyright 2026 The Veltmark authors.
//
// FieldDefinition is the definition of one variable: what an application's
// template says about it, what a view's [FIELD] section stores for a
// result column, and what a repository field is created from. It is plain
// data shared by reference (std::shared_ptr): a ResultFieldType's RZfield,
// an application's Variables item and the column a wizard edits are such
// objects. It validates nothing; the readers and writers give the values
// their meaning.
//
// Attributes are named by the keys under which view files and templates
// store them ("NAME", "TYPE", "LENGTH", ..., "#AVG"). Scalars are held as
// Variants exactly as set; the typed getters read them leniently (leading
// number, 0 when missing). The seven limits (USL, UCL, UWL, TGT, LWL, LCL,
// LSL) are each a method letter ("B" blank, "C" calculated, "F" fixed) and
// a value.
//
// Not thread-safe; used from the host's thread.

#ifndef RZ_PLATFORM_FIELD_DEFINITION_H_
#define RZ_PLATFORM_FIELD_DEFINITION_H_

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "core/dispatch.h"
#include "core/variant.h"

namespace rz {

// ORDER: the order in which the attributes are listed, copied and
// exported. If you change it, grep "ORDER FIELD ATTRIBUTES".
enum class FieldAttribute : uint8_t {
  kName,
  kType,
  kLength,
  kDecimals,
  kXref,
  kSample,
  kReportType,
  kUcase,
  kRequired,
  kInput,
  kOutput,
  kLimitMethod,
  kTargetMethod,
  kMax,
  kMin,
  kExtra,  // the further scalar attribute kept between MIN and POPUP
  kPopup,
  kLookup,
  kCompData,
  kKeyId,
  kRange,
  kRelation,
  kHelpFile,
  kPosition,  // the variable's own position number in its application
  kSpare,     // a second trailing number, carried through unchanged
  kRules,
  kAvg,
  kUnits,
  kCategory,
  kCalc,
};
inline constexpr int kFieldAttributeCount = 30;

// ORDER: USL, UCL, UWL, TGT, LWL, LCL, LSL.
enum class LimitKind : uint8_t { kUsl, kUcl, kUwl, kTgt, kLwl, kLcl, kLsl };
inline constexpr int kLimitCount = 7;

struct Limit {
  std::string method = "C";  // "B", "C" or "F" (as stored; not validated)
  double value = 0;
  bool operator==(const Limit&) const = default;
};

class FieldDefinition : public Dispatch {
 public:
  FieldDefinition() = default;

  // The key of an attribute or a limit ("NAME", "#AVG", "USL").
  static std::string_view KeyOf(FieldAttribute attribute);
  static std::string_view KeyOf(LimitKind limit);
  // The attribute or limit stored under a key, ignoring case.
  static std::optional<FieldAttribute> AttributeForKey(std::string_view key);
  static std::optional<LimitKind> LimitForKey(std::string_view key);
  // The limit a late-bound argument names: "USL".."LSL" (any case) or
  // 1..7; anything else raises error 5.
  static LimitKind LimitForArgument(const Variant& argument);

  const Variant& Get(FieldAttribute attribute) const;
  void Set(FieldAttribute attribute, Variant value);

  const Limit& GetLimit(LimitKind limit) const;
  void SetLimit(LimitKind limit, Limit value);

  // Typed readers of the common attributes.
  std::string Name() const;
  std::string TypeLetter() const;  // upper-cased TYPE
  int16_t Length() const;
  int16_t Decimals() const;
  std::string Text(FieldAttribute attribute) const;  // "" when missing
  double Number(FieldAttribute attribute) const;     // leading number

  // Copies every attribute and limit of `other` into this object (the
  // object keeps its identity).
  void CopyFrom(const FieldDefinition& other);

  bool operator==(const FieldDefinition& other) const;

  // Dispatch: one property per attribute key, plus LimitMethod(key) and
  // LimitValue(key) indexed by "USL".."LSL" or 1..7 (LimitMethod without a
  // limit argument is the LIMITMETHOD attribute).
  std::string_view ClassName() const override { return "RZfield"; }
  Variant Invoke(std::string_view name, InvokeKind kind,
                 DispatchArgs& args) override;
  std::vector<std::string> MemberNames() const override;

 private:
  std::array<Variant, kFieldAttributeCount> attributes_;
  std::array<Limit, kLimitCount> limits_;
};

}  // namespace rz

#endif  // RZ_PLATFORM_FIELD_DEFINITION_H_
