#include "ui/startup_notification.h"

#include <chrono>
#include <memory>
#include <string>
#include <vector>

#include "tests/support/environment.h"
#include "tests/support/eventually.h"
#include "tests/ui/window_test_base.h"

namespace test {
namespace {

using Numbers = std::vector<unsigned long>;

constexpr char kId[] = "a \"launcher\"_TIME77";
constexpr char kEnd[] = "remove: ID=\"a \\\"launcher\\\"_TIME77\"";

class StartupNotificationTest : public WindowTest {
 protected:
  void SetUp() override { listener_.listenToStarts(); }

  /// The text of the message that has come by now; empty when none has. It is one, and whole.
  std::string told() {
    std::string bytes;
    sender_ = 0;
    while (const auto part = listener_.messageToRoot()) {
      EXPECT_EQ(part->type, bytes.empty() ? "_NET_STARTUP_INFO_BEGIN" : "_NET_STARTUP_INFO");
      EXPECT_EQ(part->format, 8);
      EXPECT_TRUE(sender_ == 0 || sender_ == part->window) << "parts of several messages";
      sender_ = part->window;
      bytes += part->bytes;
    }
    EXPECT_TRUE(bytes.empty() || bytes.back() == '\0');
    return bytes.c_str();
  }
  std::string idOf(unsigned long id) {
    return other.textProperty(id, "_NET_STARTUP_ID", "UTF8_STRING");
  }
  Numbers userTimeOf(unsigned long id) { return other.longProperty(id, "_NET_WM_USER_TIME"); }

  OtherClient listener_;
  unsigned long sender_ = 0;
};

TEST_F(StartupNotificationTest, NamesTheWindowBeforeItIsShown) {
  ui::StartupNotification startup{ui::StartupId(kId)};
  window.follow(startup);
  ASSERT_TRUE(window.create("Window", 100, 100));
  settle();
  EXPECT_EQ(idOf(window.xid()), kId);
  EXPECT_EQ(userTimeOf(window.xid()), Numbers{77});
  EXPECT_EQ(told(), "") << "nothing is seen yet";
}

TEST_F(StartupNotificationTest, TellsNoTimeThatTheLauncherDoesNotTell) {
  ui::StartupNotification startup{ui::StartupId("launcher_TIME0")};
  window.follow(startup);
  show();
  EXPECT_EQ(idOf(window.xid()), "launcher_TIME0");
  EXPECT_TRUE(userTimeOf(window.xid()).empty());
}

TEST_F(StartupNotificationTest, TellsEverybodyOfTheEndWithTheFirstFrameOnTheScreen) {
  ui::StartupNotification startup{ui::StartupId(kId)};
  window.follow(startup);
  window.onPaint = [](ui::Canvas& canvas) { canvas.fillRect({0, 0, 100, 100}, 0xFF123456); };
  ASSERT_TRUE(window.create("Window", 100, 100));
  window.invalidate();
  settle();
  EXPECT_EQ(told(), "") << "a frame that nobody sees";
  window.show();
  EXPECT_TRUE(runUntil([&] {
    const auto message = listener_.messageToRoot();
    // The listener got it after the frame, as every later look does.
    return message && message->type == "_NET_STARTUP_INFO_BEGIN";
  }));
  EXPECT_EQ(other.screenPixel(window.xid(), 50, 50), 0x123456u);
}

TEST_F(StartupNotificationTest, TellsOfTheEndOnceAndWhole) {
  {
    ui::StartupNotification startup{ui::StartupId(kId)};
    window.follow(startup);
    show();
    settle();
    EXPECT_EQ(told(), kEnd);
    EXPECT_EQ(sender_, window.xid());
    window.invalidate();
    settle();
    startup.end(*connection, window.xid());
  }
  EXPECT_EQ(told(), "");
}

TEST_F(StartupNotificationTest, TellsOfTheEndThoughNobodyShowsTheWindow) {
  OtherClient manager;
  manager.holdBackWindows();
  ui::StartupNotification startup{ui::StartupId(kId)};
  window.follow(startup);
  ASSERT_TRUE(window.create("Window", 100, 100));
  window.show();
  const auto start = std::chrono::steady_clock::now();
  std::string end;
  EXPECT_TRUE(runUntil([&] { return !(end = told()).empty(); }));
  EXPECT_EQ(end, kEnd);
  EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(1900))
      << "a first frame may take as long";
}

TEST_F(StartupNotificationTest, TellsOfTheEndWithoutAWindow) {
  { const ui::StartupNotification startup{ui::StartupId(kId)}; }
  EXPECT_EQ(told(), kEnd);
  EXPECT_NE(sender_, 0u);
}

TEST_F(StartupNotificationTest, TellsNobodyWithoutADisplay) {
  ScopedEnvironment environment;
  environment.unset("DISPLAY");
  { const ui::StartupNotification startup{ui::StartupId(kId)}; }
  EXPECT_EQ(told(), "");
}

TEST_F(StartupNotificationTest, SaysNothingWhenNobodyWaits) {
  {
    ui::StartupNotification startup{ui::StartupId()};
    window.follow(startup);
    show();
    settle();
  }
  EXPECT_EQ(told(), "");
  EXPECT_EQ(idOf(window.xid()), "");
  EXPECT_TRUE(userTimeOf(window.xid()).empty());
}

TEST_F(StartupNotificationTest, SendsALongNameWhole) {
  const std::string longest(4096, '\\');
  { const ui::StartupNotification startup{ui::StartupId(longest)}; }
  EXPECT_EQ(told(), "remove: ID=\"" + longest + longest + "\"");
}

TEST_F(StartupNotificationTest, TellsWhenTheUserLastDidSomething) {
  show();
  settle();
  other.movePointer(20, 20);
  settle();
  EXPECT_TRUE(userTimeOf(window.xid()).empty()) << "passing by is nothing";
  Numbers last = {0};
  const auto expectNewer = [&](const char* what) {
    settle();
    const Numbers time = userTimeOf(window.xid());
    ASSERT_EQ(time.size(), 1u) << what;
    EXPECT_GE(time, last) << what;
    EXPECT_NE(time, Numbers{0}) << what;
    last = time;
  };
  unsigned long pressedAt = 0;
  for (const unsigned button : {1u, 4u}) {
    other.pressButton(button);
    expectNewer("button");
    pressedAt = last[0];
    other.releaseButton(button);
  }
  other.focus(window.xid());
  const auto later = [&] {
    other.pressKey('a');
    other.releaseKey('a');
    settle();
    return userTimeOf(window.xid())[0] > pressedAt;
  };
  EXPECT_TRUE(eventually(later)) << "keys too";
}

}  // namespace
}  // namespace test
