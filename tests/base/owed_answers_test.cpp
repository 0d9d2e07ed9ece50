#include "base/owed_answers.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <functional>
#include <map>
#include <memory>
#include <new>
#include <optional>
#include <string>
#include <system_error>
#include <thread>
#include <utility>
#include <vector>

#include "base/mutex.h"
#include "tests/support/eventually.h"
#include "tests/support/scarcity.h"
#include "tests/support/waiting_thread.h"

namespace base {
namespace {

using std::chrono::milliseconds;
using test::eventually;

using Length = std::size_t;
constexpr Length kNone{};
/// Long enough for what has its answer in the end.
constexpr std::chrono::seconds kLong{20};
using Answers = OwedAnswers<std::string, Length>;

/// Answers the length of a question, that of those called "slow..." only once they are released. A
/// question called "throw..." makes it throw.
class Oracle {
 public:
  Length answer(const std::string& question) EXCLUDES(mutex_) {
    if (question.starts_with("throw")) throw std::bad_alloc();
    const MutexLock lock(mutex_);
    ++timesAsked_[question];
    while (question.starts_with("slow") && !isReleased_) released_.wait(mutex_);
    return question.size();
  }
  void release() EXCLUDES(mutex_) {
    const MutexLock lock(mutex_);
    isReleased_ = true;
    released_.notifyAll();
  }
  int timesAsked(const std::string& question) EXCLUDES(mutex_) {
    const MutexLock lock(mutex_);
    return timesAsked_[question];
  }

 private:
  Mutex mutex_;  // guards the members below
  CondVar released_;
  bool isReleased_ GUARDED_BY(mutex_) = false;
  std::map<std::string, int> timesAsked_ GUARDED_BY(mutex_);
};

using Said = std::vector<std::pair<std::string, Length>>;

/// What was handed on, sorted.
class Listener {
 public:
  void hear(const std::string& question, Length answer) EXCLUDES(mutex_) {
    const MutexLock lock(mutex_);
    heard_.emplace_back(question, answer);
    std::sort(heard_.begin(), heard_.end());
  }
  Said heard() const EXCLUDES(mutex_) {
    const MutexLock lock(mutex_);
    return heard_;
  }
  bool hears(const Said& expected) const {
    return eventually([&] { return heard() == expected; });
  }

 private:
  mutable Mutex mutex_;  // guards the member below
  Said heard_ GUARDED_BY(mutex_);
};

class OwedAnswersTest : public testing::Test {
 protected:
  OwedAnswersTest() { answers_.emplace(respond(), hear()); }
  // No thread outlives the test.
  ~OwedAnswersTest() override {
    answers_.reset();
    oracle_->release();
    EXPECT_TRUE(threadsEnd());
  }

  /// Holds a reference to the oracle until the last thread has ended.
  Answers::Respond respond() const {
    return [oracle = oracle_](const std::string& question) { return oracle->answer(question); };
  }
  Answers::HandOn hear() {
    return [this](const std::string& question, Length answer) { listener_.hear(question, answer); };
  }
  /// Once the answers' object is gone.
  bool threadsEnd() const {
    return eventually([&] { return oracle_.use_count() == 1; });
  }
  bool asked(const std::string& question, int times = 1) const {
    return eventually([&] { return oracle_->timesAsked(question) == times; });
  }

