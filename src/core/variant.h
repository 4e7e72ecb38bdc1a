// Copyright 2026 The Veltmark authors.
//
// Variant is the value type that crosses every late-bound boundary of the
// system: properties, list items, repository cells, script values. It holds
// one of Empty, Null, Boolean, Integer (16-bit), Long (32-bit), Double,
// Date (a day count, see core/date_time.h), String (UTF-8), Object (a
// shared Dispatch) or Array.
//
// The To...() conversions follow the automation rules users of such
// applications know:
//   - Empty converts to 0, "" or false; Null to a number or text raises
//     error 94 (Invalid use of Null).
//   - ToInteger/ToLong round halves to the even neighbour and raise error 6
//     (Overflow) outside their range.
//   - Text converts to a number only when the whole text (blanks trimmed)
//     is one number; otherwise error 13 (Type mismatch) naming the text.
//     The lenient "leading number" reading is LeadingNumberOf().
//   - ToString writes a Double in its shortest round-trip form, a Boolean
//     as "True"/"False", a Date as "yyyy-mm-dd hh:mm:ss" (the date alone at
//     midnight, the time alone on day 0).
//   - Boolean true is -1 as a number.
// A Variant is a value: copying it copies the text or array; an Object is
// shared (its identity is kept). An array is shared until the first write
// through MutableArray, so copying one is cheap however deep it is.
//
// No operation recurses along nested arrays: destroying an array nested any
// depth (an array holding an array holding ...) frees the levels one after
// the other, and equality walks them with a work list, so a script that
// nests arrays a million deep cannot overflow the stack. A copy that runs
// out of memory throws std::bad_alloc and leaves both sides as they were.

#ifndef RZ_CORE_VARIANT_H_
#define RZ_CORE_VARIANT_H_

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace rz {

class Dispatch;
class Variant;

using VariantArray = std::vector<Variant>;

enum class VariantType : uint8_t {
  kEmpty,
  kNull,
  kBoolean,
  kInteger,
  kLong,
  kDouble,
  kDate,
  kString,
  kObject,
  kArray,
};

class Variant {
 public:
  Variant() = default;  // Empty
  Variant(bool value) : value_(value) {}
  Variant(int16_t value) : value_(value) {}
  Variant(int32_t value) : value_(value) {}
  Variant(double value) : value_(value) {}
  Variant(std::string value) : value_(std::move(value)) {}
  Variant(std::string_view value) : value_(std::string(value)) {}
  Variant(const char* value) : value_(std::string(value)) {}
  Variant(std::shared_ptr<Dispatch> object) : value_(std::move(object)) {}
  Variant(VariantArray items) : value_(ShareArray(std::move(items))) {}

  Variant(const Variant& other) : value_(CopyOf(other.value_)) {}
  Variant(Variant&& other) noexcept = default;
  Variant& operator=(const Variant& other);
  Variant& operator=(Variant&& other) noexcept = default;
  ~Variant() = default;

  static Variant Null() { return Variant(NullTag{}); }
  static Variant Date(double serial) { return Variant(DateTag{serial}); }

  VariantType Type() const { return static_cast<VariantType>(value_.index()); }
  bool IsEmpty() const { return Type() == VariantType::kEmpty; }
  bool IsNull() const { return Type() == VariantType::kNull; }
  bool IsString() const { return Type() == VariantType::kString; }
  bool IsObject() const { return Type() == VariantType::kObject; }
  bool IsArray() const { return Type() == VariantType::kArray; }
  // True for Boolean, Integer, Long, Double and Date.
  bool IsNumber() const;
  // Empty, Null or the empty text: "no value" in the engine's sense.
  bool IsBlank() const;

  // Automation conversions; see the file comment for the rules and errors.
  bool ToBool() const;
  int16_t ToInteger() const;
  int32_t ToLong() const;
  double ToDouble() const;
  double ToDate() const;
  std::string ToString() const;
  // The byte size of a held text without copying it; 0 for other types.
  size_t TextSize() const;
  // A held text without copying it (valid while this Variant is alive and
  // unchanged); empty for other types.
  std::string_view TextView() const;
  // The object; raises error 91 for Empty/Null/Nothing, 13 for non-objects.
  std::shared_ptr<Dispatch> ToObject() const;
  // The items; raises error 13 when this is not an array.
  const VariantArray& ToArray() const;
  VariantArray& MutableArray();

  // The name of the held type as scripts' TypeName reports it ("Empty",
  // "Null", "Boolean", "Integer", "Long", "Double", "Date", "String",
  // "Object", "Variant()").
  std::string_view TypeName() const;

  // Same type and same value (objects: same object). For tests and caches;
  // not the automation "=" (see Compare).
  friend bool operator==(const Variant& a, const Variant& b);

 private:
  struct NullTag {
    bool operator==(const NullTag&) const = default;
  };
  struct DateTag {
    double serial;
    bool operator==(const DateTag&) const = default;
  };
  // Order matches VariantType.
  using Value =
      std::variant<std::monostate, NullTag, bool, int16_t, int32_t, double,
                   DateTag, std::string, std::shared_ptr<Dispatch>,
                   std::shared_ptr<VariantArray>>;

  explicit Variant(NullTag tag) : value_(tag) {}
  explicit Variant(DateTag tag) : value_(tag) {}

  // A shared array whose last owner frees it without recursing into the
  // arrays it holds (see variant.cc).
  static std::shared_ptr<VariantArray> ShareArray(VariantArray items);
  // A copy of `value` made so that a failing text copy throws before any
  // std::variant is built: the library's variant, told that a text never
  // leaves it valueless, would otherwise destroy a text it never made.
  static Value CopyOf(const Value& value);

  Value value_;
};

// The lenient number reading used for view values and settings: 0 for
// Empty, Null and the empty text, a number's own value, else the leading
// number of the text ("12.5abc" reads 12.5, "abc" reads 0).
double LeadingNumberOf(const Variant& value);

enum class CompareMode { kBinary, kText };

// Compares as the automation comparison operators do: numbers (and Empty)
// numerically; two texts by code points (kText: without regard to case);
// a number and a text numerically when the text is numeric, else the
// number sorts first. Returns -1, 0 or 1, or nullopt when either side is
// Null. Objects and arrays raise error 13.
std::optional<int> Compare(const Variant& a, const Variant& b,
                           CompareMode mode = CompareMode::kBinary);

}  // namespace rz

#endif  // RZ_CORE_VARIANT_H_
