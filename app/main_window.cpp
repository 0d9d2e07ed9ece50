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
#include "ui/keys.h"
#include "ui/text.h"
#include "ui/widgets/message_dialog.h"

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

ScanScreenSettings screenSettings() {
  return {.listAboveMap = isOn(setting::kSplitHorizontally),
          .showKinds = isOn(setting::kShowFileKinds),
          .consistentKindColours = isOn(setting::kConsistentKindColours),
          .extraBlocks = {.freeSpace = isOn(setting::kShowFreeSpace),
                          .otherSpace = isOn(setting::kShowOtherSpace)}};
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
      session_([this](ui::Task task) { window_.post(std::move(task)); }),
      welcome_(style_, icon_),
      scan_(connection, style_, colours_, [this](ui::Task task) { window_.post(std::move(task)); }),
      folderLister_([this](ui::Task task) { window_.post(std::move(task)); }),
      meter_([this](const std::string& path, const sizewalk::VolumeUsage& usage) {
        window_.post([this, path, usage] { volumeMeasured(path, usage); });
      }),
      volumes_([this](const std::vector<std::string>& paths) { meter_.measure(paths); }) {
  connectScreens();
  connectSession();
  connectInput();
  applySettings();
}

void MainWindow::connectScreens() {
  welcome_.onChanged = [this] { window_.invalidate(); };
  welcome_.onVolume = [this](const std::string& path) { scanPath(path); };
  welcome_.onChooseFolder = [this] { chooseFolder(); };
  scan_.onChanged = [this] { window_.invalidate(); };
  dialogs_.onChanged = [this] { window_.invalidate(); };
  scan_.onCommand = [this](Command command) { perform(command); };
  const auto hangMenu = [this](const ui::Rect& button) {
    showApplicationMenu(button.x, button.y + button.h);
  };
  welcome_.onAppMenu = hangMenu;
  scan_.onAppMenu = hangMenu;
  scan_.onMeasureMenu = [this](const ui::Rect& button) {
    showMeasureMenu(button.x, button.y + button.h);
  };
}

void MainWindow::connectSession() {
  session_.onPathFound = [this] { scanPathFound(); };
  session_.onGrown = [this] { scan_.treeChanged(); };
  session_.onEnded = [this] { showScanEnd(); };
}

void MainWindow::connectInput() {
  window_.onPrepare = [this] { prepareFrame(); };
  window_.onPaint = [this](ui::Canvas& canvas) {
    screen_->paint(canvas);
    dialogs_.paint(canvas);
    if (menu_) menu_->paint(canvas);
  };
  window_.onResize = [this](int width, int height) { resize(width, height); };
  window_.onPress = [this](const ui::MouseEvent& event) { press(event); };
  window_.onMotion = [this](const ui::MouseEvent& event) { motion(event); };
  window_.onRelease = [this](const ui::MouseEvent& event) { release(event); };
  window_.onLeave = [this] { leave(); };
  window_.onWheel = [this](const ui::MouseEvent& event, int /*dx*/, int dy) {
    if (dy != 0) wheel(event, dy);
  };
  window_.onKey = [this](const ui::KeyEvent& event) { key(event); };
  // Closing takes the same door as everything else that leaves a scan, and perhaps a while there.
  window_.onCloseQuery = [this] {
    settlePendingBefore([this] { window_.quit(); });
    return false;
  };
}

void MainWindow::applySettings() {
  measure_.physicalSize = isOn(setting::kShowPhysicalFileSize);
  scan_.setMeasure(measure_);
  scan_.setSettings(screenSettings());
}

MainWindow::~MainWindow() = default;

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
  closeMenu();
  if (screen_ != &screen) screen_->hide();
  screen_ = &screen;
  pointerTarget_ = 0;
  if (&screen == &welcome_) refreshVolumes();
  updateTitle();
  updatePointer();
  window_.invalidate();
}

void MainWindow::settlePendingBefore(const std::function<void()>& next) { next(); }

void MainWindow::scanPath(const std::string& path) {
  settlePendingBefore([this, path] { startScan(path); });
}

