#include "ui/widgets/dialog_layer.h"

#include <algorithm>
#include <utility>

namespace ui {

void DialogLayer::changed() const {
  if (onChanged) onChanged();
}

void DialogLayer::open(std::unique_ptr<Dialog> dialog) {
  const Dialog* opened = dialog.get();
  dialog->onChanged = [this] { changed(); };
  dialog->onClosed = [this, opened] { close(opened); };
  dialog->setSize(width_, height_);
  open_.push_back(std::move(dialog));
  changed();
}

void DialogLayer::close(const Dialog* dialog) {
  const auto found = std::ranges::find(open_, dialog, [](const auto& open) { return open.get(); });
  if (found == open_.end()) return;
  // Out of the list first: what ends with the dialog may look at the list.
  const std::unique_ptr<Dialog> closed = std::move(*found);
  open_.erase(found);
  changed();
}

void DialogLayer::setSize(int width, int height) {
  width_ = width;
  height_ = height;
  for (const auto& dialog : open_) dialog->setSize(width, height);
}

void DialogLayer::paint(Canvas& canvas) const {
  for (const auto& dialog : open_) dialog->paint(canvas);
}

}  // namespace ui
