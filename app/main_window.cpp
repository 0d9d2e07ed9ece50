#include "app/main_window.h"

#include <cstdio>

#include "app/format.h"
#include "app/product.h"
#include "app/settings.h"
#include "app/settings_store.h"

namespace app {

namespace {
constexpr int kTickMs = 100;
// Logical pixels.
constexpr double kWidth = 1100;
constexpr double kHeight = 720;
constexpr double kMinWidth = 640;
constexpr double kMinHeight = 420;

MeasureSettings measureFromSettings() {
  MeasureSettings measure;
  measure.physicalSize = SettingsStore::instance().get(setting::kShowPhysicalFileSize);
  return measure;
}
}  // namespace

std::string windowTitle(const std::string& scanPath) {
  const std::string base = std::string(kProductName) + " · " + kProductVersion;
  return scanPath.empty() ? base : displayName(scanPath) + " — " + base;
}

std::string scanFailureText(const std::string& path, const std::string& reason) {
  return displayName(path) + " - " + reason;
}

std::string captureFailedMessage(const std::string& file) {
  return "could not write " + file + "\n";
}

MainWindow::MainWindow(ui::Connection& connection)
    : connection_(connection),
      colours_(SettingsStore::instance().get(setting::kConsistentKindColours)),
      window_(connection),
      map_(connection, colours_),
      // The tick follows a running scan by itself, so its progress reports go nowhere.
      controller_({}, [this] { window_.post([this] { showScanEnd(); }); }) {
  map_.setMeasure(measureFromSettings());
}

bool MainWindow::create() {
  window_.onPrepare = [this] { prepareFrame(); };
  window_.onPaint = [this](ui::Canvas& canvas) { map_.paint(canvas); };
  window_.onResize = [this](int width, int height) { resize(width, height); };
  if (!window_.create(windowTitle({}), connection_.scaled(kWidth), connection_.scaled(kHeight))) {
    return false;
  }
  window_.setClass("heapgauge", "Heapgauge");
  window_.setMinSize(connection_.scaled(kMinWidth), connection_.scaled(kMinHeight));
  resize(window_.width(), window_.height());
  window_.setTick(kTickMs, [this] { tick(); });
  window_.show();
  return true;
}

void MainWindow::scanPath(const std::string& path) {
  map_.show(nullptr, sizewalk::kRootNode);  // the controller drops the tree that is shown
  controller_.start(path);
  scanShown_ = true;
  endShown_ = false;
  shownNodes_ = 0;
  map_.show(&controller_.scanner()->tree(), sizewalk::kRootNode);
  updateTitle();
  window_.invalidate();
}

void MainWindow::captureAfter(const std::string& file, double seconds) {
  captureCountdown_.start(file, seconds);
}

void MainWindow::tick() {
  followScan();
  if (const auto file = captureCountdown_.tick(scanShown_ && !endShown_)) {
    window_.invalidate();
    window_.post([this, path = *file] { capture(path); });
  }
}

void MainWindow::capture(const std::string& file) {
  if (!window_.capture(file)) std::fputs(captureFailedMessage(file).c_str(), stderr);
  window_.quit();
}

void MainWindow::followScan() {
  if (!scanShown_ || controller_.finished()) return;
  const sizewalk::NodeId nodes = controller_.scanner()->tree().nodeCount();
  if (nodes != shownNodes_ && pacer_.due(RefreshPacer::Clock::now())) {
    shownNodes_ = nodes;
    invalidateMap();
  }
}

void MainWindow::showScanEnd() {
  // The end of a scan may be posted just before another scan takes its place.
  if (endShown_ || !controller_.finished()) return;
  endShown_ = true;
  const ScanSummary& summary = controller_.summary();
  if (summary.failure != 0) {
    std::fprintf(stderr, "This folder cannot be scanned: %s\n",
                 scanFailureText(controller_.path(), summary.failureText).c_str());
  }
  invalidateMap();
}

void MainWindow::invalidateMap() {
  map_.markDirty();
  window_.invalidate();
}

void MainWindow::prepareFrame() {
  pacer_.run([this] { return map_.update(); });
}

void MainWindow::resize(int width, int height) { map_.setRect({0, 0, width, height}); }

void MainWindow::updateTitle() { window_.setTitle(windowTitle(controller_.path())); }

}  // namespace app
