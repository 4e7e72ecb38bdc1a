// Copyright 2026 The Veltmark authors.
//
// InFreshThread runs a test body on a new thread and waits for it. The
// trace's on/off memory is per thread, so tests that look at traces run
// their body this way to start from a fresh trace state.

#ifndef RZ_SUPPORT_FRESH_THREAD_H_
#define RZ_SUPPORT_FRESH_THREAD_H_

#include <functional>
#include <thread>

namespace rz {

inline void InFreshThread(const std::function<void()>& body) {
  std::thread thread(body);
  thread.join();
}

}  // namespace rz

#endif  // RZ_SUPPORT_FRESH_THREAD_H_
