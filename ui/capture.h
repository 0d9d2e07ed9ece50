#pragma once

#include <functional>
#include <string>

#include "ui/pixel_format.h"

namespace ui {

/// Writes a picture as a binary PPM (netpbm's "P6" with 255 as the greatest value) to `path`,
/// replacing what is there. `pixelAt(x, y)` gives the pixels, `format` says where their channels
/// lie; a channel wider than 8 bits is cut to its low 8.
///
/// False when the file cannot be opened. Errors after that are not reported: a picture for a
/// screenshot is looked at anyway.
bool writePpm(const std::string& path, int width, int height, const PixelFormat& format,
              const std::function<unsigned long(int x, int y)>& pixelAt);

}  // namespace ui
