#include "ui/widgets/input_stack.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

namespace ui {
namespace {

using Log = std::vector<std::string>;

/// Writes down what it is told: of a pointer at rest not that it moved but where it "rests". Knows
/// the key 'k', and closes at 'x'.
template <typename Base>
class Layer : public Base {
 public:
  Layer(std::string name, Log& log) : name_(std::move(name)), log_(log) {}
  ~Layer() override { note("gone"); }

  void paint(Canvas& /*canvas*/) const override {}
  void press(const MouseEvent& event) override { note("press" + std::to_string(event.clicks)); }
  void motion(const MouseEvent& event) override { note(event.moved ? "motion" : "rests"); }
  void release(const MouseEvent& /*event*/) override { note("release"); }
  void leave() override { note("leave"); }
  void wheel(const MouseEvent& /*event*/, int /*dy*/) override { note("wheel"); }
  void tick(std::int64_t /*nowMs*/) override { note("tick"); }
  void releasePointer() override { note("covered"); }
  PointerShape pointer() const override {
    return name_ == "screen" ? PointerShape::Hand : PointerShape::Arrow;
  }
  bool key(const KeyEvent& event) override {
    note("key");
    if constexpr (requires { this->close(); }) {
      if (event.keysym == 'x') {
        this->close();
        return true;
      }
    }
    return event.keysym == 'k';
  }

 private:
  void note(const std::string& what) { log_.push_back(name_ + " " + what); }

  std::string name_;
  Log& log_;
};

class Menu : public Layer<Overlay> {
 public:
  using Layer::Layer;
  bool isMenu() const override { return true; }
};

/// Closes at a press, as one outside of it.
class ClosingMenu : public Menu {
 public:
  using Menu::Menu;
  void press(const MouseEvent& /*event*/) override { close(); }
};

class InputStackTest : public testing::Test {
 protected:
  InputStackTest() {
    stack_.onPointer = [this](PointerShape shape) { shape_ = shape; };
    stack_.setSize(600, 400);
    stack_.show(screen_);
    log_.clear();
  }

  void openDialog(const std::string& name = "dialog") {
    stack_.open(std::make_unique<Layer<Overlay>>(name, log_));
  }
  void openMenu() { stack_.open(std::make_unique<Menu>("menu", log_)); }
  bool key(unsigned long keysym) { return stack_.key({.keysym = keysym, .text = {}}); }
  Log taken() { return std::exchange(log_, {}); }

