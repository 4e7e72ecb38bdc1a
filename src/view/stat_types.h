// Copyright 2026 The Veltmark authors.
//
// StatType is one entry of a view's statistics catalogue (the repository's
// reference number and description, and whether the report lists it) and
// StatTypes the view's ordered, 1-based list of them. Plain data; Dispatch
// objects under their own names, `Item` the list's default member.

#ifndef RZ_VIEW_STAT_TYPES_H_
#define RZ_VIEW_STAT_TYPES_H_

#include <cstdint>
#include <memory>
#include <string>

#include "core/dispatch.h"
#include "view/item_list.h"

namespace rz {

class StatType : public Dispatch {
 public:
  int16_t Reference() const { return reference_; }
  void SetReference(int16_t value) { reference_ = value; }
  const std::string& Description() const { return description_; }
  void SetDescription(std::string value) { description_ = std::move(value); }
  bool Selected() const { return selected_; }
  void SetSelected(bool value) { selected_ = value; }

  std::string_view ClassName() const override { return "StatType"; }
  Variant Invoke(std::string_view name, InvokeKind kind,
                 DispatchArgs& args) override;
  std::vector<std::string> MemberNames() const override;

 private:
  int16_t reference_ = 0;
  std::string description_;
  bool selected_ = false;
};

class StatTypes : public Dispatch {
 public:
  // Appends an entry and returns it.
  std::shared_ptr<StatType> Add(int16_t reference, std::string description,
                                bool selected);
  std::shared_ptr<StatType> Item(const Variant& index) const {
    return items_.Item(index);
  }
  int32_t Count() const { return items_.Count(); }
  void Remove(const Variant& index) { items_.Remove(index); }
  void Clear() { items_.Clear(); }
  const std::vector<std::shared_ptr<StatType>>& Items() const {
    return items_.items();
  }

  std::string_view ClassName() const override { return "StatTypes"; }
  Variant Invoke(std::string_view name, InvokeKind kind,
                 DispatchArgs& args) override;
  std::vector<std::string> MemberNames() const override;
  VariantArray Enumerate() override { return items_.AsVariants(); }

 private:
  ItemList<StatType> items_;
};

}  // namespace rz

#endif  // RZ_VIEW_STAT_TYPES_H_
