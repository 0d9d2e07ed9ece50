// The line that tells of an update, in a window.

#include "app/frame/update_bar.h"

#include <string>
#include <utility>
#include <vector>

#include "tests/ui/widgets/views_on_window.h"
#include "ui/keys.h"

namespace app {
namespace {

using test::at;
using test::rgb;
using Told = std::vector<std::string>;

constexpr int kBarWidth = 640;
constexpr int kTop = 34;
constexpr char kMessage[] = "Version 1.2.0 is there.";

class UpdateBarIn : protected test::ViewsOnWindow {
 protected:
  explicit UpdateBarIn(const ui::Palette& palette = ui::kLightPalette, double scale = 1)
      : ViewsOnWindow(palette, scale) {
    bar_.onDownload = [this] { told_.emplace_back("download"); };
    bar_.onDismiss = [this] { told_.emplace_back("dismiss"); };
    bar_.onChanged = [this] { ++changes_; };
  }

  void show(const std::string& message, int width = kBarWidth) {
    bar_.setMessage(message);
    bar_.setRect({0, kTop, width, bar_.wantedHeight()});
    bar_.prepare();
  }
  /// Lets so much time pass that every button takes presses.
  void rest() {
    bar_.tick(now_);
    now_ += 500;
    bar_.tick(now_);
  }
  ui::MouseEvent eventAt(const ui::Rect& rect, int button = 1) const {
    ui::MouseEvent event = at(rect, button);
    event.timeMs = now_;
    return event;
  }
  void click(const ui::Rect& rect, int button = 1) {
    bar_.press(eventAt(rect, button));
    bar_.release(eventAt(rect, button));
  }
  bool key(unsigned long keysym) { return bar_.key({.keysym = keysym, .text = {}}); }
  Told taken() { return std::exchange(told_, {}); }
  test::Picture picture(int width = kBarWidth) {
    bar_.prepare();
    return ViewsOnWindow::picture(width, 200, [&](ui::Canvas& c) { bar_.paint(c); });
  }

