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

}  // namespace test
