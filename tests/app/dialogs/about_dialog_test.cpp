// The About box in a window.

#include "app/dialogs/about_dialog.h"

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "app/model/product.h"
#include "tests/ui/widgets/views_on_window.h"
#include "ui/keys.h"
#include "ui/widgets/input_stack.h"

namespace app {
namespace {

using test::at;
using test::rgb;
using Told = std::vector<std::string>;

const UpdateNotice kUpdate = {"Version 1.2.0 is there.", "https://heapgauge.example/get"};

/// The box, in a stack of views as in the window.
class AboutBox : protected test::ViewsOnWindow {
 protected:
  explicit AboutBox(const ui::Palette& palette = ui::kLightPalette, double scale = 1)
      : ViewsOnWindow(palette, scale) {}

  AboutDialog& open(int width, int height, std::optional<UpdateNotice> update = std::nullopt) {
    stack_.setSize(width, height);
    auto box = std::make_unique<AboutDialog>(*connection, style, std::move(update));
    AboutDialog& opened = *box;
    opened.onLink = [this](const std::string& address) { told_.push_back(address); };
    stack_.open(std::move(box));
    rest();
    return opened;
  }
  /// Lets so much time pass that every link takes presses.
  void rest() {
    stack_.tick(now_);
    now_ += 500;
    stack_.tick(now_);
  }
  ui::MouseEvent eventAt(const ui::Rect& rect, int button = 1) const {
    ui::MouseEvent event = at(rect, button);
    event.timeMs = now_;
    return event;
  }
  void click(const ui::Rect& rect, int button = 1) {
    stack_.press(eventAt(rect, button));
    if (stack_.covered()) stack_.release(eventAt(rect, button));
  }
  void key(unsigned long keysym, bool shift = false) {
    stack_.key({.keysym = keysym, .text = {}, .shift = shift});
  }
  test::Picture picture(int width, int height) {
    stack_.prepare();
    return ViewsOnWindow::picture(width, height, [&](ui::Canvas& c) { stack_.paint(c); });
  }
  Told taken() { return std::exchange(told_, {}); }

