#include "app/map/treemap_picture.h"

#include <gtest/gtest.h>
#include <sys/resource.h>

#include <atomic>
#include <chrono>
#include <functional>
#include <limits>
#include <memory>
#include <mutex>
#include <stdexcept>
#include <vector>

#include "app/map/cushion_shading.h"
#include "base/detached_threads.h"
#include "tests/app/map/map_tree.h"
#include "tests/app/map/memory_elsewhere.h"
#include "tests/support/eventually.h"
#include "tests/support/waiting_thread.h"
#include "tests/ui/window_test_base.h"

namespace app {
namespace {

using sizewalk::kRootNode;

constexpr ui::Rect kPlace{20, 10, 120, 80};

/// A picture of a tree of two files, in a window of 200 x 100.
class TreemapPictureTest : public test::WindowTest {
 protected:
  explicit TreemapPictureTest(const test::XServerOptions& options = {})
      : test::WindowTest(options) {
    test::fillRoot(tree_, {test::file(1000, 5), {.kind = 6, .apparent = 10, .allocated = 1000}});
    picture_.setRect(kPlace);
  }

  /// What the picture leaves on white ground.
  test::Picture painted() {
    return paint([&](ui::Canvas& canvas) {
      canvas.fillRect({0, 0, 200, 100}, 0xFFFFFFFF);
      picture_.paint(canvas);
    });
  }

