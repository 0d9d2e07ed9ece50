#include "app/map/background_render.h"

#include <ctime>
#include <exception>
#include <stop_token>

#include "base/detached_threads.h"
#include "base/mutex.h"

namespace app {

namespace {

std::optional<RenderedTreemap> render(RenderRequest request, const std::stop_token& stop) {
  try {
    return renderTreemap(*request.tree, request.root, request.width, request.height,
                         request.colours, request.extraBlocks, request.measure,
                         std::move(request.recycled), request.threads, stop);
  } catch (const std::exception&) {
    return std::nullopt;
  }
}

/// What the calling thread has had of the processors so far.
BackgroundRender::Duration processorTime() {
  timespec time{};
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
  return std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec);
}

}  // namespace

struct BackgroundRender::Job {
  std::stop_source stop;                   // requested once the picture was dropped
  base::Mutex mutex;                       // guards `post`, and is held while it is called
  Post post GUARDED_BY(mutex);             // empty once the picture was dropped
  std::optional<RenderedTreemap> picture;  // this and the next are written before `post` is called
  Duration processorTime{};
};

bool BackgroundRender::start(RenderRequest request) {
  auto job = std::make_shared<Job>();
  {
    const base::MutexLock lock(job->mutex);
    job->post = post_;
  }
  // Made here: on its thread there may be no memory for it.
  std::function<void()> tell = [this, job] { finish(job); };
  const bool started =
      base::startDetached([job, request = std::move(request), tell = std::move(tell)]() mutable {
        giveWayToWindow();
        job->picture = render(std::move(request), job->stop.get_token());
        job->processorTime = processorTime();
        const base::MutexLock lock(job->mutex);
        if (job->post) job->post(std::move(tell));
      });
  if (started) job_ = std::move(job);
  return started;
}

void BackgroundRender::drop() {
  const std::shared_ptr<Job> job = std::exchange(job_, nullptr);
  if (!job) return;
  job->stop.request_stop();
  const base::MutexLock lock(job->mutex);
  job->post = nullptr;
}

// The task of a picture that was dropped may still be on its way.
void BackgroundRender::finish(const std::shared_ptr<Job>& job) {
  if (job != job_) return;
  job_.reset();
  onEnded(std::exchange(job->picture, std::nullopt), job->processorTime);
}

}  // namespace app
