#include "app/map/map_card.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <ctime>
#include <memory>
#include <stdexcept>
#include <utility>

#include "app/map/treemap_render.h"
#include "app/model/format.h"
#include "tests/app/map/map_tree.h"
#include "tests/sizewalk/tree_model.h"
#include "tests/support/environment.h"

namespace app {
namespace {

using sizewalk::FileTree;
using sizewalk::kRootNode;
using sizewalk::NodeId;
using test::add;
using test::Listing;

using Facts = std::vector<MapCard::Fact>;
constexpr auto kEnd = MapCard::Keeps::End;
constexpr std::uint32_t kBirth = 1774969559;  // 2026-03-31 15:05:59 UTC

MapCard::Fact share(const std::string& text) {
  return {"Share", text, MapCard::Keeps::BeginningAndQuote};
}

/// A zone two hours east of Greenwich all year round.
class LocalTime {
 public:
  LocalTime() {
    environment_->set("TZ", "HERE-2");
    tzset();
  }
  ~LocalTime() {
    environment_.reset();
    tzset();
  }
  LocalTime(const LocalTime&) = delete;
  LocalTime& operator=(const LocalTime&) = delete;

 private:
  std::unique_ptr<test::ScopedEnvironment> environment_ =
      std::make_unique<test::ScopedEnvironment>();
};

/// Cards on a map of 200 x 100 of a tree of /map.
class MapCardTest : public ::testing::Test {
 protected:
  MapCardTest() { tree_.createRoot("/map"); }

  RenderedTreemap draw() const {
    return renderTreemap(tree_, focus_, 200, 100, KindColours(true), extraBlocks_, measure_);
  }
  template <typename Condition>
  MapCard cardOf(const Condition& condition) const {
    return cardOn(draw(), condition);
  }
  template <typename Condition>
  MapCard cardOn(const RenderedTreemap& map, const Condition& condition) const {
    const auto block = std::ranges::find_if(map.blocks, condition);
    if (block == map.blocks.end()) throw std::runtime_error("the block is not on the map");
    return mapCard(map, *block, tree_, measure_);
  }
  MapCard cardOfNode(NodeId node) const {
    return cardOf([&](const PictureBlock& block) {
      return block.id == static_cast<std::int32_t>(node) && block.restCount == 0;
    });
  }
  MapCard cardOfFirst() const { return cardOfNode(tree_.firstChild(focus_)); }
  static bool isRest(const PictureBlock& block) { return block.restCount > 0; }
  MapCard cardOfRest() const { return cardOf(isRest); }

