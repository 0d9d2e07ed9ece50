#include "ui/connection.h"

#include <X11/Xresource.h>
#include <X11/extensions/Xrender.h>

#include <algorithm>
#include <cstdlib>
#include <type_traits>
#include <utility>

#include "ui/font_defaults.h"
#include "ui/font_set.h"
#include "ui/x11.h"
#include "ui/x_errors.h"

namespace ui {

namespace {

constexpr int kLeastDepth = 24;
constexpr double kReferenceDpi = 96.0;
constexpr double kMmPerInch = 25.4;
constexpr double kLeastScale = 0.75;
constexpr double kGreatestScale = 4.0;

/// "Xft.dpi" of the resource database, or 0 when it names no number above 0.
double dpiFromResources(const char* resources) {
  XrmInitialize();
  struct Destroy {
    void operator()(XrmDatabase database) const { XrmDestroyDatabase(database); }
  };
  const std::unique_ptr<std::remove_pointer_t<XrmDatabase>, Destroy> database(
      XrmGetStringDatabase(resources));
  if (!database) return 0;

  char* type = nullptr;
  XrmValue value{};
  if (!XrmGetResource(database.get(), "Xft.dpi", "Xft.Dpi", &type, &value) || !value.addr) return 0;
  const double dpi = std::strtod(value.addr, nullptr);
  return dpi > 0 ? dpi : 0;
}

/// To be called before Xft is. A display closes what was used last first, and Xft frees its glyphs
/// through XRender: the other way round XRender would remember the closed display, and take the
/// next one at the same address for it.
void useXRenderBeforeXft(Display* display) {
  int eventBase = 0;
  int errorBase = 0;
  XRenderQueryExtension(display, &eventBase, &errorBase);
}

double dpiFromHeight(int heightPx, int heightMm) {
  return heightMm < 1 ? 0 : heightPx * kMmPerInch / heightMm;
}

}  // namespace

double scaleFor(const char* resources, int heightPx, int heightMm) {
  double dpi = resources ? dpiFromResources(resources) : 0;
  if (!(dpi > 0)) dpi = dpiFromHeight(heightPx, heightMm);
  if (!(dpi > 0)) return 1.0;
  return std::clamp(dpi / kReferenceDpi, kLeastScale, kGreatestScale);
}

Connection::Native::Native() = default;

Connection::Native::~Native() {
  fontSets.clear();
  if (display) XCloseDisplay(display);
}

std::unique_ptr<Connection> Connection::open() {
  installErrorHandlers();
  auto native = std::make_unique<Native>();
  native->display = XOpenDisplay(nullptr);
  if (!native->display) return nullptr;

  Display* display = native->display;
  native->screen = DefaultScreen(display);
  native->visual = DefaultVisual(display, native->screen);
  native->colormap = DefaultColormap(display, native->screen);
  native->depth = DefaultDepth(display, native->screen);
  if (native->depth < kLeastDepth) return nullptr;
  native->pixelFormat = PixelFormat::of(native->depth, native->visual->red_mask,
                                        native->visual->green_mask, native->visual->blue_mask);

  useXRenderBeforeXft(display);
  keepManyGlyphs(display);
  const double scale =
      scaleFor(XResourceManagerString(display), DisplayHeight(display, native->screen),
               DisplayHeightMM(display, native->screen));
  return std::unique_ptr<Connection>(new Connection(std::move(native), scale));
}

Connection::Connection(std::unique_ptr<Native> native, double scale)
    : native_(std::move(native)), scale_(scale) {}

Connection::~Connection() = default;

void Connection::setLostAction(void (*action)()) { setLostConnectionAction(action); }

int Connection::depth() const { return native_->depth; }

Font Connection::font(double size, FontWeight weight) {
  auto& sets = native_->fontSets;
  auto set = std::ranges::find_if(sets, [&](const auto& known) { return known->is(size, weight); });
  if (set == sets.end()) {
    set = sets.insert(set, std::make_unique<FontSet>(*native_, scale_, size, weight));
  }
  return (*set)->handle(static_cast<int>(set - sets.begin()));
}

}  // namespace ui
