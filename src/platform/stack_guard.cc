// Copyright 2026 The Veltmark authors.

#include "platform/stack_guard.h"

#include <pthread.h>

#include <algorithm>
#include <cstddef>

namespace rz {
namespace {

constexpr size_t kMaxStackMargin = size_t{1} << 20;

// The lowest stack address code may reach on this thread (the stack grows
// down); null when the thread's stack cannot be learnt.
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

bool NativeStackLow() {
  const char* floor = StackFloor();
  const char* here = static_cast<const char*>(__builtin_frame_address(0));
  return floor != nullptr && here < floor;
}

}  // namespace rz
