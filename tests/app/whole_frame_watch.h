#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "ui/canvas.h"
#include "ui/connection.h"
#include "ui/window.h"

namespace ui {
class BackBuffer;
}

namespace test {

/// Compares what a window shows with what it would show if each frame painted all of it. Both are
/// of the same moment: all is painted elsewhere as soon as a frame is prepared, and compared with
/// the screen before the next one is. Nothing may cover the window. Window thread only.
class WholeFrameWatch {
 public:
  /// Looks at every `interval`th frame. Both outlive the watch, which outlives the window's loop.
  WholeFrameWatch(ui::Connection& connection, ui::Window& window, int interval);
  ~WholeFrameWatch();
  WholeFrameWatch(const WholeFrameWatch&) = delete;
  WholeFrameWatch& operator=(const WholeFrameWatch&) = delete;

  /// Of what the user does: differences are told with the last few.
  void note(const std::string& what);
  /// Looks at the last frame that was painted.
  void compare();

  int compared() const { return compared_; }
  /// Frames of which less than a quarter was painted.
  int partial() const { return partial_; }
  /// One sentence for each frame that was not whole.
  const std::vector<std::string>& differences() const { return differences_; }

 private:
  void prepare();
  void paint(ui::Canvas& canvas);
  void countFrame();
  std::string recently() const;

  ui::Connection& connection_;
  ui::Window& window_;
  const int interval_;
  const std::function<void()> prepareParts_;
  const std::function<void(ui::Canvas&)> paintPart_;
  std::unique_ptr<ui::BackBuffer> whole_;
  long paintedPixels_ = 0;
  int frames_ = 0;
  int compared_ = 0;
  int partial_ = 0;
  std::vector<std::string> notes_;
  std::vector<std::string> differences_;
};

}  // namespace test
