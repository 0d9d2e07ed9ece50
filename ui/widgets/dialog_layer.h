#pragma once

#include <functional>
#include <memory>
#include <vector>

#include "ui/widgets/dialog.h"

namespace ui {

/// The dialogs that are open, the topmost last: it has all input. Window thread only.
class DialogLayer {
 public:
  /// A new frame is to be drawn.
  std::function<void()> onChanged;

  /// Puts `dialog` on top. It is closed by itself, or with the layer.
  void open(std::unique_ptr<Dialog> dialog);
  bool empty() const { return open_.empty(); }
  /// The topmost one; null when there is none.
  Dialog* top() const { return open_.empty() ? nullptr : open_.back().get(); }

  void setSize(int width, int height);
  void paint(Canvas& canvas) const;

 private:
  void close(const Dialog* dialog);
  void changed() const;

  std::vector<std::unique_ptr<Dialog>> open_;
  int width_ = 0;
  int height_ = 0;
};

}  // namespace ui
