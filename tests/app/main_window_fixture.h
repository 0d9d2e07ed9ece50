#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <exception>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "app/frame/frame_layout.h"
#include "app/frame/welcome_screen.h"
#include "app/main_window.h"
#include "app/map/cushion_shading.h"
#include "base/detached_threads.h"
#include "tests/app/held_folder.h"
#include "tests/app/own_mounts.h"
#include "tests/app/scan_end.h"
#include "tests/support/environment.h"
#include "tests/support/eventually.h"
#include "tests/support/other_client.h"
#include "tests/support/temp_directory.h"
#include "tests/support/x_server.h"
#include "ui/keys.h"

namespace app {

using test::eventually;
using test::HeldFolder;
using Pixels = std::vector<unsigned long>;

constexpr unsigned long kControl = 0xFFE3;
constexpr char kWelcomeTitle[] = "Heap Gauge · 1.1.1";

/// A user: a second client at the window. All that it looks at is what is on the screen.
class WindowUser {
 public:
  WindowUser(const FrameLayout& frame, const test::ScanEnd& end)
      : frame_(frame), window_(client.shownWindow("Heapgauge")), end_(end) {
    client.focus(window_);
  }

  void press(unsigned long keysym) {
    client.pressKey(keysym);
    client.releaseKey(keysym);
  }
  void pressWithControl(unsigned long keysym) {
    client.pressKey(kControl);
    press(keysym);
    client.releaseKey(kControl);
  }
  void click(int x, int y) {
    client.movePointer(x, y);
    client.pressButton(1);
    client.releaseButton(1);
  }
  void click(const ui::Rect& rect) { click(rect.x + rect.w / 2, rect.y + rect.h / 2); }
  void moveTo(const ui::Rect& rect) {
    client.movePointer(rect.x + rect.w / 2, rect.y + rect.h / 2);
  }
  void close() { client.sendProtocol(window_, "WM_DELETE_WINDOW"); }

  std::string title() { return client.textProperty(window_, "_NET_WM_NAME", "UTF8_STRING"); }
  bool comesToTitle(const std::string& text) {
    return eventually([&] { return title() == text; });
  }
  Pixels pixels(const ui::Rect& rect) {
    return client.screenPixels(window_, rect.x, rect.y, rect.w, rect.h);
  }
  unsigned long pixel(int x, int y) { return client.screenPixel(window_, x, y); }
  Pixels toolbar() { return pixels(frame_.toolbar); }
  /// The half that tells of the scan.
  Pixels status() {
    const ui::Rect& line = frame_.status;
    return pixels({line.x, line.y, line.w / 2, line.h});
  }
  Pixels map() { return pixels(frame_.map); }
  /// Of files: the blocks of folders in which there is nothing yet are flat.
  bool seesAMap() {
    const int x = frame_.map.x + frame_.map.w / 2;
    const int y = frame_.map.y + frame_.map.h / 2;
    return isMapAt(x, y) && pixel(x, y) != pixel(x, y + frame_.map.h / 3);
  }
  bool isMapAt(int x, int y) {
    const unsigned long seen = pixel(x, y);
    return seen != 0 && seen != kMapBackground && seen != (ui::kLightPalette.view & 0xFFFFFF);
  }
  /// The whole scan is shown, in the list and the tables too: the map may be ahead of them before.
  bool comesToTheEnd() {
    return eventually([&] { return end_.seenIn(pixel(end_.x, end_.y)); });
  }
  bool comesToTheWholeMap() { return comesToTheEnd() && comesToMap(); }
  /// A scan is seen to run.
  bool comesToAScan() {
    return eventually([&] { return pixel(end_.x, end_.y) == end_.ground; });
  }
  bool comesToMap() {
    return eventually([&] { return seesAMap(); });
  }
  /// The picture may be a refresh ahead of the tables beside it.
  bool comesToBeFilled(const ui::Rect& rect) {
    return eventually([&] {
      const Pixels seen = pixels(rect);
      return std::ranges::adjacent_find(seen, std::not_equal_to()) != seen.end();
    });
  }
  void moveOntoStatus() { client.movePointer(frame_.status.x + 5, frame_.status.y + 5); }
  unsigned long window() const { return window_; }
  const FrameLayout& frame() const { return frame_; }

  test::OtherClient client;

 private:
  const FrameLayout frame_;
  const unsigned long window_;
  const test::ScanEnd end_;
};

class MainWindowInputTest : public testing::Test {
 protected:
  explicit MainWindowInputTest(const test::XServerOptions& options = {.height = 960})
      : server_(options),
        connection_(ui::Connection::open()),
        style_(*connection_, ui::kLightPalette),
        window_(std::make_unique<MainWindow>(*connection_)) {
    if (!window_->create()) throw std::runtime_error("no window");
    test::writeFile(folder_ + "/a/song.mp3", std::string(200'000, 'x'));
    test::writeFile(folder_ + "/a/note.txt", std::string(100'000, 'x'));
    test::writeFile(folder_ + "/held/late.jpg", std::string(50'000, 'x'));
  }

  // What a scan that was left reads is still there while it does.
  ~MainWindowInputTest() override {
    window_.reset();
    EXPECT_TRUE(
        base::awaitDetachedThreads(std::chrono::steady_clock::now() + std::chrono::seconds(20)));
  }

  FrameLayout frame(int width = 1100, int height = 720) const {
    return layOutFrame({.width = connection_->scaled(width),
                        .height = connection_->scaled(height),
                        .scale = connection_->scale(),
                        .lineHeight = style_.lineHeight(),
                        .listAboveMap = false,
                        .showKinds = true,
                        .dividers = {}});
  }
  /// The first card of the welcome.
  ui::Rect firstCard() {
    ui::Icon icon;
    WelcomeScreen welcome(style_, icon);
    welcome.setRect({0, 0, 1100, 720});
    VolumeCards volumes([](const auto&) {});
    volumes.refresh();
    welcome.setCards(volumes.cards());
    return welcome.view().layout().cards.at(0).card;
  }

  ui::Rect firstKind() const {
    const ui::Rect& kinds = frame().kinds;
    return {kinds.x, kinds.y + style_.rowHeight(), kinds.w, style_.rowHeight()};
  }

  /// Runs the window until it ends while `act` does what a user does, on a thread of its own.
  void runWith(const std::function<void(WindowUser&)>& act) {
    const FrameLayout parts = frame();
    const test::ScanEnd end = test::ScanEnd::find();  // the fonts are not for two threads
    const std::jthread thread([&] {
      WindowUser user(parts, end);
      try {
        act(user);
      } catch (const std::exception& problem) {
        ADD_FAILURE() << problem.what();
      }
      user.close();
    });
    window_->run();
  }
  std::string titleOf(const std::string& folder) const { return folder + " — " + kWelcomeTitle; }

  test::PrivateHome home_;
  const test::OwnMounts mounts_;
  test::TempDirectory dir_;
  const std::string folder_ = dir_ / "folder";
  const test::XServer server_;
  std::unique_ptr<ui::Connection> connection_;
  const ui::Style style_;
  std::unique_ptr<MainWindow> window_;
};

}  // namespace app