void MainWindow::startScan(const std::string& path) {
  session_.start(path);
  scan_.show(session_.tree());
  scan_.setScanStatus(session_.status());
  meter_.measure({session_.path()});
  show(scan_);
}

void MainWindow::showWelcome() {
  settlePendingBefore([this] { leaveScan(); });
}

void MainWindow::leaveScan() {
  session_.leave();
  scan_.show(nullptr);
  show(welcome_);
}

void MainWindow::stopScan() {
  session_.stop();
  scan_.setScanStatus(session_.status());
}

void MainWindow::captureAfter(const std::string& file, double seconds) {
  captureCountdown_.start(file, seconds);
}

void MainWindow::tick() {
  session_.follow();
  const std::int64_t now = ui::Window::now();
  if (!scanShown() && now >= nextVolumes_) refreshVolumes();
  screen_->tick(now);
  if (ui::Dialog* dialog = dialogs_.top()) dialog->tick(now);
  if (const auto file = captureCountdown_.tick(session_.underWay())) {
    scan_.drawAtOnce();
    window_.invalidate();
    window_.post([this, path = *file] { capture(path); });
  }
}

void MainWindow::capture(const std::string& file) {
  if (!window_.capture(file)) std::fputs(captureFailedMessage(file).c_str(), stderr);
  window_.quit();
}

void MainWindow::scanPathFound() {
  updateTitle();
  meter_.measure({session_.path()});
}

void MainWindow::showScanEnd() {
  if (session_.phase() == ScanPhase::Failed) {
    const std::string reason = scanFailureText(session_.path(), session_.summary().failureText);
    leaveScan();
    showMessage("This folder cannot be scanned", reason);
    return;
  }
  scan_.setScanStatus(session_.status());
  scan_.treeChanged();
}

void MainWindow::prepareFrame() {
  session_.pacer().run([this] { return screen_->prepare(); });
}

void MainWindow::resize(int width, int height) {
  closeMenu();
  welcome_.setSize(width, height);
  scan_.setSize(width, height);
  dialogs_.setSize(width, height);
  pointerTarget_ = 0;
  updatePointer();
}

void MainWindow::updatePointer() {
  if (pointer_ && inputTarget().serial() != pointerTarget_) tellPointer();
  const bool covered = menu_ || !dialogs_.empty();
  window_.setPointer(covered ? ui::PointerShape::Arrow : screen_->pointer());
}

void MainWindow::openDialog(std::unique_ptr<ui::Dialog> dialog) {
  closeMenu();
  screen_->hide();  // nothing below is pressed or under the pointer while the dialog is open
  dialogs_.open(std::move(dialog));
  updatePointer();
}

void MainWindow::chooseFolder() {
  auto chooser = std::make_unique<FolderChooser>(style_, folderPlaces(), folderLister_);
  chooser->onChosen = [this](const std::string& path) { scanPath(path); };
  openDialog(std::move(chooser));
}

void MainWindow::openSettings() {
  auto dialog = std::make_unique<SettingsDialog>(connection_, style_, SettingsStore::instance());
  dialog->onSettingsChanged = [this] { applySettings(); };
  openDialog(std::move(dialog));
}

void MainWindow::showMeasureMenu(int x, int y) {
  openMenu(measureMenu(measure_.measure, [this](Command command) { perform(command); }), x, y);
}

void MainWindow::showApplicationMenu(int x, int y) {
  openMenu(applicationMenu(commandState(), [this](Command command) { perform(command); }), x, y);
}

void MainWindow::openMenu(std::vector<ui::MenuEntry> entries, int x, int y) {
  screen_->hide();  // nothing below is pressed or under the pointer while the menu is open
  menu_ = std::make_unique<ui::PopupMenu>(style_, std::move(entries));
  menu_->onChanged = [this] { window_.invalidate(); };
  menu_->onClosed = [this] { closeMenu(); };
  menu_->place(x, y, window_.width(), window_.height());
  updatePointer();
}

void MainWindow::closeMenu() {
  if (!menu_) return;
  menu_.reset();
  window_.invalidate();
}

