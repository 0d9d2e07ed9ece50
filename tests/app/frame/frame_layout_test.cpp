#include "app/frame/frame_layout.h"

#include <gtest/gtest.h>

#include <vector>

namespace app {
namespace {

using ui::Rect;

constexpr double kScales[] = {0.75, 1.0, 1.5, 2.0, 4.0};

/// For a window of that many logical pixels.
FrameRequest requestOf(int width, int height, double scale = 1) {
  FrameRequest request;
  request.width = ui::scaled(width, scale);
  request.height = ui::scaled(height, scale);
  request.scale = scale;
  request.lineHeight = ui::scaled(16, scale);
  return request;
}

std::vector<Rect> partsOf(const FrameLayout& frame) {
  return {frame.toolbar, frame.update, frame.list,        frame.kinds,       frame.map,
          frame.pending, frame.status, frame.mainDivider, frame.kindsDivider};
}

void expectTiling(const FrameRequest& request) {
  const std::vector<Rect> parts = partsOf(layOutFrame(request));
  long area = 0;
  for (std::size_t i = 0; i < parts.size(); ++i) {
    if (parts[i].empty()) continue;
    area += long{parts[i].w} * parts[i].h;
    EXPECT_EQ(ui::intersect(parts[i], {0, 0, request.width, request.height}), parts[i]);
    for (std::size_t j = 0; j < i; ++j) {
      EXPECT_TRUE(ui::intersect(parts[i], parts[j]).empty()) << i << " and " << j;
    }
  }
  EXPECT_EQ(area, long{request.width} * request.height);
}

void expectUsable(const FrameLayout& frame, double scale) {
  EXPECT_GE(frame.list.w, ui::scaled(220, scale));
  EXPECT_GE(frame.list.h, ui::scaled(80, scale));
  EXPECT_GE(frame.map.w, ui::scaled(160, scale));
  EXPECT_GE(frame.map.h, ui::scaled(160, scale));
  if (frame.kinds.empty()) return;
  EXPECT_GE(frame.kinds.w, ui::scaled(220, scale));
  EXPECT_GE(frame.kinds.h, ui::scaled(80, scale));
}

TEST(FrameLayout, CoversTheWindowAtEverySizeAndScale) {
  for (const double scale : kScales) {
    for (const bool above : {false, true}) {
      for (const bool kinds : {false, true}) {
        for (const auto& [width, height] : {std::pair{640, 420}, {1100, 720}, {1600, 1000}}) {
          FrameRequest request = requestOf(width, height, scale);
          request.listAboveMap = above;
          request.showKinds = kinds;
          SCOPED_TRACE(testing::Message() << width << "x" << height << " scale " << scale);
          expectTiling(request);
          const FrameLayout frame = layOutFrame(request);
          expectUsable(frame, scale);
          EXPECT_EQ(frame.kinds.empty(), !kinds);
          EXPECT_EQ(frame.kindsDivider.empty(), !kinds);
        }
      }
    }
  }
}

TEST(FrameLayout, PutsTheListOverTheKindsBesideTheMap) {
  const FrameLayout frame = layOutFrame(requestOf(1000, 700));
  EXPECT_EQ(frame.toolbar, (Rect{0, 0, 1000, 34}));
  EXPECT_EQ(frame.status, (Rect{0, 676, 1000, 24}));
  EXPECT_EQ(frame.list.w, 340);
  EXPECT_EQ(frame.kinds.w, 340);
  EXPECT_EQ(frame.mainDivider, (Rect{340, 34, 5, 642}));
  EXPECT_EQ(frame.map, (Rect{345, 34, 655, 642}));
  EXPECT_EQ(frame.list.h, 395) << "62 of 100 parts of what the divider leaves";
  EXPECT_EQ(frame.kindsDivider, (Rect{0, 34 + 395, 340, 5}));
}

TEST(FrameLayout, KeepsTheColumnReadableInANarrowWindow) {
  for (const double scale : kScales) {
    const FrameRequest request = requestOf(640, 420, scale);
    EXPECT_EQ(layOutFrame(request).list.w, ui::scaled(300, scale));
    EXPECT_EQ(layOutFrame(request).kinds.w, ui::scaled(300, scale));
  }
}

TEST(FrameLayout, PutsTheListAboveTheMapAndTheKindsAtItsRight) {
  FrameRequest request = requestOf(1000, 700);
  request.listAboveMap = true;
  const FrameLayout frame = layOutFrame(request);
  EXPECT_EQ(frame.list, (Rect{0, 34, 1000, 244}));
  EXPECT_EQ(frame.kinds, (Rect{680, 283, 320, 393}));
  EXPECT_EQ(frame.map, (Rect{0, 283, 675, 393}));
}

TEST(FrameLayout, GivesTheRoomOfTheKindsToTheirNeighbour) {
  FrameRequest request = requestOf(1000, 700);
  request.showKinds = false;
  EXPECT_EQ(layOutFrame(request).list, (Rect{0, 34, 340, 642}));
  request.listAboveMap = true;
  EXPECT_EQ(layOutFrame(request).map, (Rect{0, 283, 1000, 393}));
}

TEST(FrameLayout, FollowsDraggedDividers) {
  FrameRequest request = requestOf(1000, 700);
  request.dividers.column = 0.5;
  EXPECT_EQ(layOutFrame(request).list.w, 498);
}

TEST(FrameLayout, StopsDividersWhereAPaneWouldBecomeUnusable) {
  for (const double scale : kScales) {
    for (const auto& [width, height] : {std::pair{640, 420}, {1000, 700}}) {
      for (const double share : {-3.0, 0.0, 1.0, 7.0}) {
        FrameRequest request = requestOf(width, height, scale);
        request.dividers = {share, share, share, share};
        for (const bool above : {false, true}) {
          request.listAboveMap = above;
          expectTiling(request);
          expectUsable(layOutFrame(request), scale);
        }
      }
    }
  }
}

TEST(FrameLayout, StopsDividersWhereTheListTheKindsAndTheMapAreLeast) {
  FrameRequest request = requestOf(1000, 700);
  request.dividers = {0.0, 0.0, 0.0, 0.0};
  EXPECT_EQ(layOutFrame(request).list.w, 220);
  EXPECT_EQ(layOutFrame(request).list.h, 80);
  request.listAboveMap = true;
  EXPECT_EQ(layOutFrame(request).list.h, 80);
  EXPECT_EQ(layOutFrame(request).map.w, 160);
  request.dividers = {1.0, 1.0, 1.0, 1.0};
  EXPECT_EQ(layOutFrame(request).kinds.w, 220);
  EXPECT_EQ(layOutFrame(request).map.h, 160);
  request.listAboveMap = false;
  EXPECT_EQ(layOutFrame(request).map.w, 160);
  EXPECT_EQ(layOutFrame(request).kinds.h, 80);
}

TEST(FrameLayout, GivesAPlaceBackThatASmallerWindowHadNoRoomFor) {
  FrameRequest request = requestOf(1000, 700);
  request.dividers = {0.8, 0.8, 0.1, 0.1};
  const FrameLayout before = layOutFrame(request);
  request.width = 640;
  request.height = 420;
  EXPECT_EQ(layOutFrame(request).map.w, 160);
  request.width = 1000;
  request.height = 700;
  EXPECT_EQ(partsOf(layOutFrame(request)), partsOf(before));
}

TEST(FrameLayout, SharesWhatIsTooLittleForTwoPanes) {
  FrameRequest request = requestOf(305, 700);
  for (const double share : {0.0, 0.5, 1.0}) {
    request.dividers.column = share;
    const FrameLayout frame = layOutFrame(request);
    EXPECT_EQ(frame.list.w, 300 * 220 / (220 + 160));
    expectTiling(request);
  }
}

TEST(FrameLayout, PutsAnUpdateUnderTheToolbar) {
  FrameRequest request = requestOf(1000, 700);
  request.updateHeight = 31;
  request.pendingHeight = 120;
  for (const bool above : {false, true}) {
    request.listAboveMap = above;
    const FrameLayout frame = layOutFrame(request);
    EXPECT_EQ(frame.update, (Rect{0, 34, 1000, 31}));
    EXPECT_EQ(frame.list.y, 65);
    EXPECT_EQ(frame.pending, (Rect{0, 556, 1000, 120}));
    expectTiling(request);
  }
  for (const int height : {20, 40, 60, 90}) {
    request.height = height;
    expectTiling(request);
  }
}

TEST(FrameLayout, PutsWhatWaitsBetweenThePanesAndTheStatusLine) {
  FrameRequest request = requestOf(1000, 700);
  request.pendingHeight = 120;
  for (const bool above : {false, true}) {
    request.listAboveMap = above;
    const FrameLayout frame = layOutFrame(request);
    EXPECT_EQ(frame.pending, (Rect{0, 556, 1000, 120}));
    EXPECT_EQ(frame.status, (Rect{0, 676, 1000, 24}));
    EXPECT_EQ(frame.map.y + frame.map.h, 556);
    expectTiling(request);
  }
  request.pendingHeight = 0;
  EXPECT_TRUE(layOutFrame(request).pending.empty());
}

TEST(FrameLayout, LeavesThePanesHalfOfTheRoom) {
  FrameRequest request = requestOf(1000, 700);
  for (const int wanted : {5'000, -5'000}) {
    request.pendingHeight = wanted;
    EXPECT_EQ(layOutFrame(request).pending.h, wanted > 0 ? 321 : 0);
    expectTiling(request);
  }
}

TEST(FrameLayout, SurvivesAWindowWithoutRoom) {
  for (const int side : {0, 1, 7, 40}) {
    FrameRequest request = requestOf(side, side);
    expectTiling(request);
    request.pendingHeight = 100;
    expectTiling(request);
  }
}

}  // namespace
}  // namespace app
