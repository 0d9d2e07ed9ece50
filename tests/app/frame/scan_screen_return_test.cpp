// A scan that is made again as the whole window: how it comes back to where the user was.

#include <memory>
#include <string>
#include <vector>

#include "tests/app/frame/scan_screen_fixture.h"
#include "ui/keys.h"

namespace app {
namespace {

/// The user is in big/, after having been in inner/, which is open since. The scan that is made
/// again finds one folder at a time.
class ScanScreenReturnTest : public ScanScreenTest {
 protected:
  ScanScreenReturnTest() {
    screen_.focus().go(inner_);
    screen_.focus().goOut();
    screen_.prepare();
    click(inList(song_));
  }
  ~ScanScreenReturnTest() override { screen_.show(nullptr); }

  ui::Rect onTriangle(NodeId folder) const {
    const int depth = list().rows().rows()[*list().rows().find(folder)].depth;
    const ui::Rect row = inList(folder);
    return {row.x + depth * style.scaled(16) + 6, row.y, 9, row.h};
  }
  void scanAgain() {
    again_ = std::make_shared<sizewalk::FileTree>(treeOptions());
    screen_.showAgain(again_);
    screen_.setScanStatus({.scanning = true});
    screen_.prepare();
  }
  void look() {
    screen_.treeChanged();
    screen_.prepare();
  }
  void readRoot() {
    again_->createRoot("/r");
    const auto folders =
        add(*again_, Listing(0).folder("late").folder("empty").folder("big").file("photo.jpg", 50));
    late2_ = folders[0];
    empty2_ = folders[1];
    big2_ = folders[2];
    look();
  }
  void readBig() {
    inner2_ = add(*again_, Listing(big2_).file("song.mp3", 40'000).folder("inner")).front();
    look();
  }
  void readInner() {
    add(*again_, Listing(inner2_).file("deep.txt", 60'000));
    look();
  }
  void end() {
    screen_.setScanStatus({});
    look();
  }
  bool isOpen(NodeId folder) const {
    const auto row = list().rows().find(folder);
    return row && list().rows().rows()[*row].expanded;
  }

  void expectToComeBackOnceAllIsRead() {
    readRoot();
    readBig();
    readInner();
    end();
    EXPECT_EQ(focus(), big2_);
    EXPECT_TRUE(isOpen(inner2_));
  }

  std::shared_ptr<sizewalk::FileTree> again_;
  NodeId late2_ = 0, empty2_ = 0, big2_ = 0, inner2_ = 0;
};

TEST_F(ScanScreenReturnTest, ComesBackAsTheTreeFills) {
  ASSERT_EQ(focus(), big_);
  ASSERT_TRUE(isOpen(inner_));
  scanAgain();
  EXPECT_EQ(selected(), Nodes{});
  readRoot();
  EXPECT_EQ(focus(), kRootNode) << "in big there is nothing yet";
  EXPECT_EQ(list().current(), big2_);
  readBig();
  EXPECT_EQ(focus(), big2_);
  EXPECT_EQ(map().root, big2_);
  EXPECT_TRUE(isOpen(big2_));
  EXPECT_EQ(again_->name(*list().current()), "song.mp3");
  readInner();
  EXPECT_TRUE(isOpen(inner2_));
  end();
  EXPECT_EQ(focus(), big2_);
  screen_.focus().goToPrevious();
  EXPECT_EQ(focus(), inner2_) << "the way there is known too";
  EXPECT_EQ(selected(), Nodes{});
}

TEST_F(ScanScreenReturnTest, FallsBackToTheFolderAroundOneThatIsGone) {
  screen_.focus().go(inner_);
  scanAgain();
  readRoot();
  add(*again_, Listing(big2_).file("other", 1));
  look();
  EXPECT_EQ(focus(), big2_);
  end();
  EXPECT_EQ(focus(), big2_);
}

TEST_F(ScanScreenReturnTest, ComesBackFromAScanThatWasMadeAgainBeforeItFoundEverything) {
  scanAgain();
  scanAgain();
  readRoot();
  scanAgain();
  expectToComeBackOnceAllIsRead();
}

TEST_F(ScanScreenReturnTest, ComesBackAfterAScanThatWasStoppedInTheMiddle) {
  scanAgain();
  readRoot();
  screen_.setScanStatus({.stopped = true});
  look();
  EXPECT_EQ(focus(), kRootNode);
  scanAgain();
  expectToComeBackOnceAllIsRead();
}

TEST_F(ScanScreenReturnTest, StaysWhereTheUserGoesMeanwhile) {
  scanAgain();
  readRoot();
  add(*again_, Listing(late2_).file("x", 5));
  look();
  screen_.focus().go(late2_);
  readBig();
  readInner();
  EXPECT_EQ(focus(), late2_);
  EXPECT_TRUE(isOpen(inner2_)) << "what was open still comes back";
}

TEST_F(ScanScreenReturnTest, IsWhereItWasInAFolderThatIsReadAgain) {
  screen_.rememberPlace();
  ASSERT_TRUE(tree_->dropContents(big_));
  screen_.setScanStatus({.scanning = true});
  look();
  EXPECT_EQ(focus(), kRootNode);
  const NodeId inner = add(*tree_, Listing(big_).folder("inner").file("song.mp3", 1)).front();
  add(*tree_, Listing(inner).file("deep.txt", 60'000));
  look();
  EXPECT_EQ(focus(), big_);
  EXPECT_TRUE(isOpen(inner));
  end();
  EXPECT_EQ(focus(), big_);
}

TEST_F(ScanScreenReturnTest, ForgetsThePlaceWithAnotherFolder) {
  scanAgain();
  again_ = std::make_shared<sizewalk::FileTree>(treeOptions());
  screen_.show(again_);
  screen_.setScanStatus({.scanning = true});
  readRoot();
  readBig();
  EXPECT_EQ(focus(), kRootNode);
  EXPECT_FALSE(isOpen(big2_));
}

TEST_F(ScanScreenReturnTest, ComesBackToTheScrollPosition) {
  const auto names = [](sizewalk::FileTree& tree, NodeId folder) {
    Listing many(folder);
    for (int i = 0; i < 200; ++i) many.file("f" + std::to_string(1000 + i), 5);
    add(tree, many);
  };
  names(*tree_, empty_);
  look();
  click(onTriangle(empty_));
  wheel(screen_.layout().list, 20);
  const int offset = list().scrollOffset();
  ASSERT_GT(offset, 0);
  const auto top = list().rowAt(list().view().x + 5, list().view().y);
  const std::string name(tree_->name(list().rows().rows()[*top].node));
  scanAgain();
  EXPECT_EQ(list().scrollOffset(), 0);
  readRoot();
  names(*again_, empty2_);
  look();
  readBig();
  readInner();
  end();
  const auto topNow = list().rowAt(list().view().x + 5, list().view().y);
  EXPECT_EQ(again_->name(list().rows().rows()[*topNow].node), name);
  EXPECT_EQ(list().scrollOffset() % style.rowHeight(), offset % style.rowHeight());
}

TEST_F(ScanScreenReturnTest, StillOpensWhatWasOpenOnceTheUserOpensAnotherFolder) {
  scanAgain();
  readRoot();
  add(*again_, Listing(late2_).file("x", 5));
  look();
  click(onTriangle(late2_));
  ASSERT_TRUE(isOpen(late2_));
  readBig();
  readInner();
  EXPECT_TRUE(isOpen(late2_));
  EXPECT_TRUE(isOpen(inner2_));
}

TEST_F(ScanScreenReturnTest, ForgetsWhatIsBelowAFolderThatTheUserCloses) {
  scanAgain();
  readRoot();
  click(onTriangle(kRootNode));
  ASSERT_FALSE(isOpen(kRootNode));
  readBig();
  readInner();
  EXPECT_FALSE(isOpen(kRootNode));
  click(onTriangle(kRootNode));
  ASSERT_TRUE(isOpen(big2_)) << "it was open when its parent was closed";
  EXPECT_FALSE(isOpen(inner2_));
}

}  // namespace
}  // namespace app
