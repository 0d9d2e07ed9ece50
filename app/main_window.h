#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "app/actions/item_opener.h"
#include "app/actions/pending_deletes.h"
#include "app/dialogs/about_dialog.h"
#include "app/dialogs/sub_folder_reader.h"
#include "app/frame/pending_questions.h"
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
#include "ui/widgets/dialog.h"
#include "ui/widgets/input_stack.h"
#include "ui/widgets/menu_entry.h"
#include "ui/widgets/style.h"
#include "ui/window.h"

namespace app {

/// The application's one window and its coordinator: shows the welcome or a scan, hands input to
/// what is shown and the scan's results to the views. Window thread only.
class MainWindow {
 public:
  /// `connection` outlives the window. Nothing is seen before `create`.
  explicit MainWindow(ui::Connection& connection);
  /// Waits for no scan and for no answer.
  ~MainWindow();
  MainWindow(const MainWindow&) = delete;
  MainWindow& operator=(const MainWindow&) = delete;

  /// As `ui::Window::follow`.
  void follow(ui::StartupNotification& startup) { window_.follow(startup); }
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
  /// Asks once in the run of the program whether there is a newer version, if the user allows that,
  /// and tells of it in a line of the window when there is.
  void checkForUpdates();
  /// Handles events until the window is closed or a capture is done.
  void run() { window_.run(); }
  /// As `ui::Window::xid`.
  unsigned long xid() const { return window_.xid(); }
  /// For who watches what it is asked to do and to paint. Its callables go on being called.
  ui::Window& window() { return window_; }

 private:
  void connectInput();
  void connectScreens();
  void connectSession();
  void connectActions();
  void applySettings();
  void show(Screen& screen);
  bool scanShown() const { return screen_ == &scanScreen_; }

  void tick();
  void prepareFrame();
  void resize(int width, int height);
  void updateTitle();
  void key(const ui::KeyEvent& event);
  void perform(const Command& command);
  CommandState commandState() const;
  void chooseFolder();
  void stopScan();
  void openSettings();
  void showAbout();
  /// Has what tells of updates say what is known by now.
  void showUpdate();
  void openLink(const std::string& address);
  void showMessage(const std::string& title, const std::string& text);
  // The menus hang from a place of the window.
  void showMetricMenu(int x, int y, Command::By by);
  void showApplicationMenu(int x, int y, Command::By by);
  void openMenu(std::vector<ui::MenuEntry> entries, int x, int y, Command::By by);
  void showContextMenu(sizewalk::NodeId node, int x, int y, Command::By by);
  void setMeasure(Measure measure);

  /// The path of the item that the command is about; empty without one.
  std::string pathFor(const Command& command) const;
  void copyPath(const std::string& path);
  void readAgain(sizewalk::NodeId folder);
  void moveToTrash(const Command& command);
  void putBackLast();
  /// Something was taken out of the tree or put back.
  void pendingChanged();
  void advancePending();

  /// The one door out of a shown scan: whatever replaces it, leaves it or closes the window is
  /// `next`, which is called as soon as nothing of that scan is pending, now or later.
  void settlePendingBefore(const std::function<void()>& next);
  void closeWindow();
  // What lies behind that door.
  void startScan(const std::string& path);
  void startScanAgain(const std::string& path);
  void showScan();
  void leaveScan();

  void scanPathFound();
  /// Shows the scan to its end, and what broke it off; leaves one that has found nothing.
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
  WelcomeScreen welcomeScreen_;
  ScanScreen scanScreen_;
  /// What the window shows: one of the two above.
  Screen* screen_ = &welcomeScreen_;
  /// Above what it is used in: a chooser uses it to its end.
  SubFolderReader subFolderReader_;
  ItemOpener opener_;
  PendingDeletes pending_;
  /// Above the dialogs that it opens.
  PendingQuestions questions_;
  ui::InputStack input_;
  /// The About box while it is open.
  std::weak_ptr<AboutDialog> about_;
  bool updateDismissed_ = false;
  /// When the countdown of what waits was last advanced.
  std::chrono::steady_clock::time_point pendingAdvanced_ = std::chrono::steady_clock::now();
  sizewalk::VolumeMeter meter_;
  VolumeCards volumes_;
  std::int64_t nextVolumes_ = 0;  // when they are to be listed again, as `ui::steadyMs` tells
  CaptureCountdown captureCountdown_;
};

/// "PATH — Heap Gauge · VERSION", without the path when it is empty. The path may be any bytes.
std::string windowTitle(const std::string& scanPath);

/// What to tell the user about a folder that could not be scanned.
std::string scanFailureText(const std::string& path, const std::string& reason);

/// What to tell the user when the desktop's program is not there.
std::string programMissingText(const std::string& program);

/// What to tell the user when a folder would be opened with this very program.
std::string noFileManagerText();

/// What standard error says of a frame that could not be written.
std::string captureFailedMessage(const std::string& file);

}  // namespace app
