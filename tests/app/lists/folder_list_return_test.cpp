// The folder list as it comes back to where the user was in a scan that is made again.

#include <string>
#include <vector>

#include "app/lists/folder_list.h"
#include "tests/app/lists/folder_list_fixture.h"
#include "ui/keys.h"

namespace app {
namespace {

/// A list of thirty folders, of which the tenth was open and the topmost in view.
class FolderListReturnTest : public ::testing::Test, protected ListOnServer {
 protected:
  FolderListReturnTest() {
    large_.createRoot("/large");
    Listing listing(0);
    for (int i = 0; i < 30; ++i) listing.folder("f" + std::to_string(10 + i));
    folders_ = add(large_, listing);
    for (const NodeId folder : folders_) add(large_, Listing(folder).file("x", 10));
    list_.show(&large_);
    list_.beginReturn();
  }
  void comeBack() {
    list_.returnTo({.open = {kRootNode, folders_[9]},
                    .current = folders_[9],
                    .top = folders_[9],
                    .topAt = -3});
    list_.refresh();
  }
  bool isOpen(NodeId folder) const {
    return list_.rows().rows()[*list_.rows().find(folder)].expanded;
  }

  sizewalk::FileTree large_;
  std::vector<NodeId> folders_;
};

TEST_F(FolderListReturnTest, OpensAndScrollsAsItWas) {
  comeBack();
  EXPECT_TRUE(isOpen(folders_[9]));
  EXPECT_EQ(list_.current(), folders_[9]);
  EXPECT_EQ(list_.rowRect(*list_.rows().find(folders_[9])).y, place_.y - 3);
  EXPECT_TRUE(selected().empty());
}

TEST_F(FolderListReturnTest, TellsItsPlaceAsItReturnsToIt) {
  comeBack();
  const ListPlace place = list_.place();
  EXPECT_EQ(Nodes(place.open.begin(), place.open.end()), (Nodes{kRootNode, folders_[9]}));
  EXPECT_EQ(place.current, folders_[9]);
  EXPECT_EQ(place.top, folders_[9]);
  EXPECT_EQ(place.topAt, -3);
}

TEST_F(FolderListReturnTest, StaysThereWhileRowsComeAbove) {
  comeBack();
  add(large_, Listing(folders_[20]).file("large", 1000));
  list_.refresh();
  EXPECT_EQ(list_.rows().rows()[1].node, folders_[20]);
  EXPECT_EQ(list_.rowRect(*list_.rows().find(folders_[9])).y, place_.y - 3);
}

TEST_F(FolderListReturnTest, ComesBackToAScannedFolderThatWasClosed) {
  list_.returnTo({.open = {}, .current = kRootNode, .top = kRootNode, .topAt = 0});
  list_.refresh();
  EXPECT_EQ(list_.rows().rows().size(), 1u);
}

TEST_F(FolderListReturnTest, StaysWhereTheUserScrollsAndStillOpensWhatWasOpen) {
  list_.returnTo({.open = {kRootNode}, .current = {}, .top = {}, .topAt = 0});
  list_.refresh();
  list_.wheel({}, 1);
  const int offset = list_.scrollOffset();
  comeBack();
  EXPECT_EQ(list_.scrollOffset(), offset);
  EXPECT_FALSE(list_.returning().scroll);
  EXPECT_TRUE(isOpen(folders_[9]));
}

TEST_F(FolderListReturnTest, StaysWhereTheUserOpensAFolderAndStillOpensWhatWasOpen) {
  list_.returnTo({.open = {kRootNode}, .current = {}, .top = {}, .topAt = 0});
  list_.refresh();
  press(1, {.button = 1}, 20 + 6 + 16 + 4);
  ASSERT_TRUE(isOpen(folders_[0]));
  comeBack();
  EXPECT_TRUE(isOpen(folders_[0]));
  EXPECT_TRUE(isOpen(folders_[9]));
  EXPECT_EQ(list_.scrollOffset(), 0);
}

TEST_F(FolderListReturnTest, StillOpensWhatWasOpenOnceTheUserClosesAFolder) {
  list_.returnTo({.open = {kRootNode, folders_[0]}, .current = {}, .top = {}, .topAt = 0});
  list_.refresh();
  ASSERT_TRUE(isOpen(folders_[0]));
  press(1, {.button = 1}, 20 + 6 + 16 + 4);
  comeBack();
  EXPECT_FALSE(isOpen(folders_[0]));
  EXPECT_TRUE(isOpen(folders_[9]));
}

TEST_F(FolderListReturnTest, KeepsTheRowThatTheUserMovesTo) {
  list_.returnTo({.open = {kRootNode}, .current = {}, .top = {}, .topAt = 0});
  list_.refresh();
  key(ui::key::kDown);
  comeBack();
  EXPECT_EQ(list_.current(), folders_[0]);
  EXPECT_EQ(list_.scrollOffset(), 0);
}

TEST_F(FolderListReturnTest, KeepsTheRowThatIsRevealed) {
  list_.returnTo({.open = {kRootNode}, .current = {}, .top = {}, .topAt = 0});
  list_.refresh();
  list_.revealNode(folders_[29]);
  list_.prepare();
  const int offset = list_.scrollOffset();
  comeBack();
  EXPECT_EQ(list_.current(), folders_[29]);
  EXPECT_EQ(list_.rowRect(*list_.rows().find(folders_[29])).y + h_, place_.y + place_.h);
  EXPECT_GE(list_.scrollOffset(), offset);
}

TEST_F(FolderListReturnTest, LeavesTheRowUnderAPointerThatMovesInItsPlace) {
  list_.returnTo({.open = {kRootNode}, .current = {}, .top = {}, .topAt = 0});
  list_.refresh();
  moveOnto(3);
  const NodeId held = *list_.hovered();
  comeBack();
  EXPECT_EQ(list_.hovered(), held);
  list_.leave();
  list_.refresh();
  EXPECT_EQ(list_.rowRect(*list_.rows().find(folders_[9])).y, place_.y - 3);
}

}  // namespace
}  // namespace app
