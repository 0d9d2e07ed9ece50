#include "ui/text.h"

#include <string>

#include "base/utf8.h"
#include "ui/font_set.h"
#include "ui/text_fit.h"
#include "ui/x11.h"

namespace ui {

namespace {

FontSet& setOf(const Connection& connection, const Font& font) {
  return *connection.native().fontSets[static_cast<std::size_t>(font.set)];
}

/// Glyphs may reach beyond their advance and line, but by less than the font's height. The server
/// would clip too, but the protocol cuts coordinates to 16 bits.
bool canShow(const Rect& clip, int x, int baselineY, int advance, int fontHeight) {
  const Rect reach{x - fontHeight, baselineY - 2 * fontHeight, advance + 2 * fontHeight,
                   4 * fontHeight};
  return !intersect(reach, clip).empty();
}

/// `text` is valid UTF-8.
int drawValid(Canvas& canvas, int x, int baselineY, std::string_view text, const Font& font,
              Colour colour) {
  if (!font.font || text.empty()) return 0;
  const auto [red, green, blue, alpha] = premultiplied(colour);
  const XftColor xftColour = {canvas.connection().native().pixelFormat.pixelOf(colour),
                              {red, green, blue, alpha}};
  FontSet& set = setOf(canvas.connection(), font);
  const Rect clip = canvas.clip();
  int advance = 0;
  for (const TextRun& run : set.runs(text)) {
    const int width = set.measure(run, text);
    if (canShow(clip, x + advance, baselineY, width, font.height)) {
      XftDrawStringUtf8(canvas.target().draw, &xftColour, run.font, x + advance, baselineY,
                        reinterpret_cast<const FcChar8*>(&text[run.begin]),
                        static_cast<int>(run.end - run.begin));
    }
    advance += width;
  }
  return advance;
}

int alignedX(const Rect& rect, int width, Align align) {
  switch (align) {
    case Align::Centre:
      return rect.x + (rect.w - width) / 2;
    case Align::Right:
      return rect.x + rect.w - width;
    case Align::Left:
      break;
  }
  return rect.x;
}

}  // namespace

int textWidth(Connection& connection, const Font& font, std::string_view text) {
  if (!font.font || text.empty()) return 0;
  return setOf(connection, font).width(text);
}

int drawRun(Canvas& canvas, int x, int baselineY, std::string_view text, const Font& font,
            Colour colour) {
  return drawValid(canvas, x, baselineY, base::withReplacements(text), font, colour);
}

void drawText(Canvas& canvas, const Rect& rect, std::string_view text, const Font& font,
              Colour colour, Align align) {
  if (!font.font || rect.empty() || text.empty()) return;
  const int baseline = rect.y + (rect.h - font.height) / 2 + font.ascent;
  if (!canShow(canvas.clip(), rect.x, baseline, rect.w, font.height)) return;
  const auto measure = [&](std::string_view part) {
    return textWidth(canvas.connection(), font, part);
  };
  const std::string shown = shortenedAtEnd(text, rect.w, measure);
  const int x = alignedX(rect, measure(shown), align);
  drawValid(canvas, x, baseline, shown, font, colour);
}

}  // namespace ui