  Log log_;
  Layer<View> screen_{"screen", log_};
  InputStack stack_;
  PointerShape shape_ = PointerShape::Arrow;
};

TEST_F(InputStackTest, HandsAllInputToTheTopmost) {
  openDialog("below");
  openDialog("above");
  openMenu();
  taken();
  stack_.press({.clicks = 1});
  stack_.release({});
  stack_.wheel({}, 1);
  key('k');
  EXPECT_EQ(taken(), (Log{"menu press1", "menu release", "menu wheel", "menu key"}));
  key('x');
  taken();
  stack_.press({.clicks = 1});
  EXPECT_EQ(taken(), Log{"above press1"});
  key('x');
  taken();
  key('k');
  EXPECT_EQ(taken(), Log{"below key"});
  key('x');
  EXPECT_FALSE(stack_.covered());
  taken();
  key('k');
  EXPECT_EQ(taken(), Log{"screen key"});
}

TEST_F(InputStackTest, LeavesOnlyTheScreensUnusedKeysToOthers) {
  EXPECT_TRUE(key('k'));
  EXPECT_FALSE(key('q'));
  openDialog();
  EXPECT_TRUE(key('q')) << "a shortcut does nothing behind a dialog";
}

TEST_F(InputStackTest, TellsWhatIsCoveredThatThePointerIsElsewhere) {
  openDialog();
  EXPECT_EQ(taken(), Log{"screen covered"});
  openMenu();
  EXPECT_EQ(taken(), Log{"dialog covered"});
}

TEST_F(InputStackTest, KeepsASecondQuickPressFromWhatTheFirstOneOpened) {
  stack_.press({.clicks = 1});
  openDialog();
  taken();
  stack_.press({.clicks = 2});
  EXPECT_EQ(taken(), Log{});
  stack_.press({.clicks = 1});
  stack_.press({.clicks = 2});
  EXPECT_EQ(taken(), (Log{"dialog press1", "dialog press2"}));
}

TEST_F(InputStackTest, AMenuTakesEveryPress) {
  stack_.press({.clicks = 1});
  openMenu();
  taken();
  stack_.press({.clicks = 2});
  EXPECT_EQ(taken(), Log{"menu press2"});
}

TEST_F(InputStackTest, CountsPressesAnewAfterOneThatClosedAMenu) {
  stack_.open(std::make_unique<ClosingMenu>("menu", log_));
  stack_.press({.clicks = 1});
  ASSERT_FALSE(stack_.covered());
  taken();
  stack_.press({.clicks = 2});
  stack_.press({.clicks = 3});
  EXPECT_EQ(taken(), (Log{"screen press1", "screen press2"}));
  stack_.press({.clicks = 1});
  EXPECT_EQ(taken(), Log{"screen press1"});
}

TEST_F(InputStackTest, CountsOnWhereNoMenuWasClosed) {
  stack_.press({.clicks = 1});
  stack_.press({.clicks = 2});
  stack_.press({.clicks = 3});
  EXPECT_EQ(taken(), (Log{"screen press1", "screen press2", "screen press3"}));
}

TEST_F(InputStackTest, ClosesAMenuWhenSomethingElseIsShown) {
  openMenu();
  openDialog();
  EXPECT_EQ(taken(), (Log{"screen covered", "menu gone", "screen covered"}));
  openMenu();
  taken();
  stack_.setSize(500, 300);
  EXPECT_EQ(taken(), Log{"menu gone"});
  openMenu();
  taken();
  stack_.show(screen_);
  EXPECT_EQ(taken(), Log{"menu gone"});
  EXPECT_TRUE(stack_.covered()) << "the dialog stays";
}

TEST_F(InputStackTest, TellsWhatComesUnderTheRestingPointerWhereItIs) {
  stack_.motion({.x = 5, .y = 5});
  openDialog();
  EXPECT_EQ(taken(), (Log{"screen motion", "screen covered", "dialog rests"}));
  EXPECT_EQ(shape_, PointerShape::Arrow);
  key('x');
  EXPECT_EQ(taken(), (Log{"dialog key", "dialog gone", "screen rests"}));
  EXPECT_EQ(shape_, PointerShape::Hand);
  stack_.show(screen_);
  EXPECT_EQ(taken(), Log{"screen rests"});
  stack_.motion({.x = 5, .y = 6});
  EXPECT_EQ(taken(), Log{"screen motion"});
  stack_.leave();
  taken();
  openDialog();
  EXPECT_EQ(taken(), Log{"screen covered"}) << "it is not in the window";
}

TEST_F(InputStackTest, TellsTheShapeThatThePointerHasInANewFrame) {
  shape_ = PointerShape::Arrow;
  stack_.prepare();
  EXPECT_EQ(shape_, PointerShape::Hand);
}

TEST_F(InputStackTest, GivesOverlaysTheWholeWindow) {
  auto dialog = std::make_unique<Layer<Overlay>>("dialog", log_);
  const View& opened = *dialog;
  stack_.open(std::move(dialog));
  EXPECT_EQ(opened.rect(), (Rect{0, 0, 600, 400}));
  stack_.setSize(500, 300);
  EXPECT_EQ(opened.rect(), (Rect{0, 0, 500, 300}));
}

TEST_F(InputStackTest, TicksTheScreenAndTheTopmost) {
  openDialog("below");
  openDialog("above");
  taken();
  stack_.tick(1);
  EXPECT_EQ(taken(), (Log{"screen tick", "above tick"}));
}

}  // namespace
}  // namespace ui
