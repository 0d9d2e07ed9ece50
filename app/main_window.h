#pragma once

#include <string>

#include "app/capture_countdown.h"
#include "app/kind_colours.h"
#include "app/refresh_pacer.h"
#include "app/scan_controller.h"
#include "app/treemap_picture.h"
#include "ui/connection.h"
#include "ui/window.h"

namespace app {

/// The application's one window and its coordinator: hands the scan's results to the views, and
/// what the user does to those who act on it. Window thread only.
class MainWindow {
 public:
  /// `connection` outlives the window. Nothing is seen before `create`.
  explicit MainWindow(ui::Connection& connection);
  MainWindow(const MainWindow&) = delete;
  MainWindow& operator=(const MainWindow&) = delete;

  /// Makes and shows the window and starts its tick. False when the X server refuses.
  bool create();
  /// Scans `path` and makes it the shown scan; a scan that runs is stopped. A path that cannot be
  /// scanned is reported on standard error.
  void scanPath(const std::string& path);
  /// Writes one frame to `file` once `seconds` have passed and no scan runs, then ends the loop.
  void captureAfter(const std::string& file, double seconds);
  /// Handles events until the window is closed or a capture is done.
  void run() { window_.run(); }

 private:
  void tick();
  /// Makes the map's picture anew if need be, so that painting only copies it.
  void prepareFrame();
  void resize(int width, int height);
  /// Marks the map when a running scan has found more.
  void followScan();
  /// Shows the end of the current scan, once; does nothing while it runs.
  void showScanEnd();
  void capture(const std::string& file);
  void updateTitle();
  void invalidateMap();

  ui::Connection& connection_;
  KindColours colours_;
  ui::Window window_;
  TreemapPicture map_;
  RefreshPacer pacer_;
  CaptureCountdown captureCountdown_;
  sizewalk::NodeId shownNodes_ = 0;  // nodes that were published when the map was last marked
  bool scanShown_ = false;
  bool endShown_ = false;  // the end of the shown scan has reached the views
  /// Last: its threads post to the window, so they end before the window does.
  ScanController controller_;
};

/// The window's title for the shown scan's path, or for none when it is empty.
std::string windowTitle(const std::string& scanPath);

/// What to tell the user of a folder that cannot be scanned: "PATH - No such file or directory".
std::string scanFailureText(const std::string& path, const std::string& reason);

/// For standard error when a capture cannot be written to `file`; the exit status stays 0.
std::string captureFailedMessage(const std::string& file);

}  // namespace app
