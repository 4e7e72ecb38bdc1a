// Copyright 2026 The Veltmark authors.
//
// RecentFilters is the small public list an InputDialog carries for its
// host (the engine itself does not read it): RecentFilter items, each a
// Key and a FilterText, in the order they were added. An item added with
// a non-empty `sKey` is also found by that key (without regard to case);
// Item takes a 1-based position or such a key.
//
// Errors: a position outside 1..Count or an unknown key raises error 5;
// adding a second item under a key already used raises error 457 naming
// it. Dispatch: RecentFilter has Key and FilterText; RecentFilters has Add,
// Item (its default member), Count, Remove, Clear and enumeration.

#ifndef RZ_RUN_RECENT_FILTERS_H_
#define RZ_RUN_RECENT_FILTERS_H_

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "core/dispatch.h"

namespace rz {

class RecentFilter : public Dispatch {
 public:
  const std::string& Key() const { return key_; }
  void SetKey(std::string value) { key_ = std::move(value); }
  const std::string& FilterText() const { return filter_text_; }
  void SetFilterText(std::string value) { filter_text_ = std::move(value); }

  std::string_view ClassName() const override { return "RecentFilter"; }
  Variant Invoke(std::string_view name, InvokeKind kind,
                 DispatchArgs& args) override;
  std::vector<std::string> MemberNames() const override;

 private:
  std::string key_;
  std::string filter_text_;
};

class RecentFilters : public Dispatch {
 public:
  std::shared_ptr<RecentFilter> Add(std::string Key, std::string FilterText,
                                    std::string sKey = "");
  // A 1-based position (a number or numeric text) or a key.
  std::shared_ptr<RecentFilter> Item(const Variant& index) const;
  int32_t Count() const { return static_cast<int32_t>(items_.size()); }
  void Remove(const Variant& index);
  void Clear() { items_.clear(); }

  std::string_view ClassName() const override { return "RecentFilters"; }
  Variant Invoke(std::string_view name, InvokeKind kind,
                 DispatchArgs& args) override;
  std::vector<std::string> MemberNames() const override;
  VariantArray Enumerate() override;

 private:
  struct Entry {
    std::string key;  // "" when added without one
    std::shared_ptr<RecentFilter> item;
  };
  size_t IndexOf(const Variant& index) const;

  std::vector<Entry> items_;
};

}  // namespace rz

#endif  // RZ_RUN_RECENT_FILTERS_H_
