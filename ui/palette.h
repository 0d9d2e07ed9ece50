#pragma once

#include "ui/colour.h"

namespace ui {

/// The colours of the interface in one of its two modes, all opaque. `window`, `view`, `raised` and
/// `pressed` are surfaces; each is told from the next by a small step in lightness.
struct Palette {
  bool dark;
  Colour window;
  Colour view;
  Colour raised;
  Colour pressed;
  Colour border;
  Colour text;
  Colour dimText;
  Colour accent;
  Colour accentText;  // on `accent`
  Colour link;
  Colour base;  // the ground of lists and fields

  bool operator==(const Palette&) const = default;
};

inline constexpr Palette kLightPalette = {
    .dark = false,
    .window = 0xFFF6F5F4,
    .view = 0xFFFFFFFF,
    .raised = 0xFFEAE9E8,
    .pressed = 0xFFDCDBDA,
    .border = 0xFFD0CFCE,
    .text = 0xFF202022,
    .dimText = 0xFF6A6A70,
    .accent = 0xFF3584E4,
    .accentText = 0xFFFFFFFF,
    .link = 0xFF3584E4,
    .base = 0xFFFFFFFF,
};

inline constexpr Palette kDarkPalette = {
    .dark = true,
    .window = 0xFF242428,
    .view = 0xFF2E2E33,
    .raised = 0xFF3A3A40,
    .pressed = 0xFF45454C,
    .border = 0xFF44444A,
    .text = 0xFFEAEAEE,
    .dimText = 0xFF9A9AA4,
    .accent = 0xFF3584E4,
    .accentText = 0xFFFFFFFF,
    .link = 0xFF62A0EA,
    .base = 0xFF1C1C20,
};

/// The outline of a control that its own colour does not tell enough from what is around it: on
/// every surface of the palette its contrast is 3 : 1 or more, as the Web Content Accessibility
/// Guidelines 2.1 ask for of parts of controls (1.4.11).
constexpr Colour controlOutline(const Palette& palette) { return palette.dimText; }

/// The palette that the user or the desktop asks for. The first of these that decides:
///
///   1. HEAPGAUGE_THEME, when it is exactly "dark" or "light";
///   2. GTK_THEME, when it contains "dark";
///   3. "gtk-4.0/settings.ini" in $XDG_CONFIG_HOME (or $HOME/.config): dark when it says so, else
///      light when it has a "gtk-application-prefer-dark-theme" line at all;
///   4. "gtk-3.0/settings.ini" there, when it says dark.
///
/// Otherwise light. A settings file says dark by that key being 1 or true, or by a
/// "gtk-theme-name" that contains "dark", both in any case. A missing or unreadable file says
/// nothing. Reads the environment: not to be called while another thread changes it.
Palette detectPalette();

}  // namespace ui
