#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>
#include <thread>
#include <utility>
#include <vector>

#include "app/map/treemap_render.h"
#include "app/model/kind_colours.h"
#include "app/model/measure.h"
#include "sizewalk/file_tree.h"

namespace app {

/// The arguments of `renderTreemap`; all but the tree are copies.
struct RenderRequest {
  const sizewalk::FileTree* tree = nullptr;
  sizewalk::NodeId root = sizewalk::kRootNode;
  std::int32_t width = 0;
  std::int32_t height = 0;
  KindColours colours;
  std::vector<ExtraBlock> extraBlocks;
  MeasureSettings measure;
  RenderedTreemap recycled;
};

/// Makes pictures of a growing tree on a thread of its own, one at a time, so that the owner's
/// thread answers its user meanwhile: a picture of a million files takes a tenth of a second. The
/// owner's thread calls all members.
class BackgroundRender {
 public:
  /// Has the owner's thread run a task. Called on another thread; must not throw.
  using Post = std::function<void(std::function<void()>)>;
  using Duration = std::chrono::steady_clock::duration;

  /// What was started has ended after so long: with a picture, or without one where memory did not
  /// suffice.
  std::function<void(std::optional<RenderedTreemap> picture, Duration took)> onEnded;

  explicit BackgroundRender(Post post) : post_(std::move(post)) {}
  /// As `drop`. What was posted must not be run any more.
  ~BackgroundRender() { drop(); }
  BackgroundRender(const BackgroundRender&) = delete;
  BackgroundRender& operator=(const BackgroundRender&) = delete;

  /// From `start` until `onEnded` or `drop`.
  bool busy() const { return busy_; }
  /// Begins a picture; only while not busy. The tree outlives the work. False when there is no
  /// thread to be had.
  bool start(RenderRequest request);
  /// Waits for the picture that is being made, if any, and forgets it.
  void drop();

 private:
  void finish(std::uint64_t job);
  void join();

  const Post post_;
  /// Of the last picture; may have ended.
  std::thread thread_;
  bool busy_ = false;
  /// Tells a picture's task from that of one that was dropped.
  std::uint64_t job_ = 0;
  // Written by the thread before it posts, read by what it posts.
  std::optional<RenderedTreemap> picture_;
  Duration took_{};
};

}  // namespace app
