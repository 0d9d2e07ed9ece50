#include "ui/server_image.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <vector>

#include "tests/support/counting_proxy.h"
#include "tests/ui/window_test_base.h"
#include "ui/back_buffer.h"
#include "ui/x11.h"

namespace test {
namespace {

constexpr ui::Colour kWhite = 0xFFFFFFFF;
constexpr int kWidth = 30;
constexpr int kHeight = 20;

/// `count` pixels, no two neighbours alike and none of them white.
std::vector<std::uint32_t> someColours(int count) {
  std::vector<std::uint32_t> pixels(static_cast<std::size_t>(count));
  std::uint32_t number = 0;
  std::ranges::generate(pixels, [&] { return number++ * 0x010307 & 0xFEFEFE; });
  return pixels;
}

class ServerImageTest : public WindowTest {
 protected:
  explicit ServerImageTest(const XServerOptions& options = {}) : WindowTest(options) {
    image_.set(pixels_, kWidth, kHeight);
  }

  /// What `draw` leaves on white ground.
  Picture onWhite(const std::function<void(ui::Canvas&)>& draw) {
    return paint([&](ui::Canvas& canvas) {
      canvas.fillRect({0, 0, 200, 100}, kWhite);
      draw(canvas);
    });
  }

  Picture drawnAt(int x, int y) {
    return onWhite([&](ui::Canvas& canvas) { image_.draw(canvas, x, y); });
  }

  const std::vector<std::uint32_t> pixels_ = someColours(kWidth * kHeight);
  ui::ServerImage image_{*connection};
};

/// `picture` shows `pixels`, rows of `place.w` of them, in `place` as far as `clip` lets through,
/// and white elsewhere.
void expectShown(const Picture& picture, const std::vector<std::uint32_t>& pixels,
                 const ui::Rect& place, const ui::Rect& clip = {0, 0, 200, 100}) {
  for (int y = 0; y < picture.height; ++y) {
    for (int x = 0; x < picture.width; ++x) {
      const bool inside = place.contains(x, y) && clip.contains(x, y);
      const auto at = static_cast<std::size_t>((y - place.y) * place.w + x - place.x);
      ASSERT_EQ(picture.at(x, y), inside ? pixels[at] : 0xFFFFFFu) << x << "," << y;
    }
  }
}

TEST_F(ServerImageTest, DrawsExactlyItsPixelsInItsPlace) {
  EXPECT_EQ(image_.width(), kWidth);
  EXPECT_EQ(image_.height(), kHeight);
  expectShown(drawnAt(50, 40), pixels_, {50, 40, kWidth, kHeight});
}

TEST_F(ServerImageTest, DrawsNoMoreThanTheClipLetsThrough) {
  const ui::Rect clip{60, 30, 10, 15};
  const auto picture = onWhite([&](ui::Canvas& canvas) {
    canvas.pushClip(clip);
    image_.draw(canvas, 50, 40);
    canvas.popClip();
  });
  expectShown(picture, pixels_, {50, 40, kWidth, kHeight}, clip);
}

TEST_F(ServerImageTest, IsCutAtTheEdgesOfTheWindow) {
  expectShown(drawnAt(-10, -5), pixels_, {-10, -5, kWidth, kHeight});
  expectShown(drawnAt(190, 95), pixels_, {190, 95, kWidth, kHeight});
}

TEST_F(ServerImageTest, DrawsNothingOutsideTheWindow) {
  for (const int x : {-kWidth, 200, -70'000, 65'536}) {
    EXPECT_EQ(drawnAt(x, 0).count(0xFFFFFF), 200 * 100) << x;
  }
}

TEST_F(ServerImageTest, TakesOtherPixelsOfTheSameSize) {
  const std::vector<std::uint32_t> red(kWidth * kHeight, 0xFF0000);
  image_.set(red, kWidth, kHeight);
  expectShown(drawnAt(0, 0), red, {0, 0, kWidth, kHeight});
}

TEST_F(ServerImageTest, TakesAnotherSize) {
  const auto larger = someColours(100 * 60);
  image_.set(larger, 100, 60);
  EXPECT_EQ(image_.width(), 100);
  EXPECT_EQ(image_.height(), 60);
  expectShown(drawnAt(5, 5), larger, {5, 5, 100, 60});
  const auto smaller = someColours(3);
  image_.set(smaller, 1, 3);
  expectShown(drawnAt(5, 5), smaller, {5, 5, 1, 3});
}

class ServerImageOnNewServer : public ServerImageTest {
 protected:
  ServerImageOnNewServer() : ServerImageTest({.startedAnew = true}) {}
};

TEST_F(ServerImageOnNewServer, GivesTheServerTheMemoryOfEachPictureBack) {
  constexpr int kPictures = 30;
  const auto pixels = someColours(1100 * 700);
  image_.set(pixels, 1000, 700);
  drawnAt(0, 0);
  const std::size_t before = server.memory();
  for (int i = 0; i < kPictures; ++i) {
    if (i % 2 == 0) image_.clear();
    image_.set(pixels, 1000 + i, 700);
  }
  drawnAt(0, 0);  // waits for the server
  EXPECT_LT(server.memory(), before + kPictures / 3 * std::size_t{4} * 1000 * 700);
}

TEST_F(ServerImageTest, TakesOtherPixelsForAPart) {
  const ui::Rect part{4, 3, 10, 5};
  const std::vector<std::uint32_t> red(10 * 5, 0xFF0000);
  image_.replace(part, red);
  auto expected = pixels_;
  for (int y = part.y; y < part.y + part.h; ++y) {
    for (int x = part.x; x < part.x + part.w; ++x) {
      expected[static_cast<std::size_t>(y * kWidth + x)] = 0xFF0000;
    }
  }
  expectShown(drawnAt(50, 40), expected, {50, 40, kWidth, kHeight});
  image_.clear();
  image_.replace(part, red);
  EXPECT_EQ(drawnAt(50, 40).count(0xFFFFFF), 200 * 100) << "without a picture there are no parts";
}

TEST_F(ServerImageTest, IgnoresTheTopByteAndPixelsPastTheLast) {
  std::vector<std::uint32_t> pixels = pixels_;
  for (std::uint32_t& pixel : pixels) pixel |= 0xAB000000;
  pixels.resize(pixels.size() + 5, 0x123456);
  image_.set(pixels, kWidth, kHeight);
  expectShown(drawnAt(50, 40), pixels_, {50, 40, kWidth, kHeight});
}

TEST_F(ServerImageTest, HasNoPictureOfTooFewPixels) {
  image_.set(std::span(pixels_).first(pixels_.size() - 1), kWidth, kHeight);
  EXPECT_EQ(image_.width(), 0);
  EXPECT_EQ(image_.height(), 0);
  EXPECT_EQ(drawnAt(50, 40).count(0xFFFFFF), 200 * 100);
}

TEST_F(ServerImageTest, HasNoPictureWithoutArea) {
  for (const auto& [w, h] : {std::pair{0, kHeight}, {kWidth, 0}, {-1, kHeight}, {-1, -1}}) {
    image_.set(pixels_, kWidth, kHeight);
    image_.set(pixels_, w, h);
    EXPECT_EQ(image_.width(), 0) << w << " x " << h;
    EXPECT_EQ(image_.height(), 0) << w << " x " << h;
  }
  EXPECT_EQ(drawnAt(50, 40).count(0xFFFFFF), 200 * 100);
}

TEST_F(ServerImageTest, IsGoneWhenItIsClearedAndComesAgain) {
  image_.clear();
  EXPECT_EQ(image_.width(), 0);
  EXPECT_EQ(drawnAt(50, 40).count(0xFFFFFF), 200 * 100);
  image_.clear();
  image_.set(pixels_, kWidth, kHeight);
  expectShown(drawnAt(50, 40), pixels_, {50, 40, kWidth, kHeight});
}

/// A connection through a counting proxy, with something to draw on.
class ServerImageTrafficTest : public ::testing::Test {
 protected:
  static constexpr int kMapWidth = 1000;
  static constexpr int kMapHeight = 700;

