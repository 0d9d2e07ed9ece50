#include "ui/width_cache.h"

#include <gtest/gtest.h>

namespace ui {
namespace {

/// Keeps `count` texts that no test asks for; `name` tells those of one call from another's.
void keepOthers(WidthCache& cache, const std::string& name, std::size_t count) {
  for (std::size_t i = 0; i < count; ++i) cache.keep(name + std::to_string(i), 1);
}

TEST(WidthCache, KnowsNothingAtFirst) {
  WidthCache cache;
  EXPECT_EQ(cache.find(""), std::nullopt);
  EXPECT_EQ(cache.find("name"), std::nullopt);
  EXPECT_EQ(cache.size(), 0u);
}

TEST(WidthCache, FindsWhatItKept) {
  WidthCache cache;
  cache.keep("name", 31);
  cache.keep("", 0);
  cache.keep(std::string_view("a\0b", 3), 12);
  EXPECT_EQ(cache.find("name"), 31);
  EXPECT_EQ(cache.find(""), 0);
  EXPECT_EQ(cache.find(std::string_view("a\0b", 3)), 12);
  EXPECT_EQ(cache.find("a"), std::nullopt);
  EXPECT_EQ(cache.size(), 3u);
}

TEST(WidthCache, DoesNotKeepLongTexts) {
  WidthCache cache;
  const std::string longest(WidthCache::kLongestText, 'x');
  cache.keep(longest, 7);
  cache.keep(longest + 'x', 8);
  EXPECT_EQ(cache.find(longest), 7);
  EXPECT_EQ(cache.find(longest + 'x'), std::nullopt);
  EXPECT_EQ(cache.size(), 1u);
}

TEST(WidthCache, KeepsATextForAGenerationAfterItsOwn) {
  WidthCache cache;
  cache.keep("name", 31);
  keepOthers(cache, "a", 2 * WidthCache::kGeneration - 1);
  EXPECT_EQ(cache.find("name"), 31);
}

TEST(WidthCache, ForgetsWhatNobodyAsksFor) {
  WidthCache cache;
  cache.keep("name", 31);
  keepOthers(cache, "a", 2 * WidthCache::kGeneration);
  EXPECT_EQ(cache.find("name"), std::nullopt);
}

TEST(WidthCache, KeepsWhatIsAskedForEveryGeneration) {
  WidthCache cache;
  cache.keep("name", 31);
  for (int generation = 0; generation < 5; ++generation) {
    keepOthers(cache, std::to_string(generation) + '-', WidthCache::kGeneration);
    ASSERT_EQ(cache.find("name"), 31) << generation;
  }
}

TEST(WidthCache, NeverHoldsMoreThanTwoGenerations) {
  WidthCache cache;
  for (int generation = 0; generation < 4; ++generation) {
    keepOthers(cache, std::to_string(generation) + '-', WidthCache::kGeneration - 5);
    ASSERT_LE(cache.size(), 2 * WidthCache::kGeneration);
  }
}

}  // namespace
}  // namespace ui
