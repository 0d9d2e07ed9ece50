#include "app/model/scan_turns.h"

#include <gtest/gtest.h>

#include <atomic>
#include <string>
#include <thread>

namespace app {
namespace {

const std::string kFolder = "/folder";

class ScanTurnsTest : public testing::Test {
 protected:
  void takeAll() {
    for (int i = 0; i < kScansOfAFolder; ++i) ASSERT_TRUE(turns_.take(kFolder, scanner_));
  }

  ScanTurns turns_;
  sizewalk::TreeScanner scanner_{sizewalk::ScanOptions()};
};

TEST_F(ScanTurnsTest, HoldNoOtherFolderUp) {
  takeAll();
  EXPECT_TRUE(turns_.take("/other", scanner_));
}

TEST_F(ScanTurnsTest, ComeWhenOneOfThoseBeforeHasEnded) {
  takeAll();
  std::atomic<bool> givenBack = false;
  std::thread next([&] {
    EXPECT_TRUE(turns_.take(kFolder, scanner_));
    EXPECT_TRUE(givenBack);
  });
  givenBack = true;
  turns_.giveBack(kFolder);
  next.join();
}

TEST_F(ScanTurnsTest, AreNotTakenByAScanThatWasCancelledBefore) {
  scanner_.cancel();
  EXPECT_FALSE(turns_.take(kFolder, scanner_));
}

TEST_F(ScanTurnsTest, AreGivenUpByAScanThatIsCancelledWhileItWaits) {
  takeAll();
  sizewalk::TreeScanner waiting{sizewalk::ScanOptions()};
  std::thread next([&] { EXPECT_FALSE(turns_.take(kFolder, waiting)); });
  waiting.cancel();
  turns_.cancelled();
  next.join();
}

TEST_F(ScanTurnsTest, CanBeTakenOftenOneAfterTheOther) {
  for (int i = 0; i < 3 * kScansOfAFolder; ++i) {
    ASSERT_TRUE(turns_.take(kFolder, scanner_));
    turns_.giveBack(kFolder);
  }
}

}  // namespace
}  // namespace app
