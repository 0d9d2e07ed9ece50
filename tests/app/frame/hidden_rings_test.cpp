// The views of a screen while the keyboard is not in use: where it is shows nowhere.

#include <vector>

#include "app/frame/welcome_view.h"
#include "tests/app/frame/scan_screen_fixture.h"
#include "ui/keys.h"

namespace app {
namespace {

class HiddenRingsTest : public ScanScreenTest {
 protected:
  test::Picture withoutRings(ui::View& view) {
    view.prepare();
    return ViewsOnWindow::picture(kWidth, kHeight, [&](ui::Canvas& canvas) {
      canvas.setShowsRings(false);
      view.paint(canvas);
    });
  }
};

TEST_F(HiddenRingsTest, AreHiddenInAScan) {
  const test::Picture seen = picture();
  const test::Picture hidden = withoutRings(screen_);
  EXPECT_FALSE(hidden == seen) << "the list's";
  for (int i = 0; i < 3; ++i) {
    key(ui::key::kTab);
    screen_.motion({.x = 1, .y = 1 + i});  // so that the status line tells of no row
    EXPECT_TRUE(withoutRings(screen_) == hidden) << i;
  }
}

TEST_F(HiddenRingsTest, AreHiddenInTheWelcome) {
  ui::Icon icon;
  WelcomeView welcome{style, icon};
  welcome.setRect({0, 0, kWidth, kHeight});
  welcome.setCards({{.name = "Root", .path = "/", .figures = {}}});
  const test::Picture hidden = withoutRings(welcome);
  for (int i = 0; i < 2; ++i) {
    welcome.key({.keysym = ui::key::kTab, .text = {}});
    ASSERT_EQ(welcome.focusedControl(), i);
    EXPECT_TRUE(withoutRings(welcome) == hidden) << i;
  }
}

}  // namespace
}  // namespace app
