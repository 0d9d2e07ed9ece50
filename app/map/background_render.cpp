#include "app/map/background_render.h"

#include <exception>
#include <system_error>

#include "app/model/parallel.h"

namespace app {

bool BackgroundRender::start(RenderRequest request) {
  join();
  const std::uint64_t job = ++job_;
  auto render = [this, job, request = std::move(request)]() mutable {
    giveWayToWindow();
    const auto begin = std::chrono::steady_clock::now();
    try {
      picture_ =
          renderTreemap(*request.tree, request.root, request.width, request.height, request.colours,
                        request.extraBlocks, request.measure, std::move(request.recycled));
    } catch (const std::exception&) {
      picture_.reset();
    }
    took_ = std::chrono::steady_clock::now() - begin;
    post_([this, job] { finish(job); });
  };
  try {
    thread_ = std::thread(std::move(render));
  } catch (const std::system_error&) {
    return false;
  }
  busy_ = true;
  return true;
}

void BackgroundRender::drop() {
  join();
  busy_ = false;
  picture_.reset();
}

void BackgroundRender::join() {
  if (thread_.joinable()) thread_.join();
}

// Does not wait for the thread: at its low priority it may be long in ending.
void BackgroundRender::finish(std::uint64_t job) {
  if (!busy_ || job != job_) return;
  busy_ = false;
  onEnded(std::exchange(picture_, std::nullopt), took_);
}

}  // namespace app
