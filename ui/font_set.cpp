#include "ui/font_set.h"

#include <fontconfig/fontconfig.h>

#include <algorithm>
#include <memory>
#include <optional>
#include <string>

#include "base/utf8.h"

namespace ui {

namespace {

/// Characters a call to Xft takes at most.
constexpr std::size_t kLongestRun = 128;

/// Pixels a call to Xft takes at most: it adds advances up in 16 bits, with a sign, and so does the
/// protocol with coordinates.
constexpr int kWidestRun = 16'000;

// Colour emoji crash Xft before 2.3.5.
constexpr int kFirstVersionWithColour = 20305;

struct DestroyPattern {
  void operator()(FcPattern* pattern) const { FcPatternDestroy(pattern); }
};
using PatternPtr = std::unique_ptr<FcPattern, DestroyPattern>;

struct DestroyCharSet {
  void operator()(FcCharSet* set) const { FcCharSetDestroy(set); }
};

int fontconfigWeight(FontWeight weight) {
  return weight == FontWeight::Bold ? FC_WEIGHT_BOLD : FC_WEIGHT_REGULAR;
}

/// How many characters of `font` a call to Xft takes. Few where one glyph is a whole sentence, as
/// the widest of an Arabic font is.
std::size_t longestRun(const XftFont* font) {
  const int fitting = kWidestRun / std::max(1, font->max_advance_width);
  return std::clamp<std::size_t>(static_cast<std::size_t>(fitting), 1, kLongestRun);
}

/// What asks for a scalable font of any family that has `character`. Not complete yet.
PatternPtr patternFor(char32_t character, double pixelSize, FontWeight weight) {
  PatternPtr pattern(FcPatternCreate());
  const std::unique_ptr<FcCharSet, DestroyCharSet> characters(FcCharSetCreate());
  if (!pattern || !characters) return nullptr;
  FcCharSetAddChar(characters.get(), character);
  FcPatternAddCharSet(pattern.get(), FC_CHARSET, characters.get());
  FcPatternAddBool(pattern.get(), FC_SCALABLE, FcTrue);
  FcPatternAddDouble(pattern.get(), FC_PIXEL_SIZE, pixelSize);
  FcPatternAddInteger(pattern.get(), FC_WEIGHT, fontconfigWeight(weight));
  if (XftGetVersion() < kFirstVersionWithColour) {
    FcPatternAddBool(pattern.get(), FC_COLOR, FcFalse);
  }
  return pattern;
}

}  // namespace

FontSet::FontSet(const Connection::Native& x, double scale, double size, FontWeight weight)
    : x_(x), size_(size), pixelSize_(size * 96 / 72 * scale), weight_(weight), base_(openBase()) {}

FontSet::~FontSet() {
  for (XftFont* font : fallbacks_) XftFontClose(x_.display, font);
  if (base_) XftFontClose(x_.display, base_);
}

XftFont* FontSet::openBase() const {
  XftFont* font = XftFontOpen(x_.display, x_.screen, XFT_FAMILY, XftTypeString, "sans-serif",
                              XFT_PIXEL_SIZE, XftTypeDouble, pixelSize_, XFT_WEIGHT, XftTypeInteger,
                              fontconfigWeight(weight_), nullptr);
  if (font) return font;
  return XftFontOpen(x_.display, x_.screen, XFT_FAMILY, XftTypeString, "sans", XFT_PIXEL_SIZE,
                     XftTypeDouble, pixelSize_, nullptr);
}

Font FontSet::handle(int index) const {
  if (!base_) return {.set = index};
  return {base_, base_->ascent, base_->descent, base_->ascent + base_->descent, index};
}

XftFont* FontSet::fontFor(char32_t character) {
  const auto has = [&](XftFont* font) { return XftCharExists(x_.display, font, character); };
  if (has(base_)) return base_;
  const auto known = std::ranges::find_if(fallbacks_, has);
  if (known != fallbacks_.end()) return *known;
  const auto place = std::ranges::lower_bound(missing_, character);
  if (place != missing_.end() && *place == character) return base_;

  if (XftFont* found = searchFallback(character)) {
    fallbacks_.push_back(found);
    return found;
  }
  missing_.insert(place, character);
  return base_;
}

XftFont* FontSet::searchFallback(char32_t character) const {
  const PatternPtr pattern = patternFor(character, pixelSize_, weight_);
  if (!pattern) return nullptr;
  FcConfigSubstitute(nullptr, pattern.get(), FcMatchPattern);
  // Fontconfig's defaults after those of Xft, so that the font is drawn as the base font is and
  // keeps as many glyphs.
  XftDefaultSubstitute(x_.display, x_.screen, pattern.get());
  FcResult result = FcResultNoMatch;
  PatternPtr match(FcFontMatch(nullptr, pattern.get(), &result));
  if (!match) return nullptr;
  XftFont* font = XftFontOpenPattern(x_.display, match.get());
  if (!font) return nullptr;
  static_cast<void>(match.release());  // the font owns it now
  if (XftCharExists(x_.display, font, character)) return font;
  XftFontClose(x_.display, font);
  return nullptr;
}

std::vector<TextRun> FontSet::runs(std::string_view text) {
  std::vector<TextRun> runs;
  if (!base_) return runs;
  std::size_t position = 0;
  std::size_t characters = 0;  // in the last run
  while (const auto character = base::firstCharacter(text.substr(position))) {
    XftFont* font = fontFor(character->codePoint);
    if (runs.empty() || runs.back().font != font || characters == longestRun(font)) {
      runs.push_back({font, position, position});
      characters = 0;
    }
    position += character->length;
    runs.back().end = position;
    ++characters;
  }
  return runs;
}

int FontSet::width(std::string_view text) {
  if (const std::optional<int> known = widths_.find(text)) return *known;
  const std::string valid = base::withReplacements(text);
  int width = 0;
  for (const TextRun& run : runs(valid)) width += measure(run, valid);
  widths_.keep(text, width);
  return width;
}

int FontSet::measure(const TextRun& run, std::string_view text) const {
  XGlyphInfo extents{};
  XftTextExtentsUtf8(x_.display, run.font, reinterpret_cast<const FcChar8*>(&text[run.begin]),
                     static_cast<int>(run.end - run.begin), &extents);
  return extents.xOff;
}

}  // namespace ui
