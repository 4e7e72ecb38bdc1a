// Copyright 2026 The Veltmark authors.
//
// HeapHooks is the per-heap state behind the hooks built into our Duktape:
// the execution-time check, which stops a script whose time limit has
// passed, the native stack check, the call-lookup note, which tells a named
// object's proxy that the member it is asked for is about to be called
// (`obj.Member(...)`) rather than read (`obj.Member`), and the heap's
// allocation functions, which keep the heap within a memory limit. One
// HeapHooks is passed as the heap's user data when the heap is created and
// must outlive the heap; the engine owns both. Nothing here raises. Not
// thread-safe (one heap, one thread).

#ifndef RZ_JSCRIPT_HEAP_HOOKS_H_
#define RZ_JSCRIPT_HEAP_HOOKS_H_

#include <chrono>
#include <cstddef>
#include <cstdint>

namespace rz {

// The most memory one JScript heap may hold (256 MiB): room for the largest
// values a VBScript script may build (a 64 MiB text, an array of 4,194,304
// elements) and the copies made while building them. An allocation past it
// fails; Duktape then collects garbage, tries again and, failing still,
// raises its "alloc failed" error, which the engine reports as error 7
// "Out of memory".
inline constexpr size_t kMaxJScriptHeapBytes = size_t{256} << 20;

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
  // Called from long loops inside built-ins at every step; looks at the
  // clock every 65536 steps (CheckExpired) and answers false between.
  bool NativeProgress();

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

  // The heap's allocation functions (Duktape's alloc, realloc and free
  // contracts): null instead of a block that would take the heap past
  // its limit. Reallocate(null, n) allocates; Reallocate(p, 0) frees and
  // answers null.
  void* Allocate(size_t size);
  void* Reallocate(void* block, size_t size);
  void Free(void* block);
  // The bytes the heap holds now.
  size_t HeapBytes() const { return heap_bytes_; }
  // Lowers (or raises) the limit; for tests that need not fill 256 MiB.
  void SetHeapLimit(size_t bytes) { heap_limit_ = bytes; }

 private:
  bool armed_ = false;
  bool expired_ = false;
  const void* call_base_ = nullptr;
  uint32_t native_steps_ = 0;
  std::chrono::steady_clock::time_point deadline_;
  size_t heap_bytes_ = 0;
  size_t heap_limit_ = kMaxJScriptHeapBytes;
};

}  // namespace rz

#endif  // RZ_JSCRIPT_HEAP_HOOKS_H_
