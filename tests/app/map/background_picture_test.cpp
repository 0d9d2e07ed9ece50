// The picture of a tree that grows, made beside the window thread.

#include <atomic>
#include <functional>
#include <limits>

#include "tests/app/map/background_picture_fixture.h"
#include "tests/app/map/memory_elsewhere.h"
#include "tests/support/waiting_thread.h"

namespace app {
namespace {

using sizewalk::kRootNode;

TEST_F(BackgroundPictureTest, MakesItsFirstPictureAtOnce) {
  EXPECT_EQ(picture_.rendered().pixels, drawnAtOnce(kPicturePlace, kRootNode));
  EXPECT_FALSE(picture_.behind());
  EXPECT_EQ(tasks_.count(), 0U);
}

TEST_F(BackgroundPictureTest, MakesTheFirstPictureOfAScanThatHasJustBegunInTheBackground) {
  const auto begun = std::make_shared<sizewalk::FileTree>(test::mapTreeOptions());
  test::fillRoot(*begun, {test::file(1000, 5)});
  picture_.show(begun, kRootNode);
  picture_.setGrowing(true);
  for (int i = 0; i < 3; ++i) EXPECT_FALSE(picture_.update()) << "one at a time";
  EXPECT_TRUE(picture_.behind());
  EXPECT_TRUE(picture_.rendered().pixels.empty());
  ASSERT_TRUE(test::eventually([&] { return tasks_.count() == 1; }));
  tasks_.run();
  EXPECT_TRUE(picture_.update());
  EXPECT_EQ(
      picture_.rendered().pixels,
      renderTreemap(*begun, kRootNode, kPicturePlace.w, kPicturePlace.h, colours_, {}, {}).pixels);
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
  ASSERT_TRUE(test::eventually([&] { return tasks_.count() == 1; }));
  tasks_.run();
  EXPECT_FALSE(picture_.update()) << "what was finished is not to be seen any more";
  ASSERT_TRUE(test::eventually([&] { return tasks_.count() == 1; }));
  tasks_.run();
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
  tasks_.run();
  EXPECT_EQ(told_, 1);
  EXPECT_EQ(picture_.rendered().pixels, last) << "that is what is on the screen";
  EXPECT_TRUE(picture_.update()) << "it is to be sent";
  EXPECT_FALSE(picture_.behind());
  EXPECT_NE(picture_.rendered().pixels, last);
  EXPECT_EQ(picture_.rendered().pixels, drawnAtOnce(kPicturePlace, kRootNode));
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
  tasks_.run();
  EXPECT_TRUE(picture_.update());
  EXPECT_FALSE(picture_.due()) << "the next has begun";
  EXPECT_TRUE(picture_.behind());
  ASSERT_TRUE(test::eventually([&] { return tasks_.count() == 1; }));
  tasks_.run();
  EXPECT_TRUE(picture_.update());
  EXPECT_FALSE(picture_.behind());
  EXPECT_EQ(told_, 2);
}

TEST_F(BackgroundPictureTest, PausesAfterAPictureUntilTheTreeGrowsNoMore) {
  const ui::Rect large = {0, 0, 1500, 1000};  // takes a few milliseconds
  const auto cost = drawingTime(large);
  picture_.setRect(large);
  picture_.update();
  const auto begin = std::chrono::steady_clock::now();
  picture_.setGrowing(true);
  makeInBackground();
  tasks_.runAll();
  picture_.update();
  picture_.markOutdated();
  const bool due = picture_.due();
  // It took that long once, and the next one is expected to: twenty times that is to pass.
  const bool looksSoon = std::chrono::steady_clock::now() - begin < 10 * cost;
  EXPECT_FALSE(due && looksSoon);
  EXPECT_TRUE(test::eventually([&] { return picture_.due(); }));
  picture_.update();
  ASSERT_TRUE(test::eventually([&] { return tasks_.count() == 1; }));
  tasks_.runAll();
  picture_.update();
  picture_.markOutdated();
  picture_.setGrowing(false);
  EXPECT_TRUE(picture_.due());
}

// What the user asks for takes nothing from the tenth that pictures of a growing tree have.
TEST_F(BackgroundPictureTest, DoesNotPauseForPicturesOfOtherSizes) {
  const ui::Rect large = {0, 0, 1500, 1000};  // takes a few milliseconds
  picture_.setGrowing(true);
  for (int i = 0; i < 5; ++i) {
    picture_.setRect({0, 0, large.w + i, large.h});
    ASSERT_FALSE(picture_.update());
    ASSERT_TRUE(test::eventually([&] { return tasks_.count() == 1; }));
    tasks_.runAll();
    ASSERT_TRUE(picture_.update());
  }
  picture_.markOutdated();
  EXPECT_TRUE(picture_.due());
}

TEST_F(BackgroundPictureTest, DoesNotPauseForPicturesOfATreeBefore) {
  const ui::Rect large = {0, 0, 1500, 1000};
  const auto cost = drawingTime(large);
  picture_.setRect(large);
  picture_.update();
  picture_.setGrowing(true);
  makeInBackground();
  tasks_.runAll();
  picture_.update();
  const auto next = std::make_shared<sizewalk::FileTree>(test::mapTreeOptions());
  test::fillRoot(*next, {test::file(1000, 5)});
  picture_.setRect(kPicturePlace);
  picture_.show(next, kRootNode);
  picture_.update();
  ASSERT_TRUE(test::eventually([&] { return tasks_.count() == 1; }));
  tasks_.run();
  ASSERT_TRUE(picture_.update());
  picture_.markOutdated();
  // Twenty times the time of that small picture is less than twice that of the large one, of which
  // ten times would have to pass.
  const auto begin = std::chrono::steady_clock::now();
  bool due = false;
  ASSERT_TRUE(test::eventually([&] {
    due = picture_.due();
    return due || std::chrono::steady_clock::now() - begin > 2 * cost;
  }));
  EXPECT_TRUE(due || picture_.due());
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
    tasks_.run();
    return told_ > 0;
  }));
  EXPECT_EQ(told_, 1);
  picture_.update();
  EXPECT_FALSE(picture_.behind());
}

