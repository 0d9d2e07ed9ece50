#pragma once

#include <cstddef>
#include <exception>
#include <functional>
#include <stop_token>

namespace app {

/// Ends work that nobody wants any more.
class GivenUp : public std::exception {
 public:
  const char* what() const noexcept override { return "given up"; }
};

/// Throws `GivenUp` once `stop` has been requested.
void endWhereGivenUp(const std::stop_token& stop);

/// Calls work(0) to work(count - 1), each once and in no certain order, on up to `threads` threads
/// including the calling one; returns when all calls have. Threads are started for the one call:
/// that takes some tens of microseconds, so this is for work of milliseconds. Where no thread can
/// be had the calling one does the work. When a call throws, those that have not begun may be left
/// out, and the first exception is thrown again once the others have ended. From the moment that
/// `stop` is requested a call that has not begun throws `GivenUp` instead.
void forEachOnThreads(std::size_t count, unsigned threads,
                      const std::function<void(std::size_t)>& work,
                      const std::stop_token& stop = {});

/// Threads that can run at a time here, at least 1.
unsigned hardwareThreads();

/// Lowers the priority of the calling thread, and of those that it will start, below that of the
/// window thread.
void giveWayToWindow();

}  // namespace app
