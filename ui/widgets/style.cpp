#include "ui/widgets/style.h"

#include <algorithm>

#include "ui/text.h"

namespace ui {

namespace {

// Points.
constexpr double kBodySize = 10;
constexpr double kHeadingSize = 15;

// Logical pixels.
constexpr double kUsualLineHeight = 16;
constexpr double kRowHeight = 22;
constexpr double kLeastRowPadding = 3;

}  // namespace

Style::Style(Connection& connection, const Palette& palette)
    : connection_(connection),
      palette_(palette),
      body_(connection.font(kBodySize, FontWeight::Regular)),
      strong_(connection.font(kBodySize, FontWeight::Bold)),
      heading_(connection.font(kHeadingSize, FontWeight::Bold)),
      lineHeight_(body_.font ? body_.height : connection.scaled(kUsualLineHeight)),
      rowHeight_(std::max(connection.scaled(kRowHeight),
                          lineHeight_ + connection.scaled(kLeastRowPadding))) {}

int Style::textWidth(std::string_view text, const Font& font) const {
  return ui::textWidth(connection_, font, text);
}

}  // namespace ui
