#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include "app/map/treemap_render.h"
#include "app/model/kind_colours.h"
#include "app/model/measure.h"
#include "app/model/parallel.h"
#include "sizewalk/file_tree.h"

namespace app {

/// The arguments of `renderTreemap`; all but the tree are copies, and that is held.
struct RenderRequest {
  std::shared_ptr<const sizewalk::FileTree> tree;
  sizewalk::NodeId root = sizewalk::kRootNode;
  std::int32_t width = 0;
  std::int32_t height = 0;
  KindColours colours;
  std::vector<ExtraBlock> extraBlocks;
  MeasureSettings measure;
  RenderedTreemap recycled;
  unsigned threads = hardwareThreads();
};

/// Makes pictures of a growing tree on a thread of its own, so that the owner's thread answers its
/// user meanwhile: a picture of a million files takes a tenth of a second. The owner's thread calls
/// all members, and none of them waits for a picture.
class BackgroundRender {
 public:
  /// Has the owner's thread run a task. Called on another thread, with a lock held, and not after
  /// the picture was dropped; must not throw.
  using Post = std::function<void(std::function<void()>)>;
  using Duration = std::chrono::steady_clock::duration;

  /// What was started has ended, with a picture, or without one where memory did not suffice.
  /// `processorTime` is that of the thread it began on; of other threads it knows nothing.
  std::function<void(std::optional<RenderedTreemap> picture, Duration processorTime)> onEnded;

  explicit BackgroundRender(Post post) : post_(std::move(post)) {}
  /// As `drop`. What was posted must not be run any more.
  ~BackgroundRender() { drop(); }
  BackgroundRender(const BackgroundRender&) = delete;
  BackgroundRender& operator=(const BackgroundRender&) = delete;

  /// From `start` until `onEnded` or `drop`.
  bool busy() const { return job_ != nullptr; }
  /// Begins a picture; only while not busy. False when there is no thread to be had.
  bool start(RenderRequest request);
  /// Gives up the picture that is being made, if any. Its thread soon ends without it and lets go
  /// of the tree.
  void drop();

 private:
  struct Job;
  void finish(const std::shared_ptr<Job>& job);

  const Post post_;
  /// The picture that is being made, shared with its thread.
  std::shared_ptr<Job> job_;
};

}  // namespace app
