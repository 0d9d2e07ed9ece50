#include "app/frame/volume_cards.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <string>
#include <vector>

namespace app {
namespace {

using Paths = std::vector<std::string>;
using sizewalk::Volume;

constexpr VolumeFigures kSome{30, 100};

class VolumeCardsTest : public ::testing::Test {
 protected:
  static Volume volume(const std::string& path) { return {"Volume " + path, path, {}}; }
  static VolumeCard waiting(const std::string& path) { return {"Volume " + path, path, {}}; }
  static VolumeCard measured(const std::string& path, const VolumeFigures& figures = kSome) {
    return {"Volume " + path, path, figures};
  }
  void answer(const std::string& path, std::uint64_t used = 30, std::uint64_t total = 100) {
    cards_.measured(path, {.totalBytes = total, .usedBytes = used, .freeBytes = total - used});
  }
  std::vector<VolumeCard> shown() const { return cards_.cards(); }

  std::vector<Paths> asked_;
  VolumeCards cards_{[this](const Paths& paths) { asked_.push_back(paths); }};
};

using Cards = std::vector<VolumeCard>;

TEST_F(VolumeCardsTest, AreNoneBeforeTheVolumesAreListed) {
  EXPECT_EQ(shown(), Cards{});
  EXPECT_TRUE(asked_.empty());
}

TEST_F(VolumeCardsTest, StandInTheOrderOfTheVolumesAndWaitForTheirFigures) {
  cards_.refresh({volume("/"), volume("/z"), volume("/a")});
  EXPECT_EQ(shown(), (Cards{waiting("/"), waiting("/z"), waiting("/a")}));
}

TEST_F(VolumeCardsTest, AskForAllVolumesAtEachListing) {
  cards_.refresh({volume("/"), volume("/a")});
  answer("/");
  cards_.refresh({volume("/"), volume("/b")});
  EXPECT_EQ(asked_, (std::vector<Paths>{{"/", "/a"}, {"/", "/b"}}));
}

TEST_F(VolumeCardsTest, TakeFiguresAsTheyComeInAnyOrder) {
  cards_.refresh({volume("/"), volume("/a")});
  answer("/a", 1, 2);
  EXPECT_EQ(shown(), (Cards{waiting("/"), measured("/a", {1, 2})}));
  answer("/");
  EXPECT_EQ(shown(), (Cards{measured("/"), measured("/a", {1, 2})}));
  answer("/a", 2, 2);
  EXPECT_EQ(shown(), (Cards{measured("/"), measured("/a", {2, 2})}));
}

TEST_F(VolumeCardsTest, KeepTheirFiguresWhileTheyAreMeasuredAgain) {
  cards_.refresh({volume("/")});
  answer("/");
  cards_.refresh({volume("/")});
  EXPECT_EQ(shown(), Cards{measured("/")});
}

TEST_F(VolumeCardsTest, LeaveOutWhatHasNoRoom) {
  cards_.refresh({volume("/"), volume("/none")});
  answer("/none", 0, 0);
  EXPECT_EQ(shown(), Cards{waiting("/")});
  cards_.refresh({volume("/"), volume("/none")});
  EXPECT_EQ(shown(), Cards{waiting("/")}) << "it does not come back until it has room";
  answer("/none");
  EXPECT_EQ(shown(), (Cards{waiting("/"), measured("/none")}));
}

TEST_F(VolumeCardsTest, ForgetTheFiguresOfAVolumeThatWasGone) {
  cards_.refresh({volume("/"), volume("/stick")});
  answer("/stick");
  cards_.refresh({volume("/")});
  EXPECT_EQ(shown(), Cards{waiting("/")});
  cards_.refresh({volume("/"), volume("/stick")});
  EXPECT_EQ(shown(), (Cards{waiting("/"), waiting("/stick")})) << "it may be another one";
}

TEST_F(VolumeCardsTest, TakeNoNoticeOfAnswersForOtherFolders) {
  cards_.refresh({volume("/")});
  answer("/home/me");
  EXPECT_EQ(shown(), Cards{waiting("/")});
}

TEST_F(VolumeCardsTest, ShowWhatIsBeyondTheSignedRangeAsItsEnd) {
  constexpr std::uint64_t kMost = std::numeric_limits<std::uint64_t>::max();
  constexpr std::int64_t kEnd = std::numeric_limits<std::int64_t>::max();
  cards_.refresh({volume("/")});
  answer("/", kMost, kMost);
  EXPECT_EQ(shown(), (Cards{measured("/", {kEnd, kEnd})}));
}

}  // namespace
}  // namespace app
