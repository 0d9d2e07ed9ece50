#pragma once

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "tests/support/child.h"
#include "tests/support/other_client.h"
#include "tests/support/temp_directory.h"
#include "tests/support/x_server.h"

namespace test {

/// 960 lines at 96 dpi are 254 mm to the line, so that the interface scale is exactly 1.
inline const XServerOptions kPlainScreen = {.height = 960};

/// The light ground of the welcome view and of lists, 0xRRGGBB, as it is and dimmed by a dialog.
inline constexpr unsigned long kGround = 0xFFFFFF;
inline constexpr unsigned long kDimmed = 0x999999;

/// What standard error says of a lost server, and no more than that.
inline constexpr char kLostServer[] = "Lost the connection to the X server.\n";

/// The built program and its arguments.
std::vector<std::string> programWith(std::vector<std::string> arguments);

/// One run of the program, to its end.
struct Outcome {
  explicit Outcome(const std::vector<std::string>& arguments);
  TempDirectory dir;
  int status = -2;     // -2 when it does not end
  double seconds = 0;  // from its start to its end
  std::string output;
  std::string errors;
};

/// The program while it runs, with its window shown, and a second client beside it.
class Running {
 public:
  explicit Running(const std::vector<std::string>& arguments = {});

  OtherClient& client() { return *client_; }
  /// Kills the server, which was started anew for the test. The second client leaves it before:
  /// from then on there is the process and its errors, and nothing else here may be asked for.
  void loseServer(const XServer& server);
  /// Whether the program has the file or folder `path` open, which is named as the kernel does.
  bool hasOpen(const std::string& path) const;
  Child& process() { return child_; }
  unsigned long window() const { return window_; }
  /// The title for today's window managers, and the one for old ones.
  std::string title() { return client_->textProperty(window_, "_NET_WM_NAME", "UTF8_STRING"); }
  std::string plainTitle() { return client_->textProperty(window_, "WM_NAME", "STRING"); }
  /// Least width and height as the window manager is told.
  std::pair<unsigned long, unsigned long> leastSize();
  /// The colour on the screen at a place of the window, 0xRRGGBB.
  unsigned long pixel(int x, int y) { return client_->screenPixel(window_, x, y); }
  /// Waits until the window shows all of a scan. Whoever presses keys or buttons in one waits for
  /// that first, or for the scan to hang: the map may be ahead of the list.
  bool comesToTheEndOfItsScan();
  /// Presses a key and lets it go.
  void key(unsigned long keysym);
  /// The same while Control is held.
  void ctrlKey(unsigned long keysym);
  /// Presses the left button at a place of the window and lets it go.
  void click(int x, int y);
  /// Presses the close button; the exit status, -2 when the program does not end.
  int close();
  std::string errors() const { return readFile(dir_ / "errors"); }

 private:
  TempDirectory dir_;
  Child child_;
  std::unique_ptr<OtherClient> client_ = std::make_unique<OtherClient>();
  unsigned long window_;
};

}  // namespace test
