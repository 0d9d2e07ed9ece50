#include "tests/app/scan_end.h"

#include <stdexcept>

#include "app/frame/frame_layout.h"
#include "app/frame/toolbar.h"
#include "ui/connection.h"
#include "ui/palette.h"

namespace test {

namespace {

/// Where a button is while a scan of nothing yet is shown.
ui::Rect placeOf(app::Action action, const ui::Style& style, bool scanning) {
  sizewalk::FileTree tree;
  app::Toolbar toolbar(style);
  toolbar.setRect(
      app::toolbarRect(style.scaled(1100), style.scaled(720), style.scale(), style.lineHeight()));
  toolbar.update({.tree = &tree, .scanning = scanning});
  const ui::Rect place = toolbar.layout().place(action);
  toolbar.update({});
  return place;
}

}  // namespace

ScanEnd ScanEnd::find() {
  const auto connection = ui::Connection::open();
  if (!connection) throw std::runtime_error("no X server");
  const ui::Style style(*connection, ui::kLightPalette);
  const ui::Rect stop = placeOf(app::Action::StopScan, style, true);
  const ui::Rect rescan = placeOf(app::Action::Rescan, style, false);
  const int x = stop.x + stop.w + style.scaled(2);
  if (x >= rescan.x + rescan.w) throw std::runtime_error("Rescan is no wider than Stop");
  return {x, stop.y + stop.h / 2, ui::kLightPalette.window & 0xFFFFFF};
}

}  // namespace test
