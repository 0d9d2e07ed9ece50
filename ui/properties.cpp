#include "ui/properties.h"

#include <algorithm>

namespace ui {

namespace {

bool fitsOneRequest(Display* display, std::size_t bytes) {
  constexpr long kHeaderBytes = 64;
  const long units = std::max(XExtendedMaxRequestSize(display), XMaxRequestSize(display));
  return static_cast<long>(bytes) <= units * 4 - kHeaderBytes;
}

}  // namespace

bool replaceProperty(Display* display, ::Window window, Atom property, Atom type,
                     std::string_view bytes) {
  if (!fitsOneRequest(display, bytes.size())) return false;
  XChangeProperty(display, window, property, type, 8, PropModeReplace,
                  reinterpret_cast<const unsigned char*>(bytes.data()),
                  static_cast<int>(bytes.size()));
  return true;
}

void replaceNumber(Display* display, ::Window window, Atom property, Atom type,
                   unsigned long number) {
  // Properties of format 32 are passed as longs.
  XChangeProperty(display, window, property, type, 32, PropModeReplace,
                  reinterpret_cast<const unsigned char*>(&number), 1);
}

}  // namespace ui
