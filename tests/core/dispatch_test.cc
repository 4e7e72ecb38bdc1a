// Copyright 2026 The Veltmark authors.

#include "core/dispatch.h"

#include <gtest/gtest.h>

#include "support/error_number.h"

namespace rz {
namespace {

// A small collection with an indexed property, a read-only property, a
// method with optional arguments and a by-reference parameter.
class Bag : public Dispatch {
 public:
  std::vector<std::string> items{"a", "b", "c"};
  std::string label = "bag";

  std::string_view ClassName() const override { return "Bag"; }
  Variant Invoke(std::string_view name, InvokeKind kind,
                 DispatchArgs& args) override {
    return Table().Invoke(*this, name, kind, args);
  }
  std::vector<std::string> MemberNames() const override {
    return Table().Names();
  }

 private:
  static const DispatchTable<Bag>& Table() {
    static const auto* table = [] {
      auto* t = new DispatchTable<Bag>;
      t->Property(
           "Label", [](Bag& b, DispatchArgs&) -> Variant { return b.label; },
           [](Bag& b, const Variant& v, DispatchArgs&) {
             b.label = v.ToString();
           })
          .Property("Count",
                    [](Bag& b, DispatchArgs&) -> Variant {
                      return static_cast<int32_t>(b.items.size());
                    })
          .Property(
              "Entry",
              [](Bag& b, DispatchArgs& a) -> Variant {
                return b.items.at(static_cast<size_t>(a[0].ToLong() - 1));
              },
              [](Bag& b, const Variant& v, DispatchArgs& a) {
                b.items.at(static_cast<size_t>(a[0].ToLong() - 1)) =
                    v.ToString();
              },
              1)
          .Method(
              "Join",
              [](Bag& b, DispatchArgs& a) -> Variant {
                std::string separator = a.empty() ? "," : a[0].ToString();
                std::string text;
                for (const auto& item : b.items) {
                  text += (text.empty() ? "" : separator) + item;
                }
                return text;
              },
              0, 1)
          .Method(
              "Flag",
              [](Bag&, DispatchArgs& a) -> Variant {
                a[0] = true;  // by reference
                return Variant();
              },
              1, 1)
          .Property("Self",
                    [](Bag& b, DispatchArgs&) -> Variant {
                      return b.shared_from_this();
                    })
          .Method("Make",
                  [](Bag& b, DispatchArgs&) -> Variant {
                    return b.shared_from_this();
                  })
          .Default("Entry");
      return t;
    }();
    return *table;
  }
};

TEST(DispatchTest, NamesCompareWithoutCase) {
  auto bag = std::make_shared<Bag>();
  bag->Put("LABEL", "x");
  EXPECT_EQ(bag->Get("label"), Variant("x"));
  EXPECT_EQ(bag->Call("jOiN", {"-"}), Variant("a-b-c"));
}

TEST(DispatchTest, DefaultMemberAndIndexedProperties) {
  auto bag = std::make_shared<Bag>();
  EXPECT_EQ(bag->Get("", {2}), Variant("b"));
  bag->Put("Entry", "z", {3});
  EXPECT_EQ(bag->Get("Entry", {3}), Variant("z"));
  // A property without parameters read with arguments applies them to its
  // value: Self(1) is Self.Entry(1).
  EXPECT_EQ(bag->Get("Self", {1}), Variant("a"));
}

TEST(DispatchTest, ByReferenceArgumentsComeBack) {
  auto bag = std::make_shared<Bag>();
  DispatchArgs args{false};
  bag->Invoke("Flag", InvokeKind::kCall, args);
  EXPECT_EQ(args[0], Variant(true));
}

TEST(DispatchTest, ErrorsNameTheMember) {
  auto bag = std::make_shared<Bag>();
  struct Case {
    std::function<void()> action;
    int number;
  } cases[] = {
      {[&] { bag->Get("Nope"); }, 438},
      {[&] { bag->Put("Count", 4); }, 438},  // read-only
      {[&] {
         bag->Call("Join", {1, 2});
       },
       450},                              // too many arguments
      {[&] { bag->Call("Flag"); }, 450},  // too few
      {[&] { bag->Get("Entry"); }, 450},  // index missing
      {[&] { bag->Put("Label", 1, {2}); }, 450},
      {[&] { bag->Get("Label", {1}); }, 13},   // text cannot be indexed
      {[&] { bag->Call("Make", {1}); }, 450},  // a method takes only its own
  };
  for (const Case& c : cases) EXPECT_EQ(ErrorNumber(c.action), c.number);
  try {
    bag->Get("Nope");
  } catch (const Error& error) {
    EXPECT_NE(error.Description().find("'Nope'"), std::string::npos);
  }
}

TEST(DispatchTest, EnumerationIsOptional) {
  auto bag = std::make_shared<Bag>();
  EXPECT_EQ(ErrorNumber([&] { bag->Enumerate(); }), 438);
  EXPECT_EQ(bag->MemberNames().front(), "Label");
}

TEST(DispatchTest, ApplyArgumentsIndexesArrays) {
  DispatchArgs args{1};
  EXPECT_EQ(ApplyArguments(Variant(VariantArray{"x", "y"}), args),
            Variant("y"));
  DispatchArgs out_of_range{2};
  EXPECT_EQ(ErrorNumber([&] {
              ApplyArguments(Variant(VariantArray{"x", "y"}), out_of_range);
            }),
            9);
}

}  // namespace
}  // namespace rz
