// Copyright 2026 The Veltmark authors.
//
// Test helpers for the VBScript engine: a small collection object reached
// through Dispatch, and runners that compile a snippet and call one of its
// functions, reporting the value or the error record.

#ifndef RZ_TESTS_COMPONENTS_VBSCRIPT_VB_TEST_SUPPORT_H_
#define RZ_TESTS_COMPONENTS_VBSCRIPT_VB_TEST_SUPPORT_H_

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "core/date_time.h"
#include "core/dispatch.h"
#include "vbscript/vbscript_engine.h"

namespace rz::testing {

// A collection: Item(i) (default member, 0-based), Count, Add v, Name
// (read-write), Twice x (doubles its ByRef argument), Fail (raises error
// 1234 "Boom" from "Bag"), Child (another bag, made once), enumerable.
class Bag : public Dispatch {
 public:
  std::string_view ClassName() const override { return "Bag"; }
  Variant Invoke(std::string_view name, InvokeKind kind,
                 DispatchArgs& args) override {
    return Table().Invoke(*this, name, kind, args);
  }
  std::vector<std::string> MemberNames() const override {
    return Table().Names();
  }
  VariantArray Enumerate() override { return items_; }

  VariantArray items_;
  std::string name_ = "bag";
  std::shared_ptr<Bag> child_;

 private:
  static const DispatchTable<Bag>& Table() {
    static const DispatchTable<Bag> table = [] {
      DispatchTable<Bag> t;
      t.Property(
          "Item",
          [](Bag& self, DispatchArgs& args) {
            const int32_t index = args[0].ToLong();
            if (index < 0 || static_cast<size_t>(index) >= self.items_.size()) {
              throw Error::SubscriptOutOfRange(std::to_string(index));
            }
            return self.items_[static_cast<size_t>(index)];
          },
          [](Bag& self, const Variant& value, DispatchArgs& args) {
            self.items_.at(static_cast<size_t>(args[0].ToLong())) = value;
          },
          1);
      t.Property("Count", [](Bag& self, DispatchArgs&) {
        return Variant(static_cast<int32_t>(self.items_.size()));
      });
      t.Property(
          "Name", [](Bag& self, DispatchArgs&) { return Variant(self.name_); },
          [](Bag& self, const Variant& value, DispatchArgs&) {
            self.name_ = value.ToString();
          });
      t.Property("Child", [](Bag& self, DispatchArgs&) {
        if (!self.child_) self.child_ = std::make_shared<Bag>();
        return Variant(std::shared_ptr<Dispatch>(self.child_));
      });
      t.Method(
          "Add",
          [](Bag& self, DispatchArgs& args) {
            self.items_.push_back(args[0]);
            return Variant();
          },
          1, 1);
      t.Method(
          "Twice",
          [](Bag&, DispatchArgs& args) {
            args[0] = Variant(args[0].ToDouble() * 2);
            return Variant();
          },
          1, 1);
      t.Method("Fail", [](Bag&, DispatchArgs&) -> Variant {
        throw Error(1234, "Boom", "Bag");
      });
      t.Default("Item");
      return t;
    }();
    return table;
  }
};

// 2024-03-15 10:30:00, the pinned "now" of the tests.
inline double PinnedNow() {
  return DateSerial(2024, 3, 15) + TimeSerial(10, 30, 0);
}

struct Outcome {
  std::optional<Variant> value;  // nullopt: failed
  ScriptError error;
};

// Adds `code` (with a bag named "Bag" holding 10, "x", 30) and runs
// `function`. A failed AddCode gives its error.
inline Outcome RunSnippet(const std::string& code,
                          const std::string& function = "Main",
                          Toolkit* toolkit = nullptr) {
  VBScriptEngine engine(toolkit);
  engine.SetClock(PinnedNow);
  auto bag = std::make_shared<Bag>();
  bag->items_ = {Variant(int16_t{10}), Variant("x"), Variant(int16_t{30})};
  engine.AddObject("Bag", bag, false);
  engine.SetTimeout(5000);
  if (!engine.AddCode(code)) return {std::nullopt, engine.LastError()};
  DispatchArgs args;
  Outcome outcome{engine.Run(function, args), engine.LastError()};
  return outcome;
}

// Runs "Function Main(): Main = <expression>: End Function".
inline Outcome EvalExpression(const std::string& expression) {
  return RunSnippet("Function Main()\nMain = " + expression +
                    "\nEnd Function\n");
}

}  // namespace rz::testing

#endif  // RZ_TESTS_COMPONENTS_VBSCRIPT_VB_TEST_SUPPORT_H_
