// Copyright 2026 The Veltmark authors.
//
// NativeStackLow tells a script engine that the calling thread is about to
// run out of stack, whatever its size and however the engine got there
// (deep recursion inside one run, or runs nested through named objects that
// call back into scripts, each of which starts its own count). The floor is
// the lowest address of the thread's stack plus a safety margin of a
// quarter of the stack, at most 1 MiB, which leaves room to build and
// report the error. Answers false when the thread's stack cannot be
// learnt. Never raises; thread-safe (each thread has its own floor).

#ifndef RZ_PLATFORM_STACK_GUARD_H_
#define RZ_PLATFORM_STACK_GUARD_H_

namespace rz {

bool NativeStackLow();

}  // namespace rz

#endif  // RZ_PLATFORM_STACK_GUARD_H_
