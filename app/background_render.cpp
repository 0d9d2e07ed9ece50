#include "app/background_render.h"

#include <exception>
#include <memory>
#include <system_error>
#include <utility>

#include "app/parallel.h"

namespace app {

bool BackgroundRender::start(RenderRequest request) {
  const std::uint64_t job = ++job_;
  // Shared, since a task can be copied; in truth it has one owner at a time.
  const auto shared = std::make_shared<RenderRequest>(std::move(request));
  const auto render = [this, job, shared] {
    giveWayToWindow();
    const auto begin = std::chrono::steady_clock::now();
    try {
      picture_ =
          renderTreemap(*shared->tree, shared->root, shared->width, shared->height, shared->colours,
                        shared->extraBlocks, shared->measure, std::move(shared->recycled));
    } catch (const std::exception&) {
      picture_.reset();  // the last picture stays
    }
    took_ = std::chrono::steady_clock::now() - begin;
    post_([this, job] { finish(job); });
  };
  try {
    thread_ = std::thread(render);
  } catch (const std::system_error&) {
    return false;
  }
  return true;
}

void BackgroundRender::drop() {
  if (!thread_.joinable()) return;
  thread_.join();
  picture_.reset();
}

void BackgroundRender::finish(std::uint64_t job) {
  if (job != job_ || !thread_.joinable()) return;
  thread_.join();
  if (auto picture = std::exchange(picture_, std::nullopt)) {
    onRendered(std::move(*picture), took_);
  }
}

}  // namespace app
