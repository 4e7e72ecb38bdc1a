// Copyright 2026 The Veltmark authors.
//
// Expressions, names, calls and assignments of the interpreter.

#include <algorithm>

#include "core/text.h"
#include "vbscript/vb_errors.h"
#include "vbscript/vb_interpreter.h"
#include "vbscript/vb_interpreter_internal.h"
#include "vbscript/vb_work_clock.h"
#include "vbscript/vb_operators.h"

namespace rz::vb {
namespace {

// How many default members deep a value is looked for.
constexpr int kMaxDefaultChain = 8;

// Built-ins that look at the value itself, objects included.
bool KeepsObjects(std::string_view key) {
  static constexpr std::string_view kKeys[] = {
      "ISOBJECT",  "TYPENAME", "VARTYPE", "ISNULL", "ISEMPTY", "ISARRAY",
      "ISNUMERIC", "ISDATE",   "UBOUND",  "LBOUND", "ARRAY"};
  return std::find(std::begin(kKeys), std::end(kKeys), key) != std::end(kKeys);
}

}  // namespace

Variant Interpreter::Eval(const Expr& expr) {
  switch (expr.kind) {
    case ExprKind::kLiteral:
      return expr.value;
    case ExprKind::kNothing:
      return NothingValue();
    case ExprKind::kName:
      return EvalName(expr);
    case ExprKind::kMember:
      return InvokeMember(expr, {}, InvokeKind::kGet);
    case ExprKind::kCall:
      return EvalCall(expr, false);
    case ExprKind::kNegate:
      return ApplyNegate(EvalValue(*expr.left));
    case ExprKind::kNot:
      return ApplyNot(EvalValue(*expr.left));
    case ExprKind::kBinary:
      return EvalBinary(expr);
  }
  return Variant();
}

// An object's default value; other values as they are.
Variant Interpreter::ValueOf(Variant value) {
  for (int i = 0; i < kMaxDefaultChain && value.IsObject(); ++i) {
    if (IsNothing(value)) throw Error::ObjectNotSet("Nothing");
    DispatchArgs none;
    value = value.ToObject()->Invoke("", InvokeKind::kGet, none);
  }
  if (value.IsObject()) throw Error::TypeMismatch("object");
  return value;
}

bool Interpreter::Truth(const Expr& expr) {
  const Variant value = EvalValue(expr);
  return !value.IsNull() && value.ToBool();
}

Variant Interpreter::EvalBinary(const Expr& expr) {
  if (expr.op == BinaryOp::kIs) {
    return Variant(SameObject(Eval(*expr.left), Eval(*expr.right)));
  }
  const Variant left = EvalValue(*expr.left);
  return ApplyBinary(expr.op, left, EvalValue(*expr.right));
}

bool Interpreter::SameObject(const Variant& a, const Variant& b) const {
  if (!a.IsObject() || !b.IsObject()) throw ObjectRequired("Is");
  if (IsNothing(a) || IsNothing(b)) return IsNothing(a) && IsNothing(b);
  return a.ToObject() == b.ToObject();
}

Variant Interpreter::EvalName(const Expr& expr) {
  if (Slot* slot = FindSlot(expr.key)) return slot->value;
  return CallByName(expr, {}, false);
}

Variant Interpreter::EvalCall(const Expr& expr, bool statement) {
  const Expr& callee = *expr.left;
  if (callee.kind == ExprKind::kName) {
    return CallByName(callee, expr.args, statement);
  }
  if (callee.kind == ExprKind::kMember) {
    return InvokeMember(callee, expr.args,
                        statement ? InvokeKind::kCall : InvokeKind::kGet);
  }
  const Variant base = Eval(callee);
  DispatchArgs args = EvalArgs(expr.args, nullptr);
  return Index(base, args);
}

Variant Interpreter::CallByName(const Expr& name,
                                const std::vector<ExprPtr>& args,
                                bool statement) {
  const std::string& key = name.key;
  const Procedure* own = Current().procedure;
  const bool recursion = own && own->is_function && own->key == key;
  if (!recursion) {
    if (Slot* slot = FindSlot(key)) {
      const Variant base = slot->value;
      DispatchArgs values = EvalArgs(args, nullptr);
      return Index(base, values);
    }
  }
  if (auto found = procedures_.find(key); found != procedures_.end()) {
    const std::shared_ptr<Procedure> procedure = found->second;
    return CallProcedure(*procedure, BindArguments(args));
  }
  if (const NamedObject* object = FindObject(key)) {
    DispatchArgs values = EvalArgs(args, nullptr);
    return Index(Variant(object->object), values);
  }
  if (key == "ERR") {
    DispatchArgs values = EvalArgs(args, nullptr);
    return Index(Variant(std::shared_ptr<Dispatch>(err_)), values);
  }
  if (const Builtin* builtin = FindBuiltin(key)) {
    return CallBuiltin(*builtin, args);
  }
  if (args.empty()) {
    if (const Variant* constant = FindConstant(key)) return *constant;
  }
  bool found = false;
  std::optional<Variant> member = FindGlobalMember(name.spelling, args, &found);
  if (found) return *member;
  if (option_explicit_) throw VariableUndefined(name.spelling);
  if (!args.empty() || statement) throw UnknownProcedure(name.spelling);
  return Variant();
}

Variant Interpreter::CallBuiltin(const Builtin& builtin,
                                 const std::vector<ExprPtr>& args) {
  const int count = static_cast<int>(args.size());
  if (count < builtin.min_args || count > builtin.max_args) {
    throw Error::WrongArgumentCount(builtin.key);
  }
  DispatchArgs values = EvalArgs(args, nullptr);
  if (!KeepsObjects(builtin.key)) {
    for (Variant& value : values) value = ValueOf(std::move(value));
  }
  // Built-ins read their text arguments whole and build their result.
  size_t work = 0;
  for (const Variant& value : values) work += value.TextSize();
  Variant result = builtin.fn(*context_, values);
  ChargeWork(work + result.TextSize());
  return result;
}

std::optional<Variant> Interpreter::FindGlobalMember(
    const std::string& spelling, const std::vector<ExprPtr>& args,
    bool* found) {
  for (const NamedObject& object : objects_) {
    if (!object.add_members) continue;
    for (const std::string& member : object.object->MemberNames()) {
      if (!SameMemberName(member, spelling)) continue;
      *found = true;
      std::vector<SlotPtr> refs;
      DispatchArgs values = EvalArgs(args, &refs);
      Variant result = object.object->Invoke(member, InvokeKind::kGet, values);
      return result;
    }
  }
  return std::nullopt;
}

Variant Interpreter::InvokeMember(const Expr& member,
                                  const std::vector<ExprPtr>& args,
                                  InvokeKind kind) {
  const std::shared_ptr<Dispatch> object = ObjectOf(member.left.get());
  std::vector<SlotPtr> refs;
  DispatchArgs values = EvalArgs(args, &refs);
  Variant result = object->Invoke(member.spelling, kind, values);
  for (size_t i = 0; i < refs.size() && i < values.size(); ++i) {
    if (refs[i] && !refs[i]->is_const) refs[i]->value = values[i];
  }
  return result;
}

// The object an expression names; null `expr` is the innermost With object.
std::shared_ptr<Dispatch> Interpreter::ObjectOf(const Expr* expr) {
  if (expr == nullptr) {
    if (Current().with_objects.empty()) throw ObjectRequired("With");
    return Current().with_objects.back();
  }
  const Variant value = Eval(*expr);
  if (!value.IsObject() || IsNothing(value)) {
    throw ObjectRequired(expr->spelling.empty() ? value.ToString()
                                                : expr->spelling);
  }
  return value.ToObject();
}

Variant Interpreter::Index(const Variant& base, DispatchArgs& args) {
  if (args.empty()) return base;
  if (base.IsObject()) {
    if (IsNothing(base)) throw ObjectRequired("Nothing");
    return base.ToObject()->Invoke("", InvokeKind::kGet, args);
  }
  if (!base.IsArray()) throw Error::TypeMismatch(base.TypeName());
  const Variant* cell = &base;
  for (const Variant& index : args) {
    if (!cell->IsArray()) throw Error::SubscriptOutOfRange("dimensions");
    const VariantArray& items = cell->ToArray();
    const int32_t position = ValueOf(index).ToLong();
    if (position < 0 || static_cast<size_t>(position) >= items.size()) {
      throw Error::SubscriptOutOfRange(std::to_string(position));
    }
    cell = &items[static_cast<size_t>(position)];
  }
  return *cell;
}

DispatchArgs Interpreter::EvalArgs(const std::vector<ExprPtr>& args,
                                   std::vector<SlotPtr>* refs) {
  DispatchArgs values;
  values.reserve(args.size());
  for (const ExprPtr& arg : args) {
    SlotPtr ref;
    if (refs && arg->kind == ExprKind::kName && !arg->parenthesized) {
      ref = FindSlotShared(arg->key);
    }
    values.push_back(ref ? ref->value : Eval(*arg));
    if (refs) refs->push_back(std::move(ref));
  }
  return values;
}

// Slots for a procedure's arguments: a variable passed as it is shares its
// slot (ByRef); anything else gets a fresh one.
std::vector<Interpreter::SlotPtr> Interpreter::BindArguments(
    const std::vector<ExprPtr>& args) {
  std::vector<SlotPtr> slots;
  slots.reserve(args.size());
  for (const ExprPtr& arg : args) {
    SlotPtr slot;
    if (arg->kind == ExprKind::kName && !arg->parenthesized) {
      slot = FindSlotShared(arg->key);
      if (slot && slot->is_const)
        slot = std::make_shared<Slot>(Slot{slot->value});
      if (!slot && IsUnknownName(arg->key)) slot = DeclareLocal(arg->key);
    }
    if (!slot) slot = std::make_shared<Slot>(Slot{Eval(*arg)});
    slots.push_back(std::move(slot));
  }
  return slots;
}

// True for a name that is nothing yet (a variable that a ByRef argument
// may declare implicitly, unless Option Explicit is on).
bool Interpreter::IsUnknownName(const std::string& key) const {
  return !option_explicit_ && procedures_.count(key) == 0 &&
         FindObject(key) == nullptr && key != "ERR" &&
         FindBuiltin(key) == nullptr && FindConstant(key) == nullptr;
}

// ---- assignment ----

void Interpreter::Assign(const Expr& target, const Expr& value_expr,
                         bool is_set) {
  Variant value = Eval(value_expr);
  ChargeWork(value.TextSize());  // the text is copied into its variable
  if (is_set) {
    if (!value.IsObject()) throw ObjectRequired(target.spelling);
  } else {
    value = ValueOf(std::move(value));
  }
  switch (target.kind) {
    case ExprKind::kName:
      AssignName(target.key, target.spelling, std::move(value));
      return;
    case ExprKind::kMember: {
      const std::shared_ptr<Dispatch> object = ObjectOf(target.left.get());
      DispatchArgs args{std::move(value)};
      object->Invoke(target.spelling,
                     is_set ? InvokeKind::kPutRef : InvokeKind::kPut, args);
      return;
    }
    case ExprKind::kCall:
      AssignIndexed(target, std::move(value), is_set);
      return;
    default:
      throw IllegalAssignment(target.spelling);
  }
}

void Interpreter::AssignIndexed(const Expr& target, Variant value,
                                bool is_set) {
  const Expr& callee = *target.left;
  const InvokeKind kind = is_set ? InvokeKind::kPutRef : InvokeKind::kPut;
  DispatchArgs args = EvalArgs(target.args, nullptr);
  if (callee.kind == ExprKind::kMember) {
    const std::shared_ptr<Dispatch> object = ObjectOf(callee.left.get());
    args.push_back(std::move(value));
    object->Invoke(callee.spelling, kind, args);
    return;
  }
  if (callee.kind != ExprKind::kName) throw IllegalAssignment("()");
  if (Slot* slot = FindSlot(callee.key)) {
    if (slot->value.IsArray()) {
      if (slot->is_const) throw IllegalAssignment(callee.spelling);
      StoreElement(*slot, args, std::move(value));
      return;
    }
    if (slot->value.IsObject() && !IsNothing(slot->value)) {
      args.push_back(std::move(value));
      slot->value.ToObject()->Invoke("", kind, args);
      return;
    }
    throw Error::TypeMismatch(callee.spelling);
  }
  if (const NamedObject* object = FindObject(callee.key)) {
    args.push_back(std::move(value));
    object->object->Invoke("", kind, args);
    return;
  }
  if (option_explicit_) throw VariableUndefined(callee.spelling);
  throw Error::TypeMismatch(callee.spelling);
}

void Interpreter::StoreElement(Slot& slot, const DispatchArgs& indices,
                               Variant value) {
  Variant* cell = &slot.value;
  for (const Variant& index : indices) {
    if (!cell->IsArray()) throw Error::SubscriptOutOfRange("dimensions");
    VariantArray& items = cell->MutableArray();
    const int32_t position = ValueOf(index).ToLong();
    if (position < 0 || static_cast<size_t>(position) >= items.size()) {
      throw Error::SubscriptOutOfRange(std::to_string(position));
    }
    cell = &items[static_cast<size_t>(position)];
  }
  if (cell->IsArray() && !value.IsArray()) {
    throw Error::SubscriptOutOfRange("dimensions");
  }
  *cell = std::move(value);
}

void Interpreter::AssignName(const std::string& key, std::string_view spelling,
                             Variant value) {
  if (Slot* slot = FindSlot(key)) {
    if (slot->is_const) throw IllegalAssignment(spelling);
    if (slot->fixed_array) throw ArrayFixed(spelling);
    slot->value = std::move(value);
    return;
  }
  if (procedures_.count(key) > 0 || FindObject(key) != nullptr ||
      key == "ERR") {
    throw IllegalAssignment(spelling);
  }
  if (option_explicit_) throw VariableUndefined(spelling);
  DeclareLocal(key)->value = std::move(value);
}

Interpreter::Slot* Interpreter::FindSlot(const std::string& key) {
  auto& locals = Current().locals;
  if (auto found = locals.find(key); found != locals.end()) {
    return found->second.get();
  }
  auto& globals = frames_[0]->locals;
  if (auto found = globals.find(key); found != globals.end()) {
    return found->second.get();
  }
  return nullptr;
}

Interpreter::SlotPtr Interpreter::FindSlotShared(const std::string& key) {
  auto& locals = Current().locals;
  if (auto found = locals.find(key); found != locals.end()) {
    return found->second;
  }
  auto& globals = frames_[0]->locals;
  if (auto found = globals.find(key); found != globals.end()) {
    return found->second;
  }
  return nullptr;
}

Interpreter::SlotPtr Interpreter::DeclareLocal(const std::string& key) {
  SlotPtr& slot = Current().locals[key];
  if (!slot) slot = std::make_shared<Slot>();
  return slot;
}

const Interpreter::NamedObject* Interpreter::FindObject(
    std::string_view key) const {
  for (const NamedObject& object : objects_) {
    if (object.key == key) return &object;
  }
  return nullptr;
}

}  // namespace rz::vb
