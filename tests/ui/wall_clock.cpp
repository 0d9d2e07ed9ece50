#include "tests/ui/wall_clock.h"

#include <sys/syscall.h>
#include <sys/time.h>
#include <time.h>
#include <unistd.h>

#include <atomic>

namespace {
std::atomic<std::int64_t> offBySeconds = 0;
}

// Both are found before the C library's functions of these names.

extern "C" int clock_gettime(clockid_t clock, struct timespec* time) noexcept {
  const long result = syscall(SYS_clock_gettime, clock, time);
  if (result == 0 && clock == CLOCK_REALTIME) time->tv_sec += offBySeconds;
  return static_cast<int>(result);
}

extern "C" int gettimeofday(struct timeval* time, void* /*zone*/) noexcept {
  timespec now{};
  const int result = clock_gettime(CLOCK_REALTIME, &now);
  *time = {now.tv_sec, now.tv_nsec / 1000};
  return result;
}

namespace test {

WallClock::WallClock(std::int64_t offByMs) { offBySeconds = offByMs / 1000; }
WallClock::~WallClock() { offBySeconds = 0; }

}  // namespace test
