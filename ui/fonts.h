#pragma once

// Xft's own name for its font type; its header would bring in Xlib.
struct _XftFont;  // NOLINT(bugprone-reserved-identifier)

namespace ui {

enum class FontWeight : int { Regular = 0, Bold = 1 };

/// A size and weight of the interface's typeface, as `Connection::font` hands it out. Cheap to
/// copy; good as long as the connection. Lengths are device pixels.
struct Font {
  /// The base font; null when no font could be opened, in which case its texts are not drawn.
  _XftFont* font = nullptr;
  int ascent = 0;
  int descent = 0;
  int height = 0;  // ascent + descent
  /// Index of the font set in the connection.
  int set = -1;
};

}  // namespace ui
