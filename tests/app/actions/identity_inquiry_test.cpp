#include "app/actions/identity_inquiry.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <chrono>
#include <future>
#include <new>
#include <string>
#include <thread>
#include <vector>

namespace app {
namespace {

using Clock = std::chrono::steady_clock;

Clock::time_point inTenSeconds() { return Clock::now() + std::chrono::seconds(10); }

TEST(IdentityInquiry, AnswersForEachPathInOrder) {
  const auto answers = askIdentities({"/a", "/gone", "/bcd"}, [](const std::string& path) {
    if (path == "/gone") {
      errno = ENOENT;
      return std::optional<ItemIdentity>();
    }
    return std::optional(ItemIdentity{7, path.size()});
  });
  ASSERT_EQ(answers.size(), 3u);
  EXPECT_EQ(answerBy(inTenSeconds(), answers[0]).value().identity, (ItemIdentity{7, 2}));
  EXPECT_EQ(answerBy(inTenSeconds(), answers[2]).value().identity, (ItemIdentity{7, 4}));
  EXPECT_EQ(answerBy(inTenSeconds(), answers[1]).value().identity, std::nullopt);
  EXPECT_EQ(answerBy(inTenSeconds(), answers[1]).value().errorNumber, ENOENT);
}

TEST(IdentityInquiry, AsksOnAThreadOfItsOwn) {
  std::promise<std::thread::id> asked;
  const auto answers = askIdentities({"/a"}, [&](const std::string&) {
    asked.set_value(std::this_thread::get_id());
    return std::optional(ItemIdentity{1, 1});
  });
  EXPECT_NE(asked.get_future().get(), std::this_thread::get_id());
  EXPECT_TRUE(answerBy(inTenSeconds(), answers[0]).has_value());
}

TEST(IdentityInquiry, WaitsNoLongerThanTold) {
  std::promise<void> letGo;
  const std::shared_future<void> letGoes = letGo.get_future().share();
  const auto answers = askIdentities({"/hangs"}, [letGoes](const std::string&) {
    letGoes.wait();
    return std::optional(ItemIdentity{1, 1});
  });
  const auto start = Clock::now();
  EXPECT_FALSE(answerBy(start + std::chrono::milliseconds(30), answers[0]));
  EXPECT_GE(Clock::now() - start, std::chrono::milliseconds(30));
  EXPECT_FALSE(answerBy(start - std::chrono::seconds(1), answers[0]));
  letGo.set_value();
  EXPECT_TRUE(answerBy(inTenSeconds(), answers[0]).has_value());
}

TEST(IdentityInquiry, AnswersThatMemoryRanOut) {
  const auto answers = askIdentities(
      {"/a"}, [](const std::string&) -> std::optional<ItemIdentity> { throw std::bad_alloc(); });
  EXPECT_EQ(answerBy(inTenSeconds(), answers[0]).value().errorNumber, ENOMEM);
}

TEST(IdentityInquiry, StartsNoThreadForNothing) {
  EXPECT_TRUE(askIdentities({}, [](const std::string&) {
                return std::optional(ItemIdentity{1, 1});
              }).empty());
  EXPECT_FALSE(answerBy(inTenSeconds(), IdentityAnswer()));
}

}  // namespace
}  // namespace app
