#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "app/dialogs/folder_lister.h"
#include "app/frame/scan_screen.h"
#include "app/frame/volume_cards.h"
#include "app/frame/welcome_screen.h"
#include "app/model/capture_countdown.h"
#include "app/model/commands.h"
#include "app/model/kind_colours.h"
#include "app/model/measure.h"
#include "app/model/scan_session.h"
#include "sizewalk/volume_meter.h"
#include "ui/connection.h"
#include "ui/icon.h"
#include "ui/widgets/dialog_layer.h"
#include "ui/widgets/input_target.h"
#include "ui/widgets/popup_menu.h"
#include "ui/widgets/style.h"
#include "ui/window.h"

namespace app {

/// The application's one window and its coordinator: shows the welcome or a scan, hands input to
/// what is shown and the scan's results to the views. Window thread only.
class MainWindow {
 public:
  /// `connection` outlives the window. Nothing is seen before `create`.
  explicit MainWindow(ui::Connection& connection);
  /// Waits for no scan.
  ~MainWindow();
  MainWindow(const MainWindow&) = delete;
  MainWindow& operator=(const MainWindow&) = delete;

  /// Makes and shows the window, with the welcome view, and starts its tick. False when the X
  /// server refuses.
  bool create();
  /// Scans `path` and makes it the shown scan; one that runs is left. A path that cannot be
  /// scanned leads to the welcome view with a message over it.
  void scanPath(const std::string& path);
  /// Leaves the shown scan, stopping it if it runs, for the welcome view.
  void showWelcome();
  /// Writes one frame to `file` once `seconds` have passed and no scan runs, then ends the loop.
  void captureAfter(const std::string& file, double seconds);
  /// Handles events until the window is closed or a capture is done.
  void run() { window_.run(); }
  /// As `ui::Window::xid`.
  unsigned long xid() const { return window_.xid(); }

 private:
  void connectInput();
  void connectScreens();
  void connectSession();
  void applySettings();
  void show(Screen& screen);
  bool scanShown() const { return screen_ == &scan_; }

  void tick();
  void prepareFrame();
  void resize(int width, int height);
  /// The pointer's shape, and where it lies if that is news to what has the input by now.
  void updatePointer();
  void tellPointer();
  void updateTitle();
  /// The menu, dialog or screen that has the input.
  ui::InputTarget& inputTarget();
  void press(const ui::MouseEvent& event);
  void motion(const ui::MouseEvent& event);
  void release(const ui::MouseEvent& event);
  void wheel(const ui::MouseEvent& event, int dy);
  void leave();
  void key(const ui::KeyEvent& event);
  void handleKey(const ui::KeyEvent& event);
  void escape();
  void perform(Command command);
  CommandState commandState() const;
  void openDialog(std::unique_ptr<ui::Dialog> dialog);
  void chooseFolder();
  void stopScan();
  void openSettings();
  void showMessage(const std::string& title, const std::string& text);
  /// The menus hang from a place of the window.
  void showMeasureMenu(int x, int y);
  void showApplicationMenu(int x, int y);
  void openMenu(std::vector<ui::MenuEntry> entries, int x, int y);
  void closeMenu();
  void openMenuByKey();
  void copyPath();
  void setMeasure(Measure measure);

  /// The one door out of a shown scan: whatever replaces it, leaves it or closes the window is
  /// `next`, which is called as soon as nothing of that scan is pending, now or later.
  void settlePendingBefore(const std::function<void()>& next);
  // What lies behind that door.
  void startScan(const std::string& path);
  void leaveScan();

  void scanPathFound();
  /// Shows the scan to its end, or why there was none.
  void showScanEnd();
  void capture(const std::string& file);

  void refreshVolumes();
  void volumeMeasured(const std::string& path, const sizewalk::VolumeUsage& usage);

  ui::Connection& connection_;
  const ui::Style style_;
  ui::Icon icon_;
  KindColours colours_;
  MeasureSettings measure_;
  // Above what hands tasks to it, which ends first.
  ui::Window window_;
  /// Below the window, to which it posts.
  ScanSession session_;
  WelcomeScreen welcome_;
  ScanScreen scan_;
  /// What the window shows: one of the two above.
  Screen* screen_ = &welcome_;
  /// Above the dialogs: a chooser uses it to its end.
  FolderLister folderLister_;
  ui::DialogLayer dialogs_;
  /// Above the dialogs; null when none is open.
  std::unique_ptr<ui::PopupMenu> menu_;
  // Serial numbers of input targets, 0 for none.
  /// What took the last press.
  std::uint64_t pressTarget_ = 0;
  /// Where the pointer is in the window, if it is, and what was last told so.
  std::optional<ui::MouseEvent> pointer_;
  std::uint64_t pointerTarget_ = 0;
  sizewalk::VolumeMeter meter_;
  VolumeCards volumes_;
  std::int64_t nextVolumes_ = 0;  // when they are to be listed again, as `ui::Window::now` tells
  CaptureCountdown captureCountdown_;
};

/// "PATH — Heap Gauge · VERSION", without the path when it is empty. The path may be any bytes.
std::string windowTitle(const std::string& scanPath);

/// What to tell the user about a folder that could not be scanned.
std::string scanFailureText(const std::string& path, const std::string& reason);

/// What standard error says of a frame that could not be written.
std::string captureFailedMessage(const std::string& file);

}  // namespace app