  const std::shared_ptr<Oracle> oracle_ = std::make_shared<Oracle>();
  Listener listener_;
  std::optional<Answers> answers_;
};

TEST_F(OwedAnswersTest, HandsEveryAnswerOnOnce) {
  for (const char* question : {"a", "bb", "ccc"}) EXPECT_EQ(answers_->ask(question), std::nullopt);
  EXPECT_TRUE(listener_.hears({{"a", 1}, {"bb", 2}, {"ccc", 3}}));
  answers_.reset();
  EXPECT_TRUE(threadsEnd());
  EXPECT_EQ(listener_.heard(), (Said{{"a", 1}, {"bb", 2}, {"ccc", 3}}));
}

TEST_F(OwedAnswersTest, LetsNoneThatHangsDelayAnother) {
  for (const char* question : {"slow1", "a", "slow2", "bb"}) answers_->ask(question);
  EXPECT_TRUE(listener_.hears({{"a", 1}, {"bb", 2}}));
  oracle_->release();
  EXPECT_TRUE(listener_.hears({{"a", 1}, {"bb", 2}, {"slow1", 5}, {"slow2", 5}}));
}

TEST_F(OwedAnswersTest, AsksOnceWhatStillOwesItsAnswer) {
  answers_->ask("slow");
  ASSERT_TRUE(asked("slow"));
  for (int i = 0; i < 10; ++i) EXPECT_EQ(answers_->ask("slow", milliseconds(i % 2)), std::nullopt);
  oracle_->release();
  EXPECT_TRUE(listener_.hears({{"slow", 4}}));
  answers_.reset();
  EXPECT_TRUE(threadsEnd());
  EXPECT_EQ(oracle_->timesAsked("slow"), 1);
  EXPECT_EQ(listener_.heard(), (Said{{"slow", 4}}));
}

TEST_F(OwedAnswersTest, AsksAnewWhatHasAnswered) {
  answers_->ask("a");
  ASSERT_TRUE(listener_.hears({{"a", 1}}));
  answers_->ask("a");
  EXPECT_TRUE(listener_.hears({{"a", 1}, {"a", 1}}));
  EXPECT_EQ(oracle_->timesAsked("a"), 2);
}

TEST_F(OwedAnswersTest, ReturnsWhatComesInTimeAndHandsItOnToNobody) {
  EXPECT_EQ(answers_->ask("a", kLong), 1u);
  EXPECT_EQ(answers_->ask("bb", kLong), 2u);
  answers_.reset();
  EXPECT_TRUE(threadsEnd());
  EXPECT_EQ(listener_.heard(), Said{});
}

TEST_F(OwedAnswersTest, ReturnsTheAnswerToAnEarlierQuestion) {
  answers_->ask("slow");
  ASSERT_TRUE(asked("slow"));
  std::atomic<bool> asking = false;
  std::thread releasing([&, asker = gettid()] {
    EXPECT_TRUE(eventually([&] { return asking && test::waits(asker); }));
    oracle_->release();
  });
  asking = true;
  EXPECT_EQ(answers_->ask("slow", kLong), 4u);
  releasing.join();
  EXPECT_EQ(oracle_->timesAsked("slow"), 1);
  EXPECT_EQ(listener_.heard(), Said{});
}

TEST_F(OwedAnswersTest, HandsOnTheOthersWhileItWaitsForOne) {
  // The slow answer comes once the other has been handed on, and the other once the slow one has
  // been asked for.
  const auto answer = [this, respond = respond()](const std::string& question) {
    const bool inTurn = question != "a" || asked("slow");
    EXPECT_TRUE(inTurn);
    return respond(question);
  };
  answers_.emplace(answer, [this](const std::string& question, Length length) {
    listener_.hear(question, length);
    oracle_->release();
  });
  answers_->ask("a");
  EXPECT_EQ(answers_->ask("slow", kLong), 4u);
  EXPECT_EQ(listener_.heard(), (Said{{"a", 1}}));
}

TEST_F(OwedAnswersTest, HandsOnWhatComesTooLate) {
  EXPECT_EQ(answers_->ask("slow", milliseconds(1)), std::nullopt);
  EXPECT_EQ(answers_->ask("a", kLong), 1u);
  EXPECT_EQ(listener_.heard(), Said{});
  oracle_->release();
  EXPECT_TRUE(listener_.hears({{"slow", 4}}));
}

TEST_F(OwedAnswersTest, GoesWithoutWaitingAndHandsOnNothingAfterwards) {
  answers_->ask("slow");
  ASSERT_TRUE(asked("slow"));
  answers_.reset();
  oracle_->release();
  EXPECT_TRUE(threadsEnd());
  EXPECT_EQ(listener_.heard(), Said{});
}

TEST_F(OwedAnswersTest, ForgetsWhatHandsOnWhenItGoes) {
  auto held = std::make_shared<int>();
  const std::weak_ptr<int> left = held;
  answers_.emplace(respond(), [held = std::move(held)](const std::string&, Length) {});
  answers_->ask("slow");
  ASSERT_TRUE(asked("slow"));
  EXPECT_FALSE(left.expired());
  answers_.reset();
  EXPECT_TRUE(left.expired());
}

TEST_F(OwedAnswersTest, CallsNothingTwiceAtATimeOrAfterItsEnd) {
  for (int round = 0; round < 200; ++round) {
    // Counted without a lock, and freed at once: calls neither overlap nor outlive the object.
    const std::unique_ptr<int> calls = std::make_unique<int>(0);
    Answers answers(respond(), [&](const std::string&, Length) { ++*calls; });
    for (const char* question : {"a", "b", "c", "d"}) answers.ask(question);
    if (round % 2 == 0) {
      EXPECT_TRUE(asked("d", round + 1));
    }
  }
}

TEST_F(OwedAnswersTest, HasNoAnswerWhereOneThrows) {
  EXPECT_EQ(answers_->ask("throw", kLong), kNone);
  answers_->ask("throw");
  EXPECT_TRUE(listener_.hears({{"throw", kNone}}));
  answers_->ask("throw");
  EXPECT_TRUE(listener_.hears({{"throw", kNone}, {"throw", kNone}}));
}

TEST_F(OwedAnswersTest, LosesOneAnswerWhereHandingOnThrows) {
  answers_.emplace(respond(), [this](const std::string& question, Length answer) {
    listener_.hear(question, answer);
    throw std::bad_alloc();
  });
  answers_->ask("a");
  ASSERT_TRUE(listener_.hears({{"a", 1}}));
  answers_->ask("a");
  EXPECT_TRUE(listener_.hears({{"a", 1}, {"a", 1}})) << "nothing is owed";
}

TEST_F(OwedAnswersTest, SaysAtOnceThatThereIsNoThread) {
  answers_->ask("slow");
  ASSERT_TRUE(asked("slow"));
  {
    const test::FewThreads none(0);
    ASSERT_THROW(std::thread([] {}).join(), std::system_error);
    EXPECT_EQ(answers_->ask("a"), kNone);
    EXPECT_EQ(answers_->ask("a", kLong), kNone);
    EXPECT_EQ(answers_->ask("slow"), std::nullopt) << "has its thread";
  }
  EXPECT_EQ(answers_->ask("a", kLong), 1u) << "is asked anew";
}

TEST(OwedAnswers, NeedsNoCopiesOfAnAnswer) {
  using Texts = OwedAnswers<int, std::unique_ptr<std::string>>;
  Mutex mutex;
  std::string said;
  Texts texts([](int number) { return std::make_unique<std::string>(std::to_string(number)); },
              [&](int, std::unique_ptr<std::string> text) {
                const MutexLock lock(mutex);
                said = *text;
              });
  const auto seven = texts.ask(7, kLong);
  ASSERT_TRUE(seven.has_value() && *seven != nullptr);
  EXPECT_EQ(**seven, "7");
  texts.ask(8);
  EXPECT_TRUE(eventually([&] {
    const MutexLock lock(mutex);
    return said == "8";
  }));
}

}  // namespace
}  // namespace base
