#include "ui/capture.h"

#include <gtest/gtest.h>

#include "tests/ui/window_test_base.h"

namespace test {
namespace {

class CaptureTest : public WindowTest {};

TEST_F(CaptureTest, FailsBeforeTheFirstPaint) {
  const std::string path = directory / "frame.ppm";
  EXPECT_FALSE(window.capture(path));
  ASSERT_TRUE(window.create("Window under test", 10, 10));
  EXPECT_FALSE(window.capture(path));
  EXPECT_THROW(readFile(path), std::system_error);
}

TEST_F(CaptureTest, OfOnePixelIsElevenBytesOfHeaderAndThreeOfPixel) {
  window.onPaint = [](ui::Canvas& canvas) { canvas.fillRect({0, 0, 1, 1}, 0xFF123456); };
  show(1, 1);
  const std::string path = directory / "frame.ppm";
  ASSERT_TRUE(window.capture(path));
  EXPECT_EQ(readFile(path), "P6\n1 1\n255\n\x12\x34\x56");
}

TEST_F(CaptureTest, WritesRowsFromTopToBottomAndPixelsFromLeftToRight) {
  const Picture picture = paint([](ui::Canvas& canvas) {
    canvas.fillRect({0, 0, 200, 100}, 0xFF000000);
    canvas.fillRect({199, 0, 1, 1}, 0xFFFF0000);
    canvas.fillRect({0, 99, 1, 1}, 0xFF0000FF);
  });
  EXPECT_EQ(picture.width, 200);
  EXPECT_EQ(picture.height, 100);
  EXPECT_EQ(picture.at(199, 0), 0xFF0000u);
  EXPECT_EQ(picture.at(0, 99), 0x0000FFu);
  EXPECT_EQ(picture.count(0x000000), 200 * 100 - 2);
}

TEST_F(CaptureTest, ReplacesWhatTheFileHeld) {
  const std::string path = directory / "frame.ppm";
  writeFile(path, std::string(1'000'000, 'x'));
  show(3, 2);
  ASSERT_TRUE(window.capture(path));
  EXPECT_EQ(readFile(path).size(), 11u + 18u);
}

TEST_F(CaptureTest, FailsWhenTheFileCannotBeOpened) {
  show();
  EXPECT_FALSE(window.capture(directory / "missing/frame.ppm"));
  EXPECT_FALSE(window.capture(directory.path()));
  EXPECT_FALSE(window.capture(""));
}

TEST_F(CaptureTest, FailsForAWindowWithoutArea) {
  show();
  other.sendConfigure(window.xid(), 0, 50);
  settle();
  ASSERT_EQ(window.width(), 0);
  ::testing::internal::CaptureStderr();
  EXPECT_FALSE(window.capture(directory / "frame.ppm"));
  EXPECT_EQ(::testing::internal::GetCapturedStderr(), "") << "the server was asked nonetheless";
}

TEST_F(CaptureTest, FailsUntilAGrownWindowWasPainted) {
  show(50, 50);
  bool captured = true;
  window.onResize = [&](int, int) { captured = window.capture(directory / "frame.ppm"); };
  other.resizeWindow(window.xid(), 60, 50);
  ::testing::internal::CaptureStderr();
  settle();
  EXPECT_EQ(::testing::internal::GetCapturedStderr(), "") << "the server was asked nonetheless";
  EXPECT_FALSE(captured);
  EXPECT_EQ(capture().width, 60);
}

TEST_F(CaptureTest, ReportsSuccessOnAFullDisk) {
  show();
  EXPECT_TRUE(window.capture("/dev/full"));
}

TEST(WritePpm, CutsWideChannelsToTheirLowEightBits) {
  const TempDirectory directory;
  const ui::PixelFormat format = ui::PixelFormat::of(30, 0x3FF00000, 0xFFC00, 0x3FF);
  const std::string path = directory / "frame.ppm";
  const auto pixelAt = [](int, int) { return 0x101ul << 20 | 0x3FFul << 10 | 0x280ul; };
  ASSERT_TRUE(ui::writePpm(path, 1, 1, format, pixelAt));
  EXPECT_EQ(readFile(path), "P6\n1 1\n255\n\x01\xFF\x80");
}

}  // namespace
}  // namespace test
