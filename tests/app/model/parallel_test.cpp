#include "app/model/parallel.h"

#include <gtest/gtest.h>
#include <sys/resource.h>

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <stdexcept>
#include <stop_token>
#include <string>
#include <vector>

namespace app {
namespace {

TEST(ForEachOnThreads, DoesEveryPieceOnce) {
  for (const unsigned threads : {0U, 1U, 2U, 7U}) {
    for (const std::size_t count : {0U, 1U, 3U, 1000U}) {
      std::vector<int> calls(count, 0);
      forEachOnThreads(count, threads, [&](std::size_t i) { ++calls[i]; });
      EXPECT_EQ(std::count(calls.begin(), calls.end(), 1), static_cast<std::ptrdiff_t>(count));
    }
  }
}

TEST(ForEachOnThreads, ThrowsWhatACallThrewOnceTheOthersHaveEnded) {
  for (const unsigned threads : {1U, 4U}) {
    std::atomic<int> running = 0;
    std::atomic<int> calls = 0;
    const auto work = [&](std::size_t i) {
      ++running;
      if (++calls > 10) {
        --running;
        throw std::length_error(std::to_string(i));
      }
      --running;
    };
    EXPECT_THROW(forEachOnThreads(1000000, threads, work), std::length_error);
    EXPECT_EQ(running, 0);
    EXPECT_LE(calls, 10 + static_cast<int>(threads)) << "nobody begins another";
  }
}

TEST(ForEachOnThreads, BeginsNoPieceOnceItIsGivenUp) {
  for (const unsigned threads : {1U, 4U}) {
    std::stop_source stop;
    std::atomic<int> calls = 0;
    const auto work = [&](std::size_t) {
      if (++calls == 10) stop.request_stop();
    };
    EXPECT_THROW(forEachOnThreads(1000000, threads, work, stop.get_token()), GivenUp);
    EXPECT_GE(calls, 10);
    EXPECT_LT(calls, threads == 1 ? 11 : 1000000);
  }
}

#ifndef HEAPGAUGE_SANITIZED
/// A list of so many threads is larger than the 64 megabytes of addresses that a heap of a thread
/// that has ended may still hold.
constexpr unsigned kMany = 5000000;

/// Ends the process, with 0 when every piece was done once.
[[noreturn]] void doPiecesWithoutMemory(unsigned threads) {
  std::vector<char> calls(kMany, 0);
  // From here on the kernel hands out nothing more, neither for the heap nor for a stack.
  const rlimit nothing = {0, 0};
  bool done = setrlimit(RLIMIT_AS, &nothing) == 0;
  forEachOnThreads(calls.size(), threads, [&](std::size_t i) { ++calls[i]; });
  for (const char count : calls) done = done && count == 1;
  std::_Exit(done ? 0 : 1);
}
#endif

TEST(ForEachOnThreads, DoesEveryPieceWhereNoMemoryCanBeHadForThreads) {
#ifdef HEAPGAUGE_SANITIZED
  GTEST_SKIP() << "the sanitizers end a program that runs out of memory";
#else
  EXPECT_EXIT(doPiecesWithoutMemory(2), testing::ExitedWithCode(0), "");
  // Not even for the list of them.
  EXPECT_EXIT(doPiecesWithoutMemory(kMany), testing::ExitedWithCode(0), "");
#endif
}

}  // namespace
}  // namespace app
