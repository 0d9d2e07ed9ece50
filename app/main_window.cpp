#include "app/main_window.h"

#include <cstdio>
#include <utility>

#include "app/dialogs/folder_chooser.h"
#include "app/dialogs/folder_places.h"
#include "app/dialogs/settings_dialog.h"
#include "app/menus.h"
#include "app/model/format.h"
#include "app/model/settings.h"
#include "app/model/settings_store.h"
#include "app/product.h"
#include "base/utf8.h"
#include "ui/text.h"
#include "ui/widgets/message_dialog.h"
#include "ui/widgets/popup_menu.h"

namespace app {

namespace {
constexpr int kTickMs = 100;
/// Disks come and go while the welcome view is open, and fill up.
constexpr std::int64_t kVolumesMs = 3000;
// Logical pixels.
constexpr double kWidth = 1100;
constexpr double kHeight = 720;
constexpr double kMinWidth = 640;
constexpr double kMinHeight = 420;
/// Bytes of a path, of which the end is kept: the reason after it is to be seen as well.
constexpr std::size_t kLongestPathTold = 300;

bool isOn(const Setting& setting) { return SettingsStore::instance().get(setting); }

ScanStatus statusOf(const ScanSummary& summary) {
  return {.elapsedSeconds = summary.elapsedSeconds,
          .hardLinks = static_cast<std::int64_t>(summary.hardLinks),
          .hardLinkBytes = static_cast<std::int64_t>(summary.hardLinkBytes),
          .unreadable = static_cast<std::int64_t>(summary.errors),
          .stopped = summary.cancelled};
}
}  // namespace

std::string windowTitle(const std::string& scanPath) {
  const std::string base = std::string(kProductName) + " · " + kProductVersion;
  return scanPath.empty() ? base : displayName(scanPath) + " — " + base;
}

std::string scanFailureText(const std::string& path, const std::string& reason) {
  std::string shown = displayName(path);
  if (shown.size() > kLongestPathTold) {
    const std::size_t cut = shown.size() - kLongestPathTold;
    shown = std::string(ui::kEllipsis) + shown.substr(base::characterStart(shown, cut));
  }
  return shown + " - " + reason;
}

std::string captureFailedMessage(const std::string& file) {
  return "could not write " + file + "\n";
}

MainWindow::MainWindow(ui::Connection& connection)
    : connection_(connection),
      style_(connection, ui::detectPalette()),
      colours_(isOn(setting::kConsistentKindColours)),
      window_(connection),
      // The tick follows a running scan by itself, so its progress reports go nowhere.
      controller_({}, [this] { window_.post([this] { showScanEnd(); }); }),
      welcome_(style_, icon_),
      scan_(connection, style_, colours_, [this](ui::Task task) { window_.post(std::move(task)); }),
      subFolderReader_([this](ui::Task task) { window_.post(std::move(task)); }),
      meter_([this](const std::string& path, const sizewalk::VolumeUsage& usage) {
        window_.post([this, path, usage] { volumeMeasured(path, usage); });
      }),
      volumes_([this](const std::vector<std::string>& paths) { meter_.measure(paths); }) {
  connectScreens();
  connectInput();
  applySettings();
}

void MainWindow::connectScreens() {
  welcome_.onChanged = [this] { window_.invalidate(); };
  welcome_.onVolume = [this](const std::string& path) { scanPath(path); };
  welcome_.onChooseFolder = [this] { chooseFolder(); };
  scan_.onChanged = [this] { window_.invalidate(); };
  input_.onChanged = [this] { window_.invalidate(); };
  welcome_.onCommand = [this](const Command& command) { perform(command); };
  scan_.onCommand = [this](const Command& command) { perform(command); };
}

void MainWindow::connectInput() {
  input_.onPointer = [this](ui::PointerShape shape) { window_.setPointer(shape); };
  window_.onPrepare = [this] { prepareFrame(); };
  window_.onPaint = [this](ui::Canvas& canvas) { input_.paint(canvas); };
  window_.onResize = [this](int width, int height) { resize(width, height); };
  window_.onPress = [this](const ui::MouseEvent& event) { input_.press(event); };
  window_.onMotion = [this](const ui::MouseEvent& event) { input_.motion(event); };
  window_.onRelease = [this](const ui::MouseEvent& event) { input_.release(event); };
  window_.onLeave = [this] { input_.leave(); };
  window_.onWheel = [this](const ui::MouseEvent& event, int /*dx*/, int dy) {
    if (dy != 0) input_.wheel(event, dy);
  };
  window_.onKey = [this](const ui::KeyEvent& event) { key(event); };
}

void MainWindow::applySettings() {
  measure_.physicalSize = isOn(setting::kShowPhysicalFileSize);
  scan_.setMeasure(measure_);
  scan_.setSettings(ScanScreenSettings::of(SettingsStore::instance()));
}

MainWindow::~MainWindow() { controller_.stop(); }

bool MainWindow::create() {
  if (!window_.create(windowTitle({}), connection_.scaled(kWidth), connection_.scaled(kHeight))) {
    return false;
  }
  window_.setClass("heapgauge", "Heapgauge");
  window_.setMinSize(connection_.scaled(kMinWidth), connection_.scaled(kMinHeight));
  resize(window_.width(), window_.height());
  window_.setTick(kTickMs, [this] { tick(); });
  show(welcome_);
  window_.show();
  return true;
}

void MainWindow::show(Screen& screen) {
  screen_ = &screen;
  input_.show(screen);
  if (&screen == &welcome_) refreshVolumes();
  updateTitle();
}

void MainWindow::scanPath(const std::string& path) {
  controller_.stop();
  scan_.show(nullptr);  // the controller drops the tree that is shown
  controller_.start(path);
  endShown_ = false;
  stopping_ = false;
  shownNodes_ = 0;
  scanStarted_ = Clock::now();
  scan_.show(&controller_.scanner()->tree());
  scan_.setScanStatus({.scanning = true});
  meter_.measure({controller_.path()});
  show(scan_);
}

void MainWindow::showWelcome() {
  controller_.stop();
  scan_.show(nullptr);
  controller_.drop();
  show(welcome_);
}

void MainWindow::stopScan() {
  controller_.stop();
  // A reader may wait for a disk before it sees that; the summary follows when all have ended.
  stopping_ = true;
  const std::chrono::duration<double> elapsed = Clock::now() - scanStarted_;
  scan_.setScanStatus({.elapsedSeconds = elapsed.count(), .stopped = true});
}

void MainWindow::captureAfter(const std::string& file, double seconds) {
  captureCountdown_.start(file, seconds);
}

void MainWindow::tick() {
  followScan();
  const std::int64_t now = ui::Window::now();
  if (!scanShown() && now >= nextVolumes_) refreshVolumes();
  input_.tick(now);
  if (const auto file = captureCountdown_.tick(scanShown() && !endShown_)) {
    scan_.showAllInNextFrame();
    window_.invalidate();
    window_.post([this, path = *file] { capture(path); });
  }
}

void MainWindow::capture(const std::string& file) {
  if (!window_.capture(file)) std::fputs(captureFailedMessage(file).c_str(), stderr);
  window_.quit();
}

void MainWindow::followScan() {
  if (!scanShown() || controller_.finished()) return;
  const sizewalk::NodeId nodes = controller_.scanner()->tree().nodeCount();
  if (nodes != shownNodes_ && pacer_.due(Clock::now())) {
    shownNodes_ = nodes;
    scan_.treeChanged();
  }
}

void MainWindow::showScanEnd() {
  // The end of a scan may be posted just before another scan takes its place, or is left.
  if (!scanShown()) controller_.drop();
  if (!scanShown() || endShown_ || !controller_.finished()) return;
  endShown_ = true;
  const ScanSummary& summary = controller_.summary();
  if (summary.failure != 0) {
    const std::string reason = scanFailureText(controller_.path(), summary.failureText);
    showWelcome();
    showMessage("This folder cannot be scanned", reason);
    return;
  }
  scan_.setScanStatus(statusOf(summary));
  scan_.treeChanged();
}

void MainWindow::prepareFrame() {
  pacer_.run([this] { return input_.prepare(); });
}

void MainWindow::resize(int width, int height) {
  welcome_.setRect({0, 0, width, height});
  scan_.setRect({0, 0, width, height});
  input_.setSize(width, height);
}

void MainWindow::chooseFolder() {
  auto chooser = std::make_unique<FolderChooser>(style_, folderPlaces(), subFolderReader_);
  chooser->onChosen = [this](const std::string& path) { scanPath(path); };
  input_.open(std::move(chooser));
}

void MainWindow::openSettings() {
  auto dialog = std::make_unique<SettingsDialog>(connection_, style_, SettingsStore::instance());
  dialog->onSettingsChanged = [this] { applySettings(); };
  input_.open(std::move(dialog));
}

void MainWindow::showMetricMenu(int x, int y, Command::By by) {
  const auto run = [this](const Command& command) { perform(command); };
  openMenu(measureMenu(measure_.measure, run), x, y, by);
}

void MainWindow::showApplicationMenu(int x, int y, Command::By by) {
  const auto run = [this](const Command& command) { perform(command); };
  openMenu(applicationMenu(commandState(), run), x, y, by);
}

void MainWindow::openMenu(std::vector<ui::MenuEntry> entries, int x, int y, Command::By by) {
  auto menu = std::make_unique<ui::PopupMenu>(style_, std::move(entries), x, y);
  if (by == Command::By::Key) menu->goToFirst();
  input_.open(std::move(menu));
}

void MainWindow::showMessage(const std::string& title, const std::string& text) {
  input_.open(
      std::make_unique<ui::MessageDialog>(connection_, style_, title, text, ui::okButton()));
}

void MainWindow::updateTitle() {
  window_.setTitle(windowTitle(scanShown() ? controller_.path() : std::string()));
}

/// The view with the keyboard comes first; closing works whatever is open.
void MainWindow::key(const ui::KeyEvent& event) {
  const auto command = commandFor(event);
  const bool closes = command && command->action == Action::Close;
  if (!closes && input_.key(event)) return;
  if (command) perform(*command);
}

CommandState MainWindow::commandState() const {
  return {.scanShown = scanShown(),
          .scanning = scanShown() && !endShown_ && !stopping_,
          .canGoOut = scan_.focus().canGoOut()};
}

void MainWindow::perform(const Command& command) {
  if (!isEnabled(command, commandState())) return;
  switch (command.action) {
    case Action::LeaveScan:
      return showWelcome();
    case Action::StopScan:
      return stopScan();
    case Action::Rescan:
      return scanPath(std::string(controller_.path()));
    case Action::GoOut:
      return scan_.focus().goOut();
    case Action::GoToScannedFolder:
      return scan_.focus().go(sizewalk::kRootNode);
    case Action::GoToPrevious:
      return scan_.focus().goToPrevious();
    case Action::GoToNext:
      return scan_.focus().goToNext();
    case Action::GoTo:
      return scan_.focus().go(command.target.value_or(sizewalk::kRootNode));
    case Action::CopyPath:
      return copyPath(command.target.value_or(scan_.target()));
    case Action::ShowMeasure:
      return setMeasure(command.measure);
    case Action::OpenMeasureMenu: {
      const ui::Rect button = scan_.measureButton();
      return showMetricMenu(button.x, button.y + button.h, command.by);
    }
    case Action::OpenApplicationMenu: {
      const ui::Rect button = screen_->menuButton();
      return showApplicationMenu(button.x, button.y + button.h, command.by);
    }
    case Action::OpenSettings:
      return openSettings();
    case Action::Close:
      return window_.close();
  }
}

void MainWindow::copyPath(sizewalk::NodeId target) {
  const sizewalk::FileTree& tree = controller_.scanner()->tree();
  if (target < tree.nodeCount()) window_.setClipboardText(displayName(tree.path(target)));
}

void MainWindow::setMeasure(Measure measure) {
  measure_.measure = measure;
  scan_.setMeasure(measure_);
}

void MainWindow::refreshVolumes() {
  nextVolumes_ = ui::Window::now() + kVolumesMs;
  volumes_.refresh();
  welcome_.setCards(volumes_.cards());
}

void MainWindow::volumeMeasured(const std::string& path, const sizewalk::VolumeUsage& usage) {
  volumes_.measured(path, usage);
  if (!scanShown()) {
    welcome_.setCards(volumes_.cards());
  } else if (path == controller_.path() && usage.totalBytes > 0) {
    scan_.setVolumeSpace(VolumeSpace{usage.usedBytes, usage.freeBytes});
  }
}

}  // namespace app
