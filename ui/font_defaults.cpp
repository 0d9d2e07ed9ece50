#include "ui/font_defaults.h"

#include <fontconfig/fontconfig.h>

#include <string>

namespace ui {

namespace {

constexpr int kGlyphMemoryBytes = 64 << 20;

// What Xft reads from the X resources by itself, unless it is given defaults: then they replace
// all.
constexpr const char* kResources[] = {FC_ANTIALIAS,  FC_AUTOHINT,   FC_DPI,  FC_HINTING,
                                      FC_HINT_STYLE, FC_LCD_FILTER, FC_RGBA, FC_SCALE};

/// Adds what the resource "Xft.`name`" says to `defaults`, in fontconfig's own notation.
void copyResource(Display* display, const char* name, FcPattern* defaults) {
  const char* value = XGetDefault(display, "Xft", name);
  if (!value) return;
  const std::string notation = std::string(":") + name + "=" + value;
  FcPattern* parsed = FcNameParse(reinterpret_cast<const FcChar8*>(notation.c_str()));
  if (!parsed) return;
  FcValue copied;
  if (FcPatternGet(parsed, name, 0, &copied) == FcResultMatch) {
    FcPatternAdd(defaults, name, copied, FcTrue);
  }
  FcPatternDestroy(parsed);
}

}  // namespace

void keepManyGlyphs(Display* display) {
  if (XGetDefault(display, "Xft", XFT_MAX_GLYPH_MEMORY)) return;
  FcPattern* defaults = FcPatternCreate();
  if (!defaults) return;
  for (const char* name : kResources) copyResource(display, name, defaults);
  FcPatternAddInteger(defaults, XFT_MAX_GLYPH_MEMORY, kGlyphMemoryBytes);
  XftDefaultSet(display, defaults);  // takes it over
}

}  // namespace ui
