// Copyright 2026 The Veltmark authors.

#include "jscript/dispatch_proxy.h"

#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "core/error.h"
#include "jscript/heap_hooks.h"
#include "jscript/js_value.h"
#include "jscript/script_fault.h"

namespace rz {
namespace {

// Hidden keys: the shared handler in the stash, and on each native
// function the object it serves and the member it stands for.
constexpr const char* kHandlerKey = DUK_HIDDEN_SYMBOL("rzProxyHandler");
constexpr const char* kHolderKey = DUK_HIDDEN_SYMBOL("rzObject");
constexpr const char* kMemberKey = DUK_HIDDEN_SYMBOL("rzMember");

constexpr int32_t kWrongArgumentCount = 450;

// What a native function keeps alive; freed by its finalizer.
struct Holder {
  std::shared_ptr<Dispatch> object;
};

HeapHooks* HooksOf(duk_context* ctx) {
  duk_memory_functions functions;
  duk_get_memory_functions(ctx, &functions);
  return static_cast<HeapHooks*>(functions.udata);
}

std::string StringArg(duk_context* ctx, duk_idx_t index) {
  duk_size_t length = 0;
  const char* data = duk_get_lstring(ctx, index, &length);
  return data == nullptr ? std::string() : std::string(data, length);
}

Holder* HolderOf(duk_context* ctx, duk_idx_t index) {
  if (!duk_is_object(ctx, index)) return nullptr;
  duk_get_prop_string(ctx, index, kHolderKey);
  auto* holder = static_cast<Holder*>(duk_get_pointer(ctx, -1));
  duk_pop(ctx);
  return holder;
}

duk_ret_t FinalizeHolder(duk_context* ctx) {
  delete HolderOf(ctx, 0);
  duk_push_pointer(ctx, nullptr);
  duk_put_prop_string(ctx, 0, kHolderKey);
  return 0;
}

// Pushes a native function that keeps `object` (and the member `name`,
// when not empty) for its own use.
void PushHolderFunction(duk_context* ctx, duk_c_function function,
                        duk_idx_t nargs, std::shared_ptr<Dispatch> object,
                        std::string_view name) {
  duk_push_c_function(ctx, function, nargs);
  duk_push_pointer(ctx, new Holder{std::move(object)});
  duk_put_prop_string(ctx, -2, kHolderKey);
  duk_push_c_function(ctx, FinalizeHolder, 1);
  duk_set_finalizer(ctx, -2);
  if (!name.empty()) {
    duk_push_lstring(ctx, name.data(), name.size());
    duk_put_prop_string(ctx, -2, kMemberKey);
  }
}

// The running native function's object and member name.
std::pair<Holder*, std::string> CurrentBinding(duk_context* ctx) {
  duk_push_current_function(ctx);
  Holder* holder = HolderOf(ctx, -1);
  duk_get_prop_string(ctx, -1, kMemberKey);
  std::string name = StringArg(ctx, -1);
  duk_pop_2(ctx);
  if (holder == nullptr) throw Error::ObjectNotSet("object");
  return {holder, std::move(name)};
}

DispatchArgs ArgsFrom(duk_context* ctx, duk_idx_t first, duk_idx_t count) {
  DispatchArgs args;
  args.reserve(static_cast<size_t>(count));
  for (duk_idx_t i = 0; i < count; ++i) {
    args.push_back(ToVariant(ctx, first + i));
  }
  return args;
}

// The arguments in the array at `index` (the apply trap's list).
DispatchArgs ArgsFromArray(duk_context* ctx, duk_idx_t index) {
  DispatchArgs args;
  if (!duk_is_object(ctx, index)) return args;
  const duk_size_t length = duk_get_length(ctx, index);
  for (duk_size_t i = 0; i < length; ++i) {
    duk_get_prop_index(ctx, index, static_cast<duk_uarridx_t>(i));
    args.push_back(ToVariant(ctx, -1));
    duk_pop(ctx);
  }
  return args;
}

// Calls the member the running function stands for with its arguments.
duk_ret_t CallBoundMember(duk_context* ctx) {
  return GuardNative(ctx, [ctx] {
    auto [holder, name] = CurrentBinding(ctx);
    DispatchArgs args = ArgsFrom(ctx, 0, duk_get_top(ctx));
    PushVariant(ctx, holder->object->Invoke(name, InvokeKind::kCall, args));
    return duk_ret_t{1};
  });
}

void PushBoundMember(duk_context* ctx, std::shared_ptr<Dispatch> object,
                     std::string_view name) {
  PushHolderFunction(ctx, CallBoundMember, DUK_VARARGS, std::move(object),
                     name);
}

// Reads a member; one that needs arguments reads as a function.
void PushMemberRead(duk_context* ctx, const std::shared_ptr<Dispatch>& object,
                    std::string_view name) {
  Variant value;
  try {
    DispatchArgs none;
    value = object->Invoke(name, InvokeKind::kGet, none);
  } catch (const Error& error) {
    if (error.Number() != kWrongArgumentCount) throw;
    PushBoundMember(ctx, object, name);
    return;
  }
  PushVariant(ctx, value);
}

bool HasMember(Dispatch& object, std::string_view name) {
  for (const std::string& member : object.MemberNames()) {
    if (SameMemberName(member, name)) return true;
  }
  return false;
}

// Stands in for toString/valueOf on objects without such a member: the
// default member's value, or "[object ClassName]".
duk_ret_t ProxyToPrimitive(duk_context* ctx) {
  return GuardNative(ctx, [ctx] {
    duk_push_this(ctx);
    std::shared_ptr<Dispatch> object = DispatchOfProxy(ctx, -1);
    if (object == nullptr) {
      duk_push_string(ctx, "[object]");
      return duk_ret_t{1};
    }
    try {
      DispatchArgs none;
      const Variant value = object->Invoke("", InvokeKind::kGet, none);
      if (!value.IsObject() && !value.IsArray()) {
        PushVariant(ctx, value);
        return duk_ret_t{1};
      }
    } catch (const Error&) {
      // No default member: fall back to the class name.
    }
    const std::string text =
        "[object " + std::string(object->ClassName()) + "]";
    duk_push_lstring(ctx, text.data(), text.size());
    return duk_ret_t{1};
  });
}

bool IsConversionName(std::string_view name) {
  return name == "toString" || name == "valueOf" || name == "toJSON";
}

// Trap get(target, key, receiver).
duk_ret_t TrapGet(duk_context* ctx) {
  return GuardNative(ctx, [ctx] {
    const bool for_call = HooksOf(ctx)->TakeCallLookup(duk_get_heapptr(ctx, 2));
    Holder* holder = HolderOf(ctx, 0);
    if (holder == nullptr || duk_is_symbol(ctx, 1) || !duk_is_string(ctx, 1)) {
      duk_push_undefined(ctx);
      return duk_ret_t{1};
    }
    const std::string name = StringArg(ctx, 1);
    if (IsConversionName(name) && !HasMember(*holder->object, name)) {
      if (name == "toJSON") {
        duk_push_undefined(ctx);
      } else {
        duk_push_c_function(ctx, ProxyToPrimitive, 0);
      }
    } else if (for_call) {
      PushBoundMember(ctx, holder->object, name);
    } else {
      PushMemberRead(ctx, holder->object, name);
    }
    return duk_ret_t{1};
  });
}

// Trap set(target, key, value, receiver).
duk_ret_t TrapSet(duk_context* ctx) {
  return GuardNative(ctx, [ctx] {
    Holder* holder = HolderOf(ctx, 0);
    if (holder != nullptr && duk_is_string(ctx, 1) && !duk_is_symbol(ctx, 1)) {
      DispatchArgs args{ToVariant(ctx, 2)};
      const InvokeKind kind =
          args.back().IsObject() ? InvokeKind::kPutRef : InvokeKind::kPut;
      holder->object->Invoke(StringArg(ctx, 1), kind, args);
    }
    duk_push_true(ctx);
    return duk_ret_t{1};
  });
}

// Trap has(target, key).
duk_ret_t TrapHas(duk_context* ctx) {
  return GuardNative(ctx, [ctx] {
    Holder* holder = HolderOf(ctx, 0);
    const bool has = holder != nullptr && duk_is_string(ctx, 1) &&
                     !duk_is_symbol(ctx, 1) &&
                     HasMember(*holder->object, StringArg(ctx, 1));
    duk_push_boolean(ctx, has ? 1 : 0);
    return duk_ret_t{1};
  });
}

// The interpreter keeps only those keys of an ownKeys answer that the
// target has as enumerable own properties: give the target a placeholder
// for `name` unless it has its own property of that name already.
void EnsurePlaceholder(duk_context* ctx, duk_idx_t target,
                       const std::string& name) {
  duk_push_lstring(ctx, name.data(), name.size());
  duk_get_prop_desc(ctx, target, 0);
  const bool has_own = duk_is_object(ctx, -1) != 0;
  duk_pop(ctx);
  if (has_own) return;
  duk_push_lstring(ctx, name.data(), name.size());
  duk_push_undefined(ctx);
  duk_def_prop(ctx, target,
               DUK_DEFPROP_HAVE_VALUE | DUK_DEFPROP_SET_ENUMERABLE |
                   DUK_DEFPROP_SET_CONFIGURABLE);
}

// Trap ownKeys(target): the member names.
duk_ret_t TrapOwnKeys(duk_context* ctx) {
  return GuardNative(ctx, [ctx] {
    Holder* holder = HolderOf(ctx, 0);
    const duk_idx_t array = duk_push_array(ctx);
    if (holder != nullptr) {
      const std::vector<std::string> names = holder->object->MemberNames();
      for (size_t i = 0; i < names.size(); ++i) {
        EnsurePlaceholder(ctx, 0, names[i]);
        duk_push_lstring(ctx, names[i].data(), names[i].size());
        duk_put_prop_index(ctx, array, static_cast<duk_uarridx_t>(i));
      }
    }
    return duk_ret_t{1};
  });
}

// Trap apply(target, this, args): the default member.
duk_ret_t TrapApply(duk_context* ctx) {
  return GuardNative(ctx, [ctx] {
    Holder* holder = HolderOf(ctx, 0);
    if (holder == nullptr) throw Error::ObjectNotSet("object");
    DispatchArgs args = ArgsFromArray(ctx, 2);
    PushVariant(ctx, holder->object->Invoke("", InvokeKind::kCall, args));
    return duk_ret_t{1};
  });
}

// The proxy's target: never called directly (the apply trap answers).
duk_ret_t ProxyTarget(duk_context* /*ctx*/) { return 0; }

// Accessors of a member made global (add_members).
duk_ret_t GlobalMemberGet(duk_context* ctx) {
  return GuardNative(ctx, [ctx] {
    auto [holder, name] = CurrentBinding(ctx);
    PushMemberRead(ctx, holder->object, name);
    return duk_ret_t{1};
  });
}

duk_ret_t GlobalMemberSet(duk_context* ctx) {
  return GuardNative(ctx, [ctx] {
    auto [holder, name] = CurrentBinding(ctx);
    DispatchArgs args{ToVariant(ctx, 0)};
    holder->object->Invoke(name, InvokeKind::kPut, args);
    return duk_ret_t{0};
  });
}

void PutTrap(duk_context* ctx, duk_idx_t handler, const char* name,
             duk_c_function trap, duk_idx_t nargs) {
  duk_push_c_function(ctx, trap, nargs);
  duk_put_prop_string(ctx, handler, name);
}

}  // namespace

void InstallDispatchProxies(duk_context* ctx) {
  duk_push_global_stash(ctx);
  const duk_idx_t handler = duk_push_object(ctx);
  PutTrap(ctx, handler, "get", TrapGet, 3);
  PutTrap(ctx, handler, "set", TrapSet, 4);
  PutTrap(ctx, handler, "has", TrapHas, 2);
  PutTrap(ctx, handler, "ownKeys", TrapOwnKeys, 1);
  PutTrap(ctx, handler, "apply", TrapApply, 3);
  duk_put_prop_string(ctx, -2, kHandlerKey);
  duk_pop(ctx);
}

void PushDispatchProxy(duk_context* ctx, std::shared_ptr<Dispatch> object) {
  PushHolderFunction(ctx, ProxyTarget, DUK_VARARGS, std::move(object), "");
  duk_push_global_stash(ctx);
  duk_get_prop_string(ctx, -1, kHandlerKey);
  duk_remove(ctx, -2);
  duk_push_proxy(ctx, 0);
}

std::shared_ptr<Dispatch> DispatchOfProxy(duk_context* ctx, duk_idx_t index) {
  // Hidden keys bypass the traps and reach the target directly.
  if (!duk_is_function(ctx, index)) return nullptr;
  duk_get_prop_string(ctx, index, kMemberKey);
  const bool is_member_function = !duk_is_undefined(ctx, -1);
  duk_pop(ctx);
  if (is_member_function) return nullptr;
  Holder* holder = HolderOf(ctx, index);
  return holder == nullptr ? nullptr : holder->object;
}

void DefineMemberGlobals(duk_context* ctx,
                         const std::shared_ptr<Dispatch>& object) {
  duk_push_global_object(ctx);
  for (const std::string& name : object->MemberNames()) {
    duk_push_lstring(ctx, name.data(), name.size());
    PushHolderFunction(ctx, GlobalMemberGet, 0, object, name);
    PushHolderFunction(ctx, GlobalMemberSet, 1, object, name);
    duk_def_prop(ctx, -4,
                 DUK_DEFPROP_HAVE_GETTER | DUK_DEFPROP_HAVE_SETTER |
                     DUK_DEFPROP_SET_CONFIGURABLE |
                     DUK_DEFPROP_CLEAR_ENUMERABLE);
  }
  duk_pop(ctx);
}

duk_ret_t EnumerateItems(duk_context* ctx) {
  return GuardNative(ctx, [ctx] {
    if (duk_is_undefined(ctx, 0)) {
      duk_push_array(ctx);
    } else if (std::shared_ptr<Dispatch> object = DispatchOfProxy(ctx, 0)) {
      PushVariant(ctx, Variant(object->Enumerate()));
    } else if (duk_is_array(ctx, 0)) {
      PushVariant(ctx, ToVariant(ctx, 0));
    } else {
      throw Error::TypeMismatch("Enumerator");
    }
    return duk_ret_t{1};
  });
}

}  // namespace rz
