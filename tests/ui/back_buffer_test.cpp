#include "ui/back_buffer.h"

#include <memory>

#include "tests/ui/window_test_base.h"

namespace ui {
namespace {

class BackBufferTest : public test::WindowTest {
 protected:
  struct Size {
    unsigned width = 0;
    unsigned height = 0;
    friend bool operator==(const Size&, const Size&) = default;
  };

  bool fit(int width, int height) {
    const Connection::Native& x = connection->native();
    return BackBuffer::fit(buffer_, *connection, RootWindow(x.display, x.screen), width, height);
  }
  /// What the server holds of it.
  Size pixmapSize() {
    ::Window root = 0;
    int x = 0;
    int y = 0;
    Size size;
    unsigned border = 0;
    unsigned depth = 0;
    XGetGeometry(connection->native().display, buffer_->pixmap(), &root, &x, &y, &size.width,
                 &size.height, &border, &depth);
    return size;
  }

  std::unique_ptr<BackBuffer> buffer_;
};

TEST_F(BackBufferTest, HasRoomForTheStepsOfAnEdgeThatIsDragged) {
  ASSERT_TRUE(fit(300, 700));
  EXPECT_EQ(pixmapSize(), (Size{512, 768}));
  const Pixmap pixmap = buffer_->pixmap();
  for (const int step : {1, 50, 212, -43}) {
    ASSERT_TRUE(fit(300 + step, 700));
    EXPECT_EQ(buffer_->pixmap(), pixmap) << step;
    EXPECT_EQ(buffer_->width(), 300 + step);
    EXPECT_EQ(buffer_->height(), 700);
  }
  ASSERT_TRUE(fit(513, 700));
  EXPECT_EQ(pixmapSize(), (Size{768, 768}));
}

TEST_F(BackBufferTest, TakesNoMoreThanItNeedsOnceItIsSmaller) {
  ASSERT_TRUE(fit(1000, 1000));
  ASSERT_TRUE(fit(400, 1000));
  EXPECT_EQ(pixmapSize(), (Size{512, 1024}));
  ASSERT_TRUE(fit(255, 1));
  EXPECT_EQ(pixmapSize(), (Size{255, 1}));
  ASSERT_TRUE(fit(254, 1));
  EXPECT_EQ(pixmapSize(), (Size{254, 1}));
}

TEST_F(BackBufferTest, IsAsLongAsAPixmapMayBe) {
  ASSERT_TRUE(fit(32767, 1));
  EXPECT_EQ(pixmapSize(), (Size{32767, 1}));
  EXPECT_FALSE(fit(32768, 1));
  EXPECT_EQ(buffer_, nullptr);
  EXPECT_TRUE(fit(1, 1)) << "after one for which there was no room";
}

}  // namespace
}  // namespace ui
