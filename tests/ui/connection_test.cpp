#include "ui/connection.h"

#include <gtest/gtest.h>
#include <signal.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <string>

#include "tests/support/environment.h"
#include "tests/support/x_server.h"
#include "ui/text.h"
#include "ui/x11.h"
#include "ui/x_errors.h"

namespace ui {
namespace {

constexpr int kPx = 1080;
constexpr int kMmAt96 = 286;  // 1080 px on 286 mm are 95.9 dpi

TEST(ScaleFor, TakesTheResourceOverTheSizeOfTheScreen) {
  EXPECT_DOUBLE_EQ(scaleFor("Xft.dpi:\t144\n", kPx, kMmAt96), 1.5);
  EXPECT_DOUBLE_EQ(scaleFor("*foo: 1\nXft.dpi: 120.0\nXft.hinting: 1\n", kPx, kMmAt96), 1.25);
}

TEST(ScaleFor, LooksTheResourceUpByItsClassAsWell) {
  EXPECT_DOUBLE_EQ(scaleFor("Xft.Dpi: 144\n", kPx, kMmAt96), 1.5);
  EXPECT_DOUBLE_EQ(scaleFor("*Dpi: 144\n", kPx, kMmAt96), 1.5);
  EXPECT_DOUBLE_EQ(scaleFor("*Dpi: 144\nXft.dpi: 192\n", kPx, kMmAt96), 2.0);
}

TEST(ScaleFor, StaysBetweenThreeQuartersAndFour) {
  EXPECT_DOUBLE_EQ(scaleFor("Xft.dpi: 48\n", kPx, kMmAt96), 0.75);
  EXPECT_DOUBLE_EQ(scaleFor("Xft.dpi: 480\n", kPx, kMmAt96), 4.0);
  EXPECT_DOUBLE_EQ(scaleFor(nullptr, kPx, 2000), 0.75);
  EXPECT_DOUBLE_EQ(scaleFor(nullptr, kPx, 10), 4.0);
}

TEST(ScaleFor, FallsBackToTheSizeOfTheScreenWhenTheResourceIsNoDpi) {
  const double bySize = kPx * 25.4 / kMmAt96 / 96;
  EXPECT_DOUBLE_EQ(scaleFor(nullptr, kPx, kMmAt96), bySize);
  EXPECT_DOUBLE_EQ(scaleFor("", kPx, kMmAt96), bySize);
  EXPECT_DOUBLE_EQ(scaleFor("Xft.hinting: 1\n", kPx, kMmAt96), bySize);
  EXPECT_DOUBLE_EQ(scaleFor("Xft.dpi: 0\n", kPx, kMmAt96), bySize);
  EXPECT_DOUBLE_EQ(scaleFor("Xft.dpi: -96\n", kPx, kMmAt96), bySize);
  EXPECT_DOUBLE_EQ(scaleFor("Xft.dpi: large\n", kPx, kMmAt96), bySize);
}

TEST(ScaleFor, IsOneWhenTheScreenDoesNotKnowItsSize) {
  EXPECT_DOUBLE_EQ(scaleFor(nullptr, kPx, 0), 1.0);
  EXPECT_DOUBLE_EQ(scaleFor(nullptr, kPx, -1), 1.0);
  EXPECT_DOUBLE_EQ(scaleFor(nullptr, 0, 100), 1.0);
  EXPECT_DOUBLE_EQ(scaleFor("Xft.dpi: 0\n", kPx, 0), 1.0);
}

TEST(Connection, TakesItsScaleFromTheResourceDatabaseOfTheServer) {
  const test::XServer server({.resources = "Xft.dpi:\t144\n"});
  const auto connection = Connection::open();
  ASSERT_TRUE(connection);
  EXPECT_DOUBLE_EQ(connection->scale(), 1.5);
  EXPECT_EQ(connection->scaled(11), 17);
  EXPECT_EQ(connection->depth(), 24);
}

TEST(Connection, TakesItsScaleFromTheSizeOfTheScreenWithoutAResource) {
  const test::XServer server({.dpi = 192});
  const auto connection = Connection::open();
  ASSERT_TRUE(connection);
  EXPECT_NEAR(connection->scale(), 2.0, 0.02);  // the server rounds to whole millimetres
}

TEST(Connection, CannotBeOpenedWithoutAServer) {
  test::ScopedEnvironment environment;
  environment.unset("DISPLAY");
  EXPECT_FALSE(Connection::open());
  environment.set("DISPLAY", ":no-such-display");
  EXPECT_FALSE(Connection::open());
}

TEST(Connection, CannotBeOpenedOnAScreenOf16Bits) {
  const test::XServer server({.depth = 16});
  EXPECT_FALSE(Connection::open());
}

TEST(Connection, OpensOnAScreenOf30Bits) {
  const test::XServer server({.depth = 30});
  const auto connection = Connection::open();
  ASSERT_TRUE(connection);
  EXPECT_EQ(connection->depth(), 30);
}

TEST(Connection, MayFollowAnotherThatHadFonts) {
  const test::XServer server;
  ::testing::internal::CaptureStderr();
  for (int round = 0; round < 3; ++round) {
    const auto connection = Connection::open();
    ASSERT_TRUE(connection);
    const Font font = connection->font(9, FontWeight::Regular);
    EXPECT_GT(textWidth(*connection, font, "label"), 0);
  }
  EXPECT_EQ(::testing::internal::GetCapturedStderr(), "");
}

TEST(XError, OnTheVanishedWindowOfAnotherClientIsPassedOver) {
  const test::XServer server;
  const auto connection = Connection::open();
  ASSERT_TRUE(connection);
  Display* display = connection->native().display;
  const auto gone = XCreateSimpleWindow(display, DefaultRootWindow(display), 0, 0, 1, 1, 0, 0, 0);
  XDestroyWindow(display, gone);
  ::testing::internal::CaptureStderr();
  XMapWindow(display, gone);
  XSync(display, False);
  EXPECT_EQ(::testing::internal::GetCapturedStderr(), "");
}

TEST(XError, OfOurOwnMakingIsReportedAndDoesNotEndTheProgram) {
  const test::XServer server;
  const auto connection = Connection::open();
  ASSERT_TRUE(connection);
  Display* display = connection->native().display;
  ::testing::internal::CaptureStderr();
  XFreePixmap(display, 0x1234);
  XSync(display, False);
  const std::string report = ::testing::internal::GetCapturedStderr();
  EXPECT_NE(report.find("BadPixmap"), std::string::npos) << report;
  EXPECT_NE(report.find("0x1234"), std::string::npos) << report;
}

TEST(ErrorTrap, CatchesTheErrorsOfItsOwnRequestsOnly) {
  const test::XServer server;
  const auto connection = Connection::open();
  ASSERT_TRUE(connection);
  Display* display = connection->native().display;
  ::testing::internal::CaptureStderr();
  XFreePixmap(display, 0x1234);
  {
    ErrorTrap trap(display);
    EXPECT_FALSE(trap.caught());
    XFreePixmap(display, 0x5678);
    EXPECT_TRUE(trap.caught());
  }
  XFreePixmap(display, 0x9ABC);
  XSync(display, False);
  const std::string report = ::testing::internal::GetCapturedStderr();
  EXPECT_NE(report.find("0x1234"), std::string::npos) << report;
  EXPECT_EQ(report.find("0x5678"), std::string::npos) << report;
  EXPECT_NE(report.find("0x9abc"), std::string::npos) << report;
}

TEST(ErrorTrap, DoesNotNest) {
#ifdef NDEBUG
  GTEST_SKIP() << "asserted in debug builds only";
#else
  ::testing::FLAGS_gtest_death_test_style = "fast";
  const test::XServer server;
  const auto connection = Connection::open();
  ASSERT_TRUE(connection);
  Display* display = connection->native().display;
  const ErrorTrap outer(display);
  EXPECT_DEATH(ErrorTrap{display}, "traps do not nest");
#endif
}

TEST(LostServer, EndsTheProgramWithOneLineAndStatus1) {
  ::testing::FLAGS_gtest_death_test_style = "fast";
  const test::XServer server({.startedAnew = true});
  const auto loseServer = [&] {
    const auto connection = Connection::open();
    atexit([] { _exit(7); });  // must not run
    signal(SIGPIPE, SIG_IGN);  // or a request on its way would be the end
    kill(server.pid(), SIGTERM);
    for (;;) XSync(connection->native().display, False);
  };
  EXPECT_EXIT(loseServer(), ::testing::ExitedWithCode(1),
              "^Lost the connection to the X server\\.\n$");
}

TEST(LostServer, LetsTheApplicationSaveWhatIsLeft) {
  ::testing::FLAGS_gtest_death_test_style = "fast";
  const test::XServer server({.startedAnew = true});
  const auto loseServer = [&] {
    const auto connection = Connection::open();
    Connection::setLostAction([] { std::fputs("Saved.\n", stderr); });
    signal(SIGPIPE, SIG_IGN);
    kill(server.pid(), SIGTERM);
    for (;;) XSync(connection->native().display, False);
  };
  EXPECT_EXIT(loseServer(), ::testing::ExitedWithCode(1),
              "^Lost the connection to the X server\\.\nSaved\\.\n$");
}

}  // namespace
}  // namespace ui
