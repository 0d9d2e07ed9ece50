#pragma once

#include "ui/x11.h"

namespace ui {

/// Lets Xft keep 64 MiB of glyphs instead of 4 where the user's X resources do not say: a colour
/// emoji takes 70 KB, and each that has no room is rasterised again in every frame. To be called
/// before the first font is opened.
void keepManyGlyphs(Display* display);

}  // namespace ui