  const std::shared_ptr<sizewalk::FileTree> shownTree_ =
      std::make_shared<sizewalk::FileTree>(test::mapTreeOptions());
  sizewalk::FileTree& tree_ = *shownTree_;
  KindColours colours_{true};
  TreemapPicture picture_{*connection, colours_};
};

/// White around `kPlace`, `inside` in it.
void expectPlaceFilledWith(const test::Picture& picture, std::uint32_t inside) {
  EXPECT_EQ(picture.count(inside), kPlace.w * kPlace.h);
  EXPECT_EQ(picture.at(kPlace.x, kPlace.y), inside);
  EXPECT_EQ(picture.count(0xFFFFFF), 200 * 100 - kPlace.w * kPlace.h);
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
  ASSERT_EQ(picture_.rendered().pixels.size(), static_cast<std::size_t>(kPlace.w * kPlace.h));
  for (int y = 0; y < kPlace.h; ++y) {
    for (int x = 0; x < kPlace.w; ++x) {
      ASSERT_EQ(picture.at(kPlace.x + x, kPlace.y + y),
                picture_.rendered().pixels[static_cast<std::size_t>(y * kPlace.w + x)]);
    }
  }
  EXPECT_EQ(picture.count(0xFFFFFF), 200 * 100 - kPlace.w * kPlace.h);
}

TEST_F(TreemapPictureTest, MakesNoNewPictureWhenNothingChanged) {
  picture_.show(shownTree_, kRootNode);
  EXPECT_TRUE(picture_.update());
  EXPECT_FALSE(picture_.update());
  picture_.setRect(kPlace);
  picture_.setMeasure({});
  EXPECT_FALSE(picture_.update());
}

TEST_F(TreemapPictureTest, MakesANewPictureOfANewSizeButNotOfANewPlace) {
  picture_.show(shownTree_, kRootNode);
  picture_.update();
  picture_.setRect({0, 0, kPlace.w, kPlace.h});
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
  picture_.setRect(kPlace);
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
  picture_.setRect(kPlace);
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
    picture_.setRect(kPlace);
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
  constexpr ui::Rect kLarge{0, 0, 2000, 1500};
  picture_.setRect(kLarge);
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

/// Large enough to be sent in bands, four of them.
constexpr ui::Rect kLarge{0, 0, 1000, 800};

/// Pictures of a tree that grows, made in the background; what they post is run when a test says.
class BackgroundPictureTest : public test::WindowTest {
 protected:
  BackgroundPictureTest() {
    folders_ = test::fillRoot(tree_, {test::file(1000, 5), test::folder(), test::folder()});
    test::fill(tree_, folders_[0], {test::file(1000, 6)});
    picture_.setRect(kPlace);
    picture_.onRendered = [this] { ++told_; };
    picture_.show(shownTree_, kRootNode);
    picture_.update();
  }

  void growTree() {
    test::fill(tree_, folders_[1], {test::file(3000, 7)});
    picture_.markOutdated();
  }
  /// Begins a picture of the grown tree and waits until it is posted.
  void makeInBackground() {
    growTree();
    ASSERT_FALSE(picture_.update()) << "nothing is there to be seen yet";
    ASSERT_TRUE(test::eventually([&] { return tasks() == 1; }));
  }
  static bool picturesHaveEnded() {
    return base::awaitDetachedThreads(std::chrono::steady_clock::now() + std::chrono::seconds(20));
  }
  std::size_t tasks() {
    const std::lock_guard lock(mutex_);
    return tasks_.size();
  }
  void runTasks() {
    std::vector<std::function<void()>> tasks;
    {
      const std::lock_guard lock(mutex_);
      tasks.swap(tasks_);
    }
    for (const auto& task : tasks) task();
  }
  /// Those, too, that they post themselves.
  void runAllTasks() {
    while (tasks() > 0) runTasks();
  }
  /// Shows the last picture in `kLarge`, and has made one of the grown tree.
  void makeLargeInBackground() {
    picture_.setRect(kLarge);
    picture_.update();
    makeInBackground();
  }
  /// All that `picture` leaves in the window, seen in windows full one after the other.
  std::vector<std::uint32_t> seenOf(TreemapPicture& picture) {
    const ui::Rect place = picture.rect();
    std::vector<std::uint32_t> seen;
    for (int y = 0; y < place.h; y += 100) {
      for (int x = 0; x < place.w; x += 200) {
        picture.setRect({-x, -y, place.w, place.h});
        const test::Picture part = paint([&](ui::Canvas& canvas) { picture.paint(canvas); });
        for (int i = 0; i < 200 * 100; ++i) seen.push_back(part.at(i % 200, i / 200));
      }
    }
    picture.setRect(place);
    return seen;
  }
  /// What is seen where the same is sent at once.
  std::vector<std::uint32_t> seenAtOnce(const std::vector<sizewalk::NodeId>& selected,
                                        std::optional<sizewalk::KindIndex> kind = {}) {
    TreemapPicture second(*connection, colours_);
    second.setRect(kLarge);
    second.show(shownTree_, kRootNode);
    second.setSelected(selected);
    second.setHighlight(kind);
    second.update();
    return seenOf(second);
  }
  /// As it is drawn without a background.
  std::vector<std::uint32_t> drawnAtOnce(const ui::Rect& place, sizewalk::NodeId focus) {
    return renderTreemap(tree_, focus, place.w, place.h, colours_, {}, {}).pixels;
  }
  /// How long `drawnAtOnce` takes.
  std::chrono::steady_clock::duration drawingTime(const ui::Rect& place) {
    const auto begin = std::chrono::steady_clock::now();
    drawnAtOnce(place, kRootNode);
    return std::chrono::steady_clock::now() - begin;
  }

  const std::shared_ptr<sizewalk::FileTree> shownTree_ =
      std::make_shared<sizewalk::FileTree>(test::mapTreeOptions());
  sizewalk::FileTree& tree_ = *shownTree_;
  std::vector<sizewalk::NodeId> folders_;
  KindColours colours_{true};
  std::mutex mutex_;  // guards the tasks
  std::vector<std::function<void()>> tasks_;
  int told_ = 0;
  TreemapPicture picture_{*connection, colours_, [this](std::function<void()> task) {
                            const std::lock_guard lock(mutex_);
                            tasks_.push_back(std::move(task));
                          }};
};

TEST_F(BackgroundPictureTest, MakesItsFirstPictureAtOnce) {
  EXPECT_EQ(picture_.rendered().pixels, drawnAtOnce(kPlace, kRootNode));
  EXPECT_FALSE(picture_.behind());
  EXPECT_EQ(tasks(), 0U);
}

TEST_F(BackgroundPictureTest, MakesTheFirstPictureOfAScanThatHasJustBegunInTheBackground) {
  const auto begun = std::make_shared<sizewalk::FileTree>(test::mapTreeOptions());
  test::fillRoot(*begun, {test::file(1000, 5)});
  picture_.show(begun, kRootNode);
  picture_.setGrowing(true);
  for (int i = 0; i < 3; ++i) EXPECT_FALSE(picture_.update()) << "one at a time";
  EXPECT_TRUE(picture_.behind());
  EXPECT_TRUE(picture_.rendered().pixels.empty());
  ASSERT_TRUE(test::eventually([&] { return tasks() == 1; }));
  runTasks();
  EXPECT_TRUE(picture_.update());
  EXPECT_EQ(picture_.rendered().pixels,
            renderTreemap(*begun, kRootNode, kPlace.w, kPlace.h, colours_, {}, {}).pixels);
  EXPECT_TRUE(picturesHaveEnded());
}

TEST_F(BackgroundPictureTest, DrawsSomethingElseOfAScanThatHasJustBegunOnceThatIsThere) {
  const auto begun = std::make_shared<sizewalk::FileTree>(test::mapTreeOptions());
  const auto folders = test::fillRoot(*begun, {test::file(1000, 5), test::folder()});
  test::fill(*begun, folders[0], {test::file(1000, 6)});
  picture_.show(begun, kRootNode);
  picture_.setGrowing(true);
  EXPECT_FALSE(picture_.update());
  picture_.show(begun, folders[0]);
  ASSERT_TRUE(test::eventually([&] { return tasks() == 1; }));
  runTasks();
  EXPECT_FALSE(picture_.update()) << "what was finished is not to be seen any more";
  ASSERT_TRUE(test::eventually([&] { return tasks() == 1; }));
  runTasks();
  EXPECT_TRUE(picture_.update());
  EXPECT_EQ(picture_.rendered().root, folders[0]);
  EXPECT_TRUE(picturesHaveEnded());
}

TEST_F(BackgroundPictureTest, KeepsTheLastPictureUntilThatOfTheGrownTreeIsThere) {
  const std::vector<std::uint32_t> last = picture_.rendered().pixels;
  makeInBackground();
  EXPECT_TRUE(picture_.behind());
  EXPECT_EQ(picture_.rendered().pixels, last);
  EXPECT_FALSE(picture_.update());
  runTasks();
  EXPECT_EQ(told_, 1);
  EXPECT_FALSE(picture_.behind());
  EXPECT_NE(picture_.rendered().pixels, last);
  EXPECT_EQ(picture_.rendered().pixels, drawnAtOnce(kPlace, kRootNode));
  EXPECT_TRUE(picture_.update()) << "it is to be sent";
  EXPECT_FALSE(picture_.update());
}

TEST_F(BackgroundPictureTest, IsDrawingFromTheMomentThatTheTreeHasGrown) {
  growTree();
  EXPECT_TRUE(picture_.behind());
  picture_.setRect({0, 0, 0, 80});
  EXPECT_FALSE(picture_.behind()) << "without area there never is a picture";
}

TEST_F(BackgroundPictureTest, MakesOneAtATime) {
  makeInBackground();
  picture_.markOutdated();
  EXPECT_FALSE(picture_.due());
  EXPECT_FALSE(picture_.update());
  runTasks();
  ASSERT_TRUE(test::eventually([&] { return picture_.due(); }));
  EXPECT_TRUE(picture_.update());
  EXPECT_FALSE(picture_.due()) << "the next has begun";
  ASSERT_TRUE(test::eventually([&] { return tasks() == 1; }));
  runTasks();
  EXPECT_FALSE(picture_.behind());
  EXPECT_EQ(told_, 2);
}

TEST_F(BackgroundPictureTest, PausesAfterAPictureUntilTheTreeGrowsNoMore) {
  const ui::Rect large = {0, 0, 1500, 1000};  // takes a few milliseconds
  const auto cost = drawingTime(large);
  const auto begin = std::chrono::steady_clock::now();
  picture_.setGrowing(true);
  picture_.setRect(large);
  picture_.update();
  makeInBackground();
  runAllTasks();
  picture_.markOutdated();
  const bool due = picture_.due();
  // It took that long once, and the next one is expected to: twenty times that is to pass.
  const bool looksSoon = std::chrono::steady_clock::now() - begin < 10 * cost;
  EXPECT_FALSE(due && looksSoon);
  EXPECT_TRUE(test::eventually([&] { return picture_.due(); }));
  picture_.update();
  ASSERT_TRUE(test::eventually([&] { return tasks() == 1; }));
  runAllTasks();
  picture_.markOutdated();
  picture_.setGrowing(false);
  EXPECT_TRUE(picture_.due());
}

TEST_F(BackgroundPictureTest, DoesNotHaveTheLastPictureWaitForOneOfTheGrowingTree) {
  picture_.setGrowing(true);
  growTree();
  picture_.update();
  ASSERT_TRUE(picture_.behind());
  ASSERT_FALSE(picture_.due()) << "one is being made";
  picture_.setGrowing(false);
  EXPECT_TRUE(picture_.due());
  picture_.update();
  // What was given up tells nothing; the last picture does.
  ASSERT_TRUE(test::eventually([&] {
    runTasks();
    return told_ > 0;
  }));
  EXPECT_EQ(told_, 1);
  EXPECT_FALSE(picture_.behind());
}

TEST_F(BackgroundPictureTest, ShowsSomethingElseAtOnceAndStaysThere) {
  makeInBackground();
  picture_.show(shownTree_, folders_[0]);
  EXPECT_TRUE(picture_.update());
  const std::vector<std::uint32_t> inside = drawnAtOnce(kPlace, folders_[0]);
  EXPECT_EQ(picture_.rendered().pixels, inside);
  runTasks();
  EXPECT_FALSE(picture_.update()) << "what was made meanwhile shows another folder";
  EXPECT_EQ(picture_.rendered().pixels, inside);
}

TEST_F(BackgroundPictureTest, SendsALargePictureInBandsAndShowsItOnceAllAreThere) {
  makeLargeInBackground();
  const std::vector<std::uint32_t> lastPixels = picture_.rendered().pixels;
  const std::vector<std::uint32_t> lastSeen = seenOf(picture_);
  for (int turn = 0; turn < 4; ++turn) {
    runTasks();
    EXPECT_EQ(tasks(), 1U) << "each band has a turn of its own";
    EXPECT_FALSE(picture_.update());
    EXPECT_FALSE(picture_.due());
    EXPECT_TRUE(picture_.behind());
    EXPECT_TRUE(picture_.rendered().pixels == lastPixels);
    EXPECT_TRUE(seenOf(picture_) == lastSeen) << turn;
    EXPECT_EQ(told_, 0);
  }
  runTasks();
  EXPECT_EQ(tasks(), 0U);
  EXPECT_EQ(told_, 1);
  EXPECT_FALSE(picture_.behind());
  EXPECT_TRUE(picture_.rendered().pixels == drawnAtOnce(kLarge, kRootNode));
  EXPECT_TRUE(picture_.update());
  EXPECT_FALSE(picture_.update());
  EXPECT_TRUE(seenOf(picture_) == seenAtOnce({}));
  EXPECT_FALSE(seenOf(picture_) == lastSeen);
}

TEST_F(BackgroundPictureTest, OutlinesInEveryBandWhatIsSelected) {
  const std::vector<sizewalk::NodeId> selected = {tree_.firstChild(kRootNode), folders_[0]};
  picture_.setSelected(selected);
  makeLargeInBackground();
  runAllTasks();
  picture_.update();
  EXPECT_TRUE(seenOf(picture_) == seenAtOnce(selected));
  EXPECT_FALSE(seenOf(picture_) == seenAtOnce({}));
}

TEST_F(BackgroundPictureTest, FollowsTheSelectionWhileBandsAreSent) {
  const std::vector<sizewalk::NodeId> selected = {tree_.firstChild(kRootNode)};
  makeLargeInBackground();
  const std::vector<std::uint32_t> before = seenOf(picture_);
  runTasks();
  runTasks();
  picture_.setSelected(selected);
  EXPECT_FALSE(picture_.update());
  EXPECT_FALSE(seenOf(picture_) == before) << "it is seen at once on the last picture";
  runAllTasks();
  EXPECT_TRUE(picture_.update());
  EXPECT_TRUE(seenOf(picture_) == seenAtOnce(selected));
}

TEST_F(BackgroundPictureTest, FollowsTheHighlightedKindWhileBandsAreSent) {
  makeLargeInBackground();
  runTasks();
  runTasks();
  picture_.setHighlight(sizewalk::KindIndex{6});
  picture_.update();
  runAllTasks();
  EXPECT_TRUE(picture_.update());
  EXPECT_TRUE(seenOf(picture_) == seenAtOnce({}, sizewalk::KindIndex{6}));
}

TEST_F(BackgroundPictureTest, GivesUpWhatIsOnItsWayWhereSomethingElseIsToBeSeen) {
  makeLargeInBackground();
  runTasks();
  runTasks();
  picture_.show(shownTree_, folders_[0]);
  EXPECT_TRUE(picture_.update());
  const std::vector<std::uint32_t> inside = drawnAtOnce(kLarge, folders_[0]);
  EXPECT_TRUE(picture_.rendered().pixels == inside);
  runAllTasks();
  EXPECT_EQ(told_, 0);
  EXPECT_FALSE(picture_.update());
  EXPECT_TRUE(picture_.rendered().pixels == inside);
}

TEST_F(BackgroundPictureTest, GivesUpWhatIsOnItsWayWhenTheTreeGrowsNoMore) {
  picture_.setGrowing(true);
  picture_.setRect(kLarge);
  picture_.update();
  growTree();
  ASSERT_TRUE(test::eventually([&] {
    picture_.update();
    return tasks() == 1;
  }));
  runTasks();
  runTasks();
  picture_.setGrowing(false);
  runAllTasks();
  EXPECT_EQ(told_, 0);
  EXPECT_TRUE(picture_.due()) << "the last one is to be made";
}

TEST_F(BackgroundPictureTest, LeavesNothingBehindThatUsesItOnceItIsDestroyed) {
  {
    TreemapPicture second(*connection, colours_, [this](std::function<void()> task) {
      const std::lock_guard lock(mutex_);
      tasks_.push_back(std::move(task));
    });
    second.setRect(kLarge);
    second.show(shownTree_, kRootNode);
    second.update();
    second.markOutdated();
    second.update();
    ASSERT_TRUE(test::eventually([&] { return tasks() == 1; }));
    runTasks();
    ASSERT_EQ(tasks(), 1U) << "the first band";
  }
  runAllTasks();
}

TEST_F(BackgroundPictureTest, ForgetsAPictureThatIsFinishedBeforeSomethingElseIsDrawn) {
  makeInBackground();
  picture_.show(shownTree_, folders_[0]);
  runTasks();
  EXPECT_TRUE(picture_.update());
  EXPECT_EQ(picture_.rendered().pixels, drawnAtOnce(kPlace, folders_[0]));
}

TEST_F(BackgroundPictureTest, TakesItsNewSizeAtOnce) {
  makeInBackground();
  const ui::Rect larger = {0, 0, 150, 90};
  picture_.setRect(larger);
  EXPECT_TRUE(picture_.update());
  runTasks();
  EXPECT_FALSE(picture_.update());
  EXPECT_EQ(picture_.rendered().pixels, drawnAtOnce(larger, kRootNode));
}

TEST_F(BackgroundPictureTest, ForgetsAPictureOfATreeThatItLeaves) {
  makeInBackground();
  picture_.show(nullptr, kRootNode);
  EXPECT_FALSE(picture_.behind());
  runTasks();
  EXPECT_EQ(told_, 0) << "what was posted is of no use any more";
  EXPECT_TRUE(picture_.rendered().pixels.empty());
}

TEST_F(BackgroundPictureTest, NeitherWaitsForWhatReadsATreeNorTakesTheTreeFromIt) {
  constexpr std::int32_t kSide = 1000;  // takes milliseconds
  auto tree = std::make_shared<sizewalk::FileTree>(test::mapTreeOptions());
  test::fillRoot(*tree, {test::file(1000, 5)});
  std::atomic<int> posts = 0;
  BackgroundRender render([&](const std::function<void()>&) { ++posts; });
  const std::weak_ptr<const sizewalk::FileTree> watched = tree;
  ASSERT_TRUE(render.start({std::move(tree), kRootNode, kSide, kSide, colours_, {}, {}, {}}));
  render.drop();
  EXPECT_FALSE(render.busy());
  EXPECT_FALSE(watched.expired()) << "it is still being read";
  ASSERT_TRUE(picturesHaveEnded());
  EXPECT_TRUE(watched.expired());
  EXPECT_EQ(posts, 0);
}

TEST_F(BackgroundPictureTest, PostsNothingOnceItIsDestroyed) {
  for (int i = 0; i < 100; ++i) {
    std::atomic<bool> alive = true;
    std::atomic<int> late = 0;
    {
      BackgroundRender render([&](const std::function<void()>&) { late += alive ? 0 : 1; });
      ASSERT_TRUE(render.start({shownTree_, kRootNode, i, i, colours_, {}, {}, {}}));
    }
    alive = false;
    ASSERT_TRUE(picturesHaveEnded());
    EXPECT_EQ(late, 0);
  }
}

TEST_F(BackgroundPictureTest, IsNotMisledByThePostOfAPictureThatWasForgotten) {
  makeInBackground();
  const auto next = std::make_shared<sizewalk::FileTree>(test::mapTreeOptions());
  test::fillRoot(*next, {test::file(1000, 5)});
  picture_.show(next, kRootNode);
  picture_.update();
  picture_.markOutdated();
  picture_.update();
  ASSERT_TRUE(test::eventually([&] { return tasks() == 2; }));
  tasks_.front()();
  EXPECT_EQ(told_, 0);
  EXPECT_TRUE(picture_.behind());
  runTasks();
  EXPECT_EQ(told_, 1);
  EXPECT_FALSE(picture_.behind());
  EXPECT_EQ(picture_.rendered().pixels,
            renderTreemap(*next, kRootNode, kPlace.w, kPlace.h, colours_, {}, {}).pixels);
  picture_.show(nullptr, kRootNode);
}

/// Large enough for a picture, and for nothing else that its thread needs.
constexpr std::size_t kPictureBytes = std::size_t{4} * kPlace.w * kPlace.h;

TEST_F(BackgroundPictureTest, TriesAgainWhereThereWasNoMemoryForThePicture) {
  growTree();
  {
    const test::NoMemoryElsewhere none(kPictureBytes);
    ASSERT_FALSE(picture_.update());
    ASSERT_TRUE(test::eventually([&] { return tasks() == 1; }));
    ASSERT_TRUE(picturesHaveEnded());
  }
  runTasks();
  EXPECT_EQ(told_, 0) << "there is nothing new to be shown";
  ASSERT_TRUE(picture_.due());
  EXPECT_FALSE(picture_.update());
  ASSERT_TRUE(test::eventually([&] { return tasks() == 1; }));
  runTasks();
  EXPECT_EQ(told_, 1);
  EXPECT_EQ(picture_.rendered().pixels, drawnAtOnce(kPlace, kRootNode));
  EXPECT_FALSE(picture_.behind());
}

TEST_F(BackgroundPictureTest, DrawsAtOnceInTheEndWhereThereIsNoMemoryInTheBackground) {
  const test::NoMemoryElsewhere none(kPictureBytes);
  const std::vector<std::uint32_t> last = picture_.rendered().pixels;
  growTree();
  int tries = 0;
  while (picture_.due() && !picture_.update()) {
    ASSERT_LT(++tries, 10);
    ASSERT_TRUE(test::eventually([&] { return tasks() == 1; }));
    EXPECT_EQ(picture_.rendered().pixels, last);
    runTasks();
  }
  EXPECT_GT(tries, 1);
  EXPECT_EQ(picture_.rendered().pixels, drawnAtOnce(kPlace, kRootNode));
  EXPECT_NE(picture_.rendered().pixels, last);
  EXPECT_FALSE(picture_.behind());
}

TEST_F(TreemapPictureTest, TriesAgainLaterWhereThereWasNoMemoryOnTheSpot) {
  picture_.show(shownTree_, kRootNode);
  {
    const test::NoMemory none(kPictureBytes);
    EXPECT_FALSE(picture_.update());
    EXPECT_TRUE(picture_.due());
    EXPECT_FALSE(picture_.update());
  }
  EXPECT_TRUE(picture_.due());
  EXPECT_TRUE(picture_.update());
  EXPECT_NE(picture_.rendered().blockUnder(0, 0), nullptr);
  EXPECT_FALSE(picture_.behind());
}

TEST_F(TreemapPictureTest, SendsItsPictureLaterWhereThereIsNoMemoryToOutlineTheSelection) {
  picture_.show(shownTree_, kRootNode);
  ASSERT_TRUE(picture_.update());
  const test::Picture plain = painted();
  picture_.setHighlight(sizewalk::KindIndex{6});
  {
    const test::NoMemory none(kPictureBytes);
    EXPECT_FALSE(picture_.update());
    EXPECT_TRUE(picture_.due());
  }
  EXPECT_TRUE(picture_.update());
  EXPECT_NE(painted().at(100, 50), plain.at(100, 50));
}

TEST_F(BackgroundPictureTest, DoesNotTryAgainWhatWasOvertaken) {
  const test::NoMemoryElsewhere none(kPictureBytes);
  growTree();
  ASSERT_FALSE(picture_.update());
  picture_.markDirty();
  ASSERT_TRUE(picture_.update());
  ASSERT_TRUE(test::eventually([&] { return tasks() == 1; }));
  runTasks();
  EXPECT_FALSE(picture_.behind());
}

TEST_F(BackgroundPictureTest, EndsWithoutAPictureWhereThereIsNoMemoryForOne) {
  constexpr int kMost = std::numeric_limits<int>::max();
  BackgroundRender render([this](std::function<void()> task) {
    const std::lock_guard lock(mutex_);
    tasks_.push_back(std::move(task));
  });
  int ends = 0;
  render.onEnded = [&](const auto& picture, BackgroundRender::Duration) {
    EXPECT_FALSE(picture);
    ++ends;
  };
  ASSERT_TRUE(render.start({shownTree_, kRootNode, kMost, kMost, colours_, {}, {}, {}}));
  ASSERT_TRUE(test::eventually([&] { return tasks() == 1; }));
  EXPECT_TRUE(render.busy());
  runTasks();
  EXPECT_FALSE(render.busy());
  EXPECT_EQ(ends, 1);
}

}  // namespace
}  // namespace app
