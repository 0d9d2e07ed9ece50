#include "app/map/background_render.h"

#include <exception>

#include "app/model/parallel.h"
#include "base/detached_threads.h"
#include "base/mutex.h"

namespace app {

namespace {

std::optional<RenderedTreemap> render(RenderRequest request) {
  try {
    return renderTreemap(*request.tree, request.root, request.width, request.height,
                         request.colours, request.extraBlocks, request.measure,
                         std::move(request.recycled));
  } catch (const std::exception&) {
    return std::nullopt;
  }
}

}  // namespace

struct BackgroundRender::Job {
  base::Mutex mutex;                       // guards `post`, and is held while it is called
  Post post GUARDED_BY(mutex);             // empty once the picture was dropped
  std::optional<RenderedTreemap> picture;  // this and the next are written before `post` is called
  Duration took{};
};

bool BackgroundRender::start(RenderRequest request) {
  auto job = std::make_shared<Job>();
  {
    const base::MutexLock lock(job->mutex);
    job->post = post_;
  }
  const bool started = base::startDetached([this, job, request = std::move(request)]() mutable {
    giveWayToWindow();
    const auto begin = std::chrono::steady_clock::now();
    job->picture = render(std::move(request));
    job->took = std::chrono::steady_clock::now() - begin;
    const base::MutexLock lock(job->mutex);
    if (job->post) job->post([this, job] { finish(job); });
  });
  if (started) job_ = std::move(job);
  return started;
}

void BackgroundRender::drop() {
  const std::shared_ptr<Job> job = std::exchange(job_, nullptr);
  if (!job) return;
  const base::MutexLock lock(job->mutex);
  job->post = nullptr;
}

// The task of a picture that was dropped may still be on its way.
void BackgroundRender::finish(const std::shared_ptr<Job>& job) {
  if (job != job_) return;
  job_.reset();
  onEnded(std::exchange(job->picture, std::nullopt), job->took);
}

}  // namespace app
