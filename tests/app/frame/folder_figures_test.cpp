#include "app/frame/folder_figures.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

#include "tests/sizewalk/tree_model.h"

namespace app {
namespace {

using sizewalk::FileTree;
using sizewalk::kRootNode;
using sizewalk::NodeId;
using test::add;
using test::Listing;

TEST(FolderFigures, TellOfTheWholeFolderUnderTheMeasure) {
  FileTree tree;
  tree.createRoot("/r");
  const NodeId folder = add(tree, Listing(0).folder("f").file("other", 5)).front();
  add(tree, Listing(folder).file("a", 1'000'000).file("b", 500'000));
  EXPECT_EQ(folderFigures(tree, folder, {}), (FolderFigures{1'500'000, 2}));
  EXPECT_EQ(folderFigures(tree, kRootNode, {}), (FolderFigures{1'500'005, 3}));
  EXPECT_EQ(folderFigures(tree, folder, {.measure = Measure::AddedLastMonth})->size, 0);
  EXPECT_EQ(folderFigures(tree, 99, {}), std::nullopt) << "not found yet";
}

TEST(FolderFigures, AreWrittenWithTheSizeAloneWhereThereIsLessRoom) {
  EXPECT_EQ(figuresTexts({1'200'000'000, 12'345}),
            (std::vector<std::string>{"1.20 GB · 12,345 items", "1.20 GB"}));
  EXPECT_EQ(figuresTexts({512, 1}).front(), "512 B · 1 item");
  EXPECT_EQ(figuresTexts({0, 0}).front(), "0 B · 0 items");
}

}  // namespace
}  // namespace app