  const LocalTime localTime_;
  FileTree tree_{test::mapTreeOptions()};
  NodeId focus_ = kRootNode;
  MeasureSettings measure_;
  std::vector<ExtraBlock> extraBlocks_;
};

TEST_F(MapCardTest, HasTheColourThatTheMapHasForTheKind) {
  add(tree_, Listing(0).file("a.pdf", 1000, 1000).folder("empty"));
  RenderedTreemap map = draw();
  KindColours byRank(false);
  byRank.setKindSlots({{tree_.kind(tree_.firstChild(kRootNode)), 3}});
  map.kindColours = byRank;
  const NodeId file = tree_.firstChild(kRootNode);
  const auto isFile = [&](const PictureBlock& block) { return block.id == std::int32_t(file); };
  EXPECT_EQ(cardOn(map, isFile).swatch, byRank.colourForKind(tree_.kind(file)));
  EXPECT_NE(cardOn(map, isFile).swatch, cardOn(draw(), isFile).swatch);
}

TEST_F(MapCardTest, HasNoColourWhereThereIsNoKind) {
  Listing listing(0);
  for (int i = 0; i < 100; ++i) listing.file("small", 30, 30);
  add(tree_, listing.file("large", 1'000'000, 1'000'000));
  extraBlocks_ = {{kFreeSpaceBlock, "Free space", 500'000, 0x2B3648}};
  EXPECT_EQ(cardOfRest().swatch, std::nullopt);
  const auto isFree = [](const PictureBlock& block) { return block.id == kFreeSpaceBlock; };
  EXPECT_EQ(cardOf(isFree).swatch, std::nullopt);
}

TEST_F(MapCardTest, TellsAllOfAFile) {
  add(tree_, Listing(0).file("a.pdf", 1000, 1000, kBirth).file("b", 3000, 3000));
  const MapCard card = cardOfFirst();
  EXPECT_EQ(card.title, "a.pdf");
  EXPECT_EQ(card.facts, (Facts{{"Folder", "/map", kEnd},
                               {"Size", "1.00 kB"},
                               share("25.0 % of “map”"),
                               {"Kind", "PDF document"},
                               {"Added", "2026-03-31 17:05"}}));
}

TEST_F(MapCardTest, TellsSizeOnDiskAndLengthWhereTheyDiffer) {
  add(tree_, Listing(0).file("a.pdf", 1000, 4096).file("b", 1000, 12288));
  const MapCard byLength = cardOfFirst();
  EXPECT_EQ(byLength.facts, (Facts{{"Folder", "/map", kEnd},
                                   {"Size on disk", "4.10 kB"},
                                   {"Length", "1.00 kB"},
                                   share("50.0 % of “map”"),
                                   {"Kind", "PDF document"}}));
  measure_.physicalSize = true;
  MapCard onDisk = cardOfFirst();
  EXPECT_EQ(onDisk.facts[3].text, "25.0 % of “map”");
  onDisk.facts[3] = byLength.facts[3];
  EXPECT_EQ(onDisk, byLength) << "nothing but the share depends on what the map shows";
}

TEST_F(MapCardTest, TellsTwoSizesThatReadTheSameOnce) {
  add(tree_, Listing(0).file("a.pdf", 1'200'000, 1'204'224).file("b.pdf", 1'200'000, 1'204'225));
  const MapCard card = cardOfFirst();
  EXPECT_EQ(card.facts[1], (MapCard::Fact{"Size", "1.20 MB"}));
  EXPECT_EQ(card.facts[2].label, "Share");
}

TEST_F(MapCardTest, TellsTheSharedMeasureWhereItIsNotTheSize) {
  const std::uint32_t births[] = {test::kLastScan, test::kMonthAgo, test::kSixMonthsAgo};
  const Measure measures[] = {Measure::AddedSinceLastScan, Measure::AddedLastMonth,
                              Measure::AddedLastSixMonths};
  const char* headings[] = {"Added Since Last Scan", "Added in Last Month",
                            "Added in Last 6 Months"};
  const auto dir = add(tree_, Listing(0).folder("dir")).front();
  Listing listing(dir);
  for (const std::uint32_t birth : births) listing.file("x", 500, 500, birth);
  add(tree_, listing.file("old", 700, 700, 1));
  for (std::size_t i = 0; i < 3; ++i) {
    measure_.measure = measures[i];
    const MapCard card = cardOfNode(dir);
    const auto added = static_cast<int>(500 * (i + 1));
    EXPECT_EQ(card.facts, (Facts{{"Folder", "/map", kEnd},
                                 {"Size", "2.20 kB"},
                                 {headings[i], formatSize(added)},
                                 share("100.0 % of “map”"),
                                 {"Kind", "Folder"}}));
  }
}

TEST_F(MapCardTest, TellsTheShareOfTheFolderInFocus) {
  const auto dir = add(tree_, Listing(0).folder("dir").file("big", 9000, 9000)).front();
  add(tree_, Listing(dir).file("a", 250, 250).file("b", 750, 750));
  focus_ = dir;
  const MapCard card = cardOfFirst();
  EXPECT_EQ(card.facts[0], (MapCard::Fact{"Folder", "/map/dir", kEnd}));
  EXPECT_EQ(card.facts[2].text, "25.0 % of “dir”");
}

TEST_F(MapCardTest, SaysThatAFolderCannotBeRead) {
  add(tree_, Listing(0).breaksOff());
  const MapCard card = cardOfNode(kRootNode);
  ASSERT_EQ(card.facts.size(), 4u);
  EXPECT_EQ(card.facts.back(), (MapCard::Fact{"Note", "Cannot be read"}));
}

/// The scanned folder itself is a block while nothing in it has been found.
TEST_F(MapCardTest, TellsNoFolderAroundTheScannedOne) {
  const MapCard card = cardOfNode(kRootNode);
  EXPECT_EQ(card.title, "map");
  EXPECT_EQ(card.facts, (Facts{{"Size", "0 B"}, share("0 % of “map”"), {"Kind", "Folder"}}));
}

TEST_F(MapCardTest, TellsCountAndSizeOfMergedItems) {
  const auto dir = add(tree_, Listing(0).folder("dir").file("big", 800'000, 800'000)).front();
  Listing listing(dir);
  for (int i = 0; i < 1234; ++i) listing.file("small", i % 2 == 0 ? 30 : 0, 4096);
  add(tree_, listing.file("large", 100'000, 100'000));
  const MapCard card = cardOfRest();
  EXPECT_EQ(card.title, "617 smaller items") << "what has no size is not on the map";
  EXPECT_EQ(card.facts,
            (Facts{{"Folder", "/map/dir", kEnd}, {"Size", "18.5 kB"}, share("2.0 % of “map”")}));
}

TEST_F(MapCardTest, TellsThousandsOfMergedItemsWithAComma) {
  Listing listing(0);
  for (int i = 0; i < 1234; ++i) listing.file("small", 30, 30);
  add(tree_, listing.file("large", 1'000'000, 1'000'000));
  EXPECT_EQ(cardOfRest().title, "1,234 smaller items");
}

/// Count, size and share belong together; those of the tree would be another moment's.
TEST_F(MapCardTest, TellsOfMergedItemsAsTheyWereWhenTheMapWasMade) {
  Listing listing(0);
  for (int i = 0; i < 10; ++i) listing.file("small", 20, 20);
  listing.file("large", 999'700, 999'700).folder("early").folder("late");
  const auto folders = add(tree_, listing);
  add(tree_, Listing(folders[0]).file("inside", 30, 30));
  const RenderedTreemap map = draw();
  const MapCard before = cardOn(map, isRest);
  ASSERT_EQ(before.title, "11 smaller items");
  ASSERT_EQ(before.facts[1].text, "230 B");
  ASSERT_EQ(before.facts[2].text, "less than 0.1 % of “map”");
  add(tree_, Listing(folders[1]).file("inside", 40'000, 40'000));
  tree_.removeSubtree(folders[0]);
  EXPECT_EQ(cardOn(map, isRest), before);
  EXPECT_NE(cardOn(draw(), isRest), before);
}

TEST_F(MapCardTest, TellsOfEachFoldersMergedItems) {
  const auto dirs = add(tree_, Listing(0).folder("a").folder("b").file("big", 200'000, 200'000));
  for (const NodeId dir : dirs) {
    Listing listing(dir);
    for (int i = 0; i < (dir == dirs[0] ? 100 : 300); ++i) listing.file("small", 30, 30);
    add(tree_, listing.file("large", 300'000, 300'000));
  }
  const RenderedTreemap map = draw();
  for (const auto& [dir, size] : {std::pair{dirs[0], "3.00 kB"}, std::pair{dirs[1], "9.00 kB"}}) {
    const MapCard card = cardOn(map, [&, dir = dir](const PictureBlock& block) {
      return isRest(block) && tree_.parent(static_cast<NodeId>(block.id)) == dir;
    });
    EXPECT_EQ(card.facts[1].text, size);
  }
}

TEST_F(MapCardTest, TellsLabelAndSizeOfWhatIsBesideTheTree) {
  add(tree_, Listing(0).file("a", 1000, 1000));
  extraBlocks_ = {{kFreeSpaceBlock, "Free space", 5000, 0x2B3648},
                  {kOtherSpaceBlock, "Other space in use", 400, 0x4A4458}};
  const auto cardOfExtra = [&](std::int32_t id) {
    return cardOf([&](const PictureBlock& block) { return block.id == id; });
  };
  EXPECT_EQ(cardOfExtra(kFreeSpaceBlock), (MapCard{"Free space", {{"Size", "5.00 kB"}}}));
  EXPECT_EQ(cardOfExtra(kOtherSpaceBlock), (MapCard{"Other space in use", {{"Size", "400 B"}}}));
}

TEST_F(MapCardTest, WritesBytesThatAreNoTextAsNumbers) {
  const auto dir = add(tree_, Listing(0).folder("d\xff")).front();
  add(tree_, Listing(dir).file("\xfe\n.pdf", 10, 10));
  focus_ = dir;
  const MapCard card = cardOfFirst();
  EXPECT_EQ(card.title, "\\376\n.pdf");
  EXPECT_EQ(card.facts[0].text, "/map/d\\377");
  EXPECT_EQ(card.facts[2].text, "100.0 % of “d\\377”");
}

TEST_F(MapCardTest, TellsSizesThatNoDoubleHolds) {
  constexpr std::uint64_t kHuge = (std::uint64_t{1} << 53) + 1;
  add(tree_, Listing(0).file("a", kHuge, kHuge - 1).file("b", kHuge, kHuge));
  const MapCard card = cardOfFirst();
  EXPECT_EQ(card.facts[1], (MapCard::Fact{"Size", formatSize(std::int64_t{1} << 53)}));
  EXPECT_EQ(card.facts[2].text, "50.0 % of “map”");
}

TEST(ShareText, HasOneDecimalPlace) {
  EXPECT_EQ(shareText(123, 1000), "12.3 %");
  EXPECT_EQ(shareText(1, 3), "33.3 %");
  EXPECT_EQ(shareText(2, 3), "66.7 %");
  EXPECT_EQ(shareText(1, 1000), "0.1 %");
}

TEST(ShareText, RoundsToTheNearestTenth) {
  EXPECT_EQ(shareText(9996, 10000), "100.0 %");
  EXPECT_EQ(shareText(9994, 10000), "99.9 %");
  EXPECT_EQ(shareText(10000, 10000), "100.0 %");
  EXPECT_EQ(shareText(6, 10000), "0.1 %");
}

TEST(ShareText, NeverSaysNothingOfSomething) {
  EXPECT_EQ(shareText(4, 10000), "less than 0.1 %");
  EXPECT_EQ(shareText(1, INT64_MAX), "less than 0.1 %");
  EXPECT_EQ(shareText(0, 10000), "0 %");
}

TEST(ShareText, IsNothingOfNothing) {
  EXPECT_EQ(shareText(0, 0), "0 %");
  EXPECT_EQ(shareText(5, 0), "0 %");
  EXPECT_EQ(shareText(5, -1), "0 %");
  EXPECT_EQ(shareText(-5, 100), "0 %");
}

/// As it is for a moment while a scan adds up.
TEST(ShareText, IsNeverMoreThanTheWhole) { EXPECT_EQ(shareText(300, 200), "100.0 %"); }

TEST(ShareText, HoldsBeyondWhatADoubleHolds) {
  EXPECT_EQ(shareText(INT64_MAX, INT64_MAX), "100.0 %");
  EXPECT_EQ(shareText(INT64_MAX / 2, INT64_MAX), "50.0 %");
  EXPECT_EQ(shareText((std::int64_t{1} << 60) + 1, std::int64_t{1} << 62), "25.0 %");
}

TEST(DateText, IsInTheLocalTimeZone) {
  const LocalTime localTime;
  EXPECT_EQ(dateText(kBirth), "2026-03-31 17:05");
  EXPECT_EQ(dateText(0), "1970-01-01 02:00");
  EXPECT_EQ(dateText(UINT32_MAX), "2106-02-07 08:28");
}

}  // namespace
}  // namespace app
