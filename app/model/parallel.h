#pragma once

#include <cstddef>
#include <functional>

namespace app {

/// Calls work(0) to work(count - 1), each once and in no certain order, on up to `threads` threads
/// including the calling one; returns when all calls have. Threads are started for the one call:
/// that takes some tens of microseconds, so this is for work of milliseconds. Where no thread can
/// be had the calling one does the work. When a call throws, those that have not begun may be left
/// out, and the first exception is thrown again once the others have ended.
void forEachOnThreads(std::size_t count, unsigned threads,
                      const std::function<void(std::size_t)>& work);

/// Threads that can run at a time here, at least 1.
unsigned hardwareThreads();

/// Lowers the priority of the calling thread, and of those that it will start, below that of the
/// window thread.
void giveWayToWindow();

}  // namespace app
