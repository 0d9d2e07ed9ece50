#include "app/map/treemap_picture.h"

#include <gtest/gtest.h>
#include <sys/resource.h>

#include <limits>
#include <memory>
#include <stdexcept>
#include <vector>

#include "tests/app/map/treemap_picture_fixture.h"

namespace app {
namespace {

using sizewalk::kRootNode;

/// White around `kPicturePlace`, `inside` in it.
void expectPlaceFilledWith(const test::Picture& picture, std::uint32_t inside) {
  EXPECT_EQ(picture.count(inside), kPicturePlace.w * kPicturePlace.h);
  EXPECT_EQ(picture.at(kPicturePlace.x, kPicturePlace.y), inside);
  EXPECT_EQ(picture.count(0xFFFFFF), 200 * 100 - kPicturePlace.w * kPicturePlace.h);
}

TEST_F(TreemapPictureTest, PaintsTheBackgroundInItsPlaceBeforeTheFirstPicture) {
  EXPECT_FALSE(picture_.update()) << "nothing is shown";
  expectPlaceFilledWith(painted(), kMapBackground);
  picture_.show(shownTree_, kRootNode);
  expectPlaceFilledWith(painted(), kMapBackground);
}

TEST_F(TreemapPictureTest, PaintsTheLastPictureInItsPlace) {
  picture_.show(shownTree_, kRootNode);
  ASSERT_TRUE(picture_.update());
  const test::Picture picture = painted();
  ASSERT_EQ(picture_.rendered().pixels.size(),
            static_cast<std::size_t>(kPicturePlace.w * kPicturePlace.h));
  for (int y = 0; y < kPicturePlace.h; ++y) {
    for (int x = 0; x < kPicturePlace.w; ++x) {
      ASSERT_EQ(picture.at(kPicturePlace.x + x, kPicturePlace.y + y),
                picture_.rendered().pixels[static_cast<std::size_t>(y * kPicturePlace.w + x)]);
    }
  }
  EXPECT_EQ(picture.count(0xFFFFFF), 200 * 100 - kPicturePlace.w * kPicturePlace.h);
}

TEST_F(TreemapPictureTest, MakesNoNewPictureWhenNothingChanged) {
  picture_.show(shownTree_, kRootNode);
  EXPECT_TRUE(picture_.update());
  EXPECT_FALSE(picture_.update());
  picture_.setRect(kPicturePlace);
  picture_.setMeasure({});
  EXPECT_FALSE(picture_.update());
}

TEST_F(TreemapPictureTest, MakesANewPictureOfANewSizeButNotOfANewPlace) {
  picture_.show(shownTree_, kRootNode);
  picture_.update();
  picture_.setRect({0, 0, kPicturePlace.w, kPicturePlace.h});
  EXPECT_FALSE(picture_.update());
  picture_.setRect({0, 0, 150, 90});
  EXPECT_TRUE(picture_.update());
  EXPECT_EQ(picture_.rendered().width, 150);
  EXPECT_EQ(picture_.rendered().height, 90);
}

TEST_F(TreemapPictureTest, PaintsTheBackgroundUntilThereIsAPictureOfTheNewSize) {
  picture_.show(shownTree_, kRootNode);
  picture_.setRect({0, 0, 50, 50});
  picture_.update();
  picture_.setRect(kPicturePlace);
  expectPlaceFilledWith(painted(), kMapBackground);
}

TEST_F(TreemapPictureTest, MakesANewPictureWhenItIsMarkedOrMeasuresOtherwise) {
  picture_.show(shownTree_, kRootNode);
  picture_.update();
  const auto byLength = picture_.rendered().pixels;
  picture_.markDirty();
  EXPECT_TRUE(picture_.update());
  EXPECT_EQ(picture_.rendered().pixels, byLength);
  picture_.setMeasure({Measure::CurrentSize, true});
  EXPECT_TRUE(picture_.update());
  EXPECT_NE(picture_.rendered().pixels, byLength);
}

TEST_F(TreemapPictureTest, MakesANewPictureWithOtherExtraBlocks) {
  const std::vector<ExtraBlock> free = {{kFreeSpaceBlock, "Free space", 500, 0x2B3648}};
  picture_.show(shownTree_, kRootNode);
  picture_.update();
  picture_.setExtraBlocks(free);
  EXPECT_TRUE(picture_.update());
  EXPECT_EQ(picture_.rendered().extraColours.count(kFreeSpaceBlock), 1U);
  picture_.setExtraBlocks(free);
  EXPECT_FALSE(picture_.update());
  picture_.setExtraBlocks({});
  EXPECT_TRUE(picture_.update());
  EXPECT_TRUE(picture_.rendered().extraColours.empty());
}

TEST_F(TreemapPictureTest, MakesNoPictureWithoutAreaAndKeepsItDue) {
  picture_.setRect({0, 0, 0, 80});
  picture_.show(shownTree_, kRootNode);
  EXPECT_FALSE(picture_.update());
  picture_.setRect(kPicturePlace);
  EXPECT_TRUE(picture_.update());
}

TEST_F(TreemapPictureTest, KeepsAPictureDueThatCouldNotBeMade) {
  constexpr int kMost = std::numeric_limits<int>::max();
  picture_.show(shownTree_, kRootNode);
  picture_.update();
  for (const bool marked : {false, true}) {
    picture_.setRect({0, 0, kMost, kMost});
    if (marked) picture_.markDirty();
    EXPECT_THROW(picture_.update(), std::length_error);
    picture_.setRect(kPicturePlace);
    EXPECT_TRUE(picture_.update());
  }
}

/// The server has no memory for more than it has.
class ServerWithoutMemory {
 public:
  explicit ServerWithoutMemory(const test::XServer& server) : server_(server.pid()) {
    prlimit(server_, RLIMIT_AS, nullptr, &usual_);
    rlimit limit = usual_;
    limit.rlim_cur = server.memory() + kSmallThings;
    prlimit(server_, RLIMIT_AS, &limit, nullptr);
  }
  ~ServerWithoutMemory() { prlimit(server_, RLIMIT_AS, &usual_, nullptr); }
  ServerWithoutMemory(const ServerWithoutMemory&) = delete;
  ServerWithoutMemory& operator=(const ServerWithoutMemory&) = delete;

