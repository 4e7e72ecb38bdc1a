// Copyright 2026 The Veltmark authors.

#include "run/recent_filters.h"

#include "core/error.h"
#include "core/text.h"
#include "view/item_list.h"

namespace rz {
namespace {

const DispatchTable<RecentFilter>& ItemTable() {
  static const auto* table = [] {
    auto* t = new DispatchTable<RecentFilter>;
    t->Property(
         "Key",
         [](RecentFilter& f, DispatchArgs&) -> Variant { return f.Key(); },
         [](RecentFilter& f, const Variant& v, DispatchArgs&) {
           f.SetKey(v.ToString());
         })
        .Property(
            "FilterText",
            [](RecentFilter& f, DispatchArgs&) -> Variant {
              return f.FilterText();
            },
            [](RecentFilter& f, const Variant& v, DispatchArgs&) {
              f.SetFilterText(v.ToString());
            });
    return t;
  }();
  return *table;
}

const DispatchTable<RecentFilters>& ListTable() {
  static const auto* table = [] {
    auto* t = new DispatchTable<RecentFilters>;
    t->Method(
         "Add",
         [](RecentFilters& l, DispatchArgs& a) -> Variant {
           return std::shared_ptr<Dispatch>(
               l.Add(a[0].ToString(), a[1].ToString(),
                     a.size() > 2 && !a[2].IsBlank() ? a[2].ToString() : ""));
         },
         2, 3)
        .Method(
            "Item",
            [](RecentFilters& l, DispatchArgs& a) -> Variant {
              return std::shared_ptr<Dispatch>(l.Item(a[0]));
            },
            1, 1)
        .Property("Count",
                  [](RecentFilters& l, DispatchArgs&) -> Variant {
                    return l.Count();
                  })
        .Method(
            "Remove",
            [](RecentFilters& l, DispatchArgs& a) -> Variant {
              l.Remove(a[0]);
              return Variant();
            },
            1, 1)
        .Method("Clear",
                [](RecentFilters& l, DispatchArgs&) -> Variant {
                  l.Clear();
                  return Variant();
                })
        .Default("Item");
    return t;
  }();
  return *table;
}

}  // namespace

Variant RecentFilter::Invoke(std::string_view name, InvokeKind kind,
                             DispatchArgs& args) {
  return ItemTable().Invoke(*this, name, kind, args);
}

std::vector<std::string> RecentFilter::MemberNames() const {
  return ItemTable().Names();
}

std::shared_ptr<RecentFilter> RecentFilters::Add(std::string Key,
                                                 std::string FilterText,
                                                 std::string sKey) {
  if (!sKey.empty()) {
    for (const Entry& entry : items_) {
      if (EqualsIgnoreCase(entry.key, sKey)) {
        throw Error::DuplicateName(sKey, "a recent filter",
                                   "the one being added");
      }
    }
  }
  auto item = std::make_shared<RecentFilter>();
  item->SetKey(std::move(Key));
  item->SetFilterText(std::move(FilterText));
  items_.push_back({std::move(sKey), item});
  return item;
}

size_t RecentFilters::IndexOf(const Variant& index) const {
  if (index.IsString() && !IsNumericText(index.ToString())) {
    const std::string key = index.ToString();
    for (size_t i = 0; i < items_.size(); ++i) {
      if (!items_[i].key.empty() && EqualsIgnoreCase(items_[i].key, key)) {
        return i;
      }
    }
  }
  return ListIndex(index, items_.size());
}

std::shared_ptr<RecentFilter> RecentFilters::Item(const Variant& index) const {
  return items_[IndexOf(index)].item;
}

void RecentFilters::Remove(const Variant& index) {
  items_.erase(items_.begin() + static_cast<std::ptrdiff_t>(IndexOf(index)));
}

Variant RecentFilters::Invoke(std::string_view name, InvokeKind kind,
                              DispatchArgs& args) {
  return ListTable().Invoke(*this, name, kind, args);
}

std::vector<std::string> RecentFilters::MemberNames() const {
  return ListTable().Names();
}

VariantArray RecentFilters::Enumerate() {
  VariantArray items;
  for (const Entry& entry : items_) {
    items.emplace_back(std::shared_ptr<Dispatch>(entry.item));
  }
  return items;
}

}  // namespace rz
