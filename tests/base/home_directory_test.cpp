#include "base/home_directory.h"

#include <gtest/gtest.h>
#include <pwd.h>
#include <unistd.h>

#include "tests/support/environment.h"

namespace base {
namespace {

TEST(HomeDirectory, IsWhatHomeSays) {
  test::ScopedEnvironment environment;
  environment.set("HOME", "/somewhere/else");
  EXPECT_EQ(homeDirectory(), "/somewhere/else");
}

TEST(HomeDirectory, IsTheAccountsWithoutHome) {
  const passwd* account = getpwuid(geteuid());
  if (!account) GTEST_SKIP() << "the user running the tests has no account entry";
  test::ScopedEnvironment environment;
  environment.unset("HOME");
  EXPECT_EQ(homeDirectory(), account->pw_dir);
  environment.set("HOME", "");
  EXPECT_EQ(homeDirectory(), account->pw_dir);
}

}  // namespace
}  // namespace base
