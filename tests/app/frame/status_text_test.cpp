#include "app/frame/status_text.h"

#include <gtest/gtest.h>

#include "tests/sizewalk/tree_model.h"

namespace app {
namespace {

ScanStatus finished() {
  ScanStatus status;
  status.nodes = 100;
  status.total = 1200000000;
  status.items = 12345;
  status.elapsedSeconds = 0.306;
  return status;
}

TEST(ItemText, IsThePathAndWhetherItCannotBeRead) {
  sizewalk::FileTree tree;
  tree.createRoot("/r");
  const auto folders = test::add(tree, test::Listing(0).folder("open").folder("locked"));
  test::add(tree, test::Listing(folders[1]).unreadable());
  EXPECT_EQ(itemText(tree, folders[0]), "/r/open");
  EXPECT_EQ(itemText(tree, folders[1]), "/r/locked - cannot be read");
}

TEST(StatusText, SaysThatItScansBeforeThereIsANode) { EXPECT_EQ(statusText({}), "Scanning…"); }

TEST(StatusText, TellsOfAScanThatWasStoppedBeforeThereWasANode) {
  EXPECT_EQ(statusText({.elapsedSeconds = 1.5, .stopped = true}),
            "0 B in 0 items  ·  1.50s  ·  stopped");
}

TEST(StatusText, CountsWhileItScans) {
  ScanStatus status = finished();
  status.scanning = true;
  status.hardLinks = 5;
  EXPECT_EQ(statusText(status), "1.20 GB in 12,345 items  ·  scanning…");
}

TEST(StatusText, TellsHowLongTheScanTook) {
  EXPECT_EQ(statusText(finished()), "1.20 GB in 12,345 items  ·  0.31s");
}

TEST(StatusText, AddsWhatThereIsToSayInItsOrder) {
  ScanStatus status = finished();
  status.hardLinks = 1234;
  status.hardLinkBytes = 5000;
  status.unreadable = 1;
  status.stopped = true;
  EXPECT_EQ(statusText(status),
            "1.20 GB in 12,345 items  ·  0.31s  ·  1,234 hard links counted once (5.00 kB)"
            "  ·  1 unreadable  ·  stopped");
}

TEST(StatusText, EndsAStoppedScanThatMissedNothingWithTheTime) {
  ScanStatus status = finished();
  status.stopped = true;
  EXPECT_EQ(statusText(status), "1.20 GB in 12,345 items  ·  0.31s  ·  stopped");
}

}  // namespace
}  // namespace app
