#include "ui/damage.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <vector>

namespace ui {
namespace {

constexpr Rect kWindow{0, 0, 4000, 2000};

TEST(Damage, IsEmptyAtFirst) {
  EXPECT_TRUE(Damage().empty());
  EXPECT_TRUE(Damage().within(kWindow).empty());
}

TEST(Damage, TakesNoEmptyRectangle) {
  Damage damage;
  damage.add(Rect{10, 10, 0, 5});
  damage.add(Rect{10, 10, 5, -5});
  EXPECT_TRUE(damage.empty());
}

TEST(Damage, KeepsRectanglesApartThatAreFarFromEachOther) {
  Damage damage;
  damage.add({0, 0, 100, 20});
  damage.add({3000, 1500, 100, 20});
  EXPECT_EQ(damage.within(kWindow), (std::vector<Rect>{{0, 0, 100, 20}, {3000, 1500, 100, 20}}));
}

TEST(Damage, JoinsRectanglesThatAreNearEachOther) {
  Damage damage;
  damage.add({0, 0, 100, 20});
  damage.add({0, 30, 100, 20});
  EXPECT_EQ(damage.within(kWindow), (std::vector<Rect>{{0, 0, 100, 50}}));
}

TEST(Damage, JoinsWhatComesOfJoiningWithWhatThatIsNear) {
  Damage damage;
  damage.add({0, 0, 1000, 10});
  damage.add({0, 100, 1000, 10});  // too far from the first
  ASSERT_EQ(damage.within(kWindow).size(), 2u);
  damage.add({0, 40, 1000, 30});
  EXPECT_EQ(damage.within(kWindow), (std::vector<Rect>{{0, 0, 1000, 110}}));
}

TEST(Damage, NamesARectangleOnceThatLiesInAnother) {
  Damage damage;
  damage.add({10, 10, 20, 20});
  damage.add({0, 0, 1000, 1000});
  damage.add({500, 500, 5, 5});
  EXPECT_EQ(damage.within(kWindow), (std::vector<Rect>{{0, 0, 1000, 1000}}));
}

TEST(Damage, NamesOnlyWhatLiesInTheWindow) {
  Damage damage;
  damage.add({-50, -50, 60, 60});
  damage.add({3990, 1990, 100, 100});
  damage.add({-500, 1000, 100, 10});
  EXPECT_EQ(damage.within(kWindow), (std::vector<Rect>{{0, 0, 10, 10}, {3990, 1990, 10, 10}}));
}

TEST(Damage, OfAllIsTheWindowOfThatSize) {
  Damage damage;
  damage.add({0, 0, 5, 5});
  damage.addAll();
  damage.add({100, 100, 5, 5});
  EXPECT_FALSE(damage.empty());
  EXPECT_EQ(damage.within({0, 0, 30, 20}), (std::vector<Rect>{{0, 0, 30, 20}}));
}

TEST(Damage, AddsThatOfAnother) {
  Damage rects;
  rects.add({0, 0, 5, 5});
  Damage damage;
  damage.add(rects);
  EXPECT_EQ(damage.within(kWindow), (std::vector<Rect>{{0, 0, 5, 5}}));
  Damage all;
  all.addAll();
  damage.add(all);
  EXPECT_EQ(damage.within(kWindow), (std::vector<Rect>{kWindow}));
}

TEST(Damage, HoldsEveryRectangleInFewOfThem) {
  std::mt19937 random(1);
  const auto upTo = [&](int most) {
    return static_cast<int>(random() % static_cast<unsigned>(most));
  };
  for (int round = 0; round < 200; ++round) {
    Damage damage;
    std::vector<Rect> added;
    for (int i = 0; i < 40; ++i) {
      added.push_back({upTo(3900), upTo(1900), 1 + upTo(100), 1 + upTo(100)});
      damage.add(added.back());
    }
    const std::vector<Rect> rects = damage.within(kWindow);
    ASSERT_LE(rects.size(), Damage::kMost);
    for (const Rect& rect : added) {
      ASSERT_TRUE(std::ranges::any_of(
          rects, [&](const Rect& holder) { return intersect(holder, rect) == rect; }));
    }
  }
}

}  // namespace
}  // namespace ui
