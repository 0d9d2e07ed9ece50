#include "ui/keys.h"

#include <X11/keysym.h>
#include <gtest/gtest.h>

namespace ui {
namespace {

TEST(Keys, HaveTheNumbersOfX) {
  EXPECT_EQ(key::kBackSpace, key::Keysym{XK_BackSpace});
  EXPECT_EQ(key::kTab, key::Keysym{XK_Tab});
  EXPECT_EQ(key::kLeftTab, key::Keysym{XK_ISO_Left_Tab});
  EXPECT_EQ(key::kReturn, key::Keysym{XK_Return});
  EXPECT_EQ(key::kEscape, key::Keysym{XK_Escape});
  EXPECT_EQ(key::kHome, key::Keysym{XK_Home});
  EXPECT_EQ(key::kLeft, key::Keysym{XK_Left});
  EXPECT_EQ(key::kUp, key::Keysym{XK_Up});
  EXPECT_EQ(key::kRight, key::Keysym{XK_Right});
  EXPECT_EQ(key::kDown, key::Keysym{XK_Down});
  EXPECT_EQ(key::kPageUp, key::Keysym{XK_Page_Up});
  EXPECT_EQ(key::kPageDown, key::Keysym{XK_Page_Down});
  EXPECT_EQ(key::kEnd, key::Keysym{XK_End});
  EXPECT_EQ(key::kMenu, key::Keysym{XK_Menu});
  EXPECT_EQ(key::kF1, key::Keysym{XK_F1});
  EXPECT_EQ(key::kF5, key::Keysym{XK_F5});
  EXPECT_EQ(key::kF10, key::Keysym{XK_F10});
  EXPECT_EQ(key::kDelete, key::Keysym{XK_Delete});
}

TEST(Keys, OfTheNumberPadMeanTheirNamesakes) {
  EXPECT_EQ(key::plain(XK_KP_Enter), key::kReturn);
  EXPECT_EQ(key::plain(XK_KP_Home), key::kHome);
  EXPECT_EQ(key::plain(XK_KP_Left), key::kLeft);
  EXPECT_EQ(key::plain(XK_KP_Up), key::kUp);
  EXPECT_EQ(key::plain(XK_KP_Right), key::kRight);
  EXPECT_EQ(key::plain(XK_KP_Down), key::kDown);
  EXPECT_EQ(key::plain(XK_KP_Page_Up), key::kPageUp);
  EXPECT_EQ(key::plain(XK_KP_Page_Down), key::kPageDown);
  EXPECT_EQ(key::plain(XK_KP_End), key::kEnd);
  EXPECT_EQ(key::plain(XK_KP_Delete), key::kDelete);
}

TEST(Keys, TabWithShiftIsTab) { EXPECT_EQ(key::plain(XK_ISO_Left_Tab), key::kTab); }

TEST(Keys, OthersStayWhatTheyAre) {
  EXPECT_EQ(key::plain(XK_a), key::Keysym{XK_a});
  EXPECT_EQ(key::plain(XK_KP_Begin), key::Keysym{XK_KP_Begin});
}

}  // namespace
}  // namespace ui
