#pragma once

#include <cstddef>

namespace test {

/// For the scope there is no memory for anything of `bytes` or more on threads other than the one
/// that made it: `new` throws std::bad_alloc there.
class NoMemoryElsewhere {
 public:
  explicit NoMemoryElsewhere(std::size_t bytes);
  ~NoMemoryElsewhere();
  NoMemoryElsewhere(const NoMemoryElsewhere&) = delete;
  NoMemoryElsewhere& operator=(const NoMemoryElsewhere&) = delete;
};

/// The same on all threads.
class NoMemory {
 public:
  explicit NoMemory(std::size_t bytes);
  ~NoMemory();
  NoMemory(const NoMemory&) = delete;
  NoMemory& operator=(const NoMemory&) = delete;
};

/// Holds every other thread that asks for `bytes` or more, until `release`, and counts how often
/// they do.
class MemoryHeldElsewhere {
 public:
  explicit MemoryHeldElsewhere(std::size_t bytes);
  ~MemoryHeldElsewhere();
  MemoryHeldElsewhere(const MemoryHeldElsewhere&) = delete;
  MemoryHeldElsewhere& operator=(const MemoryHeldElsewhere&) = delete;

  int asked() const;
  void release();
};

}  // namespace test
