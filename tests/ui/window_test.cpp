#include "ui/window.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sched.h>
#include <unistd.h>

#include <array>
#include <clocale>
#include <string>
#include <vector>

#include "base/file_descriptor.h"
#include "tests/ui/window_test_base.h"
#include "ui/x11.h"

namespace test {
namespace {

TEST_F(WindowTest, IsCreatedWithItsSizeAndEventMask) {
  EXPECT_EQ(window.xid(), 0u);
  ASSERT_TRUE(window.create("Heap Gauge", 320, 240));
  ASSERT_NE(window.xid(), 0u);
  EXPECT_EQ(window.width(), 320);
  EXPECT_EQ(window.height(), 240);
  EXPECT_EQ(other.sizeOf(window.xid()), std::pair(320, 240));
  EXPECT_EQ(other.eventMask(window.xid()), 0x22806D);
}

TEST_F(WindowTest, KeepsItsOldPictureAtTheTopLeftWhileItGrows) {
  ASSERT_TRUE(window.create("Heap Gauge", 100, 100));
  settle();
  EXPECT_EQ(other.bitGravity(window.xid()), 1);  // NorthWestGravity
}

TEST_F(WindowTest, CannotBeCreatedWhenTheServerRefuses) {
  EXPECT_FALSE(window.create("Too wide", 65536, 100));  // 0 in the protocol's 16 bits
  EXPECT_EQ(window.xid(), 0u);
  EXPECT_TRUE(window.create("Fits", 100, 100));
}

TEST_F(WindowTest, CannotBeCreatedTwice) {
  ASSERT_TRUE(window.create("One", 100, 100));
  const unsigned long first = window.xid();
  EXPECT_FALSE(window.create("Two", 200, 100));
  EXPECT_EQ(window.xid(), first);
  EXPECT_EQ(window.width(), 100);
}

TEST_F(WindowTest, TakesNoSettingsBeforeItIsCreated) {
  window.setTitle("early");
  window.setClass("a", "b");
  window.setMinSize(1, 2);
  window.show();
  ASSERT_TRUE(window.create("late", 100, 100));
  settle();
  EXPECT_EQ(other.textProperty(window.xid(), "_NET_WM_NAME", "UTF8_STRING"), "late");
}

TEST_F(WindowTest, NamesItselfAndItsIconInPropertiesOldAndNew) {
  ASSERT_TRUE(window.create("Heap Gauge", 100, 100));
  for (const std::string title : {"Heap Gauge", "Bücher – Heap Gauge", "a\xFF\xC3", ""}) {
    window.setTitle(title);
    settle();
    for (const char* name : {"WM_NAME", "WM_ICON_NAME"}) {
      EXPECT_EQ(other.textProperty(window.xid(), name, "STRING"), title) << name;
    }
    for (const char* name : {"_NET_WM_NAME", "_NET_WM_ICON_NAME"}) {
      EXPECT_EQ(other.textProperty(window.xid(), name, "UTF8_STRING"), title) << name;
    }
  }
}

TEST_F(WindowTest, TellsTheWindowManagerItsClassAndLeastSize) {
  ASSERT_TRUE(window.create("Heap Gauge", 100, 100));
  window.setClass("heapgauge", "Heapgauge");
  window.setMinSize(640, 420);
  settle();
  EXPECT_EQ(other.textProperty(window.xid(), "WM_CLASS", "STRING"),
            std::string("heapgauge\0Heapgauge\0", 20));
  const std::vector<unsigned long> hints = other.longProperty(window.xid(), "WM_NORMAL_HINTS");
  ASSERT_GE(hints.size(), 7u);
  EXPECT_EQ(hints[0], 16u);  // PMinSize and nothing else
  EXPECT_EQ(hints[5], 640u);
  EXPECT_EQ(hints[6], 420u);
}

TEST_F(WindowTest, TakesPartInNoProtocolButTheCloseButton) {
  ASSERT_TRUE(window.create("Heap Gauge", 100, 100));
  settle();
  const std::vector<unsigned long> protocols = other.longProperty(window.xid(), "WM_PROTOCOLS");
  ASSERT_EQ(protocols.size(), 1u);
  EXPECT_EQ(other.atomName(protocols[0]), "WM_DELETE_WINDOW");
}

TEST_F(WindowTest, IsAWindowOfTheUsualType) {
  ASSERT_TRUE(window.create("Heap Gauge", 100, 100));
  settle();
  const std::vector<unsigned long> types = other.longProperty(window.xid(), "_NET_WM_WINDOW_TYPE");
  ASSERT_EQ(types.size(), 1u);
  EXPECT_EQ(other.atomName(types[0]), "_NET_WM_WINDOW_TYPE_NORMAL");
  EXPECT_TRUE(other.longProperty(window.xid(), "_NET_WM_ICON").empty()) << "the entry's counts";
}

TEST_F(WindowTest, NamesTheLocaleThatTheProgramRunsIn) {
  const std::string before = std::setlocale(LC_CTYPE, nullptr);
  if (!std::setlocale(LC_CTYPE, "C.UTF-8")) GTEST_SKIP() << "there is no locale C.UTF-8";
  ASSERT_TRUE(window.create("Heap Gauge", 100, 100));
  std::setlocale(LC_CTYPE, before.c_str());
  settle();
  EXPECT_EQ(other.textProperty(window.xid(), "WM_LOCALE_NAME", "STRING"), "C.UTF-8");
}

/// This thread on a machine of that name, in a namespace of its own.
class OtherMachine {
 public:
  explicit OtherMachine(const std::string& name)
      : before_(open("/proc/thread-self/ns/uts", O_RDONLY | O_CLOEXEC)),
        there_(unshare(CLONE_NEWUTS) == 0) {
    if (there_) there_ = sethostname(name.data(), name.size()) == 0;
  }
  ~OtherMachine() { setns(before_.get(), CLONE_NEWUTS); }
  OtherMachine(const OtherMachine&) = delete;
  OtherMachine& operator=(const OtherMachine&) = delete;

