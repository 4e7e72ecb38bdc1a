// Copyright 2026 The Veltmark authors.
//
// Dispatch is late-bound access by name to an object: read or write a
// property (optionally with index arguments), call a method, use the
// default member, enumerate. Every public class of the engine and every
// component object a script or the command line reaches implements it.
// Member names compare without regard to case; the empty name is the
// default member, so `Where(3)` is `Where.Item(3)`.
//
// Implementations usually build one static DispatchTable<T> (below) and
// forward Invoke to it. Errors: 438 for an unknown member or a write to a
// read-only property, 450 for a wrong argument count, and whatever the
// member itself raises.

#ifndef RZ_CORE_DISPATCH_H_
#define RZ_CORE_DISPATCH_H_

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "core/error.h"
#include "core/variant.h"

namespace rz {

// Arguments of a late-bound call. Passed by reference so a member can
// write back through a by-reference parameter.
using DispatchArgs = std::vector<Variant>;

enum class InvokeKind {
  kGet,     // read a property (or call a method for its value)
  kPut,     // write a property: the value is the last argument
  kPutRef,  // assign an object by reference (Set); same rules as kPut
  kCall,    // call a method (or read a property)
};

class Dispatch : public std::enable_shared_from_this<Dispatch> {
 public:
  virtual ~Dispatch() = default;

  // The class name scripts see ("RZselect", "WhereTypes", ...).
  virtual std::string_view ClassName() const = 0;

  // Performs one late-bound access. `name` "" is the default member.
  virtual Variant Invoke(std::string_view name, InvokeKind kind,
                         DispatchArgs& args) = 0;

  // The member names in declaration order (for scripts that list them).
  virtual std::vector<std::string> MemberNames() const = 0;

  // The items of a collection, in order; other objects raise error 438.
  virtual VariantArray Enumerate();

  // Conveniences over Invoke.
  Variant Get(std::string_view name, DispatchArgs args = {});
  void Put(std::string_view name, Variant value, DispatchArgs args = {});
  void PutRef(std::string_view name, Variant value, DispatchArgs args = {});
  Variant Call(std::string_view name, DispatchArgs args = {});
};

// True when the two ASCII names are equal without regard to case.
bool SameMemberName(std::string_view a, std::string_view b);

// Applies the default member of `value` to `args` when `value` is an
// object (`x(1)` where x holds a collection), or indexes an array. Used
// when a property without parameters is read with arguments.
Variant ApplyArguments(const Variant& value, DispatchArgs& args);

// A member table for one class T. Getters, setters and methods are plain
// functions (capture-less lambdas) taking the object and the arguments.
template <typename T>
class DispatchTable {
 public:
  using Getter = Variant (*)(T& self, DispatchArgs& index_args);
  using Setter = void (*)(T& self, const Variant& value,
                          DispatchArgs& index_args);
  using MethodFn = Variant (*)(T& self, DispatchArgs& args);

  // A property; `setter` null makes it read-only. `index_args` is the
  // number of index arguments the property itself takes (0 for most).
  DispatchTable& Property(std::string name, Getter getter,
                          Setter setter = nullptr, int index_args = 0) {
    members_.push_back(
        {std::move(name), getter, setter, nullptr, index_args, index_args});
    return *this;
  }

  // A write-only property (no getter).
  DispatchTable& WriteOnly(std::string name, Setter setter) {
    members_.push_back({std::move(name), nullptr, setter, nullptr, 0, 0});
    return *this;
  }

  // A method taking min_args..max_args arguments.
  DispatchTable& Method(std::string name, MethodFn method, int min_args = 0,
                        int max_args = 0) {
    members_.push_back(
        {std::move(name), nullptr, nullptr, method, min_args, max_args});
    return *this;
  }

  // Names the default member (used for the empty name).
  DispatchTable& Default(std::string name) {
    default_ = std::move(name);
    return *this;
  }

  Variant Invoke(T& self, std::string_view name, InvokeKind kind,
                 DispatchArgs& args) const {
    if (name.empty()) {
      if (default_.empty()) throw Error::MemberNotSupported("(default)");
      name = default_;
    }
    const Member* member = Find(name);
    if (member == nullptr) throw Error::MemberNotSupported(name);
    if (kind == InvokeKind::kPut || kind == InvokeKind::kPutRef) {
      return Write(self, *member, args);
    }
    if (member->method != nullptr) return CallMethod(self, *member, args);
    return Read(self, *member, args);
  }

  std::vector<std::string> Names() const {
    std::vector<std::string> names;
    for (const Member& member : members_) names.push_back(member.name);
    return names;
  }

 private:
  struct Member {
    std::string name;
    Getter getter;
    Setter setter;
    MethodFn method;
    int min_args;
    int max_args;
  };

  const Member* Find(std::string_view name) const {
    for (const Member& member : members_) {
      if (SameMemberName(member.name, name)) return &member;
    }
    return nullptr;
  }

  static Variant CallMethod(T& self, const Member& member, DispatchArgs& args) {
    const int count = static_cast<int>(args.size());
    if (count < member.min_args || count > member.max_args) {
      throw Error::WrongArgumentCount(member.name);
    }
    return member.method(self, args);
  }

  static Variant Read(T& self, const Member& member, DispatchArgs& args) {
    if (member.getter == nullptr) throw Error::MemberNotSupported(member.name);
    const size_t own = static_cast<size_t>(member.max_args);
    if (args.size() <= own) {
      if (args.size() < own) throw Error::WrongArgumentCount(member.name);
      return member.getter(self, args);
    }
    // More arguments than the property takes: the rest go to its value.
    DispatchArgs own_args(args.begin(), args.begin() + own);
    DispatchArgs rest(args.begin() + own, args.end());
    return ApplyArguments(member.getter(self, own_args), rest);
  }

  static Variant Write(T& self, const Member& member, DispatchArgs& args) {
    if (member.setter == nullptr) throw Error::MemberNotSupported(member.name);
    if (args.size() != static_cast<size_t>(member.max_args) + 1) {
      throw Error::WrongArgumentCount(member.name);
    }
    const Variant value = args.back();
    DispatchArgs index_args(args.begin(), args.end() - 1);
    member.setter(self, value, index_args);
    return Variant();
  }

  std::vector<Member> members_;
  std::string default_;
};

}  // namespace rz

#endif  // RZ_CORE_DISPATCH_H_
