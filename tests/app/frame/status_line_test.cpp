#include "app/frame/status_line.h"

#include <gtest/gtest.h>

#include "app/frame/status_text.h"

namespace app {
namespace {

using ui::Rect;

/// Ten pixels for every character, whatever it is.
int tenForEach(std::string_view text) {
  int characters = 0;
  for (const char c : text) characters += (c & 0xC0) != 0x80;
  return 10 * characters;
}

constexpr Rect kBar = {0, 700, 500, 24};

StatusLayout layOut(const std::string& left, const std::string& right, const Rect& bar = kBar) {
  return layOutStatus(left, {right}, bar, 1, tenForEach);
}

TEST(StatusLayout, PutsATextAtEachEnd) {
  const StatusLayout layout = layOut("left text", "/a/path");
  EXPECT_EQ(layout.left, (Rect{8, 700, 90, 24}));
  EXPECT_EQ(layout.right, (Rect{500 - 8 - 70, 700, 70, 24}));
  EXPECT_EQ(layout.rightText, "/a/path");
}

TEST(StatusLayout, ShortensTheRightTextAtItsStart) {
  // 484 pixels of room, 300 taken, a gap of 24: 160 are left for 17 characters.
  const StatusLayout layout = layOut(std::string(30, 'l'), "/home/u/Pictures/");
  EXPECT_EQ(layout.rightText, "…ome/u/Pictures/");
  EXPECT_EQ(layout.right, (Rect{332, 700, 160, 24}));
}

TEST(StatusLayout, ShortensWhatIsNoPathAtItsEnd) {
  const StatusNote note = {"Only PNG image; Escape ends it", StatusNote::Cut::End};
  const StatusLayout layout = layOutStatus(std::string(30, 'l'), note, kBar, 1, tenForEach);
  EXPECT_EQ(layout.rightText, "Only PNG image;…");
}

TEST(StatusLayout, FitsTheRightTextToThePixel) {
  EXPECT_EQ(layOut(std::string(30, 'l'), "/home/u/Pictures").rightText, "/home/u/Pictures");
}

TEST(StatusLayout, HidesARightTextThatOnlyAFewCharactersHadRoomFor) {
  const Rect bar = {0, 700, 8 + 100 + 24 + 47 + 8, 24};
  const StatusLayout layout = layOut(std::string(10, 'l'), "/home/u/Pictures", bar);
  EXPECT_EQ(layout.rightText, "");
  EXPECT_TRUE(layout.right.empty());
  const Rect wider = {0, 700, bar.w + 1, 24};
  EXPECT_EQ(layOut(std::string(10, 'l'), "/home/u/Pictures", wider).rightText, "…res");
  EXPECT_EQ(layOut(std::string(10, 'l'), "/u", bar).rightText, "/u") << "short enough to be whole";
}

TEST(StatusLayout, GivesTheLeftTextPriority) {
  const StatusLayout layout = layOut(std::string(60, 'l'), "/a");
  EXPECT_EQ(layout.left, (Rect{8, 700, 484, 24}));
  EXPECT_TRUE(layout.right.empty());
}

TEST(StatusLayout, NeverLetsTheTextsMeet) {
  for (int width = 0; width < 600; ++width) {
    const Rect bar = {3, 700, width, 24};
    const StatusLayout layout = layOut("17 characters here", "/some/where/deep/below", bar);
    EXPECT_LE(layout.left.x + layout.left.w, std::max(3 + width - 8, 3 + 8)) << width;
    if (layout.right.empty()) continue;
    EXPECT_GE(layout.right.x, layout.left.x + layout.left.w + 24) << width;
    EXPECT_EQ(layout.right.x + layout.right.w, 3 + width - 8) << width;
  }
}

TEST(StatusLayout, GivesTheRightTextAllTheRoomWithoutALeftOne) {
  const StatusLayout layout = layOut("", std::string(48, 'r'));
  EXPECT_TRUE(layout.left.empty());
  EXPECT_EQ(layout.right, (Rect{12, 700, 480, 24}));
}

TEST(StatusLayout, HoldsNothingWithoutTexts) {
  const StatusLayout layout = layOut("", "");
  EXPECT_TRUE(layout.left.empty());
  EXPECT_TRUE(layout.right.empty());
}

TEST(StatusLayout, ScalesItsPaddings) {
  const StatusLayout layout = layOutStatus("left", {"right"}, kBar, 2, tenForEach);
  EXPECT_EQ(layout.left.x, 16);
  EXPECT_EQ(layout.right.x + layout.right.w, 500 - 16);
}

TEST(SelectionText, CountsAndSums) {
  EXPECT_EQ(selectionText(3, 1'200'000'000), "3 selected · 1.20 GB");
  EXPECT_EQ(selectionText(1'234'567, 0), "1,234,567 selected · 0 B");
}

}  // namespace
}  // namespace app
