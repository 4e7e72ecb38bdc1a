// Copyright 2026 The Veltmark authors.
//
// ItemList<T> is the storage behind the engine's public 1-based lists
// (WhereTypes, ResultFieldTypes, StatTypes): shared items in order, reached
// by position only. A position argument is a number, or a text holding a
// number, converted to a 16-bit position; anything else, and a position
// outside 1..Count, raises error 5 (invalid argument) and changes nothing.

#ifndef RZ_VIEW_ITEM_LIST_H_
#define RZ_VIEW_ITEM_LIST_H_

#include <cstdint>
#include <memory>
#include <vector>

#include "core/dispatch.h"
#include "core/variant.h"

namespace rz {

// The 0-based index of the 1-based position `index` in a list of `count`
// items; raises error 5 when `index` is not a position in 1..count.
size_t ListIndex(const Variant& index, size_t count);

template <typename T>
class ItemList {
 public:
  int32_t Count() const { return static_cast<int32_t>(items_.size()); }
  const std::shared_ptr<T>& Item(const Variant& index) const {
    return items_[ListIndex(index, items_.size())];
  }
  void Remove(const Variant& index) {
    items_.erase(items_.begin() +
                 static_cast<std::ptrdiff_t>(ListIndex(index, items_.size())));
  }
  void Clear() { items_.clear(); }
  void Append(std::shared_ptr<T> item) { items_.push_back(std::move(item)); }

  std::vector<std::shared_ptr<T>>& items() { return items_; }
  const std::vector<std::shared_ptr<T>>& items() const { return items_; }

  VariantArray AsVariants() const {
    return VariantArray(items_.begin(), items_.end());
  }

 private:
  std::vector<std::shared_ptr<T>> items_;
};

// Adds the members every list class shares, in their interface order:
// `Clear` first (AddListClear), then, after the list's own Add (and Swap),
// `Item` (the default member), `Count`, `Remove` and `NewEnum`.
template <typename List>
void AddListClear(DispatchTable<List>& table) {
  table.Method("Clear", [](List& list, DispatchArgs&) {
    list.Clear();
    return Variant();
  });
}

template <typename List>
void AddListAccess(DispatchTable<List>& table) {
  table
      .Method(
          "Item",
          [](List& list, DispatchArgs& args) -> Variant {
            return std::shared_ptr<Dispatch>(list.Item(args[0]));
          },
          1, 1)
      .Property(
          "Count",
          [](List& list, DispatchArgs&) -> Variant { return list.Count(); })
      .Method(
          "Remove",
          [](List& list, DispatchArgs& args) {
            list.Remove(args[0]);
            return Variant();
          },
          1, 1)
      .Method(
          "NewEnum",
          [](List& list, DispatchArgs&) -> Variant { return list.Enumerate(); })
      .Default("Item");
}

}  // namespace rz

#endif  // RZ_VIEW_ITEM_LIST_H_
