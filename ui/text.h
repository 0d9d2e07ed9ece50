#pragma once

#include <string_view>

#include "ui/canvas.h"
#include "ui/colour.h"
#include "ui/connection.h"
#include "ui/fonts.h"
#include "ui/geometry.h"

// Single lines of text. Texts are UTF-8; a byte that belongs to no character shows as U+FFFD. A
// character that the font lacks comes from whatever installed font has it. Window thread only.

namespace ui {

/// Where a text stands in the rectangle that it is drawn into.
enum class Align : int { Left = 0, Centre = 1, Right = 2 };

/// What stands for the part of a text that did not fit.
inline constexpr std::string_view kEllipsis = "…";

/// Advance of `text` in device pixels; 0 with a font that could not be opened. What was asked for
/// lately is remembered, so that asking in every frame is cheap.
int textWidth(Connection& connection, const Font& font, std::string_view text);

/// Draws `text` from `x` on, standing on `baselineY`. Returns its advance.
int drawRun(Canvas& canvas, int x, int baselineY, std::string_view text, const Font& font,
            Colour colour);

/// Draws `text` within `rect`, centred vertically. One that is too wide loses as much of its end as
/// it must to have "…" in its place; where not even that fits, nothing is drawn.
void drawText(Canvas& canvas, const Rect& rect, std::string_view text, const Font& font,
              Colour colour, Align align = Align::Left);

}  // namespace ui
