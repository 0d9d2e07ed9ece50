// A scan as the whole window: how the list shows which folder the map is on.

#include <functional>
#include <string>
#include <vector>

#include "tests/app/frame/scan_screen_fixture.h"
#include "ui/keys.h"

namespace app {
namespace {

class ScanScreenFocusTest : public ScanScreenTest {
 protected:
  Nodes marked() {
    screen_.selection().clear();
    const test::Picture shown = picture();
    Nodes nodes;
    for (const FolderRow& row : list().rows().rows()) {
      const ui::Rect place = inList(row.node);
      if (shown.at(place.x + 2, place.y + 2) == rgb(style.palette().accent)) {
        nodes.push_back(row.node);
      }
    }
    return nodes;
  }
  ui::Rect onTriangle(NodeId folder) const {
    const ui::Rect row = inList(folder);
    return {row.x + 16 + 6, row.y, 9, row.h};
  }
  bool isSeen(NodeId node) const {
    return ui::intersect(inList(node), list().view()) == inList(node);
  }
};

TEST_F(ScanScreenFocusTest, MarksTheFolderInFocusHoweverItCameThere) {
  EXPECT_EQ(marked(), Nodes{kRootNode});
  clickTwice(inList(big_));
  EXPECT_EQ(marked(), Nodes{big_});
  screen_.focus().goOut();
  EXPECT_EQ(marked(), Nodes{kRootNode});
  wheel(onMap(deep_), -1);
  EXPECT_EQ(marked(), Nodes{big_});
  screen_.focus().goToPrevious();
  EXPECT_EQ(marked(), Nodes{kRootNode});
  screen_.focus().go(inner_);
  EXPECT_EQ(marked(), Nodes{inner_});
  const auto again = std::make_shared<sizewalk::FileTree>(treeOptions());
  again->createRoot("/again");
  add(*again, Listing(kRootNode).folder("a").folder("b"));
  screen_.show(again);
  screen_.prepare();
  EXPECT_EQ(marked(), Nodes{kRootNode});
}

TEST_F(ScanScreenFocusTest, LeavesSomeOfWhatIsInTheFolderInSight) {
  fillEmpty(50, 0);
  Listing many(late_);
  for (int i = 0; i < 50; ++i) many.file("l" + std::to_string(100 + i), 0);
  add(*tree_, many);
  screen_.treeChanged();
  screen_.prepare();
  const NodeId inEmpty = tree_->firstChild(empty_);
  const NodeId inLate = tree_->firstChild(late_);
  for (const NodeId opened : {inEmpty, inLate}) {
    wheel(screen_.layout().list, -100);
    for (int i = 0; i < 100 && !isSeen(tree_->parent(opened)); ++i) {
      wheel(screen_.layout().list, 1);
    }
    click(onTriangle(tree_->parent(opened)));
  }
  const std::vector<std::function<void()>> ways = {
      [&] { screen_.focus().go(late_); },
      [&] { screen_.focus().goToPrevious(); },
      [&] { clickTwice(inList(late_)); },
  };
  for (const auto& go : ways) {
    screen_.focus().go(kRootNode);
    screen_.prepare();
    for (int i = 0; i < 100 && !isSeen(late_); ++i) wheel(screen_.layout().list, 1);
    ASSERT_TRUE(isSeen(late_));
    ASSERT_FALSE(isSeen(inLate + 4));
    go();
    screen_.prepare();
    ASSERT_EQ(focus(), late_);
    EXPECT_TRUE(isSeen(late_));
    EXPECT_TRUE(isSeen(inLate + 4));
  }
}

}  // namespace
}  // namespace app
