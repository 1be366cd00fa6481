// allocationCounter.h - counts the heap allocations and the heap memory of a piece of a test.
#pragma once

#include <cstddef>

/// Counts from its construction. Calls of operator new in all threads and libraries count.
class AllocationCounter {
 public:
  AllocationCounter();
  std::size_t count() const;
  /// What the heap holds more than at the start, the allocator's overhead included.
  long long bytes() const;

 private:
  std::size_t m_Start;
  long long m_StartBytes;
};
