#include "tests/support/scarcity.h"

#include <dlfcn.h>
#include <pthread.h>
#include <sys/mman.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>

namespace {

constexpr int kPlenty = -1;
std::atomic<int> threadsLeft = kPlenty;
std::atomic<int> threadsStarted = 0;
std::atomic<bool> firstFails = false;
std::atomic<int> pagesLeft = kPlenty;

bool take(std::atomic<int>& left) {
  int now = left;
  while (now > 0 && !left.compare_exchange_weak(now, now - 1)) {
  }
  return now != 0;
}

}  // namespace

// Found before the C library's functions of these names, and before a sanitizer's, which they call.
extern "C" int pthread_create(pthread_t* thread, const pthread_attr_t* attributes,
                              void* (*start)(void*), void* argument) noexcept {
  static const auto create =
      reinterpret_cast<decltype(&pthread_create)>(dlsym(RTLD_NEXT, "pthread_create"));
  if (firstFails.exchange(false)) return EAGAIN;
  ++threadsStarted;
  return take(threadsLeft) ? create(thread, attributes, start, argument) : EAGAIN;
}

extern "C" void* mmap(void* address, size_t length, int protection, int flags, int file,
                      off_t offset) noexcept {
  // Of the kernel itself: a sanitizer maps memory before anything of its own can be called.
  if ((flags & MAP_ANONYMOUS) != 0 && !take(pagesLeft)) {
    errno = ENOMEM;
    return MAP_FAILED;
  }
  // NOLINTNEXTLINE(performance-no-int-to-ptr)
  return reinterpret_cast<void*>(
      syscall(SYS_mmap, address, length, protection, flags, file, offset));
}

namespace test {

ThreadStarts::ThreadStarts() : before_(threadsStarted) {}
int ThreadStarts::count() const { return threadsStarted - before_; }
FewThreads::FewThreads(int left) { threadsLeft = left; }
FewThreads::~FewThreads() { threadsLeft = kPlenty; }
FirstThreadFails::FirstThreadFails() { firstFails = true; }
FirstThreadFails::~FirstThreadFails() { firstFails = false; }
FewPages::FewPages(int left) { pagesLeft = left; }
FewPages::~FewPages() { pagesLeft = kPlenty; }

}  // namespace test