  UpdateBar bar_{style};
  Told told_;
  int changes_ = 0;
  std::int64_t now_ = 1'000'000;
};

class UpdateBarTest : public testing::Test, protected UpdateBarIn {};

TEST_F(UpdateBarTest, HasAHeightOnlyWithAMessage) {
  EXPECT_EQ(bar_.wantedHeight(), 0);
  EXPECT_FALSE(bar_.takesKeyboard());
  show(kMessage);
  EXPECT_GT(bar_.wantedHeight(), style.lineHeight());
  EXPECT_TRUE(bar_.takesKeyboard());
  EXPECT_GT(std::exchange(changes_, 0), 0);
  bar_.setMessage(kMessage);
  EXPECT_EQ(changes_, 0) << "nothing new";
  bar_.setMessage(std::nullopt);
  EXPECT_EQ(bar_.wantedHeight(), 0);
  EXPECT_EQ(changes_, 1);
}

TEST_F(UpdateBarTest, CoversItsPlaceAndNoMore) {
  show(kMessage);
  const auto shown = picture();
  EXPECT_EQ(shown.count(rgb(test::kNothingDrawn)), long{kBarWidth} * (200 - bar_.rect().h));
  const auto& message = bar_.messageRect();
  EXPECT_GT(shown.part(message.x, message.y, message.w, message.h).count(rgb(style.palette().text)),
            0);
}

TEST_F(UpdateBarTest, TellsWhichButtonWasPressed) {
  show(kMessage);
  rest();
  click(bar_.downloadRect());
  click(bar_.dismissRect());
  click(bar_.messageRect());
  click(bar_.downloadRect(), 3);
  EXPECT_EQ(taken(), (Told{"download", "dismiss"}));
  bar_.press(eventAt(bar_.downloadRect()));
  bar_.release(eventAt(bar_.messageRect()));
  EXPECT_EQ(taken(), Told{}) << "let go elsewhere";
}

TEST_F(UpdateBarTest, TakesNoPressAtOnceWhenItAppearsUnderThePointer) {
  show(kMessage);
  const ui::Rect download = bar_.downloadRect();
  bar_.setMessage(std::nullopt);
  bar_.setRect({0, kTop, kBarWidth, 0});
  bar_.prepare();
  bar_.pointerSeen(download.x + download.w / 2, download.y + download.h / 2);
  show(kMessage);
  ASSERT_EQ(bar_.downloadRect(), download);
  click(download);
  EXPECT_EQ(taken(), Told{});
  rest();
  click(download);
  EXPECT_EQ(taken(), Told{"download"});
}

TEST_F(UpdateBarTest, TakesAPressAtOnceOfAPointerThatMovedOnToIt) {
  bar_.pointerSeen(5, 150);
  show(kMessage);
  bar_.motion(eventAt(bar_.dismissRect(), 0));
  click(bar_.dismissRect());
  EXPECT_EQ(taken(), Told{"dismiss"});
}

TEST_F(UpdateBarTest, ForgetsAPressWhenItGoes) {
  show(kMessage);
  rest();
  bar_.press(eventAt(bar_.dismissRect()));
  bar_.setMessage(std::nullopt);
  show("Another version is there.");
  bar_.release(eventAt(bar_.dismissRect()));
  EXPECT_EQ(taken(), Told{});
}

TEST_F(UpdateBarTest, TakesKeysWhileItHasAMessage) {
  EXPECT_FALSE(key(ui::key::kReturn));
  show(kMessage);
  EXPECT_TRUE(key(ui::key::kReturn));
  EXPECT_TRUE(key(ui::key::kRight));
  EXPECT_TRUE(key(' '));
  EXPECT_TRUE(key(ui::key::kLeft));
  EXPECT_TRUE(key(' '));
  EXPECT_FALSE(key('x'));
  EXPECT_FALSE(key(ui::key::kTab));
  EXPECT_EQ(taken(), (Told{"download", "dismiss", "download"}));
}

TEST_F(UpdateBarTest, ShowsWhichButtonHasTheKeyboard) {
  show(kMessage);
  const auto ringed = [&](const ui::Rect& rect) {
    return picture().part(rect.x, rect.y, rect.w, rect.h).count(rgb(style.palette().accent)) > 0;
  };
  EXPECT_FALSE(ringed(bar_.downloadRect()));
  bar_.setFocused(true);
  EXPECT_TRUE(ringed(bar_.downloadRect()));
  EXPECT_FALSE(ringed(bar_.dismissRect()));
  key(ui::key::kRight);
  EXPECT_FALSE(ringed(bar_.downloadRect()));
  EXPECT_TRUE(ringed(bar_.dismissRect()));
}

TEST_F(UpdateBarTest, CutsAMessageThatNeverEnds) {
  show(std::string(1 << 20, '\xFF') + "\n");
  EXPECT_LT(bar_.message()->size(), 2000u);
  EXPECT_TRUE(bar_.message()->ends_with("…"));
  show("a\n\nb\x1B");
  EXPECT_EQ(bar_.message(), "a b");
}

class UpdateBarAtScale : public testing::TestWithParam<double>, protected UpdateBarIn {
 protected:
  UpdateBarAtScale() : UpdateBarIn(ui::kDarkPalette, GetParam()) {}
};

TEST_P(UpdateBarAtScale, KeepsItsPartsApartInEveryWidth) {
  for (const int width : {1, 20, 60, 100, 150, 200, 640, 2000}) {
    show(std::string(300, 'm'), width);
    const std::vector<ui::Rect> parts = {bar_.messageRect(), bar_.downloadRect(),
                                         bar_.dismissRect()};
    for (std::size_t i = 0; i < parts.size(); ++i) {
      if (parts[i].empty()) continue;
      EXPECT_EQ(ui::intersect(parts[i], bar_.rect()), parts[i]) << width << ", part " << i;
      for (std::size_t j = 0; j < i; ++j) {
        EXPECT_TRUE(ui::intersect(parts[i], parts[j]).empty()) << width;
      }
    }
  }
  show(kMessage, 100 * static_cast<int>(GetParam()));
  EXPECT_EQ(bar_.dismissRect().w, bar_.dismissRect().h) << "can be put away in any window";
}

INSTANTIATE_TEST_SUITE_P(Scales, UpdateBarAtScale, testing::Values(1.0, 2.0));

}  // namespace
}  // namespace app
