// Replaces the allocation of the whole test program.

#include "tests/app/map/memory_elsewhere.h"

#include <atomic>
#include <cstdlib>
#include <limits>
#include <new>

namespace {

constexpr std::size_t kNothingFails = std::numeric_limits<std::size_t>::max();
/// Read by every allocation on any thread.
std::atomic<std::size_t> failsFrom = kNothingFails;
std::atomic<std::size_t> countsFrom = kNothingFails;
std::atomic<int> timesAsked = 0;
std::atomic<bool> isHeld = false;
thread_local bool isExempt = false;

void countAndHold(std::size_t bytes) {
  if (bytes < countsFrom.load() || isExempt) return;
  ++timesAsked;
  isHeld.wait(true);
}

}  // namespace

void* operator new(std::size_t bytes) {
  countAndHold(bytes);
  if (bytes >= failsFrom.load() && !isExempt) throw std::bad_alloc();
  void* const memory = std::malloc(bytes == 0 ? 1 : bytes);
  if (!memory) throw std::bad_alloc();
  return memory;
}
// What sorts asks for by this one comes back through the one below.
void* operator new(std::size_t bytes, const std::nothrow_t& /*tag*/) noexcept {
  if (bytes >= failsFrom.load() && !isExempt) return nullptr;
  return std::malloc(bytes == 0 ? 1 : bytes);
}
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t /*bytes*/) noexcept { std::free(memory); }

namespace test {

NoMemoryElsewhere::NoMemoryElsewhere(std::size_t bytes) {
  isExempt = true;
  failsFrom = bytes;
}

NoMemoryElsewhere::~NoMemoryElsewhere() {
  failsFrom = kNothingFails;
  isExempt = false;
}

NoMemory::NoMemory(std::size_t bytes) { failsFrom = bytes; }

NoMemory::~NoMemory() { failsFrom = kNothingFails; }

MemoryHeldElsewhere::MemoryHeldElsewhere(std::size_t bytes) {
  isExempt = true;
  timesAsked = 0;
  isHeld = true;
  countsFrom = bytes;
}

MemoryHeldElsewhere::~MemoryHeldElsewhere() {
  release();
  countsFrom = kNothingFails;
  isExempt = false;
}

int MemoryHeldElsewhere::asked() const { return timesAsked; }

void MemoryHeldElsewhere::release() {
  isHeld = false;
  isHeld.notify_all();
}

}  // namespace test
