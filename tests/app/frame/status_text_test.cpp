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

// What it is about.

constexpr StatusTopics kAllTopics = {.typed = "abc",
                                     .button = "One folder up (Backspace)",
                                     .selected = 3,
                                     .selectedBytes = 1'200'000'000,
                                     .item = "/home/u",
                                     .highlighted = "PNG image"};

TEST(StatusNote, TellsOfWhatComesFirstOfAllThatThereIs) {
  StatusTopics topics = kAllTopics;
  EXPECT_EQ(statusNote(topics).text, "Typed: abc");
  topics.typed = {};
  EXPECT_EQ(statusNote(topics).text, "One folder up (Backspace)");
  topics.button = {};
  EXPECT_EQ(statusNote(topics).text, "3 selected · 1.20 GB");
  topics.selected = 1;
  EXPECT_EQ(statusNote(topics).text, "/home/u") << "one item is not several";
  topics.item = {};
  EXPECT_EQ(statusNote(topics).text, "Only PNG image; Escape ends it");
  topics.highlighted = {};
  EXPECT_EQ(statusNote(topics).text, "");
}

TEST(StatusNote, LosesWhatSaysLeast) {
  StatusTopics topics = kAllTopics;
  EXPECT_EQ(statusNote(topics).cut, StatusNote::Cut::Start) << "the last letters count";
  topics.typed = {};
  EXPECT_EQ(statusNote(topics).cut, StatusNote::Cut::End);
  topics.button = {};
  EXPECT_EQ(statusNote(topics).cut, StatusNote::Cut::Start);
  topics.selected = 0;
  EXPECT_EQ(statusNote(topics).cut, StatusNote::Cut::Start);
  topics.item = {};
  EXPECT_EQ(statusNote(topics).cut, StatusNote::Cut::End);
}

}  // namespace
}  // namespace app
