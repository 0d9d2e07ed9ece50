// The least that a program with a window and text can do: opens a window of the size that is given,
// fills it and draws one line of text, then waits for its end.

#include <X11/Xft/Xft.h>
#include <X11/Xlib.h>

#include <array>
#include <cstdlib>

namespace {

constexpr int kTextLength = 4;

void paint(Display* display, Window window, unsigned width, unsigned height, XftFont* font) {
  const int screen = DefaultScreen(display);
  Visual* visual = DefaultVisual(display, screen);
  const Colormap colormap = DefaultColormap(display, screen);
  XSetForeground(display, DefaultGC(display, screen), WhitePixel(display, screen));
  XFillRectangle(display, window, DefaultGC(display, screen), 0, 0, width, height);
  XftDraw* draw = XftDrawCreate(display, window, visual, colormap);
  XRenderColor black{0, 0, 0, 0xFFFF};
  XftColor colour;
  XftColorAllocValue(display, visual, colormap, &black, &colour);
  const std::array<FcChar8, kTextLength + 1> text{"Text"};
  XftDrawStringUtf8(draw, &colour, font, 20, 40, text.data(), kTextLength);
  XftDrawDestroy(draw);
  XFlush(display);
}

}  // namespace

int main(int argc, char** argv) {
  Display* display = argc == 3 ? XOpenDisplay(nullptr) : nullptr;
  if (!display) return 1;
  const auto width = static_cast<unsigned>(std::atoi(argv[1]));
  const auto height = static_cast<unsigned>(std::atoi(argv[2]));
  const int screen = DefaultScreen(display);
  const Window window = XCreateSimpleWindow(display, DefaultRootWindow(display), 0, 0, width,
                                            height, 0, 0, BlackPixel(display, screen));
  XSelectInput(display, window, ExposureMask);
  XMapWindow(display, window);
  XftFont* font = XftFontOpenName(display, screen, "sans-10");
  for (XEvent event; XNextEvent(display, &event) == 0;) {
    if (event.type == Expose) paint(display, window, width, height, font);
  }
  return 0;
}
