// Copyright 2026 The Veltmark authors.
//
// Small Dispatch objects for the JScript tests, shaped like what hooks
// reach: a selection object with properties, methods, a collection with a
// default member, and members that fail.

#ifndef RZ_COMPONENTS_JSCRIPT_TEST_OBJECTS_H_
#define RZ_COMPONENTS_JSCRIPT_TEST_OBJECTS_H_

#include <memory>
#include <string>
#include <vector>

#include "core/dispatch.h"
#include "core/error.h"

namespace rz {

// One condition: a Value property.
class TestCondition : public Dispatch {
 public:
  explicit TestCondition(std::string value) : value_(std::move(value)) {}
  std::string_view ClassName() const override { return "WhereType"; }
  Variant Invoke(std::string_view name, InvokeKind kind,
                 DispatchArgs& args) override {
    return Table().Invoke(*this, name, kind, args);
  }
  std::vector<std::string> MemberNames() const override {
    return Table().Names();
  }

 private:
  static const DispatchTable<TestCondition>& Table() {
    static const auto* table = [] {
      auto* t = new DispatchTable<TestCondition>();
      t->Property(
           "Value",
           [](TestCondition& c, DispatchArgs&) { return Variant(c.value_); },
           [](TestCondition& c, const Variant& v, DispatchArgs&) {
             c.value_ = v.ToString();
           })
          .Default("Value");
      return t;
    }();
    return *table;
  }
  std::string value_;
};

// A 1-based collection: Count, Item(i) (the default member), Enumerate.
class TestConditions : public Dispatch {
 public:
  std::vector<std::shared_ptr<TestCondition>> items;
  std::string_view ClassName() const override { return "WhereTypes"; }
  Variant Invoke(std::string_view name, InvokeKind kind,
                 DispatchArgs& args) override {
    return Table().Invoke(*this, name, kind, args);
  }
  std::vector<std::string> MemberNames() const override {
    return Table().Names();
  }
  VariantArray Enumerate() override {
    VariantArray all;
    for (const auto& item : items) all.emplace_back(item);
    return all;
  }

 private:
  static const DispatchTable<TestConditions>& Table() {
    static const auto* table = [] {
      auto* t = new DispatchTable<TestConditions>();
      t->Property("Count",
                  [](TestConditions& l, DispatchArgs&) {
                    return Variant(static_cast<int32_t>(l.items.size()));
                  })
          .Method(
              "Item",
              [](TestConditions& l, DispatchArgs& a) {
                const int32_t index = a[0].ToLong();
                if (index < 1 || index > static_cast<int32_t>(l.items.size())) {
                  throw Error::SubscriptOutOfRange("Item");
                }
                return Variant(std::shared_ptr<Dispatch>(l.items[index - 1]));
              },
              1, 1)
          .Default("Item");
      return t;
    }();
    return *table;
  }
};

// The selection object hooks talk to.
class TestSelect : public Dispatch {
 public:
  TestSelect() : where_(std::make_shared<TestConditions>()) {
    for (const char* value : {"first", "second", "third"}) {
      where_->items.push_back(std::make_shared<TestCondition>(value));
    }
  }
  std::string_view ClassName() const override { return "RZselect"; }
  Variant Invoke(std::string_view name, InvokeKind kind,
                 DispatchArgs& args) override {
    return Table().Invoke(*this, name, kind, args);
  }
  std::vector<std::string> MemberNames() const override {
    return Table().Names();
  }

  std::string view_name = "Daily";
  int32_t bumps = 0;
  Variant last_echo;
  std::shared_ptr<TestConditions> where_;

 private:
  static const DispatchTable<TestSelect>& Table() {
    static const auto* table = [] {
      auto* t = new DispatchTable<TestSelect>();
      t->Property(
           "CurrentViewName",
           [](TestSelect& s, DispatchArgs&) { return Variant(s.view_name); },
           [](TestSelect& s, const Variant& v, DispatchArgs&) {
             s.view_name = v.ToString();
           })
          .Property("Where",
                    [](TestSelect& s, DispatchArgs&) {
                      return Variant(std::shared_ptr<Dispatch>(s.where_));
                    })
          .Property("Bumps", [](TestSelect& s,
                                DispatchArgs&) { return Variant(s.bumps); })
          .Property(
              "Today",
              [](TestSelect&, DispatchArgs&) { return Variant::Date(45000.5); })
          .Property("Nothing",
                    [](TestSelect&, DispatchArgs&) {
                      return Variant(std::shared_ptr<Dispatch>());
                    })
          .Method("Bump", [](TestSelect& s,
                             DispatchArgs&) { return Variant(++s.bumps); })
          .Method(
              "Twice",
              [](TestSelect&, DispatchArgs& a) {
                return Variant(a[0].ToDouble() * 2);
              },
              1, 1)
          .Method(
              "Echo",
              [](TestSelect& s, DispatchArgs& a) {
                s.last_echo = a[0];
                return a[0];
              },
              1, 1)
          .Method(
              "IsWhere",
              [](TestSelect& s, DispatchArgs& a) {
                return Variant(a[0].IsObject() && a[0].ToObject() == s.where_);
              },
              1, 1)
          .Method(
              "LoadView",
              [](TestSelect&, DispatchArgs& a) -> Variant {
                throw Error::ViewNotFound(a[0].ToString());
              },
              1, 1);
      return t;
    }();
    return *table;
  }
};

}  // namespace rz

#endif  // RZ_COMPONENTS_JSCRIPT_TEST_OBJECTS_H_
