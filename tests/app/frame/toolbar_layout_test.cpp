#include "app/frame/toolbar_layout.h"

#include <gtest/gtest.h>

#include <vector>

#include "tests/sizewalk/tree_model.h"

namespace app {
namespace {

using sizewalk::FileTree;
using test::add;
using test::Listing;
using ui::Rect;

int tenPixelsEach(std::string_view text) {
  int characters = 0;
  for (const char c : text) characters += (c & 0xC0) != 0x80;
  return 10 * characters;
}

constexpr Rect kBarPlace = {0, 0, 1000, 34};
constexpr int kLineHeight = 16;

struct Bar {
  Bar() { tree.createRoot("/r"); }
  ToolbarLayout layOut(double scale = 1) const {
    return layOutToolbar(state, kBarPlace, kLineHeight, scale, tenPixelsEach);
  }
  FileTree tree;
  ToolbarState state;
};

TEST(ToolbarLayout, HoldsOnlyTheMenuWithoutAScan) {
  const ToolbarLayout layout = Bar().layOut();
  EXPECT_EQ(layout.place(Action::OpenApplicationMenu), (Rect{1000 - 8 - 26, 6, 26, 22}));
  for (const Rect& part : {layout.place(Action::LeaveScan), layout.place(Action::StopScan),
                           layout.place(Action::Rescan), layout.place(Action::GoOut),
                           layout.place(Action::OpenMeasureMenu), layout.breadcrumb}) {
    EXPECT_TRUE(part.empty());
  }
}

TEST(ToolbarLayout, PutsItsPartsFromLeftToRightSixPixelsApart) {
  Bar bar;
  bar.state.tree = &bar.tree;
  bar.state.canGoUp = true;
  const ToolbarLayout layout = bar.layOut();
  EXPECT_EQ(layout.place(Action::LeaveScan), (Rect{8, 6, 70, 22}));
  EXPECT_EQ(layout.place(Action::Rescan), (Rect{8 + 70 + 6, 6, 80, 22}));
  EXPECT_EQ(layout.place(Action::GoOut), (Rect{170, 6, 26, 22}));
  EXPECT_EQ(layout.place(Action::OpenMeasureMenu), (Rect{202, 6, 170, 22}))
      << "\"Current size  ▾\"";
  EXPECT_EQ(layout.breadcrumb, (Rect{372 + 12, 6, 966 - 12 - 384, 22}));
  EXPECT_TRUE(layout.place(Action::StopScan).empty());
}

TEST(ToolbarLayout, OffersToStopWhileItScansAndNoWayUpAtTheTop) {
  Bar bar;
  bar.state.tree = &bar.tree;
  bar.state.scanning = true;
  const ToolbarLayout layout = bar.layOut();
  EXPECT_EQ(layout.place(Action::StopScan), (Rect{84, 6, 60, 22}));
  EXPECT_TRUE(layout.place(Action::Rescan).empty());
  EXPECT_TRUE(layout.place(Action::GoOut).empty());
  EXPECT_EQ(layout.place(Action::OpenMeasureMenu).x, 150);
}

TEST(ToolbarLayout, GivesTheBreadcrumbWhatIsLeft) {
  Bar bar;
  const auto folder = add(bar.tree, Listing(0).folder("folder")).front();
  bar.state.tree = &bar.tree;
  bar.state.focus = folder;
  bar.state.measure = Measure::AddedLastSixMonths;
  const ToolbarLayout layout = bar.layOut();
  ASSERT_EQ(layout.segments.size(), 2u);
  EXPECT_EQ(layout.segments[1].text, "folder");
  EXPECT_EQ(layout.place(Action::OpenMeasureMenu).w, 10 * 31 + 20);
}

TEST(ToolbarLayout, DropsTheBreadcrumbWhereThereIsNoRoom) {
  Bar bar;
  bar.state.tree = &bar.tree;
  const ToolbarLayout layout =
      layOutToolbar(bar.state, {0, 0, 300, 34}, kLineHeight, 1, tenPixelsEach);
  EXPECT_TRUE(layout.breadcrumb.empty());
  EXPECT_TRUE(layout.segments.empty());
}

TEST(ToolbarLayout, ScalesItsPaddings) {
  Bar bar;
  bar.state.tree = &bar.tree;
  EXPECT_EQ(bar.layOut(2).place(Action::LeaveScan).x, 16);
  EXPECT_EQ(bar.layOut(2).place(Action::LeaveScan).w, 50 + 40);
  const Rect measures = bar.layOut(2).place(Action::OpenMeasureMenu);
  EXPECT_EQ(bar.layOut(2).breadcrumb.x, measures.x + measures.w + 24);
  const Rect menu = bar.layOut(2).place(Action::OpenApplicationMenu);
  EXPECT_EQ(bar.layOut(2).breadcrumb.x + bar.layOut(2).breadcrumb.w, menu.x - 24);
}

TEST(MeasureName, IsTheOneInTheSelectorAndItsMenu) {
  EXPECT_EQ(measureName(Measure::CurrentSize), "Current size");
  EXPECT_EQ(measureName(Measure::AddedLastMonth), "Added in the last month");
  EXPECT_EQ(measureName(Measure::AddedLastSixMonths), "Added in the last six months");
  EXPECT_EQ(measureName(Measure::AddedSinceLastScan), "Added since last scan");
  EXPECT_EQ(measureSelectorText(Measure::CurrentSize), "Current size  ▾");
}

}  // namespace
}  // namespace app
