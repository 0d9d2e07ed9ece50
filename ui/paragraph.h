#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "ui/text.h"
#include "ui/text_fit.h"

namespace ui {

/// `text` broken into lines of at most `width` pixels: as many words a line as fit, words being
/// what single spaces separate; further spaces that do not fit at the end of a line are left out. A
/// word wider than a line is broken between two characters. A newline ends a line. A character
/// wider than `width` has a line of its own. Lines are valid UTF-8.
std::vector<std::string> wrappedLines(std::string_view text, int width, const MeasureText& measure);

/// A text of several lines, wrapped once for a width and then drawn as often as need be. Window
/// thread only.
class Paragraph {
 public:
  Paragraph() = default;
  /// `width` in device pixels.
  Paragraph(Connection& connection, std::string_view text, const Font& font, int width);

  int height() const { return static_cast<int>(lines_.size()) * font_.height; }
  const std::vector<std::string>& lines() const { return lines_; }
  /// Draws the lines from (x, y) downwards, in the width that they were wrapped for.
  void draw(Canvas& canvas, int x, int y, Colour colour, Align align = Align::Left) const;

 private:
  Font font_;
  int width_ = 0;
  std::vector<std::string> lines_;
};

}  // namespace ui
