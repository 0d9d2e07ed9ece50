#include "ui/font_defaults.h"

#include <fontconfig/fontconfig.h>

namespace ui {

namespace {

constexpr int kGlyphMemoryBytes = 64 << 20;

}  // namespace

void keepManyGlyphs(Display* display) {
  if (XGetDefault(display, "Xft", XFT_MAX_GLYPH_MEMORY)) return;
  FcPattern* defaults = FcPatternCreate();
  if (!defaults) return;
  // Defaults that are set replace what Xft takes from the X resources: first all of that.
  XftDefaultSubstitute(display, DefaultScreen(display), defaults);
  FcPatternDel(defaults, XFT_MAX_GLYPH_MEMORY);
  FcPatternAddInteger(defaults, XFT_MAX_GLYPH_MEMORY, kGlyphMemoryBytes);
  XftDefaultSet(display, defaults);  // takes it over
}

}  // namespace ui
