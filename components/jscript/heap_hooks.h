// Copyright 2026 The Veltmark authors.
//
// HeapHooks is the per-heap state behind the hooks built into our Duktape:
// the execution-time check, which stops a script whose time limit has
// passed, the native stack check, and the call-lookup note, which tells a named
// object's proxy that the member it is asked for is about to be called
// (`obj.Member(...)`) rather than read (`obj.Member`). One HeapHooks is passed
// as the heap's user data when the heap is created and must outlive the heap;
// the engine owns both. Nothing here raises. Not thread-safe (one heap, one
// thread).

#ifndef RZ_JSCRIPT_HEAP_HOOKS_H_
#define RZ_JSCRIPT_HEAP_HOOKS_H_

#include <chrono>
#include <cstdint>

namespace rz {

class HeapHooks {
 public:
  // Starts a guarded stretch of script execution: with `milliseconds` < 0
  // it never expires, else it expires that long from now.
  void Arm(int32_t milliseconds);
  // No limit any more (between runs); Expired() still tells how the last
  // stretch ended.
  void Disarm();
  // Called by the interpreter now and then; true once the limit has passed
  // (and from then on, so a script cannot catch its way out).
  bool CheckExpired();
  // True when the current stretch ran out of time.
  bool Expired() const { return expired_; }

  // The native stack guard: true when the calling thread has less stack
  // left than a safety margin (a quarter of its stack, at most 1 MiB).
  // The margin leaves room to build and report the error.
  bool NativeStackLow() const;

  // The call-lookup note: while the interpreter looks up a property of the
  // object `base` in order to call it, `base` (the interpreter's object
  // pointer; null = no lookup under way). TakeCallLookup is true when the
  // lookup under way is on `receiver`, and clears the note, so lookups made
  // while answering it (or by a getter of another object) are plain reads.
  void SetCallLookup(const void* base) { call_base_ = base; }
  bool TakeCallLookup(const void* receiver);

 private:
  bool armed_ = false;
  bool expired_ = false;
  const void* call_base_ = nullptr;
  std::chrono::steady_clock::time_point deadline_;
};

}  // namespace rz

#endif  // RZ_JSCRIPT_HEAP_HOOKS_H_
