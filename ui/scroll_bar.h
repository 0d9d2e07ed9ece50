#pragma once

#include "ui/canvas.h"
#include "ui/colour.h"
#include "ui/scroller.h"

namespace ui {

/// Draws the bar of `scroller`: its track in the one colour and on it, 2 pixels smaller on every
/// side, the rounded thumb in the other. Nothing where there is no bar.
void drawScrollBar(Canvas& canvas, const Scroller& scroller, Colour track, Colour thumb);

}  // namespace ui
