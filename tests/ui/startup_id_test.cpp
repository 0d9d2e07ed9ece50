#include "ui/startup_id.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <optional>
#include <string>

#include "tests/support/environment.h"

namespace ui {
namespace {

/// All parts of the message that the start is over, one after the other.
std::string endMessage(const std::string& id) {
  std::string bytes;
  for (const StartupMessagePart& part : startupEndMessage(StartupId(id))) {
    bytes.append(part.data(), part.size());
  }
  return bytes;
}

/// What a reader takes out of it: all before the first zero.
std::string endText(const std::string& id) { return endMessage(id).c_str(); }

TEST(StartupId, IsTakenOutOfTheEnvironment) {
  test::ScopedEnvironment environment;
  environment.set("DESKTOP_STARTUP_ID", "panel-7-table_TIME123");
  environment.set("XDG_ACTIVATION_TOKEN", "token");
  EXPECT_EQ(StartupId::fromEnvironment().text(), "panel-7-table_TIME123");
  EXPECT_EQ(std::getenv("DESKTOP_STARTUP_ID"), nullptr);
  EXPECT_EQ(std::getenv("XDG_ACTIVATION_TOKEN"), nullptr);
  EXPECT_TRUE(StartupId::fromEnvironment().none()) << "the second time";
}

TEST(StartupId, IsTakenOutOfTheEnvironmentThoughItIsNone) {
  test::ScopedEnvironment environment;
  for (const std::string& strange : {std::string(), std::string(100'000, 'x')}) {
    environment.set("DESKTOP_STARTUP_ID", strange);
    EXPECT_TRUE(StartupId::fromEnvironment().none());
    EXPECT_EQ(std::getenv("DESKTOP_STARTUP_ID"), nullptr);
  }
}

TEST(StartupId, IsNoneWhereNoLauncherCanHaveMadeIt) {
  EXPECT_TRUE(StartupId().none());
  EXPECT_TRUE(StartupId("").none());
  EXPECT_TRUE(StartupId("not UTF-8 \xFF").none());
  EXPECT_TRUE(StartupId("cut off \xC3").none());
  EXPECT_TRUE(StartupId(std::string(4097, 'x')).none());
  EXPECT_EQ(StartupId(std::string(4096, 'x')).text(), std::string(4096, 'x'));
  EXPECT_EQ(StartupId(" Bücher\n\"").text(), " Bücher\n\"");
}

TEST(StartupId, TellsWhenTheUserAskedForTheProgram) {
  EXPECT_EQ(StartupId("panel-7_TIME4294967295").time(), 4294967295u);
  EXPECT_EQ(StartupId("_TIME1").time(), 1u);
  EXPECT_EQ(StartupId("a_TIME5-b_TIME12").time(), 12u) << "the last";
}

TEST(StartupId, TellsNoTimeWhereThereIsNone) {
  for (const char* id : {"", "panel", "panel_TIME", "panel_TIME0", "panel_TIME4294967296",
                         "panel_TIME-5", "panel_TIME+5", "panel_TIME 5", "panel_TIME5x",
                         "panel_TIME5_TIME", "panel_time5", "TIME5"}) {
    EXPECT_EQ(StartupId(id).time(), std::nullopt) << id;
  }
}

TEST(StartupEndMessage, NamesTheStart) { EXPECT_EQ(endText("panel-7"), "remove: ID=\"panel-7\""); }

TEST(StartupEndMessage, QuotesWhatWouldEndTheName) {
  EXPECT_EQ(endText("a b\"c\\d\ne'f"), "remove: ID=\"a b\\\"c\\\\d\ne'f\"");
}

TEST(StartupEndMessage, EndsWithAZeroInPartsOfTwentyBytes) {
  EXPECT_EQ(endMessage("123456"), std::string("remove: ID=\"123456\"") + '\0');
  EXPECT_EQ(endMessage("1234567"), "remove: ID=\"1234567\"" + std::string(20, '\0'))
      << "one more part for the zero alone";
  EXPECT_EQ(endMessage("12345678"), "remove: ID=\"12345678\"" + std::string(19, '\0'));
  EXPECT_EQ(endMessage(std::string(4096, '"')).size(), 8220u);
}

}  // namespace
}  // namespace ui
