// Frames paint only what has changed. Under a user who does anything at random the window is to
// show at any time what it would show if each frame painted all of it.

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <memory>
#include <optional>
#include <random>
#include <semaphore>
#include <stdexcept>
#include <string>
#include <vector>

#include "tests/app/main_window_fixture.h"
#include "tests/app/whole_frame_watch.h"

namespace app {
namespace {

constexpr std::chrono::seconds kTurnDeadline{20};
constexpr unsigned long kShift = 0xFFE1;

/// Files of several kinds and sizes in folders of several depths, more than a list has room for.
void fillFolder(const std::string& folder) {
  const char* const kinds[] = {".jpg", ".mp3", ".txt", ".zip", ".cpp", ""};
  for (std::size_t i = 0; i < 60; ++i) {
    const std::string place = folder + "/d" + std::to_string(i % 7) +
                              (i % 3 == 0 ? "/inner" + std::to_string(i % 2) : "");
    test::writeFile(place + "/file " + std::to_string(i) + kinds[i % std::size(kinds)],
                    std::string(2000 + i * i * 40, 'x'));
  }
  test::writeFile(folder + "/held/late.jpg", std::string(90'000, 'x'));
}

/// Does one thing after the other, each of which the window has answered before the next.
class RandomUser {
 public:
  RandomUser(WindowUser& user, MainWindow& window, test::WholeFrameWatch& watch, std::string folder,
             double scale, unsigned seed)
      : user_(user),
        client_(user.client),
        window_(window),
        watch_(watch),
        folder_(std::move(folder)),
        scale_(scale),
        random_(seed) {}

  void act(int steps) {
    rescan();
    for (int i = 0; i < steps; ++i) {
      keepToTheFolder();
      step();
    }
    held_.reset();
  }

 private:
  int upTo(int most) { return static_cast<int>(random_() % static_cast<unsigned>(most)); }
  bool oneIn(int times) { return upTo(times) == 0; }

  void step() {
    const int kind = upTo(100);
    if (kind < 45) return movePointer();
    if (kind < 58) return click();
    if (kind < 64) return wheel();
    if (kind < 84) return pressAnyKey();
    if (kind < 88) return drag();
    if (kind < 90) return resize();
    if (kind < 92) return leave();
    if (kind < 94) return openSomething();
    if (kind < 97) return removeOrPutBack();
    if (kind < 99) return rescan();
    rest();
  }

  /// Waits until the window has handled what it was sent, and has painted what came of it.
  void turn() {
    for (int i = 0; i < 2; ++i) {
      window_.window().post([this] { turned_.release(); });
      if (!turned_.try_acquire_for(kTurnDeadline)) throw std::runtime_error("no answer");
    }
  }
  void did(const std::string& what) {
    window_.window().post([this, what] { watch_.note(what); });
    turn();
  }

  /// Nothing is to be done to other folders of the machine, nor to the list of its disks.
  void keepToTheFolder() {
    if (user_.title().starts_with(folder_)) return;
    turn();
    if (user_.title().starts_with(folder_)) return;
    press(ui::key::kEscape);
    window_.window().post([this] { window_.scanPath(folder_); });
    did("back to the folder");
    if (!eventually([&] { return user_.title().starts_with(folder_); })) {
      throw std::runtime_error("not in the folder");
    }
  }

  void moveTo(int x, int y) {
    x_ = x;
    y_ = y;
    client_.movePointer(x, y);
    did("motion " + std::to_string(x) + ", " + std::to_string(y));
  }
  void movePointer() {
    // Often to a neighbour, as hands do it.
    if (!oneIn(3)) {
      const int reach = scaled(60);
      return moveTo(std::max(0, x_ + upTo(2 * reach) - reach),
                    std::max(0, y_ + upTo(2 * reach) - reach));
    }
    const FrameLayout& frame = user_.frame();
    const ui::Rect parts[] = {frame.map,     frame.list,   frame.kinds,
                              frame.toolbar, frame.status, {0, 0, width_, height_}};
    const ui::Rect& part = parts[static_cast<std::size_t>(upTo(std::size(parts)))];
    moveTo(part.x + upTo(part.w), part.y + upTo(part.h));
  }
  void click() {
    movePointer();
    const unsigned button = oneIn(4) ? 3 : 1;
    const bool ctrl = oneIn(5);
    if (ctrl) client_.pressKey(kControl);
    for (int i = oneIn(5) ? 2 : 1; i > 0; --i) {
      client_.pressButton(button);
      client_.releaseButton(button);
    }
    if (ctrl) client_.releaseKey(kControl);
    did("button " + std::to_string(button));
  }
  void wheel() {
    const unsigned button = oneIn(2) ? 4 : 5;
    for (int i = upTo(4); i >= 0; --i) {
      client_.pressButton(button);
      client_.releaseButton(button);
    }
    did("wheel " + std::to_string(button));
  }
  void press(unsigned long keysym) {
    user_.press(keysym);
    did("key " + std::to_string(keysym));
  }
  void pressAnyKey() {
    using namespace ui::key;
    const unsigned long keys[] = {kUp,  kDown, kDown,      kLeft,   kRight, kRight,   kHome,
                                  kEnd, kTab,  kPageUp,    kReturn, kMenu,  kF10,     kEscape,
                                  kTab, 'd',   kBackSpace, ' ',     'f',    kPageDown};
    const bool shift = oneIn(4);
    if (shift) client_.pressKey(kShift);
    press(keys[static_cast<std::size_t>(upTo(std::size(keys)))]);
    if (shift) client_.releaseKey(kShift);
  }
  void drag() {
    const FrameLayout& frame = user_.frame();
    const ui::Rect& line = oneIn(2) ? frame.mainDivider : frame.kindsDivider;
    if (oneIn(2)) moveTo(line.x + line.w / 2, line.y + line.h / 2);
    client_.pressButton(1);
    for (int i = 0; i < 3; ++i) movePointer();
    if (oneIn(3)) press(ui::key::kEscape);
    client_.releaseButton(1);
    did("drag");
  }
  void resize() {
    width_ = scaled(640 + upTo(600));
    height_ = scaled(420 + upTo(400));
    client_.resizeWindow(user_.window(), width_, height_);
    did("size " + std::to_string(width_) + " x " + std::to_string(height_));
  }
  void leave() { moveTo(scaled(1275), scaled(955)); }
  void openSomething() {
    switch (upTo(3)) {
      case 0:
        return press(ui::key::kF1);
      case 1:
        user_.pressWithControl(',');
        return did("settings");
      default:
        user_.pressWithControl(static_cast<unsigned long>('1' + upTo(4)));
        return did("another measure");
    }
  }
  void removeOrPutBack() {
    if (oneIn(2)) return press(ui::key::kDelete);
    user_.pressWithControl('z');
    did("put back");
  }
  /// Every other scan stays in the middle for a while.
  void rescan() {
    fillFolder(folder_);
    const bool hold = !held_;
    held_.reset();
    if (hold) held_.emplace("held");
    press(ui::key::kF5);
  }
  /// The card comes, or a ring goes on; nothing need.
  void rest() {
    for (int i = 0; i < 3; ++i) moveTo(x_ + 1, y_);
    const auto until = std::chrono::steady_clock::now() + std::chrono::milliseconds(600);
    while (std::chrono::steady_clock::now() < until) turn();
    did("rest");
  }
  int scaled(int length) const { return ui::scaled(length, scale_); }

  WindowUser& user_;
  test::OtherClient& client_;
  MainWindow& window_;
  test::WholeFrameWatch& watch_;
  const std::string folder_;
  const double scale_;
  std::mt19937 random_;
  std::binary_semaphore turned_{0};
  std::optional<HeldFolder> held_;
  int x_ = 0;
  int y_ = 0;
  int width_ = scaled(1100);
  int height_ = scaled(720);
};

/// No other program can be started, and no server of updates is there.
struct NothingOutside {
  explicit NothingOutside(const std::string& emptyFolder) {
    environment.set("PATH", emptyFolder);
    environment.set("HEAPGAUGE_UPDATE_URL", "http://127.0.0.1:9/");
  }
  test::ScopedEnvironment environment;
};

/// Ends the loop without the questions that closing asks.
struct Quit {
  ui::Window& window;
  ~Quit() {
    window.post([&quit = window] { quit.quit(); });
  }
};

class WholeFrames : public MainWindowInputTest {
 protected:
  explicit WholeFrames(const test::XServerOptions& options = {.height = 960})
      : MainWindowInputTest(options), outside_(dir_ / "nothing") {}

  void actAtRandom(unsigned seed, int steps) {
    fillFolder(folder_);
    test::WholeFrameWatch watch(*connection_, window_->window(), 3);
    window_->scanPath(folder_);
    runWith([&](WindowUser& user) {
      const Quit atTheEnd{window_->window()};
      RandomUser(user, *window_, watch, folder_, connection_->scale(), seed).act(steps);
    });
    watch.compare();
    for (const std::string& difference : watch.differences()) ADD_FAILURE() << difference;
    EXPECT_GT(watch.compared(), steps / 10);
    EXPECT_GT(watch.partial(), steps / 10) << "most of what is done changes little";
  }

 private:
  NothingOutside outside_;
};

TEST_F(WholeFrames, AreSeenWhateverTheUserDoes) { actAtRandom(1, 1200); }

class WholeFramesOnDenseScreen : public WholeFrames {
 protected:
  WholeFramesOnDenseScreen()
      : WholeFrames({.width = 2600, .height = 1940, .resources = "Xft.dpi:\t192\n"}) {}
};

TEST_F(WholeFramesOnDenseScreen, AreSeenWhateverTheUserDoes) { actAtRandom(2, 400); }

}  // namespace
}  // namespace app
