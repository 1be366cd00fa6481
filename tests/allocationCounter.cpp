#include "tests/allocationCounter.h"

#include <malloc.h>

#include <atomic>
#include <cstdlib>
#include <new>

namespace {

std::atomic<std::size_t> theAllocations{0};
std::atomic<long long> theBytes{0};

/// What a block takes from the heap: what is usable, and the word before it.
long long bytesOf(void* memory) { return static_cast<long long>(malloc_usable_size(memory) + sizeof(std::size_t)); }

/// Null when there is no memory.
void* allocateOrNull(std::size_t size, std::size_t alignment) {
  ++theAllocations;
  void* const memory = alignment <= alignof(std::max_align_t)
                           ? std::malloc(size)
                           : std::aligned_alloc(alignment, (size + alignment - 1) / alignment * alignment);
  if (memory != nullptr) theBytes += bytesOf(memory);
  return memory;
}

void* allocate(std::size_t size, std::size_t alignment) {
  void* const memory = allocateOrNull(size, alignment);
  if (memory == nullptr) throw std::bad_alloc();
  return memory;
}

void release(void* memory) {
  if (memory == nullptr) return;
  theBytes -= bytesOf(memory);
  std::free(memory);
}

}  // namespace

AllocationCounter::AllocationCounter() : m_Start(theAllocations), m_StartBytes(theBytes) {}

std::size_t AllocationCounter::count() const { return theAllocations - m_Start; }

long long AllocationCounter::bytes() const { return theBytes - m_StartBytes; }

void* operator new(std::size_t size) { return allocate(size, 1); }
void* operator new[](std::size_t size) { return allocate(size, 1); }
// Sanitizers bring these themselves, and would miss a block that is released here.
void* operator new(std::size_t size, std::nothrow_t const&) noexcept { return allocateOrNull(size, 1); }
void* operator new[](std::size_t size, std::nothrow_t const&) noexcept { return allocateOrNull(size, 1); }
void* operator new(std::size_t size, std::align_val_t alignment) {
  return allocate(size, static_cast<std::size_t>(alignment));
}
void* operator new[](std::size_t size, std::align_val_t alignment) {
  return allocate(size, static_cast<std::size_t>(alignment));
}
void operator delete(void* memory) noexcept { release(memory); }
void operator delete[](void* memory) noexcept { release(memory); }
void operator delete(void* memory, std::size_t) noexcept { release(memory); }
void operator delete[](void* memory, std::size_t) noexcept { release(memory); }
void operator delete(void* memory, std::align_val_t) noexcept { release(memory); }
void operator delete[](void* memory, std::align_val_t) noexcept { release(memory); }
void operator delete(void* memory, std::size_t, std::align_val_t) noexcept { release(memory); }
void operator delete[](void* memory, std::size_t, std::align_val_t) noexcept { release(memory); }
