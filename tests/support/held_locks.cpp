#include "tests/support/held_locks.h"

#include <dlfcn.h>
#include <pthread.h>

#include <atomic>

#include "tests/support/eventually.h"

namespace {
std::atomic<bool> counting = false;
std::atomic<int> mostHeld = 0;
}  // namespace

#ifndef HEAPGAUGE_SANITIZED
namespace {
thread_local int held = 0;

using Operation = int (*)(pthread_mutex_t*);

Operation original(const char* name) { return reinterpret_cast<Operation>(dlsym(RTLD_NEXT, name)); }
}  // namespace

// Found before the C library's functions of these names.
extern "C" int pthread_mutex_lock(pthread_mutex_t* mutex) noexcept {
  static const Operation lock = original("pthread_mutex_lock");
  const int result = lock(mutex);
  ++held;
  if (counting && held > mostHeld) mostHeld = held;
  return result;
}

extern "C" int pthread_mutex_unlock(pthread_mutex_t* mutex) noexcept {
  static const Operation unlock = original("pthread_mutex_unlock");
  --held;
  return unlock(mutex);
}
#endif

namespace {
enum class WakeUp { NotHeld, ToBeHeld, Held };
std::atomic<WakeUp> wakeUp = WakeUp::NotHeld;
}  // namespace

extern "C" int pthread_cond_broadcast(pthread_cond_t* condition) noexcept {
  static const auto broadcast = reinterpret_cast<decltype(&pthread_cond_broadcast)>(
      dlsym(RTLD_NEXT, "pthread_cond_broadcast"));
  WakeUp expected = WakeUp::ToBeHeld;
  if (wakeUp.compare_exchange_strong(expected, WakeUp::Held)) wakeUp.wait(WakeUp::Held);
  return broadcast(condition);
}

namespace test {

HeldWakeUps::HeldWakeUps() { wakeUp = WakeUp::ToBeHeld; }
HeldWakeUps::~HeldWakeUps() { release(); }

bool HeldWakeUps::waitUntilReached() const {
  return eventually([] { return wakeUp == WakeUp::Held; });
}

void HeldWakeUps::release() {
  wakeUp = WakeUp::NotHeld;
  wakeUp.notify_all();
}

HeldLocks::HeldLocks() {
  mostHeld = 0;
  counting = true;
}

HeldLocks::~HeldLocks() { counting = false; }

int HeldLocks::most() const { return mostHeld; }

}  // namespace test