  ui::InputStack stack_;
  Told told_;
  std::int64_t now_ = 1'000'000;
};

class AboutDialogTest : public testing::Test, protected AboutBox {};

TEST_F(AboutDialogTest, ClosesWithItsButtonAndEscapeAndEnterAndAPressOutside) {
  click(open(900, 600).buttonRect(0));
  EXPECT_FALSE(stack_.covered()) << "its button";
  open(900, 600);
  key(ui::key::kEscape);
  EXPECT_FALSE(stack_.covered()) << "Escape";
  open(900, 600);
  key(ui::key::kReturn);
  EXPECT_FALSE(stack_.covered()) << "Enter";
  open(900, 600);
  click({2, 2, 2, 2});
  EXPECT_FALSE(stack_.covered()) << "outside";
  EXPECT_EQ(told_, Told{});
}

TEST_F(AboutDialogTest, StaysForAPressBesideItsLinks) {
  const AboutDialog& box = open(900, 600);
  click({box.panel().x + 4, box.panel().y + 4, 2, 2});
  EXPECT_TRUE(stack_.covered());
  EXPECT_EQ(told_, Told{});
}

TEST_F(AboutDialogTest, OpensItsLinksAndStays) {
  const AboutDialog& box = open(900, 600, kUpdate);
  ASSERT_EQ(box.linkCount(), 3u);
  for (std::size_t i = 0; i < 3; ++i) click(box.linkRect(i));
  EXPECT_EQ(taken(), (Told{kUpdate.downloadAddress, kMakerPage, kProductPage}));
  click(box.linkRect(0), 3);
  EXPECT_EQ(taken(), Told{});
  EXPECT_TRUE(stack_.covered());
}

TEST_F(AboutDialogTest, TakesTabToItsLinksAndBackToTheButton) {
  const AboutDialog& box = open(900, 600, kUpdate);
  EXPECT_EQ(box.focusedControl(), 3) << "the button";
  const auto before = picture(900, 600);
  key(ui::key::kTab);
  const ui::Rect link = box.linkRect(0);
  const auto ring = picture(900, 600).part(link.x - 3, link.y - 3, link.w + 6, 2);
  EXPECT_GT(ring.count(rgb(style.palette().accent)), link.w / 2);
  EXPECT_EQ(before.part(link.x - 3, link.y - 3, link.w + 6, 2).count(rgb(style.palette().accent)),
            0);
  key(ui::key::kReturn);
  key(ui::key::kTab);
  key(' ');
  EXPECT_EQ(taken(), (Told{kUpdate.downloadAddress, kMakerPage}));
  key(ui::key::kTab);
  key(ui::key::kTab);
  key(' ');
  EXPECT_FALSE(stack_.covered());
}

TEST_F(AboutDialogTest, ShowsAHandAndALineUnderTheLinkThatThePointerIsOn) {
  const AboutDialog& box = open(900, 600);
  const ui::Rect link = box.linkRect(0);
  const auto plain = picture(900, 600);
  stack_.motion(eventAt(link, 0));
  EXPECT_EQ(box.pointer(), ui::PointerShape::Hand);
  const auto hovered = picture(900, 600);
  const auto lines = [&](const test::Picture& shown) {
    int count = 0;
    for (int y = link.y; y < link.y + link.h; ++y) {
      count += shown.part(link.x, y, link.w, 1).count(rgb(style.palette().link)) == link.w;
    }
    return count;
  };
  EXPECT_EQ(lines(plain), 0);
  EXPECT_EQ(lines(hovered), 1);
  stack_.motion(eventAt(box.buttonRect(0), 0));
  EXPECT_EQ(box.pointer(), ui::PointerShape::Arrow);
}

TEST_F(AboutDialogTest, ShowsAnUpdateThatBecomesKnown) {
  AboutDialog& box = open(900, 600);
  EXPECT_EQ(box.linkCount(), 2u) << "no download while no update is known";
  EXPECT_TRUE(box.messageLines().empty());
  const int height = box.panel().h;
  box.setUpdate(kUpdate);
  EXPECT_EQ(box.messageLines(), Told{kUpdate.message});
  EXPECT_EQ(box.link(0).text, "Download it");
  EXPECT_GT(box.panel().h, height);
  EXPECT_EQ(box.panel().y, (600 - box.panel().h) / 2);
  EXPECT_EQ(box.focusedControl(), 3) << "the button still";
  box.setUpdate(std::nullopt);
  EXPECT_EQ(box.panel().h, height);
  EXPECT_EQ(box.focusedControl(), 2);
}

TEST_F(AboutDialogTest, LeavesTheKeyboardOnALinkWhileAnotherOneComes) {
  AboutDialog& box = open(900, 600);
  key(ui::key::kTab);
  box.setUpdate(kUpdate);
  key(ui::key::kReturn);
  EXPECT_EQ(taken(), Told{kMakerPage});
}

TEST_F(AboutDialogTest, TakesNoPressAtOnceOnALinkThatComesUnderThePointer) {
  const ui::Rect place = open(900, 600, kUpdate).linkRect(0);
  key(ui::key::kEscape);
  AboutDialog& box = open(900, 600);
  stack_.motion(eventAt(place, 0));
  box.setUpdate(kUpdate);
  stack_.prepare();
  ASSERT_EQ(box.linkRect(0), place);
  click(place);
  EXPECT_EQ(taken(), Told{});
  rest();
  click(place);
  EXPECT_EQ(taken(), Told{kUpdate.downloadAddress});
}

TEST_F(AboutDialogTest, ForgetsAPressOnALinkThatMoves) {
  AboutDialog& box = open(900, 600);
  stack_.press(eventAt(box.linkRect(0)));
  box.setUpdate(kUpdate);
  stack_.release(eventAt(box.linkRect(0)));
  stack_.release(eventAt(box.linkRect(1)));
  EXPECT_EQ(taken(), Told{});
}

TEST_F(AboutDialogTest, ShowsNoLinkForAnUpdateWithoutAnAddress) {
  EXPECT_EQ(open(900, 600, UpdateNotice{"There is a version.", ""}).linkCount(), 2u);
}

TEST_F(AboutDialogTest, ShowsAFewLinesOfAMessageThatNeverEnds) {
  const std::string megabyte(1 << 20, 'm');
  std::string words;
  while (words.size() < megabyte.size()) words += "word\n\n\xFF ";
  for (const std::string& message : {megabyte, words}) {
    const AboutDialog& box = open(640, 420, UpdateNotice{message, kUpdate.downloadAddress});
    EXPECT_EQ(box.messageLines().size(), 4u);
    EXPECT_LT(box.messageLines().back().size(), 300u);
    EXPECT_GT(style.textWidth(box.messageLines().back()), box.viewRect().w) << "an ellipsis";
    key(ui::key::kEscape);
  }
}

TEST_F(AboutDialogTest, ShowsAMessageAsOneTextWithoutControlCharacters) {
  EXPECT_EQ(open(900, 600, UpdateNotice{" \n\x1B[1mA\r\n\tb\x7F\xFF ", "a"}).messageLines(),
            Told{"[1mA b \uFFFD"});
}

struct Situation {
  ui::Palette palette;
  double scale;
  int width;
  int height;
};

class AboutDialogIn : public testing::TestWithParam<Situation>, protected AboutBox {
 protected:
  AboutDialogIn() : AboutBox(GetParam().palette, GetParam().scale) {}
};

TEST_P(AboutDialogIn, KeepsEverythingApartAndWithinReach) {
  const auto& [palette, scale, width, height] = GetParam();
  const AboutDialog& box = open(width, height, kUpdate);
  const ui::Rect& button = box.buttonRect(0);
  EXPECT_TRUE(ui::intersect(box.viewRect(), button).empty());
  EXPECT_EQ(ui::intersect(box.panel(), button), button);
  for (std::size_t i = 0; i < box.linkCount(); ++i) {
    key(ui::key::kTab);
    EXPECT_EQ(ui::intersect(box.linkRect(i), box.viewRect()), box.linkRect(i)) << "link " << i;
    for (std::size_t j = 0; j < i; ++j) {
      EXPECT_TRUE(ui::intersect(box.linkRect(i), box.linkRect(j)).empty());
    }
  }
  const auto shown = picture(width, height);
  // Nothing is drawn between what scrolls and the button.
  const ui::Rect& view = box.viewRect();
  const int gap = button.y - view.y - view.h;
  EXPECT_EQ(shown.part(view.x, view.y + view.h, view.w, gap).count(rgb(palette.window)),
            long{view.w} * gap);
}

TEST_P(AboutDialogIn, ScrollsWhatThePanelHasNoRoomFor) {
  const auto& [palette, scale, width, height] = GetParam();
  const AboutDialog& box = open(width, height, kUpdate);
  const int before = box.linkRect(0).y;
  stack_.wheel(eventAt(box.panel(), 0), 1);
  const bool scrolled = box.linkRect(0).y < before;
  EXPECT_EQ(scrolled, height < ui::scaled(300, scale));
  key(ui::key::kHome);
  EXPECT_EQ(box.linkRect(0).y, before);
}

INSTANTIATE_TEST_SUITE_P(Windows, AboutDialogIn,
                         testing::Values(Situation{ui::kLightPalette, 1, 900, 600},
                                         Situation{ui::kDarkPalette, 1, 640, 420},
                                         Situation{ui::kLightPalette, 1, 260, 200},
                                         Situation{ui::kDarkPalette, 2, 1280, 840},
                                         Situation{ui::kLightPalette, 2, 640, 420}));

}  // namespace
}  // namespace app
