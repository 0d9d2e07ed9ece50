#include "app/model/parallel.h"

#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <new>
#include <system_error>
#include <thread>
#include <vector>

namespace app {

namespace {
/// A walk has several times as many threads as there are processors, all of them busy where the
/// storage is quick: a frame, of some 50 ms of work, would get a processor for a tenth of that time
/// and wait a second.
constexpr int kNiceness = 10;
}  // namespace

void forEachOnThreads(std::size_t count, unsigned threads,
                      const std::function<void(std::size_t)>& work) {
  std::atomic<std::size_t> next = 0;  // the first piece that nobody has taken
  const auto takePieces = [&] {
    for (std::size_t i; (i = next.fetch_add(1, std::memory_order_relaxed)) < count;) work(i);
  };
  const std::size_t threadCount = std::min<std::size_t>(std::max(threads, 1U), count);
  std::vector<std::jthread> helpers;
  try {
    helpers.reserve(threadCount);
    while (helpers.size() + 1 < threadCount) helpers.emplace_back(takePieces);
  } catch (const std::system_error&) {
    // No more threads to be had; those there are take its pieces.
  } catch (const std::bad_alloc&) {
    // Nor memory for one.
  }
  takePieces();
}

unsigned hardwareThreads() {
  static const unsigned count = std::max(1U, std::thread::hardware_concurrency());
  return count;
}

// On Linux a thread has a priority of its own, which the threads that it starts take over.
void giveWayToWindow() { nice(kNiceness); }

}  // namespace app
