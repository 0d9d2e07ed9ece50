#pragma once

#include <functional>
#include <string>
#include <string_view>

// Fitting a line of text into a width. Needs no window: whoever asks says how wide texts are.

namespace ui {

/// Width of a text in pixels. Texts that contain others are at least as wide.
using MeasureText = std::function<int(std::string_view)>;

/// `text` as valid UTF-8, each byte that belongs to no character replaced by U+FFFD, and when that
/// is wider than `width` its longest beginning that fits with "…" after it. Empty where not even
/// "…" leaves a pixel.
std::string shortenedAtEnd(std::string_view text, int width, const MeasureText& measure);

/// The same with "…" and then the longest end: for paths, whose end says most.
std::string shortenedAtStart(std::string_view text, int width, const MeasureText& measure);

}  // namespace ui