  ~ServerImageTrafficTest() override { XFreeGC(display(), gc_); }

  Display* display() const { return connection_->native().display; }
  ::Window root() const { return RootWindow(display(), connection_->native().screen); }

  /// How much is sent for what `act` asks of the server.
  std::uint64_t bytesFor(const std::function<void()>& act) {
    XSync(display(), False);
    const std::uint64_t before = proxy_.bytesToServer();
    act();
    XSync(display(), False);
    return proxy_.bytesToServer() - before;
  }

  XServer server_;
  CountingProxy proxy_{server_.display()};
  const std::unique_ptr<ui::Connection> connection_ = ui::Connection::open();
  const std::unique_ptr<ui::BackBuffer> buffer_ =
      ui::BackBuffer::create(*connection_, root(), kMapWidth, kMapHeight);
  GC gc_ = XCreateGC(display(), buffer_->pixmap(), 0, nullptr);
  const ui::PaintTarget target_ = {buffer_->pixmap(), buffer_->draw(), gc_, kMapWidth, kMapHeight};
  ui::Canvas canvas_{*connection_, target_};
  ui::ServerImage image_{*connection_};
};

TEST_F(ServerImageTrafficTest, SendsItsPixelsOnceHoweverOftenItIsDrawn) {
  const auto pixels = someColours(kMapWidth * kMapHeight);
  const std::uint64_t size = pixels.size() * sizeof(pixels[0]);
  const auto sent = bytesFor([&] { image_.set(pixels, kMapWidth, kMapHeight); });
  EXPECT_GE(sent, size);
  EXPECT_LT(sent, size + size / 100);

  const auto drawn = bytesFor([&] {
    for (int i = 0; i < 10; ++i) image_.draw(canvas_, i, i);
  });
  EXPECT_GT(drawn, 0u);
  EXPECT_LT(drawn, 1000u);
}

TEST_F(ServerImageTrafficTest, SendsNothingForAPictureThatItDoesNotHave) {
  image_.draw(canvas_, 0, 0);
  const auto nothing = bytesFor([] {});
  EXPECT_EQ(bytesFor([&] { image_.draw(canvas_, 0, 0); }), nothing);
}

}  // namespace
}  // namespace test
