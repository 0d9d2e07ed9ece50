#pragma once

#include <string_view>

#include "ui/connection.h"
#include "ui/fonts.h"
#include "ui/palette.h"

namespace ui {

/// What the views draw with: one for the window, outliving them. Window thread only.
class Style {
 public:
  Style(Connection& connection, const Palette& palette);

  const Palette& palette() const { return palette_; }
  double scale() const { return connection_.scale(); }
  int scaled(double logical) const { return connection_.scaled(logical); }

  /// The font of nearly everything, the same for a word that stands out, and that of headings.
  const Font& body() const { return body_; }
  const Font& strong() const { return strong_; }
  const Font& heading() const { return heading_; }
  /// Height of a line of the body font; that of a usual font where there is none.
  int lineHeight() const { return lineHeight_; }
  /// Height of a row of the list, the table and of menus: 22 at scale 1, more if the font needs it.
  int rowHeight() const { return rowHeight_; }
  /// Width of a text in the body font, or in another.
  int textWidth(std::string_view text) const { return textWidth(text, body_); }
  int textWidth(std::string_view text, const Font& font) const;

  /// The veil over a row under the pointer.
  Colour hoverVeil() const { return palette_.dark ? 0x0EFFFFFF : 0x0A000000; }

 private:
  Connection& connection_;
  Palette palette_;
  Font body_;
  Font strong_;
  Font heading_;
  int lineHeight_;
  int rowHeight_;
};

}  // namespace ui
