#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

#include "ui/fonts.h"
#include "ui/width_cache.h"
#include "ui/x11.h"

namespace ui {

/// A part of a text in one font: bytes [begin, end).
struct TextRun {
  XftFont* font;
  std::size_t begin;
  std::size_t end;

  bool operator==(const TextRun&) const = default;
};

/// The fonts of one size and weight: the base font, and those found for characters that it lacks.
/// Asking fontconfig for a character takes up to a millisecond, so both answers are remembered: the
/// fonts found, and the characters for which there is none. Window thread only.
class FontSet {
 public:
  /// Opens the base font, "sans-serif" or whatever "sans" gives. `size` is points, `scale` device
  /// pixels in a logical pixel. The connection outlives the set.
  FontSet(const Connection::Native& x, double scale, double size, FontWeight weight);
  /// Closes the fallback fonts, then the base font.
  ~FontSet();
  FontSet(const FontSet&) = delete;
  FontSet& operator=(const FontSet&) = delete;

  bool is(double size, FontWeight weight) const { return size_ == size && weight_ == weight; }
  /// The handle of this set as the `index`th of the connection.
  Font handle(int index) const;

  /// `text`, valid UTF-8, split where the font changes, and where a run becomes too long for one
  /// call to Xft.
  std::vector<TextRun> runs(std::string_view text);
  /// Advance of `text` in pixels, a byte that belongs to no character counting as U+FFFD; 0 without
  /// a base font. Widths of texts of ordinary length are remembered.
  int width(std::string_view text);
  /// Advance of one run. Costs a call to Xft.
  int measure(const TextRun& run, std::string_view text) const;

  const std::vector<XftFont*>& fallbacks() const { return fallbacks_; }
  /// The characters for which there is no font, sorted.
  const std::vector<char32_t>& missing() const { return missing_; }

 private:
  XftFont* openBase() const;
  XftFont* fontFor(char32_t character);
  XftFont* searchFallback(char32_t character) const;

  const Connection::Native& x_;
  double size_;
  double pixelSize_;
  FontWeight weight_;
  XftFont* base_;
  std::vector<XftFont*> fallbacks_;
  std::vector<char32_t> missing_;
  WidthCache widths_;
};

}  // namespace ui
