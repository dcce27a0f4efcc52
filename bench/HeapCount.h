#pragma once

// Counts what the program allocates with operator new: allocations made,
// bytes in use and the most bytes in use at once since a mark. It replaces the
// global operator new and delete, so a program includes this header in one
// source file only (each benchmark program is one file).

#include <malloc.h>

#include <atomic>
#include <cstddef>
#include <cstdlib>
#include <new>

class HeapCount {
 public:
  static std::size_t allocations() noexcept { return allocations_.load(std::memory_order_relaxed); }
  static std::size_t inUse() noexcept { return inUse_.load(std::memory_order_relaxed); }
  static std::size_t peak() noexcept { return peak_.load(std::memory_order_relaxed); }
  // Starts a new peak from the bytes in use now.
  static void peakIsInUse() noexcept { peak_.store(inUse(), std::memory_order_relaxed); }

  static void* allocate(std::size_t size) {
    void* block = std::malloc(size != 0 ? size : 1);
    if (block == nullptr)
      throw std::bad_alloc();
    allocations_.fetch_add(1, std::memory_order_relaxed);
    const std::size_t taken = malloc_usable_size(block);
    const std::size_t now = inUse_.fetch_add(taken, std::memory_order_relaxed) + taken;
    std::size_t highest = peak();
    while (now > highest && !peak_.compare_exchange_weak(highest, now, std::memory_order_relaxed)) {
    }
    return block;
  }

  static void release(void* block) noexcept {
    if (block == nullptr)
      return;
    inUse_.fetch_sub(malloc_usable_size(block), std::memory_order_relaxed);
    std::free(block);
  }

 private:
  static inline std::atomic<std::size_t> allocations_{0};
  static inline std::atomic<std::size_t> inUse_{0};
  static inline std::atomic<std::size_t> peak_{0};
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
