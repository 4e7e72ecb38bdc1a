// Copyright 2026 The Veltmark authors.
//
// Named objects as JScript sees them: a proxy onto a Dispatch object.
//
//   obj.Member            reads the member (Dispatch kGet, no arguments); a
//                         member that needs arguments reads as a function
//   obj.Member(a, b)      calls it (kCall with the arguments), whether it
//                         is a method or a property with index arguments:
//                         `RZselect.Where(1).Value`
//   obj.Member = v        writes it (kPut, or kPutRef when v is an object)
//   obj(a)                the default member (`Where(1)` is `Where.Item(1)`)
//   "Member" in obj       true when the object lists the member
//   for (k in obj)        the member names
// Member names compare without regard to case, as Dispatch does. Objects
// the members return are proxies again; a proxy passed back to a member
// is its object again. Each access makes a new proxy, so two reads of the
// same object are not `===`. A method call is told from a read by the
// call-lookup note (see heap_hooks.h), so `obj.MoveFirst()` runs the method
// once and `obj.Count` only reads.
//
// The proxy holds a reference to its object until the script drops the
// proxy and the heap collects it (at the latest when the heap goes).
// Errors of the object reach the script as JScript errors carrying the
// object's number (script_fault.h).

#ifndef RZ_JSCRIPT_DISPATCH_PROXY_H_
#define RZ_JSCRIPT_DISPATCH_PROXY_H_

#include <memory>

#include "core/dispatch.h"
#include "duktape.h"

namespace rz {

// Prepares a new heap: the handler all proxies share. Call once, first.
void InstallDispatchProxies(duk_context* ctx);

// Pushes a proxy onto `object` (not null).
void PushDispatchProxy(duk_context* ctx, std::shared_ptr<Dispatch> object);

// The object behind the value at `index` when it is one of our proxies,
// else null.
std::shared_ptr<Dispatch> DispatchOfProxy(duk_context* ctx, duk_idx_t index);

// Defines every member of `object` as a global accessor (the add-members
// form of a named object). A member needing arguments reads as a function;
// one without is read (and, for a method, run) when its name is used.
void DefineMemberGlobals(duk_context* ctx,
                         const std::shared_ptr<Dispatch>& object);

// A native function taking one value and returning its items as an array:
// a proxy's Dispatch::Enumerate, an array's copy, [] for undefined; error
// 13 for anything else. Used by the Enumerator object.
duk_ret_t EnumerateItems(duk_context* ctx);

}  // namespace rz

#endif  // RZ_JSCRIPT_DISPATCH_PROXY_H_