TEST_F(BackgroundPictureTest, ShowsSomethingElseAtOnceAndStaysThere) {
  makeInBackground();
  picture_.show(shownTree_, folders_[0]);
  EXPECT_TRUE(picture_.update());
  const std::vector<std::uint32_t> inside = drawnAtOnce(kPicturePlace, folders_[0]);
  EXPECT_EQ(picture_.rendered().pixels, inside);
  tasks_.run();
  EXPECT_FALSE(picture_.update()) << "what was made meanwhile shows another folder";
  EXPECT_EQ(picture_.rendered().pixels, inside);
}

TEST_F(BackgroundPictureTest, ForgetsAPictureThatIsFinishedBeforeSomethingElseIsDrawn) {
  makeInBackground();
  picture_.show(shownTree_, folders_[0]);
  tasks_.run();
  EXPECT_TRUE(picture_.update());
  EXPECT_EQ(picture_.rendered().pixels, drawnAtOnce(kPicturePlace, folders_[0]));
}

TEST_F(BackgroundPictureTest, TakesItsNewSizeAtOnce) {
  makeInBackground();
  const ui::Rect larger = {0, 0, 150, 90};
  picture_.setRect(larger);
  EXPECT_TRUE(picture_.update());
  tasks_.run();
  EXPECT_FALSE(picture_.update());
  EXPECT_EQ(picture_.rendered().pixels, drawnAtOnce(larger, kRootNode));
}

TEST_F(BackgroundPictureTest, ForgetsAPictureOfATreeThatItLeaves) {
  makeInBackground();
  picture_.show(nullptr, kRootNode);
  EXPECT_FALSE(picture_.behind());
  tasks_.run();
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

/// A picture of 40 folders, which is laid out in several parts.
constexpr std::int32_t kManyWidth = 300;
constexpr std::int32_t kManyHeight = 200;
std::shared_ptr<const sizewalk::FileTree> manyFolders() {
  auto tree = std::make_shared<sizewalk::FileTree>(test::mapTreeOptions());
  for (const auto folder : test::fillRoot(*tree, std::vector(40, test::folder()))) {
    test::fill(*tree, folder, std::vector(1000, test::file(1000, 5)));
  }
  return tree;
}

TEST_F(BackgroundPictureTest, LaysOutNoMoreOfAPictureThatWasDropped) {
  constexpr std::size_t kLeast = 65536;  // less than the pixels or a part's blocks take
  constexpr int kImages = 2;
  for (const bool dropped : {false, true}) {
    BackgroundRender render([](const std::function<void()>&) {});
    RenderRequest request = {manyFolders(), kRootNode, kManyWidth, kManyHeight,
                             colours_,      {},        {},         {}};
    request.threads = 1;
    test::MemoryHeldElsewhere memory(kLeast);
    ASSERT_TRUE(render.start(std::move(request)));
    ASSERT_TRUE(test::eventually([&] { return memory.asked() == 1; })) << "for the pixels";
    if (dropped) render.drop();
    memory.release();
    ASSERT_TRUE(picturesHaveEnded());
    if (dropped) {
      EXPECT_EQ(memory.asked(), kImages);
    } else {
      EXPECT_GT(memory.asked(), kImages) << "for what is laid out";
    }
  }
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
  ASSERT_TRUE(test::eventually([&] { return tasks_.count() == 2; }));
  tasks_.runFirst();
  EXPECT_EQ(told_, 0);
  EXPECT_TRUE(picture_.behind());
  tasks_.run();
  EXPECT_EQ(told_, 1);
  picture_.update();
  EXPECT_FALSE(picture_.behind());
  EXPECT_EQ(
      picture_.rendered().pixels,
      renderTreemap(*next, kRootNode, kPicturePlace.w, kPicturePlace.h, colours_, {}, {}).pixels);
  picture_.show(nullptr, kRootNode);
}

}  // namespace
}  // namespace app