 private:
  static constexpr rlim_t kSmallThings = 1 << 20;

  const pid_t server_;
  rlimit usual_{};
};

class TreemapPictureOnNewServer : public TreemapPictureTest {
 protected:
  TreemapPictureOnNewServer() : TreemapPictureTest({.startedAnew = true}) {}
};

TEST_F(TreemapPictureOnNewServer, SendsAPictureAgainThatTheServerHadNoRoomFor) {
  constexpr ui::Rect kLargePlace{0, 0, 2000, 1500};
  picture_.setRect(kLargePlace);
  picture_.show(shownTree_, kRootNode);
  {
    const ServerWithoutMemory none(server);
    picture_.update();
    ASSERT_EQ(painted().count(kMapBackground), 200 * 100) << "there was room for it";
    EXPECT_TRUE(picture_.due()) << "so that a frame is asked for";
    picture_.update();
    EXPECT_TRUE(picture_.due());
  }
  const std::vector<std::uint32_t> pixels = picture_.rendered().pixels;
  picture_.update();
  EXPECT_FALSE(picture_.due());
  EXPECT_EQ(picture_.rendered().pixels, pixels) << "it was only to be sent";
  EXPECT_EQ(painted().at(100, 50), pixels[50 * 2000 + 100]);
  EXPECT_FALSE(picture_.update()) << "once";
}

TEST_F(TreemapPictureTest, HasNothingToSendAgainWhereNothingIsToBeSeen) {
  picture_.show(std::make_shared<sizewalk::FileTree>(), kRootNode);
  picture_.update();
  EXPECT_FALSE(picture_.due());
  EXPECT_FALSE(picture_.update());
  picture_.show(nullptr, kRootNode);
}

TEST_F(TreemapPictureTest, ForgetsItsPictureWhenNothingIsShownAnyMore) {
  picture_.show(shownTree_, kRootNode);
  picture_.update();
  picture_.show(nullptr, kRootNode);
  EXPECT_FALSE(picture_.update());
  expectPlaceFilledWith(painted(), kMapBackground);
}

TEST_F(TreemapPictureTest, KeepsItsPictureOfATreeButNotForAnother) {
  picture_.show(shownTree_, kRootNode);
  picture_.update();
  picture_.show(shownTree_, tree_.firstChild(kRootNode));
  EXPECT_NE(picture_.rendered().blockUnder(0, 0), nullptr);
  const auto next = std::make_shared<sizewalk::FileTree>();
  test::fillRoot(*next, {test::file(1)});
  picture_.show(next, kRootNode);
  EXPECT_EQ(picture_.rendered().blockUnder(0, 0), nullptr) << "its ids are not of this tree";
  expectPlaceFilledWith(painted(), kMapBackground);
  EXPECT_TRUE(picture_.update());
  EXPECT_NE(picture_.rendered().blockUnder(0, 0), nullptr);
  picture_.show(nullptr, kRootNode);
}

}  // namespace
}  // namespace app
