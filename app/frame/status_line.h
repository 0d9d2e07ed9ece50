#pragma once

#include <string>

#include "app/frame/status_text.h"
#include "ui/canvas.h"
#include "ui/geometry.h"
#include "ui/text_fit.h"
#include "ui/widgets/style.h"
#include "ui/widgets/view.h"

namespace app {

/// The texts of the status line and their places. They never overlap; the left one comes first, and
/// the right one has what is left. A text that is not shown has an empty place.
struct StatusLayout {
  ui::Rect left;
  ui::Rect right;
  /// The right text as far as it has room.
  std::string rightText;
};

/// Lays `left` and `right` out into `bar`. `measure` gives a text's width.
StatusLayout layOutStatus(const std::string& left, const StatusNote& right, const ui::Rect& bar,
                          double scale, const ui::MeasureText& measure);

/// The line at the bottom of the window: the scan's figures at the left, at the right what the user
/// is about. Window thread only.
class StatusLine : public ui::View {
 public:
  /// `style` outlives the line.
  explicit StatusLine(const ui::Style& style) : style_(style) {}

  /// `right` may be a path as the file system has it: bytes that are no text are made readable.
  void setTexts(const std::string& left, const StatusNote& right);

  void paint(ui::Canvas& canvas) const override;
  const StatusLayout& layout() const { return layout_; }
  const std::string& left() const { return left_; }
  /// In full, and readable.
  const std::string& right() const { return right_.text; }

 protected:
  void layOut() override;

 private:
  const ui::Style& style_;
  std::string left_;
  StatusNote right_;
  StatusLayout layout_;
};

}  // namespace app