void MainWindow::openMenuByKey() {
  const ui::Rect button = screen_->menuButton();
  showApplicationMenu(button.x, button.y + button.h);
  menu_->goToFirst();
}

void MainWindow::showMessage(const std::string& title, const std::string& text) {
  openDialog(std::make_unique<ui::MessageDialog>(connection_, style_, title, text, ui::okButton()));
}

void MainWindow::updateTitle() { window_.setTitle(windowTitle(session_.path())); }

ui::InputTarget& MainWindow::inputTarget() {
  if (menu_) return *menu_;
  if (ui::Dialog* dialog = dialogs_.top()) return *dialog;
  return *screen_;
}

void MainWindow::press(const ui::MouseEvent& event) {
  ui::InputTarget& target = inputTarget();
  // A quick second press belongs to what took the first one; a menu knows no double presses.
  if (event.clicks > 1 && !menu_ && target.serial() != pressTarget_) return;
  pressTarget_ = target.serial();
  target.press(event);
  updatePointer();
}

void MainWindow::motion(const ui::MouseEvent& event) {
  pointer_ = event;
  tellPointer();
  updatePointer();
}

void MainWindow::tellPointer() {
  ui::InputTarget& target = inputTarget();
  pointerTarget_ = target.serial();
  target.motion(*pointer_);
}

void MainWindow::release(const ui::MouseEvent& event) {
  inputTarget().release(event);
  updatePointer();
}

void MainWindow::wheel(const ui::MouseEvent& event, int dy) { inputTarget().wheel(event, dy); }

void MainWindow::leave() {
  pointer_.reset();
  screen_->leave();
  if (ui::Dialog* dialog = dialogs_.top()) dialog->leave();
  if (menu_) menu_->leave();
}

void MainWindow::key(const ui::KeyEvent& event) {
  handleKey(event);
  updatePointer();
}

void MainWindow::handleKey(const ui::KeyEvent& event) {
  const auto command = commandFor(event);
  const bool covered = menu_ || !dialogs_.empty();
  if (command && (!covered || command == Command::Close)) {
    perform(*command);
  } else if (menu_) {
    menu_->key(event);
  } else if (ui::Dialog* dialog = dialogs_.top()) {
    dialog->key(event);
  } else if (ui::key::plain(event.keysym) == ui::key::kEscape) {
    escape();
  } else {
    screen_->key(event);
  }
}

void MainWindow::escape() {
  if (!screen_->dismiss()) perform(Command::StopScan);
}

CommandState MainWindow::commandState() const {
  return {.scanShown = scanShown(),
          .scanning = session_.phase() == ScanPhase::Scanning,
          .canGoOut = scan_.focus().canGoOut()};
}

void MainWindow::perform(Command command) {
  if (!isEnabled(command, commandState())) return;
  switch (command) {
    case Command::LeaveScan:
      return showWelcome();
    case Command::StopScan:
      return stopScan();
    case Command::Rescan:
      return scanPath(session_.path());
    case Command::GoOut:
      return scan_.focus().goOut();
    case Command::GoToScannedFolder:
      return scan_.focus().go(sizewalk::kRootNode);
    case Command::GoToPrevious:
      return scan_.focus().goToPrevious();
    case Command::GoToNext:
      return scan_.focus().goToNext();
    case Command::CopyPath:
      return copyPath();
    case Command::ShowCurrentSize:
    case Command::ShowAddedLastMonth:
    case Command::ShowAddedLastSixMonths:
    case Command::ShowAddedSinceLastScan:
      return setMeasure(measureOf(command));
    case Command::OpenMenu:
      return openMenuByKey();
    case Command::OpenSettings:
      return openSettings();
    case Command::Close:
      return window_.close();
  }
}

void MainWindow::copyPath() {
  const std::shared_ptr<const sizewalk::FileTree> tree = session_.tree();
  const sizewalk::NodeId target = scan_.target();
  if (target < tree->nodeCount()) window_.setClipboardText(displayName(tree->path(target)));
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
  } else if (path == session_.path() && usage.totalBytes > 0) {
    scan_.setVolumeSpace(VolumeSpace{usage.usedBytes, usage.freeBytes});
  }
}

}  // namespace app
