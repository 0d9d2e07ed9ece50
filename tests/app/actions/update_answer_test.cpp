#include "app/actions/update_answer.h"

#include <gtest/gtest.h>

#include <ctime>
#include <string>
#include <string_view>

#include "app/model/product.h"

namespace app {
namespace {

constexpr std::time_t kDay = 86'400;
/// Noon UTC of 2025-01-31.
constexpr std::time_t kPublished = 1'738'324'800;

std::string answerWith(const std::string& version) {
  return R"({"latest":{"version":")" + version + R"("}})";
}

bool isUpdate(const std::string& answer) {
  return parseUpdateAnswer(answer, kProductVersion).has_value();
}

/// What the user is told of version 1.2.0, `days` after this one was published.
std::string messageAfter(std::time_t days) {
  return updateMessage({.version = "1.2.0", .downloads = {}, .currentDate = "2025-01-31"},
                       kPublished + days * kDay);
}

std::string messageWithDate(const std::string& date) {
  return updateMessage({.version = "2", .downloads = {}, .currentDate = date},
                       kPublished + 100 * kDay);
}

/// Whether one is higher than the other, but not the other way round.
testing::AssertionResult isHigher(std::string_view one, std::string_view other) {
  if (!isHigherVersion(one, other)) return testing::AssertionFailure() << one << " is not higher";
  if (isHigherVersion(other, one)) return testing::AssertionFailure() << other << " is higher too";
  return testing::AssertionSuccess();
}

testing::AssertionResult areEqual(std::string_view one, std::string_view other) {
  if (isHigherVersion(one, other)) return testing::AssertionFailure() << one << " is higher";
  if (isHigherVersion(other, one)) return testing::AssertionFailure() << other << " is higher";
  return testing::AssertionSuccess();
}

TEST(IsHigherVersion, ComparesNumbersAndNotTexts) {
  EXPECT_TRUE(isHigher("1.10.0", "1.9.9"));
  EXPECT_TRUE(isHigher("1.1.2", "1.1.1"));
  EXPECT_TRUE(isHigher("1.2.0", "1.1.1"));
  EXPECT_TRUE(isHigher("2.0.0", "1.99.99"));
  EXPECT_TRUE(isHigher("10", "9"));
  EXPECT_TRUE(areEqual("1.1.1", "1.1.1"));
  EXPECT_TRUE(areEqual("1.01.001", "1.1.1"));
}

TEST(IsHigherVersion, TakesMissingNumbersForZero) {
  EXPECT_TRUE(isHigher("1.1.1.1", "1.1.1"));
  EXPECT_TRUE(areEqual("1.1.1.0", "1.1.1"));
  EXPECT_TRUE(areEqual("1.1.1.", "1.1.1"));
  EXPECT_TRUE(isHigher("1.1.1", "1.1"));
  EXPECT_TRUE(isHigher("2", "1.1.1"));
  EXPECT_TRUE(isHigher("1.1.1", "1"));
  EXPECT_TRUE(areEqual("", "0.0"));
  EXPECT_TRUE(isHigher("0.0.1", ""));
}

TEST(IsHigherVersion, TakesEmptyPartsForZero) {
  EXPECT_TRUE(areEqual("1..1", "1.0.1"));
  EXPECT_TRUE(isHigher("1.1.1", "1..9"));
  EXPECT_TRUE(areEqual(".1", "0.1"));
  EXPECT_TRUE(areEqual("...", "0"));
  EXPECT_TRUE(isHigher("...1", "0.0.0"));
}

TEST(IsHigherVersion, ReadsTheDigitsThatAPartBeginsWith) {
  EXPECT_TRUE(areEqual("1.2-beta.3", "1.2.3"));
  EXPECT_TRUE(areEqual("v2.0", "0.0"));
  EXPECT_TRUE(areEqual("-5", "0"));
  EXPECT_TRUE(isHigher("1", "x"));
}

TEST(IsHigherVersion, HasNoLargestNumber) {
  EXPECT_TRUE(isHigher("4294967296", "1"));
  EXPECT_TRUE(isHigher("18446744073709551616.0", "18446744073709551615.9"));
  EXPECT_TRUE(isHigher("1." + std::string(5000, '9'), "1." + std::string(4999, '9')));
}

TEST(UpdateAnswer, HasAnUpdateWhenTheLatestVersionIsHigher) {
  EXPECT_TRUE(isUpdate(answerWith("1.2.0")));
  EXPECT_TRUE(isUpdate(answerWith("1.1.1.1")));
  EXPECT_TRUE(isUpdate(answerWith("1.10.0")));
  EXPECT_FALSE(isUpdate(answerWith("1.1.1")));
  EXPECT_FALSE(isUpdate(answerWith("1.1.1.0")));
  EXPECT_FALSE(isUpdate(answerWith("1.0")));
  EXPECT_FALSE(isUpdate(answerWith("newest")));
}

TEST(UpdateAnswer, HasAnUpdateWhenTheServerSaysSo) {
  const auto update =
      parseUpdateAnswer(R"({"updateAvailable":true,"latest":{"version":"1.0"}})", "1.1.1");
  ASSERT_TRUE(update);
  EXPECT_EQ(update->version, "1.0");
}

TEST(UpdateAnswer, DecidesItselfUnlessTheServerSaysYes) {
  for (const std::string other : {"false", "null", "1", "\"true\"", "[true]"}) {
    const std::string said = R"({"updateAvailable":)" + other + R"(,"latest":{"version":")";
    EXPECT_FALSE(isUpdate(said + "1.1.1\"}}")) << other;
    EXPECT_TRUE(isUpdate(said + "1.1.2\"}}")) << other;
  }
}

TEST(UpdateAnswer, ComparesWithTheVersionThatRuns) {
  EXPECT_FALSE(parseUpdateAnswer(answerWith("1.9.9"), "1.10.0"));
  EXPECT_TRUE(parseUpdateAnswer(answerWith("1.10.0"), "1.9.9"));
}

TEST(UpdateAnswer, CarriesTheThreeTexts) {
  const auto update =
      parseUpdateAnswer(R"({"latest":{"version":"1.2.0","downloads":"no","currentDate":"no"},)"
                        R"("downloads":"https://a.example/d","currentDate":"2025-01-31"})",
                        "1.1.1");
  ASSERT_TRUE(update);
  EXPECT_EQ(update->version, "1.2.0");
  EXPECT_EQ(update->downloads, "https://a.example/d");
  EXPECT_EQ(update->currentDate, "2025-01-31");
}

TEST(UpdateAnswer, LeavesEmptyWhatIsNoText) {
  const auto update = parseUpdateAnswer(
      R"({"latest":{"version":"2"},"downloads":{"linux":"x"},"currentDate":20250131})", "1.1.1");
  ASSERT_TRUE(update);
  EXPECT_EQ(update->downloads, "");
  EXPECT_EQ(update->currentDate, "");
}

TEST(UpdateAnswer, HasNoUpdateWithoutALatestVersion) {
  for (const char* answer :
       {R"({"updateAvailable":true})", R"({"updateAvailable":true,"latest":{}})",
        R"({"updateAvailable":true,"latest":{"version":""}})",
        R"({"updateAvailable":true,"latest":{"version":2}})",
        R"({"updateAvailable":true,"latest":"2.0"})", R"({"updateAvailable":true,"version":"2.0"})",
        R"({"updateAvailable":true,"latest":[{"version":"2.0"}]})", R"({"latest":null})"}) {
    EXPECT_FALSE(isUpdate(answer)) << answer;
  }
}

TEST(UpdateAnswer, HasNoUpdateInWhatIsNoObject) {
  for (const char* answer : {"", "null", "true", "[]", "\"2.0\"", "<html>2.0</html>",
                             R"([{"latest":{"version":"2.0"}}])", R"({"latest":{"version":"2.0"})",
                             R"({"latest":{"version":"2.0"}}})"}) {
    EXPECT_FALSE(isUpdate(answer)) << answer;
  }
}

TEST(AgeInDays, CountsWholeDaysSinceNoon) {
  EXPECT_EQ(ageInDays("2025-01-31", kPublished), 0);
  EXPECT_EQ(ageInDays("2025-01-31", kPublished + kDay - 1), 0);
  EXPECT_EQ(ageInDays("2025-01-31", kPublished + kDay), 1);
  EXPECT_EQ(ageInDays("2025-01-31", kPublished - kDay + 1), 0);
  EXPECT_EQ(ageInDays("2025-01-31", kPublished - kDay), -1);
  EXPECT_EQ(ageInDays("1970-01-01", 10 * kDay + kDay / 2), 10);
}

TEST(AgeInDays, KnowsTheCalendar) {
  EXPECT_EQ(ageInDays("2024-02-28", kPublished), 338);
  EXPECT_EQ(ageInDays("2023-12-31", kPublished), 397);
  EXPECT_EQ(ageInDays("0001-01-01", kPublished), 739'281);
  EXPECT_EQ(ageInDays("2024-02-30", kPublished), ageInDays("2024-03-01", kPublished));
}

TEST(AgeInDays, LooksAtTheDateAlone) {
  EXPECT_EQ(ageInDays("2025-01-31T23:59:59Z", kPublished + 5 * kDay), 5);
  EXPECT_EQ(ageInDays("2025/01/31", kPublished + 5 * kDay), 5);
}

TEST(AgeInDays, IsNotKnownOfWhatIsNoDate) {
  for (const char* date : {"", "2025-01-3", "2025-1-31", "31.01.2025", "yesterday!", "2025-Jan-31",
                           "-025-01-31", "+025-01-31", " 025-01-31", "2025- 1-31", "2025-01-+1",
                           "0000-00-00", "2025-13-31", "2025-01-00", "2025-01-32"}) {
    EXPECT_EQ(ageInDays(date, kPublished + 5 * kDay), -1) << date;
  }
}

TEST(UpdateMessage, DoesNotTellOfAnAgeBelowADay) {
  EXPECT_EQ(messageAfter(0), "Version 1.2.0 is available.");
  EXPECT_EQ(messageAfter(-1), "Version 1.2.0 is available.");
  EXPECT_EQ(messageAfter(-1000), "Version 1.2.0 is available.");
}

TEST(UpdateMessage, DoesNotTellOfAnUnknownAge) {
  EXPECT_EQ(messageWithDate(""), "Version 2 is available.");
  EXPECT_EQ(messageWithDate("2025-01-3"), "Version 2 is available.");
  EXPECT_EQ(messageWithDate("0000-00-00"), "Version 2 is available.");
}

TEST(UpdateMessage, CountsDaysBelowTwoWeeks) {
  EXPECT_EQ(messageAfter(1), "Version 1.2.0 is available. Yours is 1 day old.");
  EXPECT_EQ(messageAfter(2), "Version 1.2.0 is available. Yours is 2 days old.");
  EXPECT_EQ(messageAfter(13), "Version 1.2.0 is available. Yours is 13 days old.");
}

TEST(UpdateMessage, CountsWeeksBelowSixtyDays) {
  EXPECT_EQ(messageAfter(14), "Version 1.2.0 is available. Yours is 2 weeks old.");
  EXPECT_EQ(messageAfter(20), "Version 1.2.0 is available. Yours is 2 weeks old.");
  EXPECT_EQ(messageAfter(21), "Version 1.2.0 is available. Yours is 3 weeks old.");
  EXPECT_EQ(messageAfter(59), "Version 1.2.0 is available. Yours is 8 weeks old.");
}

TEST(UpdateMessage, CountsMonthsBelowAYear) {
  EXPECT_EQ(messageAfter(60), "Version 1.2.0 is available. Yours is 2 months old.");
  EXPECT_EQ(messageAfter(89), "Version 1.2.0 is available. Yours is 2 months old.");
  EXPECT_EQ(messageAfter(90), "Version 1.2.0 is available. Yours is 3 months old.");
  EXPECT_EQ(messageAfter(364), "Version 1.2.0 is available. Yours is 12 months old.");
}

TEST(UpdateMessage, CountsYears) {
  EXPECT_EQ(messageAfter(365), "Version 1.2.0 is available. Yours is 1 year old.");
  EXPECT_EQ(messageAfter(729), "Version 1.2.0 is available. Yours is 1 year old.");
  EXPECT_EQ(messageAfter(730), "Version 1.2.0 is available. Yours is 2 years old.");
  EXPECT_EQ(messageAfter(3650), "Version 1.2.0 is available. Yours is 10 years old.");
}

TEST(DownloadAddress, IsTheServersIfItIsOfTheWeb) {
  EXPECT_EQ(downloadAddress({"2", "https://a.example/get?it=1", ""}), "https://a.example/get?it=1");
  for (const char* other : {"", "file:///etc/passwd", "/bin/sh", "javascript:1", "get it there"}) {
    EXPECT_EQ(downloadAddress({"2", other, ""}), kProductPage) << other;
  }
}

TEST(UpdateNotice, HasTheMessageAndTheAddress) {
  const UpdateAvailable update{"1.2.0", "https://a.example/", "2025-01-31"};
  const UpdateNotice notice = updateNotice(update, kPublished + 15 * kDay);
  EXPECT_EQ(notice.message, "Version 1.2.0 is available. Yours is 2 weeks old.");
  EXPECT_EQ(notice.downloadAddress, "https://a.example/");
}

}  // namespace
}  // namespace app
