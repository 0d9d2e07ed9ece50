#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <memory>

#include "tests/support/other_client.h"
#include "tests/support/picture.h"
#include "tests/support/temp_directory.h"
#include "tests/support/x_server.h"
#include "ui/connection.h"
#include "ui/window.h"

namespace test {

/// A window on an X server that has nobody else on it, and a second client beside it.
class WindowOnServer {
 public:
  explicit WindowOnServer(const XServerOptions& options = {});

  /// Creates the window, shows it and runs its loop until it was painted.
  void show(int width = 200, int height = 100);
  /// Runs the loop until `condition`, which is asked every millisecond between events and repaint,
  /// holds. Replaces the window's tick. False after ten seconds.
  bool runUntil(const std::function<bool()>& condition);
  /// Runs the loop until every event that the server has sent so far was handled, and what follows
  /// from them painted.
  void settle();
  /// Paints one frame with `onPaint` and captures it.
  Picture paint(const std::function<void(ui::Canvas&)>& onPaint);
  Picture capture() const;

  XServer server;
  std::unique_ptr<ui::Connection> connection;
  ui::Window window;
  OtherClient other;
  TempDirectory directory;
};

class WindowTest : public ::testing::Test, protected WindowOnServer {
 protected:
  explicit WindowTest(const XServerOptions& options = {}) : WindowOnServer(options) {}
};

}  // namespace test
