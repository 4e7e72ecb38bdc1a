// Copyright 2026 The Veltmark authors.
//
// AllocationLimit makes memory run out on purpose: while one is alive, any
// single request to the global operator new larger than its limit throws
// std::bad_alloc, as a real allocation does when memory is exhausted.
// Smaller requests, and every request outside its lifetime, are served by
// malloc as usual. Only the thread that made the limit is affected.
//
// This header DEFINES the replaceable global allocation functions: include
// it in exactly one source file of a test executable.

#ifndef RZ_SUPPORT_ALLOCATION_LIMIT_H_
#define RZ_SUPPORT_ALLOCATION_LIMIT_H_

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <new>

namespace rz {

class AllocationLimit {
 public:
  explicit AllocationLimit(size_t largest_request)
      : previous_(largest_request_) {
    largest_request_ = largest_request;
  }
  ~AllocationLimit() { largest_request_ = previous_; }
  AllocationLimit(const AllocationLimit&) = delete;
  AllocationLimit& operator=(const AllocationLimit&) = delete;

  // The largest request the calling thread may make now.
  static size_t LargestRequest() { return largest_request_; }

 private:
  static inline thread_local size_t largest_request_ = SIZE_MAX;
  size_t previous_;
};

}  // namespace rz

// The replacements pair malloc with free, which the compiler cannot see
// through operator new and delete.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wmismatched-new-delete"

void* operator new(std::size_t size) {
  if (size > rz::AllocationLimit::LargestRequest()) throw std::bad_alloc();
  if (void* block = std::malloc(size == 0 ? 1 : size)) return block;
  throw std::bad_alloc();
}

void* operator new[](std::size_t size) { return ::operator new(size); }
void operator delete(void* block) noexcept { std::free(block); }
void operator delete[](void* block) noexcept { std::free(block); }
void operator delete(void* block, std::size_t) noexcept { std::free(block); }
void operator delete[](void* block, std::size_t) noexcept { std::free(block); }

#pragma GCC diagnostic pop

#endif  // RZ_SUPPORT_ALLOCATION_LIMIT_H_
