#include "tests/ui/wall_clock.h"

#include <sys/syscall.h>
#include <sys/time.h>
#include <time.h>
#include <unistd.h>

#include <atomic>

namespace {

constexpr std::int64_t kNsInSecond = 1'000'000'000;
constexpr std::int64_t kTimesSlower = 50;
constexpr std::int64_t kNever = -1;

std::atomic<std::int64_t> offBySeconds = 0;
std::atomic<std::int64_t> slowSinceNs = kNever;

std::int64_t nsOf(const timespec& time) { return time.tv_sec * kNsInSecond + time.tv_nsec; }

void slowDown(timespec& time) {
  const std::int64_t since = slowSinceNs;
  if (since == kNever) return;
  const std::int64_t shown = since + (nsOf(time) - since) / kTimesSlower;
  time = {shown / kNsInSecond, shown % kNsInSecond};
}

}  // namespace

// Both are found before the C library's functions of these names.

extern "C" int clock_gettime(clockid_t clock, struct timespec* time) noexcept {
  const long result = syscall(SYS_clock_gettime, clock, time);
  if (result == 0 && clock == CLOCK_REALTIME) time->tv_sec += offBySeconds;
  if (result == 0 && clock == CLOCK_MONOTONIC) slowDown(*time);
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

SlowSpans::SlowSpans() {
  timespec now{};
  clock_gettime(CLOCK_MONOTONIC, &now);
  slowSinceNs = nsOf(now);
}
SlowSpans::~SlowSpans() { slowSinceNs = kNever; }

}  // namespace test
