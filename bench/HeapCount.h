#pragma once

// Counts what the program allocates with operator new: allocations made,
// bytes in use and the most bytes in use at once since a mark. It replaces the
// global operator new and delete, so a program includes this header in one
// source file only (each benchmark program is one file). The counts are plain
// numbers, not atomic ones, so that counting costs next to nothing: for
// programs that allocate from one thread only.

#include <malloc.h>

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <new>

class HeapCount {
 public:
  static std::size_t allocations() noexcept { return allocations_; }
  static std::size_t inUse() noexcept { return inUse_; }
  static std::size_t peak() noexcept { return peak_; }
  // Starts a new peak from the bytes in use now.
  static void peakIsInUse() noexcept { peak_ = inUse_; }

  static void* allocate(std::size_t size) {
    void* block = std::malloc(size != 0 ? size : 1);
    if (block == nullptr)
      throw std::bad_alloc();
    ++allocations_;
    inUse_ += malloc_usable_size(block);
    peak_ = std::max(peak_, inUse_);
    return block;
  }

  static void release(void* block) noexcept {
    if (block == nullptr)
      return;
    inUse_ -= malloc_usable_size(block);
    std::free(block);
  }

 private:
  static inline std::size_t allocations_ = 0;
  static inline std::size_t inUse_ = 0;
  static inline std::size_t peak_ = 0;
};

void* operator new(std::size_t size) {
  return HeapCount::allocate(size);
}
void* operator new[](std::size_t size) {
  return HeapCount::allocate(size);
}
void operator delete(void* block) noexcept {
  HeapCount::release(block);
}
void operator delete[](void* block) noexcept {
  HeapCount::release(block);
}
void operator delete(void* block, std::size_t) noexcept {
  HeapCount::release(block);
}
void operator delete[](void* block, std::size_t) noexcept {
  HeapCount::release(block);
}