  bool there() const { return there_; }

 private:
  const base::FileDescriptor before_;
  bool there_;
};

TEST_F(WindowTest, SaysWhichProcessOfWhichMachineItBelongsTo) {
  const OtherMachine machine("table.example");
  ASSERT_TRUE(window.create("Heap Gauge", 100, 100));
  settle();
  EXPECT_EQ(other.longProperty(window.xid(), "_NET_WM_PID"),
            std::vector<unsigned long>{static_cast<unsigned long>(getpid())});
  std::array<char, 256> name{};
  ASSERT_EQ(gethostname(name.data(), name.size()), 0);
  EXPECT_EQ(other.textProperty(window.xid(), "WM_CLIENT_MACHINE", "STRING"), name.data());
  EXPECT_TRUE(!machine.there() || std::string(name.data()) == "table.example");
}

TEST_F(WindowTest, NamesNoProcessOfAMachineWithoutAName) {
  const OtherMachine machine("");
  if (!machine.there()) GTEST_SKIP() << "no machine name of our own can be had";
  ASSERT_TRUE(window.create("Heap Gauge", 100, 100));
  settle();
  EXPECT_TRUE(other.longProperty(window.xid(), "_NET_WM_PID").empty());
  EXPECT_EQ(other.textProperty(window.xid(), "WM_CLIENT_MACHINE", "STRING"), "");
}

TEST_F(WindowTest, TakesTheKeyboard) {
  ASSERT_TRUE(window.create("Heap Gauge", 100, 100));
  settle();
  const std::vector<unsigned long> hints = other.longProperty(window.xid(), "WM_HINTS");
  ASSERT_GE(hints.size(), 2u);
  EXPECT_EQ(hints[0], 1u);  // InputHint
  EXPECT_EQ(hints[1], 1u);
}

TEST_F(WindowTest, ShowsOnTheScreenWhatWasPainted) {
  window.onPaint = [](ui::Canvas& canvas) { canvas.fillRect({5, 5, 10, 10}, 0xFF123456); };
  show(50, 40);
  settle();
  EXPECT_EQ(other.screenPixel(window.xid(), 5, 5), 0x123456u);
  EXPECT_EQ(other.screenPixel(window.xid(), 14, 14), 0x123456u);
}

TEST_F(WindowTest, IsNotToldThatItsFrameWasCopied) {
  show();
  window.onPaint = [&](ui::Canvas&) { window.quit(); };
  window.invalidate();
  window.run();
  Display* display = connection->native().display;
  XSync(display, False);
  XEvent event;
  EXPECT_FALSE(XCheckTypedEvent(display, NoExpose, &event));
}

TEST_F(WindowTest, RepaintsOnceForManyInvalidations) {
  show();
  settle();
  int paints = 0;
  window.onPaint = [&](ui::Canvas&) { ++paints; };
  for (int i = 0; i < 10; ++i) {
    window.invalidate();
    window.post([&] { window.invalidate(); });
    other.sendExpose(window.xid(), 0);
  }
  settle();
  EXPECT_EQ(paints, 1);
}

TEST_F(WindowTest, PreparesEachFrameOnceAndThenPaintsIt) {
  show();
  settle();
  std::vector<std::string> order;
  window.onPrepare = [&] { order.push_back("prepare"); };
  window.onPaint = [&](ui::Canvas&) { order.push_back("paint"); };
  for (int i = 0; i < 10; ++i) {
    window.invalidate();
    other.sendExpose(window.xid(), 0);
  }
  settle();
  EXPECT_EQ(order, (std::vector<std::string>{"prepare", "paint"}));
}

TEST_F(WindowTest, PreparesAFrameOfANewSizeAfterTellingTheSize) {
  show(200, 100);
  settle();
  std::vector<std::string> order;
  window.onResize = [&](int width, int) { order.push_back("size " + std::to_string(width)); };
  window.onPrepare = [&] { order.push_back("prepare"); };
  other.resizeWindow(window.xid(), 150, 100);
  other.resizeWindow(window.xid(), 160, 100);
  settle();
  EXPECT_EQ(order, (std::vector<std::string>{"size 150", "size 160", "prepare"}));
}

TEST_F(WindowTest, PaintsAgainWhatWasInvalidatedWhilePreparing) {
  show();
  settle();
  int paints = 0;
  window.onPrepare = [&] {
    if (paints == 0) window.invalidate();
  };
  window.onPaint = [&](ui::Canvas&) { ++paints; };
  window.invalidate();
  EXPECT_TRUE(runUntil([&] { return paints >= 2; }));
}

TEST_F(WindowTest, PaintsNothingWhileTheServerHasNoRoomForItsBuffer) {
  show(200, 100);
  settle();
  int prepared = 0;
  int paints = 0;
  window.onPrepare = [&] { ++prepared; };
  window.onPaint = [&](ui::Canvas&) { ++paints; };
  ::testing::internal::CaptureStderr();
  other.sendConfigure(window.xid(), 40000, 10);  // the server makes no pixmap beyond 32767
  settle();
  EXPECT_FALSE(window.capture(directory / "frame.ppm"));
  EXPECT_EQ(prepared, 0);
  EXPECT_EQ(paints, 0);
  other.sendConfigure(window.xid(), 200, 100);
  settle();
  EXPECT_EQ(paints, 1);
  EXPECT_EQ(capture().width, 200);
  EXPECT_EQ(::testing::internal::GetCapturedStderr(), "");
}

TEST_F(WindowTest, RepaintsOnlyAfterTheLastExposeOfASeries) {
  show();
  settle();
  int paints = 0;
  window.onPaint = [&](ui::Canvas&) { ++paints; };
  other.sendExpose(window.xid(), 2);
  other.sendExpose(window.xid(), 1);
  settle();
  EXPECT_EQ(paints, 0);
  other.sendExpose(window.xid(), 0);
  settle();
  EXPECT_EQ(paints, 1);
}

TEST_F(WindowTest, ResizedTellsItsSizeAndRepaintsAtThatSize) {
  show(200, 100);
  settle();
  std::vector<std::pair<int, int>> resizes;
  window.onResize = [&](int width, int height) { resizes.emplace_back(width, height); };
  std::pair<int, int> painted;
  window.onPaint = [&](ui::Canvas& canvas) { painted = {canvas.width(), canvas.height()}; };
  other.resizeWindow(window.xid(), 150, 120);
  settle();
  EXPECT_EQ(resizes, (std::vector{std::pair(150, 120)}));
  EXPECT_EQ(painted, std::pair(150, 120));
  EXPECT_EQ(window.width(), 150);
  EXPECT_EQ(capture().height, 120);
}

class WindowOnNewServer : public WindowTest {
 protected:
  WindowOnNewServer() : WindowTest({.startedAnew = true}) {}
};

TEST_F(WindowOnNewServer, GivesTheServerTheMemoryOfEachSizeBack) {
  constexpr int kSizes = 30;
  constexpr std::size_t kBuffer = std::size_t{4} * 1000 * 700;
  show(1000, 700);
  settle();
  const std::size_t before = server.memory();
  for (int i = 1; i <= kSizes; ++i) {
    other.resizeWindow(window.xid(), 1000 + i, 700);
    settle();
    ASSERT_EQ(window.width(), 1000 + i);
  }
  EXPECT_LT(server.memory(), before + kSizes / 3 * kBuffer);
}

TEST_F(WindowTest, OnlyMovedNeitherTellsASizeNorRepaints) {
  show(200, 100);
  settle();
  int resizes = 0;
  int paints = 0;
  window.onResize = [&](int, int) { ++resizes; };
  window.onPaint = [&](ui::Canvas&) { ++paints; };
  other.moveWindow(window.xid(), 30, 40);
  settle();
  EXPECT_EQ(resizes, 0);
  EXPECT_EQ(paints, 0);
}

TEST_F(WindowTest, WithoutAreaHasABufferOfOnePixel) {
  show(200, 100);
  std::pair<int, int> told;
  std::pair<int, int> painted;
  ui::Rect clip;
  window.onResize = [&](int width, int height) { told = {width, height}; };
  window.onPaint = [&](ui::Canvas& canvas) {
    painted = {canvas.width(), canvas.height()};
    clip = canvas.clip();
  };
  other.sendConfigure(window.xid(), 0, 0);
  settle();
  EXPECT_EQ(told, std::pair(0, 0));
  EXPECT_EQ(painted, std::pair(1, 1));
  EXPECT_TRUE(clip.empty());
}

TEST_F(WindowTest, CreatedWithoutAreaIsOnePixelLarge) {
  ASSERT_TRUE(window.create("Nothing", 0, -5));
  settle();
  EXPECT_EQ(other.sizeOf(window.xid()), std::pair(1, 1));
  EXPECT_EQ(window.width(), 1);
}

TEST_F(WindowTest, StaysOpenWhenTheCloseQuerySaysNo) {
  show();
  int queries = 0;
  bool closed = false;
  window.onCloseQuery = [&] { return ++queries > 1; };
  window.onClose = [&] { closed = true; };
  other.sendProtocol(window.xid(), "WM_DELETE_WINDOW");
  settle();  // returns because the loop still ticks
  EXPECT_EQ(queries, 1);
  EXPECT_FALSE(closed);
}

TEST_F(WindowTest, ClosesAfterOnCloseWhenTheCloseQuerySaysYes) {
  show();
  std::vector<std::string> order;
  window.onCloseQuery = [&] {
    order.push_back("query");
    return true;
  };
  window.onClose = [&] { order.push_back("close"); };
  other.sendProtocol(window.xid(), "WM_DELETE_WINDOW");
  window.run();
  order.push_back("ended");
  EXPECT_EQ(order, (std::vector<std::string>{"query", "close", "ended"}));
}

TEST_F(WindowTest, ClosesWithoutAnyCallable) {
  show();
  other.sendProtocol(window.xid(), "WM_DELETE_WINDOW");
  window.run();  // returns
}

TEST_F(WindowTest, IgnoresOtherMessages) {
  show();
  bool asked = false;
  window.onCloseQuery = [&] { return asked = true; };
  other.sendProtocol(window.xid(), "WM_TAKE_FOCUS");
  settle();
  EXPECT_FALSE(asked);
}

}  // namespace
}  // namespace test
