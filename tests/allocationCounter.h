// allocationCounter.h - counts the heap allocations of a piece of a test.
#pragma once

#include <cstddef>

/// Counts from its construction. Calls of operator new in all threads and libraries count.
class AllocationCounter {
 public:
  AllocationCounter();
  std::size_t count() const;

 private:
  std::size_t m_Start;
};
