#include "app/main_window.h"

#include <cstdio>
#include <ctime>
#include <initializer_list>
#include <optional>
#include <utility>

#include "app/actions/trash.h"
#include "app/actions/update_answer.h"
#include "app/actions/update_check.h"
#include "app/actions/web_address.h"
#include "app/dialogs/folder_chooser.h"
#include "app/dialogs/folder_places.h"
#include "app/dialogs/settings_dialog.h"
#include "app/frame/pending_rows.h"
#include "app/menus.h"
#include "app/model/format.h"
#include "app/model/product.h"
#include "app/model/settings.h"
#include "app/model/settings_store.h"
#include "sizewalk/mount_table.h"
#include "ui/steady_clock.h"
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

bool isOn(const Setting& setting) { return SettingsStore::instance().get(setting); }
}  // namespace

std::string windowTitle(const std::string& scanPath) {
  const std::string base = std::string(kProductName) + " · " + kProductVersion;
  return scanPath.empty() ? base : displayName(scanPath) + " — " + base;
}

std::string scanFailureText(const std::string& path, const std::string& reason) {
  return readablePath(path) + " - " + reason;
}

std::string programMissingText(const std::string& program) {
  return "The program “" + program + "”, which opens things for the desktop, was not found.";
}

std::string noFileManagerText() {
  return "The desktop opens folders with " + std::string(kProductName) +
         ", and no file manager answered. Install one, or choose another program for folders.";
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
      welcomeScreen_(style_, icon_),
      scanScreen_(connection, style_, colours_,
                  [this](ui::Task task) { window_.post(std::move(task)); }),
      subFolderReader_([this](ui::Task task) { window_.post(std::move(task)); }),
      opener_([this](ui::Task task) { window_.post(std::move(task)); }),
      pending_(identify),
      questions_(connection_, style_, pending_,
                 [this](std::unique_ptr<ui::Overlay> dialog) { input_.open(std::move(dialog)); }),
      meter_([this](const std::string& path, const sizewalk::VolumeUsage& usage) {
        window_.post([this, path, usage] { volumeMeasured(path, usage); });
      }),
      volumes_([this](const std::vector<std::string>& paths) { meter_.measure(paths); }) {
  connectScreens();
  connectSession();
  connectActions();
  connectInput();
  applySettings();
}

void MainWindow::connectScreens() {
  welcomeScreen_.onChanged = [this] { window_.requestFrame(); };
  welcomeScreen_.onVolume = [this](const std::string& path) { scanPath(path); };
  welcomeScreen_.onChooseFolder = [this] { chooseFolder(); };
  scanScreen_.onChanged = [this] { window_.requestFrame(); };
  input_.onChanged = [this] { window_.requestFrame(); };
  welcomeScreen_.onCommand = [this](const Command& command) { perform(command); };
  scanScreen_.onCommand = [this](const Command& command) { perform(command); };
}

void MainWindow::connectSession() {
  session_.onPathFound = [this] { scanPathFound(); };
  session_.onGrown = [this] { scanScreen_.treeChanged(); };
  scanScreen_.onMapPartSent = [this](auto took) { session_.pacer().pauseAfter(took); };
  session_.onEnded = [this] { showScanEnd(); };
}

void MainWindow::connectActions() {
  opener_.onMissing = [this](const std::string& program) {
    showMessage("Nothing was opened", programMissingText(program));
  };
  opener_.onNoFileManager = [this] { showMessage("Nothing was opened", noFileManagerText()); };
  opener_.onFailed = [this] {
    showMessage("Nothing was opened", "No other program could be started just now.");
  };
  pending_.trash = [](const PendingDelete& item, const ItemIdentity& identity, std::string* error) {
    return app::moveToTrash(item.path, identity, error);
  };
  pending_.changed = [this] { pendingChanged(); };
  pending_.failed = [this](const std::string& path, const std::string& error) {
    questions_.failed(path, error);
  };
  scanScreen_.onContextMenu = [this](sizewalk::NodeId node, int x, int y, Command::By by) {
    showContextMenu(node, x, y, by);
  };
  for (Screen* screen : std::initializer_list<Screen*>{&welcomeScreen_, &scanScreen_}) {
    screen->onDownload = [this] {
      if (const auto update = UpdateCheck::instance().available()) {
        openLink(downloadAddress(*update));
      }
    };
    screen->onDismissUpdate = [this] {
      updateDismissed_ = true;
      showUpdate();
    };
  }
  scanScreen_.onUndelete = [this](std::uint64_t id) { pending_.undeleteItem(id); };
  scanScreen_.onUndeleteAll = [this] { pending_.undeleteAll(); };
  scanScreen_.onDeleteNow = [this] { questions_.confirmDeleteNow(); };
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
  // Closing takes the same door as everything else that leaves a scan, and perhaps a while there.
  window_.onCloseQuery = [this] {
    closeWindow();
    return false;
  };
}

void MainWindow::applySettings() {
  measure_.physicalSize = isOn(setting::kShowPhysicalFileSize);
  scanScreen_.setMeasure(measure_);
  scanScreen_.setSettings(ScanScreenSettings::of(SettingsStore::instance()));
  showUpdate();
}

MainWindow::~MainWindow() { UpdateCheck::instance().forgetCallback(); }

bool MainWindow::create() {
  if (!window_.create(windowTitle({}), connection_.scaled(kWidth), connection_.scaled(kHeight))) {
    return false;
  }
  window_.setClass("heapgauge", "Heapgauge");
  window_.setMinSize(connection_.scaled(kMinWidth), connection_.scaled(kMinHeight));
  resize(window_.width(), window_.height());
  window_.setTick(kTickMs, [this] { tick(); });
  show(welcomeScreen_);
  window_.show();
  return true;
}

void MainWindow::show(Screen& screen) {
  screen_ = &screen;
  input_.show(screen);
  if (&screen == &welcomeScreen_) {
    welcomeScreen_.arrive();
    refreshVolumes();
  }
  updateTitle();
}

void MainWindow::settlePendingBefore(const std::function<void()>& next) {
  questions_.settleBefore(next);
}

/// What could not be trashed is still told of.
void MainWindow::closeWindow() {
  settlePendingBefore([this] { questions_.afterFailures([this] { window_.quit(); }); });
}

void MainWindow::scanPath(const std::string& path) {
  settlePendingBefore([this, path] { startScan(path); });
}

void MainWindow::startScan(const std::string& path) {
  session_.start(path);
  scanScreen_.show(session_.tree());
  showScan();
}

/// Where the user was is found again as the scan goes on.
void MainWindow::startScanAgain(const std::string& path) {
  session_.start(path);
  scanScreen_.showAgain(session_.tree());
  showScan();
}

void MainWindow::showScan() {
  pending_.setTree(session_.treeToChange());
  scanScreen_.setScanStatus(session_.status());
  meter_.measure({session_.path()});
  show(scanScreen_);
}

void MainWindow::showWelcome() {
  settlePendingBefore([this] { leaveScan(); });
}

void MainWindow::leaveScan() {
  session_.leave();
  pending_.setTree(nullptr);
  scanScreen_.show(nullptr);
  show(welcomeScreen_);
}

void MainWindow::stopScan() {
  session_.stop();
  scanScreen_.setScanStatus(session_.status());
}

void MainWindow::captureAfter(const std::string& file, double seconds) {
  captureCountdown_.start(file, seconds);
}

void MainWindow::tick() {
  session_.follow();
  advancePending();
  questions_.tick();
  const std::int64_t now = ui::steadyMs();
  if (!scanShown() && now >= nextVolumes_) refreshVolumes();
  input_.tick(now);
  if (const auto file = captureCountdown_.tick(session_.underWay())) {
    scanScreen_.showAllInNextFrame();
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
  scanScreen_.setScanStatus(session_.status());
  scanScreen_.treeChanged();
  // What was found stays, and with it what waits to be deleted.
  if (session_.summary().failure != 0) {
    showMessage("This folder was not read to the end",
                scanFailureText(session_.path(), session_.summary().failureText));
  }
}

void MainWindow::prepareFrame() {
  session_.pacer().run([this] { return input_.prepare(); });
  ui::Damage damage;
  input_.collectDamage(&damage);
  for (const ui::Rect& part : damage.within({0, 0, window_.width(), window_.height()})) {
    window_.invalidate(part);
  }
}

void MainWindow::resize(int width, int height) {
  welcomeScreen_.setRect({0, 0, width, height});
  scanScreen_.setRect({0, 0, width, height});
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

void MainWindow::checkForUpdates() {
  UpdateCheck::instance().check(
      [this](const UpdateAvailable& /*update*/) { window_.post([this] { showUpdate(); }); });
}

void MainWindow::showUpdate() {
  const auto update = UpdateCheck::instance().available();
  const auto notice =
      update ? std::optional(updateNotice(*update, std::time(nullptr))) : std::nullopt;
  const bool told = notice && !updateDismissed_;
  const auto message = told ? std::optional(notice->message) : std::nullopt;
  welcomeScreen_.setUpdate(message);
  scanScreen_.setUpdate(message);
  if (const auto about = about_.lock()) about->setUpdate(notice);
}

void MainWindow::showAbout() {
  auto dialog = std::make_unique<AboutDialog>(connection_, style_);
  // Lives as long as the dialog, which holds it.
  const std::shared_ptr<AboutDialog> open(std::make_shared<int>(), dialog.get());
  dialog->onLink = [this, open = std::static_pointer_cast<const void>(open)](
                       const std::string& address) { openLink(address); };
  about_ = open;
  input_.open(std::move(dialog));
  checkForUpdates();
  showUpdate();
}

void MainWindow::openLink(const std::string& address) {
  if (isWebAddress(address)) {
    opener_.open(address);
  } else {
    showMessage("Nothing was opened", "This is no address of the web.");
  }
}

void MainWindow::showMetricMenu(int x, int y, Command::By by) {
  const auto run = [this](const Command& command) { perform(command); };
  openMenu(measureMenu(measure_.measure, run), x, y, by);
}

void MainWindow::showApplicationMenu(int x, int y, Command::By by) {
  const auto run = [this](const Command& command) { perform(command); };
  openMenu(applicationMenu(commandState(), run), x, y, by);
}

void MainWindow::showContextMenu(sizewalk::NodeId node, int x, int y, Command::By by) {
  const auto run = [this](const Command& command) { perform(command); };
  const Selection& selection = scanScreen_.selection();
  const bool several = selection.size() > 1 && selection.contains(node);
  const auto selected = static_cast<std::int64_t>(selection.size());
  if (several) {
    // Its one entry deletes: it takes a key of its own to get there.
    openMenu(selectionMenu(selected, run), x, y, Command::By::Pointer);
  } else {
    openMenu(contextMenu(node, commandState(), run), x, y, by);
  }
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

void MainWindow::updateTitle() { window_.setTitle(windowTitle(session_.path())); }

/// The view with the keyboard comes first; closing works whatever is open.
void MainWindow::key(const ui::KeyEvent& event) {
  const auto command = commandFor(event);
  const bool closes = command && command->action == Action::Close;
  if (!closes && input_.key(event)) return;
  if (command) perform(*command);
}

CommandState MainWindow::commandState() const {
  return {.scanShown = scanShown(),
          .scanning = session_.phase() == ScanPhase::Scanning,
          .stopping = session_.phase() == ScanPhase::Stopping,
          .canGoOut = scanScreen_.focus().canGoOut()};
}

void MainWindow::perform(const Command& command) {
  if (!isEnabled(command, commandState())) return;
  switch (command.action) {
    case Action::LeaveScan:
      return showWelcome();
    case Action::StopScan:
      return stopScan();
    case Action::Rescan:
      return settlePendingBefore([this, path = session_.path()] { startScanAgain(path); });
    case Action::GoOut:
      return scanScreen_.focus().goOut();
    case Action::GoToScannedFolder:
      return scanScreen_.focus().go(sizewalk::kRootNode);
    case Action::GoToPrevious:
      return scanScreen_.focus().goToPrevious();
    case Action::GoToNext:
      return scanScreen_.focus().goToNext();
    case Action::GoTo:
      return scanScreen_.focus().go(command.target.value_or(sizewalk::kRootNode));
    case Action::CopyPath:
      return copyPath(pathFor(command));
    case Action::Open:
      return opener_.open(pathFor(command));
    case Action::ShowInFiles:
      return opener_.showInFiles(pathFor(command));
    case Action::RescanFolder:
      return readAgain(command.target.value_or(sizewalk::kRootNode));
    case Action::MoveToTrash:
      return moveToTrash(command);
    case Action::PutBackLast:
      return putBackLast();
    case Action::ShowMeasure:
      return setMeasure(command.measure);
    case Action::OpenMeasureMenu: {
      const ui::Rect button = scanScreen_.measureButton();
      return showMetricMenu(button.x, button.y + button.h, command.by);
    }
    case Action::OpenApplicationMenu: {
      const ui::Rect button = screen_->menuButton();
      return showApplicationMenu(button.x, button.y + button.h, command.by);
    }
    case Action::OpenSettings:
      return openSettings();
    case Action::ShowAbout:
      return showAbout();
    case Action::Close:
      return window_.close();
  }
}

std::string MainWindow::pathFor(const Command& command) const {
  const std::shared_ptr<const sizewalk::FileTree> tree = session_.tree();
  const sizewalk::NodeId node = command.target.value_or(scanScreen_.target());
  return tree && node < tree->nodeCount() ? tree->path(node) : std::string();
}

void MainWindow::copyPath(const std::string& path) {
  if (!path.empty()) window_.setClipboardText(displayName(path));
}

void MainWindow::readAgain(sizewalk::NodeId folder) {
  const std::shared_ptr<const sizewalk::FileTree> tree = session_.tree();
  if (!tree->isVisible(folder) || !tree->isDirectory(folder)) return;
  // What waits inside could not be put back into contents that are forgotten.
  questions_.settleWithin(tree->path(folder), [this, tree, folder] {
    if (session_.tree() != tree || session_.underWay()) return;
    scanScreen_.rememberPlace();
    session_.readAgain(folder);
    scanScreen_.setScanStatus(session_.status());
    scanScreen_.treeChanged();
  });
}

void MainWindow::moveToTrash(const Command& command) {
  // What passed before does not count for what is added now, however long a move took just now.
  advancePending();
  pendingAdvanced_ = std::chrono::steady_clock::now();
  pending_.add(scanScreen_.selection().nodesFor(command.target));
}

void MainWindow::putBackLast() {
  if (!pending_.empty()) pending_.undelete(pending_.size() - 1);
}

void MainWindow::pendingChanged() {
  scanScreen_.setPending(pendingRows(pending_));
  if (session_.tree()) scanScreen_.treeChanged();
}

void MainWindow::advancePending() {
  const auto now = std::chrono::steady_clock::now();
  const auto elapsed =
      std::chrono::duration_cast<std::chrono::milliseconds>(now - pendingAdvanced_);
  pendingAdvanced_ = now;
  if (pending_.empty()) return;
  pending_.tick(elapsed.count());
  scanScreen_.setPending(pendingRows(pending_));
}

void MainWindow::setMeasure(Measure measure) {
  measure_.measure = measure;
  scanScreen_.setMeasure(measure_);
}

void MainWindow::refreshVolumes() {
  nextVolumes_ = ui::steadyMs() + kVolumesMs;
  volumes_.refresh();
  welcomeScreen_.setCards(volumes_.cards());
}

void MainWindow::volumeMeasured(const std::string& path, const sizewalk::VolumeUsage& usage) {
  volumes_.measured(path, usage);
  if (!scanShown()) {
    welcomeScreen_.setCards(volumes_.cards());
  } else if (path == session_.path() && usage.totalBytes > 0) {
    const bool whole = sizewalk::isMountPoint(sizewalk::readMounts(), path);
    scanScreen_.setVolumeSpace(VolumeSpace{usage.usedBytes, usage.freeBytes, whole});
  }
}

}  // namespace app
