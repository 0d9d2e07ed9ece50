#include "app/model/kind_colours.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>

namespace app {
namespace {

/// The palette, worked out apart from this program in IEEE double arithmetic.
constexpr KindColours::Table kExpected = {
    0xFFB75252, 0xFF3A3A3C, 0xFF5A5A5E, 0xFFE567D5, 0xFF40B7A3, 0xFFE59639, 0xFF6B52B7, 0xFF56E550,
    0xFFB72D5B, 0xFF67B6E5, 0xFFADB740, 0xFFC139E5, 0xFF52B784, 0xFFE56F50, 0xFF2D39B7, 0xFF96E567,
    0xFFB74090, 0xFF39DEE5, 0xFFB79E52, 0xFF9450E5, 0xFF2DB744, 0xFFE56777, 0xFF4072B7, 0xFFB3E539,
    0xFFB752B7, 0xFF50E5B9, 0xFFB7662D, 0xFF7667E5, 0xFF54B740, 0xFFE53988, 0xFF529EB7, 0xFFE5DE50,
    0xFF892DB7, 0xFF67E596, 0xFFB74940, 0xFF395EE5, 0xFF85B752, 0xFFE550C7, 0xFF2DB7AB, 0xFFE5B567,
    0xFF6740B7, 0xFF39E53F, 0xFFB7526C, 0xFF50A1E5, 0xFFA1B72D, 0xFFD467E5, 0xFF40B785, 0xFFE56A39,
    0xFF5253B7, 0xFF7CE550, 0xFFB72D7F, 0xFF67D6E5, 0xFFB7A240, 0xFF9539E5, 0xFF52B76B, 0xFFE55057,
    0xFF2D5CB7, 0xFFB7E567, 0xFFB740AE, 0xFF39E5C0, 0xFFB78452, 0xFF6E50E5, 0xFF3AB72D, 0xFFE56797,
    0xFF4090B7, 0xFFDFE539, 0xFF9D52B7, 0xFF50E593, 0xFFB7432D, 0xFF6778E5, 0xFF73B740, 0xFFE539B4,
    0xFF52B7B6, 0xFFE5B850, 0xFF652DB7, 0xFF67E575};

TEST(KindColours, AreThePaletteOfTheMap) {
  const KindColours colours(true);
  for (std::size_t kind = 0; kind < kExpected.size(); ++kind) {
    EXPECT_EQ(colours.colours()[kind], kExpected[kind]) << kind;
    EXPECT_EQ(colours.colourForKind(static_cast<sizewalk::KindIndex>(kind)), kExpected[kind])
        << kind;
  }
}

TEST(KindColours, AreDarkGreyForFoldersAndLinks) {
  const KindColours colours(true);
  EXPECT_EQ(colours.colourForKind(sizewalk::kKindFolder), 0xFF3A3A3Cu);
  EXPECT_EQ(colours.colourForKind(sizewalk::kKindSymbolicLink), 0xFF5A5A5Eu);
}

TEST(KindColours, AreGreyOutsideTheList) {
  for (const bool consistent : {true, false}) {
    const KindColours colours(consistent);
    EXPECT_EQ(colours.colourForKind(sizewalk::kNoKind), 0xFF808080u);
    EXPECT_EQ(colours.colourForKind(76), 0xFF808080u);
  }
}

TEST(KindColours, DisregardRanksWhileConsistent) {
  KindColours colours(true);
  colours.setKindSlots({{10, 0}});
  EXPECT_EQ(colours.colourForKind(10), kExpected[10]);
  colours.setConsistent(false);
  EXPECT_FALSE(colours.consistent());
  EXPECT_EQ(colours.colourForKind(10), kExpected[4]);
  colours.setConsistent(true);
  EXPECT_EQ(colours.colourForKind(10), kExpected[10]);
}

TEST(KindColours, FollowRanksBehindTheFixedColours) {
  KindColours colours(false);
  colours.setKindSlots({{20, 0}, {75, 1}, {5, 71}, {6, 72}, {7, 145}, {8, -1}});
  EXPECT_EQ(colours.colourForKind(20), kExpected[4]);
  EXPECT_EQ(colours.colourForKind(75), kExpected[5]);
  EXPECT_EQ(colours.colourForKind(5), kExpected[75]);
  EXPECT_EQ(colours.colourForKind(6), kExpected[4]);
  EXPECT_EQ(colours.colourForKind(7), kExpected[5]);
  EXPECT_EQ(colours.colourForKind(8), kExpected[75]);
}

TEST(KindColours, StayTheKindsOwnWithoutARank) {
  KindColours colours(false);
  EXPECT_EQ(colours.colourForKind(20), kExpected[20]);
  colours.setKindSlots({{21, 0}});
  EXPECT_EQ(colours.colourForKind(20), kExpected[20]);
}

TEST(KindColours, TakeAnyKindThatHasARank) {
  KindColours colours(false);
  colours.setKindSlots({{sizewalk::kNoKind, 2}, {4464, 3}});
  EXPECT_EQ(colours.colourForKind(sizewalk::kNoKind), kExpected[6]);
  EXPECT_EQ(colours.colourForKind(4464), kExpected[7]);
}

}  // namespace
}  // namespace app
