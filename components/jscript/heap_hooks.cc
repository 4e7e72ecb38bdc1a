// Copyright 2026 The Veltmark authors.

#include "jscript/heap_hooks.h"

#include <pthread.h>

#include <algorithm>
#include <cstddef>

namespace rz {
namespace {

constexpr size_t kMaxStackMargin = size_t{1} << 20;

// The lowest stack address the interpreter may reach on this thread (the
// stack grows down); null when the thread's stack cannot be learnt.
const char* ComputeStackFloor() {
  pthread_attr_t attributes;
  if (pthread_getattr_np(pthread_self(), &attributes) != 0) return nullptr;
  void* low = nullptr;
  size_t size = 0;
  const bool known = pthread_attr_getstack(&attributes, &low, &size) == 0;
  pthread_attr_destroy(&attributes);
  if (!known || low == nullptr) return nullptr;
  return static_cast<const char*>(low) + std::min(kMaxStackMargin, size / 4);
}

const char* StackFloor() {
  thread_local const char* const floor = ComputeStackFloor();
  return floor;
}

}  // namespace

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

bool HeapHooks::NativeStackLow() const {
  const char* floor = StackFloor();
  const char* here = static_cast<const char*>(__builtin_frame_address(0));
  return floor != nullptr && here < floor;
}

bool HeapHooks::TakeCallLookup(const void* receiver) {
  const bool for_call = call_base_ != nullptr && call_base_ == receiver;
  call_base_ = nullptr;
  return for_call;
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

extern "C" void dukx_call_lookup(void* udata, void* base) {
  if (udata == nullptr) return;
  static_cast<rz::HeapHooks*>(udata)->SetCallLookup(base);
}
