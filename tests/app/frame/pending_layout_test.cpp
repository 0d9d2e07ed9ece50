#include "app/frame/pending_layout.h"

#include <gtest/gtest.h>

#include <string_view>

namespace app {
namespace {

using ui::Rect;

constexpr PendingScale kOne = {1, 16};

int measure(std::string_view text) { return static_cast<int>(text.size()) * 8; }

bool within(const Rect& inner, const Rect& outer) {
  return inner.empty() || ui::intersect(inner, outer) == inner;
}

TEST(PendingLayout, GrowsByRowsUpToFour) {
  EXPECT_EQ(pendingPanelHeight(0, kOne), 0);
  const int row = pendingRowHeight(kOne);
  EXPECT_EQ(pendingPanelHeight(2, kOne), pendingPanelHeight(1, kOne) + row);
  EXPECT_EQ(pendingPanelHeight(4, kOne), pendingPanelHeight(1, kOne) + 3 * row);
  EXPECT_EQ(pendingPanelHeight(5, kOne), pendingPanelHeight(4, kOne));
  EXPECT_EQ(pendingPanelHeight(5'000'000'000, kOne), pendingPanelHeight(4, kOne));
}

TEST(PendingLayout, HasRoomForItsRowsBelowItsHeading) {
  for (const double scale : {0.75, 1.0, 1.5, 2.0, 4.0}) {
    const PendingScale s = {scale, ui::scaled(16, scale)};
    const Rect panel = {0, 300, ui::scaled(640, scale), pendingPanelHeight(3, s)};
    const PendingLayout layout = layOutPending(
        panel, s, [&](std::string_view text) { return ui::scaled(measure(text), scale); });
    EXPECT_EQ(layout.rows.h, 3 * pendingRowHeight(s));
    for (const Rect& part : {layout.heading, layout.undeleteAll, layout.deleteNow, layout.rows}) {
      EXPECT_FALSE(part.empty());
      EXPECT_TRUE(within(part, panel));
    }
    EXPECT_LE(layout.heading.x + layout.heading.w, layout.undeleteAll.x);
    EXPECT_LT(layout.undeleteAll.x + layout.undeleteAll.w, layout.deleteNow.x);
    EXPECT_LE(layout.heading.y + layout.heading.h, layout.rows.y);
  }
}

TEST(PendingLayout, PutsRingNameAndButtonBesideEachOther) {
  const Rect row = {0, 100, 400, pendingRowHeight(kOne)};
  const PendingRowLayout parts = layOutPendingRow(row, kOne, measure);
  EXPECT_EQ(parts.ring.w, 16);
  EXPECT_EQ(parts.ring.h, 16);
  EXPECT_TRUE(within(parts.ring, row));
  EXPECT_TRUE(within(parts.undelete, row));
  EXPECT_LT(parts.ring.x + parts.ring.w, parts.name.x);
  EXPECT_LT(parts.name.x + parts.name.w, parts.undelete.x);
}

TEST(PendingLayout, SurvivesAWindowWithoutRoom) {
  for (const int side : {0, 1, 9, 40, 90}) {
    const Rect panel = {0, 0, side, side};
    const PendingLayout layout = layOutPending(panel, kOne, measure);
    EXPECT_GE(layout.heading.w, 0);
    EXPECT_GE(layout.rows.h, 0);
    EXPECT_GE(layout.deleteNow.w, 0);
    EXPECT_GE(layOutPendingRow(panel, kOne, measure).name.w, 0);
  }
}

}  // namespace
}  // namespace app
