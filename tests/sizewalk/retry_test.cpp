#include "sizewalk/retry.h"

#include <gtest/gtest.h>

namespace sizewalk {
namespace {

TEST(RetryInterrupted, AsksAgainUntilTheCallGetsThrough) {
  int calls = 0;
  const int result = retryInterrupted([&] {
    errno = EINTR;
    return ++calls < 5 ? -1 : 7;
  });
  EXPECT_EQ(result, 7);
  EXPECT_EQ(calls, 5);
}

TEST(RetryInterrupted, GivesUpAfterItsBound) {
  int calls = 0;
  const int result = retryInterrupted([&] {
    ++calls;
    errno = EINTR;
    return -1;
  });
  EXPECT_EQ(result, -1);
  EXPECT_EQ(calls, 1 + kInterruptRetries);
}

TEST(RetryInterrupted, TakesAnyOtherFailureForAnAnswer) {
  int calls = 0;
  retryInterrupted([&] {
    ++calls;
    errno = EACCES;
    return -1;
  });
  EXPECT_EQ(calls, 1);
}

}  // namespace
}  // namespace sizewalk
