// Copyright 2026 The Veltmark authors.

#include "jscript/heap_hooks.h"

#include <malloc.h>

#include <algorithm>
#include <cstddef>
#include <cstdlib>

#include "platform/stack_guard.h"

namespace rz {

void HeapHooks::Arm(int32_t milliseconds) {
  expired_ = false;
  call_base_ = nullptr;
  armed_ = milliseconds >= 0;
  if (armed_) {
    deadline_ = std::chrono::steady_clock::now() +
                std::chrono::milliseconds(milliseconds);
  }
}

void HeapHooks::Disarm() {
  armed_ = false;
  call_base_ = nullptr;
}

bool HeapHooks::CheckExpired() {
  if (!armed_) return false;
  if (!expired_ && std::chrono::steady_clock::now() >= deadline_) {
    expired_ = true;
  }
  return expired_;
}

bool HeapHooks::NativeProgress() {
  constexpr uint32_t kStepsPerClockCheck = 65536;
  if (++native_steps_ % kStepsPerClockCheck != 0) return false;
  return CheckExpired();
}

bool HeapHooks::NativeStackLow() const { return rz::NativeStackLow(); }

bool HeapHooks::TakeCallLookup(const void* receiver) {
  const bool for_call = call_base_ != nullptr && call_base_ == receiver;
  call_base_ = nullptr;
  return for_call;
}

// The sizes counted are the allocator's usable sizes, so that freeing a
// block takes off exactly what allocating it added.
void* HeapHooks::Allocate(size_t size) {
  if (size > heap_limit_ - std::min(heap_limit_, heap_bytes_)) return nullptr;
  void* block = std::malloc(size);
  if (block != nullptr) heap_bytes_ += malloc_usable_size(block);
  return block;
}

void* HeapHooks::Reallocate(void* block, size_t size) {
  if (block == nullptr) return Allocate(size);
  if (size == 0) {
    Free(block);
    return nullptr;
  }
  const size_t old_size = malloc_usable_size(block);
  const size_t others = heap_bytes_ - old_size;
  if (size > heap_limit_ - std::min(heap_limit_, others)) return nullptr;
  void* moved = std::realloc(block, size);
  if (moved == nullptr) return nullptr;  // the old block stays, counted
  heap_bytes_ = others + malloc_usable_size(moved);
  return moved;
}

void HeapHooks::Free(void* block) {
  if (block == nullptr) return;
  heap_bytes_ -= malloc_usable_size(block);
  std::free(block);
}

}  // namespace rz

// The hooks our Duktape build calls with the heap's user data (a
// HeapHooks, or null for a heap made without one).
extern "C" int dukx_exec_timeout_check(void* udata) {
  if (udata == nullptr) return 0;
  return static_cast<rz::HeapHooks*>(udata)->CheckExpired() ? 1 : 0;
}

extern "C" int dukx_native_stack_check(void* udata) {
  if (udata == nullptr) return 0;
  return static_cast<rz::HeapHooks*>(udata)->NativeStackLow() ? 1 : 0;
}

extern "C" int dukx_native_progress(void* udata) {
  if (udata == nullptr) return 0;
  return static_cast<rz::HeapHooks*>(udata)->NativeProgress() ? 1 : 0;
}

extern "C" void dukx_call_lookup(void* udata, void* base) {
  if (udata == nullptr) return;
  static_cast<rz::HeapHooks*>(udata)->SetCallLookup(base);
}
