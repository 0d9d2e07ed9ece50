#include "app/model/kind_rows.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/sizewalk/tree_model.h"

namespace app {
namespace {

using sizewalk::classifyName;
using sizewalk::FileTree;
using test::add;
using test::Listing;

struct Tree {
  Tree() : tree(options()) {
    tree.createRoot("/r");
    add(tree, Listing(0)
                  .file("a.mp3", 300, 10, 900)
                  .file("b.mp3", 300, 10, 100)
                  .file("c.pdf", 100, 900, 600)
                  .file("d.txt", 100, 50, 0)
                  .folder("folder"));
  }
  static sizewalk::ScanOptions options() {
    sizewalk::ScanOptions options;
    options.monthThreshold = 800;
    options.sixMonthThreshold = 500;
    options.setLastScanTime(50);
    return options;
  }
  std::string names(const KindSort& sort, const MeasureSettings& measure = {}) const {
    std::string result;
    for (const KindRow& row : kindRows(tree, measure, sort)) result += kindRowName(row.kind) + ",";
    return result;
  }
  FileTree tree;
};

TEST(KindRows, HoldSizeAndFilesOfEachKindThatHasAny) {
  const Tree t;
  const std::vector<KindRow> rows = kindRows(t.tree, {}, {});
  ASSERT_EQ(rows.size(), 3u) << "no folders, no kinds without files";
  EXPECT_EQ(rows[0], (KindRow{classifyName("a.mp3"), 600, 2}));
}

TEST(KindRows, ComeLargestFirstAndEqualOnesByName) {
  EXPECT_EQ(Tree().names({}), "MP3 audio,Document,PDF document,");
}

TEST(KindRows, FollowColumnAndDirection) {
  const Tree t;
  EXPECT_EQ(t.names({KindColumn::Size, true}), "Document,PDF document,MP3 audio,");
  EXPECT_EQ(t.names({KindColumn::Kind, true}), "Document,MP3 audio,PDF document,");
  EXPECT_EQ(t.names({KindColumn::Kind, false}), "PDF document,MP3 audio,Document,");
  EXPECT_EQ(t.names({KindColumn::Files, false}), "MP3 audio,Document,PDF document,");
}

TEST(KindRows, FollowTheMeasure) {
  const Tree t;
  const auto sizeOfPdf = [&](const MeasureSettings& measure) {
    for (const KindRow& row : kindRows(t.tree, measure, {})) {
      if (row.kind == classifyName("c.pdf")) return row.size;
    }
    return std::uint64_t{0};
  };
  EXPECT_EQ(sizeOfPdf({Measure::CurrentSize, false}), 100u);
  EXPECT_EQ(sizeOfPdf({Measure::CurrentSize, true}), 900u);
  EXPECT_EQ(sizeOfPdf({Measure::AddedLastMonth, false}), 0u);
  EXPECT_EQ(sizeOfPdf({Measure::AddedLastSixMonths, false}), 900u);
  EXPECT_EQ(sizeOfPdf({Measure::AddedSinceLastScan, false}), 900u);
}

TEST(KindSort, StartsNamesAscendingAndNumbersDescending) {
  const KindSort start;
  EXPECT_EQ(start.afterPress(KindColumn::Kind), (KindSort{KindColumn::Kind, true}));
  EXPECT_EQ(start.afterPress(KindColumn::Files), (KindSort{KindColumn::Files, false}));
  EXPECT_EQ((KindSort{KindColumn::Kind, true}).afterPress(KindColumn::Size), start);
}

TEST(KindSort, TurnsRoundOnTheSameHeader) {
  const KindSort start;
  EXPECT_EQ(start.afterPress(KindColumn::Size), (KindSort{KindColumn::Size, true}));
  EXPECT_EQ(start.afterPress(KindColumn::Size).afterPress(KindColumn::Size), start);
}

TEST(KindHeader, CarriesAnArrowOnTheSortedColumn) {
  EXPECT_EQ(kindHeader(KindColumn::Size, {KindColumn::Size, false}), "Size  ▾");
  EXPECT_EQ(kindHeader(KindColumn::Kind, {KindColumn::Kind, true}), "Kind  ▴");
  EXPECT_EQ(kindHeader(KindColumn::Files, {KindColumn::Kind, true}), "Files");
}

TEST(KindRowName, IsOtherBeyondTheList) {
  EXPECT_EQ(kindRowName(76), "Other");
  EXPECT_EQ(kindRowName(sizewalk::kNoKind), "Other");
  EXPECT_EQ(kindRowName(3), "No extension");
}

TEST(KindSlots, RankKindsBySizeWhateverTheTableIsSortedBy) {
  const Tree t;
  const auto slots = kindSlotsBySize(kindRows(t.tree, {}, {KindColumn::Kind, false}));
  EXPECT_EQ(slots.at(classifyName("a.mp3")), 0);
  EXPECT_EQ(slots.size(), 3u);
}

}  // namespace
}  // namespace app
