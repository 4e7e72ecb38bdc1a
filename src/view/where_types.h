// Copyright 2026 The Veltmark authors.
//
// WhereType is one filter condition of a view and WhereTypes the view's
// ordered, 1-based list of them (the view file's WHERE lines carry the
// same six values in the same order). The lists are plain data: they
// validate nothing; the reader, the wizard and the run give the values
// their meaning. Both are Dispatch objects under their own names, with
// `Item` the default member of WhereTypes.
//
// WhereTypes keeps its identity: Clear empties it, it is never replaced,
// so a host holding it sees the change. Items are shared.

#ifndef RZ_VIEW_WHERE_TYPES_H_
#define RZ_VIEW_WHERE_TYPES_H_

#include <cstdint>
#include <memory>
#include <string>

#include "core/dispatch.h"
#include "view/item_list.h"

namespace rz {

class WhereType : public Dispatch {
 public:
  // How the condition joins the previous ones: 0 none, 1 and, 2 or.
  int16_t AndOr() const { return and_or_; }
  void SetAndOr(int16_t value) { and_or_ = value; }
  // Opening bracket text, "(" or empty.
  const std::string& Par1() const { return par1_; }
  void SetPar1(std::string value) { par1_ = std::move(value); }
  // 1-based application variable tested (0 = the record's date-time).
  int16_t Variable() const { return variable_; }
  void SetVariable(int16_t value) { variable_ = value; }
  // "=", "<>", ">", "<", ">=", "<=" or "LIKE".
  const std::string& Condition() const { return condition_; }
  void SetCondition(std::string value) { condition_ = std::move(value); }
  // The literal; "?" asks at run time, "@name" reads a file, "NULL" = none.
  const std::string& Value() const { return value_; }
  void SetValue(std::string value) { value_ = std::move(value); }
  // Closing bracket text, ")" or empty.
  const std::string& Par2() const { return par2_; }
  void SetPar2(std::string value) { par2_ = std::move(value); }

  std::string_view ClassName() const override { return "WhereType"; }
  Variant Invoke(std::string_view name, InvokeKind kind,
                 DispatchArgs& args) override;
  std::vector<std::string> MemberNames() const override;

 private:
  int16_t and_or_ = 0;
  std::string par1_;
  int16_t variable_ = 0;
  std::string condition_;
  std::string value_;
  std::string par2_;
};

class WhereTypes : public Dispatch {
 public:
  // Appends a condition with these six values and returns it. `and_or`
  // arrives as a 32-bit enumeration value and is stored as 16-bit
  // (error 6 outside that range).
  std::shared_ptr<WhereType> Add(int32_t and_or, std::string par1,
                                 int16_t variable, std::string condition,
                                 std::string value, std::string par2);
  // The item at a 1-based position (a number or numeric text); error 5
  // outside 1..Count.
  std::shared_ptr<WhereType> Item(const Variant& index) const {
    return items_.Item(index);
  }
  int32_t Count() const { return items_.Count(); }
  // Removes the item at a position; later items move up. Error 5 outside.
  void Remove(const Variant& index) { items_.Remove(index); }
  void Clear() { items_.Clear(); }
  const std::vector<std::shared_ptr<WhereType>>& Items() const {
    return items_.items();
  }

  std::string_view ClassName() const override { return "WhereTypes"; }
  Variant Invoke(std::string_view name, InvokeKind kind,
                 DispatchArgs& args) override;
  std::vector<std::string> MemberNames() const override;
  VariantArray Enumerate() override { return items_.AsVariants(); }

 private:
  ItemList<WhereType> items_;
};

}  // namespace rz

#endif  // RZ_VIEW_WHERE_TYPES_H_
